// What a component's own hash file brings into its map, and how much of it a map may claim.

#include "rom/maptest.h"

namespace vantorel::test {
namespace {

TEST_F(MapTest, ThreeRelocsAndABlankLineAreThreeRelocs) {
    EXPECT_EQ(loadrelocs("RELOC=40        \nRELOC=50\nRELOC=60\n\n", 1), "");
    EXPECT_EQ(componentat(0, 0).ipRelocs, (std::vector<int32_t>{40, 50, 60}));
    freshstate();
    const std::string console = loadrelocs("RELOC=40        \nRELOC=50\nRELOC=60\n\n", 2);
    EXPECT_TRUE(has(console, "Relocs=4 in section 0 starts at line=1\n"));
    EXPECT_TRUE(has(console,
                    "Missing RELOC=, early end of section, abandoning any more relocs, setting reloc count "
                    "to 3\n"));
    EXPECT_TRUE(has(console, "There are 3 relocs\n"));
}

TEST_F(MapTest, TheFirstLineThatIsNoRelocEndsTheList) {
    for (const char* odd : {"reloc=50", " RELOC=50", "RELOC 50", "; remark", ""}) {
        freshstate();
        loadrelocs("RELOC=40\n"s + odd + "\nRELOC=60\n");
        EXPECT_EQ(componentat(0, 0).ipRelocs, std::vector<int32_t>{40}) << odd;
    }
}

TEST_F(MapTest, RelocsOutsideTheComponentAreLeftOutWithAnErrorEach) {
    EXPECT_EQ(
        loadrelocs("RELOC=-1\nRELOC=40\nRELOC=1021\nRELOC=1020\nRELOC=99999999999\nRELOC=-99999999999\n"),
        "ERROR: Reloc -1 is outside its component\n"
        "ERROR: Reloc 1021 is outside its component\n"
        "ERROR: Reloc 2147483647 is outside its component\n"
        "ERROR: Reloc -2147483648 is outside its component\n");
    EXPECT_EQ(componentat(0, 0).ipRelocs, (std::vector<int32_t>{40, 1020}));
}

TEST_F(MapTest, ARelocNamedTwiceCountsTwice) {
    loadrelocs("RELOC=40\nRELOC=40\n");
    const uint32_t absolute = longat(built.image, 24 + 40).value();
    EXPECT_EQ(longat(*componentat(0, 0).pcExtract, 40), absolute - 2 * (0xF80000u + 24));
}

TEST_F(MapTest, AHashFileWithoutRelocSectionFillsInNothingMore) {
    hashes.write("0x0badf00d", "[Description]\nTitle=x\n");
    EXPECT_EQ(loadmap("exec.library=24,1024,Library:0x0badf00d\n"), "No relocs\n");
    const Component& component = componentat(0, 0);
    EXPECT_EQ(component.pcType, Text("Library"));
    EXPECT_EQ(component.pcExtract, std::nullopt);
    EXPECT_EQ(component.pcLibString, std::nullopt);
    EXPECT_EQ(component.iROMTag, -1);
    EXPECT_EQ(component.iCRC32, 0u);
}

TEST_F(MapTest, AnEmptyRelocSectionStillGivesAnExtract) {
    EXPECT_EQ(loadrelocs(""), "");
    const Component& component = componentat(0, 0);
    EXPECT_EQ(component.iRelocs(), 0);
    ASSERT_TRUE(component.pcExtract);
    EXPECT_EQ(*component.pcExtract, Bytes(built.image.begin() + 24, built.image.begin() + 1048));
    EXPECT_EQ(component.iCRC32, crc32of(*component.pcExtract));
    EXPECT_EQ(component.iROMTag, 28);
}

TEST_F(MapTest, OnlyTagsOfTheComponentsRangeAreItsOwn) {
    hashes.write("0x0badf00d", "[RELOC32]\n");
    loadmap("before=0,28,Data:0x0badf00d\nbehind=29,1000,Data:0x0badf00d\n");
    EXPECT_EQ(componentat(0, 0).iROMTag, -1);
    EXPECT_EQ(componentat(0, 1).iROMTag, -1);
    EXPECT_EQ(componentat(0, 1).pcLibName, std::nullopt);
}

TEST_F(MapTest, ATagInAComponentSetsNoBase) {
    hashes.write("0x0badf00d", "[RELOC32]\n");
    load("[Description]\n[Components]\nexec.library=24,1024,Library:0x0badf00d\n");
    EXPECT_EQ(componentat(0, 0).iROMTag, 28);
    EXPECT_EQ(componentat(0, 0).pcLibName, Text("exec.library"));
    EXPECT_EQ(slotat(0).iROMBase, 0u);
}

TEST_F(MapTest, AnEmptyHashFindsTheFirstFileOfBucketZero) {
    hashes.write("0x00anything", "[RELOC32]\nRELOC=44\n");
    ASSERT_NE(built.crc >> 24, 0u) << "the ROM's own file would be in that bucket";
    loadmap("x=0,64,Data:\n");
    EXPECT_EQ(componentat(0, 0).pcHash, Text(""));
    EXPECT_EQ(componentat(0, 0).ipRelocs, std::vector<int32_t>{44});
}

TEST_F(MapTest, AMapOfMoreBytesThanItsImageCouldHoldStopsGrowing) {
    hashes.write("0x0badf00d", "[RELOC32]\n");
    std::string lines;
    for (int i = 0; i < 2000; ++i)
        lines += "x=0,8192,Data:0x0badf00d\n";
    const std::string console = loadmap(lines);
    EXPECT_TRUE(has(console, "ERROR: Component 16 (x) is left out, the map claims too much of its image\n"));
    size_t bytes = 0;
    for (const Component& component : slotat(0).psComponents)
        bytes += component.pcExtract ? component.pcExtract->size() : 0;
    EXPECT_LE(bytes, 100u * 8192) << "memory out of proportion to the files";
}

TEST_F(MapTest, AMapOfMoreLinesThanAnyRomNeedsIsRefused) {
    const auto lines = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += "x=0,0,Data:h\n";
        return text;
    };
    EXPECT_EQ(countof(loadmap(lines(iComponentsMost)), "ERROR"), 0);
    EXPECT_EQ(slotat(0).iComponents(), iComponentsMost);
    EXPECT_TRUE(has(loadmap(lines(iComponentsMost + 1)),
                    "ERROR: A map of 4097 components is more than a ROM can hold\n"));
    EXPECT_EQ(slotat(1).iComponents(), 0);
}

TEST_F(MapTest, ComponentHashFilesOutOfProportionAreNotReadOverAndOver) {
    // Nine megabytes: the second time is too much, and the third is not even tried.
    hashes.write("0x0badf00d", "[RELOC32]\nRELOC=0\n[Rest]\n" + std::string(9 << 20, 'x'));
    const std::string console =
        loadmap("a=0,4,Data:0x0badf00d\nb=4,4,Data:0x0badf00d\nc=8,4,Data:0x0badf00d\n");
    EXPECT_EQ(countof(console, "ERROR: The hash files of this map's components are too large\n"), 1);
    EXPECT_EQ(componentat(0, 0).iRelocs(), 1);
    EXPECT_EQ(componentat(0, 2).iRelocs(), 0);
    EXPECT_FALSE(componentat(0, 2).pcExtract);
}

TEST_F(MapTest, HashFilesCutAtEveryLengthAreSurvived) {
    hashes.add(built);
    const std::string whole = romhash(built);
    index();
    silently([] { newrom(0, 0); });
    for (size_t length = 0; length <= whole.size(); ++length) {
        hashes.write(hex32(built.crc), whole.substr(0, length));
        silently([&] { EXPECT_EQ(loadromdata(0, built.image), 0); });
        expectsoundmap(0);
    }
    EXPECT_EQ(slotat(0).psComponents.size(), built.map.size());
}

TEST_F(MapTest, ComponentHashFilesCutAtEveryLengthAreSurvived) {
    hashes.add(built);
    const std::string whole = componenthash(exec);
    index();
    silently([] { newrom(0, 0); });
    for (size_t length = 0; length <= whole.size(); ++length) {
        hashes.write(exec.hash(), whole.substr(0, length));
        silently([&] { EXPECT_EQ(loadromdata(0, built.image), 0); });
        expectsoundmap(0);
    }
    EXPECT_EQ(componentat(0, 1).pcExtract, exec.extract);
}

} // namespace
} // namespace vantorel::test
