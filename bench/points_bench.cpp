// What points cost: memory each, and the time of reading and writing one, with few and
// with many of them.
//
// No client and no broker: the model alone. Memory is what the allocator has handed
// out, its own overhead included.

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <memory>
#include <string>

#include "server/model/point_service.h"
#include "vl_result.h"

namespace {

using namespace velmo::model;

constexpr std::size_t value_bytes = 64;

Data any_value()
{
    return std::make_shared<const Bytes>(value_bytes, std::uint8_t{'x'});
}

// Longer than what a string holds without an allocation of its own.
std::string name_of(std::size_t number)
{
    return "plant/unit/point " + std::to_string(number);
}

struct Filled {
    TemplateCatalogue templates{value_bytes};
    PointService points{templates};
    bool complete = true;

    explicit Filled(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            complete = complete && points.create(name_of(i), "bytes") == VL_OK &&
                       points.set(name_of(i), any_value()) == VL_OK;
    }
};

std::size_t count_of(const benchmark::State& state)
{
    return static_cast<std::size_t>(state.range(0));
}

void memory(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        const Filled filled(count_of(state));
        const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
        if (!filled.complete)
            state.SkipWithError("a point was not created");
        bytes = static_cast<double>(after - before);
    }
    state.counters["bytes_a_point"] = bytes / static_cast<double>(count_of(state));
}
BENCHMARK(memory)->Arg(1000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// Points in an order that no cache foresees.
template <class Call>
void time_each(benchmark::State& state, Call call)
{
    Filled filled(count_of(state));
    const std::size_t step = 7919; // prime: every point comes once in a round
    std::size_t number = 0, failures = 0;
    for (auto _ : state) {
        number = (number + step) % count_of(state);
        failures += call(filled.points, name_of(number)) != VL_OK;
    }
    if (failures != 0)
        state.SkipWithError("a call failed");
}

void get(benchmark::State& state)
{
    time_each(state, [](PointService& points, const std::string& name) {
        Data data;
        const auto result = points.get(name, data);
        benchmark::DoNotOptimize(data);
        return result;
    });
}
BENCHMARK(get)->Arg(1000)->Arg(1000000);

void set(benchmark::State& state)
{
    time_each(state, [](PointService& points, const std::string& name) {
        return points.set(name, any_value());
    });
}
BENCHMARK(set)->Arg(1000)->Arg(1000000);

void names(benchmark::State& state)
{
    const Filled filled(count_of(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(filled.points.names());
}
BENCHMARK(names)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A visit to all points as they are at one moment.
void moment(benchmark::State& state)
{
    Filled filled(count_of(state));
    std::size_t visited = 0;
    for (auto _ : state)
        filled.points.visit_moment([&](const PointImage&) { ++visited; });
    state.counters["points_per_second"] =
        benchmark::Counter(static_cast<double>(visited), benchmark::Counter::kIsRate);
}
BENCHMARK(moment)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
