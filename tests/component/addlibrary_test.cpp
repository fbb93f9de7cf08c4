// Components brought from files and from the disk image into a ROM.

#include "component/addlibrary.h"

#include "component/placement.h"
#include "component/slotstate.h"
#include "support/diskbuilder.h"

#include <filesystem>

namespace vantorel::test {
namespace {

constexpr uint32_t cBase = 0xFC0000;
constexpr const char* cTemporary = "TEMPFILE.bin";

class AddLibraryTest : public RomTest {
protected:
    // Adds to slot 0, and gives what it says at verbosity 1.
    static std::string add(const std::string& path, const std::string& name = "") {
        return at(1, [&] { addlibrary(0, path, name); });
    }

    // Checks that component `number` of slot 0 is `module`, at `start`.
    static void expectmodule(int32_t number, const BuiltModule& module, int32_t start) {
        ASSERT_LT(number, slotat(0).iComponents());
        const Component& component = componentat(0, number);
        EXPECT_EQ(component.iStart, start) << module.name;
        EXPECT_EQ(component.iSize, module.size);
        EXPECT_EQ(component.ipRelocs, module.relocs);
        EXPECT_EQ(component.pcExtract, module.extract);
        EXPECT_EQ(component.iROMTag, start + module.tag);
        EXPECT_EQ(component.pcLibName, Text(module.name));
        EXPECT_EQ(component.pcLibString, Text(module.idstring));
        const uint32_t address = slotat(0).iROMBase + static_cast<uint32_t>(start);
        EXPECT_EQ(bytesat(0, start, module.size), raised(module.extract, module.relocs, address));
    }

    InDirectory inside{dir};
    const BuiltRom standard = standardrom();
    const BuiltModule& utility = standard.module("utility.library");
    const BuiltModule& keymap = standard.module("keymap.library");
};

TEST_F(AddLibraryTest, AHunkFileBecomesAComponentNamedAfterIt) {
    const std::string path = dir.file("some/keymap", keymap.loadable);
    slotwith(8192, {{0, 96}}, cBase);
    EXPECT_EQ(add(path), "\nPopulating component " + std::to_string(keymap.relocs.size()) + " relocs\n");
    expectmodule(1, keymap, 96);
    EXPECT_EQ(componentat(0, 1).pcName, Text("keymap"));
    EXPECT_EQ(componentat(0, 1).pcHash, Text("keymap"));
    EXPECT_EQ(componentat(0, 1).pcType, Text("Library"));
    EXPECT_EQ(slotat(0).iUsed, 96 + keymap.size);
}

TEST_F(AddLibraryTest, WhatIsNoHunkFileIsDataAsItStands) {
    const Bytes bytes = noisebytes(77, 1);
    slotwith(100);
    EXPECT_EQ(add(dir.file("raw", bytes)), "Populating component 0 relocs\n");
    EXPECT_EQ(bytesat(0, 0, 77), bytes);
    EXPECT_EQ(componentat(0, 0).pcType, Text("Data"));
    EXPECT_EQ(componentat(0, 0).iROMTag, -1);
}

TEST_F(AddLibraryTest, ALibraryOutOfAnotherRomIsMovedToItsNewPlace) {
    hashes.add(standard);
    index();
    slotwith(8192, {{0, 52}}, cBase);
    EXPECT_EQ(add(dir.file("kick.rom", standard.image), "utility.library"), "");
    expectmodule(1, utility, 52);
    EXPECT_EQ(componentat(0, 1).pcName, Text("utility.library"));
    EXPECT_EQ(componentat(0, 1).pcHash, Text(utility.hash()));
}

TEST_F(AddLibraryTest, WhatCannotBeLoadedChangesNothing) {
    slotwith(8192, {{0, 96}}, cBase);
    const std::string text = dir.file("file", std::string("no hash file"));
    EXPECT_EQ(expectunchanged(0, [] { addlibrary(0, "missing", ""); }),
              "ERROR: Unable to open file missing\n");
    EXPECT_EQ(expectunchanged(0, [&] { addlibrary(0, dir.path(), ""); }),
              "ERROR: Unable to open file " + dir.path() + "\n");
    EXPECT_TRUE(isoneerror(expectunchanged(0, [&] { addlibrary(0, text, "some.library"); })));
    Bytes cut = keymap.loadable;
    cut.resize(100);
    const std::string damaged = dir.file("damaged", cut);
    EXPECT_TRUE(isoneerror(expectunchanged(0, [&] { addlibrary(0, damaged, ""); })));
}

TEST_F(AddLibraryTest, WithoutRoomNothingChanges) {
    slotwith(keymap.size + 95, {{0, 96}}, cBase);
    slotat(0).iUsed = 5;
    const std::string path = dir.file("keymap", keymap.loadable);
    EXPECT_TRUE(expectunchanged(0, [&] {
                    addlibrary(0, path, "");
                }).ends_with("relocs\nNot enough space in rom\nNo space in rom\n"));
}

TEST_F(AddLibraryTest, WithoutTheSlotTheFileIsNotLookedAt) {
    slotwith(100);
    for (const int32_t rom : {-1, 1, 20})
        for (const char* name : {"", "x", "*"})
            for (const char* path : {"missing", "ADF:/missing"})
                EXPECT_EQ(expectunchanged(0, [&] { addlibrary(rom, path, name); }),
                          "ERROR, No current ROM\n");
}

class WildcardTest : public AddLibraryTest {
protected:
    void SetUp() override {
        AddLibraryTest::SetUp();
        path = dir.file("kick.rom", standard.image);
        hashes.add(standard);
        index();
    }

