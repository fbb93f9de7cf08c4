// What an image alone tells of its modules and fixed structures.

#include "rom/analyse.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

class IdentifyTest : public RomTest {
protected:
    // Analyses the image in a new slot; what it said at `level`.
    static std::string analyse(View image, int32_t level = 1) {
        const int32_t rom = loaded(image);
        return at(level, [&] { EXPECT_EQ(analyserom(rom), 0); });
    }

    // Two modules: exec at 24 with its tag at 28, dos at 1064 with its tag at 1068.
    static RomBuilder twomodules(int32_t size = 8192) {
        RomBuilder rom(size, kBase);
        rom.module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024});
        rom.gap(16).module({.name = "dos.library", .idstring = "dos 40.3 (1.4.93)\r\n", .size = 512});
        return rom;
    }

    static Bytes longbytes(uint32_t value) {
        Bytes bytes;
        appendlong(bytes, value);
        return bytes;
    }
};

TEST_F(IdentifyTest, EveryTagIsReportedAndCounted) {
    const std::string console = analyse(twomodules().build().image);
    EXPECT_TRUE(has(console, "ROMTAG (0x00f80000) found at 28, skipping to 1048\n"
                             "ROMTAG (0x00f80000) found at 1068, skipping to 1576\n"
                             "There are 2 ROMTAGs\n"))
        << console;
}

TEST_F(IdentifyTest, AnImageWithoutTagsHasOnlyTheVirtualComponentsThatPass) {
    const std::string console = analyse(RomBuilder(4096, kBase).nosize().build().image);
    EXPECT_TRUE(has(console, "There are 0 ROMTAGs\n"));
    ASSERT_EQ(slotat(0).iComponents(), 2);
    EXPECT_EQ(componentat(0, 0).pcName, Text("Checksum"));
    EXPECT_EQ(componentat(0, 1).pcName, Text("Vectors"));
    EXPECT_EQ(slotat(0).iROMBase, 0u);
}

// A tag at 100 whose end-skip, 0xF80008, lies before it, and a good one `distance` bytes behind the first.
Bytes badtagandsecond(uint32_t distance) {
    Bytes tags = {0x4A, 0xFC};
    appendlong(tags, kBase + 100);
    appendlong(tags, kBase + 8);
    tags.resize(distance, 0);
    appendword(tags, 0x4AFC);
    appendlong(tags, kBase + 100 + distance);
    appendlong(tags, kBase + 400);
    RomBuilder rom(4096, kBase);
    return rom.noheader().fill(0).overwrite(100, tags).build().image;
}

TEST_F(IdentifyTest, AnEndSkipBeforeItsTagIsReportedAndTheScanResumes27BytesOn) {
    // The end-skip 0xF80008 less the base is 8; the second tag stands just 27 bytes behind the first.
    const std::string console = analyse(badtagandsecond(27));
    EXPECT_TRUE(has(console,
                    "ROMTAG (0x00f80000) found at 100, has and ENDSKIP (0x00000008) before the ROMTAG, "
                    "possibly bad, skipping 26 bytes\n"
                    "ROMTAG (0x00f80000) found at 127, skipping to 400\n"
                    "There are 2 ROMTAGs\n"))
        << console;
}

TEST_F(IdentifyTest, ATag26BytesBehindABadOneIsNotCounted) {
    EXPECT_TRUE(has(analyse(badtagandsecond(26)), "There are 1 ROMTAGs\n"));
    // The map does hold both: the bad one is raised to 26 bytes, and the next search begins behind them.
    EXPECT_EQ(componentat(0, 0).iROMTag, 100);
    EXPECT_EQ(componentat(0, 1).iROMTag, 126);
    EXPECT_EQ(componentat(0, 1).iSize, 400 - 126);
}

TEST_F(IdentifyTest, AnEndSkipOnItsOwnTagResumesOneByteOn) {
    const std::string console = analyse(twomodules().overwrite(28 + 6, longbytes(kBase + 28)).build().image);
    EXPECT_TRUE(has(console, "ROMTAG (0x00f80000) found at 28, skipping to 28\n"
                             "ROMTAG (0x00f80000) found at 1068, skipping to 1576\n"
                             "There are 2 ROMTAGs\n"))
        << console;
}

