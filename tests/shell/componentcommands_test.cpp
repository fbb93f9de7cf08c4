// The commands that change the components of a ROM, and its base.

#include "component/slotstate.h"

#include <cstdio>

namespace vantorel::test {
namespace {

constexpr const char* cNoRom = "ERROR, No current ROM\n";
constexpr const char* cNoComponent = "ERROR: No such component\n";
constexpr const char* cActions = "ERROR, either START=nnn END=nnn addrelocs addreloc or deletereloc\n";

class ComponentCommand : public ShellTest {
protected:
    // Slot 0: 256 bytes 0xEE at 0xF80000, a component on 0 to 31 and one with a tag on 64 to 127.
    void SetUp() override {
        ShellTest::SetUp();
        slotwith(256, {{0, 32}, {64, 64}}, 0xF80000);
        componentat(0, 1).iROMTag = 64;
        componentat(0, 1).pcExtract = Bytes(64, 0xEE);
        iCurrentROM = 0;
    }

    // What the line prints when it leaves slot 0 as it is.
    static std::string unchanged(const std::string& line) {
        return expectunchanged(0, [&] { std::fputs(printed(line).c_str(), stdout); });
    }

    // The lines that it prints at `level`, without the one of its references.
    static std::string traced(int32_t level, const std::string& line) {
        const std::string console = printedat(level, line);
        const size_t parsed = console.find("Parsed [");
        return parsed == std::string::npos ? console : console.substr(console.find('\n', parsed) + 1);
    }

