// The exported functions where there is no memory for the library's own objects.

#include <cerrno>

#include "api/ErrorC.h"
#include "api/Velmo_API_Manager.h"
#include "registry/process_singleton.h"
#include "tests/api/no_memory.h"
#include "tests/api/operations.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

template <class Call>
auto starved(Call call, std::size_t size = 0)
{
    const NoMemory here(size);
    return call();
}

// Each test wants to be the first of its process, as under ctest.
template <class Singleton>
bool exists()
{
    return ProcessSingleton<Singleton>::existing();
}

TEST(OutOfMemoryTest, without_a_registry_there_are_no_servers_and_no_references)
{
    if (exists<vlReferenceContainer>())
        GTEST_SKIP() << "there is a registry already";
    EXPECT_EQ(starved([] { return vl_get_servername("own").count; }), 0);
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        if (operation.name == std::string("vl_connect_port")) // needs the manager as well
            continue;
        EXPECT_EQ(starved([&] { return operation.call(nullptr, nullptr); }),
                  operation.failures.no_server);
        EXPECT_EQ(starved([&] { return operation.call("home", nullptr); }),
                  operation.failures.no_reference);
    }
    EXPECT_EQ(starved([] { return vl_mid_connect(nullptr); }), 3000);
    errno = 0;
    EXPECT_EQ(starved([] { return vlReferenceContainer::instance(); }), nullptr);
    EXPECT_EQ(errno, ENOMEM);
}

TEST(OutOfMemoryTest, without_a_table_of_codes_every_text_is_the_fallback)
{
    if (exists<ErrorC>())
        GTEST_SKIP() << "there is a table already";
    EXPECT_STREQ(starved([] { return get_error_string(0); }), L"UNKNOWN_ERROR");
    EXPECT_STREQ(get_error_string(0), L"text of VL_OK");
}

class NoManagerTest : public ServerTest {
protected:
    // Remote calls have the memory that they need.
    template <class Call>
    static auto without_manager(Call call)
    {
        return starved(
            call, sizeof(ACE_Singleton<Velmo_API_Manager, ACE_Recursive_Thread_Mutex>));
    }

    void SetUp() override
    {
        if (exists<Velmo_API_Manager>())
            GTEST_SKIP() << "there is a manager already";
    }
};

TEST_F(NoManagerTest, the_two_operations_that_need_the_manager_give_2)
{
    EXPECT_EQ(starved([] { return vl_mid_disconnect(); }), 2);
    EXPECT_EQ(starved([] {
                  return vl_connect_port("from", "to", 30004, 0, "", nullptr, nullptr);
              }),
              2);
    EXPECT_TRUE(home->calls().empty());
}

TEST_F(NoManagerTest, every_other_operation_works)
{
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        if (operation.name == std::string("vl_connect_port"))
            continue;
        home->answer(operation.remote, full_reply());
        EXPECT_EQ(without_manager([&] { return operation.call(nullptr, nullptr); }), 0);
        home->answer(operation.remote, full_reply(2007));
        EXPECT_EQ(without_manager([&] { return operation.call(nullptr, nullptr); }),
                  operation.hands_on ? 2007 : 0);
    }
    naming.set_reachable({"home"});
    EXPECT_EQ(without_manager([] { return vl_mid_connect(nullptr); }), 0);
    EXPECT_EQ(without_manager([] { return vl_mid_disconnect(); }), 2) << "it is missing";
    EXPECT_EQ(without_manager([] { return vl_load_dt_snapshot(nullptr, nullptr); }), 0);
}

TEST_F(NoManagerTest, the_manager_is_made_as_soon_as_there_is_memory)
{
    EXPECT_EQ(starved([] { return vl_mid_disconnect(); }), 2);
    EXPECT_EQ(vl_mid_disconnect(), 0);
}

} // namespace

} // namespace velmo::tests
