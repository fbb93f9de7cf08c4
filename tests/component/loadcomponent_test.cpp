// Components out of files: whole ones, libraries of other ROMs, members of archives.

#include "component/loadcomponent.h"
#include "rom/romtest.h"
#include "support/hunkbuilder.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace vantorel::test {
namespace {

struct Loaded {
    int result = -1;
    std::string console;
    Component component;
};

Loaded load(const std::string& path, const std::string& name = "", int32_t level = 1) {
    Loaded loaded;
    loaded.console = at(level, [&] { loaded.result = loadcomponent(path, name, loaded.component); });
    return loaded;
}

void expectfailure(const std::string& path, const std::string& name, const std::string& console) {
    const Loaded loaded = load(path, name);
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded.console, console);
    EXPECT_EQ(load(path, name, 0).console, "");
}

class LoadComponentTest : public RomTest {
protected:
    // The path of the hash file that describes `file`.
    [[nodiscard]] std::string hashpath(View file) const { return dir.file("hashes/" + hex32(crc32of(file))); }

    // Writes a file, and the hash file that describes it with these lines in its two sections; both known.
    std::string describe(View file, const std::string& description, const std::string& components) const {
        hashes.write(hex32(crc32of(file)),
                     "[Description]\nTitle=x\n" + description + "\n[Components]\n" + components);
        index();
        return dir.file("file.rom", file);
    }

    void expectthreshold(const Action& prepare, const std::string& path, const std::string& name,
                         const std::vector<Shown>& texts) const {
        expectthresholds(
            [&] {
                prepare();
                loadhashes(hashes.path());
            },
            [&] {
                Component component;
                loadcomponent(path, name, component);
            },
            texts);
    }
};

const Bytes hunkfile = HunkBuilder()
                           .header({.sizes = {2}})
                           .code(longs({0, 0x4E714E75}))
                           .reloc32({{.offsets = {0}}})
                           .end()
                           .bytes();

// ---- Whole files

TEST_F(LoadComponentTest, AWholeHunkFileIsNamedAfterItself) {
    for (const char* name : {"some.library", "sub/folder/other.device"}) {
        const std::string path = dir.file(name, hunkfile);
        const Loaded loaded = load(path);
        EXPECT_EQ(loaded.result, 0);
        EXPECT_EQ(loaded.console, "Populating component 1 relocs\n");
        EXPECT_EQ(loaded.component.pcName, path.substr(path.rfind('/') + 1));
        EXPECT_EQ(loaded.component.pcHash, loaded.component.pcName);
        EXPECT_EQ(loaded.component.pcType, "Library");
        EXPECT_EQ(loaded.component.iSize, 8);
        EXPECT_EQ(loaded.component.pcExtract, longs({0, 0x4E714E75}));
        EXPECT_EQ(loaded.component.ipRelocs, std::vector<int32_t>{0});
        EXPECT_EQ(loaded.component.iCRC32, crc32of(hunkfile));
    }
}

TEST_F(LoadComponentTest, ABackslashEndsAFolderToo) {
    EXPECT_EQ(load(dir.file("folder\\some.library", hunkfile)).component.pcName, "some.library");
}

TEST_F(LoadComponentTest, RawFilesOfEverySizeAreData) {
    for (size_t size = 4; size < 40; ++size) {
        const Bytes bytes(size, 0x55);
        const Loaded loaded = load(dir.file("raw", bytes));
        EXPECT_EQ(loaded.result, 0);
        EXPECT_EQ(loaded.component.pcType, "Data");
        EXPECT_EQ(loaded.component.pcExtract, bytes);
        EXPECT_TRUE(loaded.component.ipRelocs.empty());
    }
}

TEST_F(LoadComponentTest, ABrokenHunkFileIsRefused) {
    const std::string path = dir.file("broken", part(hunkfile, 0, 30));
    expectfailure(path, "", "ERROR: Truncated hunk file at 24 of 30\n");
}

TEST_F(LoadComponentTest, FilesThatCannotBeOpenedAreRefused) {
    for (const std::string& path :
         {dir.file("missing"), dir.folder("folder"), std::string(), dir.file("no/x")})
        for (const char* name : {"", "some.library"})
            expectfailure(path, name, "ERROR: Unable to open file " + path + "\n");
}

TEST_F(LoadComponentTest, AFileLargerThanAnyComponentIsRefusedUnread) {
    const std::string path = dir.file("huge", Bytes{});
    std::filesystem::resize_file(path, uint64_t{1} << 31); // takes no space on the disk
    expectfailure(path, "", "ERROR: Unable to open file " + path + "\n");
}

