// Extracts: the bytes of a component made relative to its own first byte.

#include "component/extract.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

class ExtractTest : public RomTest {
protected:
    // A slot of 64 bytes at 0xF80000 with one component of 16 bytes at 32, whose bytes are those of
    // `makebytes`.
    void SetUp() override {
        RomTest::SetUp();
        silently([] { newrom(64, 0xEE); });
        slotat(0).iROMBase = 0xF80000;
        std::ranges::copy(bytes, slotat(0).pcROM.begin() + 32);
        Component component;
        component.pcName = "x";
        component.iStart = 32;
        component.iSize = 16;
        slotat(0).psComponents = {component};
    }

    static Bytes longs(const std::vector<uint32_t>& values) {
        Bytes result;
        for (const uint32_t value : values)
            appendlong(result, value);
        return result;
    }

    // 0xF80020 is where the component runs.
    Bytes bytes = longs({0x00F80020, 0x12345678, 0x00F8002C, 0x00F80000});
};

TEST_F(ExtractTest, RelocatedLongsAreRelativeToTheFirstByte) {
    componentat(0, 0).ipRelocs = {0, 8};
    EXPECT_EQ(createextract(0, 0), 0);
    EXPECT_EQ(componentat(0, 0).pcExtract, longs({0, 0x12345678, 12, 0x00F80000}));
    EXPECT_EQ(part(slotat(0).pcROM, 32, 16).front(), 0x00) << "the image keeps its addresses";
    EXPECT_EQ(longat(slotat(0).pcROM, 40), 0x00F8002Cu);
}

TEST_F(ExtractTest, AddressesBelowTheComponentWrapAround) {
    componentat(0, 0).ipRelocs = {12};
    createextract(0, 0);
    EXPECT_EQ(longat(*componentat(0, 0).pcExtract, 12), 0xFFFFFFE0u);
}

TEST_F(ExtractTest, AnAddressPointsIntoTheComponentUpToTheFirstByteBehindIt) {
    // 16 bytes run at 0xF80020.
    const auto points = [](uint32_t value) { return pointsinto(slotat(0), componentat(0, 0), value); };
    EXPECT_FALSE(points(0xF8001F));
    EXPECT_TRUE(points(0xF80020));
    EXPECT_TRUE(points(0xF80030));
    EXPECT_FALSE(points(0xF80031));
    EXPECT_FALSE(points(0x20)) << "an image offset is no address";
    EXPECT_FALSE(points(0xFFFFFFFF));
}

TEST_F(ExtractTest, AnEmptyComponentIsPointedToByItsOwnAddressAlone) {
    componentat(0, 0).iSize = 0;
    EXPECT_TRUE(pointsinto(slotat(0), componentat(0, 0), 0xF80020));
    EXPECT_FALSE(pointsinto(slotat(0), componentat(0, 0), 0xF80021));
}

TEST_F(ExtractTest, WithoutRelocsItIsACopy) {
    EXPECT_EQ(createextract(0, 0), 0);
    EXPECT_EQ(componentat(0, 0).pcExtract, bytes);
}

TEST_F(ExtractTest, AnOlderExtractIsReplaced) {
    componentat(0, 0).pcExtract = Bytes(99, 1);
    createextract(0, 0);
    EXPECT_EQ(componentat(0, 0).pcExtract, bytes);
}

TEST_F(ExtractTest, RelocsOnOddPlacesAndOverlappingOnesAreTakenInOrder) {
    componentat(0, 0).ipRelocs = {1, 2};
    createextract(0, 0);
    // Bytes 1-4 hold 0xF8002012: less 0xF80020 that is 0xF7081FF2, and bytes 2-5 then hold 0x081FF234 (0x34
    // is the byte behind), which becomes 0x0727F214.
    Bytes expected = bytes;
    ASSERT_TRUE(putlong(expected, 1, 0xF7081FF2));
    ASSERT_TRUE(putlong(expected, 2, 0x0727F214));
    EXPECT_EQ(componentat(0, 0).pcExtract, expected);
}

TEST_F(ExtractTest, RelocsOutsideAreLeftOutWithAnErrorEachAndStayInTheList) {
    const std::vector<int32_t> relocs = {-4, 0, 12, 13, 16, 2147483647, -2147483647 - 1};
    componentat(0, 0).ipRelocs = relocs;
    EXPECT_EQ(at(1, [] { EXPECT_EQ(createextract(0, 0), 0); }),
              "ERROR: Reloc -4 is outside its component\n"
              "ERROR: Reloc 13 is outside its component\n"
              "ERROR: Reloc 16 is outside its component\n"
              "ERROR: Reloc 2147483647 is outside its component\n"
              "ERROR: Reloc -2147483648 is outside its component\n");
    EXPECT_EQ(componentat(0, 0).ipRelocs, relocs);
    const Bytes leftout = *componentat(0, 0).pcExtract;
    componentat(0, 0).ipRelocs = {0, 12};
    EXPECT_EQ(at(10, [] { createextract(0, 0); }), "There are 2 relocs\n");
    EXPECT_EQ(componentat(0, 0).pcExtract, leftout);
}

