// Components written to files: what stands in each, what is said, and what is refused.

#include "base/settings.h"
#include "component/loadable.h"
#include "component/loadcomponent.h"
#include "component/placement.h"
#include "component/savecomponent.h"
#include "component/slotstate.h"
#include "shell/commands.h"
#include "shell/session.h"
#include "support/hunkbuilder.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace fs = std::filesystem;

namespace vantorel::test {
namespace {

constexpr int32_t iEach = -1;
constexpr const char* cNoRelocs = "No relocs? this is probably an error as ROMTAG needs them\n";

// What the fixture's components must be in a file.
const Bytes libraryform =
    longs({1011, 0, 1, 0, 0, 2, 1001, 2, 0, 0x4E714E75, 1015, 0x00010000, 0x00000000, 1010});
const Bytes dataform = longs({1011, 0, 1, 0, 0, 1, 1002, 1, 0x12345678, 1010});
const Bytes rawform = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE};

std::string line(int32_t number, const std::string& what, const std::string& path) {
    return "Saving component=" + std::to_string(number) + " (" + what + " relocs) from ROM 0 to file " +
           path + "\n";
}

// In a working directory of its own: a slot of 64 bytes at 0xF80000 with a library, a data block and five
// bytes of another type.
class SaveComponentTest : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        make();
    }

    static void make() {
        slotwith(64, {{32, 8}, {40, 4}, {44, 5}}, 0xF80000);
        std::ranges::copy(longs({0x00F80020, 0x4E714E75, 0x12345678}), slotat(0).pcROM.begin() + 32);
        name(library(), "some.library", "0x11111111.some", "Library");
        name(componentat(0, 1), "block", "0x22222222.block", "Data");
        name(componentat(0, 2), "rest", "0x33333333.rest", "Unknown");
        library().ipRelocs = {0};
        library().pcExtract = longs({0, 0x4E714E75});
        componentat(0, 1).pcExtract = longs({0x12345678});
        iCurrentROM = 0;
    }

    static Component& library() { return componentat(0, 0); }

    static std::string save(int32_t number, const std::string& file, int32_t level = 1) {
        return at(level, [&] { savecomponent(0, number, file); });
    }

    // The names of what is in the working directory, sorted.
    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory.path()))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

private:
    static void name(Component& component, const char* text, const char* hash, const char* type) {
        component.pcName = text;
        component.pcHash = hash;
        component.pcType = type;
    }
};

TEST_F(SaveComponentTest, ALibraryIsAHunkFileOfOneCodeHunk) {
    EXPECT_EQ(save(0, "out", 2),
              line(0, "some.library,1", "out") + "Writing 1 relocs to a HUNK_DREL32 hunk\n");
    EXPECT_EQ(directory.bytes("out"), libraryform);
}

TEST_F(SaveComponentTest, DataWithoutRelocsAreToldOf) {
    EXPECT_EQ(save(1, "out"), line(1, "block,0", "out") + cNoRelocs);
    EXPECT_EQ(directory.bytes("out"), dataform);
}

TEST_F(SaveComponentTest, EveryOtherTypeIsItsBytesOfTheImage) {
    for (const char* type :
         {"Unknown", "Kickity-Split", "Checksum", "Size", "Vectors", "ROMHeader", "library"}) {
        componentat(0, 2).pcType = type;
        componentat(0, 2).pcExtract = Bytes(5, 1);
        componentat(0, 2).ipRelocs = {0};
        EXPECT_EQ(save(2, "out", 2), line(2, "rest,1", "out") + "Saving RAW 5 bytes\n");
        EXPECT_EQ(directory.bytes("out"), rawform) << type;
    }
    componentat(0, 2).pcType.reset();
    save(2, "untyped");
    EXPECT_EQ(directory.bytes("untyped"), rawform);
}

