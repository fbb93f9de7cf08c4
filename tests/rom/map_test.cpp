// Component maps as hash files tell them.

#include "rom/maptest.h"

namespace vantorel::test {
namespace {

TEST_F(MapTest, TheWholeMapOfAKnownRom) {
    hashes.add(built, {.title = "Kick", .text = "Made for tests"});
    EXPECT_EQ(loadknown(), "");
    const KickstartRom& slot = slotat(0);
    EXPECT_EQ(slot.pcTitle, Text("Kick"));
    EXPECT_EQ(slot.pcText, Text("Made for tests"));
    EXPECT_EQ(slot.iROMBase, 0xF80000u);
    ASSERT_EQ(slot.psComponents.size(), built.map.size());
    for (size_t i = 0; i < built.map.size(); ++i) {
        const Component& component = slot.psComponents[i];
        const MapLine& line = built.map[i];
        EXPECT_EQ(component.pcName, Text(line.name));
        EXPECT_EQ(component.iStart, line.start);
        EXPECT_EQ(component.iFixedStart, line.start);
        EXPECT_EQ(component.iSize, line.size);
        EXPECT_EQ(component.iFixedEnd, line.start + line.size);
        EXPECT_EQ(component.pcType, Text(line.type));
        EXPECT_EQ(component.pcHash, Text(line.hash));
    }
}

TEST_F(MapTest, AComponentWithAHashFileIsKnownWhole) {
    hashes.add(built);
    loadknown();
    const Component& component = componentat(0, 1);
    EXPECT_EQ(component.iROMTag, 28);
    EXPECT_EQ(component.pcLibName, Text("exec.library"));
    EXPECT_EQ(component.pcLibString, Text("exec 40.10 (15.7.93)"));
    EXPECT_EQ(component.ipRelocs, exec.relocs);
    EXPECT_EQ(component.pcExtract, exec.extract);
    EXPECT_EQ(component.iCRC32, exec.extractcrc);
}

TEST_F(MapTest, AComponentWithoutAHashFileIsKeptWithoutRelocs) {
    hashes.rom(built);
    EXPECT_EQ(loadknown(), "") << "the warning is not shown at the usual level";
    const Component& component = componentat(0, 1);
    EXPECT_EQ(component.pcName, Text("exec.library"));
    EXPECT_EQ(component.iROMTag, -1);
    EXPECT_EQ(component.iRelocs(), 0);
    EXPECT_EQ(component.pcExtract, std::nullopt);
    EXPECT_EQ(component.pcLibName, std::nullopt);
    EXPECT_EQ(component.pcLibString, std::nullopt);
    EXPECT_EQ(component.iCRC32, 0u);
}

TEST_F(MapTest, EveryModuleOfTheStandardRomGetsItsExtract) {
    const BuiltRom standard = standardrom();
    hashes.add(standard);
    index();
    loaded(standard.image);
    for (const Component& component : slotat(0).psComponents) {
        if (component.pcType != Text("Library")) continue;
        const BuiltModule& module = standard.module(*component.pcName);
        EXPECT_EQ(component.pcExtract, module.extract) << module.name;
        EXPECT_EQ(component.iCRC32, module.extractcrc);
        EXPECT_EQ(component.ipRelocs, module.relocs);
        EXPECT_EQ(component.iROMTag, module.romtag());
        EXPECT_EQ(component.pcLibString, Text(module.idstring));
    }
}

TEST_F(MapTest, TheNarrationAtLevelTwo) {
    hashes.add(built);
    const std::string sum = hex32(longat(built.image, 8168).value());
    const std::string relocs = std::to_string(exec.relocs.size());
    EXPECT_EQ(loadknown(2), "Load ROMData, look for Hashfile:" + hex32(built.crc) +
                                "\n"
                                "looking for component hash ROMHeader\n"
                                "WARNING, No hash file for component 0 may have unknown relocs\n"
                                "looking for component hash " +
                                exec.hash() +
                                "\n"
                                "Relocs=" +
                                relocs +
                                " in section 2 starts at line=13\n"
                                "Hashing raw component= 1 exec.library (1024 bytes) from ROM=0\n"
                                "There are " +
                                relocs +
                                " relocs\n"
                                "Finding ROMTAG in newly loaded ROM at 24 to 1048\n"
                                "CRC:" +
                                hex32(exec.extractcrc) +
                                "\n"
                                "looking for component hash " +
                                sum +
                                "\n"
                                "WARNING, No hash file for component 2 may have unknown relocs\n"
                                "looking for component hash 0x00002000\n"
                                "WARNING, No hash file for component 3 may have unknown relocs\n"
                                "looking for component hash 0x00180019001a001b001c001d001e001f\n"
                                "WARNING, No hash file for component 4 may have unknown relocs\n"
                                "Loaded 8192 bytes to ROM 0\n");
}

TEST_F(MapTest, MessagesHaveTheirThresholds) {
    hashes.add(built);
    hashes.write("0x00180019001a001b001c001d001e001f", "[Description]\n");
    const Action prepare = [&] {
        index();
        newrom(0, 0);
    };
    const Action run = [&] { loadromdata(0, built.image); };
    const int32_t reloc = exec.relocs[0];
    const uint32_t value = longat(exec.extract, reloc).value();
    expectthresholds(prepare, run,
                     {{1, "Load ROMData, look for Hashfile:" + hex32(built.crc) + "\n"},
                      {5, "Hashfile found\n"},
                      {5, "Section:Components\n"},
                      {9, "Allocating space for 5 components ("},
                      {1, "looking for component hash " + exec.hash() + "\n"},
                      {1, "WARNING, No hash file for component 0 may have unknown relocs\n"},
                      {0, "No relocs\n"},
                      {1, " in section 2 starts at line=13\n"},
                      {9, formatted("INI File=RELOC=%-10d\n", reloc)},
                      {1, "Hashing raw component= 1 exec.library (1024 bytes) from ROM=0\n"},
                      {5, "iSize=1024 &3=0\n"},
                      {1, "There are " + std::to_string(exec.relocs.size()) + " relocs\n"},
                      {5, formatted("Reloc at %d=%08x\n", reloc, value)},
                      {1, "Finding ROMTAG in newly loaded ROM at 24 to 1048\n"},
                      {1, "CRC:" + hex32(exec.extractcrc) + "\n"},
                      {1, "Loaded 8192 bytes to ROM 0\n"}});
    const std::string bytes = "(" + std::to_string(5 * sizeof(Component)) + " bytes)\n";
    expectthresholds(prepare, run, {{9, bytes}});
}

TEST_F(MapTest, ErrorsHaveTheirThresholds) {
    const Action prepare = [&] {
        index();
        newrom(0, 0);
    };
    const Action run = [&] { loadromdata(0, built.image); };
    expectthresholds(prepare, run, {{0, "Unable to find hash\n"}});
    hashes.write("0x0badf00d", "[RELOC32]\nRELOC=4\n\n");
    hashes.write(hex32(built.crc), "[Description]\n[Components]\na=0,8,Resource:x\nb=0,8,Data:0x0badf00d\n");
    expectthresholds(
        prepare, run,
        {{0, "WARNING: No ROMBase\n"},
         {0, "ERROR: Invalid Component \"Resource:x\"\n"},
         {1, "Missing RELOC=, early end of section, abandoning any more relocs, setting reloc count "
             "to 1\n"}});
    expectthresholds([] {}, run, {{0, "No such ROM\n"}});
}

TEST_F(MapTest, AnUnknownImageKeepsTitleAndText) {
    silently([] { newrom(0, 0); });
    slotat(0).pcTitle = "Mine";
    slotat(0).iROMBase = 0xE00000;
    EXPECT_EQ(at(1, [&] { EXPECT_EQ(loadromdata(0, built.image), 0); }), "Unable to find hash\n");
    EXPECT_EQ(slotat(0).pcTitle, Text("Mine"));
    EXPECT_EQ(slotat(0).pcText, std::nullopt);
    EXPECT_EQ(slotat(0).iROMBase, 0xE00000u);
    EXPECT_EQ(slotat(0).iComponents(), 0);
}

TEST_F(MapTest, WithoutAHashFileTheSlotStillHoldsTheImage) {
    EXPECT_EQ(loadknown(2), "Load ROMData, look for Hashfile:" + hex32(built.crc) +
                                "\nUnable to find hash\nLoaded 8192 bytes to ROM 0\n");
    EXPECT_EQ(slotat(0).pcROM, built.image);
    EXPECT_EQ(slotat(0).iUsed, 8192);
    EXPECT_EQ(slotat(0).iCRC32, built.crc);
    EXPECT_EQ(slotat(0).cFill, built.image[8192 - 24]);
}

TEST_F(MapTest, NoSuchSlotIsRefused) {
    silently([] { newrom(16, 7); });
    for (const int32_t rom : {-1, 1, 20}) {
        int result = 0;
        EXPECT_EQ(at(1, [&] { result = loadromdata(rom, built.image); }), "No such ROM\n");
        EXPECT_EQ(result, 1);
    }
    EXPECT_EQ(slotat(0).pcROM, Bytes(16, 7));
}

TEST_F(MapTest, FourEqualQuartersLoadAs256KWithBothMessages) {
    const Bytes quarter = standardrom(262144).image;
    silently([] { newrom(0, 0); });
    EXPECT_EQ(at(1, [&] { loadromdata(0, overburnt(quarter, 4)); }),
              "Overburnt 512k ROM, loading the first half\n"
              "Overburnt 256k ROM, loading the first half\n"
              "Unable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, quarter);
    EXPECT_EQ(slotat(0).iCRC32, crc32of(quarter));
}

TEST_F(MapTest, EqualHalvesLoadAsOne) {
    const Bytes half = standardrom(524288).image;
    silently([] { newrom(0, 0); });
    EXPECT_EQ(at(1, [&] { loadromdata(0, overburnt(half)); }),
              "Overburnt 512k ROM, loading the first half\nUnable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, half);
    const Bytes quarter = standardrom(262144).image;
    EXPECT_EQ(at(1, [&] { loadromdata(0, overburnt(quarter)); }),
              "Overburnt 256k ROM, loading the first half\nUnable to find hash\n");
    EXPECT_EQ(usedof(0), quarter);
}

TEST_F(MapTest, HalvesThatDifferInOneByteAreNotReduced) {
    for (const size_t half : {size_t{262144}, size_t{524288}}) {
        Bytes image(2 * half, 0x55);
        image.back() ^= 1;
        silently([] { newrom(0, 0); });
        EXPECT_EQ(at(1, [&] { loadromdata(iMaxRom - 1, image); }), "Unable to find hash\n");
        EXPECT_EQ(slotat(iMaxRom - 1).iSize(), static_cast<int32_t>(2 * half));
    }
}

TEST_F(MapTest, OtherSizesAreNotReduced) {
    for (const size_t size : {size_t{131072 * 2}, size_t{2097152}, size_t{524286}}) {
        silently([] { newrom(0, 0); });
        EXPECT_EQ(at(1, [&] { loadromdata(iMaxRom - 1, Bytes(size, 0x55)); }), "Unable to find hash\n");
        EXPECT_EQ(slotat(iMaxRom - 1).iUsed, static_cast<int32_t>(size));
    }
}

TEST_F(MapTest, TheReductionComesBeforeTheSlotIsLookedAt) {
    EXPECT_EQ(at(1, [] { EXPECT_EQ(loadromdata(0, Bytes(524288, 1)), 1); }),
              "Overburnt 256k ROM, loading the first half\nNo such ROM\n");
    expectthresholds([] {}, [] { loadromdata(0, Bytes(1048576, 1)); },
                     {{0, "Overburnt 512k ROM, loading the first half\n"},
                      {0, "Overburnt 256k ROM, loading the first half\n"}});
}

TEST_F(MapTest, ALargerSlotKeepsItsSize) {
    const BuiltRom small = standardrom(262144);
    silently([] { newrom(524288, 0xAA); });
    silently([&] { loadromdata(0, small.image); });
    EXPECT_EQ(slotat(0).iSize(), 524288);
    EXPECT_EQ(slotat(0).iUsed, 262144);
    EXPECT_EQ(slotat(0).iCRC32, crc32of(small.image));
    EXPECT_EQ(usedof(0), small.image);
    EXPECT_EQ(slotat(0).pcROM[262144], 0xAA);
    EXPECT_EQ(slotat(0).cFill, small.image[262144 - 24]);
}

TEST_F(MapTest, ImagesWithoutRoomForAChecksumTakeFillZero) {
    for (size_t size = 0; size <= 30; ++size) {
        silently([] { freeroms(), newrom(0, 0x77); });
        Bytes image(size, 0);
        for (size_t i = 0; i < size; ++i)
            image[i] = static_cast<uint8_t>(i + 1);
        silently([&] { EXPECT_EQ(loadromdata(0, image), 0); });
        EXPECT_EQ(slotat(0).cFill, size < 24 ? 0 : size - 24 + 1) << size;
        EXPECT_EQ(slotat(0).pcROM, image);
        EXPECT_EQ(slotat(0).iCRC32, crc32of(image));
    }
}

TEST_F(MapTest, LoadingAgainForgetsTheFormerMap) {
    hashes.add(built);
    loadknown();
    ASSERT_GT(slotat(0).iComponents(), 0);
    EXPECT_EQ(at(1, [] { loadromdata(0, Bytes(100, 3)); }), "Unable to find hash\n") << "nothing is narrated";
    EXPECT_EQ(slotat(0).iComponents(), 0);
    EXPECT_EQ(slotat(0).pcTitle, Text("Standard"));
    EXPECT_EQ(slotat(0).iUsed, 100);
    EXPECT_EQ(slotat(0).iSize(), 8192);
}

TEST_F(MapTest, AComponentLineIsReadFieldByField) {
    loadmap("exec.library=1234,100,Library:0x0badf00d\n");
    ASSERT_EQ(slotat(0).iComponents(), 1);
    const Component& component = componentat(0, 0);
    EXPECT_EQ(component.pcName, Text("exec.library"));
    EXPECT_EQ(component.iStart, 1234);
    EXPECT_EQ(component.iFixedStart, 1234);
    EXPECT_EQ(component.iSize, 100);
    EXPECT_EQ(component.iFixedEnd, 1334);
    EXPECT_EQ(component.pcType, Text("Library"));
    EXPECT_EQ(component.pcHash, Text("0x0badf00d"));
}

TEST_F(MapTest, NumbersAreReadAsLooselyAsTheyAreWritten) {
    loadmap("a= 12x, +34y,Data:h\nb,c==5,6,Data:x,y:z=\n");
    EXPECT_EQ(componentat(0, 0).iStart, 12);
    EXPECT_EQ(componentat(0, 0).iSize, 34);
    // The name ends at the first "=", and the number behind it begins with another: 0.
    EXPECT_EQ(componentat(0, 1).pcName, Text("b,c"));
    EXPECT_EQ(componentat(0, 1).iStart, 0);
    EXPECT_EQ(componentat(0, 1).iSize, 6);
    EXPECT_EQ(componentat(0, 1).pcHash, Text("x,y:z="));
}

TEST_F(MapTest, EveryTypeWordIsKnown) {
    for (const char* type : {"Library", "Device", "ROMHeader", "Kickity-Split", "Checksum", "BadData", "Data",
                             "Size", "Vectors", "Loadable Library", "Kickstart ROM", "Extended ROM"}) {
        freshstate();
        EXPECT_EQ(loadmap("x=0,8,"s + type + ":the hash:text \n"), "") << type;
        EXPECT_EQ(componentat(0, 0).pcType, Text(type));
        EXPECT_EQ(componentat(0, 0).pcHash, Text("the hash:text "));
    }
}

TEST_F(MapTest, AnInvalidTypeIsKeptWithTheRestOfTheLineAsTypeAndHash) {
    for (const char* rest :
         {"Resource:0x1", "library:0x1", " Library:0x1", "Library 0x1", "Librarys:0x1", ":0x1", ""}) {
        freshstate();
        EXPECT_EQ(loadmap("x=0,8,"s + rest + "\n"), "ERROR: Invalid Component \""s + rest + "\"\n");
        EXPECT_EQ(componentat(0, 0).pcName, Text("x"));
        EXPECT_EQ(componentat(0, 0).iSize, 8);
        EXPECT_EQ(componentat(0, 0).pcType, Text(rest));
        EXPECT_EQ(componentat(0, 0).pcHash, Text(rest));
    }
}

TEST_F(MapTest, ALineWithoutItsSeparatorsIsInvalidAndKeepsItsSlot) {
    for (const char* line :
         {"exec.library", "exec.library=", "exec.library=1,2", "a,b,c", "=", ",,", "; remark"}) {
        freshstate();
        EXPECT_EQ(loadmap("x=0,8,Data:h\n"s + line + "\ny=8,8,Data:h\n"),
                  "ERROR: Invalid Component \""s + line + "\"\n");
        ASSERT_EQ(slotat(0).iComponents(), 3);
        EXPECT_TRUE(componentat(0, 1).isblank());
        EXPECT_EQ(componentat(0, 2).pcName, Text("y"));
    }
}

TEST_F(MapTest, ARangeOutsideTheImageGetsOneErrorLineAndKeepsItsSlot) {
    for (const char* range : {"8192,1", "-1,8", "0,8193", "8191,2", "0,-1", "99999999999,4", "4,99999999999",
                              "2147483647,2147483647", "-2147483648,-2147483648"}) {
        freshstate();
        const std::string console = loadmap("x="s + range + ",Data:h\ny=8184,8,Data:h\n");
        EXPECT_TRUE(console.starts_with("ERROR")) << range << ": " << console;
        EXPECT_EQ(countof(console, "\n"), 1);
        ASSERT_EQ(slotat(0).iComponents(), 2);
        EXPECT_TRUE(componentat(0, 0).isblank());
        EXPECT_EQ(componentat(0, 1).pcName, Text("y"));
    }
}

TEST_F(MapTest, TheImageThatCountsIsTheSlotsWhole) {
    silently([] { newrom(16384, 0); });
    hashes.write(hex32(built.crc), "[Description]\nROMBase=0x0\n[Components]\nx=16376,8,Data:h\n");
    index();
    EXPECT_EQ(at(1, [&] { loadromdata(0, built.image); }), "");
    EXPECT_EQ(componentat(0, 0).iStart, 16376);
}

TEST_F(MapTest, ABlankLineKeepsItsSlotAsAnEmptyComponent) {
    EXPECT_EQ(loadmap("x=0,8,Data:h\n\ny=8,8,Data:h\n\n"), "");
    ASSERT_EQ(slotat(0).iComponents(), 4);
    for (const int32_t blank : {1, 3}) {
        const Component& component = componentat(0, blank);
        EXPECT_EQ(component.pcName, std::nullopt);
        EXPECT_EQ(component.pcType, std::nullopt);
        EXPECT_EQ(component.pcHash, std::nullopt);
        EXPECT_EQ(component.iStart, 0);
        EXPECT_EQ(component.iSize, 0);
        EXPECT_EQ(component.iFixedStart, 0);
        EXPECT_EQ(component.iFixedEnd, 0);
        EXPECT_EQ(component.iROMTag, -1);
        EXPECT_EQ(component.iCRC32, 0u);
        EXPECT_EQ(component.pcExtract, std::nullopt);
    }
}

TEST_F(MapTest, LineEndsOfDosAreTheSame) {
    hashes.write("0x0badf00d", "[RELOC32]\r\nRELOC=40\r\n");
    EXPECT_EQ(load("[Description]\r\nTitle=T\r\nROMBase=0x00f80000\r\n[Components]\r\n"
                   "exec.library=24,1024,Library:0x0badf00d\r\n\r\n"),
              "");
    EXPECT_EQ(slotat(0).pcTitle, Text("T"));
    EXPECT_EQ(componentat(0, 0).pcHash, Text("0x0badf00d"));
    EXPECT_EQ(componentat(0, 0).ipRelocs, std::vector<int32_t>{40});
    EXPECT_TRUE(componentat(0, 1).isblank());
}

TEST_F(MapTest, AMapEndsAtTheNextHead) {
    loadmap("x=0,8,Data:h\n[Display]\ny=8,8,Data:h\n");
    EXPECT_EQ(slotat(0).iComponents(), 1);
}

TEST_F(MapTest, NoComponentsSectionMeansNoComponents) {
    EXPECT_EQ(load("[Description]\nTitle=T\nROMBase=0x00f80000\n"), "");
    EXPECT_EQ(slotat(0).iComponents(), 0);
    EXPECT_EQ(slotat(0).pcTitle, Text("T"));
}

TEST_F(MapTest, AMissingTitleOrTextIsAnEmptyText) {
    load("[Description]\nROMBase=0x00f80000\n");
    EXPECT_EQ(slotat(0).pcTitle, Text(""));
    EXPECT_EQ(slotat(0).pcText, Text(""));
}

TEST_F(MapTest, WithoutARombaseTheSlotsOwnStaysAndCounts) {
    hashes.component(exec);
    hashes.rom(built, {.rombase = false});
    index();
    silently([] { newrom(0, 0); });
    slotat(0).iROMBase = 0xF80000;
    EXPECT_EQ(at(1, [&] { loadromdata(0, built.image); }), "WARNING: No ROMBase\n");
    EXPECT_EQ(slotat(0).iROMBase, 0xF80000u);
    EXPECT_EQ(componentat(0, 1).pcExtract, exec.extract);
}

TEST_F(MapTest, TheRombaseIsReadBehindTwoCharactersOfAnyKind) {
    const std::vector<std::pair<std::string, uint32_t>> bases = {{"0x00F80000", 0xF80000},
                                                                 {"$$00e00000", 0xE00000},
                                                                 {"0xfC0000", 0xFC0000},
                                                                 {"0x123456789", 0x12345678},
                                                                 {"0x", 0},
                                                                 {"1", 0},
                                                                 {"", 0}};
    for (const auto& [text, base] : bases) {
        freshstate();
        EXPECT_EQ(load("[Description]\nrombase=" + text + "\n"), "");
        EXPECT_EQ(slotat(0).iROMBase, base) << text;
    }
}

} // namespace
} // namespace vantorel::test
