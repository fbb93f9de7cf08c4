// Images dumped as two EPROMs.

#include "rom/romtest.h"
#include "rom/split.h"

#include <filesystem>

namespace vantorel::test {
namespace {

constexpr const char* kValid = "Appears to be a ROM and the checksum is valid... we will keep this loaded\n";
constexpr const char* kTry1 = "Lets try Lo+Hi, not byteswapped\n";
constexpr const char* kTry2 = "Checksum invalid... we should discard this and try Lo+Hi, byteswapped\n";
constexpr const char* kTry3 = "Checksum invalid... we should discard this and try Hi+Lo\n";
constexpr const char* kTry4 = "Checksum invalid... we should discard this and try Hi+Lo, byteswapped\n";
constexpr const char* kJoin =
    "Does not appear to be a ROM or the checksum is invalid... we will simply concatenate "
    "the two chunks of data\n";

// The lines of `text` that tell of the attempts.
std::string attempts(const std::string& text) {
    std::string lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with("Lets try") || line.starts_with("Checksum invalid") ||
            line.starts_with("Appears") || line.starts_with("Does not appear"))
            lines += line + "\n";
    return lines;
}

class SplitTest : public RomTest {
protected:
    // Loads two dumps into a new slot; the result is in `result`.
    std::string load(View first, View second, int32_t level = 1) {
        dir.file("first", first);
        dir.file("second", second);
        return loadfiles(level);
    }

    std::string loadfiles(int32_t level = 1) {
        silently([] { iCurrentROM = newrom(0, 0); });
        return at(level, [&] { result = loadsplitrom(dir.file("first"), dir.file("second"), iMaxRom - 1); });
    }

    std::string load(const ChipPair& pair, int32_t level = 1) { return load(pair.first, pair.second, level); }

