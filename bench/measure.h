// Measuring in turns, and rows of results.
#ifndef VELMO_BENCH_MEASURE_H
#define VELMO_BENCH_MEASURE_H

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

namespace velmo::bench {

// This process and the children that it starts from now on: waking up another processor
// would cost more than what is measured.
void pin_to_one_processor();

double median(std::vector<double> values);

using Nanoseconds = std::chrono::duration<double, std::nano>;

// What so many calls took, each.
double time_of(int calls, const std::function<void()>& call);

// Of threads that call all the time. make_call: makes the call of one of them, on it, from
// its number.
template <class MakeCall>
double calls_a_second(std::size_t threads, std::chrono::milliseconds window,
                      MakeCall make_call)
{
    std::atomic<bool> going{true};
    std::atomic<long> calls{0};
    std::vector<std::thread> all;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < threads; ++i)
        all.emplace_back([&, i] {
            auto call = make_call(i);
            long made = 0;
            for (; going; ++made)
                call();
            calls += made;
        });
    std::this_thread::sleep_for(window);
    going = false;
    for (std::thread& thread : all)
        thread.join();
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    return static_cast<double>(calls) / spent.count();
}

// The median over the turns of one contender's time against that of another in the same
// turn: what the machine does meanwhile meets both.
double ratio(const std::vector<double>& times, const std::vector<double>& others);

// A row of results, as bench/collect reads it. better: "lower" or "higher" than the bar
// is good; rows without a bar are there to be seen.
struct Row {
    std::string group;
    std::string name;
    std::string metric;
    double value;
    nlohmann::json more = nlohmann::json::object(); // fields by name
};
void print(const Row& row);

// For the fields of a row.
nlohmann::json bar(double limit, const char* better);

// "64 B", "1 MiB" ...
std::string in_words(std::size_t bytes);

} // namespace velmo::bench

#endif
