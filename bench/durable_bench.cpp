// Sets a second that are on the disk when they are acknowledged, of 1 to 32 clients.
#include <cstdio>
#include <map>

#include "bench/contenders/contender.h"
#include "bench/measure.h"

namespace {

using namespace velmo::bench;

constexpr std::size_t some = 8; // for which there are bars
constexpr std::size_t most = 32;
constexpr std::chrono::milliseconds window{1000};
constexpr int rounds = 5;
constexpr std::size_t value_bytes = 64;

using Clients = std::vector<std::unique_ptr<Client>>;

// Of the first clients.
double sets_a_second(Clients& clients, std::size_t count)
{
    return calls_a_second(count, window, [&clients](std::size_t i) {
        return
            [&client = *clients[i], value = Bytes(value_bytes, 'x')] { client.set(value); };
    });
}

Clients connect(Contender& contender)
{
    Clients clients;
    for (std::size_t i = 0; i < most; ++i)
        clients.push_back(contender.connect());
    return clients;
}

void measure(std::map<std::string, Clients>& clients, std::size_t count)
{
    std::map<std::string, std::vector<double>> throughput;
    for (int round = 0; round < rounds; ++round)
        for (auto& [name, of_contender] : clients)
            throughput[name].push_back(sets_a_second(of_contender, count));
    nlohmann::json more = count == some ? bar(1, "higher") : nlohmann::json::object();
    more["clients"] = count;
    for (const auto& [name, of_rounds] : throughput)
        more["sets_a_second"][name] = median(of_rounds);
    const std::string what = count == 1 ? "1 client" : std::to_string(count) + " clients";
    for (const auto& [name, of_rounds] : throughput)
        if (name != "velmo")
            print({"durable", "durable sets of " + what + ", of " + name, "ratio",
                   ratio(throughput["velmo"], of_rounds), more});
}

} // namespace

int main()
try {
    Velmods velmods(true);
    const auto redis = make_redis(Transport::unix_socket, true);
    const auto postgres = make_postgres();
    std::map<std::string, Clients> clients;
    for (std::size_t i = 0; i < most; ++i)
        clients["velmo"].push_back(velmods.connect(Transport::unix_socket));
    if (redis)
        clients["redis"] = connect(*redis);
    if (postgres)
        clients["postgres"] = connect(*postgres);
    for (const std::size_t count : {std::size_t{1}, some, most})
        measure(clients, count);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "durable_bench: %s\n", error.what());
    return 1;
}
