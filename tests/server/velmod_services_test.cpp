// velmod's services, called over the broker.
#include <gtest/gtest.h>

#include "tests/server/client.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class VelmodServices : public ::testing::Test {
protected:
    explicit VelmodServices(std::vector<std::string> arguments = {})
        : velmod(std::move(arguments)), ports(port_service(velmod.naming_url()))
    {
    }

    Velmod velmod;
    Port_Factory_var ports;
};

class VelmodWithRealms : public VelmodServices {
protected:
    VelmodWithRealms() : VelmodServices({"--realm", "alpha", "--realm", "plant/north"}) {}
};

class ImpatientVelmod : public VelmodServices {
protected:
    ImpatientVelmod() : VelmodServices({"--max-wait", "20"}) {}
};

TEST_F(VelmodServices, APacketAndItsReplyGoThereAndBack)
{
    ASSERT_EQ(ports->create_port("from", 1, 0), VL_OK);
    ASSERT_EQ(ports->create_port("to", 2, 0), VL_OK);
    ASSERT_EQ(ports->connect_port("from", "to", 30001, 0, ""), VL_OK);
    ASSERT_EQ(ports->send_packet(1, buffer("question"), 0), VL_OK);
    Velmo::DATA_BUFFER_var data;
    ASSERT_EQ(ports->receive_packet(2, 1, data.out(), 0), VL_OK);
    EXPECT_EQ(text(data.in()), "question");
    ASSERT_EQ(ports->reply_packet(2, buffer("answer"), 0), VL_OK);
    ASSERT_EQ(ports->receive_reply(1, data.out(), 0), VL_OK);
    EXPECT_EQ(text(data.in()), "answer");
    EXPECT_EQ(ports->disconnect_port(1), VL_OK);
}

TEST_F(VelmodServices, DataOfAnyLengthAndKindPassUnchanged)
{
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    for (const std::size_t length : {0u, 1u, 1023u, 8192u, 16384u, 65536u, 3u << 20}) {
        std::string sent(length, '\0');
        for (std::size_t i = 0; i < length; ++i)
            sent[i] = static_cast<char>(i * 7 >> 3);
        ASSERT_EQ(ports->send_packet(1, buffer(sent), 0), VL_OK);
        Velmo::DATA_BUFFER_var data;
        ASSERT_EQ(ports->receive_packet(1, 0, data.out(), 0), VL_OK);
        EXPECT_TRUE(text(data.in()) == sent) << length;
    }
}

TEST_F(VelmodServices, APacketLargerThanAnyQueueIsRefused)
{
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports->send_packet(1, buffer(std::string((64u << 20) + 1, 'x')), 0),
              SIZE_IS_NOT_MATCH);
}

