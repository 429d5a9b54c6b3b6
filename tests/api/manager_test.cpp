// The object behind the exported functions.

#include "api/Velmo_API_Manager.h"

#include <future>
#include <type_traits>
#include <vector>

#include <unistd.h>

#include "tests/support/library_test.h"

namespace velmo::tests {

namespace {

TEST(ManagerTest, is_one_for_all_threads)
{
    std::vector<std::future<Velmo_API_Manager*>> threads;
    for (int i = 0; i < 8; ++i)
        threads.push_back(std::async(std::launch::async, &Velmo_API_Manager::instance));
    for (auto& thread : threads)
        EXPECT_EQ(thread.get(), Velmo_API_Manager::instance());
    EXPECT_NE(Velmo_API_Manager::instance(), nullptr);
}

TEST(ManagerTest, ends_the_naming_client_when_it_is_destroyed)
{
    const int exits = naming_exits();
    {
        Velmo_API_Manager manager;
        EXPECT_EQ(naming_exits(), exits);
    }
    EXPECT_EQ(naming_exits(), exits + 1);
}

TEST(ManagerTest, has_a_virtual_destructor)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<Velmo_API_Manager>);
}

void tell_of_the_end()
{
    static const char text[] = "the naming client ends\n";
    static_cast<void>(!write(STDERR_FILENO, text, sizeof text - 1));
}

using ManagerDeathTest = LibraryTest;

TEST_F(ManagerDeathTest, is_made_by_the_first_export_and_destroyed_once_at_the_processs_end)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    on_naming_exit(tell_of_the_end);
    EXPECT_EXIT(
        {
            vl_mid_disconnect();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "^the naming client ends\n$");
    on_naming_exit(nullptr);
}

TEST_F(ManagerDeathTest, is_not_made_where_no_export_is_called)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    on_naming_exit(tell_of_the_end);
    EXPECT_EXIT(std::exit(0), ::testing::ExitedWithCode(0), "^$");
    on_naming_exit(nullptr);
}

} // namespace

} // namespace velmo::tests
