// Exceptions that are not the broker's, raised inside a remote call.

#include "tests/orb/foreign_exception.h"

#include "tests/api/port_operations.h"
#include "tests/support/service_host.h"
#include "tests/support/port_service_test.h"

namespace velmo::tests {

namespace {

// The services of "home" are in another process.
class ForeignExceptionTest : public PortServiceTest {
protected:
    ForeignExceptionTest() : host(VELMO_TEST_SERVICE_HOST)
    {
        naming.bind("home", keys::port_service, reference(host.ports()).in());
        naming.bind("home", keys::service_manager, reference(host.manager()).in());
        // The broker asks before a first call whether the object is there.
        EXPECT_TRUE(next_remote_call_looks_up());
    }

    static CORBA::Object_var reference(const std::string& ior)
    {
        return CORBA::Object_var(test_orb()->string_to_object(ior.c_str()));
    }

    // As next_call_looks_up(), whatever the servant of this process answers.
    bool next_remote_call_looks_up()
    {
        const std::size_t before = naming.lookups().size();
        EXPECT_EQ(vl_disconenct_port(1, nullptr, nullptr), VL_OK);
        return naming.lookups().size() > before;
    }

    ServiceHost host;
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
    EXPECT_TRUE(next_remote_call_looks_up());
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
    EXPECT_FALSE(next_remote_call_looks_up());
}

} // namespace

} // namespace velmo::tests
