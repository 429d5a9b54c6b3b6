// What every operation on a service has in common: its server, its reference, and
// what becomes of exceptions. Each test runs for each operation.

#include <climits>
#include <stdexcept>

#include "orb/client.h"
#include "tests/api/port_operations.h"
#include "tests/orb/live_references.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Lookups = std::vector<NamingStandIn::Lookup>;
using Lines = std::vector<std::string>;

const std::string port_key = "ref_key_data_port_naming_service";

class CallFrameTest : public ServerTest,
                      public ::testing::WithParamInterface<PortOperation> {
protected:
    int call(const char* server = nullptr, const char* realm = nullptr)
    {
        return GetParam().call(server, realm);
    }

    // The remote operation brings these five bytes, where it brings any.
    void answer(int result)
    {
        home->answer(GetParam().remote, [result] {
            return Script::Reply{result, "hello"};
        });
    }

    template <class Exception>
    void raise(const Exception& exception)
    {
        home->answer(GetParam().remote,
                     [exception]() -> Script::Reply { throw exception; });
    }

    // The log after one failed call.
    static Lines lines_for(const CORBA::Exception& exception)
    {
        const char* const text = GetParam().log_text;
        return text ? Lines{text + orb::describe(exception)} : Lines{};
    }
};

INSTANTIATE_TEST_SUITE_P(Operations, CallFrameTest, ::testing::ValuesIn(port_operations),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(CallFrameTest, without_any_server_gives_3000_and_requests_no_reference)
{
    set_own_servers({""});
    EXPECT_EQ(call(nullptr), 3000);
    EXPECT_EQ(naming.lookups(), Lookups{});
    EXPECT_TRUE(registry().serverMap.empty());
}

TEST_P(CallFrameTest, an_empty_name_without_default_server_goes_on_as_the_server_name)
{
    set_own_servers({""});
    EXPECT_EQ(call(""), 99);
    EXPECT_EQ(naming.lookups(), (Lookups{{"", port_key}}));
    home.bind("");
    answer(0);
    EXPECT_EQ(call(""), 0);
}

TEST_P(CallFrameTest, no_name_and_an_empty_name_mean_the_first_own_server)
{
    set_own_servers({"first", "second"});
    home.bind("first");
    answer(0);
    EXPECT_EQ(call(nullptr), 0);
    EXPECT_EQ(call(""), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{"first", port_key}}));
}

TEST_P(CallFrameTest, settings_without_an_own_server_mean_the_server_0000)
{
    set_own_servers({});
    home.bind("0000");
    answer(0);
    EXPECT_EQ(call(nullptr), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{"0000", port_key}}));
}

TEST_P(CallFrameTest, a_named_server_and_realm_are_taken_unchanged)
{
    home.bind(" another ", "Alpha/B");
    answer(0);
    EXPECT_EQ(call(" another ", "Alpha/B"), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{" another ", "/Alpha/B/" + port_key}}));
}

TEST_P(CallFrameTest, without_a_reference_gives_99_and_is_looked_up_again)
{
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(call("unknown"), 99);
    EXPECT_EQ(naming.lookups().size(), 2u);
    EXPECT_EQ(logged_lines(), Lines{});
}

TEST_P(CallFrameTest, the_servers_result_comes_back_unchanged_and_the_reference_is_kept)
{
    for (const int result : {2007, 1, -1, 99, 3000, INT_MAX, INT_MIN}) {
        answer(result);
        EXPECT_EQ(call(), result);
    }
    EXPECT_EQ(naming.lookups().size(), 1u);
    EXPECT_EQ(logged_lines(), Lines{});
}

TEST_P(CallFrameTest, a_brokers_exception_gives_the_code_and_its_log_line)
{
    const CORBA::TRANSIENT exception(0, CORBA::COMPLETED_NO);
    raise(exception);
    EXPECT_EQ(call(), GetParam().broker_failure);
    EXPECT_EQ(logged_lines(), lines_for(exception));
}

TEST_P(CallFrameTest, after_a_brokers_exception_the_reference_is_looked_up_again)
{
    raise(CORBA::COMM_FAILURE());
    EXPECT_EQ(call(), GetParam().broker_failure);
    answer(0);
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{"home", port_key}, {"home", port_key}}));
}

TEST_P(CallFrameTest, a_failure_drops_the_reference_of_its_server_and_realm_alone)
{
    const char* const others[][2] = {
        {"home", nullptr}, {"home", "beta"}, {"other", "alpha"}};
    for (const auto& [server, realm] : others)
        home.bind(server, realm ? realm : "");
    home.bind("home", "alpha");
    answer(0);
    for (const auto& [server, realm] : others)
        EXPECT_EQ(call(server, realm), 0);
    raise(CORBA::COMM_FAILURE());
    EXPECT_EQ(call("home", "alpha"), GetParam().broker_failure);

    const std::size_t before = naming.lookups().size();
    answer(0);
    for (const auto& [server, realm] : others)
        EXPECT_EQ(call(server, realm), 0);
    EXPECT_EQ(naming.lookups().size(), before);
    EXPECT_EQ(call("home", "alpha"), 0);
    EXPECT_EQ(naming.lookups().size(), before + 1);
}

TEST_P(CallFrameTest, what_the_look_up_raises_passes_out_unlogged)
{
    naming.resolve_with([](const std::string&, const std::string&) -> CORBA::Object_var {
        throw std::runtime_error("naming failed");
    });
    EXPECT_THROW(call(), std::runtime_error);
    naming.resolve_with([](const std::string&, const std::string&) -> CORBA::Object_var {
        throw CORBA::TRANSIENT();
    });
    EXPECT_THROW(call(), CORBA::TRANSIENT);
    EXPECT_EQ(logged_lines(), Lines{});

    naming.resolve_with(nullptr);
    answer(0);
    EXPECT_EQ(call(), 0);
}

TEST_P(CallFrameTest, what_narrowing_raises_passes_out_unlogged)
{
    naming.bind("home", port_key, dead_reference().in());
    EXPECT_THROW(call(), CORBA::SystemException);
    EXPECT_EQ(logged_lines(), Lines{});
}

TEST_P(CallFrameTest, leaves_no_reference_behind)
{
    if (!references_can_be_counted())
        GTEST_SKIP() << "this broker does not let references be counted";
    const CORBA::Object_var object = home.reference(keys::port_service);
    const CORBA::String_var ior = test_orb()->object_to_string(object.in());
    naming.resolve_with(
        [text = std::string(ior.in())](const std::string&, const std::string&) {
            return CORBA::Object_var(test_orb()->string_to_object(text.c_str()));
        });
    const int before = live_port_references();
    answer(0);
    EXPECT_EQ(call(), 0);
    registry().ReleasePortReference("home", nullptr);
    EXPECT_EQ(live_port_references(), before);
    raise(CORBA::COMM_FAILURE());
    EXPECT_EQ(call(), GetParam().broker_failure);
    EXPECT_EQ(live_port_references(), before);
}

} // namespace

} // namespace velmo::tests
