// Replies to packets.
#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Replies : public PortFixture {
protected:
    using PortFixture::PortFixture;

    // p1 > p2, and p1's packet has been received at p2.
    void ask(const std::string& text = "question")
    {
        ASSERT_EQ(send(1, text), VL_OK);
        ASSERT_EQ(receive(2), text);
    }
};

class RepliesInTenBytes : public Replies {
protected:
    RepliesInTenBytes() : Replies(narrow_limits(10)) {}
};

TEST_F(Replies, AReplyGoesToThePortThatSentThePacket)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ask();
    EXPECT_EQ(reply(2, "answer"), VL_OK);
    EXPECT_EQ(receive_reply(2), "[2001]");
    EXPECT_EQ(receive(1), "[2002]") << "a reply is no packet";
    EXPECT_EQ(receive_reply(1), "answer");
}

TEST_F(Replies, RepliesAnswerPacketsInTheOrderOfReceiving)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    ASSERT_EQ(send(1, "a"), VL_OK);
    ASSERT_EQ(send(2, "b"), VL_OK);
    ASSERT_EQ(send(1, "c"), VL_OK);
    ASSERT_EQ(receive(3, 0, 2), "b");
    ASSERT_EQ(receive(3), "a");
    ASSERT_EQ(receive(3), "c");
    for (const char* text : {"to b", "to a", "to c"})
        ASSERT_EQ(reply(3, text), VL_OK);
    EXPECT_EQ(receive_reply(2), "to b");
    EXPECT_EQ(receive_reply(1), "to a");
    EXPECT_EQ(receive_reply(1), "to c");
}

TEST_F(Replies, APacketIsAnsweredOnce)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ask();
    EXPECT_EQ(reply(2, "answer"), VL_OK);
    EXPECT_EQ(reply(2, "again"), NON_EXIST_DATA);
}

TEST_F(Replies, APacketMustBeReceivedToBeAnswered)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    EXPECT_EQ(reply(2, "answer", long_enough), NON_EXIST_DATA) << "no use waiting";
    ASSERT_EQ(send(1, "question"), VL_OK);
    EXPECT_EQ(reply(2, "answer"), NON_EXIST_DATA);
}

TEST_F(Replies, AMailboxPacketIsAnsweredToThePortItself)
{
    create({1});
    ASSERT_EQ(send(1, "question"), VL_OK);
    ASSERT_EQ(receive(1), "question");
    ASSERT_EQ(reply(1, "answer"), VL_OK);
    EXPECT_EQ(receive_reply(1), "answer");
}

TEST_F(Replies, EveryReceiverOfACopyMayAnswer)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(send(1, "question"), VL_OK);
    for (const model::Handle port : {2u, 3u}) {
        ASSERT_EQ(receive(port), "question");
        ASSERT_EQ(reply(port, "from " + name(port)), VL_OK);
    }
    EXPECT_EQ(receive_reply(1), "from p2");
    EXPECT_EQ(receive_reply(1), "from p3");
    EXPECT_EQ(receive_reply(1), "[2001]");
}

TEST_F(Replies, AReplyFindsItsWayAfterDisconnecting)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ask();
    ASSERT_EQ(ports.disconnect_port(1), VL_OK);
    ASSERT_EQ(reply(2, "answer"), VL_OK);
    EXPECT_EQ(receive_reply(1), "answer");
}

TEST_F(Replies, WithoutAWaitTheCodeTellsWhetherAnAnswerCanStillCome)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    EXPECT_EQ(receive_reply(1), "[2001]") << "nothing was sent";
    ASSERT_EQ(send(1, "question"), VL_OK);
    EXPECT_EQ(receive_reply(1), "[2002]") << "sent, not received";
    ASSERT_EQ(receive(2), "question");
    EXPECT_EQ(receive_reply(1), "[2002]") << "received, not answered";
    ASSERT_EQ(reply(2, "answer"), VL_OK);
    EXPECT_EQ(receive_reply(1), "answer");
    EXPECT_EQ(receive_reply(1), "[2001]") << "answered";
}

TEST_F(Replies, AfterAWaitTheCodeIsThatOfTheTimeOut)
{
    create({1});
    EXPECT_EQ(receive_reply(1, short_wait), "[2016]");
    ASSERT_EQ(send(1, "question"), VL_OK);
    EXPECT_EQ(receive_reply(1, short_wait), "[2016]");
}

TEST_F(Replies, TheRepliesOfAPortAreBoundedByItsCapacity)
{
    create({1}, 2);
    create({2});
    ASSERT_EQ(connect(1, 2), VL_OK);
    for (int i = 0; i < 3; ++i)
        ask();
    EXPECT_EQ(reply(2, "a"), VL_OK);
    EXPECT_EQ(reply(2, "b"), VL_OK);
    EXPECT_EQ(reply(2, "c"), WOULD_BLOCK);
    EXPECT_EQ(reply(2, "c", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(receive_reply(1), "a");
    EXPECT_EQ(reply(2, "c"), VL_OK) << "the packet was still unanswered";
    EXPECT_EQ(receive_reply(1), "b");
    EXPECT_EQ(receive_reply(1), "c");
}

TEST_F(RepliesInTenBytes, RepliesAreBoundedInBytesToo)
{
    create({1});
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(send(1, "q"), VL_OK);
        ASSERT_EQ(receive(1), "q");
    }
    EXPECT_EQ(reply(1, "12345678901", long_enough), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(reply(1, "1234567890"), VL_OK);
    EXPECT_EQ(reply(1, "1"), WOULD_BLOCK);
}

TEST_F(Replies, AsManyUnansweredPacketsAreRememberedAsTheQueueHolds)
{
    create({1});
    create({2}, 2);
    ASSERT_EQ(connect(1, 2), VL_OK);
    for (int i = 0; i < 5; ++i)
        ask();
    EXPECT_EQ(reply(2, "a"), VL_OK);
    EXPECT_EQ(reply(2, "b"), VL_OK);
    EXPECT_EQ(reply(2, "c"), NON_EXIST_DATA);
    EXPECT_EQ(receive_reply(1), "a");
    EXPECT_EQ(receive_reply(1), "b");
    EXPECT_EQ(receive_reply(1), "[2001]") << "nobody will answer the forgotten ones";
}

} // namespace
