#include "registry/host_name.h"

#include <unistd.h>

#include <gtest/gtest.h>

namespace velmo::tests {

namespace {

TEST(HostNameTest, is_the_name_that_the_system_has)
{
    char expected[host_name_size] = "";
    ASSERT_EQ(gethostname(expected, sizeof expected - 1), 0);
    char name[host_name_size];
    local_host_name(name);
    EXPECT_STREQ(name, expected);
}

} // namespace

} // namespace velmo::tests
