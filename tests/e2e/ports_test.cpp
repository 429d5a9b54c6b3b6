// Ports, connections, and what packets_test.cpp does not have of packets.
#include <future>
#include <utility>

#include "tests/e2e/one_server.h"
#include "tests/support/eventually.h"
#include "tests/support/intended_leak.h"

using namespace velmo::tests;

namespace {

enum Modes : unsigned int { plain = 30001, exclusive = 30002, from_host = 30004 };

constexpr unsigned int unknown = 99;
constexpr unsigned int short_wait = 20;     // for what does not come
constexpr unsigned int long_enough = 20000; // for what is bound to

const std::string megabyte(1 << 20, 'n');

using Connections = std::vector<std::pair<std::string, std::string>>;

// (from, to), as they were made.
Connections connections()
{
    ConnectionList list{};
    EXPECT_EQ(vl_get_connection_info(&list, nullptr, nullptr), VL_OK);
    Connections all;
    for (const ConnectionBlock* block = list.first; block; block = block->next)
        all.emplace_back(block->first_text, block->second_text);
    EXPECT_EQ(list.count, static_cast<int>(all.size()));
    vl_destory_connection_seq(&list);
    EXPECT_EQ(list.count, 0);
    return all;
}

Names channels()
{
    return listed(
        [](NameList* list) { return vl_com_chennal_seq(list, nullptr, nullptr); });
}

int copying(const std::string& port, unsigned int enable)
{
    return enableCopy(port.c_str(), enable, nullptr, nullptr);
}

int disconnect(unsigned int port)
{
    return vl_disconenct_port(port, nullptr, nullptr);
}

std::string port_point(const std::string& port, const std::string& property)
{
    return get_point("$SYS/ports/" + port + "/" + property);
}

// The ports p1, p2, p3 with the handles 1, 2, 3; room for two packets each.
class Ports : public OneServer {
protected:
    void SetUp() override
    {
        for (unsigned int handle = 1; handle <= 3; ++handle)
            ASSERT_EQ(create_port("p" + std::to_string(handle), handle, 2), VL_OK);
    }