    static Component& second() { return componentat(0, 1); }
};

class EditComponentCommand : public ComponentCommand {};

TEST_F(EditComponentCommand, TheComponentIsAskedFor) {
    EXPECT_EQ(unchanged("editcomponent"), "ERROR, please give the component to edit\n");
    EXPECT_EQ(unchanged("editcomponent \"\" start=3"), "ERROR, please give the component to edit\n");
    for (const char* word : {"exec", "-1", "0x1", "1x", "+1"})
        EXPECT_EQ(unchanged("editcomponent " + std::string(word) + " start=3"),
                  "ERROR, please give the number of the component\n");
    EXPECT_EQ(printedat(0, "editcomponent") + printedat(0, "editcomponent x"), "");
}

TEST_F(EditComponentCommand, AnyOtherActionGetsTheListOfThem) {
    for (const char* action : {"", " \"\"", " start", " start 5", " start:5", " end", " add", " addrelo",
                               " delete", " =5", " move"})
        EXPECT_EQ(unchanged("editcomponent 1" + std::string(action)), cActions) << action;
    EXPECT_EQ(printedat(0, "editcomponent 1"), "");
}

TEST_F(EditComponentCommand, StartAndEndTakeAnyNumberBehindTheirWord) {
    EXPECT_EQ(printed("editcomponent 1 start=60"), "");
    EXPECT_EQ(second().iStart, 60);
    EXPECT_EQ(second().iSize, 68);
    EXPECT_EQ(printed("EDITCOMPONENT 1 START=0xf80010"), "");
    EXPECT_EQ(second().iStart, 16);
    EXPECT_EQ(printed("editcomponent 1 End=0x80,junk"), "");
    EXPECT_EQ(second().iFixedEnd, 128);
    EXPECT_EQ(second().iSize, 112);
    type("editcomponent 1 end=40junk");
    EXPECT_EQ(second().iSize, 24);
    type("editcomponent 1 start=");
    EXPECT_EQ(second().iStart, 0);
    type("editcomponent 1 start= 8");
    EXPECT_EQ(second().iStart, 0) << "the number stands in the same word";
    type("editcomponent 01 start=3");
    EXPECT_EQ(second().iStart, 3);
}

TEST_F(EditComponentCommand, BoundsMayBeNegative) {
    slotat(0).iROMBase = 0;
    type("editcomponent 1 start=-16");
    EXPECT_EQ(second().iStart, -16);
    EXPECT_EQ(second().iSize, 144);
    type("editcomponent 1 end=-4");
    EXPECT_EQ(second().iSize, 12);
    slotat(0).iROMBase = 0xF80000;
    type("editcomponent 1 end=-16");
    EXPECT_EQ(second().iFixedEnd, -16252944) << "0xFFFFFFF0 less the base";
}

TEST_F(EditComponentCommand, HexadecimalWrapsAndDecimalIsRefused) {
    type("editcomponent 1 start=0x100000008");
    EXPECT_EQ(second().iStart, 8);
    for (const char* action : {"start=99999999999", "end=99999999999", "start=2147483648", "end=-2147483649",
                               "addreloc 99999999999", "deletereloc 99999999999"})
        EXPECT_TRUE(isoneerror(unchanged("editcomponent 1 " + std::string(action)))) << action;
    for (const char* action : {"start=4", "addrelocs", "addreloc 4", "deletereloc 4", ""})
        EXPECT_TRUE(isoneerror(unchanged("editcomponent 99999999999 " + std::string(action)))) << action;
}

TEST_F(EditComponentCommand, RelocsAreAddedByEitherKindOfNumber) {
    EXPECT_EQ(printed("editcomponent 1 addreloc 40"),
              "WARNING, reloc value (EEEEEEEE) beyond this module, max=F80080\n");
    type("editcomponent 1 AddReloc 0x8");
    type("editcomponent 1 addrelocation 24 more");
    EXPECT_EQ(second().ipRelocs, (std::vector<int32_t>{8, 24, 40}));
    EXPECT_EQ(unchanged("editcomponent 1 addreloc 8"),
              "WARNING, reloc value (EEEEEEEE) beyond this module, max=F80080\n");
    EXPECT_EQ(unchanged("editcomponent 1 addreloc 61"), "ERROR, reloc (61) out of range Size=64\n");
    EXPECT_TRUE(isoneerror(unchanged("editcomponent 1 addreloc 0xFFFFFFFC")));
    EXPECT_EQ(unchanged("editcomponent 0 addreloc 8"),
              "ERROR, only components with a ROMTAG can have relocs added\n");
}

TEST_F(EditComponentCommand, ARelocToAddIsANumber) {
    for (const char* word : {"", " \"\"", " x", " -4", " 0X8", " 8x", " +8"})
        EXPECT_EQ(unchanged("editcomponent 1 addreloc" + std::string(word)),
                  "ERROR, either please give the reloc number to add\n");
    EXPECT_EQ(printedat(0, "editcomponent 1 addreloc"), "");
}

TEST_F(EditComponentCommand, RelocsAreDeletedByADecimalNumber) {
    second().ipRelocs = {8, 24};
    EXPECT_EQ(printed("editcomponent 1 DELETERELOC 24"), "");
    EXPECT_EQ(second().ipRelocs, std::vector<int32_t>{8});
    EXPECT_EQ(unchanged("editcomponent 1 deletereloc 24"), "ERROR, reloc 24 not found\n");
    for (const char* word : {"", " \"\"", " x", " -8", " 0x8", " 8x"})
        EXPECT_EQ(unchanged("editcomponent 1 deletereloc" + std::string(word)),
                  "ERROR, either please give the reloc number to delete\n");
}

TEST_F(EditComponentCommand, AddRelocsScansTheComponent) {
    ASSERT_TRUE(putlong(slotat(0).pcROM, 70, 0xF80042));
    EXPECT_EQ(printed("editcomponent 1 AddRelocs"), "Adding potential relocs 00000040 to 00000080\n"
                                                    "1 potential relocs added\n");
    EXPECT_EQ(second().ipRelocs, std::vector<int32_t>{6});
    EXPECT_EQ(unchanged("editcomponent 1 addrelocs8 4"), "Adding potential relocs 00000040 to 00000080\n"
                                                         "1 potential relocs added\n")
        << "any word that begins so";
}

TEST_F(EditComponentCommand, TheTraceStandsBehindTheOperation) {
    EXPECT_EQ(traced(6, "editcomponent 1 start=60"), "Editing START\n");
    EXPECT_EQ(traced(6, "editcomponent 1 end=128"), "Editing END\n");
    EXPECT_EQ(traced(6, "editcomponent 9 start=60"), cNoComponent + std::string("Editing START\n"));
    EXPECT_TRUE(traced(6, "editcomponent 1 addreloc 8").ends_with("There are 1 relocs\nAdding RELOC\n"));
    EXPECT_EQ(traced(6, "editcomponent 1 deletereloc 8"), "There are 0 relocs\nDeleting RELOC\n");
    EXPECT_TRUE(traced(6, "editcomponent 0 addrelocs")
                    .ends_with("0 potential relocs added\nAdding all potential RELOCs\n"));
    for (const char* action : {"start=60", "end=128", "addreloc 8", "deletereloc 8", "addrelocs"}) {
        const std::string console = traced(5, "editcomponent 1 " + std::string(action));
        EXPECT_FALSE(has(console, "Editing") || has(console, "ing RELOC\n") || has(console, "all potential"))
            << console;
    }
}

TEST_F(EditComponentCommand, MissingComponentsAreRefused) {
    for (const char* action : {"start=4", "end=4", "addrelocs"})
        EXPECT_EQ(unchanged("editcomponent 2 " + std::string(action)), cNoComponent);
    for (const char* action : {"addreloc 4", "deletereloc 4"})
        EXPECT_EQ(unchanged("editcomponent 2 " + std::string(action)), "ERROR, component out of range\n");
}

TEST_F(EditComponentCommand, WithoutASlotNothingIsEdited) {
    type("rom 7");
    for (const char* action : {"start=4", "end=4", "addrelocs"})
        EXPECT_EQ(unchanged("editcomponent 1 " + std::string(action)), cNoRom);
    for (const char* action : {"addreloc 4", "deletereloc 4"})
        EXPECT_EQ(unchanged("editcomponent 1 " + std::string(action)), "ERROR, ROM out of range\n");
    type("reset roms");
    for (const char* action : {"start=4", "end=4", "addrelocs"})
        EXPECT_EQ(printed("editcomponent 1 " + std::string(action)), cNoRom);
    for (const char* action : {"addreloc 4", "deletereloc 4"})
        EXPECT_EQ(printed("editcomponent 1 " + std::string(action)), "ERROR, please load or create a ROM\n");
}

class RomBaseCommand : public ComponentCommand {
protected:
    static uint32_t base(const std::string& word) {
        type("rombase " + word);
        return slotat(0).iROMBase;
    }
};

TEST_F(RomBaseCommand, TheUsualBasesHaveWordsInAnyCase) {
    for (const char* word : {"x20", "X20"})
        EXPECT_EQ(base(word), 0x200000u);
    for (const char* word : {"xF8", "XF8", "xf8", "Xf8"})
        EXPECT_EQ(base(word), 0xF80000u);
    for (const char* word : {"xFC", "XFC", "xfc", "xfC", "XFc"})
        EXPECT_EQ(base(word), 0xFC0000u);
}

TEST_F(RomBaseCommand, OnlyTheWholeWordCounts) {
    for (const char* word : {"xF80", "xF", "x2", "x200000", "xE0", "F8", "xFC,"})
        EXPECT_EQ(base(word), 0u) << word;
    EXPECT_EQ(base("0xF8"), 0xF8u);
}

TEST_F(RomBaseCommand, NumbersAreHandedOnAsTyped) {
    EXPECT_EQ(base("0xf80000,junk"), 0xF80000u);
    EXPECT_EQ(base("16515072"), 0xFC0000u);
    EXPECT_EQ(base("0x100000010"), 0x10u) << "hexadecimal wraps";
    EXPECT_EQ(base("nonsense"), 0u);
}

TEST_F(RomBaseCommand, OfAnEmptyRomOneLineTells) {
    slotat(0).psComponents.clear();
    EXPECT_EQ(printed("rombase xFC"), "ROMBase set to 00fc0000\n");
    EXPECT_EQ(printedat(0, "rombase xF8"), "");
}

TEST_F(RomBaseCommand, MissingNegativeAndTooLargeNumbersAreRefused) {
    EXPECT_EQ(unchanged("rombase"), "ERROR, please specify the new ROMBase\n");
    EXPECT_EQ(unchanged("rombase \"\""), "ERROR, please specify the new ROMBase\n");
    EXPECT_EQ(printedat(0, "rombase"), "");
    for (const char* word : {"-1", "99999999999", "-99999999999"})
        EXPECT_TRUE(isoneerror(unchanged("rombase " + std::string(word)))) << word;
}

TEST_F(RomBaseCommand, WithoutASlotThereIsNothingToMove) {
    type("rom 7");
    EXPECT_EQ(unchanged("rombase xFC"), cNoRom);
    type("reset roms");
    EXPECT_EQ(printed("rombase 0"), cNoRom);
}

class AddCommand : public ComponentCommand {};

TEST_F(AddCommand, ARomIsAskedForBeforeAnythingElse) {
    iCurrentROM = -1;
    for (const char* words : {"", " file", " 16", " checksum", " 99999999999"})
        EXPECT_EQ(unchanged("add" + std::string(words)), cNoRom);
    EXPECT_EQ(printedat(0, "add"), "");
}

TEST_F(AddCommand, WhatToAddIsAskedFor) {
    EXPECT_EQ(unchanged("add"), "ERROR, what do you want to add?\n");
    EXPECT_EQ(unchanged("add \"\" x"), "ERROR, what do you want to add?\n");
    EXPECT_EQ(printedat(0, "add"), "");
}

TEST_F(AddCommand, ANumberIsThatManyBytesOfUnallocatedSpace) {
    EXPECT_EQ(printed("add 32 -1"), "");
    const Component& block = componentat(0, 1);
    EXPECT_EQ(block.pcName, Text("Unallocated"));
    EXPECT_EQ(block.pcType, Text("Data"));
    EXPECT_EQ(block.iStart, 32);
    EXPECT_EQ(block.iSize, 32);
    EXPECT_EQ(bytesat(0, 32, 32), Bytes(32, 0xFF));
    type("add 8 65");
    EXPECT_EQ(bytesat(0, 128, 9), (Bytes{65, 65, 65, 65, 65, 65, 65, 65, 0xEE}));
    type("add 2 511");
    EXPECT_EQ(bytesat(0, 136, 2), Bytes(2, 0xFF)) << "the low byte";
    type("add 2");
    EXPECT_EQ(bytesat(0, 138, 2), Bytes(2, 0));
    type("add 2 word");
    EXPECT_EQ(bytesat(0, 140, 2), Bytes(2, 0));
}

TEST_F(AddCommand, NumbersThatDoNotFitAreRefused) {
    for (const char* words : {"99999999999", "2147483648 5", "16 99999999999"})
        EXPECT_TRUE(isoneerror(unchanged("add " + std::string(words)))) << words;
    EXPECT_EQ(unchanged("add 2147483647"), "Not enough space in rom\nNo space in rom\n");
    EXPECT_TRUE(isoneerror(unchanged("add -5")));
}

TEST_F(AddCommand, VirtualComponentsAreWholeWordsInAnyCase) {
    type("newrom 512k");
    for (const char* word : {"Kickity-Split", "CHECKSUM", "Size", "vectors"})
        EXPECT_EQ(printed("add " + std::string(word)), "");
    const auto& components = slotat(1).psComponents;
    ASSERT_EQ(components.size(), 4u);
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(components[i].pcType,
                  Text(std::vector<std::string>{"Kickity-Split", "Checksum", "Size", "Vectors"}[i]));
    for (const std::string word : {"kickity-splits", "checksums", "vector", "sizes"})
        EXPECT_EQ(printed("add " + word), "ERROR: Unable to open file " + word + "\n");
}

TEST_F(AddCommand, AnythingElseIsAFile) {
    directory.file("raw", Bytes(16, 0x77));
    directory.file("two words", Bytes(8, 0x78));
    EXPECT_EQ(printed("add raw"), "Populating component 0 relocs\n");
    EXPECT_EQ(componentat(0, 1).pcName, Text("raw"));
    EXPECT_EQ(printed("add 'two words' \"\""), "Populating component 0 relocs\n");
    EXPECT_EQ(bytesat(0, 32, 24), joined(Bytes(16, 0x77), Bytes(8, 0x78)));
    EXPECT_EQ(unchanged("add missing"), "ERROR: Unable to open file missing\n");
    EXPECT_TRUE(isoneerror(unchanged("add raw some.library")));
    EXPECT_EQ(unchanged("add raw so*"), "Wildcard add of component\nERROR, no hash file for raw\n");
}

TEST_F(AddCommand, TheTraceStandsBehindTheOperation) {
    EXPECT_TRUE(
        traced(6, "add 016 5").ends_with("\nCouldn't find ROMTag!\nAdd 016 bytes of unallocated space\n"));
    EXPECT_FALSE(has(traced(5, "add 16"), "unallocated space"));
    EXPECT_TRUE(traced(6, "add 999").ends_with("No space in rom\nAdd 999 bytes of unallocated space\n"));
    EXPECT_EQ(traced(2, "add missing name"),
              "ERROR: Unable to open file missing\nAdd component [name] of file missing\n");
    EXPECT_EQ(traced(1, "add missing name"), "ERROR: Unable to open file missing\n");
    EXPECT_EQ(traced(10, "add missing"), "ERROR: Unable to open file missing\n");
    type("newrom 512k");
    for (const auto& [word, trace] :
         std::vector<std::pair<std::string, std::string>>{{"kickity-split", "Add kickity-split\n"},
                                                          {"checksum", "Add checksum\n"},
                                                          {"size", "Add size\n"},
                                                          {"vectors", "Add vectors\n"}}) {
        EXPECT_FALSE(has(traced(5, "add " + word), trace));
        EXPECT_TRUE(traced(6, "add " + word).ends_with("\n" + trace)) << "although there is no room any more";
    }
}

TEST_F(AddCommand, ASlotThatIsNotThereIsRefused) {
    directory.file("raw", Bytes(16, 0x77));
    type("rom 7");
    EXPECT_EQ(unchanged("add raw"), cNoRom);
    EXPECT_EQ(unchanged("add raw x*"), cNoRom);
    for (const char* word : {"16", "kickity-split", "checksum", "size", "vectors"})
        EXPECT_EQ(unchanged("add " + std::string(word)), "ERROR, invalid ROM\n");
}

class DeleteCommand : public ComponentCommand {};

TEST_F(DeleteCommand, TakesTheComponentOut) {
    slotat(0).cFill = 0x11;
    EXPECT_EQ(printed("DELETE 0"), "");
    EXPECT_EQ(slotat(0).iComponents(), 1);
    EXPECT_EQ(bytesat(0, 0, 33), joined(Bytes(32, 0x11), Bytes(1, 0xEE)));
    EXPECT_EQ(printed("delete 00 more"), "");
    EXPECT_EQ(slotat(0).iComponents(), 0);
    EXPECT_EQ(bytesat(0, 64, 65), joined(Bytes(64, 0x11), Bytes(1, 0xEE)));
}

TEST_F(DeleteCommand, TheNumberIsAskedForInTheWordsOfAdd) {
    EXPECT_EQ(unchanged("delete"), "ERROR, what do you want to add?\n");
    EXPECT_EQ(unchanged("delete \"\""), "ERROR, what do you want to add?\n");
    for (const char* word : {"exec", "-1", "0x0", "1x", "*"})
        EXPECT_EQ(unchanged("delete " + std::string(word)), "Please supply the component number to delete\n");
    EXPECT_EQ(printedat(0, "delete") + printedat(0, "delete x"), "");
}

TEST_F(DeleteCommand, MissingComponentsAndSlotsAreRefused) {
    EXPECT_EQ(unchanged("delete 2"), cNoComponent);
    EXPECT_TRUE(isoneerror(unchanged("delete 99999999999")));
    type("rom 7");
    EXPECT_EQ(unchanged("delete 0"), cNoRom);
    type("reset roms");
    EXPECT_EQ(printed("delete 0"), cNoRom);
}

} // namespace
} // namespace vantorel::test
