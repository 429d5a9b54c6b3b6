// What every operation on a service has in common: its server, its reference and the
// server's answer. Each test runs for each operation.

#include <atomic>
#include <climits>
#include <future>

#include "registry/vlServerReference.h"
#include "tests/api/operation_test.h"
#include "tests/support/eventually.h"

namespace velmo::tests {

namespace {

class CallFrameTest : public EachOperationTest {};

INSTANTIATE_TEST_SUITE_P(Operations, CallFrameTest, ::testing::ValuesIn(operations()),
                         operation_name);

TEST_P(CallFrameTest, sends_its_arguments_in_the_remote_order)
{
    answer();
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(home->calls(), Calls{operation.sent});
}

TEST_P(CallFrameTest, without_any_server_fails_and_requests_no_reference)
{
    set_own_servers({""});
    EXPECT_EQ(call(nullptr), operation.failures.no_server);
    if (operation.needs_server) {
        EXPECT_EQ(naming.lookups(), Lookups{});
        EXPECT_TRUE(registry().serverMap.empty());
    } else {
        EXPECT_EQ(naming.lookups(), Lookups{lookup("")});
    }
    EXPECT_EQ(logged_lines(), Lines{});
}

TEST_P(CallFrameTest, an_empty_name_without_default_server_goes_on_as_the_server_name)
{
    set_own_servers({""});
    EXPECT_EQ(call(""), operation.failures.no_reference);
    EXPECT_EQ(naming.lookups(), Lookups{lookup("")});
    home.bind("");
    answer();
    EXPECT_EQ(call(""), 0);
    EXPECT_EQ(home->calls(), Calls{operation.sent});
}

TEST_P(CallFrameTest, no_name_and_an_empty_name_mean_the_first_own_server)
{
    set_own_servers({"first", "second"});
    home.bind("first");
    answer();
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(call(none), 0);
        EXPECT_EQ(naming.lookups().back(), lookup("first"));
    }
    EXPECT_EQ(home->calls(), (Calls{operation.sent, operation.sent}));
}

TEST_P(CallFrameTest, a_named_server_and_realm_are_taken_unchanged)
{
    home.bind(" another ", "Alpha/B");
    answer();
    EXPECT_EQ(call(" another ", "Alpha/B"), 0);
    EXPECT_EQ(naming.lookups(), Lookups{lookup(" another ", "Alpha/B")});
}

TEST_P(CallFrameTest, without_a_reference_fails_and_looks_it_up_again)
{
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(call("unknown"), operation.failures.no_reference);
    EXPECT_EQ(naming.lookups(), (Lookups{lookup("unknown"), lookup("unknown")}));

    const bool is_port = operation.service == std::string(keys::port_service);
    const CORBA::Object_var other_type =
        home.reference(is_port ? keys::contention_service : keys::port_service);
    naming.bind("other", operation.service, other_type.in());
    EXPECT_EQ(call("other"), operation.failures.no_reference);
    EXPECT_EQ(home->calls(), Calls{});
    EXPECT_EQ(logged_lines(), Lines{});
}

// Dropping most services' references takes the registry's lock for writing.
TEST_P(CallFrameTest, without_a_reference_waits_for_nobody_who_reads_the_registry)
{
    ASSERT_EQ(registry().lock.acquire_read(), 0);
    auto failing = std::async(std::launch::async, [this] { return call("unknown"); });
    const std::future_status status = failing.wait_for(patience);
    registry().lock.release();
    EXPECT_EQ(status, std::future_status::ready);
    EXPECT_EQ(failing.get(), operation.failures.no_reference);
}

// For this thread there is no registry then, nor a default server.
TEST_P(CallFrameTest, without_the_registrys_lock_there_is_no_server_and_no_reference)
{
    answer();
    ASSERT_EQ(registry().lock.acquire_write(), 0);
    EXPECT_EQ(call(nullptr), operation.failures.no_server);
    EXPECT_EQ(call(""), operation.failures.no_reference);
    EXPECT_EQ(call("home"), operation.failures.no_reference);
    registry().lock.release();
    EXPECT_EQ(naming.lookups(), Lookups{});
    EXPECT_EQ(home->calls(), Calls{});
    EXPECT_EQ(call("home"), 0);
}

TEST_P(CallFrameTest, without_the_servers_lock_there_is_no_reference)
{
    answer();
    EXPECT_EQ(call(), 0);
    const std::size_t before = naming.lookups().size();
    auto& entry = *registry().serverMap.at("home");
    ASSERT_EQ(entry.lock.acquire_write(), 0);
    EXPECT_EQ(call(), operation.failures.no_reference);
    entry.lock.release();
    EXPECT_EQ(naming.lookups().size(), before);
    EXPECT_EQ(looks_up_again(), operation.cache == Cache::none);
}

TEST_P(CallFrameTest, the_servers_result_leaves_the_reference_cached)
{
    for (const int result : {2007, 1, -1, 99, 112, 3000, INT_MAX, INT_MIN}) {
        answer(result);
        EXPECT_EQ(call(), operation.hands_on ? result : 0);
    }
    EXPECT_EQ(looks_up_again(), operation.cache == Cache::none);
    EXPECT_EQ(logged_lines(), Lines{});
}

// The contention service is looked up by one thread at a time: nobody can find it
// while another fails to.
class NilReferenceTest : public EachOperationTest {};

INSTANTIATE_TEST_SUITE_P(Operations, NilReferenceTest,
                         ::testing::ValuesIn(operations_where([](const auto& operation) {
                             return operation.cache != Operation::Cache::none &&
                                    operation.service !=
                                        std::string(keys::contention_service);
                         })),
                         operation_name);

TEST_P(NilReferenceTest, leaves_cached_what_another_thread_has_found_meanwhile)
{
    answer();
    const CORBA::Object_var service = home.reference(operation.service);
    std::atomic<bool> first{true};
    naming.resolve_with([&](const std::string&, const std::string&) {
        if (!first.exchange(false))
            return service;
        std::async(std::launch::async, [this] { EXPECT_EQ(call(), 0); }).get();
        return CORBA::Object_var(CORBA::Object::_nil());
    });
    EXPECT_EQ(call(), operation.failures.no_reference);
    EXPECT_EQ(naming.lookups().size(), 2u);
    EXPECT_FALSE(looks_up_again());
}

class DefaultServerTest : public ServerTest {};

TEST_F(DefaultServerTest, is_0000_for_settings_without_an_own_server)
{
    set_own_servers({});
    home.bind("0000");
    home->answer("send_packet", 0);
    EXPECT_EQ(vl_send_packet(1, "x", 1, 0, nullptr, nullptr), 0);
    EXPECT_EQ(vl_send_packet(1, "x", 1, 0, "", nullptr), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{"0000", keys::port_service}}));
}

