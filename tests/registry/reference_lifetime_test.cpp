// Who owns the references, and for how long.

#include <future>

#include "registry/vlServerReference.h"
#include "tests/orb/live_references.h"
#include "tests/registry/registry_test.h"
#include "tests/support/gate.h"

namespace velmo::tests {

namespace {

using Velmo::DT_PORT_SVC::Port_Factory_var;

// Every look-up of a port service gives another reference to the same object.
class ReferenceLifetimeTest : public RegistryTest {
protected:
    ReferenceLifetimeTest()
    {
        naming.resolve_with([ior = ior_of(ports)](const std::string&, const std::string&) {
            return CORBA::Object_var(test_orb()->string_to_object(ior.c_str()));
        });
    }

    void SetUp() override
    {
        if (!references_can_be_counted())
            GTEST_SKIP() << "this broker does not let references be counted";
        before = live_port_references();
    }

    static std::string ior_of(const Published<PortServant>& published)
    {
        const CORBA::Object_var object = published.reference();
        const CORBA::String_var ior = test_orb()->object_to_string(object.in());
        return ior.in();
    }

    int alive() const { return live_port_references() - before; }

    int before = 0;
};

TEST_F(ReferenceLifetimeTest, the_cache_owns_one_reference_and_the_caller_another)
{
    {
        Port_Factory_var mine = registry.GetPortReferenceWithServerName("server", "alpha");
        EXPECT_EQ(alive(), 1);
        registry.ReleasePortReference("server", "alpha");
        EXPECT_EQ(alive(), 1);
    }
    EXPECT_EQ(alive(), 0);
}

TEST_F(ReferenceLifetimeTest, every_duplicate_is_the_callers_to_release)
{
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(get_port("server", "alpha"));
    EXPECT_EQ(alive(), 1);
    registry.ReleasePortReference("server", "alpha");
    EXPECT_EQ(alive(), 0);
}

TEST_F(ReferenceLifetimeTest, a_reference_handed_out_outlives_the_release_of_the_cached_one)
{
    ports->script().answer("create_port", 5);
    Port_Factory_var mine = registry.GetPortReferenceWithServerName("server", nullptr);
    registry.ReleasePortReference("server", nullptr);
    registry.releaseAllReference("server");
    registry.BuildSettingData();
    EXPECT_EQ(mine->create_port("port", 1, 2), 5);
}

TEST_F(ReferenceLifetimeTest, a_rebuild_releases_every_cached_reference)
{
    for (const char* server : {"one", "two", "three"}) {
        EXPECT_TRUE(get_port(server, nullptr));
        EXPECT_TRUE(get_port(server, "alpha"));
    }
    EXPECT_EQ(alive(), 6);
    registry.BuildSettingData();
    EXPECT_EQ(alive(), 0);
}

TEST_F(ReferenceLifetimeTest, releasing_everything_of_a_server_releases_its_references_only)
{
    EXPECT_TRUE(get_port("one", nullptr));
    EXPECT_TRUE(get_port("one", "alpha"));
    EXPECT_TRUE(get_port("two", nullptr));
    registry.releaseAllReference("one");
    EXPECT_EQ(alive(), 1);
}

TEST_F(ReferenceLifetimeTest, a_registry_releases_its_references_when_it_is_destroyed)
{
    {
        vlReferenceContainer another;
        EXPECT_TRUE(got(another.GetPortReferenceWithServerName("server", nullptr)));
        EXPECT_EQ(alive(), 1);
    }
    EXPECT_EQ(alive(), 0);
}

TEST_F(ReferenceLifetimeTest, an_object_of_another_type_is_released_at_once)
{
    EXPECT_FALSE(get_point("server", nullptr));
    EXPECT_FALSE(get_contention("server", nullptr));
    EXPECT_FALSE(get_manager("server"));
    EXPECT_EQ(alive(), 0);
}

// The naming client takes the lock that is about to be asked for.
TEST_F(ReferenceLifetimeTest, what_cannot_be_cached_for_want_of_the_lock_is_released)
{
    naming.resolve_with([&, ior = ior_of(ports)](const std::string&, const std::string&) {
        registry.serverMap.begin()->second->lock.acquire_write();
        return CORBA::Object_var(test_orb()->string_to_object(ior.c_str()));
    });
    EXPECT_FALSE(get_port("server", nullptr));
    registry.serverMap.begin()->second->lock.release();
    EXPECT_EQ(alive(), 0);
    EXPECT_TRUE(realms("server").empty());
}

// Two threads look the same service up; each finds an object of its own.
class RaceTest : public ReferenceLifetimeTest {
protected:
    void resolve_to(Gate& gate, const std::string& ior)
    {
        naming.resolve_with([&gate, ior](const std::string&, const std::string&) {
            gate.pass();
            return CORBA::Object_var(test_orb()->string_to_object(ior.c_str()));
        });
    }

    std::future<Port_Factory_var> look_up(Gate& gate, const std::string& ior)
    {
        resolve_to(gate, ior);
        auto result = std::async(std::launch::async, [this] {
            return Port_Factory_var(
                registry.GetPortReferenceWithServerName("server", "alpha"));
        });
        EXPECT_TRUE(gate.reached_by(1));
        return result;
    }
};

TEST_F(RaceTest, the_first_insertion_stays_and_the_second_caller_gets_what_it_found)
{
    Published<PortServant> slow;
    Gate first_gate, second_gate;
    auto first = look_up(first_gate, ior_of(ports));
    auto second = look_up(second_gate, ior_of(slow));
    first_gate.open();
    {
        Port_Factory_var reference = first.get();
        EXPECT_TRUE(reference->_is_equivalent(ports.reference().in()));
    }
    second_gate.open();
    {
        Port_Factory_var reference = second.get();
        EXPECT_TRUE(reference->_is_equivalent(slow.reference().in()));
    }
    Port_Factory_var cached = registry.GetPortReferenceWithServerName("server", "alpha");
    EXPECT_TRUE(cached->_is_equivalent(ports.reference().in()));
    EXPECT_EQ(naming.lookups().size(), 2u);
}

TEST_F(RaceTest, what_came_second_is_not_kept)
{
    Gate first_gate, second_gate;
    auto first = look_up(first_gate, ior_of(ports));
    auto second = look_up(second_gate, ior_of(ports));
    first_gate.open();
    EXPECT_FALSE(CORBA::is_nil(first.get().in()));
    second_gate.open();
    EXPECT_FALSE(CORBA::is_nil(second.get().in()));
    EXPECT_EQ(alive(), 1);
    registry.ReleasePortReference("server", "alpha");
    EXPECT_EQ(alive(), 0);
}

} // namespace

} // namespace velmo::tests
