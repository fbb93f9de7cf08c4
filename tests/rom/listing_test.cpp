// The listings, character for character.

#include "rom/listing.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

class ListingTest : public RomTest {
protected:
    // A 512K slot that holds a 256K image, with no components.
    static KickstartRom& makeslot() {
        silently([] { newrom(524288, 0); });
        KickstartRom& slot = slotat(iMaxRom - 1);
        slot.iROMBase = 0xF80000;
        slot.iCRC32 = 0x12345678;
        slot.iUsed = 262144;
        return slot;
    }

    static Component data(const char* name, int32_t start, int32_t size) {
        Component component;
        component.pcName = name;
        component.pcType = cTypeData;
        component.pcHash = "0xabc";
        component.iStart = component.iFixedStart = start;
        component.iSize = size;
        component.iFixedEnd = start + size;
        return component;
    }

    static Component library(const char* name, int32_t start, int32_t tag, int32_t size) {
        Component component = data(name, start, size);
        component.pcType = cTypeLibrary;
        component.iROMTag = tag;
        component.pcLibString = "exec 40.10 (15.7.93)";
        return component;
    }

    // What `rom` lists below the two lines that every slot has.
    static std::string maplines() {
        const std::string text = at(1, [] { rom(0); });
        const std::string head =
            "ROM  0 ROMBase:00f80000 CRC32:0x12345678 (262144 of 524288/512k)\nUnnamed\n";
        EXPECT_EQ(text.substr(0, head.size()), head);
        return text.substr(std::min(head.size(), text.size()));
    }
};

TEST_F(ListingTest, RomsMarksTheCurrentSlot) {
    makeslot();
    silently([] { newrom(1535, 0); });
    int32_t count = 0;
    EXPECT_EQ(at(1, [&] { count = roms(1); }),
              "ROMS:\n"
              "ROM 0 ROMBase:00f80000 CRC32:0x12345678 (262144 of 524288/512k)\n"
              "ROM 1*ROMBase:00000000 CRC32:0x00000000 (0 of 1535/1k)\n");
    EXPECT_EQ(count, 2);
}

TEST_F(ListingTest, RomsWithoutACurrentSlotMarksNone) {
    makeslot();
    for (const int32_t current : {-1, 1, 20})
        EXPECT_EQ(at(1, [&] { roms(current); }),
                  "ROMS:\nROM 0 ROMBase:00f80000 CRC32:0x12345678 (262144 of 524288/512k)\n");
}

TEST_F(ListingTest, RomsOfNoneIsAHeadAlone) {
    int32_t count = -1;
    EXPECT_EQ(at(1, [&] { count = roms(-1); }), "ROMS:\n");
    EXPECT_EQ(count, 0);
}

TEST_F(ListingTest, RomsListsSlotsAboveNineInTwoColumns) {
    silently([] {
        for (int i = 0; i < 12; ++i)
            newrom(1024, 0);
    });
    EXPECT_TRUE(has(at(1, [] { roms(11); }), "ROM11*ROMBase:00000000 CRC32:0x00000000 (0 of 1024/1k)\n"));
}

TEST_F(ListingTest, RomsIsAResult) {
    expectthresholds([] { newrom(1024, 0); }, [] { EXPECT_EQ(roms(0), 1); },
                     {{0, "ROMS:\n"}, {0, "ROM 0*ROMBase:00000000 CRC32:0x00000000 (0 of 1024/1k)\n"}});
}

TEST_F(ListingTest, RomWithoutComponentsIsTwoLines) {
    makeslot().pcTitle = "Kickstart 3.1";
    int32_t result = -1;
    EXPECT_EQ(at(1, [&] { result = rom(0); }),
              "ROM  0 ROMBase:00f80000 CRC32:0x12345678 (262144 of 524288/512k)\nKickstart 3.1\n");
    EXPECT_EQ(result, 0);
}

TEST_F(ListingTest, RomOfNoSlotIsMinusOneInSilence) {
    makeslot();
    EXPECT_EQ(at(10,
                 [] {
                     for (const int32_t n : {-1, 1, 20, 2147483647})
                         EXPECT_EQ(rom(n), -1);
                 }),
              "");
}

