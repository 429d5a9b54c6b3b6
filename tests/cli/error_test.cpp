#include "tests/cli/velmo.h"
#include "vl_result.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

TEST(ErrorCommand, ExplainsACode)
{
    EXPECT_EQ(run_json("error 2003"),
              (json{{"code", 2003},
                    {"name", "WOULD_BLOCK"},
                    {"text", "The queue is full, and the call was not to wait."},
                    {"advice", "wait for room, or see that somebody receives"}}));
    EXPECT_EQ(run_velmo("error 2003").out,
              "WOULD_BLOCK (2003): The queue is full, and the call was not to wait.\n"
              "    wait for room, or see that somebody receives\n");
    EXPECT_EQ(run_velmo("error WOULD_BLOCK").out, run_velmo("error 2003").out);
}

TEST(ErrorCommand, KnowsTheBlockOfFailedCalls)
{
    EXPECT_EQ(run_json("error 99")["name"], "SERVER_NOT_ONLINE");
    EXPECT_EQ(run_json("error 169")["name"], "SERVER_NOT_ONLINE");
    EXPECT_EQ(run_velmo("error 170").status, 2);
    EXPECT_EQ(run_velmo("error -- -1").status, 2);
}

TEST(ErrorCommand, ListsEveryCode)
{
    std::size_t count = 1; // the block
#define COUNT(name, code) ++count;
    VL_RESULT_CODES(COUNT)
#undef COUNT
    const json codes = run_json("error list")["codes"];
    EXPECT_EQ(codes.size(), count);
    EXPECT_TRUE(contains(run_velmo("error list").out, "\n99-169\tSERVER_NOT_ONLINE\t"));
}

} // namespace
