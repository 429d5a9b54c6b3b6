// Creating, connecting and disconnecting ports.

#include <unistd.h>

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Calls = std::vector<std::string>;

class CreatePortTest : public ServerTest {};

TEST_F(CreatePortTest, sends_its_arguments_unchanged)
{
    home->answer("create_port", 0);
    EXPECT_EQ(vl_create_port("a port", 0xFFFFFFFFu, 7, nullptr, nullptr), 0);
    EXPECT_EQ(vl_create_port("", 0, 0xFFFFFFFEu, nullptr, nullptr), 0);
    EXPECT_EQ(vl_create_port("gr\xc3\xb6\xc3\x9f"
                             "e\t\x01",
                             1, 2, nullptr, nullptr),
              0);
    EXPECT_EQ(home->calls(), (Calls{"create_port(\"a port\", 4294967295, 7)",
                                    "create_port(\"\", 0, 4294967294)",
                                    "create_port(\"gr\xc3\xb6\xc3\x9f"
                                    "e\t\x01\", 1, 2)"}));
}

TEST_F(CreatePortTest, sends_a_null_name_as_an_empty_one)
{
    home->answer("create_port", 4);
    EXPECT_EQ(vl_create_port(nullptr, 1, 2, nullptr, nullptr), 4);
    EXPECT_EQ(home->calls(), Calls{"create_port(\"\", 1, 2)"});
}

class DisconnectPortTest : public ServerTest {};

TEST_F(DisconnectPortTest, sends_the_handle_unchanged)
{
    home->answer("disconnect_port", 2005);
    EXPECT_EQ(vl_disconenct_port(0xFFFFFFFFu, nullptr, nullptr), 2005);
    EXPECT_EQ(home->calls(), Calls{"disconnect_port(4294967295)"});
}

class ConnectPortTest : public ServerTest {
protected:
    static std::string host_name()
    {
        char name[256] = "";
        EXPECT_EQ(gethostname(name, sizeof name - 1), 0);
        return name;
    }

    static int connect(unsigned int mode)
    {
        return vl_connect_port("from", "to", mode, 0, "", nullptr, nullptr);
    }

    // The calls of a connection in the mode in which the host is registered.
    static Calls connect_and_register()
    {
        return {"connect_port(\"from\", \"to\", 30004, 0, \"\")",
                "register_port_host(\"from\", \"" + host_name() + "\")"};
    }
};

TEST_F(ConnectPortTest, sends_its_arguments_unchanged)
{
    home->answer("connect_port", 0);
    EXPECT_EQ(vl_connect_port("a", "b", 30001, 0xFFFFFFFFu, "remark", nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(),
              Calls{"connect_port(\"a\", \"b\", 30001, 4294967295, \"remark\")"});
}

TEST_F(ConnectPortTest, sends_null_strings_as_empty_ones)
{
    home->answer("connect_port", 0);
    home->answer("register_port_host", 0);
    EXPECT_EQ(vl_connect_port(nullptr, nullptr, 30004, 0, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), (Calls{"connect_port(\"\", \"\", 30004, 0, \"\")",
                                    "register_port_host(\"\", \"" + host_name() + "\")"}));
}

TEST_F(ConnectPortTest, in_mode_30004_registers_this_host_with_the_first_port)
{
    home->answer("connect_port", 0);
    home->answer("register_port_host", 0);
    EXPECT_EQ(connect(30004), 0);
    EXPECT_EQ(home->calls(), connect_and_register());
}

TEST_F(ConnectPortTest, in_mode_30004_gives_the_result_of_the_registration)
{
    home->answer("connect_port", 0);
    home->answer("register_port_host", 2009);
    EXPECT_EQ(connect(30004), 2009);
}

TEST_F(ConnectPortTest, registers_no_host_when_the_connection_was_refused)
{
    home->answer("connect_port", 2004);
    home->answer("register_port_host", 0);
    EXPECT_EQ(connect(30004), 2004);
    EXPECT_EQ(home->calls(), Calls{connect_and_register().front()});
}

TEST_F(ConnectPortTest, registers_no_host_when_the_connection_raised_an_exception)
{
    home->answer("connect_port", []() -> Script::Reply { throw CORBA::TRANSIENT(); });
    home->answer("register_port_host", 0);
    EXPECT_EQ(connect(30004), 112);
    EXPECT_EQ(home->calls().size(), 1u);
    EXPECT_EQ(logged_lines().size(), 1u);
    EXPECT_TRUE(next_call_looks_up());
}

TEST_F(ConnectPortTest, in_any_other_mode_registers_no_host)
{
    home->answer("connect_port", 0);
    home->answer("register_port_host", 2009);
    for (const unsigned int mode :
         {0u, 30000u, 30001u, 30002u, 30003u, 30005u, 0xFFFFFFFFu})
        EXPECT_EQ(connect(mode), 0) << mode;
    EXPECT_EQ(home->calls().size(), 7u);
}

TEST_F(ConnectPortTest,
       an_exception_in_the_registration_gives_0_unlogged_with_the_reference_kept)
{
    home->answer("connect_port", 0);
    home->answer("register_port_host",
                 []() -> Script::Reply { throw CORBA::COMM_FAILURE(); });
    EXPECT_EQ(connect(30004), 0);
    EXPECT_EQ(home->calls(), connect_and_register());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
}

} // namespace

} // namespace velmo::tests
