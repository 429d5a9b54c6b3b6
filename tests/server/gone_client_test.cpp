// Clients that are killed while velmod makes them wait.
#include <gtest/gtest.h>

#include <csignal>

#include "orb/server.h"
#include "tests/server/client.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

using Arguments = std::vector<std::string>;

// Waits last far longer than a test: only a client's end ends them.
Arguments patient(Arguments arguments)
{
    arguments.insert(arguments.end(), {"--max-wait", "86400000"});
    return arguments;
}

// Over a unix socket, which clients on this host prefer, and over TCP.
class GoneClient : public ::testing::TestWithParam<Arguments> {
protected:
    GoneClient()
        : velmod(patient(GetParam())), url(velmod.naming_url()), ports(port_service(url))
    {
    }

    void SetUp() override
    {
        if (!orb::abilities().sees_connections)
            GTEST_SKIP() << "this broker does not tell when a client has gone";
        ASSERT_EQ(ports->create_port("p1", 1, 1), VL_OK);
        ASSERT_EQ(ports->create_port("p2", 2, 1), VL_OK);
    }

    static Process::Command receiver_at(const std::string& url, const Arguments& arguments)
    {
        Process::Command command{RECEIVING_CLIENT_PATH, url};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    std::string point(const std::string& name)
    {
        CORBA::Object_var object = resolve(url, keys::data_template_point_service);
        Velmo::DT_POINT_SVC::DT_Point_Factory_var points =
            Velmo::DT_POINT_SVC::DT_Point_Factory::_narrow(object.in());
        Velmo::DATA_BUFFER_var value;
        EXPECT_EQ(points->get_DTP(("$SYS/ports/" + name).c_str(), value.out()), VL_OK);
        return text(value.in());
    }

    bool comes_to_wait_at(const std::string& port, int receivers)
    {
        return eventually(
            [&] { return point(port + "/waiting") == std::to_string(receivers); });
    }

    std::string receive(CORBA::ULong port)
    {
        Velmo::DATA_BUFFER_var data;
        const CORBA::Long result = ports->receive_packet(port, 0, data.out(), 0);
        return result == VL_OK ? text(data.in()) : "[" + std::to_string(result) + "]";
    }

    Velmod velmod;
    std::string url;
    Port_Factory_var ports;
};

TEST_P(GoneClient, GetsNoPacketFromTheMomentOfItsEnd)
{
    for (int i = 0; i < 5; ++i) {
        Process client(receiver_at(url, {"1", "0"}));
        ASSERT_TRUE(comes_to_wait_at("p1", 1));
        client.signal(SIGKILL);
        ASSERT_EQ(client.wait(), 128 + SIGKILL);
        ASSERT_EQ(ports->send_packet(1, buffer("for whoever lives"), 0), VL_OK);
        EXPECT_EQ(receive(1), "for whoever lives");
    }
}

TEST_P(GoneClient, IsNoticedAndFreed)
{
    Process client(receiver_at(url, {"1", "0"}));
    ASSERT_TRUE(comes_to_wait_at("p1", 1));
    client.signal(SIGKILL);
    EXPECT_TRUE(comes_to_wait_at("p1", 0));
}

TEST_P(GoneClient, DoesNotTakeOthersWithIt)
{
    Process first(receiver_at(url, {"1", "0"}));
    ASSERT_TRUE(comes_to_wait_at("p1", 1));
    Process second(receiver_at(url, {"1", "0"}));
    ASSERT_TRUE(comes_to_wait_at("p1", 2));
    first.signal(SIGKILL);
    ASSERT_EQ(first.wait(), 128 + SIGKILL);
    ASSERT_TRUE(comes_to_wait_at("p1", 1));
    ASSERT_EQ(ports->send_packet(1, buffer("x"), 0), VL_OK);
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(receive(1), "[2002]");
}

TEST_P(GoneClient, IsNotTakenForOneWhoseConnectionCarriesMoreCalls)
{
    const Arguments one_connection{
        "1", "0", "2", "-ORBmaxGIOPConnectionPerServer", "1", "-ORBoneCallPerConnection",
        "0"};
    Process client(receiver_at(url, one_connection));
    ASSERT_TRUE(comes_to_wait_at("p1", 1));
    ASSERT_TRUE(comes_to_wait_at("p2", 1));
    ASSERT_EQ(ports->send_packet(1, buffer("x"), 0), VL_OK);
    ASSERT_EQ(ports->send_packet(2, buffer("y"), 0), VL_OK);
    EXPECT_EQ(client.wait(), 0);

    Process killed(receiver_at(url, one_connection));
    ASSERT_TRUE(comes_to_wait_at("p1", 1));
    ASSERT_TRUE(comes_to_wait_at("p2", 1));
    killed.signal(SIGKILL);
    EXPECT_TRUE(comes_to_wait_at("p1", 0));
    EXPECT_TRUE(comes_to_wait_at("p2", 0));
}

INSTANTIATE_TEST_SUITE_P(Transports, GoneClient,
                         ::testing::Values(Arguments{}, Arguments{"--no-unix"}),
                         [](const auto& tested) {
                             return std::string(tested.param.empty() ? "Unix" : "Tcp");
                         });

} // namespace