TEST_F(ListingTest, AComponentWithoutATagShowsStartAndSize) {
    Component component = data("ROMHeader", 0, 24);
    component.iCRC32 = 0x0BADF00D;
    component.ipRelocs = {4, 8};
    makeslot().psComponents = {component};
    EXPECT_EQ(maplines(), " 0 ROMHeader                           0:24        2 0x0badf00d Data:0xabc\n");
}

TEST_F(ListingTest, InferredBoundsCarryAQuestionMark) {
    Component component = data("font", 1234, 56);
    component.iFixedStart = -1;
    makeslot().psComponents = {component};
    component.iFixedEnd = -1;
    slotat(0).psComponents.push_back(component);
    slotat(0).psComponents.back().iStart += 56;
    EXPECT_EQ(maplines(), "-- (Unallocated) 1234\n"
                          " 0 font                             1234?:56        0 0x00000000 Data:0xabc\n"
                          " 1 font                             1290?:56    ?    0 0x00000000 Data:0xabc\n");
}

TEST_F(ListingTest, AComponentWithATagShowsTheBytesBeforeAndFromIt) {
    Component component = library("exec.library", 0, 158, 12288);
    component.ipRelocs.assign(36, 0);
    component.iCRC32 = 0xDEADBEEF;
    makeslot().psComponents = {component};
    // 158 bytes before the tag at 158; 12288 - 158 = 12130 from it on.
    EXPECT_EQ(maplines(),
              " 0 exec.library                      158:158:12130     36 0xdeadbeef Library:0xabc\n"
              "   exec 40.10 (15.7.93)\n");
}

TEST_F(ListingTest, InferredBoundsOfATaggedComponentCarryAQuestionMark) {
    Component component = library("exec.library", 0, 0, 100);
    component.iFixedStart = component.iFixedEnd = -1;
    component.pcHash.reset();
    component.pcLibString.reset();
    makeslot().psComponents = {component};
    EXPECT_EQ(maplines(),
              " 0 exec.library                        0?:0:100?       0 0x00000000 Library:(null)\n");
}

TEST_F(ListingTest, AComponentThatBeginsBehindItsTagHasNegativeBytesBefore) {
    makeslot().psComponents = {library("a", 100, 60, 10)};
    // 60 - 100 = -40 before, 10 - (-40) = 50 from the tag on.
    EXPECT_EQ(maplines(),
              "-- (Unallocated) 100\n"
              " 0 a                                 -40:60:50         0 0x00000000 Library:0xabc\n"
              "   exec 40.10 (15.7.93)\n");
}

TEST_F(ListingTest, TheBytesFromTheTagOnTakeElevenCharactersAtMost) {
    Component component = library("a", 0, 0, -2147483647 - 1);
    component.iFixedEnd = -1;
    component.pcLibString.reset();
    makeslot().psComponents = {component};
    EXPECT_EQ(maplines(),
              " 0 a                                   0:0:-2147483648    0 0x00000000 Library:0xabc\n");
}

TEST_F(ListingTest, GapsAreListedBetweenComponentsOnly) {
    makeslot().psComponents = {data("a", 0, 24), data("b", 32, 8), data("c", 40, 4), data("d", 42, 4)};
    EXPECT_EQ(maplines(), " 0 a                                   0:24        0 0x00000000 Data:0xabc\n"
                          "-- (Unallocated) 8\n"
                          " 1 b                                  32:8         0 0x00000000 Data:0xabc\n"
                          " 2 c                                  40:4         0 0x00000000 Data:0xabc\n"
                          " 3 d                                  42:4         0 0x00000000 Data:0xabc\n");
}

TEST_F(ListingTest, ABlankComponentIsListedWithNulls) {
    makeslot().psComponents = {Component{}};
    EXPECT_EQ(maplines(), " 0 (null)                              0:0         0 0x00000000 (null):(null)\n");
}

TEST_F(ListingTest, LongNamesAndNumbersWidenTheirColumns) {
    const std::string name(34, 'n');
    Component component = data(name.c_str(), 0, 1048576);
    component.ipRelocs.assign(12345, 0);
    makeslot().psComponents = {component};
    EXPECT_EQ(maplines(), " 0 " + name + "      0:1048576 12345 0x00000000 Data:0xabc\n");
}

