#include "cli/histogram.h"

#include <gtest/gtest.h>

using std::chrono::nanoseconds;
using velmo::cli::Histogram;

namespace {

TEST(Histogram, WithoutAnythingIsZero)
{
    const Histogram histogram;
    EXPECT_EQ(histogram.count(), 0u);
    EXPECT_EQ(histogram.quantile(.5), nanoseconds(0));
    EXPECT_TRUE(histogram.buckets().empty());
}

TEST(Histogram, QuantilesAreWithinABucketsWidth)
{
    Histogram histogram;
    for (int i = 1; i <= 100000; ++i)
        histogram.add(nanoseconds(i));
    for (const double share : {.001, .5, .9, .99, .999}) {
        const auto exact = share * 100000;
        const auto given = static_cast<double>(histogram.quantile(share).count());
        EXPECT_GE(given, exact);
        EXPECT_LE(given, exact * 33 / 32 + 1);
    }
    EXPECT_EQ(histogram.quantile(1), nanoseconds(100000));
    EXPECT_EQ(histogram.max(), nanoseconds(100000));
    EXPECT_EQ(histogram.sum(), nanoseconds(5000050000));
}

TEST(Histogram, EveryDurationIsBelowItsBucketsEnd)
{
    for (const long long value : {0LL, 1LL, 63LL, 64LL, 65LL, 127LL, 128LL, 1000000007LL,
                                  std::numeric_limits<long long>::max() / 4}) {
        Histogram histogram;
        histogram.add(nanoseconds(value));
        ASSERT_EQ(histogram.buckets().size(), 1u);
        const auto end = histogram.buckets().front().end.count();
        EXPECT_GT(end, value);
        EXPECT_LE(end, value + value / 32 + 1);
    }
}

TEST(Histogram, AddsUpAnother)
{
    Histogram one, other;
    one.add(nanoseconds(10));
    other.add(nanoseconds(10));
    other.add(nanoseconds(5000));
    one.add(other);
    EXPECT_EQ(one.count(), 3u);
    EXPECT_EQ(one.max(), nanoseconds(5000));
    ASSERT_EQ(one.buckets().size(), 2u);
    EXPECT_EQ(one.buckets().front().count, 2u);
}

} // namespace