TEST_F(IdentifyTest, ALengthBelow26BecomesAComponentOf26Bytes) {
    for (const int32_t length : {-20, 0, 25}) {
        freshstate();
        const uint32_t skip = kBase + 28 + static_cast<uint32_t>(length);
        const std::string console = analyse(twomodules().overwrite(28 + 6, longbytes(skip)).build().image);
        EXPECT_TRUE(has(console, "Negative EndSkip (" + std::to_string(length) + "), setting to 26\n"));
        EXPECT_EQ(componentat(0, 0).iSize, 26);
    }
    freshstate();
    EXPECT_FALSE(
        has(analyse(twomodules().overwrite(34, longbytes(kBase + 28 + 26)).build().image), "Negative"));
    EXPECT_EQ(componentat(0, 0).iSize, 26);
}

TEST_F(IdentifyTest, AnEndSkipBeyondTheImageIsKeptAsTheSize) {
    const std::string console =
        analyse(twomodules().overwrite(28 + 6, longbytes(kBase + 100000)).build().image);
    EXPECT_TRUE(has(console, "found at 28, skipping to 100000\nThere are 1 ROMTAGs\n"));
    EXPECT_EQ(componentat(0, 0).iSize, 100000 - 28);
    EXPECT_EQ(componentat(0, 1).pcName, Text("Checksum"));
}

TEST_F(IdentifyTest, TheFillSearchesOnUntilNothingIsFound) {
    // The last module reaches the end of the image: the search behind it is made all the same.
    const std::string console =
        analyse(twomodules().overwrite(1068 + 6, longbytes(kBase + 8192)).build().image, 6);
    EXPECT_TRUE(has(console, "FINDINGROMTAG from 0 to 8192 in "));
    EXPECT_TRUE(has(console, "FINDINGROMTAG from 1048 to 8192 in "));
    EXPECT_TRUE(has(console, "FINDINGROMTAG from 8192 to 8192 in "));
}

TEST_F(IdentifyTest, EndSkipsOfEveryKindAreSurvived) {
    for (const uint32_t skip : {0u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, kBase - 1, kBase + 0x7FFFFFFF}) {
        freshstate();
        analyse(twomodules().overwrite(28 + 6, longbytes(skip)).build().image, 10);
        EXPECT_GE(slotat(0).iComponents(), 4);
        EXPECT_GE(componentat(0, 0).iSize, 26);
    }
}

TEST_F(IdentifyTest, TheCountIsSilentOnOtherBasesAndTheFillIsNot) {
    Bytes other = {0x4A, 0xFC};
    appendlong(other, 0xE00000 + 2000);
    const std::string console = analyse(twomodules().overwrite(2000, other).build().image);
    EXPECT_EQ(countof(console,
                      "Warning: possible ROMBase mismatch using 00f80000 but detected potential 00e00000 "
                      "use rombase 14680064 to force\n"),
              1);
    EXPECT_GT(console.find("Warning"), console.find("There are 2 ROMTAGs\n"));
}

TEST_F(IdentifyTest, ASlotWithABaseKeepsIt) {
    const BuiltRom rom = twomodules().build();
    loaded(rom.image);
    slotat(0).iROMBase = 0xE00000;
    const std::string console = at(1, [] { analyserom(0); });
    EXPECT_TRUE(has(console, "There are 0 ROMTAGs\n"));
    EXPECT_EQ(slotat(0).iROMBase, 0xE00000u);
}

TEST_F(IdentifyTest, OnlyUsedBytesAreSearched) {
    silently([] { newrom(16384, 0xFF); });
    const BuiltRom rom = twomodules().build();
    silently([&] { loadromdata(0, rom.image); });
    Bytes stale = {0x4A, 0xFC};
    appendlong(stale, kBase + 12000);
    appendlong(stale, kBase + 12100);
    std::ranges::copy(stale, slotat(0).pcROM.begin() + 12000);
    const std::string console = at(1, [] { analyserom(0); });
    EXPECT_TRUE(has(console, "There are 2 ROMTAGs\n"));
    // The size long tells 8192, but the slot has 16384 bytes.
    EXPECT_FALSE(has(console, "Extra component: Size\n"));
    EXPECT_TRUE(has(console, "IntSize=002000, "));
    EXPECT_EQ(slotat(0).iComponents(), 4);
    EXPECT_EQ(componentat(0, 2).iStart, 8192 - 24);
}

