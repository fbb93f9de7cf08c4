// The one-pass listing: its head, instructions and stops in their order, hints of relocs, and the bounds that
// it suggests at the end.

#include "missassembler/missassemblecomponent.h"

#include "missassembler/onepass.h"

namespace vantorel::test {
namespace {

constexpr const char* cOutOfRange = "ERROR, ROM or component out of range\n";
constexpr const char* cMiss = "Missassember miss, reseting position:\n";
constexpr const char* cOddStart =
    "Warning: odd START, this is probably wrong, perhaps there's some bad dissasembly\n";
constexpr const char* cOddEnd =
    "Warning: odd END, this is probably wrong, perhaps there's some bad dissasembly\n";

// The lines of a component of these bytes without a tag.
std::string codelines(const std::string& digits, int32_t level = 1) {
    makeground(hexed(digits));
    return listedlines(level);
}

// The same of one whose RT_ENDSKIP is `endskip` and RT_INIT `init`.
std::string taggedlines(const std::string& digits, uint32_t endskip, uint32_t init = 0) {
    makeground(hexed(digits));
    puttag({.endskip = endskip, .init = init});
    return listedlines();
}

class OnePassHead : public OnePass {};

TEST_F(OnePassHead, TellsComponentBaseAndBounds) {
    makeground(hexed("4E71 ABCD 4E75"));
    componentat(0, 1).pcLibString = "exec 40.10 (15.7.93)";
    EXPECT_EQ(listed(), "MissAssembling exec 40.10 (15.7.93)\n"
                        "ROMBase 00f80000\n"
                        "Current allocation (0xF80100-0xf80106) potential maximum allocation "
                        "(0xF80080-0xf801c0)\n"
                        "F80100 NOP\nF80102 (unknown 0\nF80104 RTS\n");
    EXPECT_EQ(listed(0), "");
}

TEST_F(OnePassHead, AnAbsentIdStringIsNull) {
    makeground(hexed("4E75"));
    componentat(0, 1).pcName = "exec.library";
    EXPECT_TRUE(listed().starts_with("MissAssembling (null)\nROMBase 00f80000\n"));
}

TEST_F(OnePassHead, AddressesHaveAtLeastSixDigits) {
    makeground(hexed("4E71"), 0);
    EXPECT_EQ(listed(), "MissAssembling (null)\nROMBase 00000000\n"
                        "Current allocation (0x000100-0x000102) potential maximum allocation "
                        "(0x000080-0x0001c0)\n000100 NOP\n");
    makeground({});
    slotat(0).iROMBase = 0xABCD0000;
    EXPECT_TRUE(
        has(listed(), "(0xABCD0100-0xabcd0100) potential maximum allocation (0xABCD0080-0xabcd01c0)"));
}

TEST_F(OnePassHead, TheFirstComponentMayGrowToTheBaseAndTheLastToTheEnd) {
    makeground(hexed("4E71"));
    componentat(0, 0).iStart = 0x10;
    componentat(0, 0).iSize = 2;
    EXPECT_TRUE(has(listed(1, 0), "(0xF80010-0xf80012) potential maximum allocation (0xF80000-0xf80100)\n"));
    EXPECT_TRUE(has(listed(1, 2), "(0xF801C0-0xf801e0) potential maximum allocation (0xF80102-0xf80200)\n"));
    slotat(0).psComponents.erase(slotat(0).psComponents.begin(), slotat(0).psComponents.begin() + 2);
    EXPECT_TRUE(has(listed(1, 0), "(0xF801C0-0xf801e0) potential maximum allocation (0xF80000-0xf80200)\n"));
}

TEST_F(OnePassHead, TheBoundsStayUntilTheNextListing) {
    makeground(hexed("4EB9 00F80091 4EB9 00F80143"));
    static_cast<void>(listed());
    EXPECT_EQ(iMissMin, 0xF80091U);
    EXPECT_EQ(iMissMax, 0xF80143U);
    EXPECT_EQ(iMissMinLimit, 0xF80080U);
    EXPECT_EQ(iMissMaxLimit, 0xF801C0U);
    putbytes(iListedAt, hexed("4E71 4E71 4E71 4E71 4E71 4E71"));
    static_cast<void>(listed());
    EXPECT_EQ(iMissMin, 0xF80100U);
    EXPECT_EQ(iMissMax, 0xF8010CU);
}

class OnePassRefusal : public RomTest {};

TEST_F(OnePassRefusal, SlotAndComponentMustExist) {
    makeground(hexed("4E71"));
    for (const int32_t rom : {-1, 1, 19, 20, INT32_MIN, INT32_MAX})
        EXPECT_EQ(at(1, [rom] { missassembleComponent(rom, 0); }), cOutOfRange) << rom;
    for (const int32_t component : {-1, 3, INT32_MIN, INT32_MAX})
        EXPECT_EQ(at(1, [component] { missassembleComponent(0, component); }), cOutOfRange) << component;
    slotat(0).psComponents.clear();
    EXPECT_EQ(at(1, [] { missassembleComponent(0, 0); }), cOutOfRange);
    expectthresholds([] { installtable(cGroundTable); }, [] { missassembleComponent(0, 0); },
                     {{0, cOutOfRange}});
}

TEST_F(OnePassRefusal, WithoutATableNothingIsListed) {
    const auto prepare = [] {
        makeground(hexed("4E71"));
        sMnemonic = {};
    };
    prepare();
    EXPECT_EQ(listed(), "No missassembler file\nERROR, unable to initialise the missassembler\n");
    expectthresholds(prepare, [] { missassembleComponent(0, 1); },
                     {{0, "ERROR, unable to initialise the missassembler\n"}});
}

TEST_F(OnePassRefusal, AFileWithoutMnemonicsIsNoTable) {
    makeground(hexed("4E71"));
    installtable("[others]\n1=X\n");
    EXPECT_EQ(listed(), "ERROR, unable to initialise the missassembler\n");
    installtable("[mnemonics]\n\n0100111001110001=NOP\n");
    EXPECT_EQ(listed(), "ERROR, unable to initialise the missassembler\n") << "the first line ends it";
}

TEST_F(OnePassRefusal, TheTableComesFromTheHashLibrary) {
    makeground(hexed("4E71"));
    sMnemonic = {};
    hashes.write("missassemble.ini", "[mnemonics]\n0100111001110001=HOP\n\n");
    index();
    EXPECT_EQ(listedlines(), "F80100 HOP\n");
}

TEST_F(OnePassRefusal, TheComponentMustLieInItsImage) {
    for (const Extent& place : {Extent{-2, 8}, Extent{0x1FC, 6}, Extent{0x200, 2}, Extent{0x100, -2},
                                Extent{INT32_MAX, INT32_MAX}}) {
        makeground({});
        componentat(0, 1).iStart = place.start;
        componentat(0, 1).iSize = place.size;
        const std::string console = listed();
        EXPECT_TRUE(isoneerror(console)) << console;
        EXPECT_EQ(listed(0), "");
    }
}

class OnePassCode : public OnePass {};

TEST_F(OnePassCode, WithoutATagEverythingIsCode) {
    EXPECT_EQ(codelines("4E71 4EB9 00F80100 6002 4AFC 4E75"),
              "F80100 NOP\nF80102 JSR F80100\nF80108 BRA F8010C\nF8010A (unknown 0\nF8010C RTS\n");
}

TEST_F(OnePassCode, ATagOf0OrBelowIsNone) {
    for (const int32_t tag : {0, -1}) {
        makeground(hexed("4E71 4E75"));
        puttag({.endskip = 0xF80100});
        componentat(0, 1).iROMTag = tag;
        EXPECT_EQ(listedlines(), "F80100 NOP\nF80102 RTS\n");
    }
}

TEST_F(OnePassCode, TheSmallestComponents) {
    EXPECT_EQ(codelines(""), "");
    EXPECT_EQ(codelines("4E"), "");
    EXPECT_EQ(codelines("4E71"), "F80100 NOP\n");
    EXPECT_EQ(codelines("4E71 4E"), "F80100 NOP\n") << "the last byte's turn never comes";
    EXPECT_EQ(codelines("0003 4E 71"), "F80100 BYTE 4E\n");
    EXPECT_EQ(codelines("0003 4E 4E71"), "F80100 BYTE 4E\nF80103 NOP\n") << "odd places are as good";
}

TEST_F(OnePassCode, StopsAreOnlyReachedBeforeTheLastByte) {
    EXPECT_EQ(taggedlines("", 0xF80100), "");
    EXPECT_EQ(taggedlines("4E", 0xF80100), "") << "nor is it said: the end is not below the stop";
    EXPECT_EQ(taggedlines("4E71 4E71", 0xF80103), "F80100 NOP\nF80102 NOP\n");
    EXPECT_EQ(taggedlines("4E71", 0xF80100), "ENDSKIP:\nF80100 NOP\n");
}

TEST_F(OnePassCode, StopsAreTakenWhenTheirAddressIsReached) {
    makeground(hexed("4E71 4E71 4E75"));
    puttag({.endskip = 0xF80102, .init = 0xF80104});
    EXPECT_EQ(listedlines(), "F80100 NOP\nENDSKIP:\nF80102 NOP\nINIT:\nF80104 RTS\n");
}

TEST_F(OnePassCode, StopsOfAnEarlierListingAreGone) {
    EXPECT_EQ(taggedlines("4E71 4E75", 0xF80102, 0xF801FF),
              "F80100 NOP\nENDSKIP:\nF80102 RTS\n"
              "Missassember, premature end (component runs until at least 0xF801FF):\n");
    componentat(0, 1).iROMTag = -1;
    EXPECT_EQ(listedlines(), "F80100 NOP\nF80102 RTS\n");
}

TEST_F(OnePassCode, AnInstructionThatRunsOverAStopIsFollowedByAReset) {
    EXPECT_EQ(taggedlines("4EB9 00F8 4E71 4E75", 0xF80104),
              "F80100 JSR F84E71\n" + std::string(cMiss) + "ENDSKIP:\nF80104 NOP\nF80106 RTS\n");
}

TEST_F(OnePassCode, TheBytesBehindTheStopAreListedTwice) {
    // The long runs over both stops, and the first of them over the second again.
    EXPECT_EQ(taggedlines("4EB9 0001 4E71 4E75 4E71", 0xF80102, 0xF80104),
              "F80100 JSR 14E71\n" + std::string(cMiss) + "ENDSKIP:\nF80102 WORDS 4E714E75\n" + cMiss +
                  "INIT:\nF80104 NOP\nF80106 RTS\nF80108 NOP\n");
}

TEST_F(OnePassCode, AStopMayBeInTheMiddleOfAWord) {
    EXPECT_EQ(taggedlines("4E4E 714E 754E", 0xF80101),
              "F80100 (unknown 0\n" + std::string(cMiss) + "ENDSKIP:\nF80101 NOP\nF80103 RTS\n");
}

TEST_F(OnePassCode, ASecondStopAtAnAddressResetsToo) {
    EXPECT_EQ(taggedlines("4E71 4E75", 0xF80100, 0xF80100),
              "ENDSKIP:\nF80100 NOP\n" + std::string(cMiss) + "INIT:\nF80100 NOP\nF80102 RTS\n");
}

TEST_F(OnePassCode, TheResetTellsBothAddressesAboveLevel5) {
    const auto prepare = [] {
        makeground(hexed("4EB9 00F8 4E71 4E75"));
        puttag({.endskip = 0xF80104});
    };
    expectthresholds(prepare, [] { missassembleComponent(0, 1); },
                     {{0, cMiss},
                      {5, std::string(cMiss) +
                              "Missassember miss, old position [f80106] new position [f80104]\nENDSKIP:\n"},
                      {0, "ENDSKIP:\n"},
                      {0, "F80106 RTS\n"}});
}

TEST_F(OnePassCode, AnInstructionMayRunOverTheImagesEnd) {
    makeground({});
    componentat(0, 1).iStart = 0x1FC;
    componentat(0, 1).iSize = 4;
    putbytes(0x1FC, hexed("4EB9 00F8"));
    slotat(0).psComponents.pop_back();
    EXPECT_EQ(listedlines(), "F801FC JSR F80000\n" + boundary("0xF801FC-0xF80202", 514));
}

class OnePassRelocs : public OnePass {};

TEST_F(OnePassRelocs, AreHintedAtAboveLevel1) {
    EXPECT_EQ(codelines("4E71 4EB9 00F80102"), "F80100 NOP\nF80102 JSR F80102\n");
    EXPECT_EQ(codelines("4E71 4EB9 00F80102", 2), "F80100 NOP\nF80102 JSR F80102 #RELOC=4\n")
        << "an offset in the component";
    EXPECT_EQ(codelines("4E71 4EB9 00F80102", 9),
              "F80100 NOP\nPotential RELOC=4\nF80102 JSR F80102 #RELOC=4\n");
    expectthresholds([] { makeground(hexed("4EB9 00F80102")); }, [] { missassembleComponent(0, 1); },
                     {{1, " #RELOC=2\n"}, {8, "Potential RELOC=2\n"}});
}

TEST_F(OnePassRelocs, AreTheAddressesBetweenTheBounds) {
    // WORDS shows its long to no bounds: the component is 0xF80100 to 0xF80106.
    EXPECT_EQ(codelines("0001 00F80100", 2), "F80100 WORDS F80100 #RELOC=2\n");
    EXPECT_EQ(codelines("0001 00F80106", 2), "F80100 WORDS F80106 #RELOC=2\n") << "the end is one";
    EXPECT_EQ(codelines("0001 00F80103", 2), "F80100 WORDS F80103 #RELOC=2\n");
    EXPECT_EQ(codelines("0001 00F800FF", 9), "F80100 WORDS F800FF\n");
    EXPECT_EQ(codelines("0001 00F80107", 9), "F80100 WORDS F80107\n");
}

TEST_F(OnePassRelocs, TheInstructionItselfMayWidenTheBounds) {
    EXPECT_TRUE(codelines("4EB9 00F80090", 2).starts_with("F80100 JSR F80090 #RELOC=2\n"));
    EXPECT_TRUE(codelines("4EB9 00F80140 0001 00F80130", 2)
                    .starts_with("F80100 JSR F80140 #RELOC=2\nF80106 WORDS F80130 #RELOC=8\n"));
    EXPECT_TRUE(codelines("4EB9 00F8007F", 2).starts_with("F80100 JSR F8007F\n")) << "beyond the limit";
}

TEST_F(OnePassRelocs, MayBeSeveralInAnInstruction) {
    EXPECT_EQ(codelines("23F9 00F80102 00F80104", 9), "Potential RELOC=2\nPotential RELOC=6\n"
                                                      "F80100 MOVE F80102,F80104 #RELOC=2 #RELOC=6\n");
    EXPECT_EQ(codelines("23F9 00F70102 00F80104", 2), "F80100 MOVE F70102,F80104 #RELOC=6\n");
    EXPECT_EQ(codelines("23F9 00F80104 00F80104", 2), "F80100 MOVE F80104,F80104 #RELOC=2 #RELOC=6\n");
    EXPECT_EQ(codelines("0006 0002 00F80104", 2), "F80100 EIGHT 2,F80104 #RELOC=4\n");
}

TEST_F(OnePassRelocs, AnInstructionBelowSixBytesHasNone) {
    // The four bytes behind ONE's opcode word are the address of the component's first byte.
    EXPECT_EQ(codelines("0005 00F8 0100", 9), "F80100 ONE F8\nF80104 (unknown 0\n");
    EXPECT_EQ(codelines("4E71 00F8 0100", 9), "F80100 NOP\nF80102 (unknown 0\nF80104 (unknown 0\n");
}

TEST_F(OnePassRelocs, MustStandInTheTextWithSixPlaces) {
    // Below 0x100000 blanks stand before the digits.
    makeground(hexed("4EB9 00000102 0002 00000102 0001 00000102"), 0);
    EXPECT_EQ(listedlines(9), "Potential RELOC=2\n000100 JSR 102\n"
                              "Potential RELOC=8\n000106 WIDE   102 #RELOC=8\n"
                              "Potential RELOC=14\n00010C WORDS 102\n");
}

TEST_F(OnePassRelocs, MustStandInTheTextWholeAndInUpperCase) {
    makeground(hexed("0007 00F8 0102"));
    sMnemonic = tableof("[mnemonics]\n0000000000000111=PARTS %%1,%%1,%%2 f80102\n\n");
    EXPECT_EQ(listedlines(9), "Potential RELOC=2\nF80100 PARTS 0,F8,102 f80102\n");
    sMnemonic = tableof("[mnemonics]\n0000000000000111=(9%%1%%1%%29)\n\n");
    EXPECT_EQ(listedlines(9), "Potential RELOC=2\nF80100 (900F801029) #RELOC=2\n")
        << "other digits may stand around it";
}

TEST_F(OnePassRelocs, AreNotLookedForBehindTheImage) {
    // Of WIDE's long only the first word, 0, is there: had it a value it would be the base.
    installtable(cGroundTable);
    romof(hexed("0002 0000"), 0);
    slotat(0).psComponents = {componenton({0, 0}), componenton({0, 4})};
    EXPECT_EQ(listedlines(9), "000000 WIDE   0\n" + boundary("0x000000-0x000006", 6));
}

class OnePassEnd : public OnePass {};

TEST_F(OnePassEnd, IsSilentWhereTheBoundsAreRight) {
    EXPECT_EQ(codelines("4EB9 00F80106"), "F80100 JSR F80106\n") << "the end itself";
    EXPECT_EQ(codelines("4EB9 00F80100"), "F80100 JSR F80100\n");
    EXPECT_EQ(codelines("4EB9 00000000"), "F80100 JSR 0\n");
}

TEST_F(OnePassEnd, AnAddressBehindTheComponentSuggestsAnEnd) {
    EXPECT_EQ(codelines("4EB9 00F80140"), "F80100 JSR F80140\n" + boundary("0xF80100-0xF80140", 320));
    EXPECT_EQ(codelines("4EB9 00F801C0"), "F80100 JSR F801C0\n" + boundary("0xF80100-0xF801C0", 448))
        << "the next one's start still counts";
    EXPECT_EQ(codelines("4EB9 00F801C1"), "F80100 JSR F801C1\n") << "beyond it";
    EXPECT_EQ(codelines("607E"), "F80100 BRA F80180\n" + boundary("0xF80100-0xF80180", 384))
        << "a target counts as well";
}

TEST_F(OnePassEnd, AnOddEndIsWarnedAbout) {
    EXPECT_EQ(codelines("4EB9 00F80141"),
              "F80100 JSR F80141\n" + std::string(cOddEnd) + boundary("0xF80100-0xF80141", 321));
}

// An end found beyond the old start goes with the new one: the size from there on is another.
std::string bothbounds(const std::string& bounds, int32_t start, int32_t end) {
    return "Component boundary (at least) " + bounds + "\neditcomponent 1 START=" + std::to_string(start) +
           "\neditcomponent 1 END=" + std::to_string(end) + "\n" + cNote;
}

TEST_F(OnePassEnd, AnAddressBeforeTheComponentSuggestsAStart) {
    EXPECT_EQ(codelines("4EB9 00F80090"), "F80100 JSR F80090\n" + bothbounds("0xF80090-0xF80106", 144, 262));
    EXPECT_EQ(codelines("4EB9 00F80080"), "F80100 JSR F80080\n" + bothbounds("0xF80080-0xF80106", 128, 262))
        << "the end of the one before still counts";
    EXPECT_EQ(codelines("4EB9 00F8007F"), "F80100 JSR F8007F\n") << "what lies in it does not";
}

TEST_F(OnePassEnd, AnOddStartIsWarnedAbout) {
    EXPECT_EQ(codelines("4EB9 00F80091"),
              "F80100 JSR F80091\n" + std::string(cOddStart) + bothbounds("0xF80091-0xF80106", 145, 262));
}

TEST_F(OnePassEnd, BothMayBeOdd) {
    EXPECT_EQ(codelines("4EB9 00F80141 4EB9 00F80091"), "F80100 JSR F80141\nF80106 JSR F80091\n" +
                                                            std::string(cOddStart) + cOddEnd +
                                                            bothbounds("0xF80091-0xF80141", 145, 321));
}

TEST_F(OnePassEnd, OffsetsCountFromTheBase) {
    makeground(hexed("4EB9 00FC0141"), 0xFC0000);
    EXPECT_TRUE(has(listedlines(), "editcomponent 1 END=321\n"));
}

TEST_F(OnePassEnd, OfTheFirstAndTheLastComponentMeetsTheImage) {
    makeground({});
    putbytes(0x1C0, hexed("4EB9 00F80200 4EB9 00F80201"));
    EXPECT_TRUE(has(listedlines(1, 2), "Component boundary (at least) 0xF801C0-0xF80200\n"
                                       "editcomponent 2 END=512\n"));
    putbytes(0x10, hexed("4EB9 00F80000 4EB9 00F7FFFF"));
    componentat(0, 0).iStart = 0x10;
    EXPECT_TRUE(has(listedlines(1, 0), "Component boundary (at least) 0xF80000-0xF80090\n"
                                       "editcomponent 0 START=0\n"
                                       "editcomponent 0 END=144\n"));
}

TEST_F(OnePassEnd, AnInstructionThatRunsOverItRaisesIt) {
    EXPECT_EQ(codelines("4E71 4EB9"), "F80100 NOP\nF80102 JSR 0\n" + boundary("0xF80100-0xF80108", 264));
    EXPECT_EQ(codelines("0003"),
              "F80100 BYTE 0\n" + std::string(cOddEnd) + boundary("0xF80100-0xF80103", 259));
}

TEST_F(OnePassEnd, ABoundBeyondTheNextComponentIsSuggestedWhenTheListingGotThere) {
    // Component 2 begins with the long of the last instruction.
    makeground(hexed("4EB9"));
    componentat(0, 2).iStart = 0x102;
    EXPECT_EQ(listedlines(), "F80100 JSR 0\n" + boundary("0xF80100-0xF80106", 262));
}

TEST_F(OnePassEnd, StopsThatAreLeftMakeItPremature) {
    EXPECT_EQ(taggedlines("4E71", 0xF80110),
              "F80100 NOP\nMissassember, premature end (component runs until at least 0xF80110):\n" +
                  boundary("0xF80100-0xF80110", 272));
    EXPECT_EQ(taggedlines("4E71", 0xF801D0),
              "F80100 NOP\nMissassember, premature end (component runs until at least 0xF801D0):\n")
        << "the bounds end at the next component";
    EXPECT_EQ(taggedlines("4E71", 0xF801D0, 0xF801C1),
              "F80100 NOP\nMissassember, premature end (component runs until at least 0xF801D0):\n")
        << "the highest of them";
    EXPECT_EQ(taggedlines("4E71 4E71", 0xF801D0, 0xF80103),
              "F80100 NOP\nF80102 NOP\n"
              "Missassember, premature end (component runs until at least 0xF801D0):\n")
        << "the lowest was never reached, but is not beyond the end";
    EXPECT_EQ(taggedlines("4E71", 0xF80102), "F80100 NOP\n") << "its end is not beyond it";
}

TEST_F(OnePassEnd, LinesAndTheirThresholds) {
    expectthresholds(
        [] {
            makeground(hexed("4EB9 00F80141 4EB9 00F80091"));
            puttag({.endskip = 0xF80110});
        },
        [] { missassembleComponent(0, 1); },
        {{0, "MissAssembling (null)\n"},
         {0, "ROMBase 00f80000\n"},
         {0, "Current allocation (0xF80100-0xf8010c)"},
         {0, "F80100 "},
         {0, "JSR F80141"},
         {0, "Missassember, premature end (component runs until at least 0xF80110):\n"},
         {0, cOddStart},
         {0, cOddEnd},
         {0, "Component boundary (at least) 0xF80091-0xF80141\n"},
         {0, "editcomponent 1 START=145\n"},
         {0, "editcomponent 1 END=321\n"},
         {0, cNote},
         {5, "ADDLABEL @00f80110:lENDSKIP:\n"}});
}

} // namespace
} // namespace vantorel::test
