// Hash files written, and the names that components get for them.

#include "hash/writer.h"

#include "base/settings.h"
#include "rom/romtest.h"

#include <cstdint>
#include <filesystem>

namespace vantorel::test {

namespace {

class HashWriter : public RomTest {
protected:
    /// A slot with an image of `size` zeroes.
    static KickstartRom& blankrom(int32_t size = 1024) {
        int32_t rom = -1;
        silently([&] { rom = newrom(size, 0); });
        return slotat(rom);
    }

    /// Appends a component that has relocs, unless they are taken from it.
    static Component& append(KickstartRom& slot, const std::string& name, const std::string& hash) {
        Component& component = slot.psComponents.emplace_back();
        component.pcName = name;
        component.pcType = "Library";
        component.pcHash = hash;
        component.pcLibString = name + " 1.2 (3.4.95)";
        component.iStart = component.iFixedStart = 100;
        component.iSize = 64;
        component.iFixedEnd = 164;
        component.iROMTag = 104;
        component.ipRelocs = {8, 42};
        return component;
    }

    /// A slot with the components "first" and "second", whose hashes are their numbers.
    static KickstartRom& appendnumbered() {
        KickstartRom& slot = blankrom();
        append(slot, "first", "1");
        append(slot, "second", "2");
        return slot;
    }

    /// Slot 0 with the standard ROM and its map.
    void loadstandard() {
        hashes.add(rom);
        index();
        loaded(rom.image);
    }

    [[nodiscard]] const BuiltModule& moduleof(const Component& component) const {
        return rom.module(component.pcName.value());
    }