TEST_F(IdentifyTest, AModuleComponentIsWhatItsTagTells) {
    analyse(twomodules().build().image);
    const Component& exec = componentat(0, 0);
    EXPECT_EQ(exec.pcName, Text("exec.library"));
    EXPECT_EQ(exec.pcLibName, Text("exec.library"));
    EXPECT_EQ(exec.pcLibString, Text("exec 40.10 (15.7.93)"));
    EXPECT_EQ(exec.pcType, Text("Library"));
    EXPECT_EQ(exec.pcHash, std::nullopt);
    EXPECT_EQ(exec.iStart, 28);
    EXPECT_EQ(exec.iROMTag, 28);
    EXPECT_EQ(exec.iSize, 1020);
    EXPECT_EQ(exec.iFixedStart, -1);
    EXPECT_EQ(exec.iFixedEnd, -1);
    EXPECT_EQ(exec.iRelocs(), 0);
    EXPECT_EQ(exec.pcExtract, std::nullopt);
    EXPECT_EQ(exec.iCRC32, 0u);
}

TEST_F(IdentifyTest, DevicesAndResourcesAreLibrariesToo) {
    analyse(standardrom(262144).image);
    int libraries = 0;
    for (const Component& component : slotat(0).psComponents)
        libraries += component.iROMTag >= 0 ? component.pcType == Text("Library") : 0;
    EXPECT_EQ(libraries, 8) << "every tag of the standard ROM";
}

TEST_F(IdentifyTest, TheChecksumComponent) {
    const BuiltRom rom = twomodules().novectors().nosize().build();
    analyse(rom.image);
    const Component& sum = componentat(0, 2);
    EXPECT_EQ(sum.pcName, Text("Checksum"));
    EXPECT_EQ(sum.pcType, Text("Checksum"));
    EXPECT_EQ(sum.pcHash, Text(hex32(kickstartsum(rom.image))));
    EXPECT_EQ(sum.iStart, 8168);
    EXPECT_EQ(sum.iFixedStart, 8168);
    EXPECT_EQ(sum.iSize, 4);
    EXPECT_EQ(sum.iFixedEnd, -1) << "nothing follows that could confirm it";
    EXPECT_EQ(sum.iROMTag, -1);
    EXPECT_EQ(sum.iRelocs(), 0);
    EXPECT_EQ(sum.pcExtract, std::nullopt);
    EXPECT_EQ(sum.pcLibName, std::nullopt);
    EXPECT_EQ(sum.pcLibString, std::nullopt);
    EXPECT_EQ(sum.iCRC32, 0u);
}

TEST_F(IdentifyTest, TheSizeComponent) {
    analyse(RomBuilder(4096, kBase).nochecksum().novectors().build().image);
    ASSERT_EQ(slotat(0).iComponents(), 1);
    const Component& size = componentat(0, 0);
    EXPECT_EQ(size.pcName, Text("Size"));
    EXPECT_EQ(size.pcType, Text("Size"));
    EXPECT_EQ(size.pcHash, Text("0x00001000"));
    EXPECT_EQ(size.iStart, 4076);
    EXPECT_EQ(size.iFixedStart, 4076);
    EXPECT_EQ(size.iSize, 4);
    EXPECT_EQ(size.iFixedEnd, -1);
    EXPECT_EQ(size.iROMTag, -1);
}

TEST_F(IdentifyTest, TheVectorsComponent) {
    analyse(RomBuilder(4096, kBase).nochecksum().nosize().build().image);
    ASSERT_EQ(slotat(0).iComponents(), 1);
    const Component& vectors = componentat(0, 0);
    EXPECT_EQ(vectors.pcName, Text("Vectors"));
    EXPECT_EQ(vectors.pcType, Text("Vectors"));
    EXPECT_EQ(vectors.pcHash, Text("0x00180019001a001b001c001d001e001f"));
    EXPECT_EQ(vectors.iStart, 4080);
    EXPECT_EQ(vectors.iFixedStart, 4080);
    EXPECT_EQ(vectors.iSize, 16);
    EXPECT_EQ(vectors.iFixedEnd, 4096);
    EXPECT_EQ(vectors.iROMTag, -1);
}

