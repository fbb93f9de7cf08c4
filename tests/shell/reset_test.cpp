#include "shell/reset.h"

#include "audit/audit.h"
#include "base/message.h"
#include "hash/library.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/session.h"
#include "support/capture.h"

namespace vantorel::test {

namespace {

// What freeing a new ROM of some bytes in slot `rom` tells at every level.
std::string freedrom(int rom) {
    const std::string number = std::to_string(rom);
    return "ROM " + number +
           " has 0 Components\n"
           "Freeing psComponents [<ptr>]\n"
           "Freeing ROM " +
           number +
           "\n"
           "Freeing pcROM [<ptr>]\n"
           "Freeing pcTitle [<ptr>]\n"
           "Freeing pcText [<ptr>]\n";
}

class ResetCommand : public ShellTest {
protected:
    // Something in every group.
    void fill() {
        directory.file("tree/file", "text");
        directory.file("hashes/0x12345678", "[Description]\n");
        for (const char* line :
             {"newrom 16", "alias x 1", "alias y 2", "auditfiles tree", "loadhashes hashes"})
            type(line);
    }

    // Which groups hold anything, as the bits of a mask.
    static int32_t filled() {
        return (iMaxRom > 0 ? iResetRoms : 0) | (iAliasCnt() > 0 ? iResetAliases : 0) |
               (!psAuditFilesDir.empty() || !psAuditFilesFile.empty() ? iResetAuditFiles : 0) |
               (!psVanHashFile.empty() ? iResetHashes : 0);
    }