TEST_F(SaveComponentTest, LargeOnesHaveTheirRelocsInLongs) {
    slotat(0).pcROM.resize(70000);
    library().iStart = 0;
    for (const auto& [size, kind] :
         std::vector<std::pair<int32_t, std::string>>{{65532, "DREL32"}, {65536, "RELOC32"}}) {
        library().iSize = size;
        library().pcExtract = Bytes(static_cast<size_t>(size));
        EXPECT_EQ(save(0, "out", 2),
                  line(0, "some.library,1", "out") + "Writing 1 relocs to a HUNK_" + kind + " hunk\n");
        const Bytes file = directory.bytes("out");
        EXPECT_EQ(file, loadablelibraryform(library()));
        EXPECT_EQ(longat(file, 32 + size), size < 65536 ? 1015u : 1004u);
    }
}

TEST_F(SaveComponentTest, WithoutANameItGoesToItsHashBelowTheSaveDirectory) {
    EXPECT_EQ(save(0, ""), line(0, "some.library,1", "0x11111111.some"));
    EXPECT_EQ(directory.bytes("0x11111111.some"), libraryform);
    cSaveDir = directory.folder("sub") + "/";
    EXPECT_EQ(save(0, ""), line(0, "some.library,1", cSaveDir + "0x11111111.some"));
    EXPECT_EQ(save(1, "named"), line(1, "block,0", cSaveDir + "named") + cNoRelocs);
    EXPECT_EQ(directory.bytes("sub/0x11111111.some"), libraryform);
    EXPECT_EQ(directory.bytes("sub/named"), dataform);
}

TEST_F(SaveComponentTest, AllGoEachToItsOwnFile) {
    EXPECT_EQ(save(iEach, ""), line(0, "some.library,1", "0x11111111.some") +
                                   line(1, "block,0", "0x22222222.block") + cNoRelocs +
                                   line(2, "rest,0", "0x33333333.rest"));
    EXPECT_EQ(directory.bytes("0x11111111.some"), libraryform);
    EXPECT_EQ(directory.bytes("0x22222222.block"), dataform);
    EXPECT_EQ(directory.bytes("0x33333333.rest"), rawform);
}

TEST_F(SaveComponentTest, AllToOneNameLeaveTheLast) {
    EXPECT_EQ(countof(save(iEach, "out"), " to file out\n"), 3);
    EXPECT_EQ(directory.bytes("out"), rawform);
    EXPECT_EQ(files(), std::vector<std::string>{"out"});
}