    int result = -1;
};

TEST_F(SplitTest, EachWordOrderIsFoundAtItsTurn) {
    const Bytes image = standardrom(524288).image;
    const std::vector<std::pair<WordOrder, std::string>> orders = {
        {WordOrder::LoHi, kTry1},
        {WordOrder::LoHiSwapped, std::string(kTry1) + kTry2},
        {WordOrder::HiLo, std::string(kTry1) + kTry2 + kTry3},
        {WordOrder::HiLoSwapped, std::string(kTry1) + kTry2 + kTry3 + kTry4},
    };
    for (const auto& [order, tries] : orders) {
        freshstate();
        EXPECT_EQ(attempts(load(splitpair(image, order), 2)), tries + kValid);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(slotat(0).pcROM, image);
        EXPECT_EQ(iMaxRom, 1);
    }
}

TEST_F(SplitTest, SwappedArgumentsMakeTheThirdOrderSucceed) {
    const Bytes image = standardrom(524288).image;
    const ChipPair pair = splitpair(image);
    const std::string text = load(pair.second, pair.first, 2);
    EXPECT_EQ(attempts(text), std::string(kTry1) + kTry2 + kTry3 + kValid);
    EXPECT_EQ(slotat(0).pcROM, image);
}

TEST_F(SplitTest, TheFirstFileHoldsTheFirstWordOfEachLong) {
    // Spelled out, so that the test's own splitter need not be trusted.
    const Bytes image = standardrom(262144).image;
    Bytes high;
    Bytes low;
    for (size_t i = 0; i < image.size(); i += 4) {
        high.insert(high.end(), {image[i], image[i + 1]});
        low.insert(low.end(), {image[i + 2], image[i + 3]});
    }
    load(high, low);
    EXPECT_EQ(slotat(0).pcROM, image);
}

TEST_F(SplitTest, AtTheUsualLevelAGoodPairIsSilentUpToItsHash) {
    EXPECT_EQ(load(splitpair(standardrom(262144).image)), "Unable to find hash\n");
}

TEST_F(SplitTest, TheNarrationOfAGoodPair) {
    const BuiltRom rom = standardrom(262144);
    const std::string text = load(splitpair(rom.image), 6);
    EXPECT_TRUE(text.starts_with("Opening " + dir.file("first") + "\nOpening " + dir.file("second") +
                                 "\nOK: Two files of 131072 bytes read, attempting merge\n" + kTry1));
    EXPECT_TRUE(text.ends_with("Loaded 262144 bytes to ROM 0\n"));
}

TEST_F(SplitTest, MessagesHaveTheirThresholds) {
    const ChipPair pair = splitpair(standardrom(262144).image);
    const ChipPair last = splitpair(standardrom(262144).image, WordOrder::HiLoSwapped);
    const Action run = [&] { loadsplitrom(dir.file("first"), dir.file("second"), 0); };
    const Action prepare = [] { newrom(0, 0); };
    dir.file("first", last.first);
    dir.file("second", last.second);
    expectthresholds(prepare, run,
                     {{5, "Opening " + dir.file("first") + "\n"},
                      {5, "Opening " + dir.file("second") + "\n"},
                      {1, "OK: Two files of 131072 bytes read, attempting merge\n"},
                      {1, kTry1},
                      {1, kTry2},
                      {1, kTry3},
                      {1, kTry4},
                      {1, kValid}});
    dir.file("first", overburnt(pair.first));
    dir.file("second", overburnt(pair.second));
    expectthresholds(prepare, run, {{0, "Data is overburnt... reducing data sizes\n"}});
    dir.file("first", Bytes{1, 2, 3, 4});
    dir.file("second", Bytes{5, 6, 7, 8});
    expectthresholds(prepare, run, {{1, kJoin}});
}

TEST_F(SplitTest, ErrorsHaveTheirThresholds) {
    const Action run = [&] { loadsplitrom(dir.file("first"), dir.file("second"), 0); };
    expectthresholds([] {}, run, {{0, "ERROR: Can't open " + dir.file("first") + "\n"}});
    dir.file("first", Bytes{1, 2});
    expectthresholds([] {}, run, {{0, "ERROR: Can't open " + dir.file("second") + "\n"}});
    dir.file("second", Bytes{1});
    expectthresholds([] {}, run,
                     {{0, "ERROR: Incomplete read or files are different sizes, can't merge them\n"}});
    dir.file("first", Bytes{});
    expectthresholds([] {}, run, {{0, "ERROR: " + dir.file("second") + " is zero bytes long\n"}});
}

TEST_F(SplitTest, OverburntDumpsAreReduced) {
    const Bytes image = standardrom(524288).image;
    const ChipPair pair = splitpair(image, WordOrder::HiLoSwapped);
    const std::string text = load(overburnt(pair.first), overburnt(pair.second), 2);
    EXPECT_TRUE(has(text, "OK: Two files of 524288 bytes read, attempting merge\n"
                          "Data is overburnt... reducing data sizes\n" +
                              std::string(kTry1)));
    EXPECT_EQ(slotat(0).pcROM, image);
    EXPECT_EQ(result, 0);
}

TEST_F(SplitTest, OneOverburntDumpAloneIsNotReduced) {
    const ChipPair pair = splitpair(standardrom(262144).image);
    Bytes second = overburnt(pair.second);
    second.back() ^= 1;
    EXPECT_FALSE(has(load(overburnt(pair.first), second), "overburnt"));
    EXPECT_FALSE(has(load(second, overburnt(pair.first)), "overburnt"));
    EXPECT_EQ(slotat(0).iSize(), 524288);
}

TEST_F(SplitTest, WithoutAValidOrderTheFilesAreJoined) {
    const Bytes first = {1, 2, 3, 4, 5};
    const Bytes second = {6, 7, 8, 9, 10};
    EXPECT_EQ(attempts(load(first, second, 2)), std::string(kTry1) + kTry2 + kTry3 + kTry4 + kJoin);
    EXPECT_EQ(slotat(0).pcROM, joined(first, second));
    EXPECT_EQ(result, 0);
}

TEST_F(SplitTest, SingleBytesAreJoined) {
    load(Bytes{1}, Bytes{2});
    EXPECT_EQ(slotat(0).pcROM, (Bytes{1, 2}));
}

TEST_F(SplitTest, TwoWhole512KRomsLoadAsTwoSlots) {
    const BuiltRom lower = standardrom(524288);
    const BuiltRom upper = standardrom(524288, 0xE00000);
    EXPECT_EQ(attempts(load(lower.image, upper.image, 2)),
              std::string(kTry1) + kTry2 + kTry3 + kTry4 + kJoin);
    EXPECT_EQ(result, 0);
    ASSERT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(0).pcROM, lower.image);
    EXPECT_EQ(slotat(1).pcROM, upper.image);
    EXPECT_EQ(iCurrentROM, 1);
}