    // Makes these lines the component map of the file, behind a description.
    void describe(const std::string& lines) const {
        hashes.write(hex32(standard.crc), "[Description]\nFileType=Kickstart\nROMBase=0x" +
                                              hex32(standard.base).substr(2) + "\n[Components]\n" + lines);
    }

    [[nodiscard]] std::string lineof(const BuiltModule& module, const std::string& key) const {
        return key + "=" + std::to_string(module.start) + "," + std::to_string(module.size) +
               ",Library:" + module.hash() + "\n";
    }

    std::string path;
};

TEST_F(WildcardTest, AStarAloneAddsEveryLibraryInTheOrderOfTheMap) {
    slotwith(256 * 1024, {}, cBase);
    EXPECT_EQ(add(path, "*"), "Wildcard add of component\n"
                              "Adding exec.library by wildcard\n"
                              "Adding expansion.library by wildcard\n"
                              "Adding utility.library by wildcard\n"
                              "Adding graphics.library by wildcard\n"
                              "Adding keymap.library by wildcard\n"
                              "Adding trackdisk.device by wildcard\n"
                              "Adding potgo.resource by wildcard\n"
                              "Adding dos.library by wildcard\n");
    int32_t number = 0;
    int32_t end = 0;
    for (const BuiltModule& module : standard.modules) {
        if (module.type != "Library") continue;
        expectmodule(number++, module, end);
        end += module.size;
    }
    EXPECT_EQ(number, 8);
    EXPECT_EQ(slotat(0).iUsed, end);
}

TEST_F(WildcardTest, APrefixInAnyCaseChooses) {
    slotwith(32768, {}, cBase);
    EXPECT_EQ(add(path, "EX*"), "Wildcard add of component\n"
                                "Adding exec.library by wildcard\n"
                                "Adding expansion.library by wildcard\n");
    EXPECT_EQ(add(path, "utility.library*"),
              "Wildcard add of component\nAdding utility.library by wildcard\n");
    EXPECT_EQ(add(path, "utility.library2*"), "Wildcard add of component\n");
    EXPECT_EQ(add(path, "font*"), "Wildcard add of component\n") << "a data block is no library";
    EXPECT_EQ(add(path, "e*c*"), "Wildcard add of component\n") << "only the last star is one";
    EXPECT_EQ(slotat(0).iComponents(), 3);
}

TEST_F(WildcardTest, EachGoesWhereItFirstFits) {
    const int32_t exec = standard.module("exec.library").size;
    const int32_t expansion = standard.module("expansion.library").size;
    slotwith(65536, {{0, 100}, {100 + expansion, 16}}, cBase);
    add(path, "ex*");
    expectmodule(1, standard.module("expansion.library"), 100);
    expectmodule(3, standard.module("exec.library"), 116 + expansion);
    EXPECT_EQ(slotat(0).iUsed, 116 + expansion + exec);
}

TEST_F(WildcardTest, WhatIsThereAlreadyIsIgnored) {
    slotwith(65536, {}, cBase);
    add(path, "EXEC*");
    componentat(0, 0).pcName = "Exec.Library";
    EXPECT_EQ(add(path, "ex*"), "Wildcard add of component\n"
                                "Ignoring exec.library, already in the ROM\n"
                                "Adding expansion.library by wildcard\n");
    const std::string again = expectunchanged(0, [&] { addlibrary(0, path, "ex*"); });
    EXPECT_EQ(again, "Wildcard add of component\n"
                     "Ignoring exec.library, already in the ROM\n"
                     "Ignoring expansion.library, already in the ROM\n");
}

TEST_F(WildcardTest, OnlyLibrariesWithAnIdStringCountAsThere) {
    slotwith(65536, {{0, 8}}, cBase);
    componentat(0, 0).pcName = "utility.library";
    EXPECT_EQ(add(path, "ut*"), "Wildcard add of component\nAdding utility.library by wildcard\n");
    EXPECT_EQ(slotat(0).iComponents(), 2);
}

TEST_F(WildcardTest, OneThatHasNoRoomDoesNotKeepTheOthersOut) {
    slotwith(4096, {}, cBase);
    EXPECT_EQ(add(path, "ex*"), "Wildcard add of component\n"
                                "Adding exec.library by wildcard\n"
                                "Not enough space in rom\nNo space in rom\n"
                                "Adding expansion.library by wildcard\n");
    expectmodule(0, standard.module("expansion.library"), 0);
}

TEST_F(WildcardTest, LinesThatTellOfNoLibraryAreNoCandidates) {
    const std::string none = "a,Library:\n=1,2,Data:x\n\nb=1,2,library:x\nc=1,2,Device:x\nd=1,2 Library:x\n";
    describe(none + lineof(keymap, "keymap.library"));
    slotwith(65536, {}, cBase);
    const std::string console = at(2, [&] { addlibrary(0, path, "*"); });
    EXPECT_EQ(countof(console, "Candidate ["), 1) << console;
    EXPECT_TRUE(has(console, "Candidate [keymap.library]\n"));
    expectmodule(0, keymap, 0);
}

TEST_F(WildcardTest, ACandidateThatCannotBeLoadedIsToldAndTheRestGoesOn) {
    describe("away.library=600000,100,Library:x\n" + lineof(keymap, "keymap.library"));
    slotwith(65536, {}, cBase);
    const std::string console = add(path, "*");
    EXPECT_TRUE(console.starts_with("Wildcard add of component\nAdding away.library by wildcard\nERROR"));
    EXPECT_TRUE(console.ends_with("ERROR: Couldn't load component away.library\n"
                                  "Adding keymap.library by wildcard\n"));
    EXPECT_EQ(slotat(0).iComponents(), 1);
}

TEST_F(WildcardTest, AMapThatIsTheFirstSectionIsNotSearched) {
    hashes.write(hex32(standard.crc), "[Components]\n" + lineof(keymap, "keymap.library") +
                                          "[Description]\nFileType=Kickstart\nROMBase=0x00f80000\n");
    slotwith(65536, {}, cBase);
    EXPECT_EQ(expectunchanged(0, [&] { addlibrary(0, path, "*"); }), "Wildcard add of component\n");
}

TEST_F(WildcardTest, WithoutAMapNothingIsAdded) {
    hashes.write(hex32(standard.crc), "[Description]\nFileType=Kickstart\n");
    slotwith(65536, {}, cBase);
    EXPECT_EQ(expectunchanged(0, [&] { addlibrary(0, path, "*"); }), "Wildcard add of component\n");
}

TEST_F(WildcardTest, AFileWithoutAHashFileIsRefused) {
    slotwith(65536, {}, cBase);
    const std::string other = dir.file("other", std::string("unknown"));
    EXPECT_EQ(expectunchanged(0, [&] { addlibrary(0, other, "*"); }),
              "Wildcard add of component\nERROR, no hash file for " + other + "\n");
    EXPECT_EQ(expectunchanged(0, [] { addlibrary(0, "missing", "a*"); }),
              "Wildcard add of component\nERROR, no hash file for missing\n");
    EXPECT_EQ(expectunchanged(0, [&] { addlibrary(0, dir.path(), "a*"); }),
              "Wildcard add of component\nERROR, no hash file for " + dir.path() + "\n");
}

TEST_F(WildcardTest, AHashFileThatWentAwayEndsItInSilence) {
    std::filesystem::remove(hashes.path() + "/" + hex32(standard.crc));
    slotwith(65536, {}, cBase);
    const std::string console = at(2, [&] { addlibrary(0, path, "*"); });
    EXPECT_EQ(console, "Wildcard add of component\n");
}

TEST_F(WildcardTest, MessagesHaveTheirThresholds) {
    const std::string crc = hex32(standard.crc);
    const Action prepare = [&] {
        loadhashes(hashes.path());
        slotwith(65536, {}, cBase);
        addlibrary(0, path, "exec*");
    };
    expectthresholds(prepare, [&] { addlibrary(0, path, "ex*"); },
                     {{0, "Wildcard add of component\n"},
                      {9, "CRC32:" + crc + "\n"},
                      {5, "Looking for hash " + crc + " ["},
                      {1, "Hash file found\n"},
                      {1, "Candidate [exec.library]\n"},
                      {1, "Candidate [expansion.library]\n"},
                      {1, "Candidate [dos.library]\n"},
                      {9, "Compare [expansion.library] [ex] "},
                      {9, "Compare [dos.library] [ex] "},
                      {5, "Possibly adding exec.library by wildcard\n"},
                      {5, "Possibly adding expansion.library by wildcard\n"},
                      {0, "Ignoring exec.library, already in the ROM\n"},
                      {5, "comparing exec.library with expansion.library\n"},
                      {0, "Adding expansion.library by wildcard\n"}});
    expectthresholds(prepare, [] { addlibrary(0, "missing", "*"); },
                     {{0, "ERROR, no hash file for missing\n"}});
    describe("away.library=600000,100,Library:x\n");
    expectthresholds(prepare, [&] { addlibrary(0, path, "*"); },
                     {{0, "ERROR: Couldn't load component away.library\n"}});
}

class AddFromDiskTest : public AddLibraryTest {
protected:
    void SetUp() override {
        AddLibraryTest::SetUp();
        DiskBuilder disk(FileSystem::Ffs);
        disk.addfile("Libs/keymap.library", keymap.loadable);
        disk.addfile("raw", noisebytes(600, 9));
        Bytes cut = keymap.loadable;
        cut.resize(100);
        disk.addfile("cut", cut);
        silently([&] { loadadfimage(disk.image()); });
        slotwith(65536, {{0, 96}}, cBase);
    }
};

TEST_F(AddFromDiskTest, AFileOnTheDiskIsAddedAndStaysInTheScratchFile) {
    const std::string relocs = std::to_string(keymap.relocs.size());
    EXPECT_EQ(add("ADF:/Libs/keymap.library"), "\nPopulating component " + relocs + " relocs\n");
    expectmodule(1, keymap, 96);
    EXPECT_EQ(componentat(0, 1).pcName, Text("keymap.library"));
    EXPECT_EQ(componentat(0, 1).pcHash, Text("keymap.library"));
    EXPECT_EQ(dir.bytes(cTemporary), keymap.loadable);
}

TEST_F(AddFromDiskTest, ItIsTakenWholeWhateverComponentIsNamed) {
    for (const char* name : {"exec.library", "ex*", "*"})
        EXPECT_EQ(add("ADF:/raw", name), "Populating component 0 relocs\n");
    ASSERT_EQ(slotat(0).iComponents(), 4);
    for (int32_t number = 1; number < 4; ++number) {
        EXPECT_EQ(componentat(0, number).pcName, Text("raw"));
        EXPECT_EQ(componentat(0, number).pcHash, Text("raw"));
        EXPECT_EQ(componentat(0, number).pcExtract, noisebytes(600, 9));
    }
}

TEST_F(AddFromDiskTest, AnOlderScratchFileIsReplaced) {
    dir.file(cTemporary, Bytes(10000, 1));
    add("ADF:/raw");
    EXPECT_EQ(dir.bytes(cTemporary), noisebytes(600, 9));
}

TEST_F(AddFromDiskTest, AnOlderScratchFileIsNotUsedForAFileThatIsNotThere) {
    dir.file(cTemporary, keymap.loadable);
    for (const std::string path : {"ADF:/missing", "ADF:", "ADF:/Libs", "ADF:/Libs/keymap"})
        EXPECT_EQ(expectunchanged(0, [&] { addlibrary(0, path, ""); }),
                  "ERROR: Unable to open file " + path + "\n");
}

TEST_F(AddFromDiskTest, WithoutADiskThereIsNoSuchFile) {
    freshstate();
    slotwith(100);
    dir.file(cTemporary, keymap.loadable);
    EXPECT_EQ(expectunchanged(0, [] { addlibrary(0, "ADF:/raw", "x"); }),
              "ERROR: Unable to open file ADF:/raw\n");
    EXPECT_EQ(at(0, [] { addlibrary(0, "ADF:/raw", "x"); }), "");
}

TEST_F(AddFromDiskTest, WithoutAScratchFileNothingIsAdded) {
    dir.folder(cTemporary);
    const std::string console = expectunchanged(0, [] { addlibrary(0, "ADF:/raw", ""); });
    EXPECT_TRUE(console.ends_with("ERROR: Unable to open file ADF:/raw\n")) << console;
}

TEST_F(AddFromDiskTest, ADamagedFileOrOneWithoutRoomChangesNothing) {
    EXPECT_TRUE(isoneerror(expectunchanged(0, [] { addlibrary(0, "ADF:/cut", ""); })));
    slotat(0).psComponents = {componenton({0, 65000})};
    EXPECT_EQ(expectunchanged(0, [] { addlibrary(0, "ADF:/raw", ""); }),
              "Populating component 0 relocs\nNot enough space in rom\nNo space in rom\n");
}

TEST_F(AddFromDiskTest, ThePrefixIsInCapitals) {
    EXPECT_EQ(add("adf:/raw"), "ERROR: Unable to open file adf:/raw\n");
    EXPECT_FALSE(dir.exists(cTemporary));
}

} // namespace
} // namespace vantorel::test
