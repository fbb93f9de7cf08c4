// The walk over a component as a whole: what it begins and ends with, and what it refuses.

#include "missassembler/walk.h"

#include "missassembler/walktest.h"

#include <cstdint>

namespace vantorel::test {
namespace {

// NOP, RTS, and four bytes that nothing leads to.
const Bytes cCode = words({0x4E71, 0x4E75, 0x4142, 0x0001});

constexpr const char* cBegin = "ROM 0 ROMBase F80000\nMissassembling test 1.0 (1.1.24)\n";

// What is listed of `cCode` when its first byte is an entry point.
const std::string cLines =
    "F80040 NOP\nF80042 RTS\n" + hexrow("F80044 41 42 00 01", "AB..") + "Scanned 8 bytes, 4 code 4 data\n";

// ------------------------------------------------------------------------------------- the record of it

TEST_F(WalkTest, KnowsWhatLiesInTheComponent) {
    makecomponent(Bytes(16));
    const Walk walk = startwalk(0, 1);
    EXPECT_EQ(walk.address, 0xF80040U);
    EXPECT_EQ(walk.bytes.size(), 16U);
    EXPECT_EQ(marksof(walk), "................");
    EXPECT_EQ(componentoffset(walk, 0xF80040), 0);
    EXPECT_EQ(componentoffset(walk, 0xF80030), -16);
    EXPECT_EQ(componentoffset(walk, 0xF80150), 272);
    EXPECT_FALSE(isincomponent(walk, -1));
    EXPECT_TRUE(isincomponent(walk, 0));
    EXPECT_TRUE(isincomponent(walk, 15));
    EXPECT_FALSE(isincomponent(walk, 16));
}

TEST_F(WalkTest, AnEntryMarkedOutsideIsNone) {
    makecomponent(Bytes(4));
    Walk walk = startwalk(0, 1);
    EXPECT_FALSE(markentry(walk, -1));
    EXPECT_FALSE(markentry(walk, 4));
    EXPECT_FALSE(markentry(walk, int64_t{1} << 32));
    EXPECT_TRUE(markentry(walk, 3));
    EXPECT_TRUE(markentry(walk, 0));
    EXPECT_EQ(marksof(walk), "E..E");
    EXPECT_EQ(walk.ipEntries, std::set<int32_t>{0});
}

TEST_F(WalkTest, CodeClearsEntriesAndEndsWithTheComponent) {
    makecomponent(Bytes(8));
    Walk walk = startwalk(0, 1);
    for (const int32_t offset : {0, 2, 4})
        EXPECT_TRUE(markentry(walk, offset));
    markcode(walk, 0, 4);
    EXPECT_EQ(marksof(walk), "CCCCE...");
    EXPECT_EQ(walk.ipEntries, std::set<int32_t>{4});
    markcode(walk, 6, 10);
    EXPECT_EQ(marksof(walk), "CCCCE.CC");
}

TEST_F(WalkTest, RecordsOutsideTheComponentAreLeftOut) {
    makecomponent(Bytes(8));
    const Walk walk = startwalk(0, 1);
    addrecord(walk, "before", -1, MissType::cNone);
    addrecord(walk, "behind", 8, MissType::cNone);
    addrecord(walk, "last", 7, MissType::cByte, 3);
    EXPECT_EQ(records(), std::vector<std::string>{"7 B 3 last"});
}

// ------------------------------------------------------------------------------------------- all of it

TEST_F(WalkTest, WithoutTagAndHintsEverythingIsData) {
    makecomponent(cCode);
    EXPECT_EQ(walked(), std::string(cBegin) + "Found 0 initial entry points\n" +
                            hexrow("F80040 4E 71 4E 75 41 42 00 01", "NqNuAB..") +
                            "Scanned 8 bytes, 0 code 8 data\n");
    EXPECT_EQ(listing(), "ROMBase=F80000\nComponent=test 1.0 (1.1.24)\n" +
                             hexrow("F80040 4E 71 4E 75 41 42 00 01", "NqNuAB..") +
                             "Scanned 8 bytes, 0 code 8 data\n");
}

TEST_F(WalkTest, FollowsWhatTheHintsName) {
    makecomponent(cCode);
    hashfile("[Missassembler]\nENTRYPOINT=0,Start\n");
    EXPECT_EQ(walked(), std::string(cBegin) + "Found 0 initial entry points\n" +
                            "MissHint:ENTRYPOINT=0,Start\nAdd entrypoint=0\nStart\n" + cLines);
    EXPECT_EQ(listing(), "ROMBase=F80000\nComponent=test 1.0 (1.1.24)\n Start\n" + cLines);
}

TEST_F(WalkTest, FollowsWhatTheTagNames) {
    Bytes bytes(28);
    setwords(bytes, 0, {0x4AFC});
    setlongs(bytes, 2, {cWalkAddress, cWalkAddress});
    setlongs(bytes, 14, {0xF90000, 0xF90000, cWalkAddress + 26});
    setwords(bytes, 26, {0x4E75});
    makecomponent(bytes);
    EXPECT_EQ(walked(), std::string(cBegin) + "Found 1 initial entry points\n"
                                              "F80040  0x4AFC ;RT_MATCHWORD\n"
                                              "F80042  0xF80040 ;RT_MATCHTAG\n"
                                              "F80046  0xF80040 ;RT_ENDSKIP\n"
                                              "F8004A  0x00 ;RT_FLAGS\n"
                                              "F8004B  0x00 ;RT_VERSION\n"
                                              "F8004C  0x00 ;RT_TYPE\n"
                                              "F8004D  0x00 ;RT_PRI\n"
                                              "F8004E  0xF90000 ;RT_NAME\n"
                                              "F80052  0xF90000 ;RT_IDSTRING\n"
                                              "F80056  0xF8005A ;RT_INIT\n"
                                              "RT_INIT\n"
                                              "F8005A RTS\n"
                                              "Scanned 28 bytes, 2 code 26 data\n");
}

TEST_F(WalkTest, TakesEntriesFromAllSourcesAtOnce) {
    makecomponent(cCode);
    romhints("[0x1234abcd]\nENTRYPOINT=0xf80042\n");
    hashfile("[Missassembler]\nENTRYPOINT=0\n");
    EXPECT_EQ(walked(), std::string(cBegin) +
                            "Found 0 initial entry points\n"
                            "MissHint:ENTRYPOINT=0\nAdd entrypoint=0\n"
                            " HINT 0xf80042 : 00f80042\nChecking entrypoint hint (66)\n" +
                            cLines);
}

TEST_F(WalkTest, SaysSoWhenTheRomHasNoHints) {
    makecomponent(cCode);
    romhints("[0x00000000]\n");
    EXPECT_TRUE(has(walked(0), "\nNo misassembler hints for ROM with CRC32 0x1234abcd\nF80040 "));
}

TEST_F(WalkTest, ItsListingIsShownAtEveryVerbosity) {
    makecomponent(cCode);
    const std::string silent = walked(0);
    EXPECT_EQ(silent, walked(1));
    EXPECT_EQ(walked(2), "19 mnemonics already loaded\n" + std::string(cBegin) +
                             "Found 0 initial entry points\nThere are 0 labels\n" +
                             silent.substr(silent.find("F80040")));
}

TEST_F(WalkTest, MessagesAppearAboveTheirLevels) {
    const auto prepare = [this] {
        installtable(cWalkTable);
        makecomponent(cCode);
        hashfile("[Missassembler]\nENTRYPOINT=0,Start\n");
    };
    const InDirectory there(dir);
    expectthresholds(prepare, [] { missassembleLibrary(0, 1); },
                     {{-1, "ROM 0 ROMBase F80000\n"},
                      {-1, "Missassembling test 1.0 (1.1.24)\n"},
                      {-1, "Found 0 initial entry points\n"},
                      {-1, "MissHint:ENTRYPOINT=0,Start\n"},
                      {-1, "Add entrypoint=0\n"},
                      {-1, "Scanned 8 bytes, 4 code 4 data\n"},
                      {1, "There are 1 labels\n"},
                      {5, "Entrypoint 0xf80040\n"},
                      {5, "Mnemonic -> NOP\n"},
                      {5, "Adding label Start at position 0\n"},
                      {7, "Adding label [Start] repeat=1\n"}});
}

TEST_F(WalkTest, BeginsWithEmptyRecords) {
    makecomponent(cCode);
    silently([] { addmisslabel("old", 0, MissType::cNone, 1); });
    EXPECT_FALSE(has(walked(), "old"));
    EXPECT_EQ(walked(), walked());
}

TEST_F(WalkTest, AComponentWithoutAnIdString) {
    makecomponent(cCode);
    componentat(0, 1).pcLibString.reset();
    EXPECT_TRUE(has(walked(), "Missassembling (null)\n"));
    EXPECT_TRUE(listing().starts_with("ROMBase=F80000\nComponent=(null)\nF80040 "));
}

TEST_F(WalkTest, AnEmptyComponent) {
    makecomponent({});
    EXPECT_EQ(walked(), std::string(cBegin) + "Found 0 initial entry points\n"
                                              "Scanned 0 bytes, 0 code 0 data\n");
}

TEST_F(WalkTest, LeavesTheRomAsItIs) {
    makecomponent(cCode);
    hashfile("[Missassembler]\nENTRYPOINT=0,Start\n");
    const InDirectory there(dir);
    EXPECT_NE(expectunchanged(0, [] { missassembleLibrary(0, 1); }), "");
}

TEST_F(WalkTest, ReplacesAnOlderListing) {
    makecomponent(cCode);
    dir.file(cListingFile, std::string(5000, 'x'));
    static_cast<void>(walked());
    EXPECT_TRUE(listing().ends_with("\nScanned 8 bytes, 0 code 8 data\n"));
    EXPECT_FALSE(has(listing(), "x"));
}

// ------------------------------------------------------------------------------------ what is refused

// Checks that walking component `component` of slot `rom` says `expected` above level 0, and nothing at it.
void expectrefused(const TempDir& dir, int32_t rom, int32_t component, const std::string& expected) {
    const InDirectory there(dir);
    const auto walk = [=] { missassembleLibrary(rom, component); };
    EXPECT_EQ(at(1, walk), expected) << rom << " " << component;
    EXPECT_EQ(at(0, walk), "") << rom << " " << component;
}

TEST_F(WalkTest, RefusesWhatDoesNotExist) {
    constexpr int32_t most = INT32_MAX;
    const std::string expected = "ERROR, ROM or component out of range\n";
    expectrefused(dir, -1, 0, expected); // no ROM at all
    expectrefused(dir, 0, 0, expected);
    makecomponent(cCode);
    for (const int32_t component : {-1, 3, most, -most - 1})
        expectrefused(dir, 0, component, expected);
    for (const int32_t rom : {-1, 1, 20, most, -most - 1})
        expectrefused(dir, rom, 0, expected);
    EXPECT_EQ(listing(), "");
}

TEST_F(WalkTest, RefusesToWorkWithoutATable) {
    makecomponent(cCode);
    sMnemonic = {};
    expectrefused(dir, 0, 1, "No missassembler file\nUnable to load ini file (missassemble.ini)\n");
    EXPECT_EQ(listing(), "ROMBase=F80000\nComponent=test 1.0 (1.1.24)\n");
    expectrefused(dir, 0, 3, "No missassembler file\nERROR, ROM or component out of range\n");
}

TEST_F(WalkTest, RefusesATableWithoutInstructions) {
    makecomponent(cCode);
    for (const char* text : {"", "[other]\n0100111001110001=NOP\n", "[mnemonics]\n", "[mnemonics]\n\n"}) {
        sMnemonic = {};
        static_cast<void>(hashes.write("missassemble.ini", text));
        index();
        expectrefused(dir, 0, 1, "Unable to load ini file (missassemble.ini)\n");
    }
}

TEST_F(WalkTest, LoadsItsTableFromTheHashLibrary) {
    makecomponent(cCode);
    sMnemonic = {};
    static_cast<void>(hashes.write("missassemble.ini", cWalkTable));
    hashfile("[Missassembler]\nENTRYPOINT=0\n");
    EXPECT_TRUE(has(walked(), cLines));
}

TEST_F(WalkTest, RefusesWithoutItsFile) {
    makecomponent(cCode);
    dir.folder(cListingFile);
    expectrefused(dir, 0, 1, "ERROR: failed to open output file missassembler.tmp\n");
    expectrefused(dir, 0, 9, "ERROR: failed to open output file missassembler.tmp\n");
}

TEST_F(WalkTest, RefusesAComponentOutsideItsImage) {
    makecomponent(cCode);
    const Component whole = componentat(0, 1);
    const auto expectoutside = [this](int32_t start, int32_t size) {
        componentat(0, 1).iStart = start;
        componentat(0, 1).iSize = size;
        expectrefused(dir, 0, 1, "ERROR: Component 1 does not lie in its image\n");
        EXPECT_EQ(listing(), "ROMBase=F80000\nComponent=test 1.0 (1.1.24)\n");
    };
    expectoutside(whole.iStart, 73); // 64 + 8 + 64 bytes are there
    expectoutside(-2, 8);
    expectoutside(64, -2);
    expectoutside(136, 1);
    componentat(0, 1).iStart = 64;
    componentat(0, 1).iSize = 72;
    EXPECT_TRUE(has(walked(), "Scanned 72 bytes, 0 code 72 data\n"));
}

} // namespace
} // namespace vantorel::test
