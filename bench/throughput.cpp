#include "bench/throughput.h"

namespace velmo::bench {

namespace {

constexpr int rounds = 5;

} // namespace

void print_throughput(Clients& clients, std::size_t count, const Throughput& throughput,
                      nlohmann::json more)
{
    std::map<std::string, std::vector<double>> measured;
    for (int round = 0; round < rounds; ++round)
        for (auto& [name, of_contender] : clients) {
            const auto make_call = [&throughput, &all = of_contender](std::size_t i) {
                return [&throughput, &client = *all[i],
                        value = Bytes(throughput_bytes, 'x')]() mutable {
                    throughput.call(client, value);
                };
            };
            measured[name].push_back(calls_a_second(count, throughput.window, make_call));
        }
    for (const auto& [name, of_rounds] : measured)
        more[throughput.figures][name] = median(of_rounds);
    for (const auto& [name, of_rounds] : measured)
        if (name != "velmo")
            print({throughput.group, throughput.what + ", of " + name, "ratio",
                   ratio(measured.at("velmo"), of_rounds), more});
}

} // namespace velmo::bench
