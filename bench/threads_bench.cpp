// Calls a second of 1 to 4 threads, each a client, on all processors, beside the peers.
#include "bench/throughput.h"

using namespace velmo::bench;

int main()
{
    constexpr std::size_t most = 4;
    Velmods velmods;
    for (const Transport transport : {Transport::unix_socket, Transport::tcp}) {
        const auto redis = make_redis(transport);
        const auto thrift = make_thrift(transport);
        Clients clients;
        const Bytes value(throughput_bytes, 'x');
        for (std::size_t i = 0; i < most; ++i) {
            clients["velmo"].push_back(velmods.connect(transport));
            if (redis)
                clients["redis"].push_back(redis->connect());
            if (thrift)
                clients["thrift"].push_back(thrift->connect());
            for (auto& [name, of_contender] : clients)
                of_contender.back()->set(value);
        }
        for (const std::size_t threads : {1ul, 2ul, most})
            print_throughput(clients, threads,
                             {[](Client& client, Bytes& read) { client.get(read); },
                              std::chrono::milliseconds(400), "threads",
                              "get 64 B, " + std::string(in_words(transport)) + ", " +
                                  std::to_string(threads) + " threads",
                              "calls_a_second"},
                             {{"threads", threads}, {"transport", in_words(transport)}});
    }
    return 0;
}