// Records without a name are not registered, and yet keep 0000 away.
TEST_F(DefaultServerTest, is_missing_only_where_own_servers_have_no_names)
{
    set_own_servers({"", ""});
    EXPECT_EQ(vl_make_dtp_snapshot(nullptr, nullptr), 3000);
    set_own_servers({"", "home"});
    home->answer("make_DTP_snapshot", 0);
    EXPECT_EQ(vl_make_dtp_snapshot(nullptr, nullptr), 0);
}

TEST_F(DefaultServerTest, names_a_server_that_need_not_exist)
{
    set_own_servers({"gone"});
    EXPECT_EQ(vl_add_event("event", 1, nullptr, nullptr), 99);
    EXPECT_EQ(vl_clear_event("event", nullptr, nullptr), 3000);
}

class IdleOperationTest : public ServerTest {};

TEST_F(IdleOperationTest, gives_0_and_asks_nobody_whatever_it_is_given)
{
    set_own_servers({""});
    for (const Operation& operation : idle_operations()) {
        SCOPED_TRACE(operation.name);
        for (const char* server : {static_cast<const char*>(nullptr), "", "home", "gone"})
            for (const char* realm : {static_cast<const char*>(nullptr), "", "no realm"})
                EXPECT_EQ(operation.call(server, realm), 0);
    }
    EXPECT_EQ(naming.lookups(), Lookups{});
    EXPECT_TRUE(registry().serverMap.empty());
    EXPECT_EQ(home->calls(), Calls{});
}

} // namespace

} // namespace velmo::tests