// ---- Libraries of other ROMs

class LoadFromRomTest : public LoadComponentTest {
protected:
    BuiltRom rom = standardrom();
    const BuiltModule& expansion = rom.module("expansion.library");
    std::string path = dir.file("kick.rom", rom.image);
};

TEST_F(LoadFromRomTest, EveryLibraryComesRelocatedToZero) {
    hashes.add(rom);
    index();
    int libraries = 0;
    for (const BuiltModule& module : rom.modules) {
        if (module.type != "Library") continue;
        ++libraries;
        const Loaded loaded = load(path, module.name);
        EXPECT_EQ(loaded.result, 0);
        EXPECT_EQ(loaded.console, "");
        EXPECT_EQ(loaded.component.pcExtract, module.extract) << module.name;
        EXPECT_EQ(loaded.component.ipRelocs, module.relocs);
        EXPECT_EQ(loaded.component.iSize, module.size);
        EXPECT_EQ(loaded.component.pcType, "Library");
        EXPECT_EQ(loaded.component.pcName, module.name);
        EXPECT_EQ(loaded.component.pcHash, module.hash());
        EXPECT_EQ(loaded.component.iCRC32, 0u) << "nobody sets it on this road";
    }
    EXPECT_GE(libraries, 3);
}

TEST_F(LoadFromRomTest, FileTypesThatBeginWithTheWordsAreRoms) {
    hashes.component(expansion);
    for (const char* type : {"Kickstart", "Kickstart ROM", "KickstartX", "Extended", "Extended/Kickstart"}) {
        hashes.rom(rom, {.filetype = type});
        index();
        EXPECT_EQ(load(path, "expansion.library").component.pcExtract, expansion.extract) << type;
    }
}

TEST_F(LoadFromRomTest, NamesAreFoundInAnyCaseAndKeptAsTyped) {
    hashes.add(rom);
    index();
    const Loaded loaded = load(path, "EXPANSION.library");
    EXPECT_EQ(loaded.component.pcName, "EXPANSION.library");
    EXPECT_EQ(loaded.component.pcExtract, expansion.extract);
}

TEST_F(LoadFromRomTest, WithoutItsOwnHashFileALibraryHasNoRelocs) {
    hashes.rom(rom);
    index();
    const Loaded loaded = load(path, "expansion.library");
    EXPECT_EQ(loaded.result, 0);
    EXPECT_TRUE(loaded.component.ipRelocs.empty());
    const View bytes = rom.bytes(expansion);
    EXPECT_EQ(loaded.component.pcExtract, Bytes(bytes.begin(), bytes.end())) << "as they stand in the ROM";
}

TEST_F(LoadFromRomTest, MessagesHaveTheirThresholds) {
    hashes.add(rom);
    const std::string hash = hashpath(rom.image);
    const int32_t first = expansion.relocs.at(0);
    const uint32_t value = longat(expansion.extract, first).value_or(0);
    expectthreshold([] {}, path, "expansion.library",
                    {{1, "Looking for hash " + hex32(rom.crc) + " found " + hash + "\n"},
                     {1, "Hash file indicates FileType Kickstart\n"},
                     {1, "Extracting expansion.library from " + path + " using " + hash + "\n"},
                     {1, "ROMBase of source ROM=16252928\n"},
                     {5, "Patching reloc#0 offset=" + std::to_string(first) + " [" +
                             std::to_string(static_cast<int32_t>(value)) + "]\n"}});
}

TEST_F(LoadFromRomTest, WhatIsMissingFromTheHashFileIsNamed) {
    expectfailure(path, "x",
                  "ERROR: Component specified, but can't find hash " + hex32(rom.crc) + " for file " + path +
                      "\n");
    hashes.rom(rom, {.rombase = false});
    index();
    expectfailure(path, "expansion.library", "Unable to find ROMBASE in hash file\n");
    hashes.rom(rom);
    index();
    expectfailure(path, "no.library", "Unable to find component in hash file\n");
    expectfailure(path, "Checksum", "ERROR: Can only add a library from another kickstart\n");
    expectfailure(path, "Kickity-Split", "ERROR: Can only add a library from another kickstart\n");
}

TEST_F(LoadFromRomTest, AHashFileThatWentAwayIsUnloadable) {
    hashes.rom(rom);
    index();
    const std::string hash = hashpath(rom.image);
    ASSERT_EQ(std::remove(hash.c_str()), 0);
    expectfailure(path, "expansion.library", "ERROR: Unable to open INI file " + hash + "\n");
}

