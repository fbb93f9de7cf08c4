// Components of an analysed image recognised in the other loaded ROMs.

#include "rom/analyse.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

constexpr uint32_t kKnownBase = 0xF80000;
constexpr uint32_t kNewBase = 0xE00000;

ModuleSpec exec() { return {.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024}; }
ModuleSpec dos() { return {.name = "dos.library", .idstring = "dos 40.3 (1.4.93)\r\n", .size = 600}; }
ModuleSpec timer() { return {.name = "timer.device", .idstring = "timer 39.4\r\n", .size = 512, .tag = 20}; }

class CrossMatchTest : public RomTest {
protected:
    // The ROM that the hash library knows; it goes into slot 0.
    BuiltRom known = RomBuilder(8192, kKnownBase).module(exec()).module(dos()).module(timer()).build();

    void load(const BuiltRom& newone) {
        hashes.add(known);
        index();
        loaded(known.image);
        loaded(newone.image);
    }

    // Analyses slot 1 and gives what was said from the cross-ROM step on.
    static std::string analyse(int32_t level = 1) {
        const std::string text = at(level, [] { analyserom(1); });
        const size_t start = text.find("Extra component: Vectors\n");
        return text.substr(text.find('\n', start) + 1);
    }

    static void expectmatched(const Component& component, const BuiltModule& mine,
                              const BuiltModule& theirs) {
        EXPECT_EQ(component.pcName, Text(mine.name));
        EXPECT_EQ(component.iStart, mine.start);
        EXPECT_EQ(component.iFixedStart, mine.start);
        EXPECT_EQ(component.iSize, mine.size);
        EXPECT_EQ(component.iROMTag, mine.romtag());
        EXPECT_EQ(component.ipRelocs, theirs.relocs);
        EXPECT_EQ(component.pcHash, Text(theirs.hash()));
        EXPECT_EQ(component.pcExtract, mine.extract);
        EXPECT_EQ(component.iCRC32, mine.extractcrc);
        EXPECT_EQ(mine.extract, theirs.extract) << "modules that differ cannot test this";
    }
};

TEST_F(CrossMatchTest, ModulesAtOtherPlacesAndBasesAreRecognised) {
    const BuiltRom newone =
        RomBuilder(16384, kNewBase).gap(100).module(timer()).module(exec()).gap(8).module(dos()).build();
    load(newone);
    analyse();
    ASSERT_EQ(slotat(1).iComponents(), 6);
    for (int32_t i = 0; i < 3; ++i) {
        const BuiltModule& mine = newone.modules[static_cast<size_t>(i)];
        expectmatched(componentat(1, i), mine, known.module(mine.name));
    }
    EXPECT_EQ(usedof(1), newone.image) << "an analysis changes no byte";
}

TEST_F(CrossMatchTest, TheConsoleOfAPerfectMatch) {
    // In the known ROM exec is component 1 (behind the header) and starts at 24; here it starts at 124 =
    // 0x7c.
    const BuiltRom newone = RomBuilder(8192, kNewBase).gap(100).module(exec()).build();
    load(newone);
    EXPECT_EQ(analyse(), "Check source 1:0 @0000007c with 0:1 @00000018\n"
                         "Match 1024 of 1024\n"
                         "Perfect match, analysing ROM 1 Component 0 matches ROM 0 Component 1\n"
                         "Match any unknown components by hash alone\n");
}

TEST_F(CrossMatchTest, TheNarrationOfASearch) {
    const BuiltRom newone = RomBuilder(8192, kNewBase).gap(100).module(exec()).build();
    load(newone);
    // "exec 40.10 (15.7.93)" has 20 characters.
    EXPECT_EQ(maskpointers(analyse(2)),
              "Looking for [exec 40.10 (15.7.93)]\n"
              "Looking in ROM 0 - checking against 7 components\n"
              "Checking component 0:0 [(null)] Extract:*\n"
              "Checking component 0:1 [exec 40.10 (15.7.93)] Extract:*\n"
              "12 byte match 20 20\n"
              "Check source 1:0 @0000007c with 0:1 @00000018\n"
              "Match 1024 of 1024\n"
              "Perfect match, analysing ROM 1 Component 0 matches ROM 0 Component 1\n"
              "Match any unknown components by hash alone\n"
              "Skipping complete component 0 exec.library\n"
              "Skipping complete component 1 Checksum\n"
              "Skipping complete component 2 Size\n"
              "Skipping complete component 3 Vectors\n"
              "Seeing if we can allocate the space between component 0 and 1\n");
}

TEST_F(CrossMatchTest, MessagesHaveTheirThresholds) {
    const BuiltRom newone = RomBuilder(8192, kNewBase).module(exec()).build();
    expectthresholds([&] { load(newone); }, [] { analyserom(1); },
                     {{1, "Looking for [exec 40.10 (15.7.93)]\n"},
                      {1, "Looking in ROM 0 - checking against 7 components\n"},
                      {1, "Checking component 0:1 [exec 40.10 (15.7.93)] Extract:"},
                      {1, "12 byte match 20 20\n"},
                      {0, "Check source 1:0 @"},
                      {0, "Match 1024 of 1024\n"},
                      {0, "Perfect match, analysing ROM 1 Component 0 matches ROM 0 Component 1\n"},
                      {0, "Match any unknown components by hash alone\n"},
                      {1, "Skipping complete component 0 exec.library\n"}});
}

