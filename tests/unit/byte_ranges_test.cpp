// Sets of bytes as ranges: which sets are so few, and what sixteen bytes have outside of them.
#include "regexp/match/byte_ranges.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using zel::ByteRanges;
using zel::ByteSet;

/// A set of `count` ranges that do not touch, or of what these leave out.
ByteSet someRanges(std::mt19937& random, int count, bool inverted) {
    ByteSet set = {};
    for (int i = 0; i < count; ++i) {
        const auto start = static_cast<unsigned>(random() % 10);
        const auto span = static_cast<unsigned>(random() % 13);
        const unsigned first = 2 + 24 * static_cast<unsigned>(i) + start;
        set.addRange(first, first + span);
    }
    if (inverted) set.invert();
    return set;
}

void checkBytes(const ByteRanges& ranges, const ByteSet& set, std::mt19937& random) {
    Zel8u text[ByteRanges::kWidth];
    for (int first = 0; first < 256; ++first) {
        for (int i = 0; i < ByteRanges::kWidth; ++i)
            text[i] = static_cast<Zel8u>(i == 0 ? static_cast<unsigned>(first) : random());
        const unsigned outside = ranges.outside(text);
        for (int i = 0; i < ByteRanges::kWidth; ++i)
            ASSERT_EQ((outside >> i & 1) != 0, !set.has(text[i])) << int{text[i]};
        ASSERT_EQ(outside >> ByteRanges::kWidth, 0u);
    }
}

TEST(ByteRanges, Outside_SaysOfEachByteWhetherItIsInTheSet) {
    std::mt19937 random(6);
    for (int round = 0; round < 200; ++round) {
        const int count = round % (ByteRanges::kMost + 1);
        const ByteSet set = someRanges(random, count, round % 2 != 0);
        ByteRanges ranges;
        ASSERT_TRUE(ranges.describe(set)) << count;
        checkBytes(ranges, set, random);
    }
}

TEST(ByteRanges, Describe_TakesNoMoreRangesThanThereIsRoomFor) {
    std::mt19937 random(7);
    ByteRanges ranges;
    EXPECT_FALSE(ranges.describe(someRanges(random, ByteRanges::kMost + 1, false)));
    EXPECT_FALSE(ranges.describe(someRanges(random, ByteRanges::kMost + 1, true)));
}

TEST(ByteRanges, Describe_ReachesTheLastByte) {
    std::mt19937 random(8);
    ByteSet high = {};
    high.addRange(0x80, 0xFF);
    ByteSet low = high;
    low.invert();
    for (const ByteSet& set : {high, low}) {
        ByteRanges ranges;
        ASSERT_TRUE(ranges.describe(set));
        checkBytes(ranges, set, random);
    }
}

}  // namespace
