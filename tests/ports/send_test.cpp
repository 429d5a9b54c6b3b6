// Packets and replies on their way to the server.

#include <climits>

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Calls = std::vector<std::string>;

// vl_send_packet() and vl_reply_packet() take the same arguments.
struct Sending {
    const char* remote;
    int (*send)(unsigned int, const void*, int, unsigned int, const char*, const char*);
    int failure;
};

void PrintTo(const Sending& sending, std::ostream* out)
{
    *out << sending.remote;
}

class SendTest : public ServerTest, public ::testing::WithParamInterface<Sending> {
protected:
    SendTest() { home->answer(GetParam().remote, 0); }

    int send(const void* data, int length, unsigned int port = 7, unsigned int option = 0)
    {
        return GetParam().send(port, data, length, option, nullptr, nullptr);
    }

    // A call as the server saw it.
    static std::string seen(const std::string& arguments)
    {
        return GetParam().remote + ("(" + arguments + ")");
    }

    void expect_refused(const void* data, int length)
    {
        EXPECT_EQ(send("", 0), 0); // has the reference cached
        const Calls before = home->calls();
        EXPECT_EQ(send(data, length), GetParam().failure);
        EXPECT_EQ(home->calls(), before);
        EXPECT_TRUE(logged_lines().empty());
        EXPECT_FALSE(next_call_looks_up());
    }
};

INSTANTIATE_TEST_SUITE_P(Operations, SendTest,
                         ::testing::Values(Sending{"send_packet", vl_send_packet, 112},
                                           Sending{"reply_packet", vl_reply_packet, 124}),
                         [](const auto& test) { return std::string(test.param.remote); });

TEST_P(SendTest, sends_handle_bytes_and_option_unchanged)
{
    EXPECT_EQ(send("hello", 5, 0xFFFFFFFFu, 0xFFFFFFFEu), 0);
    EXPECT_EQ(home->calls(), Calls{seen("4294967295, \"hello\", 4294967294")});
}

TEST_P(SendTest, sends_as_many_bytes_as_the_length_says)
{
    EXPECT_EQ(send("hello", 2), 0);
    EXPECT_EQ(home->calls(), Calls{seen("7, \"he\", 0")});
}

TEST_P(SendTest, sends_every_byte_value)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes.push_back(static_cast<char>(byte));
    EXPECT_EQ(send(bytes.data(), 256), 0);
    EXPECT_EQ(home->calls(), Calls{seen("7, \"" + bytes + "\", 0")});
}

TEST_P(SendTest, sends_a_large_block)
{
    const std::string bytes(5 << 20, 'v');
    EXPECT_EQ(send(bytes.data(), static_cast<int>(bytes.size())), 0);
    EXPECT_EQ(home->calls().at(0).size(), seen("7, \"\", 0").size() + bytes.size());
}

TEST_P(SendTest, with_length_0_sends_an_empty_sequence)
{
    EXPECT_EQ(send("ignored", 0), 0);
    EXPECT_EQ(home->calls(), Calls{seen("7, \"\", 0")});
}

TEST_P(SendTest, null_with_length_0_sends_an_empty_sequence)
{
    EXPECT_EQ(send(nullptr, 0), 0);
    EXPECT_EQ(home->calls(), Calls{seen("7, \"\", 0")});
}

TEST_P(SendTest, null_with_a_positive_length_is_refused_before_any_call)
{
    expect_refused(nullptr, 1);
    expect_refused(nullptr, INT_MAX);
}

TEST_P(SendTest, a_negative_length_is_refused_before_any_call)
{
    expect_refused("hello", -1);
    expect_refused("hello", INT_MIN);
    expect_refused(nullptr, -1);
}

} // namespace

} // namespace velmo::tests
