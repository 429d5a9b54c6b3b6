// Calls of several threads, and a service that comes and goes.

#include <future>
#include <optional>

#include "tests/support/gate.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

class CallsAndThreadsTest : public ServerTest {};

TEST_F(CallsAndThreadsTest, remote_calls_of_different_threads_run_at_the_same_time)
{
    Gate gate;
    home->answer("send_packet", [&gate] {
        gate.pass();
        return Script::Reply{};
    });
    const auto send = [] { return vl_send_packet(1, "x", 1, 0, nullptr, nullptr); };
    auto first = std::async(std::launch::async, send);
    auto second = std::async(std::launch::async, send);
    EXPECT_TRUE(gate.reached_by(2));
    gate.open();
    EXPECT_EQ(first.get(), 0);
    EXPECT_EQ(second.get(), 0);
}

// Dropping a port service's reference would wait for the other look-up.
TEST_F(CallsAndThreadsTest, without_a_reference_nothing_is_dropped)
{
    Gate gate;
    naming.resolve_with([&](const std::string& server, const std::string&) {
        if (server == "slow")
            gate.pass();
        return CORBA::Object_var(CORBA::Object::_nil());
    });
    const auto create = [](const char* server) {
        return std::async(std::launch::async, [server] {
            return vl_create_port("port", 1, 0, server, nullptr);
        });
    };
    auto slow = create("slow");
    ASSERT_TRUE(gate.reached_by(1));
    auto other = create("another");
    EXPECT_EQ(other.wait_for(patience), std::future_status::ready);
    EXPECT_EQ(slow.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    gate.open();
    EXPECT_EQ(other.get(), 99);
    EXPECT_EQ(slow.get(), 99);
}

TEST_F(CallsAndThreadsTest, a_service_that_was_restarted_costs_one_failed_call)
{
    std::optional<Published<PortServant>> server(std::in_place);
    (*server)->script().answer("create_port", 0);
    naming.bind("home", keys::port_service, server->reference().in());
    EXPECT_EQ(vl_create_port("port", 1, 0, nullptr, nullptr), 0);

    server.emplace();
    (*server)->script().answer("create_port", 2014);
    naming.bind("home", keys::port_service, server->reference().in());
    EXPECT_EQ(vl_create_port("port", 1, 0, nullptr, nullptr), 112);
    EXPECT_EQ(vl_create_port("port", 1, 0, nullptr, nullptr), 2014);
    EXPECT_EQ(logged_lines().size(), 1u);
}

TEST_F(CallsAndThreadsTest, threads_share_the_exports)
{
    for (const char* operation : {"create_port", "send_packet", "reply_packet"})
        home->answer(operation, 0);
    for (const char* operation : {"receive_packet", "receive_reply"})
        home->answer(operation, [] { return Script::Reply{0, "hello"}; });
    home->answer("disconnect_port", []() -> Script::Reply { throw CORBA::TRANSIENT(); });
    Reply alpha;
    alpha.names = {"alpha"};
    home->answer("get_releam_seq", alpha);
    naming.set_reachable({"home"});

    const auto work = [] {
        for (int i = 0; i < 50; ++i) {
            void* data = nullptr;
            unsigned int length = 0;
            NameList realms;
            EXPECT_EQ(vl_mid_connect(nullptr), 0);
            EXPECT_EQ(vl_create_port("port", 1, 0, nullptr, nullptr), 0);
            EXPECT_EQ(vl_send_packet(1, "hello", 5, 0, nullptr, nullptr), 0);
            EXPECT_EQ(vl_receive_packetv(1, nullptr, &data, &length, 0, nullptr, nullptr),
                      0);
            vl_free_memory(&data);
            EXPECT_EQ(vl_reply_packet(1, "hello", 5, 0, nullptr, nullptr), 0);
            EXPECT_EQ(vl_receive_reply2(1, &data, &length, 0, nullptr, nullptr), 0);
            vl_free_memory(&data);
            EXPECT_EQ(vl_disconenct_port(1, nullptr, nullptr), 112);
            EXPECT_EQ(vl_get_servername("own").count, 1);
            EXPECT_STREQ(get_error_string(0), L"text of VL_OK");
            EXPECT_EQ(vl_releam_seq(&realms, nullptr), 0);
            CORBA::string_free(realms.names[0]);
            vl_free_memory(reinterpret_cast<void**>(&realms.names));
            EXPECT_EQ(vl_mid_disconnect(), 0);
        }
    };
    std::vector<std::future<void>> threads;
    for (int i = 0; i < 8; ++i)
        threads.push_back(std::async(std::launch::async, work));
    for (auto& thread : threads)
        thread.get();
    EXPECT_EQ(logged_lines().size(), 8u * 50u);
}

} // namespace

} // namespace velmo::tests
