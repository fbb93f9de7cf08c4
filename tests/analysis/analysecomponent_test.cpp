// A component beside its copies in the other ROMs: each rule by an example worked out by hand.

#include "analysis/analysecomponent.h"

#include "analysis/analysistest.h"
#include "analysis/plaincomponent.h"
#include "hash/ini.h"

#include <cstdint>

namespace vantorel::test {
namespace {

using Relocs = std::vector<int32_t>;

class AnalyseComponentTest : public RomTest {
protected:
    // Slot 0 at 0xF80000: 4 bytes of something else, then 16 bytes with the tag on the fourth; slot 1 at
    // 0xFC0000 the same 8 bytes further on. Both have an address at 8 that points to their byte 12.
    static void makepair() {
        slotof(longs({0xEEEEEEEE, 0x11114AFC, 0x22222222, 0x00F80010, 0x33333333}), 0xF80000,
               {{4, 20, 6, cCopied}});
        slotof(longs({0xEEEEEEEE, 0xEEEEEEEE, 0xEEEEEEEE, 0x11114AFC, 0x22222222, 0x00FC0018, 0x33333333}),
               0xFC0000, {{12, 28, 14, cCopied}});
    }

    static std::string console(int32_t component = 0) {
        return expectunchanged(0,
                               [&] { EXPECT_EQ(analysecomponent(0, component, VerifiedRelocs::Tell), 0); });
    }

    static std::string adding(int32_t level = 1) {
        const Bytes image = slotat(0).pcROM;
        std::string text = at(level, [] { EXPECT_EQ(analysecomponent(0, 0, VerifiedRelocs::Add), 0); });
        EXPECT_EQ(slotat(0).pcROM, image);
        return text;
    }

