#include "base/bytes.h"

#include <gtest/gtest.h>

#include <limits>

namespace vantorel::test {

namespace {

const Bytes counting = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};

} // namespace

TEST(TextBytes, EachCharacterIsAByte) {
    const std::string_view text("A\0\xFF", 3);
    const View bytes = textbytes(text);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), (Bytes{0x41, 0x00, 0xFF}));
    EXPECT_EQ(static_cast<const void*>(bytes.data()), text.data()) << "nothing is copied";
    EXPECT_TRUE(textbytes("").empty());
}

TEST(ByteOrder, LongsAreReadMostSignificantByteFirst) {
    EXPECT_EQ(iUINT32(counting.data()), 0x01234567U);
    EXPECT_EQ(iUINT32(counting.data() + 4), 0x89ABCDEFU);
}

TEST(ByteOrder, WordsAreReadMostSignificantByteFirst) {
    EXPECT_EQ(iUINT16(counting.data()), 0x0123U);
    EXPECT_EQ(iUINT16(counting.data() + 6), 0xCDEFU);
}

TEST(ByteOrder, AWrittenLongReadsBack) {
    for (const uint32_t value : {0U, 1U, 0x80000000U, 0xFFFFFFFFU, 0x11114EF9U})
        EXPECT_EQ(iUINT32(sUINT32(value).data()), value);
}

TEST(ByteOrder, TwoLongsInARowShareTheBufferThatHoldsTheSecond) {
    const auto& first = sUINT32(0x11223344);
    const auto& second = sUINT32(0xAABBCCDD);
    EXPECT_EQ(&first, &second);
    EXPECT_EQ(first, (std::array<uint8_t, 4>{0xAA, 0xBB, 0xCC, 0xDD}));
}

TEST(ByteOrder, TwoWordsInARowShareTheBufferThatHoldsTheSecond) {
    const auto& first = sUINT16(0x1122);
    const auto& second = sUINT16(0xAABB);
    EXPECT_EQ(&first, &second);
    EXPECT_EQ(first, (std::array<uint8_t, 2>{0xAA, 0xBB}));
}

TEST(ByteOrder, AWordIsTheLowHalfOfWhatIsGiven) {
    EXPECT_EQ(sUINT16(0x12345678), (std::array<uint8_t, 2>{0x56, 0x78}));
}

TEST(ByteOrder, LongsAndWordsHaveBuffersOfTheirOwn) {
    const auto& number = sUINT32(0x11223344);
    EXPECT_EQ(sUINT16(0x5566)[0], 0x55);
    EXPECT_EQ(number, (std::array<uint8_t, 4>{0x11, 0x22, 0x33, 0x44}));
}

TEST(Inside, ARangeThatTouchesTheEndIsInside) {
    EXPECT_TRUE(isinside(counting, 0, 8));
    EXPECT_TRUE(isinside(counting, 4, 4));
    EXPECT_TRUE(isinside(counting, 8, 0));
    EXPECT_TRUE(isinside({}, 0, 0));
}

TEST(Inside, ARangeThatPassesTheEndIsNot) {
    EXPECT_FALSE(isinside(counting, 5, 4));
    EXPECT_FALSE(isinside(counting, 9, 0));
    EXPECT_FALSE(isinside({}, 0, 1));
}

TEST(Inside, NegativeAndOverflowingRangesAreNot) {
    constexpr int64_t largest = std::numeric_limits<int64_t>::max();
    constexpr int64_t smallest = std::numeric_limits<int64_t>::min();
    EXPECT_FALSE(isinside(counting, -1, 4));
    EXPECT_FALSE(isinside(counting, 4, -1));
    EXPECT_FALSE(isinside(counting, largest, largest));
    EXPECT_FALSE(isinside(counting, 4, largest));
    EXPECT_FALSE(isinside(counting, smallest, smallest));
}

TEST(CheckedReads, ALongNeedsAllItsFourBytes) {
    EXPECT_EQ(longat(counting, 4), 0x89ABCDEFU);
    EXPECT_EQ(longat(counting, 5), std::nullopt);
    EXPECT_EQ(longat(counting, -1), std::nullopt);
    EXPECT_EQ(longat({}, 0), std::nullopt);
}

TEST(CheckedReads, AWordNeedsBothItsBytes) {
    EXPECT_EQ(wordat(counting, 6), 0xCDEFU);
    EXPECT_EQ(wordat(counting, 7), std::nullopt);
    EXPECT_EQ(wordat(counting, -1), std::nullopt);
}

TEST(CheckedReads, APartIsTheBytesAskedFor) {
    const View middle = part(counting, 2, 3);
    EXPECT_EQ(Bytes(middle.begin(), middle.end()), (Bytes{0x45, 0x67, 0x89}));
}

TEST(CheckedWrites, ALongThatFitsIsStored) {
    Bytes data(6, 0xEE);
    EXPECT_TRUE(putlong(data, 2, 0x01020304));
    EXPECT_EQ(data, (Bytes{0xEE, 0xEE, 1, 2, 3, 4}));
}

TEST(CheckedWrites, ALongThatDoesNotFitLeavesTheBytes) {
    Bytes data(6, 0xEE);
    EXPECT_FALSE(putlong(data, 3, 0x01020304));
    EXPECT_FALSE(putlong(data, -1, 0x01020304));
    EXPECT_EQ(data, Bytes(6, 0xEE));
}

TEST(CheckedWrites, AppendedNumbersFollowEachOther) {
    Bytes data;
    appendlong(data, 0x01020304);
    appendword(data, 0xFFFF0506);
    EXPECT_EQ(data, (Bytes{1, 2, 3, 4, 5, 6}));
}

} // namespace vantorel::test