// A file of 24 bytes as a ROM; its long at 8 holds the address of its byte 12 at the base 0x10000.
class LoadFromSmallRomTest : public LoadComponentTest {
protected:
    const Bytes image = longs({1, 2, 0x1000C, 4, 5, 6});

    std::string described(const std::string& item, const std::string& base = "ROMBase=0x00010000\n") const {
        return describe(image, "FileType=Kickstart\n" + base, item);
    }

    static void expectrefused(const std::string& path) {
        const Loaded loaded = load(path, "x");
        EXPECT_EQ(loaded.result, 1);
        EXPECT_TRUE(loaded.console.starts_with("ERROR")) << loaded.console;
        EXPECT_EQ(countof(loaded.console, "\n"), 1) << loaded.console;
    }
};

TEST_F(LoadFromSmallRomTest, RelocsOutsideTheComponentAreLeftOutWithALineEach) {
    hashes.write("0x12345678", "[RELOC32]\nRELOC=12\nRELOC=0\nRELOC=9\nRELOC=-4\n");
    const Loaded loaded = load(described("x=8,12,Library:0x12345678\n"), "x");
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.component.pcExtract, longs({4, 4, 5})) << "0x1000C less 0x10008";
    EXPECT_EQ(loaded.component.ipRelocs, std::vector<int32_t>{0});
    EXPECT_EQ(loaded.console, "ERROR: Reloc 12 is outside its component\n"
                              "ERROR: Reloc 9 is outside its component\n"
                              "ERROR: Reloc -4 is outside its component\n");
}

TEST_F(LoadFromSmallRomTest, TheBaseIsHexadecimalBehindTwoCharacters) {
    hashes.write("0x12345678", "[RELOC32]\nRELOC=0\n");
    for (const auto& [base, value] : std::vector<std::pair<std::string, uint32_t>>{{"0x00010000", 4},
                                                                                   {"0X00010000", 4},
                                                                                   {"$$10000", 4},
                                                                                   {"0x10008", 0xFFFFFFFC},
                                                                                   {"0x", 0x10004}}) {
        const std::string path = described("x=8,12,Library:0x12345678\n", "ROMBase=" + base + "\n");
        EXPECT_EQ(longat(*load(path, "x").component.pcExtract, 0), value) << base;
    }
    const std::string empty = described("x=8,12,Library:0x12345678\n", "ROMBase=\n");
    EXPECT_EQ(longat(*load(empty, "x").component.pcExtract, 0), 0x10004u);
}

TEST_F(LoadFromSmallRomTest, RangesOutsideTheFileAreRefused) {
    for (const char* range : {"8,17", "24,1", "25,0", "-1,4", "0,-1", "0,25", "2147483647,2147483647",
                              "99999999999,4", "4,99999999999", "-99999999999,4"})
        expectrefused(described("x=" + std::string(range) + ",Library:0x12345678\n"));
    for (const char* range : {"0,24", "20,4", "24,0", "0,0"})
        EXPECT_EQ(load(described("x=" + std::string(range) + ",Library:0x12345678\n"), "x").result, 0)
            << range;
}

TEST_F(LoadFromSmallRomTest, AnItemThatIsNoLibraryIsRefused) {
    for (const char* item : {"x=0,8,Data:0x12345678\n", "x=0,8,Librarian:1\n", "x=0,8,Library\n", "x=0,8,\n",
                             "x=0,8\n", "x=0,8,library:1\n", "x=\n", "x=0\n"})
        expectrefused(described(item));
    expectfailure(described("x=0,8,Data:0x12345678\n"), "x",
                  "ERROR: Can only add a library from another kickstart\n");
    expectfailure(described("x=0,8\n"), "x", "ERROR: Can only add a library from another kickstart\n");
}

TEST_F(LoadFromSmallRomTest, AHashMayBeEmptyOrHoldAnything) {
    EXPECT_EQ(load(described("x=0,8,Library:\n"), "x").component.pcHash, "");
    EXPECT_EQ(load(described("x=0,8,Library:a:b,c\n"), "x").component.pcHash, "a:b,c");
}

// ---- Members of archives

class LoadFromArchiveTest : public LoadComponentTest {
protected:
    [[nodiscard]] std::string described(View file, const std::string& items,
                                        const std::string& type = "Library Archive") const {
        return describe(file, "FileType=" + type + "\n", items);
    }
};