TEST_F(SaveComponentTest, AnOlderFileIsEmptiedAndANewOneMayBeRun) {
    directory.file("out", Bytes(10000, 1));
    save(0, "out");
    EXPECT_EQ(directory.bytes("out"), libraryform);
    const mode_t former = ::umask(0);
    save(0, "new");
    ::umask(former);
    struct stat status {};
    ASSERT_EQ(::stat("new", &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0755u);
}

TEST_F(SaveComponentTest, WhatIsSavedLoadsAgain) {
    Noise noise(5);
    slotat(0).pcROM.resize(200000);
    for (int round = 0; round < 40; ++round) {
        Component& component = library();
        component.iStart = static_cast<int32_t>(noise() % 100000);
        component.iSize = static_cast<int32_t>(noise() % 17501) * 4 + 4;
        component.pcExtract = noisebytes(component.iSize, noise());
        component.ipRelocs.clear();
        for (uint32_t left = noise() % 100; left > 0; --left)
            component.ipRelocs.push_back(
                static_cast<int32_t>(noise() % static_cast<uint32_t>(component.iSize - 3)));
        save(0, "out", 0);
        Component back;
        silently([&] { EXPECT_EQ(loadcomponent("out", "", back), 0); });
        EXPECT_EQ(back.pcExtract, component.pcExtract);
        std::vector<int32_t> relocs = component.ipRelocs;
        std::ranges::sort(relocs);
        EXPECT_EQ(back.ipRelocs, relocs);
    }
}

TEST_F(SaveComponentTest, TheFileIsWhatNamesTheComponent) {
    const BuiltRom standard = standardrom();
    const int32_t rom = loaded(standard.image);
    for (const BuiltModule& module : standard.modules) {
        Component component = componenton({module.start, module.size});
        component.pcType = module.type;
        component.ipRelocs = module.relocs;
        slotat(rom).iROMBase = standard.base;
        slotat(rom).psComponents = {component};
        silently([&] { savecomponent(rom, 0, "out"); });
        EXPECT_EQ(directory.bytes("out"), module.loadable) << module.name;
        Bytes buffer;
        uint32_t crc = 0;
        EXPECT_EQ(loadedlib2loadablelib(rom, 0, buffer, crc), std::ssize(module.loadable));
        EXPECT_EQ(crc, module.loadablecrc);
    }
}

// ---- Extracts

TEST_F(SaveComponentTest, AnAbsentOrShortExtractIsBuiltAnew) {
    for (const std::optional<Bytes>& extract :
         {std::optional<Bytes>(), std::optional(Bytes(7, 0x55)), std::optional(Bytes())}) {
        library().pcExtract = extract;
        save(0, "out");
        EXPECT_EQ(directory.bytes("out"), libraryform);
        EXPECT_EQ(library().pcExtract, longs({0, 0x4E714E75}));
    }
}

TEST_F(SaveComponentTest, ALongOrStaleExtractIsUsedUpToTheSize) {
    library().pcExtract = longs({0, 0x4E714E75, 7});
    save(0, "out");
    EXPECT_EQ(directory.bytes("out"), libraryform);
    library().pcExtract = longs({5, 6});
    save(0, "out");
    EXPECT_EQ(Bytes(directory.bytes("out")).at(35), 5) << "the image is not asked";
}

TEST_F(SaveComponentTest, RelocsOutsideTheComponentAreLeftOutWithALineEach) {
    library().ipRelocs = {0, 4, 5};
    silently([] { editcomponentend(0, 0, 36); });
    const std::string console = save(0, "out");
    EXPECT_TRUE(has(console, "ERROR: Reloc 4 is outside its component\n")) << console;
    EXPECT_TRUE(has(console, "ERROR: Reloc 5 is outside its component\n")) << console;
    EXPECT_EQ(countof(console, "ERROR"), 2);
    EXPECT_EQ(directory.bytes("out"), longs({1011, 0, 1, 0, 0, 1, 1001, 1, 0, 1015, 0x00010000, 0, 1010}));
}

TEST_F(SaveComponentTest, RelocsBehindAShortenedComponentDoNotComeBackAsOthers) {
    // As a word, 65540 would be 4.
    slotat(0).pcROM.resize(80000);
    library().iStart = 0;
    library().iSize = 70000;
    library().pcExtract = Bytes(70000);
    library().ipRelocs = {8, 65540};
    silently([] { editcomponentend(0, 0, 60000); });
    EXPECT_EQ(countof(save(0, "out"), "ERROR: Reloc 65540 is outside its component\n"), 1);
    const Bytes file = directory.bytes("out");
    EXPECT_EQ(Bytes(file.begin() + 32 + 60000, file.end()), longs({1015, 0x00010000, 0x00080000, 1010}));
}

// ---- Refusals

TEST_F(SaveComponentTest, MissingSlotsAndComponentsAreRefused) {
    for (const int32_t rom : {2, 20, 2147483647, -1, -2})
        for (const int32_t number : {0, iEach})
            EXPECT_EQ(at(1, [&] { savecomponent(rom, number, "out"); }), "ROM out of range\n");
    EXPECT_EQ(at(1, [] { savecomponent(1, 0, "out"); }), "Component out of range or not found\n");
    EXPECT_EQ(at(1, [] { savecomponent(1, iEach, "out"); }), "") << "a ROM without components";
    for (const int32_t number : {3, 2147483647})
        EXPECT_EQ(save(number, "out"), "Component out of range or not found\n");
    EXPECT_TRUE(files().empty());
}

TEST_F(SaveComponentTest, OnlyMinusOneMeansAll) {
    for (const int32_t number : {-2, -2147483647})
        EXPECT_EQ(save(number, "out"), "Component out of range or not found\n");
    EXPECT_TRUE(files().empty());
}

TEST_F(SaveComponentTest, ComponentsOutsideTheirImageAreRefusedAndNothingChanges) {
    directory.file("out", std::string_view("former"));
    for (const char* type : {"Library", "Data", "Unknown"})
        for (const auto& [start, end] : std::vector<std::pair<uint32_t, uint32_t>>{
                 {60, 65}, {65, 65}, {40, 32}, {static_cast<uint32_t>(-4), 8}, {0, 0x7FFFFFFF}}) {
            library().pcType = type;
            silently([s = start, e = end] {
                editcomponentstart(0, 0, s);
                editcomponentend(0, 0, e);
            });
            const std::string console = expectunchanged(0, [] { savecomponent(0, 0, "out"); });
            EXPECT_EQ(countof(console, "ERROR"), 1) << console;
            EXPECT_EQ(console.find("ERROR"), line(0, "some.library,1", "out").size());
            EXPECT_EQ(countof(console, "\n"), 2);
            EXPECT_EQ(directory.text("out"), "former");
            save(0, "other");
        }
    EXPECT_EQ(files(), std::vector<std::string>{"out"});
}

TEST_F(SaveComponentTest, ARefusedOneDoesNotKeepTheOthers) {
    library().iSize = 100;
    save(iEach, "");
    EXPECT_EQ(files(), (std::vector<std::string>{"0x22222222.block", "0x33333333.rest"}));
}

TEST_F(SaveComponentTest, FilesThatCannotBeMadeAreToldOfAndPassedOver) {
    directory.folder("folder");
    for (const char* path : {"folder", "missing/out", "folder/", "."})
        EXPECT_EQ(save(0, path), line(0, "some.library,1", path) + "Unable to open output file\n");
    directory.folder("0x11111111.some");
    EXPECT_EQ(countof(save(iEach, ""), "Unable to open output file\n"), 1);
    EXPECT_EQ(directory.bytes("0x22222222.block"), dataform);
    EXPECT_EQ(directory.bytes("0x33333333.rest"), rawform);
}

TEST_F(SaveComponentTest, AFullDiskIsToldOf) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "needs /dev/full";
    fs::create_symlink("/dev/full", directory.file("link"));
    for (const std::string path : {"/dev/full", "link"})
        for (const int32_t number : {0, 2}) {
            const std::string console = expectunchanged(0, [&] { savecomponent(0, number, path); });
            EXPECT_TRUE(console.ends_with("\nERROR: failed to write output file " + path + "\n")) << console;
            EXPECT_EQ(countof(console, "ERROR"), 1);
        }
    EXPECT_TRUE(fs::is_symlink(directory.file("link")));
}

