// Ports and the connections between them.
#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Ports : public PortFixture {
protected:
    std::string connections() const
    {
        std::string text;
        for (const model::ConnectionNames& connection : ports.connections())
            text += connection.from + ">" + connection.to + " ";
        return text;
    }
};

TEST_F(Ports, CreatingAPortGivesItsHandleAMeaning)
{
    EXPECT_EQ(send(1, "x"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(ports.create_port("p1", 1, 0), VL_OK);
    EXPECT_EQ(send(1, "x"), VL_OK);
}

TEST_F(Ports, AnExistingNameIsRefused)
{
    create({1});
    EXPECT_EQ(ports.create_port("p1", 2, 0), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(send(2, "x"), INVAILD_PORT_HANDLE);
}

TEST_F(Ports, AnExistingHandleIsRefused)
{
    create({1});
    EXPECT_EQ(ports.create_port("other", 1, 0), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(ports.enable_copy("other", 1), INVAILD_PORT_HANDLE);
}

TEST_F(Ports, HandleZeroIsRefused)
{
    EXPECT_EQ(ports.create_port("p", 0, 0), PARAMETER_ERROR);
}

TEST_F(Ports, AnEmptyNameIsRefused)
{
    EXPECT_EQ(ports.create_port("", 1, 0), INVAILD_NULL_PARAMETER);
}

TEST_F(Ports, ANameOf255BytesIsTakenAndALongerOneRefused)
{
    EXPECT_EQ(ports.create_port(std::string(255, 'n'), 1, 0), VL_OK);
    EXPECT_EQ(ports.create_port(std::string(256, 'n'), 2, 0), PARAMETER_ERROR);
    EXPECT_EQ(ports.create_port(std::string(1u << 20, 'n'), 3, 0), PARAMETER_ERROR);
}

TEST_F(Ports, NamesAreBytesOfAnyKind)
{
    EXPECT_EQ(ports.create_port("a/b", 1, 0), VL_OK);
    EXPECT_EQ(ports.create_port("line\nbreak", 2, 0), VL_OK);
    EXPECT_EQ(ports.create_port("\xff\xfe", 3, 0), VL_OK);
    EXPECT_EQ(ports.connect_port("a/b", "\xff\xfe", plain), VL_OK);
}

TEST_F(Ports, ConnectingAnUnknownSenderIsRefused)
{
    create({1});
    EXPECT_EQ(connect(9, 1), INVAILD_PORT_HANDLE);
}

TEST_F(Ports, ConnectingToAnUnknownReceiverIsRefused)
{
    create({1});
    EXPECT_EQ(connect(1, 9), RECEIVER_IS_NOT_EXIST);
}

TEST_F(Ports, OnlyThreeModesAreKnown)
{
    create({1, 2, 3, 4});
    for (const std::uint32_t mode : {0u, 1u, 30000u, 30003u, 30005u, 0xFFFFFFFFu})
        EXPECT_EQ(connect(1, 2, mode), INVAILD_SINK_MODE) << mode;
    EXPECT_EQ(connect(1, 2, plain), VL_OK);
    EXPECT_EQ(connect(1, 3, from_host), VL_OK);
    EXPECT_EQ(connect(4, 4, exclusive), VL_OK);
}

TEST_F(Ports, TheSamePairCannotBeConnectedTwice)
{
    create({1, 2});
    EXPECT_EQ(connect(1, 2), VL_OK);
    EXPECT_EQ(connect(1, 2), ALREADY_CONNECTED);
    EXPECT_EQ(connect(1, 2, from_host), ALREADY_CONNECTED);
    EXPECT_EQ(connect(2, 1), VL_OK) << "the other direction is another pair";
}

TEST_F(Ports, AnExclusiveConnectionNeedsBothEndsFree)
{
    create({1, 2, 3, 4});
    ASSERT_EQ(connect(1, 2), VL_OK);
    EXPECT_EQ(connect(1, 3, exclusive), ALREADY_CONNECTED);
    EXPECT_EQ(connect(3, 1, exclusive), ALREADY_CONNECTED);
    EXPECT_EQ(connect(2, 3, exclusive), ALREADY_CONNECTED);
    EXPECT_EQ(connect(3, 2, exclusive), ALREADY_CONNECTED);
    EXPECT_EQ(connect(3, 4, exclusive), VL_OK);
}

TEST_F(Ports, TheEndsOfAnExclusiveConnectionTakeNoOther)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 2, exclusive), VL_OK);
    EXPECT_EQ(connect(1, 3), ALREADY_CONNECTED);
    EXPECT_EQ(connect(3, 1), ALREADY_CONNECTED);
    EXPECT_EQ(connect(2, 3), ALREADY_CONNECTED);
    EXPECT_EQ(connect(3, 2), ALREADY_CONNECTED);
    EXPECT_EQ(connect(2, 1), ALREADY_CONNECTED);

    ASSERT_EQ(ports.disconnect_port(1), VL_OK);
    EXPECT_EQ(connect(3, 2), VL_OK);
}

TEST_F(Ports, DisconnectingEndsTheConnectionsInBothDirections)
{
    create({1, 2, 3, 4});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(3, 1), VL_OK);
    ASSERT_EQ(connect(3, 4), VL_OK);
    EXPECT_EQ(ports.disconnect_port(1), VL_OK);
    EXPECT_EQ(connections(), "p3>p4 ");
    EXPECT_EQ(connect(1, 2), VL_OK) << "they may be connected again";
}

