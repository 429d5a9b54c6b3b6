// What the library adds to a remote call: beside the same call on the bare stub, with few
// and with many servers known, on one thread and on several; and what else it does.

#include <cstdlib>
#include <iostream>
#include <optional>

#include "bench/measure.h"
#include "bench/points_of_a_server.h"
#include "tests/support/process.h"

namespace {

using namespace velmo::bench;
using velmo::tests::Process;

constexpr const char* group = "library";
constexpr const char* first_call_option = "--first-call";

struct Transport {
    const char* name;
    std::vector<std::string> options; // velmod's
};
const Transport tcp{"TCP", {"--no-unix"}};
const Transport local{"unix", {}};

// Short, so that a turn seldom meets what else the machine does.
constexpr int calls_a_turn = 40;

void compare_calls(const std::string& name, std::size_t size, PointStub points,
                   std::optional<double> limit)
{
    const std::vector<char> value(size, 'x');
    const int turns = size > 4096 ? 100 : 600;
    std::vector<double> library, bare;
    for (int turn = 0; turn < turns; ++turn) {
        library.push_back(time_of(calls_a_turn, [&] { expect_ok(set_by_library(value)); }));
        bare.push_back(
            time_of(calls_a_turn, [&] { expect_ok(set_by_stub(points, value)); }));
    }
    Row row{group, name, "ratio", ratio(library, bare),
            limit ? bar(*limit, "lower") : nlohmann::json::object()};
    row.more["library_ns"] = median(library);
    row.more["stub_ns"] = median(bare);
    print(row);
}

void one_server(const Transport& transport)
{
    const PointsOfAServer server(transport.options);
    const auto points = server.connect();
    for (const std::size_t size : {64ul, 4096ul, 65536ul})
        compare_calls("over the bare stub, " + in_words(size) + ", " + transport.name, size,
                      points.in(), size == 64 ? std::optional<double>(1.03) : std::nullopt);
}

// Each asked for once, so that the registry has an entry for it.
void many_servers(const Transport& transport)
{
    constexpr int others = 9999, realms = 100;
    std::vector<std::string> options = transport.options;
    for (int i = 0; i < realms; ++i)
        options.insert(options.end(), {"--realm", "R" + std::to_string(i)});
    const PointsOfAServer server(options, others);
    const auto points = server.connect();
    vlReferenceContainer* const registry = vlReferenceContainer::instance();
    for (int i = 0; i < others; ++i) {
        const Velmo::VelmoServiceManager_var manager =
            registry->GetServiceRefrence(PointsOfAServer::other(i).c_str());
    }
    for (int i = 0; i < realms; ++i) {
        const Velmo::DT_POINT_SVC::DT_Point_Factory_var of_realm =
            registry->GetDptReferenceWithServerName("S", ("R" + std::to_string(i)).c_str());
        if (CORBA::is_nil(of_realm.in()))
            throw std::runtime_error("a realm is missing");
    }
    if (registry->serverMap.size() != others + 1)
        throw std::runtime_error("a server is missing");
    compare_calls(std::string("over the bare stub, 10,000 servers, 100 realms, 64 B, ") +
                      transport.name,
                  64, points.in(), 1.05);
}

void threads(const Transport& transport, const std::string& where)
{
    constexpr int count = 4, rounds = 25;
    constexpr std::chrono::milliseconds window{100};
    const PointsOfAServer server(transport.options);
    const auto points = server.connect();
    const std::vector<char> value(64, 'x');
    std::vector<double> library, bare;
    for (int round = 0; round < rounds; ++round) {
        library.push_back(calls_a_second(count, window, [&](std::size_t) {
            return [&] { expect_ok(set_by_library(value)); };
        }));
        bare.push_back(calls_a_second(count, window, [&](std::size_t) {
            return [&] { expect_ok(set_by_stub(points.in(), value)); };
        }));
    }
    Row row{group, "throughput of 4 threads, " + std::string(transport.name) + ", " + where,
            "ratio", ratio(library, bare), bar(0.97, "higher")};
    row.more["library_calls_a_second"] = median(library);
    row.more["stub_calls_a_second"] = median(bare);
    print(row);
}

// In a new process each time; see main().
void first_call(const char* self)
{
    const PointsOfAServer server;
    std::vector<double> times;
    for (int i = 0; i < 15; ++i) {
        Process process({self, first_call_option});
        if (process.wait() != 0)
            throw std::runtime_error(process.err());
        times.push_back(std::stod(process.out()));
    }
    print({group, "first call in a process", "ms", median(times) / 1e6});
}

template <class Call>
void time_alone(const char* name, Call call)
{
    std::vector<double> times;
    for (int turn = 0; turn < 200; ++turn)
        times.push_back(time_of(1000, call));
    print({group, name, "ns", median(times)});
}

void small_functions()
{
    const PointsOfAServer server;
    const auto points = server.connect();
    vlReferenceContainer* const registry = vlReferenceContainer::instance();
    time_alone("a cached reference, had and released", [&] {
        const Velmo::DT_POINT_SVC::DT_Point_Factory_var reference =
            registry->GetDptReferenceWithServerName("S", nullptr);
    });
    time_alone("vl_get_servername", [] { vl_get_servername("own"); });
    time_alone("get_error_string", [] { get_error_string(VL_OK); });
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc == 2 && std::string(argv[1]) == first_call_option) {
        std::vector<char> value(64);
        // There is no such point: the whole way all the same.
        std::cout << time_of(1, [&] { get_by_library(value); }) << '\n';
        return 0;
    }
    for (const Transport& transport : {tcp, local})
        threads(transport, "all processors");
    pin_to_one_processor();
    for (const Transport& transport : {tcp, local}) {
        threads(transport, "one processor");
        one_server(transport);
        many_servers(transport);
    }
    first_call(argv[0]);
    small_functions();
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
