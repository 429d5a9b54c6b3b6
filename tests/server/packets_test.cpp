// Packets on their way from port to port, without waiting.
#include <set>

#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Packets : public PortFixture {
protected:
    using PortFixture::PortFixture;
};

class PacketsInTenBytes : public Packets {
protected:
    PacketsInTenBytes() : Packets(narrow_limits(10)) {}
};

TEST_F(Packets, AnUnconnectedPortIsItsOwnMailbox)
{
    create({1, 2});
    EXPECT_EQ(send(1, "first"), VL_OK);
    EXPECT_EQ(send(1, ""), VL_OK);
    EXPECT_EQ(receive(2), "[2002]");
    EXPECT_EQ(receive(1), "first");
    EXPECT_EQ(receive(1), "");
    EXPECT_EQ(receive(1), "[2002]");
}

TEST_F(Packets, AConnectedPortSendsToItsReceiverAndKeepsNothing)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    EXPECT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(receive(1), "[2002]");
    EXPECT_EQ(receive(2), "x");
}

TEST_F(Packets, UnknownHandlesAreRefused)
{
    EXPECT_EQ(send(7, "x", long_enough), INVAILD_PORT_HANDLE);
    EXPECT_EQ(ports.send_packet_to_front(7, bytes_of("x"), long_enough),
              INVAILD_PORT_HANDLE);
    EXPECT_EQ(receive(7, long_enough), "[2007]");
    EXPECT_EQ(reply(7, "x", long_enough), INVAILD_PORT_HANDLE);
    EXPECT_EQ(receive_reply(7, long_enough), "[2007]");
}

TEST_F(Packets, EveryReceiverGetsItsCopy)
{
    create({1, 2, 3, 4});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(1, 4), VL_OK);
    EXPECT_EQ(send(1, "x"), VL_OK);
    for (const model::Handle port : {2u, 3u, 4u})
        EXPECT_EQ(receive(port), "x");
}

TEST_F(Packets, CopiesShareTheirBytes)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    const model::Data sent = bytes_of("x");
    ASSERT_EQ(ports.send_packet(1, sent, 0), VL_OK);
    for (const model::Handle port : {2u, 3u}) {
        model::Data got;
        ASSERT_EQ(ports.receive_packet(port, 0, got, 0), VL_OK);
        EXPECT_EQ(got, sent);
    }
}

