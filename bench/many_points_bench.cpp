// What reading and writing a point take with a thousand, a hundred thousand and a million
// of them at the server; and what listing a million names takes.
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "bench/measure.h"
#include "bench/peak_memory.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vl_api.h"
#include "vl_result.h"
#include "vl_util.h"

namespace {

using namespace velmo::bench;
using velmo::tests::SettingsFile;
using velmo::tests::Velmod;

constexpr std::size_t counts[] = {1000, 100000, 1000000};
constexpr std::size_t few = 50; // what caches hold, of any number of points
constexpr const char* set_name = "plant-1/unit-1";

std::string member(std::size_t number)
{
    return "line-1/value " + std::to_string(1000000 + number);
}

std::string point(std::size_t number)
{
    return set_name + ("/" + member(number));
}

void expect_ok(int result)
{
    if (result != VL_OK)
        throw std::runtime_error("result " + std::to_string(result));
}

// Servers by their numbers of points, which name them.
struct Servers {
    Velmod velmods[3];
    SettingsFile settings{"",
                          {{"1000", velmods[0].naming_url()},
                           {"100000", velmods[1].naming_url()},
                           {"1000000", velmods[2].naming_url()}}};

    Servers()
    {
        std::vector<char> value(64, 'x');
        for (const std::size_t count : counts) {
            const std::string server = std::to_string(count);
            std::string members;
            for (std::size_t i = 0; i < count; ++i)
                members.append(member(i)).append("\n");
            expect_ok(vl_create_set(set_name, "bytes", members.data(),
                                    static_cast<int>(members.size()), server.c_str(),
                                    nullptr));
            for (std::size_t i = 0; i < count; ++i)
                expect_ok(vl_set_data_template_point(point(i).c_str(), value.data(), 64,
                                                     server.c_str(), nullptr));
        }
    }
};

enum class Operation { get, set };

// among: how many of the points are used, in an order that no cache foresees.
double time_at(std::size_t count, std::size_t among, Operation operation)
{
    static std::size_t number = 0;
    const std::string server = std::to_string(count);
    std::vector<char> value(64, 'x');
    return time_of(400, [&] {
        number += 7919; // prime: every point comes once in a round
        const std::string name = point(number % among * (count / among));
        expect_ok(operation == Operation::get
                      ? vl_get_data_template_point(name.c_str(), value.data(), 64,
                                                   server.c_str(), nullptr)
                      : vl_set_data_template_point(name.c_str(), value.data(), 64,
                                                   server.c_str(), nullptr));
    });
}

void measure(Operation operation)
{
    const char* const name = operation == Operation::get ? "get" : "set";
    std::vector<double> base, again, all[3], same_few[3];
    for (int turn = 0; turn < 40; ++turn) {
        base.push_back(time_at(counts[0], few, operation));
        for (std::size_t i = 1; i < 3; ++i) {
            same_few[i].push_back(time_at(counts[i], few, operation));
            all[i].push_back(time_at(counts[i], counts[i], operation));
        }
    }
    for (std::size_t i = 1; i < 3; ++i) {
        const std::string of =
            std::string(name) + " with " + std::to_string(counts[i]) + " points, over 1000";
        nlohmann::json more = bar(1.1, "lower");
        more["ns"] = {{"few", median(base)}, {"many", median(same_few[i])}};
        print({"points", of + ", the same 50 again and again", "ratio",
               ratio(same_few[i], base), more});
        print({"points",
               of + ", all of them in turn",
               "ratio",
               ratio(all[i], base),
               {{"ns", {{"few", median(base)}, {"many", median(all[i])}}}}});
    }
}

void list_names(Velmod& velmod)
{
    constexpr double most = 2.2; // times the names' bytes
    const std::size_t million = counts[2];
    const auto bytes = static_cast<double>(million * point(0).size());
    std::vector<double> milliseconds;
    double client_bytes = 0, server_bytes = 0;
    for (int turn = 0; turn < 3; ++turn) {
        PeakMemory client(getpid()), server(velmod.process().pid());
        NameList list{};
        milliseconds.push_back(
            time_of(1,
                    [&] { expect_ok(vl_get_all_point_name(&list, "1000000", nullptr)); }) /
            1e6);
        client_bytes = std::max(client_bytes, client.grown());
        server_bytes = std::max(server_bytes, server.grown());
        if (list.count != million)
            throw std::runtime_error("names are missing");
        for (unsigned i = 0; i < list.count; ++i)
            vl_string_free(list.names[i]);
        free(list.names);
    }
    print(
        {"names", "listing 1000000 names", "ms", median(milliseconds), {{"bytes", bytes}}});
    print({"names", "memory of the client, over the names' bytes", "ratio",
           client_bytes / bytes, bar(most, "lower")});
    print({"names", "memory of velmod, over the names' bytes", "ratio",
           server_bytes / bytes, bar(most, "lower")});
}

} // namespace

int main()
{
    pin_to_one_processor();
    Servers servers;
    measure(Operation::get);
    measure(Operation::set);
    list_names(servers.velmods[2]);
    return 0;
}