TEST_F(ExtractTest, AComponentOutsideItsImageIsRefusedWithOneLine) {
    for (const auto& [start, size] : std::vector<std::pair<int32_t, int32_t>>{{-1, 8},
                                                                              {60, 5},
                                                                              {65, 0},
                                                                              {0, -1},
                                                                              {0, 65},
                                                                              {2147483647, 2147483647},
                                                                              {-2147483647, 2147483647}}) {
        componentat(0, 0).iStart = start;
        componentat(0, 0).iSize = size;
        componentat(0, 0).pcExtract = Bytes{7};
        const std::string console = at(1, [] { EXPECT_EQ(createextract(0, 0), 1); });
        EXPECT_TRUE(console.starts_with("ERROR")) << start << "," << size;
        EXPECT_EQ(countof(console, "\n"), 1);
        EXPECT_EQ(componentat(0, 0).pcExtract, Bytes{7});
        EXPECT_EQ(at(0, [] { createextract(0, 0); }), "");
    }
}

TEST_F(ExtractTest, AnEmptyComponentAtTheEndHasAnEmptyExtract) {
    componentat(0, 0).iStart = 64;
    componentat(0, 0).iSize = 0;
    EXPECT_EQ(createextract(0, 0), 0);
    EXPECT_EQ(componentat(0, 0).pcExtract, Bytes{});
}

TEST_F(ExtractTest, MissingSlotsAndComponentsAreRefused) {
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(at(1, [&] { EXPECT_EQ(createextract(rom, 0), 1); }), "ERROR, No current ROM\n");
    for (const int32_t component : {-1, 1, 2147483647})
        EXPECT_EQ(at(1, [&] { EXPECT_EQ(createextract(0, component), 1); }), "ERROR: No such component\n");
}

TEST_F(ExtractTest, MessagesHaveTheirThresholds) {
    expectthresholds([] {}, [] { createextract(0, 0); }, {{0, "ERROR, No current ROM\n"}});
    const Action makeslot = [] { newrom(16, 0); };
    expectthresholds(makeslot, [] { createextract(0, 0); }, {{0, "ERROR: No such component\n"}});
    const Action makecomponent = [] {
        newrom(16, 0);
        slotat(0).psComponents.resize(1);
        componentat(0, 0).iSize = 8;
        componentat(0, 0).ipRelocs = {4, 5};
    };
    expectthresholds(makecomponent, [] { createextract(0, 0); },
                     {{5, "There are 2 relocs\n"}, {0, "ERROR: Reloc 5 is outside its component\n"}});
}

TEST_F(ExtractTest, EveryModuleOfTheStandardRom) {
    const BuiltRom standard = standardrom();
    const int32_t rom = loaded(standard.image);
    slotat(rom).iROMBase = standard.base;
    for (const BuiltModule& module : standard.modules) {
        Component component;
        component.iStart = module.start;
        component.iSize = module.size;
        component.ipRelocs = module.relocs;
        slotat(rom).psComponents = {component};
        EXPECT_EQ(createextract(rom, 0), 0);
        EXPECT_EQ(componentat(rom, 0).pcExtract, module.extract) << module.name;
    }
}

TEST_F(ExtractTest, TheRunAddressIsBasePlusStart) {
    EXPECT_EQ(runaddress(slotat(0), componentat(0, 0)), 0xF80020u);
    componentat(0, 0).iStart = -32;
    EXPECT_EQ(runaddress(slotat(0), componentat(0, 0)), 0xF7FFE0u);
}

TEST_F(ExtractTest, MakingRelativeLeavesOutRelocsOutside) {
    Bytes some = longs({10, 20});
    const std::vector<int32_t> relocs = {-1, 4, 5, 8};
    EXPECT_EQ(at(1, [&] { makerelative(some, relocs, 3); }), "ERROR: Reloc -1 is outside its component\n"
                                                             "ERROR: Reloc 5 is outside its component\n"
                                                             "ERROR: Reloc 8 is outside its component\n");
    EXPECT_EQ(some, longs({10, 17}));
}

} // namespace
} // namespace vantorel::test
