// RTB files: their bytes worked out by hand, and everything that is said of them.

#include "output/savertb.h"

#include "base/settings.h"
#include "component/slotstate.h"
#include "output/rtbreader.h"

#include <cstdint>
#include <filesystem>

namespace vantorel::test {

namespace {

using Places = std::vector<int32_t>;
using LongPlaces = std::vector<uint32_t>;

constexpr int32_t kSplit = 262144;
constexpr int32_t kSplitPointer = 262148;

class RtbTest : public RomTest {
protected:
    /// Saves slot `rom` as "rom" at verbosity `level` and gives the file. What is said is in `console`.
    Bytes save(int32_t rom, int32_t level = 1) {
        console = at(level, [&] { EXPECT_EQ(savertb(rom, "rom"), 0); });
        return dir.bytes("rom.RTB");
    }

    Rtb saved(int32_t rom) { return readrtb(save(rom)); }

    /// What saving slot `rom` as `name`, which must fail, says at verbosity `level`.
    static std::string failure(int32_t rom, const std::string& name, int32_t level = 1) {
        return at(level, [&] { EXPECT_EQ(savertb(rom, name), 1); });
    }

    /// Puts a long into the image, `fromend` bytes before its end.
    static void putatend(int32_t rom, int32_t fromend, uint32_t value) {
        Bytes& image = slotat(rom).pcROM;
        ASSERT_TRUE(putlong(image, std::ssize(image) - fromend, value));
    }

    /// A component on all of an image of `size` bytes, with these relocs.
    static int32_t romwith(const Places& relocs, int32_t size = 64) {
        const int32_t rom = slotwith(size, {{0, size}}, kBase);
        componentat(rom, 0).ipRelocs = relocs;
        return rom;
    }

    /// A 512K image with a component up to 262144, the Kickity-Split, and a component with these relocs.
    static int32_t splitrom(const Places& upper) {
        const int32_t rom = slotwith(524288, {{0, kSplit}, {kSplit, 8}, {kSplit + 8, 4096}}, kBase);
        componentat(rom, 0).ipRelocs = {50000, 100000, 150000, 200000, 262000};
        componentat(rom, 1).pcType = cTypeKickitySplit;
        componentat(rom, 2).ipRelocs = upper;
        return rom;
    }

    /// A component with the hash file `text`, in an image of 256 bytes that it begins at 128.
    int32_t romwithhash(const std::string& text) const {
        hashes.write("0x1234abcd.module", text);
        index();
        const int32_t rom = slotwith(256, {{128, 64}}, kBase);
        componentat(rom, 0).pcHash = "0x1234abcd.module";
        return rom;
    }