    static Relocs& relocs() { return componentat(0, 0).ipRelocs; }
};

TEST_F(AnalyseComponentTest, ACopyProposesBoundsAndVerifiesRelocs) {
    makepair();
    // The copy begins 2 bytes before its tag and ends 14 behind it.
    EXPECT_EQ(console(),
              lines({"Analysing copied 1.0", "Found matching names 1:0", "1:0 has a verified start",
                     "  editcomponent 0 START=4", "1:0 has a verified end", "  editcomponent 0 END=20",
                     "ROM Offset=-8 (Good)", "ROMBase Offset=fffc0000 (Good)", "Verified RELOC=8",
                     "Matching 16 of 16", "Identifying potential relocs 00000004 to 00000014",
                     "Potential RELOC=8", "Component 0, has 1 potential 32bit relocs (currently 0)"}));
}

TEST_F(AnalyseComponentTest, AddrelocsAddsThem) {
    makepair();
    const std::string told = console();
    EXPECT_EQ(adding(), told.substr(0, told.find("(currently 0)")) + "(currently 1)\n");
    EXPECT_EQ(relocs(), Relocs{8});
    ASSERT_TRUE(componentat(0, 0).pcExtract.has_value());
    EXPECT_EQ(*componentat(0, 0).pcExtract, longs({0x11114AFC, 0x22222222, 12, 0x33333333}));
    EXPECT_EQ(componentat(1, 0).iRelocs(), 0);
}

TEST_F(AnalyseComponentTest, AddrelocsAtLevelZeroAddsInSilence) {
    makepair();
    EXPECT_EQ(adding(0), "");
    EXPECT_EQ(relocs(), Relocs{8});
}

TEST_F(AnalyseComponentTest, OnlyVerifiedBoundsAreProposed) {
    makepair();
    componentat(1, 0).iFixedStart = -1;
    EXPECT_TRUE(has(console(), "1:0\n1:0 has a verified end\n  editcomponent 0 END=20\nROM Offset=-8"));
    componentat(1, 0).iFixedEnd = -1;
    EXPECT_TRUE(has(console(), "Found matching names 1:0\nROM Offset=-8"));
    componentat(1, 0).iFixedStart = 0;
    EXPECT_TRUE(has(console(), "1:0\n1:0 has a verified start\n  editcomponent 0 START=-8\nROM Offset=-8"));
}

// Bounds are as far from the tag as those of the copy, even where that is outside the image.
TEST_F(AnalyseComponentTest, ProposedBoundsMayLieOutsideTheImage) {
    makepair();
    componentat(1, 0).iFixedStart = 3;
    componentat(1, 0).iFixedEnd = 1000;
    const std::string text = console();
    EXPECT_TRUE(has(text, "  editcomponent 0 START=-5\n"));
    EXPECT_TRUE(has(text, "  editcomponent 0 END=992\n"));
}

TEST_F(AnalyseComponentTest, ItsOwnBoundsNeedNotBeVerified) {
    makepair();
    componentat(0, 0).iFixedStart = componentat(0, 0).iFixedEnd = -1;
    EXPECT_TRUE(has(console(), "Verified RELOC=8\nMatching 16 of 16\n"));
}

TEST_F(AnalyseComponentTest, SameOffsetIsBadAndStillCompared) {
    slotof(longs({0x11114AFC, 0x00F80008, 0x33333333}), 0xF80000, {{0, 12, 2, cCopied}});
    slotof(longs({0x11114AFC, 0x00FC0008, 0x33333333}), 0xFC0000, {{0, 12, 2, cCopied}});
    EXPECT_TRUE(has(console(), "ROM Offset=0 (Bad)\nROMBase Offset=fffc0000 (Good)\nVerified RELOC=4\n"
                               "Matching 12 of 12\n"));
}

TEST_F(AnalyseComponentTest, SameBaseIsBadAndStillCompared) {
    slotof(longs({0x11114AFC, 0x00F80008, 0x33333333}), 0xF80000, {{0, 12, 2, cCopied}});
    slotof(longs({0, 0x11114AFC, 0x00F8000C, 0x33333333}), 0xF80000, {{4, 16, 6, cCopied}});
    EXPECT_TRUE(has(console(), "ROM Offset=-4 (Good)\nROMBase Offset=00000000 (Bad)\nVerified RELOC=4\n"
                               "Matching 12 of 12\n"));
}

// At the very same address every long is the same as its counterpart, so that nothing can be told apart.
TEST_F(AnalyseComponentTest, AtTheSameAddressEverythingLooksLikeAReloc) {
    for (int i = 0; i < 2; ++i)
        slotof(longs({0x11114AFC, 0x00F80008, 0x33333333}), 0xF80000, {{0, 11, 2, cCopied}});
    EXPECT_TRUE(has(console(), "ROM Offset=0 (Bad)\nROMBase Offset=00000000 (Bad)\nVerified RELOC=0\n"
                               "Verified RELOC=4\nVerified RELOC=8\nMatching 12 of 11\n"));
}

TEST_F(AnalyseComponentTest, BytesAreComparedOneByOneAtAnyOffset) {
    // The difference of the addresses is 0x00040000: at 5, an odd offset, the two differ by just that.
    slotof({0x4A, 0xFC, 0x12, 0x34, 0x56, 0x00, 0x08, 0x11, 0x11, 0x78, 0x9A, 0xBC}, 0x40000,
           {{0, 12, 0, cCopied}});
    slotof({0x4A, 0xFC, 0x12, 0xFF, 0x56, 0x00, 0x04, 0x11, 0x11, 0x78, 0x9A, 0xBD}, 0,
           {{0, 12, 0, cCopied}});
    // Bytes 3 and 11 differ.
    EXPECT_TRUE(has(console(), "Verified RELOC=5\nMatching 10 of 12\n"));
}

TEST_F(AnalyseComponentTest, BehindAVerifiedLongTheNextBytesAreNotTriedAgain) {
    // 0x00010001 apart, so that each of the first five longs at 0 to 4 alone would do; 0 and 4 are taken.
    const Bytes ones(8, 1);
    slotof(ones, 0x01010101, {{0, 8, 0, cCopied}});
    slotof(Bytes(8, 0), 0, {{0, 8, 0, cCopied}});
    EXPECT_TRUE(has(console(), "Verified RELOC=0\nVerified RELOC=4\nMatching 8 of 8\n"));
}

// The last long begins inside the component and ends behind it.
TEST_F(AnalyseComponentTest, ALongAcrossTheEndIsVerifiedToo) {
    slotof(longs({0x4AFC1111, 0x00F80000}), 0xF80000, {{0, 5, 0, cCopied}});
    slotof(longs({0x4AFC1111, 0x00FC0000}), 0xFC0000, {{0, 5, 0, cCopied}});
    EXPECT_TRUE(has(console(), "Verified RELOC=4\nMatching 8 of 5\n"));
    // It cannot be added, though.
    EXPECT_TRUE(has(adding(), "Verified RELOC=4\nERROR, reloc (4) out of range Size=5\nMatching 8 of 5\n"));
    EXPECT_EQ(relocs(), Relocs{});
}

TEST_F(AnalyseComponentTest, WhatTheOtherImageDoesNotHaveDoesNotMatch) {
    // The copy's tag is at 0, so that its image lacks the component's first 4 bytes and its last 2.
    slotof(longs({0xEEEEEEEE, 0x4AFC1111, 0x00F80004, 0x33333333}), 0xF80000, {{0, 16, 4, cCopied}});
    slotof({0x4A, 0xFC, 0x11, 0x11, 0x00, 0xFC, 0x00, 0x00, 0x33, 0x33}, 0xFC0000, {{0, 10, 0, cCopied}});
    EXPECT_TRUE(has(console(), "Verified RELOC=8\nMatching 10 of 16\n"));
}

TEST_F(AnalyseComponentTest, NamesMatchExactlyInAllOtherSlots) {
    const Bytes image = longs({0x4AFC1111, 0x22222222});
    slotof(image, 0xF80000, {{0, 4, 0, cCopied}, {4, 8, 4, cCopied}});
    slotof(image, 0xFC0000, {{0, 4, 0, "Copied 1.0"}, {0, 4, 0, "copied 1.0 "}, {0, 4, 0, "copied 1."}});
    slotof(image, 0xFC0000, {{0, 4, 0, {}}, {0, 4, 0, cCopied}, {4, 8, 4, cCopied}});
    slotof(image, 0xFC0000, {{0, 4, 0, cCopied}});
    const std::string text = console(1);
    EXPECT_EQ(countof(text, "Found matching names"), 3);
    const size_t first = text.find("Found matching names 2:1\n");
    const size_t second = text.find("Found matching names 2:2\n");
    const size_t third = text.find("Found matching names 3:0\n");
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    ASSERT_NE(third, std::string::npos);
    EXPECT_TRUE(has(text, "  editcomponent 1 START=4\n"));
}

TEST_F(AnalyseComponentTest, WithoutAnIdentityStringNothingMatches) {
    slotof(longs({0x4AFC1111, 0x00F80000}), 0xF80000, {{0, 8, 0, {}}});
    slotof(longs({0x4AFC1111, 0x00FC0000}), 0xFC0000, {{0, 8, 0, {}}});
    EXPECT_EQ(console(),
              lines({"Analysing (null)", "Identifying potential relocs 00000000 to 00000008",
                     "Potential RELOC=4", "Component 0, has 1 potential 32bit relocs (currently 0)"}));
}

TEST_F(AnalyseComponentTest, ACopyWithoutATagIsComparedFromMinusOne) {
    makepair();
    componentat(1, 0).iROMTag = -1;
    // 6 - (-1 - 12), 6 + (28 + 1) and 6 + 1.
    const std::string text = console();
    EXPECT_TRUE(has(text, "  editcomponent 0 START=19\n"));
    EXPECT_TRUE(has(text, "  editcomponent 0 END=35\n"));
    EXPECT_TRUE(has(text, "ROM Offset=7 (Good)\n"));
}

TEST_F(AnalyseComponentTest, PotentialRelocsMayOverlapAndReachTheEnd) {
    // At 0x10001000: the longs at 0, 2, 4 and 6 are 0x10001000, its first byte; that at 8 is the first behind
    // it, that at 12 one more.
    slotof(longs({0x10001000, 0x10001000, 0x10001010, 0x10001011}), 0x10001000, {{0, 16, 0, cCopied}});
    EXPECT_EQ(console(),
              lines({"Analysing copied 1.0", "Identifying potential relocs 00000000 to 00000010",
                     "Potential RELOC=0", "Potential RELOC=2", "Potential RELOC=4", "Potential RELOC=6",
                     "Potential RELOC=8", "Component 0, has 5 potential 32bit relocs (currently 0)"}));
}

TEST_F(AnalyseComponentTest, PotentialRelocsCountFromTheStartWhichMayBeOdd) {
    slotof({0xFF, 0x00, 0xF8, 0x00, 0x01, 0x00, 0xF8, 0x00, 0x00, 0xFF}, 0xF80000, {{1, 9, 1, cCopied}});
    componentat(0, 0).ipRelocs = {0, 4, 6};
    // At 5 stands the image's first byte, which lies before the component.
    EXPECT_EQ(console(),
              lines({"Analysing copied 1.0", "Identifying potential relocs 00000001 to 00000009",
                     "Potential RELOC=0", "Component 0, has 1 potential 32bit relocs (currently 3)"}));
}

TEST_F(AnalyseComponentTest, BcplAddressesAreListedAboveLevelOne) {
    // 0xF80000 / 4 is 0x3E0000. The component lies on 8 to 28, so it runs from 0x3E0002 to 0x3E0007.
    slotof(longs({0x3E0002, 0x3E0002, 0x3E0002, 0x3E0001, 0x3E0007, 0x3E0008, 0x803E0003, 0x3E0004}),
           0xF80000, {{8, 28, 8, cCopied}});
    const std::string listed =
        behindline(at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); }), "Component 0");
    // Four times 0x803E0003 wraps.
    EXPECT_EQ(listed, lines({"Identifying potential BCPL relocs 00000008 to 0000001c", "", "[BCPL]",
                             "RELOC=0 #0", "RELOC=8 #20", "RELOC=16 #4"}));
    EXPECT_FALSE(has(console(), "BCPL"));
}

