// Packets and replies on their way to the server. What becomes of their data is tested
// in ../api/outgoing_data_test.cpp.

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

// The operations take the same arguments.
struct Sending {
    const char* remote;
    int (*send)(unsigned int, const void*, int, unsigned int, const char*, const char*);
};

void PrintTo(const Sending& sending, std::ostream* out)
{
    *out << sending.remote;
}

class SendTest : public ServerTest, public ::testing::WithParamInterface<Sending> {};

INSTANTIATE_TEST_SUITE_P(Operations, SendTest,
                         ::testing::Values(Sending{"send_packet", vl_send_packet},
                                           Sending{"send_packet_to_front",
                                                   vl_send_packet_to_front},
                                           Sending{"reply_packet", vl_reply_packet}),
                         [](const auto& test) { return std::string(test.param.remote); });

TEST_P(SendTest, sends_handle_bytes_and_option_unchanged)
{
    home->answer(GetParam().remote, 2003);
    EXPECT_EQ(GetParam().send(0xFFFFFFFFu, "hello", 5, 0xFFFFFFFEu, nullptr, nullptr),
              2003);
    EXPECT_EQ(home->calls(), Calls{GetParam().remote +
                                   std::string("(4294967295, \"hello\", 4294967294)")});
}

} // namespace

} // namespace velmo::tests