    InDirectory inside{dir};
    std::string console;
};

/// The entries of a stream, and its bytes, the first of which stands at position 7.
struct Stream {
    Places entries;
    Bytes bytes;
};

const std::vector<Stream> cStreams = {
    {{}, {}},
    {{4}, {4}},
    {{1}, {1}},
    {{255}, {0xFF}},
    {{256}, {0, 1, 0}},
    {{300}, {0, 0x01, 0x2C}},
    {{65535}, {0, 0xFF, 0xFF}},
    {{4, 8}, {4, /* even, last */ 0, 0, 0, 4}},
    {{4, 8, 12}, {4, 4, /* odd, last */ 4}},
    {{4, 8, 300}, {4, 4, /* odd */ 0, 0x01, 0x24}},
    {{4, 300}, {4, /* even */ 0, 0, 0x01, 0x28}},
    {{4, 300, 301}, {4, 0, 0, 0x01, 0x28, /* even, last */ 0, 0, 0, 1}},
    {{4, 300, 301, 302}, {4, 0, 0, 0x01, 0x28, 1, /* odd, last */ 1}},
    {{1, 256}, {1, /* even, last */ 0, 0, 0, 0xFF}},
    {{1, 256, 257}, {1, 0xFF, 1}},
    {{300, 600, 604}, {0, 0x01, 0x2C, 0, 0, 0x01, 0x2C, 0, 0, 0, 4}},
    {{255, 511, 512}, {0xFF, 0, 0, 1, 0, 0, 0, 0, 1}},
    {{65535, 131070}, {0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF}},
    // Equal ones are written once.
    {{4, 4}, {4}},
    {{4, 4, 8}, {4, 0, 0, 0, 4}},
    {{300, 300, 300}, {0, 0x01, 0x2C}},
    // Too far apart: the low word, whatever becomes of it.
    {{65536}, {0, 0, 0}},
    {{65540}, {0, 0, 4}},
    {{4, 65540}, {4, 0, 0, 0, 0}},
    {{4, 65800, 65801}, {4, 0, 0, 0x01, 0x04, 0, 0, 0, 1}},
    // Out of order: the low byte of the difference.
    {{12, 8, 20}, {12, 0xFC, 12}},
    {{8, 4}, {8, 0, 0, 0, 0xFC}},
    {{512, 256, 300}, {0, 2, 0, /* -256 */ 0, 44}},
};

} // namespace

TEST(RtbStream, IsAsWorkedOutByHand) {
    for (const Stream& stream : cStreams)
        EXPECT_EQ(rtbstream(stream.entries), stream.bytes) << ::testing::PrintToString(stream.entries);
}

TEST(RtbStream, TracesEachEntryAboveLevelEight) {
    const Places entries = {4, 4, 65539, 131075};
    EXPECT_EQ(at(9, [&] { static_cast<void>(rtbstream(entries)); }),
              "RELOC=4\nRELOC=65539\nRELOC=131075\nLONG (>64k) RELOC=65536\n");
    EXPECT_EQ(at(8, [&] { static_cast<void>(rtbstream(entries)); }), "");
}

TEST_F(RtbTest, AWholeFileIsAsWorkedOutByHand) {
    const int32_t rom = slotwith(64, {{8, 16}, {24, 12}}, kBase);
    componentat(rom, 0).ipRelocs = {4, 8};
    componentat(rom, 1).ipRelocs = {0};
    putatend(rom, 24, 0x89ABCDEF);
    EXPECT_EQ(save(rom), (Bytes{0x89, 0xAB, 0xCD, 0xEF, 0,    0,    0,    12, 4, 8, 0,
                                0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0,  0, 0, 0}));
    EXPECT_EQ(console, "All relocs accounted for\nRTB written, 22 bytes\n");
}

TEST_F(RtbTest, ARomWithoutAnythingGives19Bytes) {
    EXPECT_EQ(save(slotwith(64, {{8, 16}}, kBase)),
              (Bytes{0xEE, 0xEE, 0xEE, 0xEE, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}));
    EXPECT_EQ(console, "All relocs accounted for\nRTB written, 19 bytes\n");
}

TEST_F(RtbTest, ABlankRomAtBaseZeroHasAnEndMarker) {
    silently([] { newrom(64, 0); });
    EXPECT_EQ(save(0), (Bytes{0, 0, 0, 0, 0, 0, 0, 36, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}));
}

TEST_F(RtbTest, TheEndMarkerCountsFromTheBaseToTheEndOfTheLastComponentWithRelocs) {
    const int32_t rom = slotwith(128, {{0, 40}, {40, 24}, {64, 8}}, kBase);
    componentat(rom, 0).ipRelocs = {4};
    componentat(rom, 1).ipRelocs = {8};
    for (const uint32_t end : {40U, 72U, 128U, 0U}) {
        putatend(rom, 28, kBase + end);
        EXPECT_EQ(saved(rom).places, (Places{4, 48})) << end;
        EXPECT_EQ(countof(console, "All relocs accounted for\n"), 1);
    }
    putatend(rom, 28, kBase + 64);
    EXPECT_EQ(saved(rom).places, (Places{4, 48, 100}));
    EXPECT_EQ(countof(console, "All relocs accounted for\n"), 1);
}

TEST_F(RtbTest, TheKickitySplitStandsBeforeTheFirstEntryBehindIt) {
    const int32_t rom = splitrom({16, 20});
    const Places expected = {50000, 100000, 150000, 200000, 262000, kSplitPointer, 262168, 262172};
    EXPECT_EQ(saved(rom).places, expected);
    EXPECT_EQ(countof(console, "All relocs accounted for\n"), 1);
    // Wherever the map has it.
    std::swap(componentat(rom, 1), componentat(rom, 2));
    EXPECT_EQ(saved(rom).places, expected);
}

TEST_F(RtbTest, AnEntryOnTheKickitySplitsPointerIsNotBehindIt) {
    const int32_t rom = splitrom({0, 8});
    componentat(rom, 2).iStart = kSplitPointer;
    EXPECT_EQ(saved(rom).places, (Places{50000, 100000, 150000, 200000, 262000, kSplitPointer, 262156}));
    EXPECT_EQ(countof(console, "All relocs accounted for\n"), 1);
    save(rom, 8);
    EXPECT_EQ(countof(console, "Inserting Kickity-Split reloc before component 2 reloc 1\n"), 1);
}

TEST_F(RtbTest, AKickitySplitWithNothingBehindItIsMissed) {
    const int32_t rom = splitrom({});
    EXPECT_EQ(saved(rom).places, (Places{50000, 100000, 150000, 200000, 262000}));
    EXPECT_EQ(console, "Reloc missmatch should have 6, but added 5\nRTB written, 38 bytes\n");
    // The end marker is no entry behind it either.
    putatend(rom, 28, kBase + kSplit);
    save(rom);
    EXPECT_EQ(countof(console, "Reloc missmatch should have 7, but added 6\n"), 1);
}

TEST_F(RtbTest, ASecondKickitySplitIsMissed) {
    const int32_t rom = splitrom({16});
    slotat(rom).psComponents.push_back(componentat(rom, 1));
    EXPECT_EQ(saved(rom).places.size(), 7U);
    EXPECT_EQ(countof(console, "Reloc missmatch should have 8, but added 7\n"), 1);
}

TEST_F(RtbTest, AKickitySplitWithRelocsIsAComponentLikeOthers) {
    const int32_t rom = splitrom({16});
    componentat(rom, 1).ipRelocs = {0};
    EXPECT_EQ(saved(rom).places, (Places{50000, 100000, 150000, 200000, 262000, kSplit, 262168}));
    EXPECT_EQ(countof(console, "All relocs accounted for\n"), 1);
}

TEST_F(RtbTest, ImagesTooSmallForTheEndMarkerAreRefused) {
    for (const int32_t size : {0, 1, 24, 27}) {
        const int32_t rom = slotwith(size, {}, kBase);
        EXPECT_EQ(failure(rom, "rom"), "ERROR, ROM " + std::to_string(rom) +
                                           " is too small for an RTB file (" + std::to_string(size) +
                                           " bytes)\n");
        EXPECT_EQ(failure(rom, "rom", 0), "");
    }
    EXPECT_FALSE(dir.exists("rom.RTB"));
    EXPECT_EQ(save(slotwith(28, {}, kBase)).size(), 19U);
}

TEST_F(RtbTest, ASlotThatDoesNotExistIsSilentlyRefused) {
    for (const int32_t rom : {0, -1, 20})
        EXPECT_EQ(failure(rom, "rom", 10), "");
    const int32_t rom = romwith({4});
    for (const int32_t none : {rom + 1, -1, INT32_MAX})
        EXPECT_EQ(failure(none, "rom", 10), "");
    EXPECT_FALSE(dir.exists("rom.RTB"));
}

TEST_F(RtbTest, TheImagesCrcIsTakenAfresh) {
    const int32_t rom = romwith({4});
    slotat(rom).iCRC32 = 1;
    save(rom);
    EXPECT_EQ(slotat(rom).iCRC32, crc32of(slotat(rom).pcROM));
    // Also when the file cannot be opened.
    slotat(rom).iCRC32 = 1;
    failure(rom, "gone/rom");
    EXPECT_EQ(slotat(rom).iCRC32, crc32of(slotat(rom).pcROM));
}

TEST_F(RtbTest, TheRestOfTheSlotStaysAsItIs) {
    const int32_t rom = romwith({4, 8});
    expectunchanged(rom, [&] { EXPECT_EQ(savertb(rom, "rom"), 0); });
}

TEST_F(RtbTest, AnEmptyNameBecomesCrcAndTitle) {
    const int32_t rom = romwith({4});
    const std::string crc = hex32(crc32of(slotat(rom).pcROM));
    slotat(rom).pcTitle = "Kick 1.3";
    silently([&] { EXPECT_EQ(savertb(rom, ""), 0); });
    EXPECT_EQ(dir.bytes(crc + ".Kick 1.3.RTB"), save(rom));
    slotat(rom).pcTitle.reset();
    silently([&] { EXPECT_EQ(savertb(rom, ""), 0); });
    EXPECT_EQ(dir.bytes(crc + ".(null).RTB"), save(rom));
}

TEST_F(RtbTest, BothKindsOfNamesLieInTheSaveDirectory) {
    const int32_t rom = romwith({4});
    const std::string crc = hex32(crc32of(slotat(rom).pcROM));
    slotat(rom).pcTitle = "Title";
    dir.folder("out");
    cSaveDir = "out/";
    silently([&] { EXPECT_EQ(savertb(rom, "named.rtb"), 0); });
    silently([&] { EXPECT_EQ(savertb(rom, ""), 0); });
    EXPECT_TRUE(dir.exists("out/named.rtb.RTB"));
    EXPECT_TRUE(dir.exists("out/" + crc + ".Title.RTB"));
}

TEST_F(RtbTest, AnOldFileIsReplaced) {
    const int32_t rom = romwith({4});
    const Bytes expected = save(rom);
    dir.file("rom.RTB", Bytes(5000, 1));
    EXPECT_EQ(save(rom), expected);
}

TEST_F(RtbTest, AFileThatCannotBeOpenedIsToldOf) {
    const int32_t rom = romwith({4});
    dir.folder("folder.RTB");
    EXPECT_EQ(failure(rom, "folder", 1), "ERROR: failed to open output file folder.RTB\n");
    EXPECT_EQ(failure(rom, "gone/rom", 5), "ERROR: failed to open output file gone/rom.RTB\n");
    EXPECT_EQ(failure(rom, std::string(2000, 'x')),
              "ERROR: failed to open output file " + std::string(1023, 'x') + "\n");
    EXPECT_EQ(failure(rom, "folder", 0), "");
    slotat(rom).pcTitle = "a/b";
    const std::string crc = hex32(crc32of(slotat(rom).pcROM));
    EXPECT_EQ(failure(rom, ""), "ERROR: failed to open output file " + crc + ".a/b.RTB\n");
}

TEST_F(RtbTest, AFullDiskIsToldOf) {
    const int32_t rom = romwith({4});
    std::filesystem::create_symlink("/dev/full", dir.file("full.RTB"));
    EXPECT_EQ(failure(rom, "full"),
              "All relocs accounted for\nERROR: failed to write output file full.RTB\n");
    EXPECT_EQ(failure(rom, "full", 0), "All relocs accounted for\n");
}

TEST_F(RtbTest, RelocsOutsideTheirComponentAreLeftOut) {
    const int32_t rom = slotwith(128, {{0, 32}, {32, 32}}, kBase);
    componentat(rom, 0).ipRelocs = {-4, 4, 28, 29, 32, INT32_MAX};
    componentat(rom, 1).ipRelocs = {33};
    putatend(rom, 28, kBase + 32);
    EXPECT_EQ(saved(rom).places, (Places{4, 28, 100}));
    std::string expected;
    for (const char* reloc : {"-4", "29", "32", "2147483647", "33"})
        expected += std::string("ERROR: Reloc ") + reloc + " is outside its component\n";
    EXPECT_EQ(console, expected + "All relocs accounted for\nRTB written, 22 bytes\n");
    save(rom, 0);
    EXPECT_EQ(console, "All relocs accounted for\n");
}

TEST_F(RtbTest, ComponentsOutsideTheImageAreLeftOut) {
    const int32_t rom = slotwith(128, {{0, 32}, {100, 32}, {-8, 32}, {64, 32}}, kBase);
    for (Component& component : slotat(rom).psComponents)
        component.ipRelocs = {4};
    EXPECT_EQ(saved(rom).places, (Places{4, 68}));
    EXPECT_EQ(console, "ERROR: Component 1 does not lie in its image\n"
                       "ERROR: Component 2 does not lie in its image\n"
                       "All relocs accounted for\nRTB written, 24 bytes\n");
}

TEST_F(RtbTest, EntriesStayInTheOrderOfTheMap) {
    const int32_t rom = slotwith(128, {{64, 32}, {0, 32}, {96, 32}}, kBase);
    componentat(rom, 0).ipRelocs = {8};
    componentat(rom, 1).ipRelocs = {4, 0};
    componentat(rom, 2).ipRelocs = {2};
    const Bytes file = save(rom);
    // 72, 4, 0 and 98: the differences -68 and -4 by their low bytes.
    EXPECT_EQ(Bytes(file.begin() + 7, file.end() - 12), (Bytes{72, 0xBC, 0xFC, 0, 0, 0, 98}));
    EXPECT_EQ(countof(console, "All relocs accounted for\n"), 1);
}

TEST_F(RtbTest, AnEntryNamedTwiceIsCountedTwiceAndWrittenOnce) {
    const int32_t rom = romwith({4, 4, 8});
    EXPECT_EQ(saved(rom).places, (Places{4, 8}));
    EXPECT_EQ(console, "All relocs accounted for\nRTB written, 24 bytes\n");
    save(rom, 8);
    EXPECT_EQ(countof(console, "Has 3 relocs, total=3\n"), 1);
}

TEST_F(RtbTest, BcplPlacesStandBehindTheStream) {
    const int32_t rom = romwithhash("[RELOC32]\nRELOC=4\n[BCPL]\nRELOC=16        \nRELOC=32\n");
    componentat(rom, 0).ipRelocs = {4};
    Bytes expected = {0xEE, 0xEE, 0xEE, 0xEE, 0, 0, 0, 132, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    for (const uint32_t place : {144U, 160U, 0U, 0U})
        appendlong(expected, place);
    EXPECT_EQ(save(rom), expected);
    // They are not counted.
    EXPECT_EQ(console, "BCPL Reloc=16\nBCPL Reloc=32\nAll relocs accounted for\nRTB written, 20 bytes\n");
    EXPECT_EQ(expected.size(), 32U);
}

TEST_F(RtbTest, EveryLineOfABcplSectionIsTakenFromItsSeventhCharacter) {
    const int32_t rom = romwithhash("[other]\nRELOC=4\n[bcpl]\n12345640x9\n\nRELOC\nRELOC=\nRELOC=-8\n"
                                    "; none 7\r\nRELOC=x\nRELOC=99999999999\n[BCPL]\nRELOC=3\n");
    EXPECT_EQ(saved(rom).bcpl, (LongPlaces{168, 128, 128, 128, 120, 135, 128, 0x8000007F}));
    EXPECT_EQ(console, "BCPL Reloc=40\nBCPL Reloc=0\nBCPL Reloc=0\nBCPL Reloc=0\nBCPL Reloc=-8\n"
                       "BCPL Reloc=7\nBCPL Reloc=0\nBCPL Reloc=2147483647\n"
                       "All relocs accounted for\nRTB written, 19 bytes\n");
    save(rom, 0);
    EXPECT_EQ(countof(console, "BCPL Reloc="), 8);
}

TEST_F(RtbTest, ABcplSectionWithoutLinesLeavesTheFileAsItIs) {
    const int32_t rom = romwithhash("[BCPL]\n[RELOC32]\nRELOC=4\n");
    EXPECT_EQ(save(rom, 6).size(), 19U);
    EXPECT_EQ(countof(console, "BCPL relocs found\nBCPL Relocs=0 in section 0 starts at line=1\n"), 1);
    EXPECT_EQ(countof(console, "Writing BCPL relocs\n"), 0);
}

TEST_F(RtbTest, HashFilesThatAreMissingOrTellNothingAddNothing) {
    const int32_t rom = romwithhash("[RELOC32]\nRELOC=4\nBCPL=1\n");
    EXPECT_EQ(save(rom, 6).size(), 19U);
    EXPECT_EQ(countof(console, "Checking 0x1234abcd.module for BCPL relocs\n"), 1);
    componentat(rom, 0).pcHash = "0x00000001.nobody";
    EXPECT_EQ(save(rom).size(), 19U);
    componentat(rom, 0).pcHash.reset();
    EXPECT_EQ(save(rom, 6).size(), 19U);
    EXPECT_EQ(countof(console, "Checking (null) for BCPL relocs\n"), 1);
    EXPECT_EQ(countof(console, "BCPL relocs found\n"), 0);
}

TEST_F(RtbTest, BcplPlacesComeInTheOrderOfTheComponents) {
    hashes.write("0x00000002.b", "[BCPL]\nRELOC=8\nRELOC=4\n");
    const int32_t rom = romwithhash("[BCPL]\nRELOC=12\n");
    slotat(rom).psComponents.insert(slotat(rom).psComponents.begin(), componenton({0, 64}));
    componentat(rom, 0).pcHash = "0x00000002.b";
    index();
    EXPECT_EQ(saved(rom).bcpl, (LongPlaces{8, 4, 140}));
}

TEST_F(RtbTest, BlankComponentsArePassedOverInSilence) {
    const int32_t rom = romwith({4});
    const Bytes expected = save(rom, 10);
    const std::string spoken = console;
    slotat(rom).psComponents.emplace_back();
    EXPECT_EQ(save(rom, 10), expected);
    EXPECT_EQ(console, spoken);
}

TEST_F(RtbTest, EveryLineHasItsThreshold) {
    const auto prepare = [this] {
        const int32_t rom = romwithhash("[Display]\nIcon=1\n[BCPL]\nRELOC=4\n");
        Component relocated = componenton({64, 32});
        relocated.ipRelocs = {0, 4};
        slotat(rom).psComponents.insert(slotat(rom).psComponents.begin(), relocated);
        componentat(rom, 1).ipRelocs = {0};
        putatend(rom, 28, kBase + 192);
    };
    expectthresholds(
        prepare, [] { savertb(0, "rom"); },
        {{kTrace, "Counting relocs, finding last reloc, checking for kickity-split and SK size\n"},
         {kChatty, "Checking component 0\nHas 2 relocs, total=2\nChecking component 1\nHas 1 relocs, "
                   "total=3\nSuperKickstart ROM end recorded in ROM, appears to be correct (x00f800c0)\n"},
         {kChatty, "Adding 2 relocs from component 0\n"},
         {kChatty, "Adding 1 relocs from component 1\n"},
         {kTrace, "Checking c64 for BCPL relocs\n"},
         {kTrace, "Checking 0x1234abcd.module for BCPL relocs\n"},
         {kTrace, "BCPL relocs found\n"},
         {kProgress, "BCPL Relocs=1 in section 1 starts at line=3\n"},
         {kAlways, "BCPL Reloc=4\n"},
         {kChatty, "Adding SuperKickstart, end of components marker 0x000000e4\n"},
         {kAlways, "All relocs accounted for\n"},
         {kDetail, "RELOC=64\nRELOC=68\nRELOC=128\nRELOC=228\n"},
         {kTrace, "Writing BCPL relocs\n"},
         {kResult, "RTB written, 26 bytes\n"}});
}

TEST_F(RtbTest, EveryLineOfTheKickitySplitHasItsThreshold) {
    expectthresholds([] { splitrom({16}); }, [] { savertb(0, "rom"); },
                     {{kChatty, "Checking component 1\nAdding one for Kickity-Split\nChecking component 2\n"},
                      {kChatty, "No SuperKickstart ROM end, ROM says 0xeeeeeeee, should be 0x00fc1008\n"},
                      {kChatty, "Inserting Kickity-Split reloc before component 2 reloc 0\n"},
                      {kAlways, "All relocs accounted for\n"}});
    expectthresholds([] { splitrom({}); }, [] { savertb(0, "rom"); },
                     {{kAlways, "Reloc missmatch should have 6, but added 5\n"}});
}

TEST_F(RtbTest, ComponentOutsideItsImageGivesNoBcplPlacesEither) {
    const int32_t rom = romwithhash("[BCPL]\nRELOC=4\n");
    componentat(rom, 0).iStart = 1000;
    const Rtb file = saved(rom);
    EXPECT_TRUE(file.bcpl.empty());
    EXPECT_EQ(countof(console, "ERROR: Component 0 does not lie in its image\n"), 1);
    EXPECT_EQ(countof(console, "BCPL Reloc="), 0);
}

// Components that name the same large file would make a table out of all proportion.
TEST_F(RtbTest, HashFilesOutOfProportionAreNotReadOverAndOver) {
    // Nine megabytes: the second time is too much, and the third is not even tried.
    const int32_t rom = romwithhash("[BCPL]\nRELOC=4\n[Rest]\n" + std::string(9 << 20, 'x'));
    const Component record = componentat(rom, 0);
    slotat(rom).psComponents.insert(slotat(rom).psComponents.end(), 2, record);
    const Rtb file = saved(rom);
    EXPECT_EQ(file.bcpl.size(), 2U);
    EXPECT_EQ(countof(console, "ERROR: The hash files of this map's components are too large\n"), 1);
}

} // namespace vantorel::test
