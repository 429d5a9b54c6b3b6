// Packets and replies through the real server, as C programs send them.

#include "tests/e2e/one_server.h"

using namespace velmo::tests;

namespace {

enum : unsigned int { from = 1, to = 2, unknown = 99 };

class Packets : public OneServer {
protected:
    void SetUp() override
    {
        ASSERT_EQ(vl_create_port("from", from, 0, nullptr, nullptr), VL_OK);
        ASSERT_EQ(vl_create_port("to", to, 0, nullptr, nullptr), VL_OK);
        ASSERT_EQ(vl_connect_port("from", "to", 30001, 0, "", nullptr, nullptr), VL_OK);
    }
};

TEST_F(Packets, ArriveInOrderAndByteForByte)
{
    std::string every_byte;
    for (int i = 0; i < 256; ++i)
        every_byte += static_cast<char>(i);
    ASSERT_EQ(send(from, every_byte), VL_OK);
    ASSERT_EQ(send(from, "second"), VL_OK);
    EXPECT_EQ(receive(to), every_byte);
    EXPECT_EQ(receive(to), "second");
    EXPECT_EQ(receive(to), "[2002]");
}

TEST_F(Packets, OfMegabytesPass)
{
    const std::string large(8 << 20, 'x');
    ASSERT_EQ(send(from, large), VL_OK);
    EXPECT_TRUE(receive(to) == large);
}

TEST_F(Packets, WithoutDataAreBlocksToFree)
{
    ASSERT_EQ(vl_send_packet(from, nullptr, 0, 0, nullptr, nullptr), VL_OK);
    void* data = nullptr;
    unsigned int length = 7;
    ASSERT_EQ(vl_receive_packetv(to, nullptr, &data, &length, 0, nullptr, nullptr), VL_OK);
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(length, 0u);
    vl_free_memory(&data);
    EXPECT_EQ(data, nullptr);
}

TEST_F(Packets, IntoABufferFitExactly)
{
    ASSERT_EQ(send(from, "four"), VL_OK);
    char buffer[5] = "....";
    EXPECT_EQ(vl_receive_packet(to, nullptr, buffer, 4, 0, nullptr, nullptr), VL_OK);
    EXPECT_STREQ(buffer, "four");
}

TEST_F(Packets, OfOneSenderAreTakenByItsHandle)
{
    ASSERT_EQ(vl_create_port("other", 3, 0, nullptr, nullptr), VL_OK);
    ASSERT_EQ(vl_connect_port("other", "to", 30001, 0, "", nullptr, nullptr), VL_OK);
    ASSERT_EQ(send(from, "from the first"), VL_OK);
    ASSERT_EQ(vl_send_packet(3, "from the other", 14, 0, nullptr, nullptr), VL_OK);
    EXPECT_EQ(receive(to, 0, 3), "from the other");
}

TEST_F(Packets, AreAnswered)
{
    void* data = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(vl_receive_reply2(from, &data, &length, 0, nullptr, nullptr), NON_EXIST_DATA);
    EXPECT_EQ(vl_reply_packet(to, "x", 1, 0, nullptr, nullptr), NON_EXIST_DATA);
    ASSERT_EQ(send(from, "question"), VL_OK);
    ASSERT_EQ(receive(to), "question");
    EXPECT_EQ(vl_receive_reply2(from, &data, &length, 20, nullptr, nullptr),
              REPLAY_TIMEOUT);
    ASSERT_EQ(vl_reply_packet(to, "answer", 6, 0, nullptr, nullptr), VL_OK);
    ASSERT_EQ(vl_receive_reply2(from, &data, &length, 0, nullptr, nullptr), VL_OK);
    EXPECT_EQ(std::string(static_cast<const char*>(data), length), "answer");
    vl_free_memory(&data);
}

TEST_F(Packets, CodesOfTheServerComeBackUnchanged)
{
    EXPECT_EQ(receive(unknown), "[2007]");
    EXPECT_EQ(vl_send_packet(unknown, "x", 1, 0, nullptr, nullptr), INVAILD_PORT_HANDLE);
    EXPECT_EQ(vl_connect_port("from", "to", 30001, 0, "", nullptr, nullptr),
              ALREADY_CONNECTED);
    EXPECT_EQ(vl_connect_port("from", "to", 5, 0, "", nullptr, nullptr), INVAILD_SINK_MODE);
    EXPECT_EQ(vl_connect_port("from", "nobody", 30001, 0, "", nullptr, nullptr),
              RECEIVER_IS_NOT_EXIST);
    EXPECT_EQ(vl_disconenct_port(from, nullptr, nullptr), VL_OK);
    EXPECT_EQ(vl_disconenct_port(from, nullptr, nullptr), NOT_CONNECTED);
    EXPECT_EQ(vl_connect_port("from", "to", 30004, 0, nullptr, nullptr, nullptr), VL_OK);
}

TEST_F(Packets, BadDataAreRefusedAndTheReferenceStays)
{
    EXPECT_EQ(vl_send_packet(from, nullptr, 1, 0, nullptr, nullptr), 112);
    EXPECT_EQ(vl_send_packet(from, "x", -1, 0, nullptr, nullptr), 112);
    EXPECT_EQ(vl_reply_packet(to, nullptr, 1, 0, nullptr, nullptr), 124);
    EXPECT_EQ(vl_receive_packet(to, nullptr, nullptr, 4, 0, nullptr, nullptr), 123);
    void* data = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(vl_receive_packetv(to, nullptr, nullptr, &length, 0, nullptr, nullptr), 123);
    EXPECT_EQ(vl_receive_packetv(to, nullptr, &data, nullptr, 0, nullptr, nullptr), 123);
    EXPECT_EQ(vl_receive_reply2(from, nullptr, &length, 0, nullptr, nullptr), 127);
    EXPECT_EQ(vl_receive_reply2(from, &data, nullptr, 0, nullptr, nullptr), 127);
    EXPECT_EQ(receive(to), "[2002]") << "nothing was sent, nothing consumed";
}

TEST_F(Packets, NullNamesReachTheServerAsEmptyOnes)
{
    EXPECT_EQ(vl_create_port(nullptr, 9, 0, nullptr, nullptr), INVAILD_NULL_PARAMETER);
    EXPECT_NE(vl_connect_port(nullptr, nullptr, 30001, 0, nullptr, nullptr, nullptr),
              VL_OK);
}

} // namespace