TEST_F(AnalyseComponentTest, BcplAddressesStandOnWholeLongsOfTheImage) {
    // The component begins at 6; the long at 4 is looked at, and named by its offset.
    slotof(longs({0, 0x3E0002, 0x3E0002, 0}), 0xF80000, {{6, 12, 6, cCopied}});
    const std::string text = at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); });
    EXPECT_TRUE(text.ends_with("\n\n[BCPL]\nRELOC=-2 #2\nRELOC=2 #2\n")) << text;
}

TEST_F(AnalyseComponentTest, TheBcplListingIsASectionOfAHashFile) {
    slotof(longs({0x3E0000, 0x4AFC4AFC, 0x3E0003, 0x3E0001}), 0xF80000, {{0, 16, 4, cCopied}});
    const std::string text = at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); });
    const std::string section = text.substr(text.find("[BCPL]"));
    const std::string file = "[RELOC32]\nRELOC=4\n" + section;
    const IniFile ini = parseini({file.begin(), file.end()});
    const int32_t number = readinisection(ini, "BCPL");
    ASSERT_EQ(number, 1);
    std::vector<std::string> lines;
    for (const char* const line : ini.lines(number))
        lines.emplace_back(line);
    EXPECT_EQ(lines, (std::vector<std::string>{"RELOC=0 #0", "RELOC=8 #12", "RELOC=12 #4"}));
}

