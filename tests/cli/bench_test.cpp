#include <csignal>

#include "tests/cli/velmo.h"
#include "tests/support/terminal.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Bench : public CommandTest {
protected:
    static json points() { return run_json("point ls")["points"]; }
    static json ports() { return run_json("port ls")["ports"]; }
};

TEST_F(Bench, MeasuresEachOperationAndSize)
{
    const json all = run_json("bench --duration 0.02 --threads 2 --size 0 --size 100");
    EXPECT_EQ(all["threads"], 2);
    std::string measured;
    for (const json& result : all["results"]) {
        measured += result["operation"].get<std::string>() + " " +
                    std::to_string(result["size"].get<int>()) + " ";
        std::uint64_t counted = 0;
        for (const json& bucket : result["histogram"])
            counted += bucket["count"].get<std::uint64_t>();
        EXPECT_EQ(counted, result["calls"]);
        EXPECT_GT(result["per_second"], 0);
        const json& latency = result["latency_us"];
        EXPECT_LE(latency["p50"], latency["p99"]);
        EXPECT_LE(latency["p99"], latency["max"]);
    }
    EXPECT_EQ(measured,
              "set 0 get 0 send 0 receive 0 set 100 get 100 send 100 receive 100 ");
}

TEST_F(Bench, LeavesNothingBehindButPorts)
{
    const json left = run_json("bench --duration 0.02 --threads 2")["ports_left"];
    EXPECT_EQ(points(), json::array());
    const json there = ports();
    ASSERT_EQ(there.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(there[i]["port"], left[i]);
        EXPECT_EQ(there[i]["depth"], 0);
    }
}

TEST_F(Bench, WithoutPacketsNeedsNoPorts)
{
    const json all = run_json("bench --duration 0.02 --operation set --operation get");
    EXPECT_EQ(all["ports_left"], json::array());
    EXPECT_EQ(all["results"].size(), 4u);
    EXPECT_EQ(ports(), json::array());
}

TEST_F(Bench, TidiesUpWhenInterrupted)
{
    Process bench(velmo_command({"bench", "--operation", "set", "--duration", "3600"}),
                  plain_environment());
    ASSERT_TRUE(eventually([] { return points().size() == 1; }));
    bench.signal(SIGINT);
    EXPECT_EQ(bench.wait(), 130) << bench.err();
    EXPECT_EQ(bench.out(), "");
    EXPECT_EQ(points(), json::array());
}

TEST_F(Bench, FailsWithTheCallThatFails)
{
    const Result result =
        run_velmo("bench --operation set --size 200000000 --duration 0.02");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "cannot write a point: ")) << result.err;
    EXPECT_EQ(points(), json::array());
}

TEST_F(Bench, ShowsAPersonATable)
{
    Terminal terminal(velmo_command({"bench", "--duration", "0.02", "--operation", "send"}),
                      plain_environment());
    EXPECT_TRUE(terminal.wait_for("stays on the server"));
    EXPECT_TRUE(terminal.wait_for("OPERATION"));
    EXPECT_EQ(terminal.wait(), 0);
}

TEST_F(Bench, MisuseIsTold)
{
    for (const char* command :
         {"bench --threads 0", "bench --size -1", "bench --duration 0",
          "bench --operation delete", "bench all"})
        EXPECT_EQ(run_velmo(command).status, 2) << command;
}

} // namespace
