// Views of the caller's memory, and waits.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "velmo/velmo.hpp"

namespace {

using namespace std::chrono_literals;
using velmo::Buffer;
using velmo::Bytes;
using velmo::Wait;

TEST(CppBytes, ViewTextsAndContainersWithoutACopy)
{
    const std::string text("a\0b", 3);
    EXPECT_EQ(Bytes(text).data(), static_cast<const void*>(text.data()));
    EXPECT_EQ(Bytes(text).text(), text);
    EXPECT_EQ(Bytes("two").text(), "two") << "without the NUL";
    EXPECT_EQ(Bytes(std::string_view("three")).size(), 5U);
    const std::vector<std::int32_t> numbers{1, 2, 3};
    EXPECT_EQ(Bytes(numbers).size(), 12U);
    EXPECT_EQ(Bytes(numbers).data(), static_cast<const void*>(numbers.data()));
    EXPECT_EQ(Bytes(std::array<char, 4>{}).size(), 4U);
    EXPECT_TRUE(Bytes().empty());
    EXPECT_TRUE(Bytes(static_cast<const char*>(nullptr)).empty());
}

TEST(CppBytes, AreNumbersAndStructsOfTheRightSizeOnly)
{
    struct Pair {
        std::int32_t first;
        std::int32_t second;
    };
    const Pair pair{1, -2};
    const Bytes bytes = velmo::bytes_of(pair);
    ASSERT_EQ(bytes.size(), 8U);
    EXPECT_EQ(bytes.as<Pair>()->second, -2);
    EXPECT_FALSE(bytes.as<std::int32_t>());
    EXPECT_EQ(Bytes(&pair, 4).as<std::int32_t>(), 1);
}

TEST(CppBytes, MoreThanAnIntHoldsIsALengthThatIsRefused)
{
    const char byte = 0;
    EXPECT_EQ(Bytes(&byte, 0).length(), 0);
    EXPECT_EQ(Bytes(&byte, INT_MAX).length(), INT_MAX);
    EXPECT_EQ(Bytes(&byte, std::size_t{INT_MAX} + 1).length(), -1);
    EXPECT_EQ(Bytes(&byte, std::size_t{1} << 32).length(), -1) << "not 0";
}

TEST(CppBuffer, IsTheRoomOfAContainer)
{
    std::vector<std::int16_t> numbers(3);
    EXPECT_EQ(Buffer(numbers).size(), 6U);
    EXPECT_EQ(Buffer(numbers).data(), static_cast<void*>(numbers.data()));
    std::string text(5, ' ');
    EXPECT_EQ(Buffer(text).size(), 5U);
    static_assert(!std::is_constructible_v<Buffer, const std::string&>);
}

TEST(CppWait, IsAnyDurationRoundedUpToMilliseconds)
{
    EXPECT_EQ(Wait().option(), 0U);
    EXPECT_EQ(Wait(1s).option(), 1000U);
    EXPECT_EQ(Wait(1us).option(), 1U);
    EXPECT_EQ(Wait(1500us).option(), 2U);
    EXPECT_EQ(Wait(0.25s).option(), 250U);
    EXPECT_EQ(Wait(-1h).option(), 0U);
    EXPECT_EQ(Wait(std::chrono::hours::max()).option(), 0xFFFFFFFF);
    EXPECT_EQ(Wait(4294967294ms).option(), 0xFFFFFFFE);
    EXPECT_EQ(Wait::longest().option(), 0xFFFFFFFF);
    static_assert(Wait(2ms).option() == 2);
}

} // namespace
