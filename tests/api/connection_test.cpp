// Whether a server can be reached, and the end of the middleware's use.

#include <future>

#include "tests/support/library_test.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

using Names = std::vector<std::string>;

// Both functions of the same behaviour.
class MidConnectTest : public LibraryTest,
                       public ::testing::WithParamInterface<const char*> {
protected:
    static int connect(const char* server)
    {
        return GetParam() == std::string("vl_mid_connect") ? vl_mid_connect(server)
                                                           : vl_mid_is_connect(server);
    }
};

INSTANTIATE_TEST_SUITE_P(Either, MidConnectTest,
                         ::testing::Values("vl_mid_connect", "vl_mid_is_connect"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(MidConnectTest, without_any_server_gives_3000_and_never_asks_the_naming_client)
{
    set_own_servers({""});
    EXPECT_EQ(connect(nullptr), 3000);
    EXPECT_EQ(naming.connection_checks(), Names{});
}

TEST_P(MidConnectTest, an_empty_name_without_default_server_asks_about_the_empty_name)
{
    set_own_servers({""});
    EXPECT_EQ(connect(""), 3001);
    EXPECT_EQ(naming.connection_checks(), Names{""});
}

TEST_P(MidConnectTest, a_server_whose_naming_service_answers_gives_0)
{
    naming.set_reachable({"alpha"});
    EXPECT_EQ(connect("alpha"), 0);
    EXPECT_EQ(naming.connection_checks(), Names{"alpha"});
}

TEST_P(MidConnectTest, a_server_whose_naming_service_does_not_answer_gives_3001)
{
    naming.set_reachable({"alpha"});
    EXPECT_EQ(connect("beta"), 3001);
    EXPECT_EQ(naming.connection_checks(), Names{"beta"});
}

TEST_P(MidConnectTest, no_name_and_an_empty_name_mean_the_first_own_server)
{
    set_own_servers({"alpha", "beta"});
    naming.set_reachable({"alpha"});
    EXPECT_EQ(connect(nullptr), 0);
    EXPECT_EQ(connect(""), 0);
    EXPECT_EQ(naming.connection_checks(), (Names{"alpha", "alpha"}));
}

TEST_P(MidConnectTest, keeps_nothing_and_resolves_nothing)
{
    naming.set_reachable({"alpha"});
    EXPECT_EQ(connect("alpha"), 0);
    naming.set_reachable({});
    EXPECT_EQ(connect("alpha"), 3001);
    EXPECT_TRUE(naming.lookups().empty());
    EXPECT_TRUE(registry().serverMap.empty());
}

TEST_P(MidConnectTest, still_answers_after_vl_mid_disconnect)
{
    naming.set_reachable({"alpha"});
    EXPECT_EQ(vl_mid_disconnect(), 0);
    EXPECT_EQ(connect("alpha"), 0);
    EXPECT_EQ(connect("beta"), 3001);
}

class MidDisconnectTest : public LibraryTest {};

TEST_F(MidDisconnectTest, gives_0_both_times)
{
    EXPECT_EQ(vl_mid_disconnect(), 0);
    EXPECT_EQ(vl_mid_disconnect(), 0);
}

TEST_F(MidDisconnectTest, contacts_nothing_and_does_not_end_the_naming_client)
{
    const int exits = naming_exits();
    vl_mid_disconnect();
    EXPECT_EQ(naming_exits(), exits);
    EXPECT_TRUE(naming.lookups().empty());
    EXPECT_TRUE(naming.connection_checks().empty());
}

TEST_F(MidDisconnectTest, is_called_by_many_threads_at_once)
{
    std::vector<std::future<int>> threads;
    for (int i = 0; i < 8; ++i)
        threads.push_back(std::async(std::launch::async, vl_mid_disconnect));
    for (auto& thread : threads)
        EXPECT_EQ(thread.get(), 0);
}

} // namespace

} // namespace velmo::tests
