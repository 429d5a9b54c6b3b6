// The end of the process, and threads that are about to use the registry.
#include <gtest/gtest.h>

#include <cstdlib>

#include "registry/registry_use.h"
#include "tests/support/gate.h"

using namespace velmo::tests;

namespace {

bool allowed_for_another_thread()
{
    bool allowed = true;
    std::thread([&] { allowed = RegistryUse().allowed(); }).join();
    return allowed;
}

// In a process of its own, which goes on as one that ends.
[[noreturn]] void end_while_it_is_used()
{
    Gate gate;
    bool used = false; // guarded by the use
    std::thread user([&] {
        const RegistryUse use;
        gate.pass();
        used = true;
    });
    bool as_expected = gate.reached_by(1) && allowed_for_another_thread();
    std::thread opener([&] { gate.open(); });
    RegistryUse::end();
    as_expected = as_expected && used;
    as_expected = as_expected && !allowed_for_another_thread();
    as_expected = as_expected && RegistryUse().allowed();
    opener.join();
    user.join();
    std::_Exit(as_expected ? EXIT_SUCCESS : EXIT_FAILURE);
}

TEST(RegistryUseDeathTest, TheEndWaitsForItAndRefusesItToOtherThreadsFromThenOn)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(end_while_it_is_used(), ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(RegistryUse, IsShared)
{
    const RegistryUse use;
    EXPECT_TRUE(use.allowed());
    EXPECT_TRUE(allowed_for_another_thread());
}

} // namespace