    static std::string said(const std::string& line) { return withoutpointers(printed(line)); }
};

} // namespace

TEST_F(ResetCommand, WithoutAWordEverythingGoes) {
    fill();
    ASSERT_EQ(filled(), iResetAll);
    EXPECT_EQ(said("reset"),
              "Resetting all memory allocation\nDLL Call... reset(15)\nThere are 1 ROMs\n" + freedrom(0));
    EXPECT_EQ(filled(), 0);
    EXPECT_EQ(iCurrentROM, -1);
}

TEST_F(ResetCommand, OfNothingTellsOnlyThat) {
    EXPECT_EQ(said("reset"), "Resetting all memory allocation\nDLL Call... reset(15)\nThere are 0 ROMs\n");
}

TEST_F(ResetCommand, TheHashLibraryIsGoneUntilItIsLoadedAgain) {
    fill();
    ASSERT_EQ(findhashfile("0x12345678"), "hashes/0x12345678");
    type("reset");
    EXPECT_EQ(findhashfile("0x12345678"), "");
    type("loadhashes hashes");
    EXPECT_EQ(findhashfile("0x12345678"), "hashes/0x12345678");
}

TEST_F(ResetCommand, RomsAndAliasesGoWithALineForEachWord) {
    fill();
    type("newrom 16");
    EXPECT_EQ(said("reset roms aliases"),
              "RESET [roms]\nRESET ROMs\nDLL Call... reset(1)\nThere are 2 ROMs\n" + freedrom(0) +
                  freedrom(1) + "RESET [aliases]\nRESET Aliases\nDLL Call... reset(2)\n");
    EXPECT_EQ(filled(), iResetAuditFiles | iResetHashes);
}

TEST_F(ResetCommand, AuditFilesAloneGo) {
    fill();
    EXPECT_EQ(said("reset auditfiles"), "RESET [auditfiles]\nRESET Auditfiles\nDLL Call... reset(4)\n");
    EXPECT_EQ(filled(), iResetAll & ~iResetAuditFiles);
}

TEST_F(ResetCommand, HashesAloneGo) {
    fill();
    EXPECT_EQ(said("reset hashes"), "RESET [hashes]\nRESET Hashes\nDLL Call... reset(8)\n");
    EXPECT_EQ(filled(), iResetAll & ~iResetHashes);
}

TEST_F(ResetCommand, AnyWordThatBeginsWithRomsMeansThem) {
    fill();
    EXPECT_EQ(said("reset ROMSandmore"),
              "RESET [ROMSandmore]\nRESET ROMs\nDLL Call... reset(1)\nThere are 1 ROMs\n" + freedrom(0));
    EXPECT_EQ(filled(), iResetAll & ~iResetRoms);
}

TEST_F(ResetCommand, TheOtherWordsAreWholeAndInAnyCase) {
    fill();
    EXPECT_EQ(said("reset aliasesandmore hash rom"), "RESET [aliasesandmore]\nRESET [hash]\nRESET [rom]\n");
    EXPECT_EQ(filled(), iResetAll);
    EXPECT_EQ(said("reset Aliases"), "RESET [Aliases]\nRESET Aliases\nDLL Call... reset(2)\n");
}

TEST_F(ResetCommand, WordsBehindAnEmptyOneAreNotLookedAt) {
    fill();
    EXPECT_EQ(said("reset aliases \"\" hashes"), "RESET [aliases]\nRESET Aliases\nDLL Call... reset(2)\n");
    EXPECT_EQ(filled(), iResetAll & ~iResetAliases);
}

TEST_F(ResetCommand, TakesFifteenWords) {
    fill();
    std::string line = "reset";
    std::string wanted;
    for (int n = 1; n < 15; ++n) {
        line += " w";
        wanted += "RESET [w]\n";
    }
    EXPECT_EQ(said(line + " aliases hashes"),
              wanted + "RESET [aliases]\nRESET Aliases\nDLL Call... reset(2)\n");
    EXPECT_EQ(filled(), iResetAll & ~iResetAliases);
}

TEST_F(ResetCommand, OnlyTheRomsAndTheCallsAreToldAtLevelZero) {
    fill();
    EXPECT_EQ(withoutpointers(printedat(0, "reset roms aliases auditfiles hashes other")),
              "RESET ROMs\nDLL Call... reset(1)\nThere are 1 ROMs\n" + freedrom(0) +
                  "DLL Call... reset(2)\nDLL Call... reset(4)\nDLL Call... reset(8)\n");
    EXPECT_EQ(filled(), 0);
    EXPECT_EQ(printedat(0, "reset"), "DLL Call... reset(15)\nThere are 0 ROMs\n");
}

TEST_F(ResetCommand, TheGroupsGoInTheirOrder) {
    alias("x", "1");
    iLogLevel = 6;
    EXPECT_EQ(captured([] { reset(iResetAll); }),
              "DLL Call... reset(15)\nThere are 0 ROMs\nFreeing 1 aliases\n"
              "Freeing all audit memory\nFreeing all hash file memory\n");
}

TEST_F(ResetCommand, AComponentIsToldPieceByPiece) {
    type("newrom 16");
    Component component;
    component.pcName = "exec.library";
    component.ipRelocs = {4};
    findslot(0)->psComponents = {component};
    EXPECT_EQ(said("reset roms"), "RESET [roms]\nRESET ROMs\nDLL Call... reset(1)\nThere are 1 ROMs\n"
                                  "ROM 0 has 1 Components\n"
                                  "Freeing psComponents [<ptr>]\n"
                                  "Freeing component 0\n"
                                  "Freeing name 0 [<ptr>]\n"
                                  "Freeing hash 0 [<ptr>]\n"
                                  "Freeing relocs 0 [<ptr>]\n"
                                  "Freeing extract 0 [<ptr>]\n"
                                  "Freeing libname 0 [<ptr>]\n"
                                  "Freeing libstring 0 [<ptr>]\n"
                                  "Freeing ROM 0\n"
                                  "Freeing pcROM [<ptr>]\n"
                                  "Freeing pcTitle [<ptr>]\n"
                                  "Freeing pcText [<ptr>]\n");
}

TEST_F(ResetCommand, WhatIsAbsentIsToldAsNull) {
    type("newrom 16");
    const std::string text = printed("reset roms");
    EXPECT_NE(text.find("Freeing pcText [(nil)]\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("Freeing pcTitle [(nil)]\n"), std::string::npos) << text;
}

TEST_F(ResetCommand, ASlotHandedOutAgainIsLikeANewOne) {
    type("newrom 16 255");
    KickstartRom& slot = *findslot(0);
    slot.iCRC32 = 0x12345678;
    slot.iROMBase = 0xF80000;
    slot.iUsed = 16;
    slot.psComponents.resize(3);
    type("reset roms");
    type("newrom 8");
    EXPECT_EQ(printed("roms"), "ROMS:\nROM 0*ROMBase:00000000 CRC32:0x00000000 (0 of 8/0k)\n");
    EXPECT_EQ(findslot(0)->iComponents(), 0);
}

} // namespace vantorel::test
