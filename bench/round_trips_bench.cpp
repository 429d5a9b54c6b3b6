// What a call at velmod takes by size, on one processor, beside the same on a bare socket
// and at the peers.
//
//     round_trips_bench [BYTES]    for this size alone
#include <algorithm>
#include <functional>
#include <iterator>
#include <map>

#include "bench/contenders/contender.h"
#include "bench/measure.h"

namespace {

using namespace velmo::bench;

constexpr int turns = 25;
constexpr std::size_t large = 1u << 20;
constexpr double most_over_raw = 1.25; // for large data, over TCP

using Operation = std::function<void(Client&, Bytes&)>;

// How many calls a turn has: long enough to be timed, and fewer than a queue holds.
int calls_of(std::size_t bytes)
{
    return bytes <= 4096 ? 200 : bytes <= 65536 ? 80 : 12;
}

struct Competitors {
    std::unique_ptr<Contender> raw, redis, thrift;
    std::map<std::string, std::unique_ptr<Client>> clients;

    Competitors(Velmods& velmods, Transport transport)
        : raw(make_raw_socket(transport)), redis(make_redis(transport)),
          thrift(make_thrift(transport))
    {
        clients["velmo"] = velmods.connect(transport);
        clients["raw"] = raw->connect();
        if (redis)
            clients["redis"] = redis->connect();
        if (thrift)
            clients["thrift"] = thrift->connect();
    }
};

using Times = std::map<std::string, std::vector<double>>; // of each turn, by contender

void print_rows(const std::string& operation, std::size_t bytes, Transport transport,
                const Times& times)
{
    nlohmann::json more = {
        {"operation", operation}, {"bytes", bytes}, {"transport", in_words(transport)}};
    for (const auto& [contender, of_turns] : times)
        more["ns"][contender] = median(of_turns);
    const std::string what = operation + " " + in_words(bytes) + ", " + in_words(transport);
    const std::vector<double>& velmo = times.at("velmo");
    const auto row = [&](const char* to, nlohmann::json limit) {
        limit.update(more);
        print({"peers", what + ", over " + to, "ratio", ratio(velmo, times.at(to)), limit});
    };
    if (times.count("redis"))
        row("redis", bar(1, "lower"));
    if (times.count("thrift"))
        row("thrift", {});
    if (times.count("raw"))
        row("raw", bytes == large && transport == Transport::tcp
                       ? bar(most_over_raw, "lower")
                       : nlohmann::json::object());
}

// A call of the one operation and one of the other: there and back, as a bare socket's
// pace is mostly told.
Times there_and_back(const Times& there, const Times& back)
{
    Times both;
    for (const char* contender : {"velmo", "raw"}) {
        const std::vector<double>& first = there.at(contender);
        std::transform(first.begin(), first.end(), back.at(contender).begin(),
                       std::back_inserter(both[contender]), std::plus<>());
    }
    return both;
}

// What is sent has to be taken out again, and what is taken sent before: two operations
// that take turns with each other.
void measure_pair(Competitors& competitors, Transport transport, std::size_t bytes,
                  const std::pair<std::string, Operation>& first,
                  const std::pair<std::string, Operation>& second, bool without_raw)
{
    Bytes data(bytes, 'x');
    Times times_of_first, times_of_second;
    for (int turn = -1; turn < turns; ++turn) // the first is not counted
        for (const auto& entry : competitors.clients) {
            const std::string& name = entry.first;
            Client& client = *entry.second;
            if (without_raw && name == "raw")
                continue;
            const auto timed = [&](const Operation& operation, Times& times) {
                const double time =
                    time_of(calls_of(bytes), [&] { operation(client, data); });
                if (turn >= 0)
                    times[name].push_back(time);
            };
            timed(first.second, times_of_first);
            timed(second.second, times_of_second);
        }
    print_rows(first.first, bytes, transport, times_of_first);
    print_rows(second.first, bytes, transport, times_of_second);
    if (bytes == large && !without_raw)
        print_rows(first.first + " and " + second.first, bytes, transport,
                   there_and_back(times_of_first, times_of_second));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string only = argc > 1 ? argv[1] : "";
    pin_to_one_processor();
    Velmods velmods;
    for (const Transport transport : {Transport::unix_socket, Transport::tcp}) {
        Competitors competitors(velmods, transport);
        for (const std::size_t bytes : {64ul, 1024ul, 16384ul, 65536ul, large}) {
            if (!only.empty() && only != std::to_string(bytes))
                continue;
            measure_pair(competitors, transport, bytes,
                         {"set", [](Client& client, Bytes& data) { client.set(data); }},
                         {"get", [](Client& client, Bytes& data) { client.get(data); }},
                         false);
            measure_pair(competitors, transport, bytes,
                         {"send", [](Client& client, Bytes& data) { client.send(data); }},
                         {"receive",
                          [](Client& client, Bytes& data) { client.receive(data.size()); }},
                         true);
        }
    }
    return 0;
}
