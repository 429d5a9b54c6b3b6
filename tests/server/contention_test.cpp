// Contenders: who is master, and for how long.
#include "tests/server/contention_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Contention : public ContentionFixture {
protected:
    using ContentionFixture::ContentionFixture;
};

model::ContentionLimits narrow()
{
    model::ContentionLimits limits;
    limits.lease = std::chrono::milliseconds(100);
    limits.max_groups = 2;
    limits.max_contenders = 2;
    limits.data_bytes = 10;
    return limits;
}

class ContentionWithinLimits : public Contention {
protected:
    ContentionWithinLimits() : Contention(narrow()) {}
};

// ---------------------------------------------------------- who is master

TEST_F(Contention, TheOnlyContenderIsMaster)
{
    EXPECT_EQ(state(), "none");
    EXPECT_EQ(regist("a"), VL_OK);
    EXPECT_EQ(state(), "1 a");
}

TEST_F(Contention, AmongEqualsTheEarliestIsMaster)
{
    regist("b");
    regist("a");
    EXPECT_EQ(state(), "1 b");
    EXPECT_EQ(out("b"), VL_OK);
    EXPECT_EQ(state(), "2 a");
}

TEST_F(Contention, AHigherPriorityTakesOver)
{
    regist("low", -5);
    regist("mid", 0);
    EXPECT_EQ(state(), "2 mid");
    regist("high", 2147483647);
    EXPECT_EQ(state(), "3 high");
    out("high");
    EXPECT_EQ(state(), "4 mid");
    out("mid");
    EXPECT_EQ(state(), "5 low");
}

TEST_F(Contention, ALowerPriorityChangesNothing)
{
    regist("a", 1);
    regist("b", 0);
    regist("c", -2147483647 - 1);
    out("b");
    EXPECT_EQ(state(), "1 a");
}

TEST_F(Contention, GroupsAreApart)
{
    regist("a", 0, "g");
    regist("a", 0, "h");
    regist("b", 1, "h");
    EXPECT_EQ(state("g"), "1 a");
    EXPECT_EQ(state("h"), "2 b");
    out("a", "g");
    EXPECT_EQ(state("h"), "2 b");
}

TEST_F(Contention, RegisteringAgainKeepsMasterAndPlace)
{
    regist("a");
    regist("b");
    regist("a");
    EXPECT_EQ(state(), "1 a");
    regist("b", 1);
    EXPECT_EQ(state(), "2 b") << "a new priority counts";
    regist("b", 0);
    EXPECT_EQ(state(), "3 a") << "and the place among equals is the old one";
}

TEST_F(Contention, RegisteringAgainReplacesDataAndRole)
{
    contention.regist_contender("g", "a", bytes_of("old"), "old role", 1);
    contention.regist_contender("g", "a", bytes_of("new"), "new role", 2);
    EXPECT_EQ(point("g/contenders/a/data"), "new");
    EXPECT_EQ(point("g/contenders/a/role"), "new role");
    EXPECT_EQ(point("g/contenders/a/priority"), "2");
}

// ------------------------------------------------------------------ leases

TEST_F(Contention, WithoutRenewalTheLeaseEnds)
{
    regist("a");
    regist("b", -1);
    pass(lease - Duration(1));
    EXPECT_EQ(state(), "1 a");
    EXPECT_EQ(update("b"), VL_OK);
    pass(Duration(1));
    EXPECT_EQ(state(), "2 b") << "reading is enough to notice";
    EXPECT_EQ(update("a"), CONTENDER_IS_NUL);
}

TEST_F(Contention, RenewalGivesAWholeLease)
{
    regist("a");
    for (int i = 0; i < 10; ++i) {
        pass(lease - Duration(1));
        ASSERT_EQ(update("a"), VL_OK);
    }
    EXPECT_EQ(state(), "1 a");
    pass(lease - Duration(1));
    EXPECT_EQ(regist("a"), VL_OK) << "registering renews as well";
    pass(lease - Duration(1));
    EXPECT_EQ(state(), "1 a");
    EXPECT_EQ(point("g/contenders/a/lease"), "1");
}

TEST_F(Contention, WhoeverIsLateIsOutAlsoWhenNobodyLooked)
{
    regist("a");
    pass(lease);
    EXPECT_EQ(update("a"), CONTENDER_IS_NUL);
    regist("b");
    pass(lease);
    EXPECT_EQ(out("b"), CONTENDER_IS_NUL);
}

TEST_F(Contention, AMasterThatComesBackLateHasANewEpoch)
{
    regist("a");
    pass(lease);
    EXPECT_EQ(regist("a"), VL_OK);
    EXPECT_EQ(state(), "2 a") << "it may have missed another master";
}

