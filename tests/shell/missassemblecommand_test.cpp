// The command that lists a component's code: which listing it runs, and on what.

#include "component/slotstate.h"
#include "missassembler/misstest.h"

namespace vantorel::test {
namespace {

constexpr const char* cOutOfRange = "ERROR, ROM or component out of range\n";

class MissassembleCommand : public ShellTest {
protected:
    // Slot 1 is current; its component 1 is one instruction.
    void SetUp() override {
        ShellTest::SetUp();
        installtable("[mnemonics]\n1110111011101110=HOP\n\n");
        slotwith(16, {}, 0xE00000);
        slotwith(16, {{0, 4}, {4, 2}, {6, 2}}, 0xF80000);
        iCurrentROM = 1;
    }

    static bool isonepass(const std::string& words) {
        return printed(words) == "MissAssembling (null)\n"
                                 "ROMBase 00f80000\n"
                                 "Current allocation (0xF80004-0xf80006) potential maximum allocation "
                                 "(0xF80004-0xf80006)\n"
                                 "F80004 HOP\n";
    }

    static bool iswalk(const std::string& words) {
        const std::string console = printed(words);
        return console.starts_with("ROM 1 ROMBase F80000\nMissassembling (null)\n") &&
               console.ends_with("Scanned 2 bytes, 0 code 2 data\n");
    }
};

TEST_F(MissassembleCommand, TheComponentIsAskedFor) {
    for (const char* line : {"missassemble", "missassemble \"\"", "missassemble \"\" onepass"}) {
        EXPECT_EQ(printed(line), "MissAssemble which component?\n") << line;
        EXPECT_EQ(printedat(0, line), "") << line;
    }
}

TEST_F(MissassembleCommand, WhatIsNoNumberIsIgnoredInSilence) {
    for (const char* word : {"exec", "onepass", "-1", "+1", "0x1", "1x", "1.0"}) {
        EXPECT_EQ(printed("missassemble " + std::string(word)), "") << word;
        EXPECT_EQ(printed("missassemble " + std::string(word) + " onepass"), "") << word;
    }
    EXPECT_FALSE(directory.exists("missassembler.tmp"));
}

TEST_F(MissassembleCommand, ANumberThatDoesNotFitIsRefused) {
    for (const char* words : {"99999999999", "99999999999 onepass", "2147483648 onepass"}) {
        EXPECT_TRUE(isoneerror(printed("missassemble " + std::string(words)))) << words;
        EXPECT_EQ(printedat(0, "missassemble " + std::string(words)), "") << words;
    }
    EXPECT_EQ(printed("missassemble 2147483647 onepass"), cOutOfRange);
}

TEST_F(MissassembleCommand, OnepassListsInOnePass) {
    EXPECT_TRUE(isonepass("missassemble 1 onepass"));
    EXPECT_TRUE(isonepass("MissAssemble 001 OnePass"));
    EXPECT_TRUE(isonepass("missassemble 1 \"onepass\" and more"));
    EXPECT_FALSE(directory.exists("missassembler.tmp")) << "the console is all";
}

TEST_F(MissassembleCommand, AnythingElseWalks) {
    for (const char* word : {"", " one", " onepas", " onepasses", " 2", " x onepass", " \"\" onepass"})
        EXPECT_TRUE(iswalk("missassemble 1" + std::string(word))) << word;
    EXPECT_TRUE(directory.exists("missassembler.tmp"));
}

TEST_F(MissassembleCommand, TheCurrentRomIsMeant) {
    iCurrentROM = 0;
    EXPECT_EQ(printed("missassemble 0 onepass"), cOutOfRange) << "it has no components";
    for (const int32_t rom : {-1, 2, 20}) {
        iCurrentROM = rom;
        EXPECT_EQ(printed("missassemble 0 onepass"), cOutOfRange) << rom;
    }
    EXPECT_EQ(printedat(0, "missassemble 0 onepass"), "");
}

TEST_F(MissassembleCommand, TheComponentMustExistAndLieInTheImage) {
    EXPECT_EQ(printed("missassemble 3 onepass"), cOutOfRange);
    type("editcomponent 2 end=17");
    EXPECT_TRUE(isoneerror(printed("missassemble 2 onepass")));
    type("editcomponent 2 end=16");
    EXPECT_TRUE(printed("missassemble 2 onepass").ends_with("F8000E HOP\n"));
}

TEST_F(MissassembleCommand, WithoutATableNothingIsListed) {
    sMnemonic = {};
    EXPECT_EQ(printed("missassemble 1 onepass"),
              "No missassembler file\nERROR, unable to initialise the missassembler\n");
}

} // namespace
} // namespace vantorel::test
