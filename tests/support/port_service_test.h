// The beginning that tests of calls to a port service share.
#ifndef VELMO_TESTS_SUPPORT_PORT_SERVICE_TEST_H
#define VELMO_TESTS_SUPPORT_PORT_SERVICE_TEST_H

#include <cstddef>
#include <string>

#include "idl/service_keys.h"
#include "tests/support/library_test.h"
#include "tests/support/port_servant.h"
#include "tests/support/test_orb.h"
#include "vl_api.h"

namespace velmo::tests {

// The default server "home" has a port service, in the unnamed realm.
class PortServiceTest : public LibraryTest {
protected:
    PortServiceTest()
    {
        set_own_servers({"home"});
        offer("home");
    }

    // Publishes the port service for a server and realm.
    void offer(const std::string& server, const std::string& realm = "")
    {
        naming.bind(server, (realm.empty() ? "" : "/" + realm + "/") + keys::port_service,
                    ports.reference().in());
    }

    // Whether the next call looks the service of "home" up, as it does for the first
    // time and after a failure. Makes a call.
    bool next_call_looks_up()
    {
        ports->answer("disconnect_port", 0);
        const std::size_t before = naming.lookups().size();
        EXPECT_EQ(vl_disconenct_port(1, nullptr, nullptr), VL_OK);
        return naming.lookups().size() > before;
    }

    Published<PortServant> ports;
};

} // namespace velmo::tests

#endif
