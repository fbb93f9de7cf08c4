#include "shell/commands.h"

#include "adf/directory.h"
#include "audit/audit.h"
#include "base/message.h"
#include "hash/library.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/session.h"
#include "shell/tokens.h"
#include "support/capture.h"
#include "support/diskbuilder.h"
#include "support/dumps.h"
#include "support/rombuilder.h"

#include <algorithm>
#include <set>

namespace vantorel::test {

namespace {

class Script : public ShellTest {};
class EchoCommand : public ShellTest {};
class RomCommand : public ShellTest {};

class NewRomCommand : public ShellTest {
protected:
    // The size that `newrom` makes of `words`.
    static int32_t size(const std::string& words) {
        type("newrom " + words);
        const KickstartRom* slot = findslot(iCurrentROM);
        return slot != nullptr ? slot->iSize() : -1;
    }

    // Whether all bytes of the ROM that `newrom` makes of `words`, and its fill byte, are `byte`.
    static bool isfilled(const std::string& words, uint8_t byte) {
        type("newrom " + words);
        const KickstartRom& slot = *findslot(iCurrentROM);
        return slot.cFill == byte && std::ranges::all_of(slot.pcROM, [&](uint8_t b) { return b == byte; });
    }
};

class LoadRomCommand : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        directory.file("kick.rom", kick.image);
        const ChipPair pair = splitpair(kick.image);
        directory.file("hi.bin", pair.first);
        directory.file("lo.bin", pair.second);
        directory.file("short.bin", Bytes(100));
    }

    // `count` empty ROMs, the first of them current.
    static void slots(int count) {
        for (int i = 0; i < count; ++i)
            type("newrom 16");
        iCurrentROM = 0;
    }

    [[nodiscard]] bool isloaded(int32_t rom) const {
        const KickstartRom* slot = findslot(rom);
        return slot != nullptr && slot->pcROM == kick.image;
    }

    const BuiltRom kick = RomBuilder(256 * 1024, 0xFC0000).build();
    const std::string nohash = "Unable to find hash\n";
};

} // namespace

TEST_F(Script, BlankLinesAndCommentsDoNothing) {
    for (const char* line : {"", "   ", "#", "# help", "#help", "  # echo a", "\"\"", "'' echo a", "'# x'"})
        EXPECT_EQ(printed(line), "") << line;
}

TEST_F(Script, AnUnknownWordIsAnError) {
    for (const char* line : {"nonsense", "romsx", "ro", "echoecho a", "\thelp", "help#", "$$"})
        EXPECT_EQ(printed(line), cUnknown) << line;
    EXPECT_EQ(printedat(0, "nonsense"), "");
}

TEST_F(Script, CommandsAreWholeWordsInAnyCase) {
    EXPECT_EQ(printed("ROMS"), "ROMS:\n");
    EXPECT_EQ(printed("rOmS and more"), "ROMS:\n");
    EXPECT_EQ(printed("ROM"), "");
}

TEST_F(Script, ReferencesAreExpandedBeforeTheLineIsCut) {
    type("alias show 'echo a'");
    type("alias quote '\"'");
    EXPECT_EQ(printed("$show  b"), "a b \n");
    EXPECT_EQ(printed("echo $quote.a b$quote.c"), ".a b .c \n");
}

TEST_F(Script, CommentsAreExpandedToo) {
    EXPECT_EQ(printed("# $ROMBASE"), "No custom aliases found, no current ROM\n");
}

TEST_F(Script, ReturnsZeroWhateverHappens) {
    int result = -1;
    static_cast<void>(printed("help"));
    {
        Capture capture;
        result = script("nonsense");
    }
    EXPECT_EQ(result, 0);
}

TEST_F(Script, LeavesTheLineItIsGivenAsItWas) {
    const std::string line = "ECHO 'a' b";
    type(line);
    EXPECT_EQ(line, "ECHO 'a' b");
}

TEST_F(Script, NoTokenOutlivesItsLine) {
    type("echo a b");
    for (const char* token : cpTokens)
        EXPECT_STREQ(token, "");
}

TEST_F(EchoCommand, EachWordHasASpaceBehindIt) {
    EXPECT_EQ(printed("echo a  b 'c  d'"), "a b c  d \n");
    EXPECT_EQ(printed("echo"), "\n");
}

