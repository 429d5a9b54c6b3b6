// Which calls wait for which, while a naming service keeps its caller waiting.

#include <atomic>
#include <future>

#include "registry/vlServerReference.h"
#include "tests/registry/registry_test.h"
#include "tests/support/gate.h"

namespace velmo::tests {

namespace {

// Look-ups for the server "slow" wait at the gate.
class LockingTest : public RegistryTest {
protected:
    LockingTest()
    {
        naming.resolve_with([this](const std::string& server, const std::string& name) {
            if (server == "slow") {
                gate.pass();
                answered = true;
            }
            return object_for(name);
        });
    }
    ~LockingTest() override { gate.open(); }

    CORBA::Object_var object_for(const std::string& name) const
    {
        const auto ends_with = [&name](const std::string& key) {
            return name.size() >= key.size() &&
                   name.compare(name.size() - key.size(), key.size(), key) == 0;
        };
        if (ends_with(keys::port_service))
            return ports.reference();
        if (ends_with(keys::data_template_point_service))
            return points.reference();
        if (ends_with(keys::data_template_service))
            return templates.reference();
        return ends_with(keys::contention_service) ? contention.reference()
                                                   : manager.reference();
    }

    template <class Action>
    static auto in_a_thread(Action action)
    {
        return std::async(std::launch::async, action);
    }

    auto start_port_look_up(const char* server = "slow")
    {
        return in_a_thread([this, server] { return get_port(server, nullptr); });
    }
    auto start_contention_look_up(const char* server = "slow")
    {
        return in_a_thread([this, server] { return get_contention(server, nullptr); });
    }

    template <class Action>
    void expect_proceeds(Action action)
    {
        auto done = in_a_thread([&] {
            action();
            return !answered;
        });
        const bool in_time = done.wait_for(patience) == std::future_status::ready;
        if (!in_time)
            gate.open(); // lest the test hang
        EXPECT_TRUE(done.get() && in_time) << "waited for the look-up";
    }

    // Opens the gate.
    template <class Action>
    void expect_waits(Action action)
    {
        auto done = in_a_thread([&] {
            action();
            return answered.load();
        });
        // Gives a call that does not wait the time to show it; one that waits passes
        // however long this takes.
        EXPECT_EQ(done.wait_for(std::chrono::milliseconds(100)),
                  std::future_status::timeout);
        gate.open();
        EXPECT_TRUE(done.get()) << "did not wait for the look-up";
    }

    Gate gate;
    std::atomic<bool> answered{false};
};

TEST_F(LockingTest, the_registrys_lock_is_held_for_reading_over_the_naming_round_trip)
{
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    EXPECT_EQ(registry.lock.tryacquire_write(), -1);
    ASSERT_EQ(registry.lock.tryacquire_read(), 0);
    registry.lock.release();
    gate.open();
    EXPECT_TRUE(look_up.get());
    ASSERT_EQ(registry.lock.tryacquire_write(), 0);
    registry.lock.release();
}

TEST_F(LockingTest, releasing_a_template_manager_does_not_wait_for_a_hanging_look_up)
{
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_proceeds([&] { registry.ReleaseDtReference("slow", nullptr); });
    gate.open();
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, releasing_a_port_waits_for_a_look_up_in_progress)
{
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { registry.ReleasePortReference("another", nullptr); });
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, releasing_a_point_factory_waits_for_a_look_up_in_progress)
{
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { registry.ReleaseDtpReference("another", nullptr); });
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, releasing_a_contention_server_waits_for_a_look_up_in_progress)
{
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { registry.ReleaseContenterReference("another", nullptr); });
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, a_rebuild_waits_for_a_look_up_in_progress)
{
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { registry.BuildSettingData(); });
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, everything_that_only_reads_proceeds_while_a_look_up_hangs)
{
    EXPECT_TRUE(get_port("server", nullptr));
    auto look_up = start_port_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_proceeds([&] { EXPECT_TRUE(get_port("server", nullptr)); });
    expect_proceeds([&] { EXPECT_TRUE(get_port("a new server", nullptr)); });
    expect_proceeds([&] { EXPECT_TRUE(get_manager("server")); });
    expect_proceeds([&] { EXPECT_EQ(realms("slow").size(), 0u); });
    expect_proceeds([&] { registry.releaseAllReference("slow"); });
    expect_proceeds(
        [&] { EXPECT_EQ(registry.InquireServerNameWithPosition("own").size(), 1u); });
    gate.open();
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, a_hanging_look_up_leaves_the_servers_cached_references_at_hand)
{
    naming.resolve_with([this](const std::string&, const std::string& name) {
        if (name == std::string("/hangs/") + keys::port_service)
            gate.pass();
        return object_for(name);
    });
    EXPECT_TRUE(get_port("server", nullptr));
    auto look_up = in_a_thread([this] { return get_port("server", "hangs"); });
    ASSERT_TRUE(gate.reached_by(1));
    expect_proceeds([&] { EXPECT_TRUE(get_port("server", nullptr)); });
    gate.open();
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, look_ups_of_one_port_service_run_at_the_same_time)
{
    auto first = start_port_look_up();
    auto second = start_port_look_up();
    EXPECT_TRUE(gate.reached_by(2));
    gate.open();
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
}

TEST_F(LockingTest, so_do_those_of_points_templates_and_service_managers)
{
    auto first = in_a_thread([this] { return get_point("slow", nullptr); });
    auto second = in_a_thread([this] { return get_point("slow", nullptr); });
    auto third = in_a_thread([this] { return get_template("slow", nullptr); });
    auto fourth = in_a_thread([this] { return get_template("slow", nullptr); });
    auto fifth = in_a_thread([this] { return get_manager("slow"); });
    auto sixth = in_a_thread([this] { return get_manager("slow"); });
    EXPECT_TRUE(gate.reached_by(6));
    gate.open();
    EXPECT_TRUE(first.get() && second.get() && third.get());
    EXPECT_TRUE(fourth.get() && fifth.get() && sixth.get());
}

TEST_F(LockingTest, look_ups_of_one_servers_contention_service_run_one_after_another)
{
    auto first = start_contention_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    EXPECT_EQ(registry.serverMap.begin()->second->lock.tryacquire_read(), -1);
    expect_waits([&] { EXPECT_TRUE(get_contention("slow", nullptr)); });
    EXPECT_TRUE(first.get());
    // The second found what the first had cached.
    EXPECT_EQ(naming.lookups_of(keys::contention_service), 1u);
}

TEST_F(LockingTest, contention_look_ups_of_two_realms_run_one_after_another_as_well)
{
    auto first = start_contention_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { EXPECT_TRUE(get_contention("slow", "alpha")); });
    EXPECT_TRUE(first.get());
    EXPECT_EQ(naming.lookups().size(), 2u);
}

TEST_F(LockingTest, contention_look_ups_of_two_servers_run_at_the_same_time)
{
    auto look_up = start_contention_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_proceeds([&] { EXPECT_TRUE(get_contention("another", nullptr)); });
    gate.open();
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, a_contention_look_up_keeps_the_servers_list_of_realms_waiting)
{
    auto look_up = start_contention_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { EXPECT_EQ(realms("slow").size(), 0u); });
    EXPECT_TRUE(look_up.get());
}

TEST_F(LockingTest, a_contention_look_up_keeps_the_servers_other_references_waiting)
{
    auto look_up = start_contention_look_up();
    ASSERT_TRUE(gate.reached_by(1));
    expect_waits([&] { EXPECT_TRUE(get_port("slow", nullptr)); });
    EXPECT_TRUE(look_up.get());
}

} // namespace

} // namespace velmo::tests
