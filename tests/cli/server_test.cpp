#include "tests/cli/velmo.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Server : public CommandTest {
protected:
    // S with a server inside that nobody runs.
    void nest()
    {
        settings.write("<velmo local=\"S\"><server name=\"S\" role=\"master\" naming=\"" +
                       velmod.naming_url() + "\"><server name=\"press\" naming=\"" +
                       naming_url(free_port()) + "\"/></server></velmo>");
    }
};

TEST_F(Server, ListIsATree)
{
    nest();
    const json servers = run_json("server list")["servers"];
    ASSERT_EQ(servers.size(), 2u);
    EXPECT_EQ(servers[0]["name"], "S");
    EXPECT_EQ(servers[0]["parent"], nullptr);
    EXPECT_EQ(servers[0]["role"], "master");
    EXPECT_EQ(servers[0]["positions"], "own master");
    EXPECT_EQ(servers[0]["naming_url"], velmod.naming_url());
    EXPECT_EQ(servers[0]["reachable"], true);
    EXPECT_TRUE(servers[0]["round_trip_ms"].is_number());
    EXPECT_EQ(servers[1]["name"], "press");
    EXPECT_EQ(servers[1]["parent"], "S");
    EXPECT_EQ(servers[1]["reachable"], false);
    EXPECT_EQ(servers[1]["round_trip_ms"], nullptr);
}

TEST_F(Server, ListForProgramsHasRows)
{
    nest();
    const std::string list = good("server list");
    EXPECT_EQ(list.rfind("S\tmaster\town master\tyes\t", 0), 0u) << list;
    EXPECT_TRUE(contains(list, "\npress\t\tchild\tno\t\tcorbaloc")) << list;
}

TEST_F(Server, ListWithoutSettingsHasTheBuiltInOne)
{
    unsetenv("VELMO_SETTINGS");
    const json servers = run_json("server list")["servers"];
    ASSERT_EQ(servers.size(), 1u);
    EXPECT_EQ(servers[0]["name"], "0000");
    EXPECT_EQ(servers[0]["naming_url"], naming_url(2809));
    EXPECT_TRUE(contains(run_velmo("server list").err, "no settings file found"));
}

TEST_F(Server, PingTakesTheTime)
{
    const json answer = run_json("server ping");
    EXPECT_EQ(answer["server"], "S");
    EXPECT_EQ(answer["naming_url"], velmod.naming_url());
    EXPECT_TRUE(contains(good("server ping S"), "S answers at " + velmod.naming_url()));
    EXPECT_EQ(run_json_lines(words("server ping --count 3 --interval 0")).size(), 3u);
}

TEST_F(Server, PingOfOneThatIsDownFails)
{
    nest();
    const Result result = run_velmo("server ping press");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "cannot reach server \"press\": "
                                     "NAMING_SERVER_NOT_ONLINE (3001)"))
        << result.err;
}

TEST_F(Server, RealmsAreListed)
{
    EXPECT_EQ(run_json("server realms")["realms"], json({"ROOT", "plant"}));
    EXPECT_EQ(good("server realms S"), "ROOT\nplant\n");
}

} // namespace