TEST_F(Packets, WhenOneReceiverIsFullNoneGetsThePacket)
{
    create({1, 2, 4});
    create({3}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(1, 4), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    EXPECT_EQ(send(1, "b"), WOULD_BLOCK);
    EXPECT_EQ(receive(3), "a");
    EXPECT_EQ(send(1, "c"), VL_OK);
    for (const model::Handle port : {2u, 4u}) {
        EXPECT_EQ(receive(port), "a");
        EXPECT_EQ(receive(port), "c");
    }
}

TEST_F(Packets, WithoutCopiesReceiversTakeTurns)
{
    create({1, 2, 3, 4});
    for (const model::Handle port : {2u, 3u, 4u})
        ASSERT_EQ(connect(1, port), VL_OK);
    ASSERT_EQ(ports.enable_copy("p1", 0), VL_OK);
    for (const char* text : {"a", "b", "c", "d"})
        ASSERT_EQ(send(1, text), VL_OK);
    EXPECT_EQ(drain(2), "ad");
    EXPECT_EQ(drain(3), "b");
    EXPECT_EQ(drain(4), "c");
}

TEST_F(Packets, WithoutCopiesFullReceiversArePassedOver)
{
    create({1, 3});
    create({2}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(ports.enable_copy("p1", 0), VL_OK);
    for (const char* text : {"a", "b", "c", "d"})
        ASSERT_EQ(send(1, text), VL_OK);
    EXPECT_EQ(drain(2), "a");
    EXPECT_EQ(drain(3), "bcd");
}

TEST_F(Packets, WithoutCopiesASendFailsOnlyWhenAllAreFull)
{
    create({1});
    create({2, 3}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(ports.enable_copy("p1", 0), VL_OK);
    EXPECT_EQ(send(1, "a"), VL_OK);
    EXPECT_EQ(send(1, "b"), VL_OK);
    EXPECT_EQ(send(1, "c"), WOULD_BLOCK);
    EXPECT_EQ(receive(3), "b");
    EXPECT_EQ(send(1, "d"), VL_OK);
    EXPECT_EQ(receive(3), "d");
}

TEST_F(Packets, TheCapacityIsANumberOfPackets)
{
    create({1}, 3);
    for (const char* text : {"a", "b", "c"})
        EXPECT_EQ(send(1, text), VL_OK);
    EXPECT_EQ(send(1, "d"), WOULD_BLOCK);
    EXPECT_EQ(receive(1), "a");
    EXPECT_EQ(send(1, "d"), VL_OK);
    EXPECT_EQ(send(1, "e"), WOULD_BLOCK);
}

TEST_F(Packets, CapacityZeroIsTheDefaultOne)
{
    create({1}, 0);
    for (std::uint32_t i = 0; i < model::PortLimits().default_capacity; ++i)
        ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(send(1, "x"), WOULD_BLOCK);
}

TEST(PacketLimits, ACapacityBeyondTheLimitIsTheLimit)
{
    model::PortLimits limits;
    limits.max_capacity = 2;
    model::PortService ports(limits);
    ASSERT_EQ(ports.create_port("p", 1, 0xFFFFFFFF), VL_OK);
    EXPECT_EQ(ports.send_packet(1, bytes_of("a"), 0), VL_OK);
    EXPECT_EQ(ports.send_packet(1, bytes_of("b"), 0), VL_OK);
    EXPECT_EQ(ports.send_packet(1, bytes_of("c"), 0), WOULD_BLOCK);
}

TEST_F(PacketsInTenBytes, AQueueIsBoundedInBytes)
{
    create({1});
    EXPECT_EQ(send(1, "12345"), VL_OK);
    EXPECT_EQ(send(1, "123456"), WOULD_BLOCK);
    EXPECT_EQ(send(1, "12345"), VL_OK);
    EXPECT_EQ(send(1, "1"), WOULD_BLOCK);
    EXPECT_EQ(send(1, ""), VL_OK);
    EXPECT_EQ(receive(1), "12345");
    EXPECT_EQ(send(1, "1"), VL_OK);
}

TEST_F(PacketsInTenBytes, APacketThatCanNeverFitIsRefusedAtOnce)
{
    create({1});
    EXPECT_EQ(send(1, "1234567890"), VL_OK);
    EXPECT_EQ(send(1, "12345678901", long_enough), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(ports.send_packet_to_front(1, bytes_of("12345678901"), long_enough),
              SIZE_IS_NOT_MATCH);
}

TEST_F(Packets, ToFrontOvertakesWhatIsQueued)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    ASSERT_EQ(ports.send_packet_to_front(1, bytes_of("b"), 0), VL_OK);
    ASSERT_EQ(ports.send_packet_to_front(1, bytes_of("c"), 0), VL_OK);
    EXPECT_EQ(drain(2), "cba");
}

TEST_F(Packets, ToFrontNeedsRoomAsWell)
{
    create({1}, 1);
    ASSERT_EQ(ports.send_packet_to_front(1, bytes_of("a"), 0), VL_OK);
    EXPECT_EQ(ports.send_packet_to_front(1, bytes_of("b"), 0), WOULD_BLOCK);
}

TEST_F(Packets, FromTakesTheOldestOfThatSender)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    for (const char* text : {"a", "b"}) {
        ASSERT_EQ(send(1, std::string("1") + text), VL_OK);
        ASSERT_EQ(send(2, std::string("2") + text), VL_OK);
    }
    EXPECT_EQ(receive(3, 0, 2), "2a");
    EXPECT_EQ(receive(3, 0, 2), "2b");
    EXPECT_EQ(receive(3, 0, 2), "[2002]");
    EXPECT_EQ(receive(3), "1a");
    EXPECT_EQ(receive(3, 0, 1), "1b");
}

TEST_F(Packets, FromAPortThatIsNotThereMatchesNothing)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(receive(2, 0, 77), "[2002]");
    EXPECT_EQ(receive(2, 0, (1ull << 32) + 1), "[2002]") << "not cut to 32 bits";
    EXPECT_EQ(receive(2, 0, 1), "x");
}

TEST_F(Packets, AMailboxPacketIsFromThePortItself)
{
    create({1});
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(receive(1, 0, 1), "x");
}

TEST_F(Packets, SendersOfOnePortKeepTheirOrder)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    std::string sent[2];
    for (int i = 0; i < 20; ++i) {
        const model::Handle sender = i % 3 == 0 ? 2 : 1;
        const std::string text(1, static_cast<char>('a' + i));
        ASSERT_EQ(send(sender, text), VL_OK);
        sent[sender - 1] += text;
    }
    for (const model::Handle sender : {2u, 1u})
        for (const char expected : sent[sender - 1])
            EXPECT_EQ(receive(3, 0, sender), std::string(1, expected));
}

TEST_F(Packets, AManyPortServiceFindsEachOfThem)
{
    constexpr model::Handle count = 20000;
    for (model::Handle handle = 1; handle <= count; ++handle)
        create({handle}, 1);
    for (const model::Handle handle : {1u, count / 2, count}) {
        ASSERT_EQ(send(handle, std::to_string(handle)), VL_OK);
        EXPECT_EQ(receive(handle), std::to_string(handle));
    }
}

} // namespace
