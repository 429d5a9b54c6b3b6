// Two processes exchange packets.

#include "tests/examples/example.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

TEST(PingPong, TwoProcessesExchangePacketsAndReplies)
{
    Velmod velmod;
    SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    Process pong({example("ping_pong"), "pong", "2"});
    Process ping({example("ping_pong"), "ping", "2"});
    EXPECT_EQ(ping.wait(), 0) << ping.err();
    EXPECT_EQ(pong.wait(), 0) << pong.err();
    EXPECT_EQ(pong.out(), "pong: received \"ping 1\"\npong: received \"ping 2\"\n");
    EXPECT_EQ(ping.out(), "ping: sent \"ping 1\"\n"
                          "ping: the reply is: pong to \"ping 1\"\n"
                          "ping: sent \"ping 2\"\n"
                          "ping: the reply is: pong to \"ping 2\"\n");
}

TEST(PingPong, OneProcessCanBeBoth)
{
    Velmod velmod;
    SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    Process both({example("ping_pong"), "1"});
    EXPECT_EQ(both.wait(), 0) << both.err();
    EXPECT_NE(both.out().find("the reply is: pong to \"ping 1\""), std::string::npos);
}

TEST(PingPong, TellsThatThereIsNoServerInAnyLanguage)
{
    SettingsFile settings("local=\"S\"", {{"S", naming_url(free_port())}});
    Process ping({example("ping_pong"), "ping"}, {{"VELMO_LANG", "de"}, {"LC_ALL", "C"}});
    EXPECT_EQ(ping.wait(), 1);
    EXPECT_EQ(ping.err().substr(0, 17), "create ping: 99 (");
    EXPECT_EQ(ping.err().substr(ping.err().size() - 2), ")\n") << "cut at an umlaut";
}

TEST(PingPong, TellsThatThereIsNoServer)
{
    SettingsFile settings("local=\"S\"", {{"S", naming_url(free_port())}});
    Process ping({example("ping_pong"), "ping"}, {{"VELMO_LANG", "en"}});
    EXPECT_EQ(ping.wait(), 1);
    EXPECT_NE(ping.err().find("create ping: 99 ("), std::string::npos) << ping.err();
}

} // namespace
