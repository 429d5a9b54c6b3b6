// Exceptions in calls of operations: the result, the log line, the cached reference.
// Each test runs for each operation.

#include <future>
#include <stdexcept>

#include "tests/api/operation_test.h"
#include "tests/orb/foreign_exception.h"
#include "tests/support/eventually.h"
#include "tests/support/registry_locks.h"

namespace velmo::tests {

namespace {

class CallFailureTest : public EachOperationTest {
protected:
    // One failed call, with its result and its log line.
    template <class Exception>
    void expect_failure_of(const Exception& exception)
    {
        SCOPED_TRACE(orb::describe(exception));
        raise(exception);
        clear_logged_lines();
        expect_failure(operation.failures.broker);
        EXPECT_EQ(logged_lines(), lines_for(exception));
    }

    static NamingStandIn::Resolver raising_resolver(const std::exception_ptr& exception)
    {
        return [exception](const std::string&, const std::string&) -> CORBA::Object_var {
            std::rethrow_exception(exception);
        };
    }

    // A call whose look-up raises something passes that out and leaves no trace.
    template <class Exception>
    void expect_passes_out()
    {
        EXPECT_THROW(call(), Exception);
        expect_locks_free(registry());
        EXPECT_EQ(home->calls(), Calls{});
        EXPECT_EQ(logged_lines(), Lines{});
    }

    // Whatever is locked still would stop it.
    void expect_good_call_from_another_thread()
    {
        answer();
        auto later = std::async(std::launch::async, [this] { return call(); });
        ASSERT_EQ(later.wait_for(patience), std::future_status::ready);
        EXPECT_EQ(later.get(), 0);
    }
};

INSTANTIATE_TEST_SUITE_P(Operations, CallFailureTest, ::testing::ValuesIn(operations()),
                         operation_name);

TEST_P(CallFailureTest, a_brokers_exception_gives_the_code_and_its_log_line)
{
    expect_failure_of(CORBA::TRANSIENT(0, CORBA::COMPLETED_NO));
    expect_failure_of(CORBA::COMM_FAILURE(0x4f4d0001, CORBA::COMPLETED_MAYBE));
    expect_failure_of(CORBA::TIMEOUT(0x54410002, CORBA::COMPLETED_MAYBE));
    expect_failure_of(CORBA::OBJECT_NOT_EXIST(3, CORBA::COMPLETED_NO));
    expect_failure_of(CORBA::NO_MEMORY(4, CORBA::COMPLETED_YES));
}

// The operations declare none.
TEST_P(CallFailureTest, a_users_exception_gives_the_code_and_its_log_line)
{
    if (!undeclared_exceptions_pass())
        GTEST_SKIP() << "this broker makes UNKNOWN of what an operation does not declare";
    expect_failure_of(PortableServer::POA::ObjectNotActive());
}

TEST_P(CallFailureTest, of_its_call_treats_the_cached_reference_as_its_rule_says)
{
    answer();
    EXPECT_EQ(call(), 0);
    raise(CORBA::COMM_FAILURE());
    expect_failure(operation.failures.broker);
    expect_cache_after_failure();
    raise(CORBA::TIMEOUT());
    expect_failure(operation.failures.broker);
    expect_cache_after_failure();
}

TEST_P(CallFailureTest, concerns_the_reference_of_its_server_realm_and_service_alone)
{
    const char* const others[][2] = {
        {"home", nullptr}, {"home", "beta"}, {"other", "alpha"}};
    for (const auto& [server, realm] : others) {
        home.bind(server, realm ? realm : "");
        looks_up_again(server, realm);
    }
    home.bind("home", "alpha");
    raise(CORBA::COMM_FAILURE());
    expect_failure(operation.failures.broker, "home", "alpha");
    for (const auto& [server, realm] : others)
        EXPECT_EQ(looks_up_again(server, realm), operation.cache == Cache::none);
    EXPECT_EQ(looks_up_again("home", "alpha"), operation.cache != Cache::kept);
}

TEST_P(CallFailureTest, leaves_the_other_services_of_the_server_cached)
{
    const char* const services[] = {keys::port_service, keys::data_template_point_service,
                                    keys::data_template_service, keys::contention_service};
    for (const char* service : services)
        EXPECT_TRUE(next_call_looks_up(service));
    raise(CORBA::COMM_FAILURE());
    expect_failure(operation.failures.broker);
    for (const char* service : services)
        EXPECT_EQ(next_call_looks_up(service),
                  operation.cache == Cache::dropped &&
                      operation.service == std::string(service))
            << service;
}

TEST_P(CallFailureTest, in_the_look_up_passes_out_with_every_lock_released)
{
    naming.resolve_with(
        raising_resolver(std::make_exception_ptr(std::runtime_error("naming failed"))));
    expect_passes_out<std::runtime_error>();
    naming.resolve_with(raising_resolver(std::make_exception_ptr(CORBA::TRANSIENT())));
    expect_passes_out<CORBA::TRANSIENT>();

    naming.resolve_with(nullptr);
    expect_good_call_from_another_thread();
}

// Of an object of no known type, narrowing asks the object's server, which is not there.
TEST_P(CallFailureTest, in_narrowing_passes_out_with_every_lock_released)
{
    naming.bind("home", operation.service, dead_reference().in());
    expect_passes_out<CORBA::SystemException>();

    home.bind("home");
    expect_good_call_from_another_thread();
}

} // namespace

} // namespace velmo::tests
