#include <csignal>

#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Ports : public CommandTest {
protected:
    void create_connected()
    {
        good("port create from");
        good("port create to");
        good("port connect from to");
    }
};

TEST_F(Ports, AreCreatedWithAHandleThatFollowsFromTheName)
{
    const json first = run_json("port create a");
    EXPECT_EQ(first["port"], "a");
    EXPECT_EQ(good({"point", "get", "$SYS/ports/a/handle"}),
              std::to_string(first["handle"].get<unsigned int>()) + "\n");
    EXPECT_EQ(run_json("port create b --handle 7 --capacity 3"),
              (json{{"port", "b"}, {"handle", 7}}));
    EXPECT_EQ(good("point get $SYS/ports/b/capacity"), "3\n");
    EXPECT_EQ(run_json("port create a --realm plant")["handle"], first["handle"]);
}

TEST_F(Ports, WithoutAHandleTakeTheNextOneWhenItIsInUse)
{
    const unsigned int usual = run_json("port create a --realm plant")["handle"];
    good("port create other --handle " + std::to_string(usual));
    EXPECT_EQ(run_json("port create a")["handle"], usual + 1);
    const Result again = run_velmo("port create a");
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(contains(again.err, "OBJECT_ALREADY_EXSIT (2014)")) << again.err;
}

TEST_F(Ports, AreListedWithTheirQueuesAndConnections)
{
    create_connected();
    good("port send from hello");
    const json ports = run_json("port ls")["ports"];
    ASSERT_EQ(ports.size(), 2u);
    EXPECT_EQ(ports[0]["port"], "from");
    EXPECT_EQ(ports[0]["sends_to"], json::array({"to"}));
    EXPECT_EQ(ports[1]["port"], "to");
    EXPECT_EQ(ports[1]["depth"], 1);
    EXPECT_EQ(ports[1]["bytes"], 5);
    EXPECT_EQ(ports[1]["capacity"], 1024);
    EXPECT_EQ(ports[1]["host"], nullptr);
    EXPECT_EQ(run_json("port channels"), (json{{"channels", {"from", "to"}}}));
    EXPECT_TRUE(contains(good("port ls"), "\tto\n"));
}

TEST_F(Ports, WithASlashInTheirNamesAreListedToo)
{
    good("port create a/b/handle");
    EXPECT_EQ(run_json("port ls")["ports"][0]["port"], "a/b/handle");
    good("port send a/b/handle x");
    EXPECT_EQ(good("port receive a/b/handle"), "x");
}

TEST_F(Ports, AreConnectedExclusivelyAndDisconnected)
{
    good("port create a");
    good("port create b");
    good("port create c");
    EXPECT_EQ(run_json("port connect a b --exclusive"), (json{{"from", "a"}, {"to", "b"}}));
    const Result second = run_velmo("port connect a c");
    EXPECT_EQ(second.status, 1);
    EXPECT_TRUE(contains(second.err, "ALREADY_CONNECTED (2004)")) << second.err;
    EXPECT_EQ(run_json("port disconnect a"), (json{{"port", "a"}}));
    good("port connect a c --host");
    EXPECT_TRUE(run_json("port ls")["ports"][0]["host"].is_string());
    EXPECT_EQ(run_velmo("port connect a c --host --exclusive").status, 2);
}

TEST_F(Ports, PacketsGoByNameAndByHandle)
{
    good("port create box --handle 31");
    EXPECT_EQ(run_json({"port", "send", "box", "by name"}),
              (json{{"port", "box"}, {"size", 7}}));
    good({"port", "send", "0x1f", "by handle"});
    EXPECT_EQ(good("port receive 31"), "by name");
    EXPECT_EQ(run_json("port receive box --as text"),
              (json{{"port", "box"}, {"size", 9}, {"value", "by handle"}}));
}

TEST_F(Ports, PacketsAreBytesFromAnywhere)
{
    good("port create box");
    good("port send box --hex 00ff");
    EXPECT_EQ(run_json("port receive box")["value"], (json{{"hex", "00ff"}}));
    const std::string bytes("\0\1\n\xff", 4);
    good({"port", "send", "box"}, bytes);
    EXPECT_EQ(good("port receive box"), bytes);
    const std::string file = (folder.path() / "packet").string();
    good({"port", "send", "box", "--file", "-"}, "");
    good({"port", "receive", "box", "--file", file});
    EXPECT_TRUE(std::filesystem::is_empty(file));
    good("port send box abc");
    EXPECT_EQ(good("port receive box --hex"), "616263\n");
}

TEST_F(Ports, PacketsToTheFrontComeFirst)
{
    good("port create box");
    good("port send box second");
    good("port send box first --front");
    EXPECT_EQ(good("port receive box"), "first");
    EXPECT_EQ(good("port receive box"), "second");
}

TEST_F(Ports, PacketsOfOneSenderAreTakenAlone)
{
    create_connected();
    good("port create other");
    good("port connect other to");
    good("port send from first");
    good("port send other wanted");
    EXPECT_EQ(good("port receive to --from other"), "wanted");
    EXPECT_EQ(good("port receive to"), "first");
}