TEST_F(VelmodServices, FailuresComeWithTheirCodesAndEmptyData)
{
    Velmo::DATA_BUFFER_var data;
    EXPECT_EQ(ports->receive_packet(7, 0, data.out(), 0), INVAILD_PORT_HANDLE);
    EXPECT_EQ(data->length(), 0u);
    EXPECT_EQ(ports->receive_reply(7, data.out(), 0), INVAILD_PORT_HANDLE);
    EXPECT_EQ(data->length(), 0u);
    EXPECT_EQ(ports->create_port("", 1, 0), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(ports->connect_port("a", "b", 1, 0, ""), INVAILD_SINK_MODE);
    EXPECT_EQ(ports->register_port_host("a", "host"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(ports->enable_copy("a", 1), INVAILD_PORT_HANDLE);
}

TEST_F(VelmodServices, ConnectionsAndChannelsAreListed)
{
    Velmo::DT_PORT_SVC::CONNECTION_SEQ_var connections;
    Velmo::NAME_SEQ_var outgoing;
    Velmo::NAME_SEQ_var incoming;
    ASSERT_EQ(ports->get_connection_info(connections.out()), VL_OK);
    EXPECT_EQ(connections->length(), 0u);
    ASSERT_EQ(ports->com_chennal_seq(outgoing.out(), incoming.out()), VL_OK);
    EXPECT_EQ(outgoing->length() + incoming->length(), 0u);

    ASSERT_EQ(ports->create_port("a", 1, 0), VL_OK);
    ASSERT_EQ(ports->create_port("b", 2, 0), VL_OK);
    ASSERT_EQ(ports->connect_port("a", "b", 30004, 0, ""), VL_OK);
    ASSERT_EQ(ports->register_port_host("a", "host"), VL_OK);
    ASSERT_EQ(ports->get_connection_info(connections.out()), VL_OK);
    ASSERT_EQ(connections->length(), 1u);
    EXPECT_STREQ(connections[0u].from_name.in(), "a");
    EXPECT_STREQ(connections[0u].to_name.in(), "b");
    ASSERT_EQ(ports->com_chennal_seq(outgoing.out(), incoming.out()), VL_OK);
    ASSERT_EQ(outgoing->length(), 1u);
    ASSERT_EQ(incoming->length(), 1u);
    EXPECT_STREQ(outgoing[0u], "a");
    EXPECT_STREQ(incoming[0u], "b");
}

TEST_F(VelmodServices, ToFrontAndCopyingReachTheModel)
{
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    ASSERT_EQ(ports->send_packet(1, buffer("a"), 0), VL_OK);
    ASSERT_EQ(ports->send_packet_to_front(1, buffer("b"), 0), VL_OK);
    Velmo::DATA_BUFFER_var data;
    ASSERT_EQ(ports->receive_packet(1, 0, data.out(), 0), VL_OK);
    EXPECT_EQ(text(data.in()), "b");
    EXPECT_EQ(ports->enable_copy("p", 0), VL_OK);
}

TEST_F(VelmodServices, EventsAreDeclaredRaisedCountedAndCleared)
{
    CORBA::Long count = 99;
    EXPECT_EQ(ports->add_event("e", 7), NO_MATCH_EVENT_CODE);
    EXPECT_EQ(ports->clear_event("e"), EVENT_DECLARE_NUL);
    EXPECT_EQ(ports->declare_event(7, buffer("idle"), 2), PARAMETER_ERROR);
    ASSERT_EQ(ports->declare_event(7, buffer("idle"), 1), VL_OK);
    ASSERT_EQ(ports->add_event("e", 7), VL_OK);
    ASSERT_EQ(ports->send_event("e", buffer("happened")), VL_OK);
    ASSERT_EQ(ports->send_event("e", buffer("")), VL_OK);
    ASSERT_EQ(ports->event_count("e", count), VL_OK);
    EXPECT_EQ(count, 2);
    ASSERT_EQ(ports->clear_event("e"), VL_OK);
    ASSERT_EQ(ports->event_count("e", count), VL_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(ports->event_count("x", count), EVENT_DECLARE_NUL);
}

TEST_F(ImpatientVelmod, MaxWaitLimitsEveryWait)
{
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    Velmo::DATA_BUFFER_var data;
    EXPECT_EQ(ports->receive_packet(1, 0, data.out(), 0xFFFFFFFF), TIME_OUT);
}

TEST_F(VelmodWithRealms, EveryRealmHasPortsOfItsOwn)
{
    Port_Factory_var alpha = port_service(velmod.naming_url(), "alpha/");
    Port_Factory_var north = port_service(velmod.naming_url(), "plant/north/");
    EXPECT_EQ(ports->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(alpha->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(north->create_port("p", 1, 0), VL_OK);
    ASSERT_EQ(alpha->send_packet(1, buffer("x"), 0), VL_OK);
    Velmo::DATA_BUFFER_var data;
    EXPECT_EQ(ports->receive_packet(1, 0, data.out(), 0), EMPTY_QUEUE);
    EXPECT_EQ(north->receive_packet(1, 0, data.out(), 0), EMPTY_QUEUE);
    EXPECT_EQ(alpha->receive_packet(1, 0, data.out(), 0), VL_OK);
}

TEST_F(VelmodWithRealms, RootIsAnotherNameOfTheUnnamedRealm)
{
    Port_Factory_var root = port_service(velmod.naming_url(), "ROOT/");
    EXPECT_EQ(ports->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(root->create_port("p", 1, 0), OBJECT_ALREADY_EXSIT);
}

TEST_F(VelmodWithRealms, TheServiceManagerListsRootAndTheRealms)
{
    CORBA::Object_var object = resolve(velmod.naming_url(), keys::service_manager);
    Velmo::VelmoServiceManager_var manager =
        Velmo::VelmoServiceManager::_narrow(object.in());
    ASSERT_FALSE(CORBA::is_nil(manager.in()));
    Velmo::NAME_SEQ_var realms;
    EXPECT_EQ(manager->get_releam_seq(realms.out()), VL_OK);
    ASSERT_EQ(realms->length(), 3u);
    EXPECT_STREQ(realms[0u], "ROOT");
    EXPECT_STREQ(realms[1u], "alpha");
    EXPECT_STREQ(realms[2u], "plant/north");
}

TEST_F(VelmodWithRealms, TheServiceManagerIsInNoRealm)
{
    for (const char* realm : {"ROOT/", "alpha/"})
        EXPECT_FALSE(
            is_bound(velmod.naming_url(), realm + std::string(keys::service_manager)));
}

TEST_F(VelmodServices, ReferencesSurviveAKillAndARestart)
{
    CosNaming::NamingContext_var names = naming_context(velmod.naming_url());
    velmod.kill();
    EXPECT_THROW(ports->create_port("p", 1, 0), CORBA::SystemException);
    velmod.restart();
    EXPECT_TRUE(
        eventually_answered([&] { return ports->create_port("p", 1, 0) == VL_OK; }));
    EXPECT_TRUE(eventually_answered([&] {
        CORBA::Object_var found = names->resolve(util::name_of_path(keys::port_service));
        return !CORBA::is_nil(found.in());
    }));
}

} // namespace
