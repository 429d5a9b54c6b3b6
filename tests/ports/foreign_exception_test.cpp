// Exceptions that are not the broker's, raised inside a remote call.

#include "tests/orb/foreign_exception.h"

#include "tests/api/port_operations.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

// As if the services of "home" were in another process.
class ForeignExceptionTest : public ServerTest {
protected:
    ForeignExceptionTest() : ServerTest(ScriptedServer::Reach::over_the_wire)
    {
        for (const PortOperation& operation : port_operations)
            home->answer(operation.remote, Reply{0, "hello"});
        home->answer("register_port_host", 0);
        Reply realms;
        realms.names = {"alpha"};
        home->answer("get_releam_seq", realms);
        // The broker asks before a first call whether the object is there.
        EXPECT_TRUE(next_call_looks_up());
    }
};

class ForeignExceptionInTest : public ForeignExceptionTest,
                               public ::testing::WithParamInterface<PortOperation> {};

INSTANTIATE_TEST_SUITE_P(Operations, ForeignExceptionInTest,
                         ::testing::ValuesIn(port_operations),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ForeignExceptionInTest, gives_the_operations_code_for_it_and_no_log_line)
{
    {
        const ForeignException exception(GetParam().remote);
        EXPECT_EQ(GetParam().call(nullptr, nullptr), GetParam().other_failure);
    }
    EXPECT_TRUE(logged_lines().empty());
}

TEST_P(ForeignExceptionInTest, drops_the_cached_reference)
{
    {
        const ForeignException exception(GetParam().remote);
        EXPECT_EQ(GetParam().call(nullptr, nullptr), GetParam().other_failure);
    }
    EXPECT_TRUE(next_call_looks_up());
    EXPECT_EQ(GetParam().call(nullptr, nullptr), 0);
}

TEST_F(ForeignExceptionTest, in_the_list_of_realms_gives_137_and_an_empty_list)
{
    NameList list{};
    EXPECT_EQ(vl_releam_seq(&list, nullptr), 0);
    EXPECT_EQ(list.count, 1u);
    CORBA::string_free(list.names[0]);
    vl_free_memory(reinterpret_cast<void**>(&list.names));

    const ForeignException exception("get_releam_seq");
    EXPECT_EQ(vl_releam_seq(&list, nullptr), 137);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.names, nullptr);
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(ForeignExceptionTest,
       in_the_registration_of_the_host_gives_0_with_the_reference_kept)
{
    {
        const ForeignException exception("register_port_host");
        EXPECT_EQ(vl_connect_port("from", "to", 30004, 0, "", nullptr, nullptr), 0);
    }
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
}

} // namespace

} // namespace velmo::tests
