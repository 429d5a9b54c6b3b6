// The process's own registry.

#include <future>
#include <stdexcept>

#include <gtest/gtest.h>

#include "registry/process_singleton.h"
#include "tests/support/reader_stand_in.h"
#include "vlReferenceContainer.h"

namespace velmo::tests {

namespace {

// A first use is seen only where the test is the first of its process, as each is
// under ctest.
class ProcessRegistryTest : public ::testing::Test {
protected:
    ProcessRegistryTest() { reader.reset(); }
    ~ProcessRegistryTest() override { reader.reset(); }

    static bool first_use() { return !ProcessSingleton<vlReferenceContainer>::existing(); }

    ReaderStandIn& reader = ReaderStandIn::instance();
};

TEST_F(ProcessRegistryTest, is_made_once_by_whichever_thread_asks_first)
{
    const int expected_readers = first_use() ? 1 : 0;
    std::promise<void> start;
    const std::shared_future<void> started = start.get_future().share();
    std::vector<std::future<vlReferenceContainer*>> threads;
    for (int i = 0; i < 8; ++i) {
        threads.push_back(std::async(std::launch::async, [started] {
            started.wait();
            return vlReferenceContainer::instance();
        }));
    }
    start.set_value();
    for (auto& thread : threads)
        EXPECT_EQ(thread.get(), vlReferenceContainer::instance());
    EXPECT_EQ(reader.readers_made(), expected_readers);
}

TEST_F(ProcessRegistryTest, is_made_at_the_next_use_when_its_settings_raised_an_exception)
{
    if (!first_use())
        GTEST_SKIP() << "there is one already";
    reader.interrupt_with(
        [](const std::string&) { throw std::runtime_error("unreadable"); });
    EXPECT_THROW(vlReferenceContainer::instance(), std::runtime_error);
    reader.interrupt_with(nullptr);
    EXPECT_NE(vlReferenceContainer::instance(), nullptr);
}

TEST_F(ProcessRegistryTest, outlives_other_registries)
{
    vlReferenceContainer* const before = vlReferenceContainer::instance();
    {
        vlReferenceContainer another;
        EXPECT_NE(&another, before);
    }
    EXPECT_EQ(vlReferenceContainer::instance(), before);
}

} // namespace

} // namespace velmo::tests
