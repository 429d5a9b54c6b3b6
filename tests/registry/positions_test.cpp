// Which servers the registry knows at which position.

#include <stdexcept>

#include "tests/registry/registry_test.h"

namespace velmo::tests {

namespace {

using Names = std::vector<std::string>;

// The registry is made by the test, once the reader has its servers.
class PositionsTest : public LibraryTest {
protected:
    static Names names(vlReferenceContainer& registry, const char* position)
    {
        Names result;
        for (const auto* name : registry.InquireServerNameWithPosition(position))
            result.emplace_back(name->c_str());
        return result;
    }

    // What a registry made now finds.
    static Names names(const char* position)
    {
        vlReferenceContainer registry;
        return names(registry, position);
    }
};

const Names every_position{"parent", "own",    "sibling", "child",
                           "others", "master", "slave"};

TEST_F(PositionsTest, every_position_is_asked_of_one_reader_in_the_fixed_order)
{
    vlReferenceContainer registry;
    EXPECT_EQ(reader.queries(), every_position);
    EXPECT_EQ(reader.readers_made(), 1);
    EXPECT_EQ(reader.readers_alive(), 0);
}

TEST_F(PositionsTest, each_position_lists_its_own_servers_in_the_order_of_the_settings)
{
    for (const std::string& position : every_position)
        reader.set_servers(position, {position + " z", position + " a", position + " m"});
    vlReferenceContainer registry;
    for (const std::string& position : every_position) {
        EXPECT_EQ(names(registry, position.c_str()),
                  (Names{position + " z", position + " a", position + " m"}));
    }
}

TEST_F(PositionsTest, without_an_own_server_the_placeholder_0000_is_own)
{
    reader.set_servers("others", {"elsewhere"});
    EXPECT_EQ(names("own"), Names{"0000"});
    EXPECT_EQ(names("others"), Names{"elsewhere"});
}

TEST_F(PositionsTest, the_placeholder_is_given_to_no_other_position)
{
    vlReferenceContainer registry;
    for (const std::string& position : every_position) {
        const Names expected = position == "own" ? Names{"0000"} : Names{};
        EXPECT_EQ(names(registry, position.c_str()), expected) << position;
    }
}

TEST_F(PositionsTest, an_own_server_keeps_the_placeholder_away)
{
    reader.set_servers("own", {"alpha"});
    EXPECT_EQ(names("own"), Names{"alpha"});
}

TEST_F(PositionsTest, a_record_whose_name_is_empty_is_never_registered)
{
    reader.set_servers("parent", {"", "first", "", "second", ""});
    EXPECT_EQ(names("parent"), (Names{"first", "second"}));
}

TEST_F(PositionsTest, own_records_with_empty_names_alone_give_neither_a_server_nor_0000)
{
    reader.set_servers("own", {"", ""});
    EXPECT_EQ(names("own"), Names{});
}

TEST_F(PositionsTest, a_name_of_32_bytes_is_kept_whole)
{
    const std::string longest(32, 'n');
    reader.set_servers("child", {longest});
    EXPECT_EQ(names("child"), Names{longest});
}

TEST_F(PositionsTest, a_server_may_stand_at_several_positions_and_twice_at_one)
{
    reader.set_servers("own", {"alpha", "alpha"});
    reader.set_servers("master", {"alpha"});
    vlReferenceContainer registry;
    EXPECT_EQ(names(registry, "own"), (Names{"alpha", "alpha"}));
    EXPECT_EQ(names(registry, "master"), Names{"alpha"});
}

TEST_F(PositionsTest, any_other_word_has_no_servers)
{
    reader.set_servers("own", {"alpha"});
    reader.set_servers("elsewhere", {"beta"});
    vlReferenceContainer registry;
    for (const char* word : {"OWN", "Own", "ow", "owner", "own ", "", "elsewhere"})
        EXPECT_EQ(names(registry, word), Names{}) << word;
}

TEST_F(PositionsTest, a_position_of_null_has_no_servers)
{
    EXPECT_EQ(names(nullptr), Names{});
}

TEST_F(PositionsTest, more_than_twenty_servers_stand_at_one_position)
{
    Names many;
    for (int i = 0; i < 57; ++i)
        many.push_back("server " + std::to_string(i));
    reader.set_servers("others", many);
    EXPECT_EQ(names("others"), many);
}

TEST_F(PositionsTest, an_inquiry_twice_gives_the_same_strings)
{
    reader.set_servers("own", {"alpha", "beta"});
    vlReferenceContainer registry;
    EXPECT_EQ(registry.InquireServerNameWithPosition("own"),
              registry.InquireServerNameWithPosition("own"));
}

TEST_F(PositionsTest, an_inquiry_does_not_read_the_settings)
{
    vlReferenceContainer registry;
    const Names before = reader.queries();
    registry.InquireServerNameWithPosition("own");
    EXPECT_EQ(reader.queries(), before);
}

TEST_F(PositionsTest, a_rebuild_reads_everything_anew)
{
    reader.set_servers("own", {"alpha"});
    reader.set_servers("slave", {"beta"});
    vlReferenceContainer registry;
    reader.set_servers("own", {"gamma", "delta"});
    reader.set_servers("slave", {});
    EXPECT_EQ(names(registry, "own"), Names{"alpha"});

    registry.BuildSettingData();
    EXPECT_EQ(names(registry, "own"), (Names{"gamma", "delta"}));
    EXPECT_EQ(names(registry, "slave"), Names{});
    EXPECT_EQ(reader.readers_made(), 2);
    EXPECT_EQ(reader.readers_alive(), 0);
}

TEST_F(PositionsTest, a_rebuild_without_own_servers_brings_the_placeholder_back)
{
    reader.set_servers("own", {"alpha"});
    vlReferenceContainer registry;
    reader.set_servers("own", {});
    registry.BuildSettingData();
    EXPECT_EQ(names(registry, "own"), Names{"0000"});
}

TEST_F(PositionsTest, what_the_reader_raises_passes_out_of_a_rebuild_with_the_lock_released)
{
    reader.set_servers("parent", {"above"});
    reader.set_servers("own", {"alpha"});
    reader.set_servers("sibling", {"beside"});
    vlReferenceContainer registry;
    reader.interrupt_with([](const std::string& position) {
        if (position == "sibling")
            throw std::runtime_error("unreadable");
    });

    EXPECT_THROW(registry.BuildSettingData(), std::runtime_error);
    EXPECT_EQ(reader.readers_alive(), 0);
    ASSERT_EQ(registry.lock.tryacquire_write(), 0);
    registry.lock.release();
    // What came before the exception is there, and nothing of the last build.
    EXPECT_EQ(names(registry, "parent"), Names{"above"});
    EXPECT_EQ(names(registry, "own"), Names{"alpha"});
    EXPECT_EQ(names(registry, "sibling"), Names{});
}

TEST_F(PositionsTest, what_the_reader_raises_passes_out_of_the_constructor)
{
    reader.interrupt_with(
        [](const std::string&) { throw std::runtime_error("unreadable"); });
    EXPECT_THROW(vlReferenceContainer(), std::runtime_error);
    EXPECT_EQ(reader.readers_alive(), 0);
}

// This thread has the lock for writing already, so that it cannot get it.
TEST_F(PositionsTest, without_the_lock_an_inquiry_is_empty_and_a_rebuild_changes_nothing)
{
    reader.set_servers("own", {"alpha"});
    vlReferenceContainer registry;
    reader.set_servers("own", {"beta"});
    ASSERT_EQ(registry.lock.acquire_write(), 0);
    EXPECT_EQ(names(registry, "own"), Names{});
    registry.BuildSettingData();
    registry.lock.release();
    EXPECT_EQ(names(registry, "own"), Names{"alpha"});
    EXPECT_EQ(reader.readers_made(), 1);
}

} // namespace

} // namespace velmo::tests
