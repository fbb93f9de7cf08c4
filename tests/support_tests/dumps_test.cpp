#include "support/dumps.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vantorel::test {
namespace {

const Bytes eight = {0, 1, 2, 3, 4, 5, 6, 7};

TEST(ByteSwapped, ExchangesTheBytesOfWords) {
    EXPECT_EQ(byteswapped(eight), (Bytes{1, 0, 3, 2, 5, 4, 7, 6}));
    EXPECT_EQ(byteswapped(byteswapped(eight)), eight);
    EXPECT_EQ(byteswapped(Bytes{1, 2, 3}), (Bytes{2, 1, 3}));
}

TEST(SplitPair, GivesTheWordsInAllOrders) {
    const ChipPair lohi = splitpair(eight);
    EXPECT_EQ(lohi.first, (Bytes{0, 1, 4, 5}));
    EXPECT_EQ(lohi.second, (Bytes{2, 3, 6, 7}));
    const ChipPair swapped = splitpair(eight, WordOrder::LoHiSwapped);
    EXPECT_EQ(swapped.first, (Bytes{1, 0, 5, 4}));
    EXPECT_EQ(swapped.second, (Bytes{3, 2, 7, 6}));
    const ChipPair hilo = splitpair(eight, WordOrder::HiLo);
    EXPECT_EQ(hilo.first, lohi.second);
    EXPECT_EQ(hilo.second, lohi.first);
    const ChipPair both = splitpair(eight, WordOrder::HiLoSwapped);
    EXPECT_EQ(both.first, swapped.second);
    EXPECT_EQ(both.second, swapped.first);
}

TEST(SplitPair, RefusesHalfALong) { EXPECT_THROW((void)splitpair(Bytes(6, 0)), std::logic_error); }

TEST(OverBurnt, Repeats) {
    EXPECT_EQ(overburnt(Bytes{1, 2}), (Bytes{1, 2, 1, 2}));
    EXPECT_EQ(overburnt(Bytes{1, 2}, 3), (Bytes{1, 2, 1, 2, 1, 2}));
}

TEST(Cd32Interleaved, DealsTheWordsToQuarters) {
    const Bytes image = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    EXPECT_EQ(cd32interleaved(image), (Bytes{0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15}));
}

TEST(Cd32Interleaved, ComesBackByTheDescribedRule) {
    Bytes image(64);
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<uint8_t>(i * 7);
    const Bytes file = cd32interleaved(image);
    Bytes back(64);
    for (size_t k = 0; k < 8; ++k) {
        for (size_t b = 0; b < 2; ++b) {
            back[4 * k + b] = file[2 * k + b];               // quarter 0
            back[4 * k + 2 + b] = file[32 + 2 * k + b];      // quarter 2
            back[32 + 4 * k + b] = file[16 + 2 * k + b];     // quarter 1
            back[32 + 4 * k + 2 + b] = file[48 + 2 * k + b]; // quarter 3
        }
    }
    EXPECT_EQ(back, image);
}

TEST(Container, PutsPartsInTheirPlaces) {
    EXPECT_EQ(container({{2, {1, 2}}, {5, {3}}}), (Bytes{0, 0, 1, 2, 0, 3}));
    EXPECT_EQ(container({{1, {9}}}, 4, 0xFF), (Bytes{0xFF, 9, 0xFF, 0xFF}));
    EXPECT_THROW((void)container({{3, {1, 2}}}, 4), std::logic_error);
}

} // namespace
} // namespace vantorel::test
