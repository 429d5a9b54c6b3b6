// velmo bench: how long calls take, and how many there are in a second.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "cli/bench_threads.h"
#include "cli/groups.h"
#include "cli/interruption.h"
#include "cli/progress.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

constexpr struct {
    const char* name;
    double share;
} quantiles[] = {{"p50", .5}, {"p90", .9}, {"p99", .99}, {"p99_9", .999}};

double microseconds(Histogram::Duration duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

std::string decimal(const char* format, double number)
{
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

Json document_of(const Outcome& outcome)
{
    Json latency;
    for (const auto& [name, share] : quantiles)
        latency[name] = microseconds(outcome.times.quantile(share));
    latency["max"] = microseconds(outcome.times.max());
    Json histogram = Json::array();
    for (const Histogram::Bucket& bucket : outcome.times.buckets())
        histogram.push_back(
            {{"below_us", microseconds(bucket.end)}, {"count", bucket.count}});
    return {{"operation", operation_names()[static_cast<std::size_t>(outcome.operation)]},
            {"size", outcome.size},
            {"calls", outcome.times.count()},
            {"per_second", outcome.per_second},
            {"bytes_per_second", outcome.per_second * static_cast<double>(outcome.size)},
            {"latency_us", latency},
            {"histogram", histogram}};
}

std::vector<Cell> row_of(const Outcome& outcome)
{
    std::vector<Cell> row = {
        operation_names()[static_cast<std::size_t>(outcome.operation)],
        std::to_string(outcome.size), std::to_string(outcome.times.count()),
        decimal("%.0f", outcome.per_second),
        decimal("%.2f", outcome.per_second * static_cast<double>(outcome.size) / 1e6)};
    for (const auto& quantile : quantiles)
        row.push_back(
            decimal("%.1f", microseconds(outcome.times.quantile(quantile.share))));
    row.push_back(decimal("%.1f", microseconds(outcome.times.max())));
    return row;
}

struct Command {
    void declare(CLI::App& app)
    {
        app.add_option("--operation", wanted,
                       "set, get (a point), send or receive (packets); repeatable (all)")
            ->check(CLI::IsMember(operation_names()).description(""))
            ->allow_extra_args(false)
            ->type_name("NAME");
        app.add_option("--size", sizes, "Bytes of a value or packet; repeatable (64, 4096)")
            ->check(CLI::Range(0, 1 << 30).description(""))
            ->allow_extra_args(false)
            ->type_name("BYTES");
        app.add_option("--threads", threads, "Threads that call at the same time")
            ->capture_default_str()
            ->check(CLI::Range(1, 1000).description(""))
            ->type_name("N");
        app.add_option("--duration", seconds, "Seconds for each operation and size")
            ->capture_default_str()
            ->check(CLI::Range(0.001, 86400.).description(""))
            ->type_name("SECONDS");
    }

    void run(Session& session) const
    {
        const Interruption interruption;
        const bool packets = wants(Operation::send) || wants(Operation::receive);
        std::vector<Outcome> outcomes;
        std::vector<std::string> ports;
        {
            const Bench bench(session, threads,
                              wants(Operation::set) || wants(Operation::get), packets);
            ports = bench.ports();
            if (!ports.empty() && !session.out.is_json())
                session.out.message("ports cannot be removed: " + in_quotes(ports.front()) +
                                    (ports.size() > 1 ? " and its like stay" : " stays") +
                                    " on the server");
            outcomes = measure(interruption, bench, packets);
        }
        report(session, outcomes, ports);
    }

private:
    bool wants(Operation operation) const
    {
        const std::string& name = operation_names()[static_cast<std::size_t>(operation)];
        return wanted.empty() ||
               std::find(wanted.begin(), wanted.end(), name) != wanted.end();
    }

    std::vector<Outcome> measure(const Interruption& interruption, const Bench& bench,
                                 bool packets) const
    {
        // Packets take turns: the time is for each of the two directions.
        std::vector<std::pair<Bench::Part, double>> parts;
        if (wants(Operation::set))
            parts.emplace_back(&BenchWork::set, seconds);
        if (wants(Operation::get))
            parts.emplace_back(&BenchWork::get, seconds);
        if (packets)
            parts.emplace_back(&BenchWork::packets, 2 * seconds);
        Progress progress(true, "measuring", parts.size() * sizes.size());
        std::vector<Outcome> all;
        for (const std::size_t size : sizes)
            for (const auto& [part, time] : parts) {
                for (const Outcome& outcome : bench.run(
                         interruption, part, size, std::chrono::duration<double>(time)))
                    if (wants(outcome.operation) && outcome.times.count() > 0)
                        all.push_back(outcome);
                progress.step();
            }
        return all;
    }

    void report(Session& session, const std::vector<Outcome>& outcomes,
                const std::vector<std::string>& ports) const
    {
        Table table({"OPERATION", "SIZE", "CALLS", "CALLS/S", "MB/S", "P50 US", "P90 US",
                     "P99 US", "P99.9 US", "MAX US"});
        Json documents = Json::array();
        for (const Outcome& outcome : outcomes) {
            table.add(row_of(outcome));
            documents.push_back(document_of(outcome));
        }
        session.out.result({{"threads", threads},
                            {"duration_s", seconds},
                            {"results", documents},
                            {"ports_left", ports}},
                           table);
    }

    std::vector<std::string> wanted;
    std::vector<std::size_t> sizes = {64, 4096};
    std::size_t threads = 1;
    double seconds = 1;
};

} // namespace

void add_bench_command(Program& program)
{
    Group group(program, "bench", "Measures how long calls take, and how many a second");
    group.itself<Command>();
}

} // namespace velmo::cli