TEST_F(Contention, OneThatComesBackLateHasLostItsPlace)
{
    regist("a");
    regist("b");
    pass(lease / 2);
    update("b");
    pass(lease / 2);
    regist("a");
    EXPECT_EQ(state(), "2 b");
}

TEST_F(Contention, NobodyIsMasterWhenAllAreOut)
{
    regist("a");
    pass(lease);
    EXPECT_EQ(state(), "1 ");
    EXPECT_EQ(point("g/master"), "");
    EXPECT_EQ(point("g/epoch"), "1") << "nothing may come under a lower one";
    regist("b");
    out("b");
    EXPECT_EQ(state(), "2 ");
    EXPECT_EQ(contention.leases(), 0u);
}

TEST_F(Contention, LeasesAreCounted)
{
    regist("a");
    pass(lease / 2);
    regist("b");
    regist("a", 0, "h");
    EXPECT_EQ(contention.leases(), 3u);
    pass(lease / 2);
    EXPECT_EQ(contention.leases(), 2u);
}

TEST_F(Contention, ANewServersEpochsAreHigher)
{
    const model::Epoch before = model::first_epoch_of_now();
    model::ContentionService service;
    service.regist_contender("g", "a", bytes_of(""), "", 0);
    const auto first = service.status("g");
    ASSERT_TRUE(first);
    EXPECT_GE(first->epoch, before);
    EXPECT_GE(before, 1577836800000000u) << "microseconds since 1970";
}

// --------------------------------------------------------------- bad input

TEST_F(Contention, WhoDoesNotStandHasItsCode)
{
    EXPECT_EQ(update("a"), CONTENDER_IS_NUL);
    EXPECT_EQ(out("a"), CONTENDER_IS_NUL);
    regist("a");
    EXPECT_EQ(update("b"), CONTENDER_IS_NUL);
    EXPECT_EQ(update("a", "h"), CONTENDER_IS_NUL);
    EXPECT_EQ(out("a"), VL_OK);
    EXPECT_EQ(out("a"), CONTENDER_IS_NUL);
}

TEST_F(Contention, NamesAreLikeThoseOfPorts)
{
    const std::string longest(255, 'n');
    const std::string too_long(256, 'n');
    EXPECT_EQ(regist("", 0, "g"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(regist("a", 0, ""), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(regist(too_long, 0, "g"), PARAMETER_ERROR);
    EXPECT_EQ(regist("a", 0, too_long), PARAMETER_ERROR);
    EXPECT_EQ(regist(longest, 0, longest), VL_OK);
    for (const bool leave : {false, true}) {
        const auto call = [&](const std::string& contender, const std::string& group) {
            return leave ? out(contender, group) : update(contender, group);
        };
        EXPECT_EQ(call("", "g"), INVAILD_NULL_PARAMETER);
        EXPECT_EQ(call("a", ""), INVAILD_NULL_PARAMETER);
        EXPECT_EQ(call(too_long, "g"), PARAMETER_ERROR);
        EXPECT_EQ(call("a", too_long), PARAMETER_ERROR);
    }
    EXPECT_EQ(contention.regist_contender("g", "a", bytes_of(""), too_long, 0),
              PARAMETER_ERROR);
    EXPECT_EQ(contention.groups(), (std::vector<std::string>{longest}));
}

TEST_F(ContentionWithinLimits, LargerDataChangeNothing)
{
    EXPECT_EQ(contention.regist_contender("g", "a", bytes_of("12345678901"), "", 0),
              SIZE_IS_NOT_MATCH);
    EXPECT_EQ(state(), "none");
    EXPECT_EQ(contention.regist_contender("g", "a", bytes_of("1234567890"), "", 0), VL_OK);
}

TEST_F(ContentionWithinLimits, AGroupHasSoManyContenders)
{
    regist("a");
    regist("b");
    EXPECT_EQ(regist("c", 9), MEMORY_ALLOCATION_FAI);
    EXPECT_EQ(regist("b", 9), VL_OK);
    EXPECT_EQ(state(), "2 b");
    pass(lease);
    EXPECT_EQ(regist("c"), VL_OK);
}

TEST_F(ContentionWithinLimits, ForgottenGroupsDoNotTakeTheirEpochsBack)
{
    for (int i = 0; i < 5; ++i) {
        regist("a");
        out("a");
    }
    EXPECT_EQ(state(), "5 ");
    regist("a", 0, "h");
    regist("a", 0, "i"); // takes the room of the empty one
    EXPECT_EQ(state(), "none");
    EXPECT_EQ(regist("a"), MEMORY_ALLOCATION_FAI);
    out("a", "h");
    EXPECT_EQ(regist("a"), VL_OK);
    EXPECT_EQ(state(), "6 a");
}

} // namespace