TEST_F(CrossMatchTest, OneOtherByteIsNoMatch) {
    // The last long of the module is code without an address, so just that byte differs.
    BuiltRom newone = RomBuilder(8192, kNewBase).module(exec()).build();
    const size_t place = static_cast<size_t>(newone.modules[0].start) + 1020;
    newone.image[place] ^= 0x01;
    load(newone);
    EXPECT_TRUE(has(analyse(), "Match 1023 of 1024\nMatch any unknown"));
    EXPECT_EQ(componentat(1, 0).pcHash, std::nullopt);
    EXPECT_EQ(componentat(1, 0).iStart, newone.modules[0].romtag());
}

TEST_F(CrossMatchTest, TwelveCharactersOfTheIdStringMakeACandidate) {
    // The known one begins with "exec 40.10 (" and a "1": one of these differs behind that, the other before.
    ModuleSpec later = exec();
    later.idstring = "exec 40.10 (25.7.93)\r\n";
    ModuleSpec other = exec();
    other.idstring = "exec 40.10 [15.7.93)\r\n";
    load(RomBuilder(8192, kNewBase).module(later).module(other).build());
    const std::string text = analyse(2);
    EXPECT_EQ(countof(text, "12 byte match "), 1);
    EXPECT_TRUE(has(text, "Check source 1:0 @00000018 with 0:1 @00000018\n"));
    EXPECT_FALSE(has(text, "Perfect match"));
}

TEST_F(CrossMatchTest, ShortIdStringsMustBeEqual) {
    // "timer 39.4" has ten characters.
    ModuleSpec longer = timer();
    longer.idstring = "timer 39.41\r\n";
    load(RomBuilder(8192, kNewBase).module(longer).build());
    EXPECT_FALSE(has(analyse(2), "12 byte match"));
    freshstate();
    load(RomBuilder(8192, kNewBase).module(timer()).build());
    EXPECT_TRUE(has(analyse(2), "12 byte match 10 10\n"));
    EXPECT_EQ(componentat(1, 0).iStart, 24);
}

TEST_F(CrossMatchTest, TheExtractIsAskedForBehindTheLikeness) {
    // Analysed rather than mapped, the other ROM has libraries without extracts.
    loaded(known.image);
    loaded(RomBuilder(8192, kNewBase).module(exec()).build().image);
    silently([] { analyserom(0); });
    const std::string text = analyse(2);
    EXPECT_TRUE(has(text, "12 byte match 20 20\n"));
    EXPECT_TRUE(has(text, "[exec 40.10 (15.7.93)] Extract:(nil)\n"));
    EXPECT_FALSE(has(text, "Check source"));
}

TEST_F(CrossMatchTest, AStartOutsideTheImageIsNoMatch) {
    // In the other ROM 20 bytes come before timer's tag; here its tag stands at 4.
    ModuleSpec early = timer();
    early.tag = 4;
    load(RomBuilder(8192, kNewBase).noheader().module(early).build());
    EXPECT_TRUE(has(analyse(), "Check source 1:0 @fffffff0 with 0:3 @"));
    EXPECT_EQ(componentat(1, 0).iStart, 4);
    EXPECT_FALSE(has(analyse(), "Perfect match"));
}

TEST_F(CrossMatchTest, AModuleCutOffByTheEndOfTheImageIsNoMatch) {
    const BuiltRom whole = RomBuilder(8192, kNewBase).noheader().module(exec()).build();
    load(whole);
    silently([&] { loadromdata(1, part(whole.image, 0, 8192)); });
    slotat(1).pcROM.resize(1023);
    slotat(1).iUsed = 1023;
    const std::string text = at(1, [] { analyserom(1); });
    EXPECT_TRUE(has(text, "Match 1023 of 1024\n")) << text;
    EXPECT_FALSE(has(text, "Perfect match"));
}

TEST_F(CrossMatchTest, SlotsAreTriedInOrderAndTheFirstMatchEndsTheSearch) {
    const BuiltRom newone = RomBuilder(8192, kNewBase).gap(4).module(exec()).build();
    load(newone);
    loaded(known.image);
    const std::string text = analyse(2);
    EXPECT_TRUE(has(text, "Looking in ROM 0 - checking against 7 components\n"));
    EXPECT_FALSE(has(text, "Looking in ROM 1"));
    EXPECT_FALSE(has(text, "Looking in ROM 2")) << "the first match ends the search";
    freshstate();
    index();
    loaded(RomBuilder(4096, kKnownBase).build().image);
    loaded(newone.image);
    loaded(known.image);
    EXPECT_TRUE(has(analyse(), "Perfect match, analysing ROM 1 Component 0 matches ROM 2 Component 1\n"));
}