TEST_F(EchoCommand, EndsAtAnEmptyWord) { EXPECT_EQ(printed("echo a \"\" b"), "a \n"); }

TEST_F(EchoCommand, PrintsFifteenWords) {
    EXPECT_EQ(printed("echo 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17"),
              "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 \n");
}

TEST_F(EchoCommand, OnlyTheLineEndAppearsAtLevelZero) { EXPECT_EQ(printedat(0, "echo a b"), "\n"); }

TEST_F(EchoCommand, APercentSignIsOrdinary) { EXPECT_EQ(printed("echo %s %n 100%"), "%s %n 100% \n"); }

TEST_F(NewRomCommand, SizesAreBytesKilobytesOrMegabytes) {
    EXPECT_EQ(size("512k"), 524288);
    EXPECT_EQ(size("1m"), 1048576);
    EXPECT_EQ(size("512"), 512);
    EXPECT_EQ(size("0"), 0);
}

TEST_F(NewRomCommand, OnlyALowerCaseSuffixAtTheEndCounts) {
    EXPECT_EQ(size("512K"), 512);
    EXPECT_EQ(size("2M"), 2);
    EXPECT_EQ(size("512kb"), 512);
    EXPECT_EQ(size("3kk"), 3072);
    EXPECT_EQ(size("3mk"), 3072);
}

TEST_F(NewRomCommand, AWordWithoutDigitsIsZero) {
    EXPECT_EQ(size("k"), 0);
    EXPECT_EQ(size("abc"), 0);
    EXPECT_EQ(size("0x10"), 0);
}

TEST_F(NewRomCommand, TheFillIsTheLowByteOfTheNumber) {
    EXPECT_TRUE(isfilled("1m 255", 0xFF));
    EXPECT_TRUE(isfilled("64", 0));
    EXPECT_TRUE(isfilled("64 511", 0xFF));
    EXPECT_TRUE(isfilled("64 256", 0));
    EXPECT_TRUE(isfilled("64 -1", 0xFF));
    EXPECT_TRUE(isfilled("64 -86", 0xAA));
    EXPECT_TRUE(isfilled("64 word", 0));
}

TEST_F(NewRomCommand, TheSizeIsToldAtLevelTwo) {
    EXPECT_EQ(printedat(2, "newrom 2k 1"),
              "Parsed [newrom 2k 1]\nCreating a new ROM of 2048 bytes (2k)\nFirst ROM 2048 bytes\n");
    EXPECT_EQ(printedat(2, "newrom 2047"), "Parsed [newrom 2047]\nCreating a new ROM of 2047 bytes (1k)\n");
    EXPECT_EQ(printed("newrom 2k"), "");
}

TEST_F(NewRomCommand, TheNewOneIsCurrent) {
    for (int32_t rom = 0; rom < 20; ++rom) {
        EXPECT_EQ(printed("newrom 16"), "");
        EXPECT_EQ(iCurrentROM, rom);
    }
}

TEST_F(NewRomCommand, OneTooManyLeavesNoneCurrent) {
    for (int i = 0; i < 20; ++i)
        type("newrom 16");
    EXPECT_EQ(printed("newrom 16"), "Sorry, 20 ROMs maximum\n");
    EXPECT_EQ(iCurrentROM, -1);
    EXPECT_EQ(iMaxRom, 20);
}

TEST_F(NewRomCommand, ASizeThatDoesNotFitOrIsNegativeIsRefused) {
    for (const char* words : {"99999999999", "2147483648", "2097152k", "2048m", "99999999999K",
                              "99999999999999999999999m", "-1", "-1k", "-2147483648m"})
        EXPECT_TRUE(isoneerror(printed(std::string("newrom ") + words))) << words;
    EXPECT_EQ(printedat(0, "newrom 99999999999"), "");
    EXPECT_EQ(iMaxRom, 0);
    EXPECT_EQ(iCurrentROM, -1);
}

TEST_F(NewRomCommand, AFillThatDoesNotFitIsRefused) {
    EXPECT_TRUE(isoneerror(printed("newrom 16 99999999999")));
    EXPECT_TRUE(isoneerror(printed("newrom 16 -99999999999")));
    EXPECT_EQ(iMaxRom, 0);
}

