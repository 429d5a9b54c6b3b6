// What many clients do in an hour, in less: whether it costs the library's process or the
// server anything that stays. VELMO_LOAD_MINUTES has it go on for that long.
#include <malloc.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <list>
#include <thread>

#include <gtest/gtest.h>

#include "tests/e2e/calls.h"
#include "tests/load/client.h"
#include "tests/load/figures.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;
using Clock = std::chrono::steady_clock;

namespace {

constexpr unsigned int clients_together = 64;
constexpr int phases_to_warm_up = 3; // until buffers and arenas have grown
constexpr int phases = 12;           // that are measured

// An hour of a call a second by each client; for sanitizers a tenth of that.
constexpr unsigned int calls_in_a_round = 27;
constexpr unsigned int rounds_in_a_phase =
    3600 / (sanitized ? 10 : 1) / calls_in_a_round / phases;

// Arenas come and go by less, and velmod keeps of what it has freed. What is lost in every
// round shows above: half a kilobyte of each is more even in the short form.
constexpr long long memory_noise_kib = 4096;

// Names are resolved over connections of their own. How many of each there are depends on
// how many clients happened to call at one moment.
constexpr std::size_t most_connections = 2 * clients_together;
constexpr std::size_t most_threads = most_connections + clients_together;
constexpr long long kib_of_a_connection = 160; // of either side, two buffers included
constexpr std::size_t count_noise = 8;

// What a phase waits for.
class Goal {
public:
    Goal()
    {
        if (const char* minutes = std::getenv("VELMO_LOAD_MINUTES"))
            duration = std::chrono::duration_cast<Clock::duration>(
                std::chrono::duration<double, std::ratio<60>>(std::atof(minutes)) / phases);
    }

    // Whether a client that has done so many rounds since then may rest.
    bool is_reached(unsigned int rounds, Clock::time_point begin) const
    {
        return duration.count() > 0 ? Clock::now() - begin >= duration
                                    : rounds == rounds_in_a_phase;
    }

private:
    Clock::duration duration{0}; // 0: a number of rounds
};

class Mix : public ::testing::Test {
protected:
    Mix()
    {
        for (unsigned int number = 0; number < clients_together; ++number)
            clients.emplace_back(number);
    }

    // Does that for each client, on threads of their own, to the end.
    void together(const std::function<void(Client&)>& what)
    {
        std::list<std::thread> threads;
        for (Client& client : clients)
            threads.emplace_back([&what, &client] { what(client); });
        for (std::thread& thread : threads)
            thread.join();
    }

    // Each client has a connection of its own from now on, since all wait at once.
    void connect_all()
    {
        std::thread waiting(
            [this] { together([](Client& client) { client.wait_for_packet(); }); });
        const bool all_wait = eventually([&] {
            return figures_of(velmod.process().pid()).descriptors >= clients_together;
        });
        for (const Client& client : clients)
            client.end_waiting();
        waiting.join();
        ASSERT_TRUE(all_wait);
    }

    void run_phase()
    {
        const Goal goal;
        const Clock::time_point begin = Clock::now();
        together([&](Client& client) {
            for (unsigned int round = 0; !goal.is_reached(round, begin); ++round)
                client.do_round();
        });
    }

    void take_figures()
    {
        library.push_back(figures_of(getpid()));
        server.push_back(figures_of(velmod.process().pid()));
        heap_kib.push_back(mallinfo2().uordblks / 1024);
    }

    // Prints what was measured, as a line of JSON.
    void report(std::chrono::duration<double> took)
    {
        Client::Latencies all;
        std::uint64_t calls = 0;
        for (const Client& client : clients) {
            calls += client.operations();
            for (const auto& [kind, latencies] : client.latencies()) {
                all[kind].add(latencies);
                all["any"].add(latencies);
            }
        }
        nlohmann::json result{{"clients", clients_together},
                              {"calls", calls},
                              {"seconds", took.count()},
                              {"per_second", static_cast<double>(calls) / took.count()},
                              {"library", to_json(library)},
                              {"library_heap_kib", heap_kib},
                              {"server", to_json(server)}};
        for (const auto& [kind, latencies] : all) {
            const auto microseconds = [&latencies = latencies](double share) {
                return std::chrono::duration<double, std::micro>(latencies.quantile(share))
                    .count();
            };
            result["latency_us"][kind] = {{"p50", microseconds(.5)},
                                          {"p99", microseconds(.99)},
                                          {"p999", microseconds(.999)},
                                          {"max", microseconds(1)}};
        }
        std::cout << "load: " << result << std::endl;
        RecordProperty("load", result.dump());
    }

    static void expect_no_growth(const std::vector<Figures>& taken, const Series& memory,
                                 const char* whose)
    {
        const long long connections = growth(series_of(taken, &Figures::descriptors));
        if (!sanitized) {
            EXPECT_LE(growth(memory), memory_noise_kib + connections * kib_of_a_connection)
                << whose;
        }
    }

    static void expect_few(const Figures& now, const Figures& before, const char* whose)
    {
        EXPECT_LE(now.descriptors, before.descriptors + most_connections + count_noise)
            << whose;
        EXPECT_LE(now.threads, before.threads + most_threads + count_noise) << whose;
    }

    // No wait and no lease ends on a busy machine. Each thread's cache of free memory would
    // go on growing for longer than the test takes.
    Velmod velmod{
        {"--max-wait", "86400000", "--lease", "86400000"},
        {{"GLIBC_TUNABLES", "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1"}}};
    SettingsFile settings{"local=\"S\" call_timeout_ms=\"0\"",
                          {{"S", velmod.naming_url()}}};
    std::list<Client> clients;
    std::vector<Figures> library;
    std::vector<Figures> server;
    Series heap_kib; // in use, of the library's process
};

TEST_F(Mix, AnHourOfSixtyFourClientsCostsNothingThatStays)
{
    const Figures library_before = figures_of(getpid());
    const Figures server_before = figures_of(velmod.process().pid());
    connect_all();
    for (int i = 0; i < phases_to_warm_up; ++i)
        run_phase();
    const Clock::time_point begin = Clock::now();
    for (int i = 0; i < phases; ++i) {
        run_phase();
        take_figures();
    }
    report(Clock::now() - begin);
    expect_no_growth(library, heap_kib, "the library's heap");
    expect_no_growth(server, series_of(server, &Figures::memory_kib), "the server");
    expect_few(library.back(), library_before, "the library's process");
    expect_few(server.back(), server_before, "the server");
    EXPECT_EQ(all_points(), Names());
    EXPECT_EQ(velmod.stop(), 0);
}

} // namespace
