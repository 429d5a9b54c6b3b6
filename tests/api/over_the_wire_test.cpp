// Operations on services in another process, as far as they can tell: what goes over
// the connection, and exceptions that are not the broker's.

#include "tests/orb/foreign_exception.h"

#include <climits>
#include <stdexcept>

#include "tests/api/operation_test.h"
#include "tests/orb/live_references.h"

namespace velmo::tests {

namespace {

class OverTheWireTest : public OperationTest {
protected:
    OverTheWireTest() : OperationTest(ScriptedServer::Reach::over_the_wire)
    {
        // The broker asks before a first call whether the object is there.
        for (const Operation& each : operations()) {
            operation = each;
            looks_up_again();
        }
        home->forget_calls();
    }

    template <class Check>
    void for_each_operation(Check check)
    {
        for (const Operation& each : operations()) {
            SCOPED_TRACE(each.name);
            operation = each;
            clear_logged_lines();
            check();
        }
    }
};

TEST_F(OverTheWireTest, arguments_arrive_in_the_remote_order)
{
    for_each_operation([&] {
        home->forget_calls();
        answer();
        EXPECT_EQ(call(), 0);
        EXPECT_EQ(home->calls(), Calls{operation.sent});
    });
}

TEST_F(OverTheWireTest, the_servers_result_comes_back_unchanged)
{
    for_each_operation([&] {
        for (const int result : {2007, -1, 3000, INT_MAX, INT_MIN}) {
            answer(result);
            EXPECT_EQ(call(), operation.hands_on ? result : 0);
        }
        EXPECT_EQ(looks_up_again(), operation.cache == Cache::none);
    });
}

TEST_F(OverTheWireTest, a_brokers_exception_arrives_with_all_that_it_says)
{
    const CORBA::TIMEOUT exception(0x54410002, CORBA::COMPLETED_MAYBE);
    for_each_operation([&] {
        raise(exception);
        expect_failure(operation.failures.broker);
        EXPECT_EQ(logged_lines(), lines_for(exception));
        expect_cache_after_failure();
    });
}

// No exception of these is one that the operations declare.
TEST_F(OverTheWireTest, what_a_servant_raises_of_its_own_arrives_as_unknown)
{
    const Script::Answer raising[] = {
        Script::raising(CosNaming::NamingContext::AlreadyBound()),
        Script::raising(std::runtime_error("the servant's own"))};
    for_each_operation([&] {
        for (const Script::Answer& own : raising) {
            home->answer(operation.remote, own);
            clear_logged_lines();
            expect_failure(operation.failures.broker);
            const Lines lines = logged_lines();
            const char* const text = operation.failures.log_text;
            ASSERT_EQ(lines.size(), text ? 1u : 0u);
            if (!text)
                continue;
            EXPECT_EQ(lines[0].find(text), 0u) << lines[0];
            EXPECT_NE(lines[0].find("IDL:omg.org/CORBA/UNKNOWN:1.0"), std::string::npos)
                << lines[0];
        }
    });
}

// The services have moved, which naming knows and the cached references do not.
TEST_F(OverTheWireTest, a_lost_connection_costs_one_failed_call)
{
    for_each_operation([&] {
        if (operation.cache != Cache::dropped)
            return;
        answer();
        home.reconnect();
        home.bind("home");
        EXPECT_EQ(call(), operation.failures.broker);
        EXPECT_EQ(logged_lines().size(), operation.failures.log_text ? 1u : 0u);
        EXPECT_EQ(call(), 0);
    });
}

class ForeignExceptionTest : public OverTheWireTest {};

TEST_F(ForeignExceptionTest, gives_the_operations_code_for_it_and_no_log_line)
{
    for_each_operation([&] {
        answer();
        home->forget_calls();
        {
            const ForeignException exception(operation.remote);
            expect_failure(operation.failures.other);
        }
        EXPECT_EQ(home->calls(), Calls{});
        EXPECT_EQ(logged_lines(), Lines{});
        expect_cache_after_failure();
        EXPECT_EQ(home->calls(), (Calls{operation.sent, operation.sent}));
    });
}

TEST_F(ForeignExceptionTest, leaves_no_reference_behind)
{
    if (!references_can_be_counted())
        GTEST_SKIP() << "this broker does not let references be counted";
    const int before = live_references();
    for_each_operation([&] {
        {
            const ForeignException exception(operation.remote);
            expect_failure(operation.failures.other);
        }
        looks_up_again();
        EXPECT_EQ(live_references(), before);
    });
}

TEST_F(ForeignExceptionTest, in_vl_connect_port_gives_110_and_no_log_line)
{
    const ForeignException exception("connect_port");
    EXPECT_EQ(vl_connect_port("from", "to", 30001, 0, "", nullptr, nullptr), 110);
    EXPECT_EQ(logged_lines(), Lines{});
}

TEST_F(ForeignExceptionTest, in_the_list_of_realms_gives_137_and_an_empty_list)
{
    NameList list{7, nullptr};
    const ForeignException exception("get_releam_seq");
    EXPECT_EQ(vl_releam_seq(&list, nullptr), 137);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.names, nullptr);
    EXPECT_EQ(logged_lines(), Lines{});
}

TEST_F(ForeignExceptionTest,
       in_the_registration_of_the_host_gives_0_with_the_reference_kept)
{
    home->answer("connect_port", 0);
    home->answer("register_port_host", 0);
    {
        const ForeignException exception("register_port_host");
        EXPECT_EQ(vl_connect_port("from", "to", 30004, 0, "", nullptr, nullptr), 0);
    }
    EXPECT_EQ(logged_lines(), Lines{});
    EXPECT_FALSE(next_call_looks_up());
}

} // namespace

} // namespace velmo::tests