TEST_F(IdentifyTest, TheFirstVectorMayBeDamagedButNoOther) {
    analyse(RomBuilder(4096, kBase).overwrite(4096, Bytes{}).build().image);
    const BuiltRom good = RomBuilder(4096, kBase).build();
    for (int32_t offset = 4080; offset < 4096; ++offset) {
        freshstate();
        Bytes image = good.image;
        image[static_cast<size_t>(offset)] ^= 0x80;
        const bool found = has(analyse(image), "Extra component: Vectors\n");
        EXPECT_EQ(found, offset < 4082) << offset;
    }
}

TEST_F(IdentifyTest, ABadChecksumIsReportedAndNotRepaired) {
    const BuiltRom rom = twomodules().build();
    Bytes image = rom.image;
    image[3000] ^= 1;
    const uint32_t stored = longat(image, 8168).value();
    const std::string console = analyse(image);
    EXPECT_TRUE(
        has(console, formatted("Checksum calculated as %08x but is %08x\n", kickstartsum(image), stored)));
    EXPECT_TRUE(has(console, formatted("IntSize=002000, Checksum=%08x/%08x\n", stored, kickstartsum(image))));
    EXPECT_FALSE(has(console, "Extra component: Checksum\n"));
    EXPECT_EQ(usedof(0), image);
}

class SplitMarkerTest : public IdentifyTest {
protected:
    // A module below the middle and one above, with the marker between.
    static RomBuilder halves() {
        RomBuilder rom = twomodules(524288);
        rom.split().module({.name = "gfx.library", .idstring = "gfx 40.1\r\n", .size = 512, .start = 262152});
        return rom;
    }
};

TEST_F(SplitMarkerTest, GetsAComponentBetweenTheModulesBelowAndAbove) {
    const BuiltRom rom = halves().build();
    const std::string console = analyse(rom.image);
    EXPECT_EQ(countof(console, "Extra component: Kickity-Split\n"), 1);
    const Component& split = componentat(0, 2);
    EXPECT_EQ(componentat(0, 1).pcName, Text("dos.library"));
    EXPECT_EQ(componentat(0, 3).pcName, Text("gfx.library"));
    EXPECT_EQ(split.pcName, Text("Kickity-Split"));
    EXPECT_EQ(split.pcType, Text("Kickity-Split"));
    EXPECT_EQ(split.pcHash, Text("0x11114ef900f80002"));
    EXPECT_EQ(split.iStart, 262144);
    EXPECT_EQ(split.iSize, 8);
    EXPECT_EQ(split.iROMTag, -1);
    EXPECT_EQ(split.iFixedStart, -1);
    EXPECT_EQ(split.iFixedEnd, 262152);
    EXPECT_EQ(split.iRelocs(), 0);
    EXPECT_EQ(split.pcExtract, (Bytes{0x11, 0x11, 0x4E, 0xF9, 0x00, 0xF8, 0x00, 0x02}));
    EXPECT_EQ(split.pcLibName, std::nullopt);
    EXPECT_EQ(split.pcLibString, std::nullopt);
    EXPECT_EQ(split.iCRC32, 0u);
}

TEST_F(SplitMarkerTest, IsInsertedOnceWhateverFollows) {
    RomBuilder rom = halves();
    rom.module({.name = "icon.library", .idstring = "icon 40.1\r\n", .size = 512});
    EXPECT_EQ(countof(analyse(rom.build().image), "Extra component: Kickity-Split\n"), 1);
}

TEST_F(SplitMarkerTest, OwnsItsExtract) {
    analyse(halves().build().image);
    slotat(0).pcROM[262144] = 0;
    EXPECT_EQ(componentat(0, 2).pcExtract->front(), 0x11);
}

