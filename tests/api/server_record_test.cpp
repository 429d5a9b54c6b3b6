// The servers at a position, as applications see them.

#include "tests/support/library_test.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

class ServerRecordTest : public LibraryTest {
protected:
    void set_servers(const char* position, std::vector<std::string> names)
    {
        reader.set_servers(position, std::move(names));
        registry().BuildSettingData();
    }
};

TEST_F(ServerRecordTest, without_an_own_server_has_the_one_name_0000)
{
    const ServerRecord record = vl_get_servername("own");
    ASSERT_EQ(record.count, 1);
    EXPECT_STREQ(record.names[0], "0000");
}

TEST_F(ServerRecordTest, has_two_own_servers_in_the_order_of_the_settings)
{
    set_own_servers({"A", "B"});
    const ServerRecord record = vl_get_servername("own");
    ASSERT_EQ(record.count, 2);
    EXPECT_STREQ(record.names[0], "A");
    EXPECT_STREQ(record.names[1], "B");
}

TEST_F(ServerRecordTest, is_empty_for_any_other_word)
{
    set_own_servers({"A"});
    for (const char* word : {"OWN", "Own", "", "owner", "parents"})
        EXPECT_EQ(vl_get_servername(word).count, 0) << word;
}

TEST_F(ServerRecordTest, is_empty_for_null)
{
    EXPECT_EQ(vl_get_servername(nullptr).count, 0);
}

TEST_F(ServerRecordTest, is_empty_for_a_position_without_servers)
{
    EXPECT_EQ(vl_get_servername("parent").count, 0);
}

TEST_F(ServerRecordTest, knows_each_of_the_seven_positions)
{
    for (const char* position :
         {"parent", "own", "sibling", "child", "others", "master", "slave"}) {
        set_servers(position, {std::string("at ") + position});
        const ServerRecord record = vl_get_servername(position);
        ASSERT_EQ(record.count, 1) << position;
        EXPECT_EQ(record.names[0], std::string("at ") + position);
    }
}

TEST_F(ServerRecordTest, holds_twenty_servers)
{
    set_servers("child", std::vector<std::string>(20, "one"));
    EXPECT_EQ(vl_get_servername("child").count, 20);
}

TEST_F(ServerRecordTest, of_more_than_twenty_servers_holds_the_first_twenty)
{
    std::vector<std::string> names;
    for (int i = 0; i < 25; ++i)
        names.push_back("server " + std::to_string(i));
    set_servers("child", names);
    const ServerRecord record = vl_get_servername("child");
    ASSERT_EQ(record.count, 20);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(record.names[i], names[static_cast<std::size_t>(i)]);
}

TEST_F(ServerRecordTest, is_null_behind_its_names)
{
    set_own_servers({"A", "B"});
    const ServerRecord record = vl_get_servername("own");
    for (int i = 2; i < 20; ++i)
        EXPECT_EQ(record.names[i], nullptr) << i;
}

TEST_F(ServerRecordTest, points_to_the_registrys_own_strings)
{
    set_own_servers({"A"});
    EXPECT_EQ(vl_get_servername("own").names[0],
              registry().InquireServerNameWithPosition("own")[0]->c_str());
}

TEST_F(ServerRecordTest, is_empty_when_the_registry_is_locked_for_good)
{
    ASSERT_EQ(registry().lock.acquire_write(), 0);
    const int count = vl_get_servername("own").count;
    registry().lock.release();
    EXPECT_EQ(count, 0);
}

} // namespace

} // namespace velmo::tests