TEST_F(SplitTest, ChipsOfOneMegabyteLoadAsTwoSlots) {
    const Bytes lower = standardrom(524288).image;
    const Bytes upper = standardrom(524288, 0xE00000).image;
    for (const WordOrder order : {WordOrder::LoHi, WordOrder::HiLoSwapped}) {
        freshstate();
        load(splitpair(joined(lower, upper), order));
        ASSERT_EQ(iMaxRom, 2);
        EXPECT_EQ(slotat(0).pcROM, lower);
        EXPECT_EQ(slotat(1).pcROM, upper);
        EXPECT_EQ(iCurrentROM, 1);
    }
}

TEST_F(SplitTest, OneMegabyteThatIsNoPairOfRomsStaysInOneSlot) {
    const Bytes lower = standardrom(524288).image;
    Bytes upper = lower;
    upper[99] ^= 1;
    load(lower, upper);
    EXPECT_EQ(iMaxRom, 1);
    EXPECT_EQ(iCurrentROM, 0);
    EXPECT_EQ(slotat(0).pcROM, joined(lower, upper));
}

TEST_F(SplitTest, TheSecondHalfNeedsAFreeSlot) {
    silently([] {
        for (int i = 0; i < 19; ++i)
            newrom(16, static_cast<uint8_t>(i));
    });
    const std::string text = load(standardrom(524288).image, standardrom(524288, 0xE00000).image);
    EXPECT_EQ(text, "Unable to find hash\nSorry, 20 ROMs maximum\nNo such ROM\n");
    EXPECT_EQ(slotat(19).pcROM, standardrom(524288).image);
    EXPECT_EQ(slotat(18).pcROM, Bytes(16, 18));
}

TEST_F(SplitTest, DumpsOfDifferentSizesAreRefused) {
    const ChipPair pair = splitpair(standardrom(262144).image);
    const std::string error = "ERROR: Incomplete read or files are different sizes, can't merge them\n";
    EXPECT_EQ(load(pair.first, overburnt(pair.second)), error);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(load(overburnt(pair.first), pair.second), error);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(load(pair.first, Bytes{}), error);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(slotat(0).iSize(), 0) << "the slot stays as it was";
}

TEST_F(SplitTest, AnEmptyFirstFileIsReportedUnderTheSecondName) {
    const std::string error = "ERROR: " + dir.file("second") + " is zero bytes long\n";
    EXPECT_EQ(load(Bytes{}, Bytes{1, 2}), error);
    EXPECT_EQ(result, 1);
    // The second file is not even looked for.
    std::filesystem::remove(dir.file("second"));
    EXPECT_EQ(loadfiles(), error);
}

TEST_F(SplitTest, FilesThatCannotBeOpenedAreNamed) {
    EXPECT_EQ(loadfiles(), "ERROR: Can't open " + dir.file("first") + "\n");
    EXPECT_EQ(result, 1);
    dir.file("first", Bytes{1, 2});
    EXPECT_EQ(loadfiles(), "ERROR: Can't open " + dir.file("second") + "\n");
    EXPECT_EQ(result, 1);
    dir.folder("second");
    EXPECT_EQ(loadfiles(), "ERROR: Can't open " + dir.file("second") + "\n") << "a directory";
}

TEST_F(SplitTest, ASlotThatDoesNotExistIsRefused) {
    const ChipPair pair = splitpair(standardrom(262144).image);
    dir.file("first", pair.first);
    dir.file("second", pair.second);
    EXPECT_EQ(at(1, [&] { loadsplitrom(dir.file("first"), dir.file("second"), 3); }), "No such ROM\n");
}

TEST_F(SplitTest, AFileOfWhichTwoAreTooLargeForAnImageIsNotRead) {
    const std::string huge = dir.file("huge", "");
    std::filesystem::resize_file(huge, 0x40000000);
    silently([] { newrom(0, 0); });
    EXPECT_EQ(at(1, [&] { EXPECT_EQ(loadsplitrom(huge, huge, 0), 1); }),
              "ERROR: " + huge + " is too large to be merged (1073741824 bytes)\n");
    EXPECT_EQ(at(0, [&] { loadsplitrom(huge, huge, 0); }), "");
}

} // namespace
} // namespace vantorel::test