TEST_F(AnalyseComponentTest, RelocsThatAreThereStay) {
    makepair();
    relocs() = {0, 8, 12};
    EXPECT_TRUE(has(adding(), "Verified RELOC=8\nMatching 16 of 16\n"));
    EXPECT_EQ(relocs(), (Relocs{0, 8, 12}));
    EXPECT_TRUE(has(adding(2), "WARNING, RELOC 8 already exists, ignoring\n"));
}

TEST_F(AnalyseComponentTest, OfTwoCopiesEachAddsWhatItVerifies) {
    slotof(longs({0x4AFC1111, 0x00F80000, 0x00F80004}), 0xF80000, {{0, 12, 0, cCopied}});
    slotof(longs({0x4AFC1111, 0x99999999, 0x00FC0004}), 0xFC0000, {{0, 12, 0, cCopied}});
    slotof(longs({0x4AFC1111, 0x00200000, 0x00200004}), 0x200000, {{0, 12, 0, cCopied}});
    const std::string text = adding();
    EXPECT_TRUE(has(text, "Verified RELOC=8\nMatching 8 of 12\nFound matching names 2:0\n")) << text;
    EXPECT_TRUE(has(text, "Verified RELOC=4\nVerified RELOC=8\nMatching 12 of 12\n"));
    EXPECT_EQ(relocs(), (Relocs{4, 8}));
}

TEST_F(AnalyseComponentTest, VerifiedValuesOutsideTheComponentAreWarnedAbout) {
    slotof(longs({0x4AFC1111, 0x00F80100}), 0xF80000, {{0, 8, 0, cCopied}});
    slotof(longs({0x4AFC1111, 0x00FC0100}), 0xFC0000, {{0, 8, 0, cCopied}});
    EXPECT_TRUE(has(adding(),
                    "Verified RELOC=4\nWARNING, reloc value (F80100) beyond this module, max=F80008\n"
                    "Matching 8 of 8\n"));
    EXPECT_EQ(relocs(), Relocs{4});
}

