// Packets and replies on their way into the caller's buffer.

#include <climits>
#include <cstdint>
#include <optional>

#include "tests/support/intended_leak.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

// Both ways of receiving into a buffer of the caller's. The data of a packet of another
// size stay allocated, those of a reply do not.
struct FillingBuffer {
    const char* remote;
    int (*receive)(void* buffer, unsigned int size);
    int failure;
    bool loses_data_of_another_size;
};

void PrintTo(const FillingBuffer& filling, std::ostream* out)
{
    *out << filling.remote;
}

int receive_packet(void* buffer, unsigned int size)
{
    return vl_receive_packet(7, nullptr, buffer, size, 0, nullptr, nullptr);
}

int receive_reply(void* buffer, unsigned int size)
{
    return vl_receive_reply(7, buffer, size, 0, nullptr, nullptr);
}

class ReceiveBufferTest : public ServerTest,
                          public ::testing::WithParamInterface<FillingBuffer> {
protected:
    void deliver(const Reply& reply) { home->answer(GetParam().remote, reply); }

    int receive(unsigned int size) { return GetParam().receive(buffer, size); }

    std::string received() const { return std::string(buffer, sizeof buffer); }

    void expect_refused(unsigned int size)
    {
        std::optional<IntendedLeak> the_packet;
        if (GetParam().loses_data_of_another_size)
            the_packet.emplace();
        EXPECT_EQ(receive(size), 2012);
        EXPECT_EQ(received(), untouched);
    }

    const std::string untouched = "????????";
    char buffer[8] = {'?', '?', '?', '?', '?', '?', '?', '?'};
};

INSTANTIATE_TEST_SUITE_P(
    Operations, ReceiveBufferTest,
    ::testing::Values(FillingBuffer{"receive_packet", receive_packet, 123, true},
                      FillingBuffer{"receive_reply", receive_reply, 127, false}),
    [](const auto& test) { return std::string(test.param.remote); });

TEST_P(ReceiveBufferTest, is_filled_with_exactly_its_size)
{
    deliver({0, "hello"});
    EXPECT_EQ(receive(5), 0);
    EXPECT_EQ(received(), "hello???");
}

TEST_P(ReceiveBufferTest, one_byte_larger_gives_2012_and_is_left)
{
    deliver({0, "hello"});
    expect_refused(6);
    EXPECT_EQ(home->calls().size(), 1u);
}

TEST_P(ReceiveBufferTest, one_byte_smaller_gives_2012_and_is_left)
{
    deliver({0, "hello"});
    expect_refused(4);
}

TEST_P(ReceiveBufferTest, of_another_size_keeps_the_reference_and_logs_nothing)
{
    deliver({0, "hello"});
    for (const unsigned int size : {0u, UINT_MAX})
        expect_refused(size);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
}

TEST_P(ReceiveBufferTest, of_size_0_takes_empty_data)
{
    deliver({0, ""});
    EXPECT_EQ(receive(0), 0);
    EXPECT_EQ(received(), untouched);
}

TEST_P(ReceiveBufferTest, is_left_where_the_operation_fails_remotely)
{
    deliver({2002, "hello"});
    EXPECT_EQ(receive(5), 2002);
    EXPECT_EQ(receive(6), 2002);
    home->answer(GetParam().remote, Script::raising(CORBA::COMM_FAILURE()));
    EXPECT_EQ(receive(5), GetParam().failure);
    EXPECT_EQ(received(), untouched);
}

TEST_P(ReceiveBufferTest, takes_data_that_were_not_delivered_as_empty)
{
    deliver({0, std::nullopt});
    EXPECT_EQ(receive(0), 0);
    EXPECT_EQ(receive(5), 2012);
    EXPECT_EQ(received(), untouched);
}

TEST_P(ReceiveBufferTest, null_is_refused_before_any_call)
{
    deliver({0, ""});
    EXPECT_EQ(receive(0), 0); // has the reference cached
    EXPECT_EQ(GetParam().receive(nullptr, 5), GetParam().failure);
    EXPECT_EQ(home->calls().size(), 1u);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
}

TEST_P(ReceiveBufferTest, null_of_size_0_is_for_empty_data)
{
    deliver({0, ""});
    EXPECT_EQ(GetParam().receive(nullptr, 0), 0);
}

TEST_P(ReceiveBufferTest, without_a_reference_or_a_server_is_left)
{
    home.unbind("home");
    EXPECT_EQ(receive(5), 99);
    set_own_servers({""});
    EXPECT_EQ(receive(5), 3000);
    EXPECT_EQ(received(), untouched);
}

class ReceivePacketTest : public ServerTest {};

TEST_F(ReceivePacketTest, asks_with_handle_sender_and_option_unchanged)
{
    home->answer("receive_packet", 2002);
    char buffer[5];
    const auto receive = [&buffer](std::uintptr_t sender) {
        return vl_receive_packet(0xFFFFFFFFu, reinterpret_cast<void*>(sender), buffer, 5, 3,
                                 nullptr, nullptr);
    };
    EXPECT_EQ(receive(0), 2002);
    EXPECT_EQ(receive(12), 2002);
    EXPECT_EQ(receive(UINTPTR_MAX), 2002);
    EXPECT_EQ(
        home->calls(),
        (Calls{"receive_packet(4294967295, 0, 3)", "receive_packet(4294967295, 12, 3)",
               "receive_packet(4294967295, 18446744073709551615, 3)"}));
}

class ReceiveReplyTest : public ServerTest {};

TEST_F(ReceiveReplyTest, asks_with_handle_and_option_unchanged)
{
    home->answer("receive_reply", 2016);
    char buffer[5];
    EXPECT_EQ(vl_receive_reply(0xFFFFFFFFu, buffer, 5, 0xFFFFFFFEu, nullptr, nullptr),
              2016);
    EXPECT_EQ(home->calls(), Calls{"receive_reply(4294967295, 4294967294)"});
}

} // namespace

} // namespace velmo::tests
