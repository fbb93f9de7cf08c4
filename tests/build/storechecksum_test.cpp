// The checksum of a finished image, calculated anew and stored.

#include "build/virtualcomponents.h"
#include "component/placement.h"
#include "rom/romtest.h"

namespace vantorel::test {

namespace {

constexpr int32_t iSoundSize = 262144;

class StoreChecksum : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        hashes.add(rom);
        index();
        loaded(rom.image);
        number = findcomponent(0, "Checksum");
        ASSERT_GE(number, 0);
    }

    /// What `checksum` prints; its result is in `result`.
    std::string printed() {
        return captured([&] { result = checksum(0); });
    }

    void edit(uint32_t start, uint32_t end) const {
        silently([&] {
            editcomponentstart(0, number, start);
            editcomponentend(0, number, end);
        });
    }

    BuiltRom rom = standardrom(iSoundSize);
    int32_t number = -1;
    int result = -1;
};

} // namespace

TEST_F(StoreChecksum, OfASoundImageChangesNothing) {
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(slotat(0).pcROM == rom.image);
}

TEST_F(StoreChecksum, RepairsAChangedImage) {
    slotat(0).pcROM[1000] ^= 0xFF;
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(carrysum(slotat(0).pcROM), 0xFFFFFFFFU);
    EXPECT_EQ(longat(slotat(0).pcROM, iSoundSize - 24), kickstartsum(slotat(0).pcROM));
}

TEST_F(StoreChecksum, WithoutAComponentChangesNothing) {
    slotat(0).psComponents.erase(slotat(0).psComponents.begin() + number);
    slotat(0).pcROM[1000] ^= 0xFF;
    const Bytes before = slotat(0).pcROM;
    EXPECT_EQ(printed(), "Error: No checksum component\n");
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(slotat(0).pcROM == before);
}

TEST_F(StoreChecksum, HeedsTheTypeExactlyAndNotTheName) {
    for (const char* type : {"checksum", "CHECKSUM", "Checksum ", "Checksums", "Check", ""}) {
        componentat(0, number).pcType = type;
        EXPECT_EQ(printed(), "Error: No checksum component\n") << type;
    }
    componentat(0, number).pcType.reset();
    EXPECT_EQ(printed(), "Error: No checksum component\n");
    componentat(0, 0).pcType = "Checksum";
    EXPECT_EQ(printed(), "");
}

TEST_F(StoreChecksum, OfTwoComponentsTheFirstIsWritten) {
    // The second one stands where the checksum belongs, and keeps its value.
    Component& first = componentat(0, 0);
    first.pcType = "Checksum";
    first.iStart = 2000;
    first.iSize = 4;
    slotat(0).pcROM[1000] ^= 0xFF;
    const auto stored = longat(slotat(0).pcROM, iSoundSize - 24);
    const uint32_t sum = kickstartsum(slotat(0).pcROM);
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(longat(slotat(0).pcROM, 2000), sum);
    EXPECT_EQ(longat(slotat(0).pcROM, iSoundSize - 24), stored);
}

TEST_F(StoreChecksum, IsRefusedWhereItsComponentDoesNotLieInTheImage) {
    struct Bounds {
        uint32_t start;
        uint32_t end;
    };
    constexpr uint32_t iEnd = iSoundSize;
    const std::array<Bounds, 7> bounds = {{
        {iEnd - 24, iEnd + 1},      // begins inside
        {iEnd, iEnd + 4},           // right behind
        {0x20000000, 0x20000004},   // far behind
        {0xFFFFFFFCU, 0},           // before the image
        {0xFFFFFFFCU, 4},           // across its start
        {iEnd - 20, iEnd - 24},     // ends before it begins
        {0x7FFFFFFCU, 0x80000000U}, // its end has no number
    }};
    for (const Bounds& row : bounds) {
        slotat(0).iROMBase = 0xFFFFFFFF; // so that every number is an offset
        edit(row.start, row.end);
        EXPECT_EQ(printed(), "ERROR: Component " + std::to_string(number) + " does not lie in its image\n")
            << row.start << " to " << row.end;
        EXPECT_EQ(result, 1);
        EXPECT_TRUE(slotat(0).pcROM == rom.image);
    }
}

TEST_F(StoreChecksum, IsRefusedWhereALongDoesNotFit) {
    slotat(0).iROMBase = 0xFFFFFFFF;
    for (const uint32_t start : {iSoundSize - 3U, iSoundSize - 2U, iSoundSize - 1U}) {
        edit(start, iSoundSize);
        const std::string text = printed();
        EXPECT_TRUE(text.starts_with("ERROR") && countof(text, "\n") == 1) << text;
        EXPECT_TRUE(slotat(0).pcROM == rom.image);
    }
    edit(iSoundSize - 4, iSoundSize);
    EXPECT_EQ(printed(), "");
}

TEST_F(StoreChecksum, AMapThatPutsItOutsideTheImageLeavesItOut) {
    freshstate();
    std::vector<MapLine> map = rom.map;
    for (MapLine& line : map)
        if (line.type == "Checksum") line.start = iSoundSize - 2;
    hashes.rom(rom, {.map = map});
    index();
    loaded(rom.image);
    EXPECT_EQ(printed(), "Error: No checksum component\n");
}

TEST_F(StoreChecksum, CoversTheWholeSlotNotOnlyWhatIsUsed) {
    freshstate();
    silently([] {
        newrom(1024, 0);
        addchecksum(0);
    });
    slotat(0).iUsed = 4;
    slotat(0).pcROM[1020] = 0x80;
    silently([] { checksum(0); });
    EXPECT_EQ(longat(slotat(0).pcROM, 1000), 0x7FFFFFFFU);
}

TEST_F(StoreChecksum, AnImageThatEndsInsideALongIsSummedWithZeroes) {
    freshstate();
    silently([] {
        newrom(1026, 0);
        addchecksum(0);
    });
    // The sum leaves the long at size - 24 out only when it meets it: 1002 is no multiple of 4.
    slotat(0).pcROM.assign(1026, 0);
    slotat(0).pcROM[1024] = 0x12;
    slotat(0).pcROM[1025] = 0x34;
    silently([] { checksum(0); });
    EXPECT_EQ(longat(slotat(0).pcROM, 1002), ~0x12340000U);
}

} // namespace vantorel::test
