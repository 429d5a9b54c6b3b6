// The threads of velmo bench, and what they have measured.
#ifndef VELMO_CLI_BENCH_THREADS_H
#define VELMO_CLI_BENCH_THREADS_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "cli/bench_work.h"
#include "cli/interruption.h"

namespace velmo::cli {

struct Outcome {
    Operation operation = Operation::set;
    std::size_t size = 0;
    double per_second = 0; // of all threads together
    Histogram times;
};

// Threads with their own points and ports.
class Bench {
public:
    // Throws Failure.
    Bench(const Session& session, std::size_t threads, bool points, bool packets);

    using Part = void (BenchWork::*)(std::size_t size, const BenchWork::Done& done,
                                     Measured& measured) const;

    // Has all threads do a part for a time; gives what each operation took. Throws Failure,
    // and Interrupted.
    std::vector<Outcome> run(const Interruption& interruption, Part part, std::size_t size,
                             std::chrono::duration<double> time) const;

    const std::vector<std::string>& ports() const { return port_names; }

private:
    static void add(std::vector<Outcome>& outcomes, const Measured& measured);

    std::vector<std::unique_ptr<BenchWork>> works;
    std::vector<std::string> port_names;
};

} // namespace velmo::cli

#endif
