// Saving and restoring the state of a server's services.

#include "api/Velmo_API_Manager.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Lookups = std::vector<NamingStandIn::Lookup>;

class SnapshotTest : public ServerTest {
protected:
    void fail(const std::string& remote)
    {
        home->answer(remote, Script::raising(CORBA::COMM_FAILURE()));
    }
};

TEST_F(SnapshotTest, each_request_goes_to_its_service)
{
    const struct {
        const char* remote;
        int (*request)(const char*, const char*);
        const char* key;
    } requests[] = {
        {"make_DT_snapshot", vl_make_dt_snapshot, keys::data_template_service},
        {"make_DTP_snapshot", vl_make_dtp_snapshot, keys::data_template_point_service},
        {"load_DTP_snapshot", vl_load_dtp_snapshot, keys::data_template_point_service},
        {"make_port_snapshot", vl_make_port_snapshot, keys::port_service},
    };
    int result = 4;
    for (const auto& request : requests) {
        home->forget_calls();
        home->answer(request.remote, ++result);
        EXPECT_EQ(request.request(nullptr, nullptr), result);
        EXPECT_EQ(home->calls(), Calls{request.remote + std::string("()")});
        EXPECT_EQ(naming.lookups_of(request.key), 1u);
    }
}

TEST_F(SnapshotTest, loading_templates_or_ports_does_nothing_whatever_it_is_given)
{
    set_own_servers({""});
    const std::size_t questions = reader.queries().size();
    for (const auto load : {vl_load_dt_snapshot, vl_load_port_snapshot}) {
        EXPECT_EQ(load(nullptr, nullptr), 0);
        EXPECT_EQ(load("", ""), 0);
        EXPECT_EQ(load("home", nullptr), 0);
        EXPECT_EQ(load("unknown", "no realm"), 0);
        const char* const unreadable = reinterpret_cast<const char*>(16);
        EXPECT_EQ(load(unreadable, unreadable), 0);
    }
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(naming.lookups().empty());
    EXPECT_TRUE(registry().serverMap.empty());
    EXPECT_EQ(reader.queries().size(), questions);
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(SnapshotTest, of_templates_without_a_reachable_manager_is_0)
{
    EXPECT_EQ(vl_make_dt_snapshot("unknown", nullptr), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{"unknown", keys::data_template_service}}));
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(SnapshotTest, of_templates_without_any_server_asks_the_registry_all_the_same)
{
    set_own_servers({""});
    EXPECT_EQ(vl_make_dt_snapshot("", nullptr), 0);
    EXPECT_EQ(naming.lookups(), (Lookups{{"", keys::data_template_service}}));
    EXPECT_EQ(vl_make_dt_snapshot(nullptr, nullptr), 0);
    EXPECT_EQ(naming.lookups_of(keys::data_template_service), 2u);
}

TEST_F(SnapshotTest, of_templates_without_a_default_server_is_made_where_a_name_is_found)
{
    set_own_servers({""});
    home.bind("");
    home->answer("make_DT_snapshot", 5);
    EXPECT_EQ(vl_make_dt_snapshot("", nullptr), 5);
}

TEST_F(SnapshotTest, of_templates_that_fails_is_0_with_the_reference_dropped)
{
    fail("make_DT_snapshot");
    EXPECT_EQ(vl_make_dt_snapshot(nullptr, nullptr), 0);
    EXPECT_EQ(home->calls().size(), 1u);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up(keys::data_template_service));
}

TEST_F(SnapshotTest, of_points_without_any_server_is_3000)
{
    set_own_servers({""});
    EXPECT_EQ(vl_make_dtp_snapshot(nullptr, nullptr), 3000);
    EXPECT_TRUE(naming.lookups().empty());
}

TEST_F(SnapshotTest, of_points_that_fails_is_148_with_the_reference_dropped)
{
    fail("make_DTP_snapshot");
    EXPECT_EQ(vl_make_dtp_snapshot(nullptr, nullptr), 148);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up(keys::data_template_point_service));
}

TEST_F(SnapshotTest, of_points_whose_loading_fails_is_0_with_the_reference_dropped)
{
    fail("load_DTP_snapshot");
    EXPECT_EQ(vl_load_dtp_snapshot(nullptr, nullptr), 0);
    EXPECT_EQ(home->calls().size(), 1u);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up(keys::data_template_point_service));
}

TEST_F(SnapshotTest, of_points_is_loaded_from_a_server_with_a_reference_alone)
{
    EXPECT_EQ(vl_load_dtp_snapshot("unknown", nullptr), 99);
    set_own_servers({""});
    EXPECT_EQ(vl_load_dtp_snapshot(nullptr, nullptr), 3000);
}

TEST_F(SnapshotTest, of_ports_that_fails_is_149_and_the_next_call_uses_the_same_reference)
{
    fail("make_port_snapshot");
    EXPECT_EQ(vl_make_port_snapshot(nullptr, nullptr), 149);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up(keys::port_service));
    EXPECT_EQ(naming.lookups().size(), 1u);
}

// Nobody exports it.
class LoadPortSnapshotTest : public SnapshotTest {
protected:
    static int load(const char* server = nullptr, const char* realm = nullptr)
    {
        return Velmo_API_Manager::load_port_snapshot(server, realm);
    }
};

TEST_F(LoadPortSnapshotTest, gives_the_servers_result)
{
    home->answer("load_port_snapshot", 5);
    EXPECT_EQ(load(), 5);
    EXPECT_EQ(home->calls(), Calls{"load_port_snapshot()"});
}

TEST_F(LoadPortSnapshotTest, takes_the_named_server_and_realm)
{
    home.bind("another", "alpha");
    home->answer("load_port_snapshot", 0);
    EXPECT_EQ(load("another", "alpha"), 0);
    EXPECT_EQ(naming.lookups(),
              (Lookups{{"another", service_name("alpha", keys::port_service)}}));
}

TEST_F(LoadPortSnapshotTest, needs_a_server_and_a_reference)
{
    EXPECT_EQ(load("unknown"), 99);
    set_own_servers({""});
    EXPECT_EQ(load(), 3000);
}

TEST_F(LoadPortSnapshotTest, that_fails_is_0_and_the_next_call_uses_the_same_reference)
{
    fail("load_port_snapshot");
    EXPECT_EQ(load(), 0);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up(keys::port_service));
    EXPECT_EQ(naming.lookups().size(), 1u);
}

} // namespace

} // namespace velmo::tests