    const BuiltRom rom = standardrom(262144);
    InDirectory inside{dir};
};

constexpr const char* cDisplay =
    "FileType=Loadable Library\n\n[Display]\nColour=0x555555\nIcon=153\n\n[RELOC32]\n";

std::string romhashsaid(int32_t slot, const std::string& name, int expected) {
    return captured([&] { EXPECT_EQ(saveromhash(slot, name), expected); });
}

std::string saidofhash(int32_t slot, int32_t component, const std::string& name) {
    return captured([&] { savecomponenthash(slot, component, name); });
}

std::string saidofnaming(int32_t slot, int32_t component) {
    return captured([&] { canonisecomponent(slot, component); });
}

} // namespace

TEST_F(HashWriter, ANewRomHasNoTextAndNoBase) {
    blankrom();
    EXPECT_EQ(romhashsaid(0, "out", 0), "");
    EXPECT_EQ(dir.text("out"), "[Description]\nTitle=Unnamed\nText=(null)\nRomBase=0x00000000\n"
                               "FileType=Kickstart\n\n[Components]\n");
}

TEST_F(HashWriter, AComponentHasALineInTheOrderOfTheMap) {
    KickstartRom& slot = blankrom();
    slot.pcTitle = "Title";
    slot.pcText = "A text = with, signs";
    slot.iROMBase = 0xFFF80000;
    append(slot, "exec.library", "0x12345678.exec");
    Component& size = append(slot, "Size", "0x00080000");
    size.pcType = "Size";
    size.iStart = 524268;
    size.iSize = 4;
    EXPECT_EQ(romhashsaid(0, "out", 0), "");
    EXPECT_EQ(dir.text("out"), "[Description]\nTitle=Title\nText=A text = with, signs\nRomBase=0xfff80000\n"
                               "FileType=Kickstart\n\n[Components]\n"
                               "exec.library=100,64,Library:0x12345678.exec\n"
                               "Size=524268,4,Size:0x00080000\n");
}

TEST_F(HashWriter, BlankComponentsHaveNoLineAndAbsentTextsAreNull) {
    KickstartRom& slot = blankrom();
    slot.psComponents.emplace_back();
    append(slot, "x", "").pcHash.reset();
    append(slot, "x", "y").pcName.reset();
    append(slot, "x", "y").pcType.reset();
    slot.psComponents.emplace_back();
    EXPECT_EQ(romhashsaid(0, "out", 0), "");
    const std::string text = dir.text("out");
    EXPECT_EQ(text.substr(text.find("[Components]")), "[Components]\n"
                                                      "x=100,64,Library:(null)\n"
                                                      "(null)=100,64,Library:y\n"
                                                      "x=100,64,(null):y\n");
}

TEST_F(HashWriter, TheRomsCrcIsTakenAnewAndNamesTheFile) {
    KickstartRom& slot = blankrom();
    slot.pcTitle = "A title";
    slot.iCRC32 = 1;
    slot.pcROM[0] = 0x11;
    const std::string name = hex32(crc32of(slot.pcROM)) + ".A title";
    dir.folder("out");
    cSaveDir = "out/";
    EXPECT_EQ(romhashsaid(0, "", 0), "");
    EXPECT_EQ(slot.iCRC32, crc32of(slot.pcROM));
    EXPECT_TRUE(dir.exists("out/" + name));
    slot.pcROM[0] = 0x12;
    EXPECT_EQ(romhashsaid(0, "named", 0), "");
    EXPECT_EQ(slot.iCRC32, crc32of(slot.pcROM));
    EXPECT_TRUE(dir.exists("out/named"));
}

TEST_F(HashWriter, TheCrcCoversTheWholeSlot) {
    KickstartRom& slot = blankrom(100);
    slot.iUsed = 10;
    EXPECT_EQ(romhashsaid(0, "out", 0), "");
    EXPECT_EQ(slot.iCRC32, crc32of(Bytes(100)));
}

TEST_F(HashWriter, SlotsThatDoNotExistFailInSilence) {
    EXPECT_EQ(romhashsaid(0, "out", 1), "");
    blankrom();
    for (const int32_t slot : {-1, 1, INT32_MIN})
        EXPECT_EQ(romhashsaid(slot, "out", 1), "");
    EXPECT_FALSE(dir.exists("out"));
}

TEST_F(HashWriter, ARomHashFileThatFailsIsToldOf) {
    blankrom();
    EXPECT_EQ(romhashsaid(0, "missing/out", 1), "ERROR: failed to open output file missing/out\n");
    std::filesystem::create_symlink("/dev/full", dir.file("full"));
    EXPECT_EQ(romhashsaid(0, "full", 1), "ERROR: failed to write output file full\n");
    const std::string name(2000, 'x');
    EXPECT_EQ(romhashsaid(0, name, 1), "ERROR: failed to open output file " + std::string(1023, 'x') + "\n");
}

TEST_F(HashWriter, PiecesAreCutAt1023Characters) {
    KickstartRom& slot = blankrom();
    slot.pcTitle = std::string(2000, 't');
    append(slot, "n", std::string(2000, 'h'));
    append(slot, std::string(1021, 'n'), "h");
    append(slot, "n", "h");
    EXPECT_EQ(romhashsaid(0, "out", 0), "");
    const std::string head = "[Description]\nTitle=";
    const std::string line = "n=100,64,Library:";
    EXPECT_EQ(dir.text("out"), head + std::string(1023 - head.size(), 't') + "[Components]\n" + line +
                                   std::string(1023 - line.size(), 'h') + std::string(1021, 'n') + "=1" +
                                   line + "h\n");
}

TEST_F(HashWriter, AComponentsFileHasItsTextsAndARelocALine) {
    append(blankrom(), "exec.library", "0x12345678.exec");
    EXPECT_EQ(saidofhash(0, 0, ""), "");
    EXPECT_EQ(dir.text("0x12345678.exec"),
              std::string("[Description]\nTitle=exec.library 1.2 (3.4.95)\nText=exec.library\nSize=64\n"
                          "ROMTAG=4\nRELOCS=2\n") +
                  cDisplay + "RELOC=8         \nRELOC=42        \n");
}

TEST_F(HashWriter, RelocsKeepTheirOrderInTenColumns) {
    constexpr int32_t iLarge = 16 * 1024 * 1024;
    Component& component = append(blankrom(iLarge), "x", "y");
    component.iStart = 0;
    component.iSize = iLarge;
    component.ipRelocs = {12345678, 0, iLarge - 4, 42};
    EXPECT_EQ(saidofhash(0, 0, "out"), "");
    const std::string text = dir.text("out");
    EXPECT_EQ(text.substr(text.find("RELOC=")),
              "RELOC=12345678  \nRELOC=0         \nRELOC=16777212  \nRELOC=42        \n");
}

TEST_F(HashWriter, RelocsOutsideTheComponentAreLeftOut) {
    append(blankrom(), "x", "y").ipRelocs = {-4, 8, 60, 61, 64};
    EXPECT_EQ(saidofhash(0, 0, "out"), "ERROR: Reloc -4 is outside its component\n"
                                       "ERROR: Reloc 61 is outside its component\n"
                                       "ERROR: Reloc 64 is outside its component\n");
    const std::string text = dir.text("out");
    EXPECT_TRUE(has(text, "\nRELOCS=2\n")) << text;
    EXPECT_EQ(text.substr(text.find("RELOC=")), "RELOC=8         \nRELOC=60        \n");
}

TEST_F(HashWriter, WithoutTagAndTextsThereIsNullAndADifference) {
    Component& component = append(blankrom(), "x", "y");
    component.pcName.reset();
    component.pcLibString.reset();
    component.pcHash.reset();
    component.iROMTag = -1;
    EXPECT_EQ(saidofhash(0, 0, ""), "");
    EXPECT_EQ(dir.text("(null)").substr(0, 77),
              "[Description]\nTitle=(null)\nText=(null)\nSize=64\nROMTAG=-101\nRELOCS=2\nFileType=");
}

TEST_F(HashWriter, ALongDescriptionOfAComponentIsCutToo) {
    append(blankrom(), "x", "y").pcLibString = std::string(2000, 't');
    EXPECT_EQ(saidofhash(0, 0, "out"), "");
    const std::string head = "[Description]\nTitle=";
    EXPECT_EQ(dir.text("out"),
              head + std::string(1023 - head.size(), 't') + "RELOC=8         \nRELOC=42        \n");
}

TEST_F(HashWriter, EveryComponentToOneFileLeavesTheLastWithRelocs) {
    KickstartRom& slot = appendnumbered();
    append(slot, "third", "3").ipRelocs.clear();
    slot.psComponents.emplace_back();
    EXPECT_EQ(saidofhash(0, -1, "out"), "No relocs, ignoring\n");
    EXPECT_TRUE(has(dir.text("out"), "Text=second\n"));
    EXPECT_FALSE(has(dir.text("out"), "Text=first\n"));
}

TEST_F(HashWriter, EveryComponentGoesToItsOwnFile) {
    appendnumbered();
    dir.folder("out");
    cSaveDir = "out/";
    EXPECT_EQ(saidofhash(0, -1, ""), "");
    EXPECT_TRUE(has(dir.text("out/1"), "Text=first\n"));
    EXPECT_TRUE(has(dir.text("out/2"), "Text=second\n"));
}

TEST_F(HashWriter, AFileThatFailsDoesNotStopTheOthers) {
    KickstartRom& slot = blankrom();
    append(slot, "first", "missing/1");
    append(slot, "second", "full");
    append(slot, "third", "3");
    std::filesystem::create_symlink("/dev/full", dir.file("full"));
    EXPECT_EQ(saidofhash(0, -1, ""), "Unable to open output file\nERROR: failed to write output file full\n");
    EXPECT_TRUE(dir.exists("3"));
}

TEST_F(HashWriter, SlotsAndComponentsOutOfRangeAreRefused) {
    append(blankrom(), "x", "y");
    for (const int32_t component : {-2, 1, 2147483647})
        EXPECT_EQ(saidofhash(0, component, "out"), "Component out of range or not found\n");
    for (const int32_t slot : {-1, 2, 20})
        EXPECT_EQ(saidofhash(slot, 0, "out"), "ROM out of range\n");
    // One slot beyond counts as a ROM without components.
    EXPECT_EQ(saidofhash(1, 0, "out"), "Component out of range or not found\n");
    EXPECT_EQ(saidofhash(1, -1, "out"), "");
    EXPECT_FALSE(dir.exists("out"));
}

TEST_F(HashWriter, WritesWhatTheLibraryWasLoadedFrom) {
    loadstandard();
    dir.folder("out");
    cSaveDir = "out/";
    EXPECT_EQ(romhashsaid(0, "rom", 0), "");
    EXPECT_EQ(dir.text("out/rom"), romhash(rom));
    silently([] { savecomponenthash(0, -1, ""); });
    for (const BuiltModule& module : rom.modules) {
        if (module.relocs.empty()) continue;
        EXPECT_EQ(dir.text("out/" + module.hash()), componenthash(module));
    }
}

TEST_F(HashWriter, TellsAtItsThresholds) {
    const auto prepare = [] { append(blankrom(), "name", "hash"); };
    expectthresholds(
        prepare, [] { savecomponenthash(0, 0, ""); },
        {{kProgress, "No savefile given, using default hash\nSaving component hash=0 (name,2 relocs) "
                     "from ROM 0 to file hash\n"}});
    expectthresholds(
        prepare, [] { savecomponenthash(0, -1, "out"); },
        {{kProgress, "Savefile given, using out\nSaving component hash=0 (name,2 relocs) from ROM 0 "
                     "to file out\n"}});
    expectthresholds(prepare, [] { savecomponenthash(0, 0, "missing/out"); },
                     {{kResult, "Unable to open output file\n"}});
    expectthresholds(prepare, [] { savecomponenthash(0, 7, ""); },
                     {{kResult, "Component out of range or not found\n"}});
    expectthresholds(prepare, [] { savecomponenthash(7, 0, ""); }, {{kResult, "ROM out of range\n"}});
    expectthresholds(prepare, [] { saveromhash(0, "missing/out"); },
                     {{kResult, "ERROR: failed to open output file missing/out\n"}});
    expectthresholds(
        [&] {
            prepare();
            componentat(0, 0).ipRelocs.clear();
        },
        [] { savecomponenthash(0, 0, ""); },
        {{kProgress, "(name,0 relocs) from ROM 0 to file hash\n"}, {kResult, "No relocs, ignoring\n"}});
}

TEST_F(HashWriter, AComponentWithRelocsIsCalledAfterItsFormAndIdString) {
    loadstandard();
    silently([] { freehashes(); });
    for (Component& component : slotat(0).psComponents)
        component.pcHash = "former";
    EXPECT_EQ(saidofnaming(0, -1), "");
    int named = 0;
    for (const Component& component : slotat(0).psComponents) {
        if (component.ipRelocs.empty()) continue;
        EXPECT_EQ(component.pcHash, moduleof(component).hash());
        ++named;
    }
    EXPECT_GE(named, 8);
}

TEST_F(HashWriter, AFileOfTheLibraryGivesItsNameAsItStands) {
    loadstandard();
    const BuiltModule& exec = rom.module("exec.library");
    std::filesystem::rename(hashes.path() + "/" + exec.hash(),
                            dir.folder("hashes/deeper") + "/" + hex32(exec.loadablecrc) + " old name");
    index();
    EXPECT_EQ(saidofnaming(0, 1), "");
    EXPECT_EQ(componentat(0, 1).pcHash, hex32(exec.loadablecrc) + " old name");
}

TEST_F(HashWriter, BlanksAreReplacedInGeneratedNamesAndNothingElse) {
    loadstandard();
    silently([] { freehashes(); });
    Component& exec = componentat(0, 1);
    exec.pcLibString = " a/b  c\\d\te ";
    EXPECT_EQ(saidofnaming(0, 1), "");
    EXPECT_EQ(exec.pcHash, hex32(rom.module("exec.library").loadablecrc) + "._a/b__c\\d\te_");
    exec.pcLibString.reset();
    EXPECT_EQ(saidofnaming(0, 1), "");
    EXPECT_EQ(exec.pcHash, hex32(rom.module("exec.library").loadablecrc) + ".(null)");
}

TEST_F(HashWriter, WithoutRelocsBothBoundsMakeItComplete) {
    KickstartRom& slot = blankrom();
    slot.iCRC32 = 0x12345678;
    Component& component = append(slot, "exec.library", "former");
    component.ipRelocs.clear();
    component.pcLibString = "exec 40.10 (15.7.93)";
    EXPECT_EQ(saidofnaming(0, 0), "");
    EXPECT_EQ(component.pcHash, "Complete.12345678.exec_40.10_(15.7.93)");
    component.iFixedStart = component.iFixedEnd = 0;
    EXPECT_EQ(saidofnaming(0, 0), "");
    EXPECT_EQ(component.pcHash, "Complete.12345678.exec_40.10_(15.7.93)");
    component.iFixedEnd = -1;
    EXPECT_EQ(saidofnaming(0, 0), "");
    EXPECT_EQ(component.pcHash, "Incomplete.12345678.exec_40.10_(15.7.93)");
    component.iFixedStart = -1;
    component.iFixedEnd = 164;
    slot.iCRC32 = 0xA;
    EXPECT_EQ(saidofnaming(0, 0), "");
    EXPECT_EQ(component.pcHash, "Incomplete.0000000a.exec_40.10_(15.7.93)");
}

TEST_F(HashWriter, WithNeitherTheNameStays) {
    const auto prepare = [] {
        Component& component = append(blankrom(), "font", "former");
        component.ipRelocs.clear();
        component.pcLibString.reset();
    };
    expectthresholds(prepare, [] { canonisecomponent(0, 0); },
                     {{kProgress, "Ignoring component 0, no relocs (and no ROMTAG)\n"}});
    EXPECT_EQ(componentat(0, 0).pcHash, "former");
}

TEST_F(HashWriter, BlankComponentsAreNotNamed) {
    KickstartRom& slot = blankrom();
    slot.psComponents.emplace_back();
    EXPECT_EQ(at(10, [] { canonisecomponent(0, -1); }), "");
    EXPECT_FALSE(slot.psComponents[0].pcHash);
}

TEST_F(HashWriter, AnotherTypeWithRelocsCountsAsCrcZero) {
    Component& component = append(blankrom(), "x", "former");
    component.pcType = "Device";
    EXPECT_EQ(saidofnaming(0, 0), "");
    EXPECT_EQ(component.pcHash, "0x00000000.x_1.2_(3.4.95)");
}

TEST_F(HashWriter, WhatDoesNotLieInItsImageKeepsItsName) {
    Component& component = append(blankrom(), "x", "former");
    component.iSize = 1000;
    EXPECT_EQ(saidofnaming(0, 0), "ERROR: Component 0 does not lie in its image\n");
    EXPECT_EQ(component.pcHash, "former");
}

TEST_F(HashWriter, SlotsAndComponentsOutOfRangeAreNotNamed) {
    KickstartRom& slot = blankrom();
    append(slot, "x", "y");
    append(slot, "x", "y");
    EXPECT_EQ(saidofnaming(0, 2), "Component [2] out of range or not found max=2\n");
    for (const int32_t number : {-1, 2, 20})
        EXPECT_EQ(saidofnaming(number, 0), "ROM out of range\n");
    EXPECT_EQ(saidofnaming(1, 7), "Component [7] out of range or not found max=0\n");
    EXPECT_EQ(saidofnaming(1, -1), "");
}

TEST_F(HashWriter, AnyNegativeNumberMeansEveryComponent) {
    KickstartRom& slot = blankrom();
    append(slot, "x", "former").ipRelocs.clear();
    append(slot, "y", "former").ipRelocs.clear();
    EXPECT_EQ(saidofnaming(0, -7), "");
    EXPECT_EQ(slot.psComponents[0].pcHash, "Complete.00000000.x_1.2_(3.4.95)");
    EXPECT_EQ(slot.psComponents[1].pcHash, "Complete.00000000.y_1.2_(3.4.95)");
}

TEST_F(HashWriter, NamingTellsAtItsThresholds) {
    const BuiltModule& exec = rom.module("exec.library");
    const auto crc = hex32(exec.loadablecrc).substr(2);
    expectthresholds([&] { loadstandard(); }, [] { canonisecomponent(0, 1); },
                     {{kTrace, "Hashing component= 1 exec.library from ROM=0\n"},
                      {kRaw, "CRC:" + crc + "\n"},
                      {kProgress, "Hashfile:" + hashes.path() + "/" + exec.hash() + "\n"}});
    expectthresholds([&] { loadstandard(); }, [] { canonisecomponent(0, 99); },
                     {{kResult, "Component [99] out of range or not found max="}});
    expectthresholds([] {}, [] { canonisecomponent(1, 0); }, {{kResult, "ROM out of range\n"}});
}

} // namespace vantorel::test
