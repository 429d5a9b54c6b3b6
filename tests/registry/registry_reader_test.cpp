// The hold of the registry's lock that calls take.

#include "registry/registry_reader.h"

#include <stdexcept>

#include "tests/registry/registry_test.h"
#include "tests/support/registry_locks.h"

namespace velmo::tests {

namespace {

class RegistryReaderTest : public RegistryTest {
protected:
    std::string own_server()
    {
        const char* name = RegistryReader(&registry).own_server();
        return name ? name : "none";
    }
};

TEST_F(RegistryReaderTest, without_a_registry_there_are_no_servers)
{
    const RegistryReader none(nullptr);
    EXPECT_EQ(none.own_server(), nullptr);
    EXPECT_EQ(none.entry("server"), nullptr);
}

TEST_F(RegistryReaderTest, own_server_is_the_first_at_own_as_the_settings_were_read_last)
{
    EXPECT_EQ(own_server(), "0000");
    reader.set_servers("own", {"", "z", "a"});
    reader.set_servers("others", {"b"});
    EXPECT_EQ(own_server(), "0000");
    registry.BuildSettingData();
    EXPECT_EQ(own_server(), "z");
    reader.set_servers("own", {""});
    registry.BuildSettingData();
    EXPECT_EQ(own_server(), "none");
}

TEST_F(RegistryReaderTest, own_server_is_what_was_read_before_an_exception)
{
    reader.set_servers("own", {"z", "a"});
    for (const auto& [position, first] :
         {std::pair("own", "none"), std::pair("sibling", "z")}) {
        reader.interrupt_with([position = position](const std::string& asked) {
            if (asked == position)
                throw std::runtime_error("unreadable");
        });
        EXPECT_THROW(registry.BuildSettingData(), std::runtime_error);
        EXPECT_EQ(own_server(), first);
    }
}

TEST_F(RegistryReaderTest, a_server_has_one_entry_whichever_was_asked_for_before)
{
    const RegistryReader hold(&registry);
    vlServerReference* const server = hold.entry("server");
    vlServerReference* const longer = hold.entry("servers");
    vlServerReference* const nameless = hold.entry(nullptr);
    EXPECT_EQ(registry.serverMap.size(), 3u);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(hold.entry("server"), server);
        EXPECT_EQ(hold.entry("server"), server);
        EXPECT_EQ(hold.entry("servers"), longer);
        EXPECT_EQ(hold.entry(""), nameless);
        EXPECT_EQ(hold.entry(nullptr), nameless);
    }
    EXPECT_EQ(registry.serverMap.size(), 3u);
    EXPECT_EQ(server->serverName, "server");
}

TEST_F(RegistryReaderTest, no_entry_outlives_a_rebuild)
{
    ASSERT_TRUE(get_port("server", nullptr));
    registry.BuildSettingData();
    EXPECT_TRUE(registry.serverMap.empty());
    EXPECT_TRUE(RegistryReader(&registry).entry("server")->portReferences.empty());
    EXPECT_EQ(registry.serverMap.size(), 1u);
}

TEST_F(RegistryReaderTest, holds_the_lock_for_reading_until_it_lets_go)
{
    RegistryReader hold(&registry);
    EXPECT_EQ(registry.lock.tryacquire_write(), -1);
    EXPECT_EQ(registry.lock.tryacquire_read(), 0);
    registry.lock.release();
    hold.let_go();
    expect_locks_free(registry);
    {
        const RegistryReader another(&registry);
        EXPECT_EQ(registry.lock.tryacquire_write(), -1);
    }
    expect_locks_free(registry);
}

} // namespace

} // namespace velmo::tests
