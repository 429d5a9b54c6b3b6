// Contenders. What becomes of their data is tested in ../api/outgoing_data_test.cpp.

#include <climits>

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

class RegisterContenderTest : public ServerTest {
protected:
    RegisterContenderTest() { home->answer("regist_contender", 0); }

    static int regist(const void* data, int size, const char* role,
                      const char* server = nullptr)
    {
        return vl_regist_contender("group", "one", data, size, role, 5, server, nullptr);
    }

    static Calls without_data(const std::string& role)
    {
        return {"regist_contender(\"group\", \"one\", \"\", \"" + role + "\", 5)"};
    }
};

TEST_F(RegisterContenderTest, sends_its_arguments_in_the_remote_order)
{
    home->answer("regist_contender", 4003);
    EXPECT_EQ(vl_regist_contender("gr\xc3\xb6\xc3\x9f", "b\t\x01", "state", 4, "role",
                                  INT_MIN, nullptr, nullptr),
              4003);
    EXPECT_EQ(home->calls(), Calls{"regist_contender(\"gr\xc3\xb6\xc3\x9f\", \"b\t\x01\", "
                                   "\"stat\", \"role\", -2147483648)"});
}

TEST_F(RegisterContenderTest, sends_null_strings_as_empty_ones)
{
    EXPECT_EQ(
        vl_regist_contender(nullptr, nullptr, nullptr, 0, nullptr, 5, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), Calls{"regist_contender(\"\", \"\", \"\", \"\", 5)"});
}

TEST_F(RegisterContenderTest, with_data_and_no_role_sends_an_empty_sequence_of_any_size)
{
    for (const int size : {5, 0, -1, INT_MAX, INT_MIN}) {
        home->forget_calls();
        EXPECT_EQ(regist("state", size, nullptr), 0);
        EXPECT_EQ(home->calls(), without_data(""));
    }
}

TEST_F(RegisterContenderTest, without_data_sends_an_empty_sequence_and_reads_no_size)
{
    for (const int size : {5, 0, -1, INT_MAX, INT_MIN}) {
        home->forget_calls();
        EXPECT_EQ(regist(nullptr, size, "role"), 0);
        EXPECT_EQ(home->calls(), without_data("role"));
    }
}

TEST_F(RegisterContenderTest, with_both_and_size_0_sends_an_empty_sequence)
{
    EXPECT_EQ(regist("state", 0, "role"), 0);
    EXPECT_EQ(home->calls(), without_data("role"));
}

TEST_F(RegisterContenderTest, with_an_empty_role_sends_the_data)
{
    EXPECT_EQ(regist("state", 5, ""), 0);
    EXPECT_EQ(home->calls(),
              Calls{"regist_contender(\"group\", \"one\", \"state\", \"\", 5)"});
}

// A copy of so much from there would not go well.
TEST_F(RegisterContenderTest, without_any_server_gives_3000_before_data_are_copied)
{
    set_own_servers({""});
    const void* const nowhere = reinterpret_cast<const void*>(16);
    EXPECT_EQ(regist(nowhere, INT_MAX, "role"), 3000);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(naming.lookups().empty());
}

// vl_update_contender() and vl_out_contend() take the same arguments.
struct Standing {
    const char* remote;
    int (*call)(const char*, const char*, const char*, const char*, const char*);
};

void PrintTo(const Standing& standing, std::ostream* out)
{
    *out << standing.remote;
}

class StandingTest : public ServerTest, public ::testing::WithParamInterface<Standing> {
protected:
    static Calls seen(const std::string& arguments)
    {
        return {GetParam().remote + ("(" + arguments + ")")};
    }
};

INSTANTIATE_TEST_SUITE_P(Operations, StandingTest,
                         ::testing::Values(Standing{"update_contender",
                                                    vl_update_contender},
                                           Standing{"out_contend", vl_out_contend}),
                         [](const auto& test) { return std::string(test.param.remote); });

TEST_P(StandingTest, sends_the_first_two_arguments_alone)
{
    home->answer(GetParam().remote, 4003);
    EXPECT_EQ(GetParam().call("gr\xc3\xb6\xc3\x9f", "b\t\x01", "third", nullptr, nullptr),
              4003);
    EXPECT_EQ(home->calls(), seen("\"gr\xc3\xb6\xc3\x9f\", \"b\t\x01\""));
}

TEST_P(StandingTest, sends_null_strings_as_empty_ones)
{
    home->answer(GetParam().remote, 0);
    EXPECT_EQ(GetParam().call(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), seen("\"\", \"\""));
}

TEST_P(StandingTest, gives_the_same_result_whatever_the_third_argument)
{
    home->answer(GetParam().remote, 5);
    const char* const unreadable = reinterpret_cast<const char*>(16);
    for (const char* third : {static_cast<const char*>(nullptr), "", "third", unreadable}) {
        home->forget_calls();
        EXPECT_EQ(GetParam().call("group", "one", third, nullptr, nullptr), 5);
        EXPECT_EQ(home->calls(), seen("\"group\", \"one\""));
        EXPECT_EQ(GetParam().call("group", "one", third, "unknown", nullptr), 99);
    }
}

TEST_P(StandingTest, takes_server_and_realm_from_the_fourth_and_fifth_argument)
{
    home.bind("another", "alpha");
    home->answer(GetParam().remote, 0);
    EXPECT_EQ(GetParam().call("group", "one", "home", "another", "alpha"), 0);
    EXPECT_EQ(naming.lookups(),
              (std::vector<NamingStandIn::Lookup>{
                  {"another", service_name("alpha", keys::contention_service)}}));
}

} // namespace

} // namespace velmo::tests
