// The checker finds what it is there to find.
#include <gtest/gtest.h>

#include "tests/durability/history.h"

using namespace velmo::tests;

namespace {

class RegistersCheck : public ::testing::Test {
protected:
    void write(const Registers::Values& values)
    {
        registers.begin(values);
        registers.done();
    }

    std::size_t violations_with(const Registers::Values& found)
    {
        Violations violations;
        Registers(registers).check(found, violations);
        return violations.size();
    }

    Registers registers;
};

TEST_F(RegistersCheck, WhatWasAcknowledgedLastIsThere)
{
    write({{"a", "1"}});
    write({{"a", "2"}, {"b", "1"}});
    EXPECT_EQ(violations_with({{"a", "2"}, {"b", "1"}}), 0u);
    EXPECT_EQ(violations_with({{"a", "1"}, {"b", "1"}}), 1u) << "a lost write";
    EXPECT_EQ(violations_with({{"a", "2"}}), 1u) << "a lost thing";
    EXPECT_EQ(violations_with({{"a", "2"}, {"b", "1"}, {"c", "1"}}), 1u)
        << "an unknown one";
}

TEST_F(RegistersCheck, ACallWithoutAnAnswerMayHaveHappened)
{
    write({{"a", "1"}});
    registers.begin({{"a", "2"}});
    EXPECT_EQ(violations_with({{"a", "1"}}), 0u);
    EXPECT_EQ(violations_with({{"a", "2"}}), 0u);
    EXPECT_EQ(violations_with({{"a", "3"}}), 1u);
}

TEST_F(RegistersCheck, ButNotInPart)
{
    registers.begin({{"a", "1"}, {"b", "1"}});
    EXPECT_EQ(violations_with({}), 0u);
    EXPECT_EQ(violations_with({{"a", "1"}, {"b", "1"}}), 0u);
    EXPECT_EQ(violations_with({{"a", "1"}}), 1u);
}

TEST_F(RegistersCheck, WhatWasFoundIsKnownFromThenOn)
{
    registers.begin({{"a", "1"}});
    Violations violations;
    registers.check({{"a", "1"}}, violations);
    EXPECT_EQ(violations_with({}), 1u);
}

class QueueCheck : public ::testing::Test {
protected:
    QueueCheck()
    {
        one.sent = {{1, 0}, {1, 1}, {1, 2}};
        one.perhaps_sent = {{1, 3}};
        other.sent = {{2, 0}};
    }

    std::size_t violations_with(const std::vector<Sent>& found) const
    {
        Violations violations;
        check_queue({&one, &other}, found, violations);
        return violations.size();
    }

    QueueLog one;
    QueueLog other;
};

TEST_F(QueueCheck, EverythingAcknowledgedIsThereInItsOrder)
{
    EXPECT_EQ(violations_with({{1, 0}, {2, 0}, {1, 1}, {1, 2}}), 0u);
    EXPECT_EQ(violations_with({{1, 0}, {1, 1}, {1, 2}, {1, 3}, {2, 0}}), 0u);
    EXPECT_EQ(violations_with({{1, 0}, {1, 1}, {1, 2}}), 1u) << "one is missing";
    EXPECT_EQ(violations_with({{1, 1}, {1, 0}, {1, 2}, {2, 0}}), 1u) << "out of order";
    EXPECT_EQ(violations_with({{1, 0}, {1, 1}, {1, 2}, {2, 0}, {2, 1}}), 1u) << "invented";
    EXPECT_GT(violations_with({{1, 0}, {1, 1}, {1, 2}, {1, 2}, {2, 0}}), 0u) << "twice";
}

TEST_F(QueueCheck, WhatWasReceivedIsGone)
{
    other.received = {{1, 0}, {1, 1}};
    EXPECT_EQ(violations_with({{1, 2}, {2, 0}}), 0u);
    EXPECT_GT(violations_with({{1, 1}, {1, 2}, {2, 0}}), 0u) << "a packet is back";
    EXPECT_EQ(violations_with({{2, 0}}), 1u) << "one is missing";
    one.perhaps_received = 1;
    EXPECT_EQ(violations_with({{2, 0}}), 0u) << "a call without an answer has taken it";
    EXPECT_EQ(violations_with({}), 1u) << "but only one";
}

TEST_F(QueueCheck, OneClientReceivesInOrder)
{
    other.received = {{1, 1}, {1, 0}, {1, 2}, {2, 0}};
    EXPECT_EQ(violations_with({}), 1u);
}

TEST(CountCheck, IsWithinWhatCanHaveHappened)
{
    const CountLog one{5, 1};
    const CountLog other{2, 0};
    for (const std::uint64_t found : {6u, 7u, 8u, 9u}) {
        Violations violations;
        check_count({&one, &other}, found, violations);
        EXPECT_EQ(violations.empty(), found == 7 || found == 8) << found;
    }
}

} // namespace