TEST_F(Ports, DisconnectingAPortConnectedToItselfWorks)
{
    create({1});
    ASSERT_EQ(connect(1, 1), VL_OK);
    EXPECT_EQ(ports.disconnect_port(1), VL_OK);
    EXPECT_EQ(connections(), "");
}

TEST_F(Ports, DisconnectingNeedsAConnection)
{
    create({1});
    EXPECT_EQ(ports.disconnect_port(1), NOT_CONNECTED);
    EXPECT_EQ(ports.disconnect_port(9), INVAILD_PORT_HANDLE);
}

TEST_F(Ports, PacketsInTheQueueSurviveTheConnection)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(send(1, "x"), VL_OK);
    ASSERT_EQ(ports.disconnect_port(2), VL_OK);
    EXPECT_EQ(receive(2), "x");
}

TEST_F(Ports, ConnectionsAreListedInTheOrderOfConnecting)
{
    create({1, 2, 3});
    EXPECT_EQ(connections(), "");
    ASSERT_EQ(connect(3, 1), VL_OK);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(3, 2), VL_OK);
    EXPECT_EQ(connections(), "p3>p1 p1>p2 p3>p2 ");
}

TEST_F(Ports, ChannelsAreThePortsWithOutgoingAndThoseWithIncomingConnections)
{
    create({1, 2, 3, 4});
    ASSERT_EQ(connect(3, 1), VL_OK);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(3, 2), VL_OK);
    const model::ChannelNames channels = ports.channels();
    EXPECT_EQ(channels.outgoing, (std::vector<std::string>{"p3", "p1"}));
    EXPECT_EQ(channels.incoming, (std::vector<std::string>{"p1", "p2"}));
}

TEST_F(Ports, AHostRegistersWithItsConnectedPort)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2, from_host), VL_OK);
    EXPECT_EQ(ports.status("p1")->host, "");
    EXPECT_EQ(ports.register_port_host("p1", "host.example"), VL_OK);
    EXPECT_EQ(ports.status("p1")->host, "host.example");
}

TEST_F(Ports, AHostNeedsAConnectionOfItsModeToRegister)
{
    create({1, 2});
    EXPECT_EQ(ports.register_port_host("p1", "host"), NOT_CONNECTED);
    ASSERT_EQ(connect(1, 2, plain), VL_OK);
    EXPECT_EQ(ports.register_port_host("p1", "host"), NOT_CONNECTED);
    EXPECT_EQ(ports.status("p1")->host, "");
}

TEST_F(Ports, ABadRegistrationOfAHostIsRefused)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2, from_host), VL_OK);
    EXPECT_EQ(ports.register_port_host("p9", "host"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(ports.register_port_host("p1", std::string(256, 'h')), PARAMETER_ERROR);
}

TEST_F(Ports, CopyingIsSwitchedByNameWithZeroOrOne)
{
    create({1});
    EXPECT_EQ(ports.enable_copy("p1", 0), VL_OK);
    EXPECT_EQ(ports.enable_copy("p1", 1), VL_OK);
    EXPECT_EQ(ports.enable_copy("p1", 2), PARAMETER_ERROR);
    EXPECT_EQ(ports.enable_copy("p9", 1), INVAILD_PORT_HANDLE);
}

} // namespace