TEST_F(SaveComponentTest, PathsAreCutAt1023Characters) {
    const std::string longname(2000, 'x');
    EXPECT_EQ(save(0, longname),
              line(0, "some.library,1", longname.substr(0, 1023)) + "Unable to open output file\n");
    // 511 times "./" and a name of one character are as long as a path may be.
    std::string winding;
    for (int i = 0; i < 511; ++i)
        winding += "./";
    save(0, winding + "fgh");
    EXPECT_EQ(files(), std::vector<std::string>{"f"});
    EXPECT_EQ(directory.bytes("f"), libraryform);
    cSaveDir = winding;
    save(0, "gh");
    EXPECT_EQ(files(), (std::vector<std::string>{"f", "g"}));
}

// ---- Absent texts, blank records

TEST_F(SaveComponentTest, AbsentTextsReadNull) {
    library().pcName.reset();
    library().pcHash.reset();
    EXPECT_EQ(save(0, ""), line(0, "(null),1", "(null)"));
    EXPECT_EQ(directory.bytes("(null)"), libraryform);
}

TEST_F(SaveComponentTest, BlankComponentsArePassedOverInSilence) {
    library() = Component{};
    componentat(0, 1) = Component{};
    EXPECT_EQ(save(iEach, ""), line(2, "rest,0", "0x33333333.rest"));
    EXPECT_EQ(files(), std::vector<std::string>{"0x33333333.rest"});
}

