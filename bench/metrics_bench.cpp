// What measuring a call costs in the server, with and without metrics.
#include <benchmark/benchmark.h>

#include "server/metrics/call_metrics.h"

namespace {

using namespace velmo::metrics;

CallMetrics counted;

void measure(benchmark::State& state, CallMetrics* metrics)
{
    for (auto _ : state) {
        Measurement measurement(metrics, Operation::get_DTP);
        measurement.ended(Outcome::success);
        benchmark::ClobberMemory();
    }
}

void with_metrics(benchmark::State& state)
{
    measure(state, &counted);
}

void without_metrics(benchmark::State& state)
{
    CallMetrics* none = nullptr;
    benchmark::DoNotOptimize(none);
    measure(state, none);
}

BENCHMARK(without_metrics);
BENCHMARK(with_metrics)->ThreadRange(1, 2);

} // namespace

BENCHMARK_MAIN();
