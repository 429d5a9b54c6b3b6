// What velmo bench measures: calls of one thread, on a point and a port of its own.
#ifndef VELMO_CLI_BENCH_WORK_H
#define VELMO_CLI_BENCH_WORK_H

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "cli/histogram.h"
#include "cli/session.h"

namespace velmo::cli {

enum class Operation { set, get, send, receive };
constexpr std::size_t operation_count = 4;

// In the order of Operation.
const std::vector<std::string>& operation_names();

// Of one thread, by operation.
using Measured = std::vector<Histogram>;

class BenchWork {
public:
    // Creates the point, and the port when packets are wanted. name: of both, unique.
    // Throws Failure.
    BenchWork(const Session& session, const std::string& name, bool points, bool packets);

    // Removes the point. A port cannot be removed.
    ~BenchWork();
    BenchWork(const BenchWork&) = delete;
    BenchWork& operator=(const BenchWork&) = delete;

    // Each calls at least once, carries on until done(), and throws Failure when a call
    // fails. Packets are sent and received in batches that fit a queue, in turn.
    using Done = std::function<bool()>;
    void set(std::size_t size, const Done& done, Measured& measured) const;
    void get(std::size_t size, const Done& done, Measured& measured) const;
    void packets(std::size_t size, const Done& done, Measured& measured) const;

private:
    const Session& session;
    const std::string name;
    const bool has_point;
    unsigned int handle = 0;
};

} // namespace velmo::cli

#endif
