// The names of the ports with connections.

#include "tests/support/callers_list.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Names = Script::Names;

class ChannelNamesTest : public ServerTest {
protected:
    explicit ChannelNamesTest(
        ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : ServerTest(reach)
    {
    }

    void deliver(const std::optional<Names>& outgoing, const std::optional<Names>& incoming,
                 int result = 0)
    {
        Reply reply{result};
        reply.names = outgoing;
        reply.more_names = incoming;
        home->answer("com_chennal_seq", reply);
    }

    int get(const char* server = nullptr)
    {
        return vl_com_chennal_seq(list.record(), server, nullptr);
    }

    void expect_joined(const Names& outgoing, const Names& incoming)
    {
        deliver(outgoing, incoming);
        EXPECT_EQ(get(), 0);
        Names all = outgoing;
        all.insert(all.end(), incoming.begin(), incoming.end());
        EXPECT_TRUE(list.names() == all);
        EXPECT_NE(list.record()->names, nullptr);
        list.give_back();
    }

    CallersList list;
};

TEST_F(ChannelNamesTest, are_those_of_the_first_sequence_followed_by_the_seconds)
{
    deliver(Names{"a", "b"}, Names{"c"});
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(list.names(), (Names{"a", "b", "c"}));
    EXPECT_EQ(home->calls(), Calls{"com_chennal_seq()"});
}

TEST_F(ChannelNamesTest, may_be_of_one_sequence_alone)
{
    expect_joined({}, {"c", "d"});
    expect_joined({"a"}, {});
}

TEST_F(ChannelNamesTest, of_two_empty_sequences_are_an_array_all_the_same)
{
    expect_joined({}, {});
}

TEST_F(ChannelNamesTest, that_were_not_delivered_are_none)
{
    deliver(std::nullopt, Names{"c"});
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(list.names(), Names{"c"});
    list.give_back();
    deliver(std::nullopt, std::nullopt);
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(list.names(), Names{});
}

TEST_F(ChannelNamesTest, that_come_with_an_error_are_none)
{
    for (const std::optional<Names>& names :
         {std::optional<Names>(Names{"a"}), std::optional<Names>()}) {
        deliver(names, names, 5);
        EXPECT_EQ(get(), 5);
        EXPECT_TRUE(list.is_cleared());
        list.forget();
    }
}

TEST_F(ChannelNamesTest, without_a_server_or_reference_are_none)
{
    EXPECT_EQ(get("unknown"), 99);
    EXPECT_TRUE(list.is_cleared());
    list.forget();
    set_own_servers({""});
    EXPECT_EQ(get(), 3000);
    EXPECT_TRUE(list.is_cleared());
}

TEST_F(ChannelNamesTest, are_none_while_the_server_is_asked)
{
    home->answer("com_chennal_seq", [this] {
        EXPECT_TRUE(list.is_cleared());
        return Reply{5};
    });
    EXPECT_EQ(get(), 5);
    EXPECT_EQ(home->calls().size(), 1u);
}

TEST_F(ChannelNamesTest, of_a_failed_call_are_none_with_the_reference_kept)
{
    home->answer("com_chennal_seq", Script::raising(CORBA::COMM_FAILURE()));
    EXPECT_EQ(get(), 143);
    EXPECT_TRUE(list.is_cleared());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
    EXPECT_EQ(naming.lookups().size(), 1u);
}

TEST_F(ChannelNamesTest, into_null_give_143_without_asking_anybody)
{
    EXPECT_EQ(vl_com_chennal_seq(nullptr, nullptr, nullptr), 143);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(naming.lookups().empty());
}

class ChannelNamesOverTheWireTest : public ChannelNamesTest {
protected:
    ChannelNamesOverTheWireTest() : ChannelNamesTest(ScriptedServer::Reach::over_the_wire)
    {
    }
};

TEST_F(ChannelNamesOverTheWireTest, arrive_as_they_were)
{
    expect_joined({}, {});
    expect_joined({"", "gr\xc3\xb6\xc3\x9f"}, {"\t\x01\xff", ""});
    expect_joined({std::string(1 << 20, 'a')}, {std::string(1 << 20, 'b')});
}

TEST_F(ChannelNamesOverTheWireTest, may_be_100000)
{
    Names outgoing;
    Names incoming;
    for (int i = 0; i < 50000; ++i) {
        outgoing.push_back("out " + std::to_string(i));
        incoming.push_back("in " + std::to_string(i));
    }
    expect_joined(outgoing, incoming);
}

} // namespace

} // namespace velmo::tests
