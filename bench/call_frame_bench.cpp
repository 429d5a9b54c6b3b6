// What the library adds to a remote call.
//
// Everything runs on one processor, the server included: otherwise waking up the
// other one would cost more than what is measured. The library and the bare stub
// take turns within each iteration, so that what the machine does meanwhile meets
// both; the counter "ratio" is the median over the turns.

#include <benchmark/benchmark.h>

#include <sched.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vlReferenceContainer.h"
#include "vl_api.h"

namespace {

using velmo::tests::SettingsFile;
using velmo::tests::Velmod;
using Clock = std::chrono::steady_clock;

constexpr unsigned int port = 1;
constexpr int turn = 200; // packets a turn; a port holds more

// A server, and the settings that name it as this host's own.
struct Server {
    Velmod velmod;
    SettingsFile settings{"local=\"S\"", {{"S", velmod.naming_url()}}};

    Server() { vl_create_port("bench", port, 0, nullptr, nullptr); }

    static Server& running()
    {
        static Server server;
        return server;
    }
};

void drain()
{
    void* data = nullptr;
    unsigned int length = 0;
    while (vl_receive_packetv(port, nullptr, &data, &length, 0, nullptr, nullptr) == VL_OK)
        vl_free_memory(&data);
}

// Nanoseconds that a call takes, over one turn.
template <class Call>
double time_of(Call call)
{
    const auto start = Clock::now();
    for (int i = 0; i < turn; ++i)
        call();
    const std::chrono::duration<double, std::nano> spent = Clock::now() - start;
    drain();
    return spent.count() / turn;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

void cached_reference(benchmark::State& state)
{
    Server::running();
    vlReferenceContainer* registry = vlReferenceContainer::instance();
    for (auto _ : state) {
        Velmo::DT_PORT_SVC::Port_Factory_var reference =
            registry->GetPortReferenceWithServerName("S", nullptr);
        benchmark::DoNotOptimize(reference.in());
    }
}
BENCHMARK(cached_reference);

void send_packet(benchmark::State& state)
{
    Server::running();
    const std::vector<char> packet(static_cast<std::size_t>(state.range(0)), 'x');
    const int size = static_cast<int>(packet.size());
    // The library's own reference, and so with the same time-outs.
    Velmo::DT_PORT_SVC::Port_Factory_var stub =
        vlReferenceContainer::instance()->GetPortReferenceWithServerName("S", nullptr);

    int failures = 0;
    std::vector<double> library, bare, ratio;
    for (auto _ : state) {
        library.push_back(time_of([&] {
            failures +=
                vl_send_packet(port, packet.data(), size, 0, nullptr, nullptr) != VL_OK;
        }));
        bare.push_back(time_of([&] {
            Velmo::DATA_BUFFER data;
            data.length(static_cast<CORBA::ULong>(size));
            std::memcpy(data.get_buffer(), packet.data(), packet.size());
            failures += stub->send_packet(port, data, 0) != VL_OK;
        }));
        ratio.push_back(library.back() / bare.back());
    }
    if (failures)
        state.SkipWithError("a packet was not accepted");
    state.counters["library_ns"] = median(library);
    state.counters["stub_ns"] = median(bare);
    state.counters["ratio"] = median(ratio);
}
BENCHMARK(send_packet)->Arg(64)->Arg(4096)->Arg(65536)->Iterations(50);

} // namespace

int main(int argc, char** argv)
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(0, &one);
    sched_setaffinity(0, sizeof one, &one);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
