#include "cli/bench_threads.h"

#include <atomic>
#include <future>

#include <unistd.h>

namespace velmo::cli {

using Clock = std::chrono::steady_clock;

Bench::Bench(const Session& session, std::size_t threads, bool points, bool packets)
{
    const std::string run =
        "velmo-bench/" + std::to_string(getpid()) + "-" +
        std::to_string(std::chrono::system_clock::now().time_since_epoch().count());
    for (std::size_t i = 0; i < threads; ++i) {
        const std::string name = run + "/" + std::to_string(i);
        works.push_back(std::make_unique<BenchWork>(session, name, points, packets));
        if (packets)
            port_names.push_back(name);
    }
}

std::vector<Outcome> Bench::run(const Interruption& interruption, Part part,
                                std::size_t size, std::chrono::duration<double> time) const
{
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    std::atomic<bool> broken{false};
    const auto done = [&] {
        return broken || interruption.happened() || Clock::now() >= end;
    };
    std::vector<std::future<Measured>> threads;
    for (const auto& work : works)
        threads.push_back(std::async(std::launch::async, [&, part] {
            Measured measured(operation_count);
            try {
                (*work.*part)(size, done, measured);
            } catch (...) { // for whoever waits for this thread
                broken = true;
                throw;
            }
            return measured;
        }));
    for (auto& thread : threads)
        thread.wait();
    std::vector<Outcome> outcomes;
    for (std::size_t i = 0; i < operation_count; ++i)
        outcomes.push_back({static_cast<Operation>(i), size, 0, {}});
    for (auto& thread : threads)
        add(outcomes, thread.get());
    interruption.wait(std::chrono::milliseconds(0));
    return outcomes;
}

void Bench::add(std::vector<Outcome>& outcomes, const Measured& measured)
{
    for (std::size_t i = 0; i < operation_count; ++i) {
        outcomes[i].times.add(measured[i]);
        const std::chrono::duration<double> busy = measured[i].sum();
        if (busy.count() > 0)
            outcomes[i].per_second +=
                static_cast<double>(measured[i].count()) / busy.count();
    }
}

} // namespace velmo::cli