TEST_F(SaveComponentTest, MessagesHaveTheirThresholds) {
    const auto expect = [](int32_t rom, int32_t number, const std::vector<Shown>& texts) {
        expectthresholds(
            make, [=] { savecomponent(rom, number, "out"); }, texts);
    };
    expect(0, 0, {{0, line(0, "some.library,1", "out")}, {1, "Writing 1 relocs to a HUNK_DREL32 hunk\n"}});
    expect(0, 1, {{0, cNoRelocs}});
    expect(0, 2, {{1, "Saving RAW 5 bytes\n"}});
    expect(0, 3, {{0, "Component out of range or not found\n"}});
    expect(2, 0, {{0, "ROM out of range\n"}});
    expectthresholds(make, [] { savecomponent(0, 0, "missing/out"); }, {{0, "Unable to open output file\n"}});
    expectthresholds(make, [] { savecomponent(0, 0, "/dev/full"); },
                     {{0, "ERROR: failed to write output file /dev/full\n"}});
}

// ---- The command

// What a command prints at verbosity 2, behind the line that shows it.
std::string told(const std::string& words) {
    const std::string text = printedat(2, words);
    const std::string echo = "Parsed [" + words + "]\n";
    EXPECT_TRUE(text.starts_with(echo)) << text;
    return text.substr(echo.size());
}

TEST_F(SaveComponentTest, TheCommandSavesByNumberOrNameOrAll) {
    EXPECT_EQ(told("savecomponent 1"),
              "Saving component 1 to savepath\n" + line(1, "block,0", "0x22222222.block") + cNoRelocs);
    EXPECT_EQ(told("savecomponent 2 out"),
              "Saving 0:2 to out\n" + line(2, "rest,0", "out") + "Saving RAW 5 bytes\n");
    EXPECT_EQ(told("savecomponent BLO out"), "Saving 0:1 to out\n" + line(1, "block,0", "out") + cNoRelocs);
    const std::string all = at(2, [] { savecomponent(0, iEach, ""); });
    EXPECT_EQ(told("SaveComponent"), "Saving all components to savepath\n" + all);
    EXPECT_EQ(told("savecomponent block"), "Saving component -1 to savepath\n" + all) << "by the letter";
}

TEST_F(SaveComponentTest, TheCommandSavesAllToOneFileForANameThatNoneHas) {
    const std::string console = told("savecomponent nothing out");
    EXPECT_TRUE(console.starts_with("Saving 0:-1 to out\n" + line(0, "some.library,1", "out"))) << console;
    EXPECT_EQ(directory.bytes("out"), rawform);
}

TEST_F(SaveComponentTest, TheCommandsMessagesHaveTheirThresholds) {
    const auto expect = [](const std::string& words, const std::string& text) {
        expectthresholds(make, [=] { script(words.c_str()); }, {{1, text}});
    };
    expect("savecomponent", "Saving all components to savepath\n");
    expect("savecomponent 0", "Saving component 0 to savepath\n");
    expect("savecomponent 0 out", "Saving 0:0 to out\n");
}

TEST_F(SaveComponentTest, TheCommandRefusesWhatIsNotThere) {
    EXPECT_EQ(printed("savecomponent 3"), "Component out of range or not found\n");
    EXPECT_TRUE(isoneerror(printed("savecomponent 99999999999 out")));
    iCurrentROM = -1;
    EXPECT_EQ(printed("savecomponent"), "ROM out of range\n");
    EXPECT_EQ(printed("savecomponent 0"), "ROM out of range\n");
    EXPECT_EQ(printed("savecomponent block out"), "ERROR, No current ROM\nROM out of range\n");
    EXPECT_TRUE(files().empty());
}

} // namespace
} // namespace vantorel::test
