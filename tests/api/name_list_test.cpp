// Filling a caller's list with more names than it can count.

#include "api/name_list.h"

#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

namespace velmo::tests {

namespace {

// Whoever calls gets strings that are nobody else's, whether the sequence has any to give.
class NameListOf : public testing::TestWithParam<bool> {};

TEST_P(NameListOf, names_outlives_the_sequence)
{
    const bool owned = GetParam();
    char** strings = Velmo::NAME_SEQ::allocbuf(2);
    strings[0] = CORBA::string_dup("a name");
    strings[1] = CORBA::string_dup("");
    NameList list{};
    {
        Velmo::NAME_SEQ names(2, 2, strings, owned);
        velmo::api::fill(list, names);
    }
    if (!owned)
        Velmo::NAME_SEQ::freebuf(strings);
    ASSERT_EQ(list.count, 2u);
    EXPECT_STREQ(list.names[0], "a name");
    EXPECT_STREQ(list.names[1], "");
    for (int i = 0; i < 2; ++i)
        CORBA::string_free(list.names[i]);
    std::free(list.names);
}

INSTANTIATE_TEST_SUITE_P(Sequences, NameListOf, testing::Bool());

TEST(NameListTest, of_more_names_than_a_signed_count_holds_is_not_made)
{
    // Nothing is read of the names.
    char* nothing[1] = {nullptr};
    const CORBA::ULong half = 1u << 30;
    Velmo::NAME_SEQ names(half, half, nothing, false);
    NameList list{};
    EXPECT_THROW(velmo::api::fill(list, names, names), std::bad_alloc);
    EXPECT_EQ(list.names, nullptr);
}

} // namespace

} // namespace velmo::tests