class AnalyseRefusalTest : public AnalyseComponentTest {
protected:
    static void expectrefused(int32_t rom, int32_t component, const std::string& error) {
        for (const VerifiedRelocs mode : {VerifiedRelocs::Tell, VerifiedRelocs::Add}) {
            EXPECT_EQ(at(1, [&] { EXPECT_EQ(analysecomponent(rom, component, mode), 0); }), error);
            EXPECT_EQ(at(0, [&] { EXPECT_EQ(analysecomponent(rom, component, mode), 0); }), "");
        }
    }
};

TEST_F(AnalyseRefusalTest, InOrder) {
    for (const int32_t rom : {-1, 0, 20})
        expectrefused(rom, 9, "ERROR, please load or create a rom\n");
    makepair();
    for (const int32_t rom : {-1, 2, 20, INT32_MAX, INT32_MIN})
        expectrefused(rom, 9, "ERROR, rom out of range\n");
    for (const int32_t component : {-1, 1, INT32_MAX, INT32_MIN})
        expectrefused(0, component, "ERROR, component out of range\n");
    componentat(0, 0).iSize = 1000;
    for (const int32_t tag : {-1, -2, INT32_MIN}) {
        componentat(0, 0).iROMTag = tag;
        expectrefused(0, 0, "ERROR, only components with a ROMTAG can be analysed\n");
    }
}

TEST_F(AnalyseRefusalTest, ComponentsOutsideTheirImage) {
    makepair();
    for (const Extent place :
         {Extent{4, 17}, Extent{-4, 8}, Extent{20, 1}, Extent{4, -1}, Extent{INT32_MAX, 4}}) {
        componentat(0, 0).iStart = place.start;
        componentat(0, 0).iSize = place.size;
        for (const VerifiedRelocs mode : {VerifiedRelocs::Tell, VerifiedRelocs::Add})
            EXPECT_TRUE(isoneerror(expectunchanged(0, [&] { analysecomponent(0, 0, mode); })));
    }
}

TEST_F(AnalyseRefusalTest, AnEmptyComponentHasNothing) {
    makepair();
    componentat(0, 0).iSize = 0;
    const std::string text = at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Add); });
    EXPECT_TRUE(
        text.ends_with(lines({"Matching 0 of 0", "Identifying potential relocs 00000004 to 00000004",
                              "Component 0, has 0 potential 32bit relocs (currently 0)",
                              "Identifying potential BCPL relocs 00000004 to 00000004", "", "[BCPL]"})))
        << text;
}

TEST_F(AnalyseRefusalTest, MessagesHaveTheirThresholds) {
    const Action prepare = [] { makepair(); };
    expectthresholds(prepare, [] { analysecomponent(0, 0, VerifiedRelocs::Add); },
                     {{0, "Analysing copied 1.0\n"},
                      {0, "Found matching names 1:0\n"},
                      {0, "1:0 has a verified start\n"},
                      {0, "  editcomponent 0 START=4\n"},
                      {0, "1:0 has a verified end\n"},
                      {0, "  editcomponent 0 END=20\n"},
                      {0, "ROM Offset=-8 (Good)\n"},
                      {0, "ROMBase Offset=fffc0000 (Good)\n"},
                      {0, "Verified RELOC=8\n"},
                      {1, "New RELOC, no RELOCS so far, creating RELOC table\n"},
                      {0, "Matching 16 of 16\n"},
                      {0, "Identifying potential relocs 00000004 to 00000014\n"},
                      {0, "Potential RELOC=8\n"},
                      {0, "Component 0, has 1 potential 32bit relocs (currently 1)\n"},
                      {1, "Identifying potential BCPL relocs 00000004 to 00000014\n\n[BCPL]\n"}});
    expectthresholds(
        [] {
            makepair();
            ASSERT_TRUE(putlong(slotat(0).pcROM, 8, 0x3E0002));
        },
        [] { analysecomponent(0, 0, VerifiedRelocs::Tell); }, {{1, "[BCPL]\nRELOC=4 #4\n"}});
}

} // namespace
} // namespace vantorel::test
