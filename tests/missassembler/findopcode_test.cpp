// Instructions searched for by their text.

#include "missassembler/findopcode.h"

#include "missassembler/labels.h"
#include "missassembler/misstest.h"
#include "shell/alias.h"
#include "shell/session.h"

namespace vantorel::test {
namespace {

constexpr const char* cTable = "[mnemonics]\n"
                               "0100111001110001=NOP\n"
                               "0100111001110101=RTS\n"
                               "0100000111111010=LEA %%2(PC),A0\n"
                               "0110000011111010=same\n"
                               "0110000011111011=Same\n";

// At offset 10 LEA, at 14 and 22 RTS, at 17, which is odd, NOP, at 18 a word that is unknown.
const Bytes sImage = {0x4E, 0x71, 0x4E, 0x71, 0x60, 0xFB, 0x60, 0xFA, 0x4E, 0x71, 0x41, 0xFA,
                      0x03, 0x62, 0x4E, 0x75, 0x00, 0x4E, 0x71, 0x00, 0x4E, 0x71, 0x4E, 0x75};

class FindOpcodeTest : public FreshTest {
protected:
    void SetUp() override {
        FreshTest::SetUp();
        prepare();
    }

    static void prepare() {
        installtable(cTable);
        romof(sImage, 0xF80000);
    }

