// Contention.
#include "tests/e2e/one_server.h"
#include "velmo/velmo.hpp"

using namespace velmo::tests;

namespace {

class CppContention : public OneServer {
protected:
    static std::string group(const std::string& property)
    {
        return get_point("$SYS/contention/g/" + property);
    }

    velmo::Contention contention;
};

TEST_F(CppContention, ContendersEnterRenewAndLeave)
{
    EXPECT_TRUE(contention.renew("g", "a").error() == CONTENDER_IS_NUL);
    ASSERT_TRUE(contention.enter("g", "a", 1));
    ASSERT_TRUE(contention.enter("g", "b", 2));
    EXPECT_EQ(group("master"), "b");
    EXPECT_TRUE(contention.renew("g", "b"));
    EXPECT_TRUE(contention.leave("g", "b"));
    EXPECT_EQ(group("master"), "a");
    EXPECT_TRUE(contention.leave("g", "b").error() == velmo::Condition::not_found);
}

TEST_F(CppContention, DataGoWithARoleAlsoWhenTheyAreEmpty)
{
    ASSERT_TRUE(contention.enter("g", "a", 1, "address", "10.0.0.3"));
    EXPECT_EQ(group("contenders/a/role"), "address");
    EXPECT_EQ(group("contenders/a/data"), "10.0.0.3");
    ASSERT_TRUE(contention.enter("g", "a", 1, "none", {}));
    EXPECT_EQ(group("contenders/a/role"), "none");
    EXPECT_EQ(group("contenders/a/data"), "");
}

} // namespace
