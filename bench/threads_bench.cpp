// Calls a second of 1 to 4 threads, each a client, on all processors, beside the peers.
#include <map>

#include "bench/contenders/contender.h"
#include "bench/measure.h"

namespace {

using namespace velmo::bench;

constexpr std::chrono::milliseconds window{400};
constexpr int rounds = 5;
constexpr std::size_t value_bytes = 64;

// Of the clients, each in a thread of its own.
double gets_a_second(std::vector<std::unique_ptr<Client>>& clients, std::size_t threads)
{
    return calls_a_second(threads, window, [&clients](std::size_t i) {
        return [&client = *clients[i], value = Bytes(value_bytes, 'x')]() mutable {
            client.get(value);
        };
    });
}

} // namespace

int main()
{
    constexpr std::size_t most = 4;
    Velmods velmods;
    for (const Transport transport : {Transport::unix_socket, Transport::tcp}) {
        const auto redis = make_redis(transport);
        const auto thrift = make_thrift(transport);
        std::map<std::string, std::vector<std::unique_ptr<Client>>> clients;
        const Bytes value(value_bytes, 'x');
        for (std::size_t i = 0; i < most; ++i) {
            clients["velmo"].push_back(velmods.connect(transport));
            if (redis)
                clients["redis"].push_back(redis->connect());
            if (thrift)
                clients["thrift"].push_back(thrift->connect());
            for (auto& [name, of_contender] : clients)
                of_contender.back()->set(value);
        }
        for (const std::size_t threads : {1ul, 2ul, most}) {
            std::map<std::string, std::vector<double>> throughput;
            for (int round = 0; round < rounds; ++round)
                for (auto& [name, of_contender] : clients)
                    throughput[name].push_back(gets_a_second(of_contender, threads));
            nlohmann::json more = {{"threads", threads},
                                   {"transport", in_words(transport)}};
            for (const auto& [name, of_rounds] : throughput)
                more["calls_a_second"][name] = median(of_rounds);
            for (const auto& [name, of_rounds] : throughput)
                if (name != "velmo")
                    print({"threads",
                           "get 64 B, " + std::string(in_words(transport)) + ", " +
                               std::to_string(threads) + " threads, of " + name,
                           "ratio", ratio(throughput["velmo"], of_rounds), more});
        }
    }
    return 0;
}