TEST_F(CrossMatchTest, AFailedCandidateLetsTheSearchGoOn) {
    ModuleSpec varied = exec();
    varied.seed = 99;
    const BuiltRom similar = RomBuilder(8192, kKnownBase).module(varied).build();
    hashes.add(similar);
    hashes.add(known);
    index();
    loaded(similar.image);
    loaded(RomBuilder(8192, kNewBase).module(exec()).build().image);
    loaded(known.image);
    const std::string text = analyse();
    EXPECT_TRUE(has(text, "Check source 1:0 @00000018 with 0:1 @00000018\n"));
    EXPECT_TRUE(has(text, "Perfect match, analysing ROM 1 Component 0 matches ROM 2 Component 1\n"));
}

TEST_F(CrossMatchTest, BlankComponentsAreSkippedInSilence) {
    const BuiltRom newone = RomBuilder(8192, kNewBase).module(exec()).build();
    load(newone);
    slotat(0).psComponents.insert(slotat(0).psComponents.begin(), Component{});
    const std::string text = analyse(2);
    EXPECT_TRUE(has(text, "checking against 8 components\nChecking component 0:1 ["));
}

// Two neighbours that one hash file describes as a single component.
class CoveringTest : public CrossMatchTest {
protected:
    static RomBuilder pair(uint32_t base, int32_t gap) {
        RomBuilder rom(8192, base);
        rom.gap(gap).module(exec()).module(dos());
        return rom;
    }

    // The two first modules of `rom` as one.
    static BuiltModule asone(const BuiltRom& rom) {
        BuiltModule one = rom.modules[0];
        const BuiltModule& second = rom.modules[1];
        one.size = second.end() - one.start;
        for (const int32_t reloc : second.relocs)
            one.relocs.push_back(reloc + second.start - one.start);
        one.extract = Bytes(rom.image.begin() + one.start, rom.image.begin() + second.end());
        for (const int32_t reloc : one.relocs) {
            const uint32_t origin = rom.base + static_cast<uint32_t>(one.start);
            EXPECT_TRUE(putlong(one.extract, reloc, longat(one.extract, reloc).value() - origin));
        }
        one.extractcrc = crc32of(one.extract);
        one.loadable = loadableform(one.extract, one.relocs, one.type);
        one.loadablecrc = crc32of(one.loadable);
        return one;
    }
};

TEST_F(CoveringTest, ComponentsInsideTheMatchedOneAreDeleted) {
    const BuiltRom source = pair(kKnownBase, 0).build();
    const BuiltModule one = asone(source);
    hashes.component(one);
    hashes.rom(source, {.map = {{"exec.library", one.start, one.size, "Library", one.hash()}}});
    index();
    loaded(source.image);
    const BuiltRom newone = pair(kNewBase, 40).build();
    loaded(newone.image);
    const std::string text = analyse(2);
    EXPECT_TRUE(
        has(text, "Deleting redundant/hidden component\nNext component [dos.library] should be deleted\n"));
    ASSERT_EQ(slotat(1).iComponents(), 4);
    EXPECT_EQ(componentat(1, 0).iSize, one.size);
    EXPECT_EQ(componentat(1, 0).pcExtract, one.extract);
    EXPECT_EQ(componentat(1, 1).pcName, Text("Checksum"));
    EXPECT_EQ(usedof(1), newone.image) << "the bytes stay";
}

TEST_F(CoveringTest, TheDeletionIsProgress) {
    const BuiltRom source = pair(kKnownBase, 0).build();
    const BuiltModule one = asone(source);
    hashes.component(one);
    hashes.rom(source, {.map = {{"exec.library", one.start, one.size, "Library", one.hash()}}});
    const BuiltRom newone = pair(kNewBase, 40).build();
    expectthresholds(
        [&] {
            index();
            loaded(source.image);
            loaded(newone.image);
        },
        [] { analyserom(1); },
        {{1, "Deleting redundant/hidden component\n"},
         {1, "Next component [dos.library] should be deleted\n"}});
}

TEST_F(CoveringTest, AComponentThatReachesOutOfTheMatchedOneStays) {
    load(pair(kNewBase, 40).build());
    const std::string text = analyse(2);
    EXPECT_FALSE(has(text, "Deleting"));
    EXPECT_EQ(slotat(1).iComponents(), 5);
}

TEST_F(CrossMatchTest, MoreComparisonsThanRealRomsNeedAreLeftOff) {
    loaded(RomBuilder(8192, kNewBase).module(exec()).build().image);
    silently([] { analyserom(0); });
    silently([] { newrom(64, 0); });
    // Each is alike, and never the same: its extract is shorter than itself.
    Component alike = componentat(0, 0);
    alike.iSize = 8;
    alike.pcExtract = Bytes(1);
    slotat(1).psComponents.assign(512 * 1048576 / 4096 + 1, alike);
    const std::string error = "ERROR: There is too much to compare in other ROMs, leaving off\n";
    EXPECT_EQ(countof(at(1, [] { analyserom(0); }), error), 1);
    EXPECT_FALSE(has(at(0, [] { analyserom(0); }), "ERROR"));
}

} // namespace
} // namespace vantorel::test
