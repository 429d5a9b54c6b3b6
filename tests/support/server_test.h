// The beginning that tests of calls to a server share.
#ifndef VELMO_TESTS_SUPPORT_SERVER_TEST_H
#define VELMO_TESTS_SUPPORT_SERVER_TEST_H

#include <cstddef>
#include <string>

#include "idl/service_keys.h"
#include "tests/support/library_test.h"
#include "tests/support/scripted_server.h"
#include "vl_api.h"

namespace velmo::tests {

// The default server "home" has all services, in the unnamed realm.
class ServerTest : public LibraryTest {
protected:
    using Reply = Script::Reply;
    using Calls = std::vector<std::string>;

    explicit ServerTest(ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : home(reach)
    {
        set_own_servers({"home"});
        home.bind("home");
    }

    // Whether the next call of a service of "home" looks it up, as it does for the
    // first time and after a failure. Makes a call.
    bool next_call_looks_up(const std::string& key = keys::port_service)
    {
        const std::size_t before = naming.lookups_of(key);
        if (key == keys::port_service) {
            home->answer("disconnect_port", 0);
            EXPECT_EQ(vl_disconenct_port(1, nullptr, nullptr), 0);
        } else if (key == keys::data_template_point_service) {
            home->answer("remove_DTP", 0);
            EXPECT_EQ(vl_remove_template_point("point", nullptr, nullptr), 0);
        } else if (key == keys::data_template_service) {
            home->answer("make_DT_snapshot", 0);
            EXPECT_EQ(vl_make_dt_snapshot(nullptr, nullptr), 0);
        } else {
            home->answer("out_contend", 0);
            EXPECT_EQ(vl_out_contend("group", "one", nullptr, nullptr, nullptr), 0);
        }
        return naming.lookups_of(key) > before;
    }

    ScriptedServer home;
};

} // namespace velmo::tests

#endif
