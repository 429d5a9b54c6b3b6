// Giving blocks back to the library.

#include <cstdlib>

#include <gtest/gtest.h>

#include "vl_api.h"

namespace velmo::tests {

namespace {

TEST(FreeMemoryTest, of_a_pointer_to_null_is_harmless)
{
    void* pointer = nullptr;
    vl_free_memory(&pointer);
    EXPECT_EQ(pointer, nullptr);
}

TEST(FreeMemoryTest, frees_a_block_and_sets_the_pointer_to_null)
{
    void* pointer = std::malloc(100);
    vl_free_memory(&pointer);
    EXPECT_EQ(pointer, nullptr);
}

TEST(FreeMemoryTest, of_null_does_nothing)
{
    vl_free_memory(nullptr);
}

ConnectionBlock* new_block(ConnectionBlock* next)
{
    auto* block = static_cast<ConnectionBlock*>(std::calloc(1, sizeof(ConnectionBlock)));
    block->next = next;
    return block;
}

// That the blocks are freed shows under the leak checker.
TEST(DestroyConnectionListTest, frees_every_block_sets_count_to_0_and_leaves_first)
{
    ConnectionBlock* const first = new_block(new_block(new_block(nullptr)));
    ConnectionList list{first, 3};
    vl_destory_connection_seq(&list);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.first, first);
}

TEST(DestroyConnectionListTest, with_count_0_or_less_frees_nothing_and_leaves_count_0)
{
    for (const int count : {0, -1, -1000}) {
        ConnectionBlock block{};
        ConnectionList list{&block, count};
        vl_destory_connection_seq(&list);
        EXPECT_EQ(list.count, 0);
        EXPECT_EQ(list.first, &block);
    }
}

TEST(DestroyConnectionListTest, goes_by_the_links_and_not_by_the_count)
{
    ConnectionList list{new_block(new_block(nullptr)), 7};
    vl_destory_connection_seq(&list);
    EXPECT_EQ(list.count, 0);
}

TEST(DestroyConnectionListTest, of_null_does_nothing)
{
    vl_destory_connection_seq(nullptr);
}

} // namespace

} // namespace velmo::tests
