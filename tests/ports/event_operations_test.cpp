// Events. What becomes of their data is tested in ../api/outgoing_data_test.cpp.

#include <climits>

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

const char* const odd_name = "gr\xc3\xb6\xc3\x9f"
                             "e\t\x01";

class EventTest : public ServerTest {};

TEST_F(EventTest, declaring_sends_number_and_data_and_always_1)
{
    home->answer("declare_event", 0);
    EXPECT_EQ(vl_declare_event(0xFFFFFFFFu, "hello", 5, nullptr, nullptr), 0);
    EXPECT_EQ(vl_declare_event(0, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), (Calls{"declare_event(4294967295, \"hello\", 1)",
                                    "declare_event(0, \"\", 1)"}));
}

TEST_F(EventTest, adding_sends_name_and_number_unchanged)
{
    home->answer("add_event", 3012);
    EXPECT_EQ(vl_add_event(odd_name, 0xFFFFFFFFu, nullptr, nullptr), 3012);
    EXPECT_EQ(home->calls(),
              Calls{"add_event(\"" + std::string(odd_name) + "\", 4294967295)"});
}

TEST_F(EventTest, raising_sends_name_and_data_unchanged)
{
    home->answer("send_event", 2);
    EXPECT_EQ(vl_send_event(odd_name, "hello", 5, nullptr, nullptr), 2);
    EXPECT_EQ(home->calls(),
              Calls{"send_event(\"" + std::string(odd_name) + "\", \"hello\")"});
}

TEST_F(EventTest, raising_with_length_0_sends_an_empty_sequence)
{
    home->answer("send_event", 0);
    EXPECT_EQ(vl_send_event("event", "ignored", 0, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), Calls{"send_event(\"event\", \"\")"});
}

TEST_F(EventTest, clearing_sends_the_name_unchanged)
{
    home->answer("clear_event", 3011);
    EXPECT_EQ(vl_clear_event(odd_name, nullptr, nullptr), 3011);
    EXPECT_EQ(home->calls(), Calls{"clear_event(\"" + std::string(odd_name) + "\")"});
}

TEST_F(EventTest, null_names_are_sent_as_empty_ones)
{
    for (const char* remote : {"add_event", "send_event", "clear_event", "event_count"})
        home->answer(remote, 0);
    int count = 0;
    EXPECT_EQ(vl_add_event(nullptr, 1, nullptr, nullptr), 0);
    EXPECT_EQ(vl_send_event(nullptr, "x", 1, nullptr, nullptr), 0);
    EXPECT_EQ(vl_clear_event(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(vl_event_count(nullptr, &count, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), (Calls{"add_event(\"\", 1)", "send_event(\"\", \"x\")",
                                    "clear_event(\"\")", "event_count(\"\")"}));
}

TEST_F(EventTest, clearing_without_a_reference_gives_3000_where_adding_gives_99)
{
    EXPECT_EQ(vl_clear_event("event", "unknown", nullptr), 3000);
    EXPECT_EQ(vl_add_event("event", 1, "unknown", nullptr), 99);
    EXPECT_EQ(naming.lookups().size(), 2u);
}

class EventCountTest : public ServerTest,
                       public ::testing::WithParamInterface<ScriptedServer::Reach> {
protected:
    EventCountTest() : ServerTest(GetParam()) {}

    void answer(CORBA::Long result, CORBA::Long count)
    {
        Reply reply{result};
        reply.count = count;
        home->answer("event_count", reply);
    }
};

INSTANTIATE_TEST_SUITE_P(Reaches, EventCountTest,
                         ::testing::Values(ScriptedServer::Reach::in_process,
                                           ScriptedServer::Reach::over_the_wire),
                         [](const auto& test) {
                             return test.param == ScriptedServer::Reach::in_process
                                        ? "in_process"
                                        : "over_the_wire";
                         });

TEST_P(EventCountTest, gives_what_the_remote_call_left_whatever_its_result)
{
    for (const int number : {0, 1, INT_MAX, INT_MIN}) {
        for (const int result : {0, 3011}) {
            answer(result, number);
            int count = 77;
            EXPECT_EQ(vl_event_count("event", &count, nullptr, nullptr), result);
            EXPECT_EQ(count, number);
        }
    }
    EXPECT_EQ(home->calls().front(), "event_count(\"event\")");
}

TEST_P(EventCountTest, is_left_alone_where_nothing_arrives)
{
    int count = 77;
    home->answer("event_count", Script::raising(CORBA::COMM_FAILURE()));
    EXPECT_EQ(vl_event_count("event", &count, nullptr, nullptr), 153);
    EXPECT_EQ(vl_event_count("event", &count, "unknown", nullptr), 99);
    set_own_servers({""});
    EXPECT_EQ(vl_event_count("event", &count, nullptr, nullptr), 3000);
    EXPECT_EQ(count, 77);
}

TEST_P(EventCountTest, into_null_is_refused_before_any_call)
{
    EXPECT_TRUE(next_call_looks_up()); // has the reference cached
    home->forget_calls();
    EXPECT_EQ(vl_event_count("event", nullptr, nullptr, nullptr), 153);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
}

} // namespace

} // namespace velmo::tests
