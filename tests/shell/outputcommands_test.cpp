// The commands that build, save and burn ROMs: their words, numbers and messages.

#include "base/message.h"
#include "base/settings.h"
#include "output/profile.h"
#include "rom/store.h"
#include "shell/session.h"

#include <filesystem>

namespace vantorel::test {

namespace {

using Slots = std::array<int32_t, 4>;

class OutputCommands : public ShellTest {
protected:
    static void expectprofile(int32_t type, const Slots& slots) {
        EXPECT_EQ(isROMType, type);
        EXPECT_EQ(isProfileROM, slots);
    }

    [[nodiscard]] bool isthere(const std::string& name) const { return directory.exists(name); }
};

/// What a line prints at verbosity 2, without the line that shows the line itself.
std::string said(const std::string& line) {
    return printedat(2, line).substr(("Parsed [" + line + "]\n").size());
}

constexpr Slots cUnset = {-1, -1, -1, -1};

} // namespace

TEST_F(OutputCommands, RomprofileKnowsSixTypesInAnyCase) {
    struct Word {
        const char* word;
        int32_t type;
    };
    for (const Word& row : {Word{"single", 1}, Word{"SINGLE", 1}, Word{"dual", 2}, Word{"CD32", 3},
                            Word{"cd32", 3}, Word{"Superkick.File", 4}, Word{"superkick.file", 4},
                            Word{"SUPERKICK.ADF", 5}, Word{"a1000", 6}, Word{"A1000", 6}}) {
        type(std::string("romprofile ") + row.word + " 3 -1 5");
        expectprofile(row.type, {3, -1, 5, -1});
    }
}

TEST_F(OutputCommands, RomprofileWithoutATypeIsSingle) {
    type("romprofile dual 0 1");
    expectprofile(2, {0, 1, -1, -1});
    type("romprofile 3");
    expectprofile(1, {3, -1, -1, -1});
    type("romprofile -1 2");
    expectprofile(1, {-1, 2, -1, -1});
}

TEST_F(OutputCommands, RomprofileWithATypeAloneHasNoSlots) {
    type("romprofile dual 0 1 2 3");
    type("romprofile cd32");
    expectprofile(3, cUnset);
}

TEST_F(OutputCommands, RomprofileTakesFourSlotsAndPassesOverTheRest) {
    EXPECT_EQ(printed("romprofile dual 4 3 2 1 x"), "");
    expectprofile(2, {4, 3, 2, 1});
    EXPECT_EQ(printed("romprofile 9 8 7 6 5"), "");
    expectprofile(1, {9, 8, 7, 6});
}

TEST_F(OutputCommands, RomprofileEndsAtAnEmptyWord) {
    EXPECT_EQ(printed("romprofile dual 4 \"\" 2 x"), "");
    expectprofile(2, {4, -1, -1, -1});
}

TEST_F(OutputCommands, RomprofileRefusesOtherWordsAndStoresNothing) {
    type("romprofile dual 4 3");
    for (const char* word : {"x", "singles", "-2", "+1", "1x", "-1 ", "0x1", "1.5"}) {
        const std::string refusal = std::string("Invalid profile type or ROM number ") + word + "\n";
        EXPECT_EQ(printed(std::string("romprofile cd32 0 '") + word + "'"), refusal);
        EXPECT_EQ(printed(std::string("romprofile '") + word + "'"), refusal);
    }
    expectprofile(2, {4, 3, -1, -1});
}

TEST_F(OutputCommands, RomprofileRefusesNumbersThatFitNoType) {
    type("romprofile dual 4 3");
    EXPECT_TRUE(isoneerror(printed(std::string("romprofile single 1 ") + cTooLarge)));
    EXPECT_TRUE(isoneerror(printed(std::string("romprofile ") + cTooLarge)));
    expectprofile(2, {4, 3, -1, -1});
}

TEST_F(OutputCommands, RomprofileTellsEachStep) {
    EXPECT_EQ(printed("romprofile dual 0 1"), "");
    const std::string results = "Profile type 2\nROM Profile = 2\nROM 0xF8 = 0\nROM 0xE0 = 1\nROM 0xB0 = -1\n"
                                "ROM 0xA0 = -1\n";
    const std::string line = "romprofile dual 0 1";
    EXPECT_EQ(printedat(2, line), "Parsed [" + line + "]\n" + results);
    EXPECT_NE(printedat(6, line).find("Add ROM number 0\nAdd ROM number 1\n" + results), std::string::npos);
    EXPECT_EQ(printedat(5, line).find("Add ROM number"), std::string::npos);
    EXPECT_EQ(printedat(0, "romprofile x"), "");
    EXPECT_EQ(printed("romprofile"), "ERROR, please specify the profile type [single|dual|CD32]\n");
    EXPECT_EQ(printedat(0, "romprofile"), "");
}

TEST_F(OutputCommands, SaveprofileTakesItsWordsInAnyOrder) {
    type("newrom 256k 3");
    type("romprofile dual 0");
    for (const char* line : {"saveprofile 512 byteswap out", "saveprofile out BYTESWAP 512",
                             "saveprofile byteswap out 512", "saveprofile 512 512 byteswap ByteSwap out"}) {
        EXPECT_EQ(printed(line), "Buffer needs to be byteswapped\nOnly one chunk for each file required\n"
                                 "Increasing overburn buffer size from 256k to 512k\n"
                                 "Increasing overburn buffer size from 512k to 1024k\n")
            << line;
        EXPECT_EQ(directory.bytes("out.hi.bin").size(), 524288U);
        std::filesystem::remove("out.hi.bin");
    }
}

TEST_F(OutputCommands, SaveprofileSavesToTheLastName) {
    type("newrom 16");
    type("romprofile 0");
    EXPECT_EQ(printed("saveprofile first second byteswaps 0512 last"), "");
    EXPECT_TRUE(isthere("last.bin"));
    for (const char* name : {"first.bin", "second.bin", "byteswaps.bin", "0512.bin"})
        EXPECT_FALSE(isthere(name)) << name;
}

TEST_F(OutputCommands, SaveprofileEndsAtAnEmptyWord) {
    type("newrom 16");
    type("romprofile 0");
    EXPECT_EQ(printed("saveprofile \"\" out"), "ERROR, please specify the file to save to\n");
    EXPECT_EQ(printed("saveprofile out '' other"), "");
    EXPECT_TRUE(isthere("out.bin"));
    EXPECT_FALSE(isthere("other.bin"));
}

TEST_F(OutputCommands, SaveprofileTakesFifteenWords) {
    type("newrom 16");
    type("romprofile 0");
    EXPECT_EQ(printed("saveprofile 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"), "");
    EXPECT_TRUE(isthere("15.bin"));
    EXPECT_FALSE(isthere("16.bin"));
}

TEST_F(OutputCommands, SaveprofileWithoutANameSaysSo) {
    for (const char* line : {"saveprofile", "saveprofile 512", "saveprofile byteswap 512"}) {
        EXPECT_EQ(printed(line), "ERROR, please specify the file to save to\n");
        EXPECT_EQ(printedat(0, line), "");
    }
}

TEST_F(OutputCommands, SaveprofileTellsBeforeAndAfter) {
    const std::string line = "saveprofile out 512 byteswap";
    const std::string nothing = "Nothing to write, bailing out\n";
    EXPECT_EQ(printed(line), nothing);
    EXPECT_EQ(printedat(2, line), "Parsed [" + line + "]\nSave profile: out byteswap=1 savesize=512\n" +
                                      "Adding ROMs to buffer\n" + nothing);
    EXPECT_EQ(printedat(5, line).find("saveprofile(1"), std::string::npos);
    EXPECT_TRUE(printedat(6, line).ends_with(nothing + "saveprofile(1,512,out)\n"));
    EXPECT_TRUE(printedat(6, "saveprofile out").ends_with(nothing + "saveprofile(0,0,out)\n"));
}

TEST_F(OutputCommands, SaveromNeedsANameAndSavesTheCurrentRom) {
    type("newrom 4 1");
    type("newrom 4 2");
    EXPECT_EQ(printed("saverom"), "ERROR, please specify the file to save to\n");
    EXPECT_EQ(printed("saverom \"\""), "ERROR, please specify the file to save to\n");
    EXPECT_EQ(printed("saverom 'an image' ignored"), "");
    EXPECT_EQ(directory.bytes("an image"), Bytes(4, 2));
    EXPECT_NE(printedat(6, "saverom out").find("Save ROM: out\n"), std::string::npos);
    EXPECT_EQ(printedat(5, "saverom out").find("Save ROM"), std::string::npos);
}

TEST_F(OutputCommands, SaveromRefusesACurrentRomThatDoesNotExist) {
    EXPECT_EQ(printed("saverom out"), "");
    type("newrom 4");
    for (const char* number : {"1", "-1", "99"}) {
        type(std::string("rom ") + number);
        EXPECT_EQ(printed("saverom out"), std::string("ERROR: no such ROM [") + number + "]\n");
        EXPECT_EQ(printed("saveromhash out"), "");
    }
    EXPECT_FALSE(isthere("out"));
}

TEST_F(OutputCommands, SaveromhashFormsItsNameWithoutOne) {
    type("newrom 4 0");
    EXPECT_EQ(printed("saveromhash"), "");
    // The CRC32 of four zero bytes.
    EXPECT_TRUE(isthere("0x2144df1c.Unnamed"));
    EXPECT_EQ(printed("saveromhash named"), "");
    EXPECT_EQ(directory.text("named"), directory.text("0x2144df1c.Unnamed"));
}

TEST_F(OutputCommands, TheSaveDirectoryIsPutBeforeNames) {
    directory.folder("out/deep");
    type("newrom 4 0");
    type("romprofile 0");
    type("savedir out");
    for (const char* line : {"saverom image", "saveromhash hash", "saveprofile burnt", "saverom deep/image"})
        EXPECT_EQ(printed(line), "") << line;
    for (const char* name : {"out/image", "out/hash", "out/burnt.bin", "out/deep/image"})
        EXPECT_TRUE(isthere(name)) << name;
}

TEST_F(OutputCommands, AddKnowsTheStructuresInAnyCase) {
    type("newrom 512k 255");
    EXPECT_EQ(printed("add KICKITY-SPLIT"), "");
    EXPECT_EQ(printed("ADD Checksum"), "");
    EXPECT_EQ(printed("add size"), "");
    EXPECT_EQ(printed("add vectors"), "");
    EXPECT_EQ(psKickstartRoms[0].iComponents(), 4);
    EXPECT_EQ(printed("checksum"), "");
}

TEST_F(OutputCommands, AddTellsWhatItDidAfterDoingIt) {
    struct Trace {
        const char* word;
        const char* text;
    };
    for (const Trace& row : {Trace{"kickity-split", "ERROR, no room for kickity-split\nAdd kickity-split\n"},
                             Trace{"checksum", "ERROR, no room for Checksum\nAdd checksum\n"},
                             Trace{"size", "ERROR, no room for Size\nAdd size\n"},
                             Trace{"vectors", "ERROR, no room for Vectors Used=0\nAdd vectors\n"},
                             Trace{"12", "No space in rom\nAdd 12 bytes of unallocated space\n"}}) {
        type("reset roms");
        type("newrom 4");
        const std::string line = std::string("add ") + row.word;
        EXPECT_TRUE(printedat(6, line).ends_with(row.text)) << printedat(6, line);
        EXPECT_EQ(printedat(5, line).find("\nAdd "), std::string::npos) << line;
        EXPECT_EQ(printedat(0, line), "") << line;
    }
}

TEST_F(OutputCommands, AddFillsWithTheLowByteOfItsNumber) {
    type("newrom 16 9");
    type("add 4 255");
    type("add 4 256");
    type("add 4 65");
    type("add 4");
    EXPECT_EQ(psKickstartRoms[0].pcROM, (Bytes{255, 255, 255, 255, 0, 0, 0, 0, 65, 65, 65, 65, 0, 0, 0, 0}));
}

TEST_F(OutputCommands, AddRefusesNumbersThatFitNoType) {
    type("newrom 16 9");
    EXPECT_TRUE(isoneerror(printed(std::string("add ") + cTooLarge)));
    EXPECT_TRUE(isoneerror(printed(std::string("add 4 ") + cTooLarge)));
    EXPECT_EQ(psKickstartRoms[0].iComponents(), 0);
    EXPECT_EQ(psKickstartRoms[0].pcROM, Bytes(16, 9));
}

TEST_F(OutputCommands, AddNeedsACurrentRomThatExists) {
    for (const char* word : {"kickity-split", "checksum", "size", "vectors", "16"}) {
        EXPECT_EQ(printed(std::string("add ") + word), "ERROR, No current ROM\n");
        iCurrentROM = 3;
        EXPECT_EQ(printed(std::string("add ") + word), "ERROR, invalid ROM\n");
        iCurrentROM = -1;
    }
    EXPECT_EQ(printed("add"), "ERROR, No current ROM\n");
    type("newrom 4");
    EXPECT_EQ(printed("add"), "ERROR, what do you want to add?\n");
    EXPECT_EQ(printedat(0, "add"), "");
}

TEST_F(OutputCommands, ChecksumNeedsARomAndAComponent) {
    EXPECT_EQ(printed("checksum"), "Invalid ROM\n");
    type("newrom 4");
    EXPECT_EQ(printed("checksum"), "Error: No checksum component\n");
    EXPECT_EQ(printedat(0, "checksum"), "");
    type("rom 1");
    EXPECT_EQ(printed("checksum"), "Invalid ROM\n");
}

TEST_F(OutputCommands, SavecomponenthashChoosesLikeSavecomponent) {
    type("newrom 100");
    type("add 8");
    const std::string all = "Saving all components to savepath\n";
    const std::string skipped = "No relocs, ignoring\n";
    EXPECT_EQ(said("savecomponenthash"), all + "No savefile given, using default Unallocated\n" +
                                             "Saving component hash=0 (Unallocated,0 relocs) from ROM 0 to "
                                             "file Unallocated\n" +
                                             skipped);
    EXPECT_TRUE(said("savecomponenthash 0").starts_with("Saving component hash 0 to savepath\n"));
    EXPECT_TRUE(said("savecomponenthash unall").starts_with("Saving component hash -1 to savepath\nNo save"));
    EXPECT_TRUE(said("savecomponenthash unall out")
                    .starts_with("Saving hash of 0:0 to out\nSavefile given, using out\n"));
    EXPECT_TRUE(said("savecomponenthash 0 out").starts_with("Saving hash of 0:0 to out\n"));
    EXPECT_TRUE(said("savecomponenthash other out").starts_with("Saving hash of 0:-1 to out\nSavefile"));
    EXPECT_EQ(said("savecomponenthash 5 out"),
              "Saving hash of 0:5 to out\nComponent out of range or not found\n");
    EXPECT_EQ(printed("savecomponenthash"), skipped);
    EXPECT_TRUE(isoneerror(printed(std::string("savecomponenthash ") + cTooLarge)));
    EXPECT_FALSE(isthere("out"));
}

TEST_F(OutputCommands, SavecomponenthashWithoutARomSaysSo) {
    EXPECT_EQ(printed("savecomponenthash"), "ROM out of range\n");
    EXPECT_EQ(printed("savecomponenthash name out"), "ERROR, No current ROM\nROM out of range\n");
}

TEST_F(OutputCommands, CanonisecomponentTakesANumberOrMeansAll) {
    type("newrom 100");
    type("add 8");
    type("add 8");
    const std::string first = "Ignoring component 0, no relocs (and no ROMTAG)\n";
    const std::string second = "Ignoring component 1, no relocs (and no ROMTAG)\n";
    EXPECT_EQ(said("canonisecomponent"), first + second);
    EXPECT_EQ(said("canonisecomponent all"), first + second);
    EXPECT_EQ(said("canonisecomponent -1"), first + second);
    EXPECT_EQ(said("canonisecomponent 1"), second);
    EXPECT_EQ(said("canonisecomponent 2"), "Component [2] out of range or not found max=2\n");
    EXPECT_TRUE(isoneerror(printed(std::string("canonisecomponent ") + cTooLarge)));
    type("reset roms");
    EXPECT_EQ(printed("canonisecomponent"), "ROM out of range\n");
}

} // namespace vantorel::test
