// Operations that wait: for packets, for room, for replies.
#include <thread>

#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Waiting : public PortFixture {
protected:
    using PortFixture::PortFixture;

    auto receiver(model::Handle port, std::uint64_t from = 0)
    {
        return waiting([=] { return receive(port, long_enough, from); });
    }

    auto sender(model::Handle port, const std::string& text)
    {
        return waiting([=] { return send(port, text, long_enough); });
    }
};

class WaitingInTenBytes : public Waiting {
protected:
    WaitingInTenBytes() : Waiting(narrow_limits(10)) {}
};

model::PortLimits impatient_limits()
{
    model::PortLimits limits;
    limits.max_wait = std::chrono::milliseconds(20);
    return limits;
}

class WaitingBriefly : public Waiting {
protected:
    WaitingBriefly() : Waiting(impatient_limits()) {}
};

TEST_F(Waiting, AReceiverGetsThePacketThatComes)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    auto got = receiver(2);
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(got.get(), "x");
}

TEST_F(Waiting, AWaitThatIsNotMetEndsWithItsOwnCode)
{
    create({1}, 1);
    EXPECT_EQ(receive(1, short_wait), "[2000]");
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(send(1, "y", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(ports.send_packet_to_front(1, bytes_of("y"), short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(receive(1), "x");
    EXPECT_EQ(receive(1), "[2002]") << "what timed out was not sent";
}

TEST_F(WaitingBriefly, TheServersLimitHoldsForEveryWait)
{
    create({1}, 1);
    EXPECT_EQ(receive(1, model::longest_wait), "[2000]");
    EXPECT_EQ(receive(1, 1000000000), "[2000]");
    EXPECT_EQ(receive_reply(1, model::longest_wait), "[2016]");
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(send(1, "y", model::longest_wait), SENDMSG_TIMEOUT);
}

TEST_F(Waiting, ReceiversAreServedInTheOrderOfTheirComing)
{
    create({1});
    auto first = receiver(1);
    auto second = receiver(1);
    ASSERT_EQ(send(1, "a"), VL_OK);
    ASSERT_EQ(send(1, "b"), VL_OK);
    EXPECT_EQ(first.get(), "a");
    EXPECT_EQ(second.get(), "b");
}

TEST_F(Waiting, APacketForAWaitingReceiverCannotBeSnatched)
{
    create({1});
    auto got = receiver(1);
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(receive(1), "[2002]");
    EXPECT_EQ(got.get(), "x");
}

TEST_F(Waiting, AReceiverOfOneSenderLeavesTheOthersPackets)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    auto from_two = receiver(3, 2);
    auto from_anybody = receiver(3);
    ASSERT_EQ(send(1, "1"), VL_OK);
    EXPECT_EQ(from_anybody.get(), "1");
    ASSERT_EQ(send(1, "queued"), VL_OK);
    ASSERT_EQ(send(2, "2"), VL_OK);
    EXPECT_EQ(from_two.get(), "2");
    EXPECT_EQ(receive(3), "queued");
}

TEST_F(Waiting, AWaitingReceiverNeedsNoRoomInTheQueue)
{
    create({1, 2});
    create({3}, 1);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    ASSERT_EQ(send(1, "fills the queue"), VL_OK);
    auto from_two = receiver(3, 2);
    EXPECT_EQ(send(1, "no room"), WOULD_BLOCK);
    EXPECT_EQ(send(2, "2"), VL_OK);
    EXPECT_EQ(from_two.get(), "2");
}

TEST_F(Waiting, ASenderGoesOnWhenThereIsRoom)
{
    create({1}, 1);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    EXPECT_EQ(receive(1), "a");
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(receive(1), "b");
}

TEST_F(Waiting, SendersGoOnInTheOrderOfTheirComing)
{
    create({1}, 1);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto first = sender(1, "b");
    auto second = sender(1, "c");
    EXPECT_EQ(receive(1), "a");
    EXPECT_EQ(first.get(), VL_OK);
    EXPECT_EQ(ports.waiting(), 1u);
    EXPECT_EQ(receive(1), "b");
    EXPECT_EQ(second.get(), VL_OK);
    EXPECT_EQ(receive(1), "c");
}

TEST_F(Waiting, ASenderToSeveralWaitsUntilAllHaveRoom)
{
    create({1});
    create({2, 3}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    EXPECT_EQ(receive(2), "a");
    EXPECT_EQ(receive(2), "[2002]") << "not before the other";
    EXPECT_EQ(receive(3), "a");
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(receive(2), "b");
    EXPECT_EQ(receive(3), "b");
}

TEST_F(Waiting, WithoutCopiesASenderGoesOnWhenOneHasRoom)
{
    create({1});
    create({2, 3}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(ports.enable_copy("p1", 0), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    ASSERT_EQ(send(1, "b"), VL_OK);
    auto sent = sender(1, "c");
    EXPECT_EQ(receive(3), "b");
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(receive(3), "c");
}

TEST_F(WaitingInTenBytes, ASmallPacketIsNotHeldUpByALargeOne)
{
    create({1});
    ASSERT_EQ(send(1, "1234567"), VL_OK);
    ASSERT_EQ(send(1, "123"), VL_OK);
    auto large = sender(1, "1234567890");
    auto small = sender(1, "12345");
    EXPECT_EQ(receive(1), "1234567");
    EXPECT_EQ(small.get(), VL_OK);
    EXPECT_EQ(receive(1), "123");
    EXPECT_EQ(receive(1), "12345");
    EXPECT_EQ(large.get(), VL_OK);
    EXPECT_EQ(receive(1), "1234567890");
}

TEST_F(Waiting, ASenderThatGaveUpIsNotWaitedFor)
{
    create({1}, 1);
    ASSERT_EQ(send(1, "a"), VL_OK);
    EXPECT_EQ(send(1, "b", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(receive(1), "a");
    EXPECT_EQ(receive(1), "[2002]");
    EXPECT_EQ(ports.waiting(), 0u);
}

TEST_F(Waiting, ASenderToALostReceiverGoesOnWithTheOthers)
{
    create({1, 3});
    create({2}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    ASSERT_EQ(ports.disconnect_port(2), VL_OK);
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(drain(2), "a");
    EXPECT_EQ(drain(3), "ab");
}

TEST_F(Waiting, ASenderThatIsDisconnectedGoesOnWithItsMailbox)
{
    create({1});
    create({2}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    ASSERT_EQ(ports.disconnect_port(1), VL_OK);
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(receive(1), "b");
}

TEST_F(Waiting, ASenderAtItsMailboxGoesOnWithANewReceiver)
{
    create({1}, 1);
    create({2});
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    ASSERT_EQ(connect(1, 2), VL_OK);
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(receive(2), "b");
    EXPECT_EQ(receive(1), "a");
}

TEST_F(Waiting, ASenderThatMovedToAnotherQueueGoesOnThere)
{
    create({1, 2}, 1);
    ASSERT_EQ(send(1, "mailbox"), VL_OK);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    ASSERT_EQ(ports.disconnect_port(2), VL_OK);
    EXPECT_EQ(ports.waiting(), 1u) << "the mailbox is full as well";
    EXPECT_EQ(drain(2), "a");
    EXPECT_EQ(receive(1), "mailbox");
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(receive(1), "b");
}

TEST_F(Waiting, SwitchingCopiesOffLetsASenderGoOn)
{
    create({1, 3});
    create({2}, 1);
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent = sender(1, "b");
    ASSERT_EQ(ports.enable_copy("p1", 0), VL_OK);
    EXPECT_EQ(sent.get(), VL_OK);
    EXPECT_EQ(drain(3), "ab");
}

TEST_F(Waiting, AReceiverOfAReplyGetsIt)
{
    create({1});
    auto got = waiting([this] { return receive_reply(1, long_enough); });
    ASSERT_EQ(send(1, "question"), VL_OK);
    ASSERT_EQ(receive(1), "question");
    ASSERT_EQ(reply(1, "answer"), VL_OK);
    EXPECT_EQ(got.get(), "answer");
}

TEST_F(Waiting, PacketsHandedToWaitingReceiversAreAnsweredInThatOrder)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    auto first = receiver(3);
    auto second = receiver(3);
    ASSERT_EQ(send(2, "b"), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    EXPECT_EQ(first.get(), "b");
    EXPECT_EQ(second.get(), "a");
    ASSERT_EQ(reply(3, "to b"), VL_OK);
    ASSERT_EQ(reply(3, "to a"), VL_OK);
    EXPECT_EQ(receive_reply(2), "to b");
    EXPECT_EQ(receive_reply(1), "to a");
}

TEST_F(Waiting, AReplyWaitsForRoomAtTheSender)
{
    create({1}, 1);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(send(1, "question"), VL_OK);
        if (i == 0) {
            ASSERT_EQ(receive(1), "question");
            ASSERT_EQ(reply(1, "a"), VL_OK);
        }
    }
    ASSERT_EQ(receive(1), "question");
    auto replied = waiting([this] { return reply(1, "b", long_enough); });
    EXPECT_EQ(receive_reply(1), "a");
    EXPECT_EQ(replied.get(), VL_OK);
    EXPECT_EQ(receive_reply(1), "b");
}

TEST_F(Waiting, StoppingEndsEveryWaitAtOnce)
{
    create({1}, 1);
    create({2}, 1);
    ASSERT_EQ(send(1, "full"), VL_OK);
    auto received = receiver(2);
    auto sent = sender(1, "x");
    auto answered = waiting([this] { return receive_reply(2, long_enough); });
    ports.stop();
    EXPECT_EQ(received.get(), "[2000]");
    EXPECT_EQ(sent.get(), SENDMSG_TIMEOUT);
    EXPECT_EQ(answered.get(), "[2016]");
}

TEST_F(Waiting, AfterStoppingNothingWaits)
{
    create({1}, 1);
    ports.stop();
    EXPECT_EQ(receive(1, long_enough), "[2000]");
    EXPECT_EQ(send(1, "x", long_enough), VL_OK);
    EXPECT_EQ(send(1, "y", long_enough), SENDMSG_TIMEOUT);
    EXPECT_EQ(receive(1, long_enough), "x");
}

} // namespace
