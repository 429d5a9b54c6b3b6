// Sets a second that are on the disk when they are acknowledged, of 1 to 32 clients.
#include <cstdio>

#include "bench/throughput.h"

namespace {

using namespace velmo::bench;

constexpr std::size_t some = 8; // for which there are bars
constexpr std::size_t most = 32;

void measure(Clients& clients, std::size_t count)
{
    const std::string many = count == 1 ? "1 client" : std::to_string(count) + " clients";
    nlohmann::json more = count == some ? bar(1, "higher") : nlohmann::json::object();
    more["clients"] = count;
    print_throughput(clients, count,
                     {[](Client& client, Bytes& value) { client.set(value); },
                      std::chrono::milliseconds(1000), "durable", "durable sets of " + many,
                      "sets_a_second"},
                     more);
}

} // namespace

int main()
try {
    Velmods velmods(true);
    const auto redis = make_redis(Transport::unix_socket, true);
    const auto postgres = make_postgres();
    Clients clients;
    for (std::size_t i = 0; i < most; ++i) {
        clients["velmo"].push_back(velmods.connect(Transport::unix_socket));
        if (redis)
            clients["redis"].push_back(redis->connect());
        if (postgres)
            clients["postgres"].push_back(postgres->connect());
    }
    for (const std::size_t count : {std::size_t{1}, some, most})
        measure(clients, count);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "durable_bench: %s\n", error.what());
    return 1;
}
