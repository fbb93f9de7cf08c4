// Byte-swapped and interleaved dumps, undone.

#include "rom/layout.h"
#include "support/dumps.h"
#include "support/rombuilder.h"

#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

TEST(Layout, ByteswapExchangesTheBytesOfEveryWord) {
    EXPECT_EQ(vantorel::byteswapped(Bytes{1, 2, 3, 4}), (Bytes{2, 1, 4, 3}));
    EXPECT_EQ(vantorel::byteswapped(Bytes{}), Bytes{});
}

TEST(Layout, AnOddLastByteIsNotSwapped) {
    EXPECT_EQ(vantorel::byteswapped(Bytes{1, 2, 3}), (Bytes{2, 1, 3}));
    EXPECT_EQ(vantorel::byteswapped(Bytes{7}), Bytes{7});
}

TEST(Layout, ByteswapTwiceIsTheImage) {
    const Bytes image = standardrom(262144).image;
    EXPECT_EQ(vantorel::byteswapped(vantorel::byteswapped(image)), image);
}

// Every second word of `from`, as `takewords` writes them over 0xEE.
Bytes wordsof(const Bytes& from, size_t start) {
    Bytes to(4, 0xEE);
    to.resize(takewords(from, start, to));
    return to;
}

TEST(Layout, EverySecondWordIsTakenFromEitherStart) {
    const Bytes from = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(wordsof(from, 0), (Bytes{1, 2, 5, 6}));
    EXPECT_EQ(wordsof(from, 2), (Bytes{3, 4, 7, 8}));
}

TEST(Layout, TheLastWordTakenMayBeCutShortOrMissing) {
    EXPECT_EQ(wordsof({1, 2, 3, 4, 5, 6, 7}, 0), (Bytes{1, 2, 5, 6}));
    EXPECT_EQ(wordsof({1, 2, 3, 4, 5, 6, 7}, 2), (Bytes{3, 4, 7}));
    EXPECT_EQ(wordsof({1, 2, 3, 4, 5}, 0), (Bytes{1, 2, 5}));
    EXPECT_EQ(wordsof({1, 2, 3, 4, 5}, 2), (Bytes{3, 4}));
    EXPECT_EQ(wordsof({}, 2), Bytes{});
}

TEST(Layout, TheWordsOfTwoSourcesAreLaidInTurn) {
    Bytes to(8);
    interleavewords(Bytes{1, 2, 3, 4}, Bytes{5, 6, 7, 8}, to.data());
    EXPECT_EQ(to, (Bytes{1, 2, 5, 6, 3, 4, 7, 8}));
}

TEST(Layout, OddLastBytesOfTwoSourcesAreNotLaid) {
    Bytes to(6, 0xEE);
    interleavewords(Bytes{1, 2, 3}, Bytes{5, 6, 7}, to.data());
    EXPECT_EQ(to, (Bytes{1, 2, 5, 6, 0xEE, 0xEE}));
    interleavewords({}, {}, to.data());
    EXPECT_EQ(to, (Bytes{1, 2, 5, 6, 0xEE, 0xEE}));
}

// Each word of the file tells its quarter (top two bits) and its number there.
Bytes numberedquarters() {
    Bytes file;
    for (uint32_t quarter = 0; quarter < 4; ++quarter)
        for (uint32_t word = 0; word < 131072; ++word)
            appendword(file, quarter << 14 | (word & 0x3FFF));
    return file;
}

TEST(Layout, TheFirstHalfOfACD32ImageTakesQuarters0And2) {
    Bytes data = numberedquarters();
    deinterleaveCD32(data);
    ASSERT_EQ(data.size(), 1048576u);
    for (const uint32_t k : {0u, 1u, 5000u, 131071u}) {
        EXPECT_EQ(iUINT16(&data[4 * size_t{k}]), 0u << 14 | (k & 0x3FFF));
        EXPECT_EQ(iUINT16(&data[4 * size_t{k} + 2]), 2u << 14 | (k & 0x3FFF));
    }
}

TEST(Layout, TheSecondHalfOfACD32ImageTakesQuarters1And3) {
    Bytes data = numberedquarters();
    deinterleaveCD32(data);
    for (const uint32_t k : {0u, 1u, 5000u, 131071u}) {
        EXPECT_EQ(iUINT16(&data[524288 + 4 * size_t{k}]), 1u << 14 | (k & 0x3FFF));
        EXPECT_EQ(iUINT16(&data[524288 + 4 * size_t{k} + 2]), 3u << 14 | (k & 0x3FFF));
    }
}

TEST(Layout, ACD32DumpGivesItsImageAgain) {
    const Bytes image = joined(standardrom(524288).image, standardrom(524288, 0xE00000).image);
    Bytes file = cd32interleaved(image);
    ASSERT_NE(file, image);
    deinterleaveCD32(file);
    EXPECT_EQ(file, image);
}

TEST(Layout, WhatFollowsTheFirstMegabyteOfACD32DumpStays) {
    const Bytes image = joined(standardrom(524288).image, standardrom(524288, 0xE00000).image);
    const Bytes tail = {1, 2, 3, 4, 5};
    Bytes file = joined(cd32interleaved(image), tail);
    deinterleaveCD32(file);
    EXPECT_EQ(file, joined(image, tail));
}

} // namespace
} // namespace vantorel::test