    // What the alias FIND is after a search; "-" when nothing was found.
    static std::string found(uint32_t start, uint32_t end, const std::string& text) {
        freealiases();
        int result = -1;
        silently([&] { result = findopcode(0, start, end, text); });
        EXPECT_EQ(result, iAliasCnt() == 1 ? 0 : 1);
        if (iAliasCnt() == 0) return "-";
        EXPECT_EQ(pcAliasname[0], "FIND");
        return pcAliasvalue[0];
    }
};

TEST_F(FindOpcodeTest, TheFirstPlaceBecomesTheAlias) {
    EXPECT_EQ(found(0, 24, "RTS"), "0x0000000e");
    EXPECT_EQ(found(16, 24, "RTS"), "0x00000016");
    EXPECT_EQ(found(0, 24, "LEA F8036E(PC),A0"), "0x0000000a");
    EXPECT_EQ(found(0, 24, "NOP"), "0x00000000");
    EXPECT_EQ(found(2, 24, "NOP"), "0x00000002");
    EXPECT_EQ(found(0, 24, "(unknown 0"), "0x0000000c") << "the word inside LEA is tried as well";
}

TEST_F(FindOpcodeTest, CaseIsIgnored) {
    EXPECT_EQ(found(0, 24, "rts"), "0x0000000e");
    EXPECT_EQ(found(0, 24, "lea f8036e(pc),a0"), "0x0000000a");
    EXPECT_EQ(found(0, 24, "SAME"), "0x00000004");
    EXPECT_EQ(found(0, 24, "same"), "0x00000004") << "Same comes first";
}

TEST_F(FindOpcodeTest, TheWholeTextMustAgree) {
    for (const std::string text :
         {"RT", "RTSX", " RTS", "RTS ", "", "LEA", "LEA F8036E(PC),A", "LEA 0362(PC),A0",
          "LEA $F8036E(PC),A0", "LEA F8036E(PC), A0", "(unknown 0)"})
        EXPECT_EQ(found(0, 24, text), "-") << text;
}

TEST_F(FindOpcodeTest, TheEndIsNotTried) {
    EXPECT_EQ(found(0, 15, "RTS"), "0x0000000e");
    EXPECT_EQ(found(0, 14, "RTS"), "-");
    EXPECT_EQ(found(14, 14, "RTS"), "-");
    EXPECT_EQ(found(14, 15, "RTS"), "0x0000000e");
    EXPECT_EQ(found(15, 14, "RTS"), "-") << "a start behind the end";
    EXPECT_EQ(found(24, 0, "RTS"), "-");
    EXPECT_EQ(found(0, 0, "NOP"), "-");
}

TEST_F(FindOpcodeTest, EverySecondOffsetFromTheStartIsTried) {
    EXPECT_EQ(found(1, 24, "NOP"), "0x00000011");
    EXPECT_EQ(found(17, 24, "NOP"), "0x00000011");
    EXPECT_EQ(found(1, 24, "RTS"), "-");
    EXPECT_EQ(found(1, 17, "NOP"), "-");
    EXPECT_EQ(found(1, 18, "NOP"), "0x00000011");
}

TEST_F(FindOpcodeTest, NothingIsTriedOutsideTheImage) {
    EXPECT_EQ(found(0, 0xFFFFFFFF, "RTS"), "0x0000000e");
    EXPECT_EQ(found(24, 0xFFFFFFFF, "(unknown 0"), "-");
    EXPECT_EQ(found(0x80000000, 0xFFFFFFFF, "(unknown 0"), "-");
    EXPECT_EQ(found(0xFFFFFFFE, 0xFFFFFFFF, "(unknown 0"), "-");
    EXPECT_EQ(found(23, 1000, "(unknown 0"), "0x00000017") << "the last byte: 0x7500";
}

TEST_F(FindOpcodeTest, AnEmptyImageHoldsNothing) {
    const int32_t empty = romof({}, 0);
    int result = -1;
    EXPECT_EQ(at(1, [&] { result = findopcode(empty, 0, 100, "(unknown 0"); }), "findopcode, not found\n");
    EXPECT_EQ(result, 1);
}

TEST_F(FindOpcodeTest, AnAliasThatIsThereIsReplacedOrLeftAsItWas) {
    silently([] { alias("FIND", "old"); });
    silently([] { static_cast<void>(findopcode(0, 0, 24, "STOP")); });
    EXPECT_EQ(pcAliasvalue, std::vector<std::string>{"old"});
    silently([] { static_cast<void>(findopcode(0, 0, 24, "RTS")); });
    EXPECT_EQ(pcAliasvalue, std::vector<std::string>{"0x0000000e"});
}

TEST_F(FindOpcodeTest, TheRomItselfIsLeftAlone) {
    EXPECT_EQ(found(0, 24, "STOP"), "-");
    EXPECT_EQ(slotat(0).pcROM, sImage);
    EXPECT_EQ(slotat(0).iROMBase, 0xF80000U);
}

TEST_F(FindOpcodeTest, LabelsOfAnEarlierListingGo) {
    silently([] {
        addmisslabel("walk", 4, MissType::cNone, 1);
        addlabel(0, 0xF80000, "Sstop");
        static_cast<void>(findopcode(0, 0, 24, "RTS"));
    });
    EXPECT_TRUE(psLabels.empty());
    EXPECT_TRUE(sLabels.empty());
}

TEST_F(FindOpcodeTest, MessagesHaveTheirThresholds) {
    const Action search = [] { static_cast<void>(findopcode(0, 0, 24, "RTS")); };
    expectthresholds(prepare, search,
                     {{1, "findopcode, found at 0x0000000e\n"},
                      {1, "5 mnemonics already loaded\n"},
                      {8, "ROMBase 00f80000\n"},
                      {8, "F8000E:\n"},
                      {8, "[2:RTS]\n"},
                      {9, "getting first two bytes\n"}});
    expectthresholds(prepare, [] { static_cast<void>(findopcode(0, 0, 24, "STOP")); },
                     {{0, "findopcode, not found\n"}});
    expectthresholds(prepare, [] { static_cast<void>(findopcode(1, 0, 24, "RTS")); },
                     {{0, "ERROR, No current ROM\n"}});
    expectthresholds([] { romof(sImage, 0); }, search,
                     {{0, "ERROR, Unable to initialse the misaassembler\n"}});
}

TEST_F(FindOpcodeTest, TracesShowEveryPlace) {
    EXPECT_EQ(at(9, [] { static_cast<void>(findopcode(0, 8, 12, "STOP")); }), "5 mnemonics already loaded\n"
                                                                              "ROMBase 00f80000\n"
                                                                              "F80008:\n"
                                                                              "[2:NOP]\n"
                                                                              "F8000A:\n"
                                                                              "[4:LEA F8036E(PC),A0]\n"
                                                                              "findopcode, not found\n");
    EXPECT_EQ(at(9, [] { static_cast<void>(findopcode(0, 8, 8, "STOP")); }), "5 mnemonics already loaded\n"
                                                                             "ROMBase 00f80000\n"
                                                                             "findopcode, not found\n");
    slotat(0).iROMBase = 0x20;
    EXPECT_TRUE(has(at(9, [] { static_cast<void>(findopcode(0, 8, 9, "STOP")); }),
                    "ROMBase 00000020\n000028:\n[2:NOP]\n"));
}

TEST_F(FindOpcodeTest, WithoutARomTheTableIsNotLookedAt) {
    for (const int32_t rom : {-1, 1, 20}) {
        int result = -1;
        EXPECT_EQ(at(9, [&] { result = findopcode(rom, 0, 24, "RTS"); }), "ERROR, No current ROM\n") << rom;
        EXPECT_EQ(result, 1);
    }
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(FindOpcodeTest, WithoutATableNothingIsSearched) {
    for (const auto& [text, said] : {std::pair<std::string, std::string>{"", "No mnemonics\n"},
                                     {"[s22]\n1=B\n", "No mnemonics\n"},
                                     {"[mnemonics]\n\n0100111001110001=NOP\n", "0 mnemonics loaded\n"}}) {
        installtable(text);
        int result = -1;
        EXPECT_EQ(at(2, [&] { result = findopcode(0, 0, 24, "(unknown 0"); }),
                  said + "ERROR, Unable to initialse the misaassembler\n");
        EXPECT_EQ(result, 1);
    }
    sMnemonic = {};
    EXPECT_EQ(at(1, [] { EXPECT_EQ(findopcode(0, 0, 24, "RTS"), 1); }),
              "No missassembler file\nERROR, Unable to initialse the misaassembler\n");
    EXPECT_EQ(iAliasCnt(), 0);
}

class FindOpcodeCommand : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        installtable(cTable);
        romof(sImage, 0xF80000);
        iCurrentROM = 0;
    }
};

TEST_F(FindOpcodeCommand, MissingArgumentsAreAskedFor) {
    EXPECT_EQ(printed("findopcode"), "ERROR, please specify where you want to start searching\n");
    EXPECT_EQ(printed("findopcode \"\" 24 RTS"), "ERROR, please specify where you want to start searching\n");
    EXPECT_EQ(printed("findopcode 0"), "ERROR, please specify what you want to end searching\n");
    EXPECT_EQ(printed("findopcode 0 24"), "ERROR, please specify (the mask) of the opcode you want to find "
                                          "e.g. \"LEA F8036E(PC),A0\"\n");
    EXPECT_EQ(printedat(0, "findopcode") + printedat(0, "findopcode 0") + printedat(0, "findopcode 0 24"),
              "");
}

TEST_F(FindOpcodeCommand, TheTextIsOneToken) {
    EXPECT_EQ(printedat(2, "FINDOPCODE 0 24 \"LEA F8036E(PC),A0\""),
              "Parsed [FINDOPCODE 0 24 \"LEA F8036E(PC),A0\"]\n"
              "5 mnemonics already loaded\n"
              "findopcode, found at 0x0000000a\n");
    EXPECT_EQ(printed("findopcode 0 24 LEA F8036E(PC),A0"), "findopcode, not found\n");
    EXPECT_EQ(printed("findopcode 0 24 rts more"), "");
    EXPECT_EQ(printed("alias FIND"), "Value:0x0000000e\n");
}

TEST_F(FindOpcodeCommand, BoundsAreDecimalOrHexadecimal) {
    type("findopcode 0x10 0x18 RTS");
    EXPECT_EQ(printed("alias FIND"), "Value:0x00000016\n");
    EXPECT_EQ(printed("findopcode 0x10 0x16 RTS"), "findopcode, not found\n");
    type("findopcode abc 24x RTS");
    EXPECT_EQ(printed("alias FIND"), "Value:0x0000000e\n") << "from 0 to 24";
    type("findopcode 16 0xFFFFFFFF RTS");
    EXPECT_EQ(printed("alias FIND"), "Value:0x00000016\n");
    EXPECT_EQ(printed("findopcode $FIND 24 NOP"), "findopcode, not found\n");
}

TEST_F(FindOpcodeCommand, BoundsThatAreNegativeOrDoNotFitAreRefused) {
    for (const std::string line :
         {"findopcode -1 24 RTS", "findopcode 0 -1 RTS", "findopcode 99999999999 24 RTS",
          "findopcode 0 99999999999 RTS", "findopcode 0 2147483648 RTS"})
        EXPECT_TRUE(isoneerror(printed(line))) << line;
    EXPECT_EQ(printedat(0, "findopcode -1 24 RTS"), "");
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(FindOpcodeCommand, WithoutACurrentRomNothingIsSearched) {
    type("rom 7");
    EXPECT_EQ(printed("findopcode 0 24 RTS"), "ERROR, No current ROM\n");
    type("reset roms");
    EXPECT_EQ(printed("findopcode 0 24 RTS"), "ERROR, No current ROM\n");
}

} // namespace
} // namespace vantorel::test
