// Pieces of images compared byte by byte, but for the addresses in them.

#include "rom/likeness.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantorel::test {
namespace {

struct Likeness {
    int32_t count;
    std::vector<int32_t> longs; // places told of

    bool operator==(const Likeness&) const = default;
};

Likeness compared(const Bytes& mine, int64_t mystart, const Bytes& theirs, int64_t theirstart, int64_t size,
                  uint32_t difference) {
    std::vector<int32_t> longs;
    const int32_t count = countlike(mine, mystart, theirs, theirstart, size, difference,
                                    [&](int32_t place) { longs.push_back(place); });
    return {count, longs};
}

TEST(Likeness, BytesCountEachForItself) {
    EXPECT_EQ(compared({1, 2, 3, 4, 5}, 0, {1, 9, 3, 9, 5}, 0, 5, 0x10000), (Likeness{3, {}}));
}

TEST(Likeness, ALongThatDiffersByWhereTheyRunCountsWhole) {
    const Bytes mine = {7, 0x00, 0xF8, 0x00, 0x20, 8};
    const Bytes theirs = {7, 0x00, 0x00, 0x00, 0x20, 8};
    EXPECT_EQ(compared(mine, 0, theirs, 0, 6, 0xF80000), (Likeness{6, {1}}));
    EXPECT_EQ(compared(mine, 0, theirs, 0, 6, 0xF80001), (Likeness{5, {}}));
}

TEST(Likeness, TheDifferenceWrapsAround) {
    EXPECT_EQ(compared({0, 0, 0, 2}, 0, {0xFF, 0xFF, 0xFF, 0xFE}, 0, 4, 4), (Likeness{4, {0}}));
}

TEST(Likeness, LongsDoNotOverlap) {
    // At 1, too, the long is larger by 0x01010101.
    const Bytes mine = {2, 2, 2, 2, 2};
    const Bytes theirs = {1, 1, 1, 1, 1};
    EXPECT_EQ(compared(mine, 0, theirs, 0, 5, 0x01010101), (Likeness{4, {0}}));
}

TEST(Likeness, EachSideHasItsOwnStart) {
    const Bytes mine = {0, 0, 1, 2, 3};
    const Bytes theirs = {1, 2, 3};
    EXPECT_EQ(compared(mine, 2, theirs, 0, 3, 1), (Likeness{3, {}}));
    EXPECT_EQ(compared(theirs, 0, mine, 2, 3, 1), (Likeness{3, {}}));
}

TEST(Likeness, WhatLiesOutsideEitherDoesNotCount) {
    const Bytes whole = {1, 2, 3, 4};
    EXPECT_EQ(compared(whole, 0, {1, 2}, 0, 4, 1), (Likeness{2, {}}));
    EXPECT_EQ(compared({1, 2}, 0, whole, 0, 4, 1), (Likeness{2, {}}));
    EXPECT_EQ(compared(whole, -2, {9, 9, 1, 2}, 0, 4, 1), (Likeness{2, {}}));
    EXPECT_EQ(compared({9, 9, 1, 2}, 0, whole, -2, 4, 1), (Likeness{2, {}}));
}

TEST(Likeness, ALongMayReachBeyondTheSize) {
    EXPECT_EQ(compared({1, 2, 3, 4}, 0, {1, 2, 3, 4}, 0, 3, 0), (Likeness{4, {0}}));
}

TEST(Likeness, ALongThatIsCutOffIsBytes) {
    EXPECT_EQ(compared({1, 2, 3}, 0, {1, 2, 3}, 0, 3, 0), (Likeness{3, {}}));
}

} // namespace
} // namespace vantorel::test
