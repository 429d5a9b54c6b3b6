// Sets a second that are on the disk when they are acknowledged, of 8 clients.
#include <cstdio>
#include <map>

#include "bench/contenders/contender.h"
#include "bench/measure.h"

namespace {

using namespace velmo::bench;

constexpr std::size_t client_count = 8;
constexpr std::chrono::milliseconds window{1500};
constexpr int rounds = 5;
constexpr std::size_t value_bytes = 64;

using Clients = std::vector<std::unique_ptr<Client>>;

double sets_a_second(Clients& clients)
{
    return calls_a_second(clients.size(), window, [&clients](std::size_t i) {
        return
            [&client = *clients[i], value = Bytes(value_bytes, 'x')] { client.set(value); };
    });
}

Clients connect(Contender& contender)
{
    Clients clients;
    for (std::size_t i = 0; i < client_count; ++i)
        clients.push_back(contender.connect());
    return clients;
}

} // namespace

int main()
try {
    Velmods velmods(true);
    const auto redis = make_redis(Transport::unix_socket, true);
    const auto postgres = make_postgres();
    std::map<std::string, Clients> clients;
    for (std::size_t i = 0; i < client_count; ++i)
        clients["velmo"].push_back(velmods.connect(Transport::unix_socket));
    if (redis)
        clients["redis"] = connect(*redis);
    if (postgres)
        clients["postgres"] = connect(*postgres);

    std::map<std::string, std::vector<double>> throughput;
    for (int round = 0; round < rounds; ++round)
        for (auto& [name, of_contender] : clients)
            throughput[name].push_back(sets_a_second(of_contender));
    nlohmann::json more = bar(1, "higher");
    for (const auto& [name, of_rounds] : throughput)
        more["sets_a_second"][name] = median(of_rounds);
    for (const auto& [name, of_rounds] : throughput)
        if (name != "velmo")
            print({"durable", "durable sets of 8 clients, of " + name, "ratio",
                   ratio(throughput["velmo"], of_rounds), more});
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "durable_bench: %s\n", error.what());
    return 1;
}