TEST_F(RomCommand, WithoutANumberShowsTheCurrentOne) {
    type("newrom 1k");
    type("newrom 2k");
    EXPECT_EQ(printed("rom"), "ROM  1 ROMBase:00000000 CRC32:0x00000000 (0 of 2048/2k)\nUnnamed\n");
    EXPECT_EQ(iCurrentROM, 1);
}

TEST_F(RomCommand, ShowsTheRomAndMakesItCurrent) {
    type("newrom 1k");
    type("newrom 2k");
    EXPECT_EQ(printed("rom 0"), "ROM  0 ROMBase:00000000 CRC32:0x00000000 (0 of 1024/1k)\nUnnamed\n");
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(RomCommand, AWordMakesTheFirstCurrentInSilence) {
    type("newrom 1k");
    type("newrom 2k");
    EXPECT_EQ(printed("rom abc"), "");
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(RomCommand, MinusOneMakesNoneCurrent) {
    type("newrom 1k");
    EXPECT_EQ(printed("rom -1"), "");
    EXPECT_EQ(iCurrentROM, -1);
    EXPECT_EQ(printed("rom"), "");
}

TEST_F(RomCommand, ANumberBeyondTheSlotsIsTakenInSilence) {
    EXPECT_EQ(printed("rom 25"), "");
    EXPECT_EQ(iCurrentROM, 25);
    EXPECT_EQ(printed("romname x"), "ERROR, No current ROM\n");
    EXPECT_EQ(printed("modules"), "");
}

TEST_F(RomCommand, ANumberThatDoesNotFitIsRefused) {
    type("newrom 1k");
    EXPECT_TRUE(isoneerror(printed("rom 99999999999")));
    EXPECT_TRUE(isoneerror(printed("rom -99999999999")));
    EXPECT_TRUE(isoneerror(printed("modules 99999999999")));
    EXPECT_TRUE(isoneerror(printed("analyserom 99999999999")));
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(RomCommand, RomNameTitlesTheCurrentOne) {
    type("newrom 16");
    EXPECT_EQ(printed("romname 'My ROM'"), "ROMName set to My ROM\n");
    EXPECT_EQ(findslot(0)->pcTitle, "My ROM");
    EXPECT_EQ(printedat(0, "romname other"), "");
    EXPECT_EQ(findslot(0)->pcTitle, "other");
}

TEST_F(RomCommand, ModulesTakesASlotOrTheCurrentOne) {
    directory.file("kick.rom", standardrom().image);
    type("loadrom kick.rom");
    type("newrom 16");
    const std::string first = printed("modules 0");
    EXPECT_TRUE(first.starts_with("Size=524288/512k, ")) << first;
    EXPECT_NE(printed("modules"), first);
    iCurrentROM = 0;
    EXPECT_EQ(printed("modules"), first);
    EXPECT_EQ(printed("modules word"), first);
    EXPECT_EQ(printed("modules 7"), "");
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(RomCommand, AnalyseRomTakesASlotOrTheCurrentOne) {
    directory.file("kick.rom", standardrom().image);
    for (const char* words : {"0", "", "word"}) {
        type("reset roms");
        type("loadrom kick.rom");
        if (*words == '0') type("newrom 16");
        ASSERT_EQ(findslot(0)->iComponents(), 0);
        type(std::string("analyserom ") + words);
        EXPECT_GT(findslot(0)->iComponents(), 0) << words;
    }
}

TEST_F(LoadRomCommand, AFileAloneGoesIntoANewSlotThatIsCurrent) {
    slots(2);
    EXPECT_EQ(printed("loadrom kick.rom"), nohash);
    EXPECT_EQ(iCurrentROM, 2);
    EXPECT_TRUE(isloaded(2));
}

TEST_F(LoadRomCommand, AFileThatCannotBeOpenedLeavesAnEmptyCurrentSlot) {
    slots(1);
    EXPECT_EQ(printed("loadrom missing"), "ERROR: can't open file [missing]\n");
    EXPECT_EQ(iCurrentROM, 1);
    EXPECT_EQ(findslot(1)->iSize(), 0);
}

TEST_F(LoadRomCommand, ADirectoryCannotBeOpened) {
    EXPECT_EQ(printed("loadrom ."), "ERROR: can't open file [.]\n");
}

TEST_F(LoadRomCommand, AFileForASlotLeavesTheCurrentOne) {
    slots(3);
    EXPECT_EQ(printed("loadrom kick.rom 2"), nohash);
    EXPECT_EQ(iCurrentROM, 0);
    EXPECT_EQ(iMaxRom, 3);
    EXPECT_TRUE(isloaded(2));
}

TEST_F(LoadRomCommand, AQuotedFileNameKeepsItsSpaces) {
    directory.file("a b", kick.image);
    slots(3);
    EXPECT_EQ(printed("loadrom 'a b' 2"), nohash);
    EXPECT_TRUE(isloaded(2));
    EXPECT_FALSE(isloaded(0));
    EXPECT_EQ(iMaxRom, 3);
}

TEST_F(LoadRomCommand, ASlotThatDoesNotExistIsReported) {
    slots(1);
    EXPECT_EQ(printed("loadrom kick.rom 1"), "No such ROM\n");
    EXPECT_EQ(iCurrentROM, 0);
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(LoadRomCommand, TwoFilesGoIntoANewSlotThatIsCurrent) {
    slots(1);
    EXPECT_EQ(printed("loadrom hi.bin lo.bin"), nohash);
    EXPECT_EQ(iCurrentROM, 1);
    EXPECT_TRUE(isloaded(1));
}

TEST_F(LoadRomCommand, TwoFilesForASlotLeaveTheCurrentOneWhenTheyMerge) {
    slots(3);
    EXPECT_EQ(printed("loadrom hi.bin lo.bin 2"), nohash);
    EXPECT_EQ(iCurrentROM, 0);
    EXPECT_TRUE(isloaded(2));
}

TEST_F(LoadRomCommand, TwoFilesForASlotMakeItCurrentWhenTheyDoNotMerge) {
    slots(3);
    EXPECT_EQ(printed("loadrom hi.bin short.bin 2"),
              "ERROR: Incomplete read or files are different sizes, can't merge them\n");
    EXPECT_EQ(iCurrentROM, 2);
    EXPECT_EQ(printed("loadrom hi.bin missing 1"), "ERROR: Can't open missing\n");
    EXPECT_EQ(iCurrentROM, 1);
    EXPECT_EQ(findslot(1)->iSize(), 16);
}

TEST_F(LoadRomCommand, AThirdWordThatIsNoSlotIsAnError) {
    slots(1);
    const std::string wrong = "ERROR: No ROM at that slot, or slot out of range\n";
    for (const char* word : {"x", "-1", "0x1", "1a"})
        EXPECT_EQ(printed(std::string("loadrom hi.bin lo.bin ") + word), wrong) << word;
    EXPECT_EQ(printedat(0, "loadrom hi.bin lo.bin x"), "");
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(LoadRomCommand, ANumberThatDoesNotFitIsRefused) {
    slots(1);
    EXPECT_TRUE(isoneerror(printed("loadrom kick.rom 99999999999")));
    EXPECT_TRUE(isoneerror(printed("loadrom hi.bin lo.bin 99999999999")));
    EXPECT_TRUE(isoneerror(printed("loadrom missing 99999999999")));
    EXPECT_EQ(iMaxRom, 1);
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(LoadRomCommand, WithoutAFreeSlotNoneIsCurrentAndNothingIsLoaded) {
    slots(20);
    EXPECT_EQ(printed("loadrom kick.rom"), "Sorry, 20 ROMs maximum\nNo such ROM\n");
    EXPECT_EQ(iCurrentROM, -1);
    EXPECT_EQ(iMaxRom, 20);
}

TEST_F(Script, LoadHashesTakesItsFolderOrTheUsualOne) {
    directory.file("Vantorel Hashes/0x11111111", "");
    directory.file("other/0x22222222", "");
    EXPECT_EQ(printed("loadhashes other"), "");
    EXPECT_EQ(findhashfile("0x22222222"), "other/0x22222222");
    EXPECT_EQ(printed("loadhashes"), "");
    EXPECT_EQ(findhashfile("0x11111111"), "Vantorel Hashes/0x11111111");
    EXPECT_EQ(findhashfile("0x22222222"), "");
}

TEST_F(Script, AuditFilesTakesItsFolder) {
    directory.file("tree/a", "text");
    EXPECT_EQ(printed("auditfiles tree"), "");
    ASSERT_EQ(psAuditFilesFile.size(), 1U);
    EXPECT_EQ(psAuditFilesFile[0].cName, "a");
}

TEST_F(Script, TheDiskCommandsLoadListAndSave) {
    DiskBuilder disk(FileSystem::Ffs, "Install");
    disk.addfile("S/Startup-Sequence", "echo hello\n");
    directory.file("disk.adf", disk.image());
    EXPECT_EQ(printed("loadadf disk.adf"), "ADF loaded:Install\n");
    const std::string listing = "[  0] /S/\n[  1] /S/Startup-Sequence\n";
    EXPECT_EQ(printed("adflist"), listing);
    EXPECT_EQ(printedat(0, "adflist"), listing);
    EXPECT_EQ(printed("adfsavefile /S/Startup-Sequence"), "");
    EXPECT_EQ(directory.text("Startup-Sequence"), "echo hello\n");
    EXPECT_EQ(printed("adfsavefile /S/Startup-Sequence 'an other'"), "");
    EXPECT_EQ(directory.text("an other"), "echo hello\n");
}

TEST_F(Script, ADiskThatCannotBeLoadedHasNoName) {
    EXPECT_EQ(printed("loadadf missing.adf"), "ERROR: Unable to open ADF:missing.adf\nADF loaded:<none>\n");
    EXPECT_EQ(printedat(0, "loadadf missing.adf"), "ERROR: Unable to open ADF:missing.adf\n");
    EXPECT_EQ(printed("adflist"), "");
}

TEST_F(Script, ASavedDiskFileIgnoresTheSaveDirectory) {
    DiskBuilder disk(FileSystem::Ofs, "Work");
    disk.addfile("Startup", "text");
    directory.file("disk.adf", disk.image());
    directory.folder("out");
    type("loadadf disk.adf");
    type("savedir out");
    type("adfsavefile /Startup");
    EXPECT_EQ(directory.text("Startup"), "text");
    EXPECT_FALSE(directory.exists("out/Startup"));
    EXPECT_EQ(printed("adfsavefile Startup copy"), "");
    EXPECT_FALSE(directory.exists("copy"));
}

// The table

TEST(CommandTable, KeywordsAreInLowerCaseAndStandOnce) {
    std::set<std::string> keywords;
    for (const Command& command : commandtable()) {
        const std::string keyword = command.keyword;
        EXPECT_TRUE(std::ranges::all_of(keyword, [](char c) { return c >= 'a' && c <= 'z'; })) << keyword;
        EXPECT_TRUE(keywords.insert(keyword).second) << keyword;
    }
}

/// A document of the project; a table's "\\|" reads as the "|" that it stands for.
std::string document(const std::string& name) {
    const Bytes contents = contentsof(VANTOREL_ROOT "/" + name);
    std::string text(contents.begin(), contents.end());
    for (size_t place = text.find("\\|"); place != std::string::npos; place = text.find("\\|", place))
        text.erase(place, 1);
    return text;
}

TEST(CommandTable, TheReadmeTellsOfEveryCommand) {
    const std::string readme = document("README.md");
    for (const Command& command : commandtable())
        EXPECT_TRUE(readme.find("`" + std::string(command.keyword) + "`") != std::string::npos ||
                    readme.find("`" + std::string(command.keyword) + " ") != std::string::npos)
            << command.keyword;
}

TEST(CommandTable, EveryCommandIsDocumentedWithItsArguments) {
    const std::string commands = document("docs/commands.md");
    for (const Command& command : commandtable()) {
        std::string form = command.keyword;
        if (*command.arguments != '\0') form += std::string(" ") + command.arguments;
        EXPECT_NE(commands.find("| `" + form + "` | "), std::string::npos) << form;
    }
}

} // namespace vantorel::test
