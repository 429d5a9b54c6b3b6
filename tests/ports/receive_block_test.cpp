// Packets and replies on their way to the caller, into a new block.

#include <cstdint>
#include <optional>

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

// Both ways of receiving into a new block.
struct Receiving {
    const char* remote;
    int (*receive)(void** data, unsigned int* length);
    int failure;
};

void PrintTo(const Receiving& receiving, std::ostream* out)
{
    *out << receiving.remote;
}

class ReceiveBlockTest : public ServerTest,
                         public ::testing::WithParamInterface<Receiving> {
protected:
    explicit ReceiveBlockTest(
        ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : ServerTest(reach)
    {
    }
    ~ReceiveBlockTest() override
    {
        if (data != stale)
            vl_free_memory(&data);
    }

    void deliver(const Reply& reply) { home->answer(GetParam().remote, reply); }

    int receive() { return GetParam().receive(&data, &length); }

    std::string received() const { return std::string(static_cast<char*>(data), length); }

    // What the caller's variables held before.
    char stale[1] = {'?'};
    void* data = stale;
    unsigned int length = 77;
};

int receive_packetv(void** data, unsigned int* length)
{
    return vl_receive_packetv(7, nullptr, data, length, 0, nullptr, nullptr);
}

int receive_reply2(void** data, unsigned int* length)
{
    return vl_receive_reply2(7, data, length, 0, nullptr, nullptr);
}

const auto both_ways = ::testing::Values(Receiving{"receive_packet", receive_packetv, 123},
                                         Receiving{"receive_reply", receive_reply2, 127});
const auto name_of_way = [](const auto& test) { return std::string(test.param.remote); };

INSTANTIATE_TEST_SUITE_P(Operations, ReceiveBlockTest, both_ways, name_of_way);

TEST_P(ReceiveBlockTest, gives_a_block_of_exactly_the_received_bytes)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes.push_back(static_cast<char>(byte));
    deliver({0, bytes});
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(received(), bytes);
}

TEST_P(ReceiveBlockTest, gives_the_caller_a_block_to_free)
{
    deliver({0, "hello"});
    EXPECT_EQ(receive(), 0);
    vl_free_memory(&data);
    EXPECT_EQ(data, nullptr);
}

TEST_P(ReceiveBlockTest, gives_a_block_even_for_zero_bytes)
{
    deliver({0, ""});
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(length, 0u);
    EXPECT_NE(data, nullptr);
    EXPECT_NE(data, stale);
    vl_free_memory(&data);
    EXPECT_EQ(data, nullptr);
}

TEST_P(ReceiveBlockTest, takes_data_that_were_not_delivered_as_empty)
{
    deliver({0, std::nullopt});
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(length, 0u);
    EXPECT_NE(data, nullptr);
    EXPECT_NE(data, stale);
}

TEST_P(ReceiveBlockTest, receives_a_large_block)
{
    deliver({0, std::string(5 << 20, 'v')});
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(received(), std::string(5 << 20, 'v'));
}

TEST_P(ReceiveBlockTest, never_frees_what_the_callers_pointer_held)
{
    deliver({0, "hello"});
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(stale[0], '?');
}

TEST_P(ReceiveBlockTest, without_a_reference_or_a_server_leaves_both)
{
    home.unbind("home");
    EXPECT_EQ(receive(), 99);
    set_own_servers({""});
    EXPECT_EQ(receive(), 3000);
    EXPECT_EQ(data, stale);
    EXPECT_EQ(length, 77u);
}

TEST_P(ReceiveBlockTest, into_null_is_refused_before_any_call)
{
    deliver({2002});
    EXPECT_EQ(receive(), 2002); // has the reference cached
    EXPECT_EQ(GetParam().receive(nullptr, &length), GetParam().failure);
    EXPECT_EQ(GetParam().receive(&data, nullptr), GetParam().failure);
    EXPECT_EQ(GetParam().receive(nullptr, nullptr), GetParam().failure);
    EXPECT_EQ(home->calls().size(), 1u);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up());
}

class ReceiveBlockOverTheWireTest : public ReceiveBlockTest {
protected:
    ReceiveBlockOverTheWireTest() : ReceiveBlockTest(ScriptedServer::Reach::over_the_wire)
    {
    }
};

INSTANTIATE_TEST_SUITE_P(Operations, ReceiveBlockOverTheWireTest, both_ways, name_of_way);

TEST_P(ReceiveBlockOverTheWireTest, gives_the_bytes_as_they_were)
{
    for (const std::string& bytes :
         {std::string(), std::string("\0\xff\x80", 3), std::string(5 << 20, 'v')}) {
        deliver({0, bytes});
        EXPECT_EQ(receive(), 0);
        EXPECT_TRUE(received() == bytes);
        vl_free_memory(&data);
    }
}

class ReceivePacketvTest : public ServerTest {};

TEST_F(ReceivePacketvTest, asks_with_handle_sender_and_option_unchanged)
{
    home->answer("receive_packet", 2002);
    void* data = nullptr;
    unsigned int length = 0;
    void* const sender = reinterpret_cast<void*>(UINTPTR_MAX);
    EXPECT_EQ(vl_receive_packetv(8, sender, &data, &length, 0xFFFFFFFFu, nullptr, nullptr),
              2002);
    EXPECT_EQ(home->calls(), Calls{"receive_packet(8, 18446744073709551615, 4294967295)"});
}

TEST_F(ReceivePacketvTest, that_fails_remotely_leaves_null_and_length_0)
{
    char stale = '?';
    const Script::Answer failures[] = {[] {
                                           return Reply{2002, "hello"};
                                       },
                                       Script::raising(CORBA::COMM_FAILURE())};
    for (const auto& failure : failures) {
        home->answer("receive_packet", failure);
        void* data = &stale;
        unsigned int length = 77;
        EXPECT_NE(receive_packetv(&data, &length), 0);
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(length, 0u);
    }
}

class ReceiveReply2Test : public ServerTest {};

TEST_F(ReceiveReply2Test, asks_with_handle_and_option_unchanged)
{
    home->answer("receive_reply", 2016);
    void* data = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(vl_receive_reply2(8, &data, &length, 0xFFFFFFFFu, nullptr, nullptr), 2016);
    EXPECT_EQ(home->calls(), Calls{"receive_reply(8, 4294967295)"});
}

TEST_F(ReceiveReply2Test, that_fails_remotely_leaves_both_as_they_were)
{
    char stale = '?';
    const Script::Answer failures[] = {[] {
                                           return Reply{2001, "hello"};
                                       },
                                       Script::raising(CORBA::COMM_FAILURE())};
    for (const auto& failure : failures) {
        home->answer("receive_reply", failure);
        void* data = &stale;
        unsigned int length = 77;
        EXPECT_NE(receive_reply2(&data, &length), 0);
        EXPECT_EQ(data, &stale);
        EXPECT_EQ(length, 77u);
    }
}

} // namespace

} // namespace velmo::tests
