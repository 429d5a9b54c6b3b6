// Filling a caller's list with more names than it can count.

#include "api/name_list.h"

#include <new>

#include <gtest/gtest.h>

namespace velmo::tests {

namespace {

TEST(NameListTest, of_more_names_than_a_signed_count_holds_is_not_made)
{
    // Nothing is read of the names.
    char* nothing[1] = {nullptr};
    const CORBA::ULong half = 1u << 30;
    const Velmo::NAME_SEQ names(half, half, nothing, false);
    NameList list{};
    EXPECT_THROW(velmo::api::fill(list, names, names), std::bad_alloc);
    EXPECT_EQ(list.names, nullptr);
}

} // namespace

} // namespace velmo::tests
