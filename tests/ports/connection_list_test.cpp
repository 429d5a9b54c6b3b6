// The list of connections, and giving it back.

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Pairs = Script::Pairs;

const std::size_t area = sizeof ConnectionBlock::first_text;

class ConnectionListTest : public ServerTest,
                           public ::testing::WithParamInterface<ScriptedServer::Reach> {
protected:
    ConnectionListTest() : ServerTest(GetParam()) {}
    ~ConnectionListTest() override
    {
        if (list.first != &stale)
            vl_destory_connection_seq(&list);
    }

    void deliver(const std::optional<Pairs>& connections, int result = 0)
    {
        Reply reply{result};
        reply.connections = connections;
        home->answer("get_connection_info", reply);
    }

    int get(const char* server = nullptr)
    {
        return vl_get_connection_info(&list, server, nullptr);
    }

    bool is_empty() const { return list.first == nullptr && list.count == 0; }

    // The texts along the links.
    Pairs connections() const
    {
        Pairs all;
        for (const ConnectionBlock* block = list.first; block; block = block->next)
            all.emplace_back(block->first_text, block->second_text);
        return all;
    }

    // The whole of both areas, up to the first NUL.
    static std::string across(const ConnectionBlock& block)
    {
        const char* const bytes = reinterpret_cast<const char*>(&block);
        return std::string(bytes, strnlen(bytes, 2 * area));
    }

    ConnectionBlock stale{};
    ConnectionList list{&stale, 77};
};

INSTANTIATE_TEST_SUITE_P(Reaches, ConnectionListTest,
                         ::testing::Values(ScriptedServer::Reach::in_process,
                                           ScriptedServer::Reach::over_the_wire),
                         [](const auto& test) {
                             return test.param == ScriptedServer::Reach::in_process
                                        ? "in_process"
                                        : "over_the_wire";
                         });

TEST_P(ConnectionListTest, without_any_server_is_empty_with_3000)
{
    set_own_servers({""});
    EXPECT_EQ(get(), 3000);
    EXPECT_TRUE(is_empty());
}

TEST_P(ConnectionListTest, without_a_reference_is_empty_with_99)
{
    EXPECT_EQ(get("unknown"), 99);
    EXPECT_TRUE(is_empty());
}

TEST_P(ConnectionListTest, of_three_connections_has_three_blocks_in_the_servers_order)
{
    const Pairs three{{"b", "c"}, {"a", "b"}, {"b", "c"}};
    deliver(three);
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(list.count, 3);
    EXPECT_EQ(connections(), three); // up to the NULL of the third
    EXPECT_EQ(home->calls(), Calls{"get_connection_info()"});
}

TEST_P(ConnectionListTest, of_no_connections_is_empty)
{
    deliver(Pairs{});
    EXPECT_EQ(get(), 0);
    EXPECT_TRUE(is_empty());
}

TEST_P(ConnectionListTest, that_comes_with_an_error_stays_empty)
{
    deliver(Pairs{{"a", "b"}}, 5);
    EXPECT_EQ(get(), 5);
    EXPECT_TRUE(is_empty());
}

TEST_P(ConnectionListTest, of_a_failed_call_is_empty_with_151_and_no_log_line)
{
    home->answer("get_connection_info", Script::raising(CORBA::COMM_FAILURE()));
    EXPECT_EQ(get(), 151);
    EXPECT_TRUE(is_empty());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up());
}

TEST_P(ConnectionListTest, is_emptied_before_the_server_is_asked)
{
    home->answer("get_connection_info", [this] {
        EXPECT_TRUE(is_empty());
        return Reply{5};
    });
    EXPECT_EQ(get(), 5);
    EXPECT_EQ(home->calls().size(), 1u);
}

TEST_P(ConnectionListTest, keeps_empty_and_odd_texts)
{
    const Pairs odd{{"", ""}, {"gr\xc3\xb6\xc3\x9f", ""}, {"", "\t\x01\xff"}};
    deliver(odd);
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(connections(), odd);
}

TEST_P(ConnectionListTest, keeps_texts_of_255_bytes_in_their_areas)
{
    const Pairs full{{std::string(255, 'a'), std::string(255, 'b')}};
    deliver(full);
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(connections(), full);
}

TEST_P(ConnectionListTest, lets_a_longer_first_text_run_on_up_to_511_bytes)
{
    const struct {
        std::size_t sent;
        std::size_t kept;
    } lengths[] = {{256, 256}, {300, 300}, {511, 511},
                   {512, 511}, {600, 511}, {100000, 511}};
    for (const auto& length : lengths) {
        deliver(Pairs{{std::string(length.sent, 'a'), "behind"}, {"c", "d"}});
        EXPECT_EQ(get(), 0);
        ASSERT_EQ(list.count, 2);
        EXPECT_EQ(across(*list.first), std::string(length.kept, 'a')) << length.sent;
        EXPECT_STREQ(list.first->next->first_text, "c");
        EXPECT_EQ(list.first->next->next, nullptr);
        vl_destory_connection_seq(&list);
    }
}

TEST_P(ConnectionListTest, cuts_a_second_text_at_255_bytes)
{
    for (const std::size_t length : {256u, 511u, 512u, 600u, 100000u}) {
        deliver(Pairs{{"a", std::string(length, 'b')}, {"c", "d"}});
        EXPECT_EQ(get(), 0);
        EXPECT_EQ(connections(), (Pairs{{"a", std::string(255, 'b')}, {"c", "d"}}));
        vl_destory_connection_seq(&list);
    }
}

TEST_P(ConnectionListTest, may_be_long)
{
    Pairs many;
    for (int i = 0; i < 10000; ++i)
        many.emplace_back("from " + std::to_string(i), "to " + std::to_string(i));
    deliver(many);
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(list.count, 10000);
    EXPECT_TRUE(connections() == many);
}

TEST_P(ConnectionListTest, given_back_frees_every_block_and_leaves_first)
{
    deliver(Pairs{{"a", "b"}, {"b", "c"}, {"c", "d"}});
    EXPECT_EQ(get(), 0);
    ConnectionBlock* const first = list.first;
    vl_destory_connection_seq(&list); // the leak checker misses no block
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.first, first);
}

TEST_P(ConnectionListTest, with_count_0_or_less_frees_nothing_when_given_back)
{
    deliver(Pairs{{"a", "b"}});
    for (const int count : {0, -1}) {
        EXPECT_EQ(get(), 0);
        list.count = count;
        vl_destory_connection_seq(&list);
        EXPECT_EQ(list.count, 0);
        EXPECT_STREQ(list.first->first_text, "a"); // still there
        list.count = 1;
        vl_destory_connection_seq(&list);
    }
}

TEST_P(ConnectionListTest, into_null_gives_151_without_asking_anybody)
{
    EXPECT_EQ(vl_get_connection_info(nullptr, nullptr, nullptr), 151);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(naming.lookups().empty());
}

class UndeliveredConnectionsTest : public ServerTest {};

TEST_F(UndeliveredConnectionsTest, are_an_empty_list)
{
    Reply nothing;
    nothing.connections.reset();
    home->answer("get_connection_info", nothing);
    ConnectionBlock stale{};
    ConnectionList list{&stale, 77};
    EXPECT_EQ(vl_get_connection_info(&list, nullptr, nullptr), 0);
    EXPECT_EQ(list.first, nullptr);
    EXPECT_EQ(list.count, 0);
}

} // namespace

} // namespace velmo::tests