TEST_F(LoadFromArchiveTest, AMemberIsReadAsAHunkFile) {
    const Bytes archive = joined(Bytes(13, 0xEE), hunkfile);
    const std::string items = "some.library=13," + std::to_string(hunkfile.size()) + "\n";
    for (const char* type : {"Library Archive", "Library Archive 2"}) {
        const Loaded loaded = load(described(archive, items, type), "some.library");
        EXPECT_EQ(loaded.result, 0);
        EXPECT_EQ(loaded.console, "Populating component 1 relocs\n");
        EXPECT_EQ(loaded.component.pcName, "some.library");
        EXPECT_EQ(loaded.component.pcHash, "some.library");
        EXPECT_EQ(loaded.component.pcType, "Library");
        EXPECT_EQ(loaded.component.pcExtract, longs({0, 0x4E714E75}));
        EXPECT_EQ(loaded.component.iCRC32, crc32of(hunkfile)) << "of the member";
    }
}

TEST_F(LoadFromArchiveTest, RawMembersAreTakenFromTwiceTheirStart) {
    const Bytes archive = longs({0, 1, 2, 3, 4, 5, 6, 7});
    const Loaded loaded = load(described(archive, "x=8,12,Whatever:y\n"), "x", 2);
    EXPECT_EQ(loaded.component.pcType, "Data");
    EXPECT_EQ(loaded.component.pcExtract, longs({4, 5, 6})) << "16 bytes from the file's start";
    EXPECT_TRUE(has(loaded.console, "Unexpected hunk UNKNOWN HUNK 00000002 at 0 of 12\n"));
    EXPECT_EQ(load(described(archive, "x=0,12\n"), "x").component.pcExtract, longs({0, 1, 2}));
    EXPECT_EQ(load(described(archive, "x=10,12\n"), "x").component.pcExtract, longs({5, 6, 7}));
}

TEST_F(LoadFromArchiveTest, RawMembersThatWouldEndBehindTheFileAreRefused) {
    const Bytes archive = longs({0, 1, 2, 3, 4, 5, 6, 7});
    expectfailure(described(archive, "x=12,12\n"), "x", "ERROR: Truncated hunk file at 0 of 12\n");
    expectfailure(described(archive, "x=20,12\n"), "x", "ERROR: Truncated hunk file at 0 of 12\n");
}

TEST_F(LoadFromArchiveTest, AMemberCutShortIsRefused) {
    expectfailure(described(hunkfile, "x=0,30\n"), "x", "ERROR: Truncated hunk file at 24 of 30\n");
}

TEST_F(LoadFromArchiveTest, RangesOutsideTheFileAreRefused) {
    for (const char* range : {"29,4", "33,0", "-4,4", "0,-4", "0,33", "2147483647,2147483647"}) {
        const Loaded loaded = load(described(Bytes(32, 1), "x=" + std::string(range) + "\n"), "x");
        EXPECT_EQ(loaded.result, 1);
        EXPECT_TRUE(loaded.console.starts_with("ERROR")) << range;
        EXPECT_EQ(countof(loaded.console, "\n"), 1);
    }
    EXPECT_EQ(load(described(Bytes(32, 1), "x=4\n"), "x").result, 1) << "no size at all";
}

TEST_F(LoadFromArchiveTest, AMissingMemberIsNamed) {
    const std::string path = described(hunkfile, "x=0,8\n");
    expectfailure(path, "y",
                  "ERROR: Unable to find component specified (y) in hash file " + hashpath(hunkfile) + "\n");
}

TEST_F(LoadFromArchiveTest, MessagesHaveTheirThresholds) {
    const Bytes archive = joined(hunkfile, longs({7}));
    const std::string length = std::to_string(hunkfile.size());
    const std::string path = described(archive, "x=0," + length + ",a\n");
    expectthreshold([] {}, path, "x",
                    {{1, "Hash file indicates FileType Library Archive\n"},
                     {1, "Component found -> 0," + length + ",a\n"},
                     {1, "Extracting " + length + " bytes from position 0\n"}});
}

TEST_F(LoadFromArchiveTest, OtherFilesHaveNoMembers) {
    for (const char* type : {"Loadable Library", "library archive", "kickstart", "SuperKickstart", ""})
        expectfailure(described(hunkfile, "x=0,8\n", type), "x",
                      "ERROR: Component specified, but unknown FileType in hash file " + hashpath(hunkfile) +
                          "\n");
    expectfailure(describe(hunkfile, "", "x=0,8\n"), "x",
                  "ERROR: Component specified, but hash file " + hashpath(hunkfile) +
                      " doesn't contain FileType=\n");
}

} // namespace
} // namespace vantorel::test