    // A call on a thread of its own; gives it when the server has it wait at p1.
    template <class Call>
    static auto waiting(Call call)
    {
        auto result = std::async(std::launch::async, call);
        EXPECT_TRUE(eventually([] { return port_point("p1", "waiting") == "1"; }));
        return result;
    }
};

// ---------------------------------------------------- ports, connections

TEST_F(Ports, ThatCannotBeCreated)
{
    EXPECT_EQ(create_port("", 7), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_port("p", 0), PARAMETER_ERROR);
    EXPECT_EQ(create_port(std::string(256, 'n'), 7), PARAMETER_ERROR);
    EXPECT_EQ(create_port(megabyte, 7), PARAMETER_ERROR);
    EXPECT_EQ(create_port("", 0), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_port("p1", 0), PARAMETER_ERROR);
    EXPECT_EQ(create_port("p1", 7), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_port("p", 1), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_port("p", 7), VL_OK);
}

TEST_F(Ports, HoldAsManyPacketsAsTheirCapacitySays)
{
    ASSERT_EQ(create_port("default", 7, 0), VL_OK);
    ASSERT_EQ(create_port("most", 0xFFFFFFFF, 0xFFFFFFFF), VL_OK);
    EXPECT_EQ(port_point("p1", "capacity"), "2");
    EXPECT_EQ(port_point("default", "capacity"), "1024");
    EXPECT_EQ(port_point("most", "capacity"), "1048576");
    EXPECT_EQ(port_point("most", "handle"), "4294967295");
}

TEST_F(Ports, UnusualNamesAreNamesLikeOthers)
{
    unsigned int handle = 10;
    for (const std::string& name : unusual_names) {
        ASSERT_EQ(create_port(name, ++handle), VL_OK) << name;
        EXPECT_EQ(connect("p1", name), VL_OK);
        EXPECT_EQ(port_point(name, "handle"), std::to_string(handle));
    }
    Connections expected;
    for (const std::string& name : unusual_names)
        expected.emplace_back("p1", name);
    EXPECT_EQ(connections(), expected);
}

TEST_F(Ports, ConnectionsAndChannelsAreInTheOrderOfConnecting)
{
    EXPECT_EQ(connections(), Connections{});
    EXPECT_EQ(channels(), Names{});
    ASSERT_EQ(connect("p3", "p1"), VL_OK);
    ASSERT_EQ(connect("p1", "p2"), VL_OK);
    ASSERT_EQ(connect("p3", "p3"), VL_OK) << "to itself";
    ASSERT_EQ(connect("p1", "p3"), VL_OK);
    EXPECT_EQ(connections(),
              (Connections{{"p3", "p1"}, {"p1", "p2"}, {"p3", "p3"}, {"p1", "p3"}}));
    EXPECT_EQ(channels(), (Names{"p3", "p1", "p1", "p2", "p3"})) << "outgoing, incoming";
    ASSERT_EQ(disconnect(1), VL_OK);
    EXPECT_EQ(connections(), (Connections{{"p3", "p3"}}));
    EXPECT_EQ(channels(), (Names{"p3", "p3"}));
}

TEST_F(Ports, ListsNeedAPlace)
{
    EXPECT_EQ(vl_get_connection_info(nullptr, nullptr, nullptr), 151);
    EXPECT_EQ(vl_com_chennal_seq(nullptr, nullptr, nullptr), 143);
    vl_destory_connection_seq(nullptr);
}

TEST_F(Ports, ThatCannotBeConnected)
{
    EXPECT_EQ(connect("none", "p1"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(connect("", "p1"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(connect(megabyte, "p1"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(connect("p1", "none"), RECEIVER_IS_NOT_EXIST);
    EXPECT_EQ(connect("p1", megabyte), RECEIVER_IS_NOT_EXIST);
    for (const unsigned int mode : {0u, 30000u, 30003u, 0xFFFFFFFFu})
        EXPECT_EQ(connect("none", "none", mode), INVAILD_SINK_MODE);
    EXPECT_EQ(connections(), Connections{});
}

TEST_F(Ports, AnExclusiveConnectionIsTheOnlyOneAtBothEnds)
{
    ASSERT_EQ(create_port("p4", 4), VL_OK);
    ASSERT_EQ(connect("p1", "p2", exclusive), VL_OK);
    for (const unsigned int mode : {plain, exclusive, from_host}) {
        EXPECT_EQ(connect("p1", "p2", mode), ALREADY_CONNECTED);
        EXPECT_EQ(connect("p1", "p3", mode), ALREADY_CONNECTED);
        EXPECT_EQ(connect("p3", "p2", mode), ALREADY_CONNECTED);
        EXPECT_EQ(connect("p2", "p3", mode), ALREADY_CONNECTED);
    }
    ASSERT_EQ(connect("p3", "p4"), VL_OK);
    EXPECT_EQ(connect("p3", "p4"), ALREADY_CONNECTED);
    EXPECT_EQ(connect("p4", "p3", exclusive), ALREADY_CONNECTED);
    EXPECT_EQ(connect("p4", "p3"), VL_OK) << "the other direction";
    ASSERT_EQ(disconnect(2), VL_OK);
    EXPECT_EQ(connect("p1", "p3"), VL_OK);
}

TEST_F(Ports, AConnectionOfAHostTellsItsName)
{
    ASSERT_EQ(connect("p1", "p2"), VL_OK);
    EXPECT_EQ(port_point("p1", "host"), "");
    ASSERT_EQ(connect("p1", "p3", from_host), VL_OK);
    const std::string host = port_point("p1", "host");
    EXPECT_FALSE(host.empty());
    EXPECT_NE(host[0], '[');
    EXPECT_EQ(port_point("p3", "host"), "") << "it is the sender's";
    EXPECT_EQ(connect("p1", "p3", from_host), ALREADY_CONNECTED);
}

TEST_F(Ports, DisconnectedOnesKeepTheirPackets)
{
    ASSERT_EQ(connect("p1", "p2"), VL_OK);
    ASSERT_EQ(send(1, "queued"), VL_OK);
    ASSERT_EQ(disconnect(2), VL_OK);
    EXPECT_EQ(disconnect(1), NOT_CONNECTED);
    EXPECT_EQ(disconnect(unknown), INVAILD_PORT_HANDLE);
    ASSERT_EQ(send(1, "own"), VL_OK);
    EXPECT_EQ(receive(2), "queued");
    EXPECT_EQ(receive(2), "[2002]");
    EXPECT_EQ(receive(1), "own") << "without a receiver a port is a mailbox";
}

// -------------------------------------------------------------- packets

TEST_F(Ports, WithReceiversGiveEachACopyOrOneOfThemThePacket)
{
    ASSERT_EQ(connect("p1", "p2"), VL_OK);
    ASSERT_EQ(connect("p1", "p3"), VL_OK);
    ASSERT_EQ(send(1, "copied"), VL_OK);
    EXPECT_EQ(receive(2), "copied");
    EXPECT_EQ(receive(3), "copied");
    ASSERT_EQ(copying("p1", 0), VL_OK);
    for (const char* packet : {"a", "b", "c"})
        ASSERT_EQ(send(1, packet), VL_OK);
    EXPECT_EQ(receive(2), "a");
    EXPECT_EQ(receive(3), "b");
    EXPECT_EQ(receive(2), "c");
    EXPECT_EQ(receive(3), "[2002]");
    ASSERT_EQ(copying("p1", 1), VL_OK);
    ASSERT_EQ(send(1, "again"), VL_OK);
    EXPECT_EQ(receive(2), "again");
    EXPECT_EQ(receive(3), "again");
    EXPECT_EQ(copying("p1", 2), PARAMETER_ERROR);
    EXPECT_EQ(copying("none", 2), PARAMETER_ERROR);
    EXPECT_EQ(copying("none", 1), INVAILD_PORT_HANDLE);
    EXPECT_EQ(copying(megabyte, 1), INVAILD_PORT_HANDLE);
    EXPECT_EQ(enableCopy(nullptr, 1, nullptr, nullptr), INVAILD_PORT_HANDLE);
}

TEST_F(Ports, ACopyThatHasNoRoomGoesToNobody)
{
    ASSERT_EQ(connect("p1", "p2"), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    ASSERT_EQ(send(1, "b"), VL_OK);
    ASSERT_EQ(connect("p1", "p3"), VL_OK);
    EXPECT_EQ(send(1, "c"), WOULD_BLOCK);
    EXPECT_EQ(receive(3), "[2002]");
    ASSERT_EQ(copying("p1", 0), VL_OK);
    EXPECT_EQ(send(1, "c"), VL_OK) << "to the one with room";
    EXPECT_EQ(receive(3), "c");
}

TEST_F(Ports, PacketsToTheFrontComeFirst)
{
    ASSERT_EQ(create_port("p", 7), VL_OK);
    ASSERT_EQ(send(7, "a"), VL_OK);
    ASSERT_EQ(send_to_front(7, "b"), VL_OK);
    ASSERT_EQ(send_to_front(7, ""), VL_OK);
    EXPECT_EQ(receive(7), "");
    EXPECT_EQ(receive(7), "b");
    EXPECT_EQ(receive(7), "a");
    EXPECT_EQ(receive(7), "[2002]");
    EXPECT_EQ(vl_send_packet_to_front(7, nullptr, 1, 0, nullptr, nullptr), 154);
    EXPECT_EQ(vl_send_packet_to_front(7, "x", -1, 0, nullptr, nullptr), 154);
    EXPECT_EQ(send_to_front(unknown, "x"), INVAILD_PORT_HANDLE);
}

TEST_F(Ports, ThatAreFullRefuse)
{
    ASSERT_EQ(send(1, "a"), VL_OK);
    ASSERT_EQ(send(1, "b"), VL_OK);
    EXPECT_EQ(send(1, "c"), WOULD_BLOCK);
    EXPECT_EQ(send_to_front(1, "c"), WOULD_BLOCK);
    EXPECT_EQ(send(1, "c", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(send_to_front(1, "c", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(port_point("p1", "depth"), "2");
    EXPECT_EQ(port_point("p1", "bytes"), "2");
    auto sent = std::async(std::launch::async, [] { return send(1, "c", long_enough); });
    EXPECT_EQ(receive(1), "a");
    EXPECT_EQ(sent.get(), VL_OK) << "when there is room";
    EXPECT_EQ(receive(1), "b");
    EXPECT_EQ(receive(1), "c");
}

TEST_F(Ports, ThatAreEmptyGiveACode)
{
    char byte = 'u';
    EXPECT_EQ(receive(1), "[2002]");
    EXPECT_EQ(receive(1, short_wait), "[2000]");
    EXPECT_EQ(vl_receive_packet(1, nullptr, &byte, 1, 0, nullptr, nullptr), EMPTY_QUEUE);
    EXPECT_EQ(vl_receive_packet(1, nullptr, &byte, 1, short_wait, nullptr, nullptr),
              TIME_OUT);
    EXPECT_EQ(vl_receive_packet(unknown, nullptr, &byte, 1, 0, nullptr, nullptr),
              INVAILD_PORT_HANDLE);
    EXPECT_EQ(byte, 'u');
    void* data = &byte;
    unsigned int length = 77;
    EXPECT_EQ(vl_receive_packetv(1, nullptr, &data, &length, 0, nullptr, nullptr),
              EMPTY_QUEUE);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0u);
    ASSERT_EQ(send(1, "of 1"), VL_OK);
    EXPECT_EQ(receive(1, 0, 2), "[2002]") << "of that sender";
    EXPECT_EQ(receive(1, short_wait, 2), "[2000]");
}

TEST_F(Ports, AWaitEndsWithThePacket)
{
    auto received = waiting([] { return receive(1, long_enough); });
    ASSERT_EQ(send(1, "awaited"), VL_OK);
    EXPECT_EQ(received.get(), "awaited");
}

TEST_F(Ports, AWaitEndsWithTheServer)
{
    auto received = waiting([] { return receive(1, long_enough); });
    EXPECT_EQ(velmod.stop(), 0);
    EXPECT_EQ(received.get(), "[2000]");
}

TEST_F(Ports, APacketThatDoesNotFitItsBufferIsLost)
{
    char buffer[] = "....";
    for (const unsigned int size : {3u, 4u}) {
        ASSERT_EQ(send(1, size == 3 ? "four" : "two"), VL_OK);
        {
            const IntendedLeak the_packet;
            EXPECT_EQ(vl_receive_packet(1, nullptr, buffer, size, 0, nullptr, nullptr),
                      PARAMETER_NOT_MATCH);
        }
        EXPECT_STREQ(buffer, "....");
        EXPECT_EQ(receive(1), "[2002]");
    }
}

// -------------------------------------------------------------- replies

TEST_F(Ports, RepliesGoToTheSendersInTheOrderOfReceiving)
{
    ASSERT_EQ(connect("p1", "p3"), VL_OK);
    ASSERT_EQ(connect("p2", "p3"), VL_OK);
    ASSERT_EQ(send(1, "of 1"), VL_OK);
    ASSERT_EQ(send(2, "of 2"), VL_OK);
    EXPECT_EQ(reply(3, "x"), NON_EXIST_DATA) << "none has been received";
    EXPECT_EQ(receive(3), "of 1");
    EXPECT_EQ(receive(3), "of 2");
    EXPECT_EQ(receive_reply(1), "[2002]");
    EXPECT_EQ(receive_reply(1, short_wait), "[2016]");
    ASSERT_EQ(reply(3, "to 1"), VL_OK);
    ASSERT_EQ(reply(3, ""), VL_OK);
    EXPECT_EQ(reply(3, "x"), NON_EXIST_DATA);
    EXPECT_EQ(port_point("p1", "replies"), "1");
    EXPECT_EQ(receive_reply(2), "");
    EXPECT_EQ(receive_reply(1), "to 1");
    EXPECT_EQ(receive_reply(1), "[2001]") << "nothing is left that could be answered";
    EXPECT_EQ(receive_reply(1, short_wait), "[2016]");
}

TEST_F(Ports, RepliesIntoABufferFitExactly)
{
    char buffer[] = "....";
    const auto into_buffer = [&](unsigned int size, unsigned int option = 0) {
        return vl_receive_reply(1, buffer, size, option, nullptr, nullptr);
    };
    EXPECT_EQ(into_buffer(4), NON_EXIST_DATA);
    for (const char* question : {"a", "b"}) {
        ASSERT_EQ(send(1, question), VL_OK);
        ASSERT_EQ(receive(1), question);
    }
    EXPECT_EQ(into_buffer(4), EMPTY_QUEUE);
    EXPECT_EQ(into_buffer(4, short_wait), REPLAY_TIMEOUT);
    ASSERT_EQ(reply(1, "four"), VL_OK);
    ASSERT_EQ(reply(1, "FOUR"), VL_OK);
    EXPECT_EQ(into_buffer(3), PARAMETER_NOT_MATCH);
    EXPECT_STREQ(buffer, "....");
    EXPECT_EQ(into_buffer(4), VL_OK);
    EXPECT_STREQ(buffer, "FOUR") << "the other is lost";
    EXPECT_EQ(vl_receive_reply(1, nullptr, 4, 0, nullptr, nullptr), 127);
    EXPECT_EQ(vl_receive_reply(unknown, buffer, 4, 0, nullptr, nullptr),
              INVAILD_PORT_HANDLE);
}

TEST_F(Ports, RepliesWithoutRoomAreRefused)
{
    for (int i = 0; i < 3; ++i) {
        if (i == 2) { // two answers wait
            ASSERT_EQ(reply(1, "a"), VL_OK);
            ASSERT_EQ(reply(1, "b"), VL_OK);
        }
        ASSERT_EQ(send(1, "question"), VL_OK);
        ASSERT_EQ(receive(1), "question");
    }
    EXPECT_EQ(reply(1, "c"), WOULD_BLOCK);
    EXPECT_EQ(reply(1, "c", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(receive_reply(1), "a");
    EXPECT_EQ(reply(1, "c"), VL_OK) << "it can still be answered";
    EXPECT_EQ(reply(unknown, "x"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(vl_reply_packet(1, "x", -1, 0, nullptr, nullptr), 124);
    EXPECT_EQ(receive_reply(unknown), "[2007]");
}

TEST_F(Ports, AReplyThatIsNotThereLeavesTheCallersBlock)
{
    char mine = 'm';
    void* data = &mine;
    unsigned int length = 77;
    EXPECT_EQ(vl_receive_reply2(1, &data, &length, 0, nullptr, nullptr), NON_EXIST_DATA);
    EXPECT_EQ(data, &mine);
    EXPECT_EQ(length, 77u);
}

} // namespace