TEST_F(SplitMarkerTest, IsNotInsertedWithoutAModuleAbove) {
    const std::string console = analyse(twomodules(524288).split().build().image, 2);
    EXPECT_TRUE(has(console, "Virtual component: Kickity-split\n"));
    EXPECT_TRUE(has(console, "Allocating space for 6 components ("));
    EXPECT_FALSE(has(console, "Extra component: Kickity-Split\n"));
    EXPECT_EQ(slotat(0).iComponents(), 5) << "the map holds what was filled, not what was counted";
}

TEST_F(SplitMarkerTest, NeedsItsFirstFiveBytes) {
    for (int32_t byte = 0; byte < 8; ++byte) {
        freshstate();
        const Bytes damage = {static_cast<uint8_t>(byte == 4 ? 1 : 0xEE)};
        const std::string console = analyse(halves().overwrite(262144 + byte, damage).build().image);
        EXPECT_EQ(has(console, "512k ROM but no Kickity-Split\n"), byte < 5) << byte;
        EXPECT_EQ(has(console, "Extra component: Kickity-Split\n"), byte >= 5) << byte;
    }
}

TEST_F(SplitMarkerTest, IsLookedForIn512KThatBeginWith0x11Alone) {
    EXPECT_FALSE(has(analyse(standardrom(262144).image), "Kickity"));
    EXPECT_FALSE(has(analyse(standardrom(1048576).image), "Kickity"));
    EXPECT_FALSE(has(analyse(halves().header({.ident = 0x1211}).build().image), "Kickity"));
}

TEST_F(IdentifyTest, MessagesHaveTheirThresholds) {
    const BuiltRom good = standardrom(524288);
    const Action analyseit = [] { analyserom(0); };
    expectthresholds(
        [&] { loaded(good.image); }, analyseit,
        {{-1, "Freeing psComponents ["},
         {0, "Analyse  0 ROMBase:"},
         {0, "File size=080000, Ident=1114, "},
         {0, formatted("ROMTAG (0x00f80000) found at %d, skipping to ", good.modules[0].romtag())},
         {0, "There are 8 ROMTAGs\n"},
         {1, "cChecksumData function Calculated="},
         {1, "Virtual component: Kickity-split\n"},
         {1, "Virtual component: Checksum\n"},
         {1, "Virtual component: Size\n"},
         {0, "IntSize=080000, Checksum="},
         {1, "Virtual component: Vectors\n"},
         {1, "Allocating space for 12 components ("},
         {0, "Extra component: Kickity-Split\n"},
         {0, "Extra component: Checksum\n"},
         {0, "Extra component: Size\n"},
         {0, "Extra component: Vectors\n"},
         {0, "Please load additional ROMs or ROM components to compare with\n"},
         {1, "Seeing if we can allocate the space between component 0 and 1\n"}});
    const Bytes backwards = longbytes(kBase + 8);
    const BuiltRom bad = twomodules(524288).nochecksum().overwrite(34, backwards).build();
    expectthresholds([&] { loaded(bad.image); }, analyseit,
                     {{0, "512k ROM but no Kickity-Split\n"},
                      {0, "Checksum calculated as "},
                      {0, "has and ENDSKIP (0x00000008) before the ROMTAG"},
                      {0, "Negative EndSkip (-20), setting to 26\n"}});
}

TEST_F(IdentifyTest, MoreTagsThanAnyRomHasEndTheMap) {
    // One tag behind the other, each leading to the next.
    Bytes image(8);
    for (uint32_t i = 0; i <= static_cast<uint32_t>(iComponentsMost); ++i) {
        const uint32_t tag = 0xF80008 + i * 26;
        appendword(image, 0x4AFC);
        appendlong(image, tag);
        appendlong(image, tag + 26);
        image.resize(image.size() + 16);
    }
    image.resize(image.size() + 64);
    loaded(image);
    const std::string error = "ERROR: More ROMTAGs than a ROM can hold, leaving off at " +
                              std::to_string(8 + iComponentsMost * 26) + "\n";
    EXPECT_TRUE(has(at(1, [] { analyserom(0); }), error));
    EXPECT_EQ(slotat(0).iComponents(), iComponentsMost);
    EXPECT_FALSE(has(at(0, [] { analyserom(0); }), "ERROR"));
}

} // namespace
} // namespace vantorel::test
