// Calls a second of several clients at once, of velmod beside its peers.
#ifndef VELMO_BENCH_THROUGHPUT_H
#define VELMO_BENCH_THROUGHPUT_H

#include <functional>
#include <map>

#include "bench/contenders/contender.h"
#include "bench/measure.h"

namespace velmo::bench {

// By contender; "velmo" is one of them.
using Clients = std::map<std::string, std::vector<std::unique_ptr<Client>>>;

// Of a value.
constexpr std::size_t throughput_bytes = 64;

struct Throughput {
    std::function<void(Client&, Bytes&)> call; // with a value
    std::chrono::milliseconds window;          // of calling, in each of the turns
    std::string group;                         // of the rows
    std::string what;                          // is called, in the rows' names
    const char* figures;                       // the rows' field of calls a second
};

// Has the first clients of each contender, count of them, each in a thread of its own,
// call in turn with those of the others. Prints a row for each peer; more: its other
// fields.
void print_throughput(Clients& clients, std::size_t count, const Throughput& throughput,
                      nlohmann::json more);

} // namespace velmo::bench

#endif
