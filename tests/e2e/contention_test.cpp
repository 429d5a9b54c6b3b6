// Contenders, and who of them is master.
#include "tests/e2e/one_server.h"
#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

const std::string too_long(256, 'n');
const std::string megabyte(1 << 20, 'n');

class Contention : public OneServer {
protected:
    using OneServer::OneServer;

    // What the server's own points tell of the group "g".
    static std::string group(const std::string& property)
    {
        return get_point("$SYS/contention/g/" + property);
    }

    static std::string contender(const std::string& name, const std::string& property)
    {
        return group("contenders/" + name + "/" + property);
    }

    static unsigned long long epoch() { return std::stoull(group("epoch")); }
};

class ShortLeases : public Contention {
protected:
    ShortLeases() : Contention({"--lease", "300"}) {}
};

TEST_F(Contention, TheHighestPriorityThenTheEarliestIsMaster)
{
    ASSERT_EQ(regist("g", "first", 1), VL_OK);
    EXPECT_EQ(group("master"), "first");
    ASSERT_EQ(regist("g", "second", 1), VL_OK);
    ASSERT_EQ(regist("g", "negative", -2147483647), VL_OK);
    EXPECT_EQ(group("master"), "first");
    ASSERT_EQ(regist("g", "high", 2), VL_OK) << "takes over at once";
    EXPECT_EQ(group("master"), "high");
    EXPECT_EQ(group("contenders"), "high\nfirst\nsecond\nnegative\n");
    ASSERT_EQ(withdraw("g", "high"), VL_OK);
    EXPECT_EQ(group("master"), "first");
    ASSERT_EQ(withdraw("g", "first"), VL_OK);
    EXPECT_EQ(group("master"), "second");
}

TEST_F(Contention, EveryChangeOfTheMasterHasAHigherEpoch)
{
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    const unsigned long long first = epoch();
    EXPECT_EQ(group("state"), std::to_string(first) + " a");
    EXPECT_EQ(contender("a", "token"), std::to_string(first));
    ASSERT_EQ(regist("g", "b", 1), VL_OK);
    EXPECT_EQ(epoch(), first) << "the master has not changed";
    EXPECT_EQ(contender("b", "token"), "[4002]") << "only the master has one";
    ASSERT_EQ(regist("g", "b", 2), VL_OK);
    EXPECT_EQ(group("state"), std::to_string(first + 1) + " b");
    EXPECT_EQ(contender("a", "token"), "[4002]");
    EXPECT_EQ(contender("b", "token"), std::to_string(first + 1));
    ASSERT_EQ(withdraw("g", "b"), VL_OK);
    EXPECT_EQ(group("state"), std::to_string(first + 2) + " a");
    ASSERT_EQ(withdraw("g", "a"), VL_OK);
    EXPECT_EQ(group("state"), std::to_string(first + 2) + " ") << "that of the last one";
    EXPECT_EQ(group("contenders"), "");
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    EXPECT_EQ(epoch(), first + 3) << "also for one that comes back";
}

TEST_F(Contention, DataAndRoleCanBeReadAndAreRenewed)
{
    const std::string data("\0\xFF", 2);
    ASSERT_EQ(regist("g", "a", 5, data, "address"), VL_OK);
    EXPECT_EQ(contender("a", "data"), data);
    EXPECT_EQ(contender("a", "role"), "address");
    EXPECT_EQ(contender("a", "priority"), "5");
    const int left = std::stoi(contender("a", "lease"));
    EXPECT_TRUE(left > 0 && left <= 10000) << left;
    ASSERT_EQ(regist("g", "a", -5, "new", "other"), VL_OK);
    EXPECT_EQ(contender("a", "data"), "new");
    EXPECT_EQ(contender("a", "role"), "other");
    EXPECT_EQ(contender("a", "priority"), "-5");
}

TEST_F(Contention, DataGoWithARoleOnly)
{
    ASSERT_EQ(vl_regist_contender("g", "a", "data", 4, nullptr, 0, nullptr, nullptr),
              VL_OK);
    EXPECT_EQ(contender("a", "data") + contender("a", "role"), "");
    ASSERT_EQ(vl_regist_contender("g", "a", nullptr, -1, "role", 0, nullptr, nullptr),
              VL_OK);
    EXPECT_EQ(contender("a", "data"), "");
    EXPECT_EQ(vl_regist_contender("g", "b", "data", -1, "role", 0, nullptr, nullptr), 155);
    EXPECT_EQ(group("contenders"), "a\n");
}

TEST_F(Contention, RenewingKeepsThePlaceAmongEquals)
{
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    ASSERT_EQ(regist("g", "b", 1), VL_OK);
    EXPECT_EQ(update("g", "a"), VL_OK);
    EXPECT_EQ(regist("g", "a", 1), VL_OK);
    EXPECT_EQ(group("contenders"), "a\nb\n");
    EXPECT_EQ(withdraw("g", "a"), VL_OK);
    EXPECT_EQ(regist("g", "a", 1), VL_OK);
    EXPECT_EQ(group("contenders"), "b\na\n") << "not after it was out";
}

