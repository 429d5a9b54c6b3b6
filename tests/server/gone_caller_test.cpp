// Callers that go while their call waits.
#include <atomic>

#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Mortal : public model::Caller {
public:
    void die() { dead = true; }
    bool gone() const override { return dead; }

private:
    std::atomic<bool> dead{false};
};

model::PortLimits looking_every(std::chrono::milliseconds period)
{
    model::PortLimits limits = patient_limits();
    limits.caller_check = period;
    return limits;
}

class GoneCaller : public PortFixture {
protected:
    explicit GoneCaller(const model::PortLimits& limits) : PortFixture(limits) {}
    ~GoneCaller() override { ports.stop(); } // for those that nobody has noticed

    // What receive_packet() gives, or the code in brackets.
    std::future<std::string> receiver(model::Handle port, const model::Caller& who,
                                      std::uint64_t from = 0)
    {
        return waiting([=, &who] {
            model::Data packet;
            return text_of(ports.receive_packet(port, from, packet, long_enough, who),
                           packet);
        });
    }

    std::future<std::string> reply_receiver(model::Handle port, const model::Caller& who)
    {
        return waiting([=, &who] {
            model::Data packet;
            return text_of(ports.receive_reply(port, packet, long_enough, who), packet);
        });
    }

    // Goes while it waits; nobody looks at it until the end of the test.
    void leave(std::future<std::string> wait, Mortal& who)
    {
        who.die();
        left.push_back(std::move(wait));
    }

    Mortal first, second;

private:
    std::vector<std::future<std::string>> left;
};

// Looked at so often that a test need not wait for it.
class NoticedCaller : public GoneCaller {
protected:
    NoticedCaller() : GoneCaller(looking_every(std::chrono::milliseconds(1))) {}
};

// Looked at only when there is something for it.
class UnnoticedCaller : public GoneCaller {
protected:
    UnnoticedCaller() : GoneCaller(looking_every(patience)) {}
};

TEST_F(NoticedCaller, AWaitingReceiverIsFreed)
{
    create({1});
    auto got = receiver(1, first);
    first.die();
    EXPECT_EQ(got.get(), "[2000]");
    EXPECT_EQ(ports.waiting(), 0u);
    EXPECT_EQ(ports.status("p1")->waiting, 0u);
}

TEST_F(NoticedCaller, AWaitingSenderIsFreedAndItsPacketNotSent)
{
    create({1}, 1);
    ASSERT_EQ(send(1, "a"), VL_OK);
    auto sent =
        waiting([&] { return ports.send_packet(1, bytes_of("b"), long_enough, first); });
    first.die();
    EXPECT_EQ(sent.get(), SENDMSG_TIMEOUT);
    EXPECT_EQ(drain(1), "a");
}

TEST_F(NoticedCaller, AWaitingReplierIsFreedAndItsReplyNotSent)
{
    create({1}, 1);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(send(1, "question"), VL_OK);
        ASSERT_EQ(receive(1), "question");
        if (i == 0) {
            ASSERT_EQ(reply(1, "a"), VL_OK);
        }
    }
    auto replied =
        waiting([&] { return ports.reply_packet(1, bytes_of("b"), long_enough, first); });
    first.die();
    EXPECT_EQ(replied.get(), SENDMSG_TIMEOUT);
    EXPECT_EQ(receive_reply(1), "a");
    EXPECT_EQ(receive_reply(1), "[2002]");
    EXPECT_EQ(reply(1, "c"), VL_OK) << "the question is still to be answered";
}

TEST_F(NoticedCaller, OneThatWaitsForAReplyIsFreed)
{
    create({1});
    auto got = reply_receiver(1, first);
    first.die();
    EXPECT_EQ(got.get(), "[2016]");
}

TEST_F(NoticedCaller, OneThatIsThereIsLeftWaiting)
{
    create({1});
    auto gone = receiver(1, first);
    auto there = receiver(1, second);
    first.die();
    EXPECT_EQ(gone.get(), "[2000]");
    EXPECT_EQ(ports.waiting(), 1u);
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(there.get(), "x");
}

TEST_F(UnnoticedCaller, GetsNoPacketThatComes)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    leave(receiver(2, first), first);
    EXPECT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(ports.status("p2")->depth, 1u);
    EXPECT_EQ(receive(2), "x");
    EXPECT_EQ(reply(2, "to the only one received"), VL_OK);
    EXPECT_EQ(reply(2, "again"), NON_EXIST_DATA);
}

TEST_F(UnnoticedCaller, LeavesThePacketToTheNextReceiver)
{
    create({1});
    auto gone = receiver(1, first);
    auto there = receiver(1, second);
    leave(std::move(gone), first);
    EXPECT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(there.get(), "x");
}

TEST_F(UnnoticedCaller, IsNoReasonToAcceptAPacketThatTheQueueCannotHold)
{
    create({1, 2});
    create({3}, 1);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    auto from_two = receiver(3, first, 2);
    ASSERT_EQ(send(1, "fills the queue"), VL_OK);
    leave(std::move(from_two), first);
    EXPECT_EQ(send(2, "x"), WOULD_BLOCK);
    EXPECT_EQ(drain(3), "fills the queue");
}

TEST_F(UnnoticedCaller, TakesNoPacketFromTheQueue)
{
    create({1});
    ASSERT_EQ(send(1, "x"), VL_OK);
    first.die();
    model::Data packet;
    EXPECT_EQ(ports.receive_packet(1, 0, packet, 0, first), EMPTY_QUEUE);
    EXPECT_EQ(ports.receive_packet(1, 0, packet, long_enough, first), TIME_OUT);
    EXPECT_EQ(receive(1), "x");
}

TEST_F(UnnoticedCaller, GetsNoReply)
{
    create({1});
    leave(reply_receiver(1, first), first);
    ASSERT_EQ(send(1, "question"), VL_OK);
    ASSERT_EQ(receive(1), "question");
    EXPECT_EQ(reply(1, "answer"), VL_OK);
    model::Data packet;
    EXPECT_NE(ports.receive_reply(1, packet, 0, first), VL_OK);
    EXPECT_EQ(receive_reply(1), "answer");
}

} // namespace
