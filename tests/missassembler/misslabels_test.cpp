// The records of the walk: their order, their number, and what is traced of them.

#include "missassembler/walktest.h"

#include <cstdint>

namespace vantorel::test {
namespace {

using MissLabelsTest = FreshTest;

// Four records of which the last two go before others.
void addfour() {
    addmisslabel("a", 10, MissType::cNone, 1);
    addmisslabel("b", 20, MissType::cWord, 3);
    addmisslabel("c", 10, MissType::cNone, 1);
    addmisslabel("d", 5, MissType::cNone, 1);
}

TEST_F(MissLabelsTest, StandInOrderOfPositionAndThenOfAdding) {
    silently(addfour);
    EXPECT_EQ(records(), (std::vector<std::string>{"5 - 1 d", "10 - 1 a", "10 - 1 c", "20 W 3 b"}));
    EXPECT_EQ(iMissLabelCnt, 4);
}

TEST_F(MissLabelsTest, SayNothingUpToLevelFive) { EXPECT_EQ(at(5, addfour), ""); }

TEST_F(MissLabelsTest, TellTheirPlaceAboveLevelFive) {
    const std::string expected = "Adding label a at position 10\nStoring into position 0 of 0\n"
                                 "Adding label b at position 20\nStoring into position 1 of 1\n"
                                 "Adding label c at position 10\nStoring into position 1 of 2\n"
                                 "Adding label d at position 5\nStoring into position 0 of 3\n";
    EXPECT_EQ(at(6, addfour), expected);
    silently(freemissassembler);
    EXPECT_EQ(at(7, addfour), expected);
}

TEST_F(MissLabelsTest, TellWhatMovesAboveLevelSeven) {
    EXPECT_EQ(at(8, addfour), "Adding label a at position 10\nStoring into position 0 of 0\n"
                              "Adding label b at position 20\nStoring into position 1 of 1\n"
                              "Adding label c at position 10\nShuffling up positions 1-1\n"
                              "Storing into position 1 of 2\n"
                              "Adding label d at position 5\nShuffling up positions 0-2\n"
                              "Storing into position 0 of 3\n");
}

TEST_F(MissLabelsTest, KeepTheirTextsWhole) {
    const std::string text = std::string(3000, 'x') + ", and more";
    silently([&] { addmisslabel(text, 0, MissType::cText, 1); });
    EXPECT_EQ(psLabels.begin()->pcLabel, text);
}

TEST_F(MissLabelsTest, AreGoneAfterTheyAreFreed) {
    silently(addfour);
    freemissassembler();
    EXPECT_TRUE(psLabels.empty());
    EXPECT_EQ(iMissLabelCnt, 0);
}

TEST_F(MissLabelsTest, AreCountedWithoutBeingStoredAgain) {
    silently(addfour);
    countmisslabels(1000);
    EXPECT_EQ(iMissLabelCnt, 1004);
    EXPECT_EQ(psLabels.size(), 4U);
}

TEST_F(MissLabelsTest, AreNeverCountedBelowZero) {
    constexpr int32_t most = INT32_MAX;
    countmisslabels(int64_t{most} - 1);
    countmisslabels(int64_t{1} << 40);
    EXPECT_EQ(iMissLabelCnt, most);
    silently(addfour);
    EXPECT_EQ(iMissLabelCnt, most);
}

} // namespace
} // namespace vantorel::test