TEST_F(Contention, GroupsKnowNothingOfEachOther)
{
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    ASSERT_EQ(regist("h", "b", 2), VL_OK);
    EXPECT_EQ(group("master"), "a");
    EXPECT_EQ(update("h", "a"), CONTENDER_IS_NUL);
}

TEST_F(Contention, WhoDoesNotStandIsToldSo)
{
    EXPECT_EQ(update("g", "a"), CONTENDER_IS_NUL);
    EXPECT_EQ(withdraw("g", "a"), CONTENDER_IS_NUL);
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    EXPECT_EQ(update("g", "b"), CONTENDER_IS_NUL);
    EXPECT_EQ(withdraw("g", "b"), CONTENDER_IS_NUL);
    EXPECT_EQ(withdraw("g", "a"), VL_OK);
    EXPECT_EQ(withdraw("g", "a"), CONTENDER_IS_NUL);
    EXPECT_EQ(update("g", "a"), CONTENDER_IS_NUL);
}

TEST_F(Contention, BadNamesAreRefused)
{
    const struct {
        std::string group;
        std::string contender;
        int code;
    } bad[] = {{"", "a", INVAILD_NULL_PARAMETER}, {"g", "", INVAILD_NULL_PARAMETER},
               {too_long, "a", PARAMETER_ERROR},  {"g", too_long, PARAMETER_ERROR},
               {megabyte, "a", PARAMETER_ERROR},  {"g", megabyte, PARAMETER_ERROR}};
    for (const auto& [group, contender, code] : bad) {
        EXPECT_EQ(regist(group, contender, 1), code);
        EXPECT_EQ(update(group, contender), code);
        EXPECT_EQ(withdraw(group, contender), code);
    }
    EXPECT_EQ(vl_regist_contender(nullptr, "a", "", 0, "", 1, nullptr, nullptr),
              INVAILD_NULL_PARAMETER);
    EXPECT_EQ(vl_update_contender("g", nullptr, nullptr, nullptr, nullptr),
              INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points_of("$SYS"), Names{}) << "there is no group";
}

TEST_F(Contention, RolesAndDataHaveALimit)
{
    EXPECT_EQ(regist("g", "a", 1, "", too_long), PARAMETER_ERROR);
    EXPECT_EQ(regist("g", "a", 1, megabyte + "x"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(regist("g", "a", 1, megabyte + "x", too_long), PARAMETER_ERROR);
    EXPECT_EQ(update("g", "a"), CONTENDER_IS_NUL);
    EXPECT_EQ(regist("g", "a", 1, megabyte, too_long.substr(1)), VL_OK);
    EXPECT_TRUE(contender("a", "data") == megabyte);
}

TEST_F(Contention, UnusualNamesAreNamesLikeOthers)
{
    for (const std::string& name : unusual_names) {
        ASSERT_EQ(regist(name, name, 1), VL_OK) << name;
        EXPECT_EQ(update(name, name), VL_OK);
        EXPECT_EQ(get_point("$SYS/contention/" + name + "/master"), name);
    }
    ASSERT_EQ(regist("g", "a/1%\n", 1), VL_OK);
    EXPECT_EQ(group("contenders"), "a%2F1%25%0A\n");
    EXPECT_EQ(contender("a%2F1%25%0A", "token"), group("epoch"));
}

TEST_F(ShortLeases, AContenderThatDoesNotRenewIsOut)
{
    ASSERT_EQ(regist("g", "silent", 2), VL_OK);
    const unsigned long long before = epoch();
    EXPECT_TRUE(eventually([] {
        EXPECT_EQ(regist("g", "other", 1), VL_OK); // stands, however slow this is
        return group("master") == "other";
    }));
    EXPECT_GT(epoch(), before);
    EXPECT_EQ(contender("silent", "priority"), "[4002]");
    EXPECT_EQ(update("g", "silent"), CONTENDER_IS_NUL);
    EXPECT_EQ(withdraw("g", "silent"), CONTENDER_IS_NUL);

    const unsigned long long meanwhile = epoch();
    ASSERT_EQ(regist("g", "silent", 2), VL_OK);
    EXPECT_GT(epoch(), meanwhile) << "it comes back as a new master";
}

TEST_F(ShortLeases, AGroupThatAllHaveLeftHasNoMaster)
{
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    const std::string last = group("epoch");
    EXPECT_TRUE(eventually([] { return group("master").empty(); }));
    EXPECT_EQ(group("state"), last + " ");
    EXPECT_EQ(group("contenders"), "");
    EXPECT_EQ(contender("a", "token"), "[4002]");
}

} // namespace