TEST_F(Ports, CopyDecidesWhoGetsAPacket)
{
    create_connected();
    good("port create too");
    good("port connect from too");
    EXPECT_EQ(run_json("port copy from off"), (json{{"port", "from"}, {"copy", false}}));
    good("port send from x");
    const Result one = run_velmo("port receive to"), other = run_velmo("port receive too");
    EXPECT_EQ(one.out + other.out, "x");
    good("port copy from on");
    good("port send from y");
    EXPECT_EQ(good("port receive to") + good("port receive too"), "yy");
}

TEST_F(Ports, CallGetsTheReply)
{
    create_connected();
    Process call(velmo_command({"port", "call", "from", "ping", "--wait", "60000"}),
                 plain_environment());
    EXPECT_EQ(good("port receive to --wait 60000"), "ping");
    EXPECT_EQ(run_json("port reply to pong"), (json{{"port", "to"}, {"size", 4}}));
    EXPECT_EQ(call.wait(), 0) << call.err();
    EXPECT_EQ(call.out(), "pong");

    Process again(velmo_command({"--json", "port", "call", "from", "x", "--wait", "60000"}),
                  plain_environment());
    good("port receive to --wait 60000");
    good("port reply to --hex 01");
    EXPECT_EQ(again.wait(), 0) << again.err();
    EXPECT_EQ(again.out(), R"({"port":"from","size":1,"value":{"hex":"01"}})"
                           "\n");
}

TEST_F(Ports, RepliesAreTakenLater)
{
    create_connected();
    good("port send from ping");
    good("port receive to");
    good("port reply to pong");
    EXPECT_EQ(run_json("port receive from --reply --as text")["value"], "pong");
    const Result none = run_velmo("port receive from --reply");
    EXPECT_EQ(none.status, 1);
    EXPECT_TRUE(contains(none.err, "cannot get a reply on port \"from\"")) << none.err;
    const Result twice = run_velmo("port reply to pong");
    EXPECT_TRUE(contains(twice.err, "cannot answer a packet of port \"to\"")) << twice.err;
}

TEST_F(Ports, FollowShowsPacketsUntilInterrupted)
{
    good("port create box");
    Process follow(velmo_command({"port", "receive", "box", "--follow"}),
                   plain_environment());
    good("port send box one");
    good("port send box --hex 00");
    ASSERT_TRUE(eventually([&] { return follow.out() == "one\n00\n"; })) << follow.out();
    follow.signal(SIGINT);
    EXPECT_EQ(follow.wait(), 130);
    EXPECT_EQ(follow.err(), "");
    good("port send box kept");
    EXPECT_EQ(good("port receive box --follow --count 1"), "kept\n");
}

TEST_F(Ports, WaitingIsInterrupted)
{
    good("port create box");
    Process wait(velmo_command({"port", "receive", "box", "--wait", "3600000"}),
                 plain_environment());
    ASSERT_TRUE(
        eventually([&] { return good("point get $SYS/ports/box/waiting") == "1\n"; }));
    wait.signal(SIGINT);
    EXPECT_EQ(wait.wait(), 130);
}

TEST_F(Ports, WaitIsLongerThanTheTimeOutOfACall)
{
    good("port create box");
    Process wait(
        velmo_command({"--timeout", "2000", "port", "receive", "box", "--wait", "60000"}),
        plain_environment());
    EXPECT_EQ(wait.wait(std::chrono::milliseconds(3000)), std::nullopt) << wait.err();
    good("port send box late");
    EXPECT_EQ(wait.wait(), 0) << wait.err();
    EXPECT_EQ(wait.out(), "late");
}

TEST_F(Ports, FailuresHaveTheirCodes)
{
    good("port create box --capacity 1");
    good("port send box x");
    for (const auto& [command, said] :
         std::initializer_list<std::pair<const char*, const char*>>{
             {"port send box y", "WOULD_BLOCK (2003)"},
             {"port send box y --wait 1", "SENDMSG_TIMEOUT (2017)"},
             {"port send nobody y", "INVAILD_PORT_HANDLE (2007)"},
             {"port receive 4711", "INVAILD_PORT_HANDLE (2007)"},
             {"port connect box nobody", "RECEIVER_IS_NOT_EXIST (2009)"},
             {"port connect nobody box", "INVAILD_PORT_HANDLE (2007)"},
             {"port disconnect box", "NOT_CONNECTED (2005)"},
             {"port reply box y", "NON_EXIST_DATA (2001)"},
             {"port copy nobody on", "INVAILD_PORT_HANDLE (2007)"}}) {
        const Result result = run_velmo(command);
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_EQ(result.out, "") << command;
        EXPECT_TRUE(contains(result.err, said)) << result.err;
    }
    good("port receive box");
    EXPECT_TRUE(contains(run_velmo("port receive box").err, "EMPTY_QUEUE (2002)"));
    EXPECT_TRUE(contains(run_velmo("port receive box --wait 1").err, "TIME_OUT (2000)"));
    EXPECT_TRUE(
        contains(run_velmo("port call box x --wait 1").err, "REPLAY_TIMEOUT (2016)"));
}

TEST_F(Ports, MisuseIsTold)
{
    for (const char* command :
         {"port create x --handle 0", "port copy x perhaps", "port send x --hex 0",
          "port receive x --count 1", "port receive x --follow --file y",
          "port receive x --from y --reply", "port connect x", "port recieve x"})
        EXPECT_EQ(run_velmo(command).status, 2) << command;
    EXPECT_TRUE(contains(run_velmo("port recieve x").err, "did you mean \"receive\""));
}

} // namespace