TEST_F(ListingTest, RomIsAResult) {
    const auto prepare = [] { makeslot().psComponents = {data("a", 8, 8), library("b", 32, 32, 32)}; };
    expectthresholds(prepare, [] { EXPECT_EQ(rom(0), 0); },
                     {{0, "ROM  0 ROMBase:"},
                      {0, "Unnamed\n"},
                      {0, "-- (Unallocated) 8\n"},
                      {0, " 0 a "},
                      {0, "-- (Unallocated) 16\n"},
                      {0, " 1 b "},
                      {0, "   exec 40.10 (15.7.93)\n"}});
}

TEST_F(ListingTest, ModulesTellsTheHeaderOfAGoodImageAtEveryLevel) {
    const BuiltRom built = standardrom(262144);
    const std::string sum = hex32(longat(built.image, 262144 - 24).value());
    for (const int32_t level : {0, 1}) {
        freshstate();
        loaded(built.image);
        slotat(0).iROMBase = 0xFC0000;
        int32_t result = -1;
        // The entry is 210 bytes into the image: 0xFC0000 + 0xD2.
        EXPECT_EQ(at(level, [&] { result = modules(0); }),
                  "Size=262144/256k, Ident=0x1111, Entry=0xfc00d2, Ver=r40.68\n"
                  "IntSize=262144/256k, Checksum=" +
                      sum +
                      ", ROMBase=0x00fc0000\n"
                      "CRC32=" +
                      hex32(built.crc) + "\n\n");
        EXPECT_EQ(result, 0);
    }
}

TEST_F(ListingTest, ModulesShowsBothSumsOfADamagedImage) {
    const BuiltRom built = standardrom(262144);
    loaded(built.image);
    slotat(0).pcROM[5000] ^= 0x40;
    const std::string stored = hex32(longat(built.image, 262144 - 24).value());
    EXPECT_EQ(at(0, [] { modules(0); }), "Size=262144/256k, Ident=0x1111, Entry=0xfc00d2, Ver=r40.68\n"
                                         "IntSize=262144/256k, Checksum=" +
                                             stored + "/" + hex32(kickstartsum(slotat(0).pcROM)) +
                                             ", ROMBase=0x00000000\n"
                                             "CRC32=" +
                                             hex32(built.crc) + "/" + hex32(crc32of(slotat(0).pcROM)) +
                                             "\n\n");
}

TEST_F(ListingTest, ModulesShiftsTheInternalSizeUnsigned) {
    loaded(RomBuilder(4096, 0xF80000).build().image);
    ASSERT_TRUE(putlong(slotat(0).pcROM, 4096 - 20, 0x80000400));
    // 0x80000400 is -2147482624 as a number, and 0x200001 = 2097153 shifted.
    EXPECT_TRUE(has(at(0, [] { modules(0); }), "IntSize=-2147482624/2097153k, Checksum="));
}

TEST_F(ListingTest, ModulesListsComponentsOfTypeLibraryAlone) {
    Component device = library("d", 64, 64, 8);
    device.pcType = "Device";
    Component lower = library("l", 72, 72, 8);
    lower.pcType = "library";
    Component unknown = library("u", 80, 0xABCDE, 8);
    unknown.pcLibString.reset();
    Component untagged = library("n", 88, -1, 8);
    makeslot().psComponents = {library("b", 32, 34, 32), device, lower, unknown, untagged, Component{}};
    const std::string console = at(0, [] { modules(0); });
    EXPECT_EQ(console.substr(console.find("\n\n") + 2), "000022 exec 40.10 (15.7.93)\n"
                                                        "0ABCDE Unknown\n"
                                                        "FFFFFFFF exec 40.10 (15.7.93)\n");
}

TEST_F(ListingTest, ModulesOfNoSlotIsMinusOneInSilence) {
    EXPECT_EQ(at(10, [] { EXPECT_EQ(modules(0), -1); }), "");
    makeslot();
    EXPECT_EQ(at(10,
                 [] {
                     for (const int32_t n : {-1, 1, 20})
                         EXPECT_EQ(modules(n), -1);
                 }),
              "");
}

TEST_F(ListingTest, ModulesOfAnImageWithoutAHeaderIsRefusedWithOneLine) {
    for (int32_t size = 0; size < 24; ++size) {
        freshstate();
        silently([&] { newrom(size, 0); });
        const std::string console = at(1, [] { modules(0); });
        EXPECT_TRUE(console.starts_with("ERROR")) << console;
        EXPECT_EQ(countof(console, "\n"), 1);
        EXPECT_EQ(at(0, [] { modules(0); }), "");
    }
}

} // namespace
} // namespace vantorel::test
