// The fixed structures of an image: what each puts where, when there is room for it, and what is refused.

#include "build/virtualcomponents.h"

#include "rom/romtest.h"

#include <cstdint>

namespace vantorel::test {

namespace {

using Add = int (*)(int32_t rom);

/// A new ROM of `size` bytes of 0xFF of which `used` are in use.
int32_t romof(int32_t size, int32_t used = 0) {
    int32_t rom = -1;
    silently([&] { rom = newrom(size, 0xFF); });
    slotat(rom).iUsed = used;
    return rom;
}

struct Answer {
    int result = -1;
    std::string console;
};

Answer answer(Add add, int32_t rom) {
    Answer given;
    given.console = captured([&] { given.result = add(rom); });
    return given;
}

void expectrecord(const Component& component, const std::string& name, const std::string& type, int32_t start,
                  int32_t size, const std::string& hash) {
    EXPECT_EQ(component.pcName, name);
    EXPECT_EQ(component.pcType, type);
    EXPECT_EQ(component.iStart, start);
    EXPECT_EQ(component.iSize, size);
    EXPECT_EQ(component.iFixedStart, start);
    EXPECT_EQ(component.iFixedEnd, start + size);
    EXPECT_EQ(component.pcHash, hash);
    EXPECT_EQ(component.iROMTag, -1);
    EXPECT_EQ(component.iRelocs(), 0);
    EXPECT_FALSE(component.pcExtract);
    EXPECT_FALSE(component.pcLibName);
    EXPECT_FALSE(component.pcLibString);
}

/// The image, of 0xFF otherwise, must hold `bytes` at `start`.
void expectbytes(int32_t rom, int32_t start, const Bytes& bytes) {
    Bytes expected(slotat(rom).pcROM.size(), 0xFF);
    std::ranges::copy(bytes, expected.begin() + start);
    EXPECT_TRUE(slotat(rom).pcROM == expected);
}

constexpr int32_t i512K = 524288;

class Structures : public FreshTest {};

} // namespace

TEST_F(Structures, TheSplitStandsInTheMiddleOf512K) {
    const int32_t rom = romof(i512K, 1000);
    const Answer given = answer(addkickitysplit, rom);
    EXPECT_EQ(given.result, 0);
    EXPECT_EQ(given.console, "");
    EXPECT_EQ(slotat(rom).iUsed, 262152);
    ASSERT_EQ(slotat(rom).iComponents(), 1);
    expectrecord(componentat(rom, 0), "kickity-split", "Kickity-Split", 262144, 8, "0x11114EF900F80002");
    expectbytes(rom, 262144, {0x11, 0x11, 0x4E, 0xF9, 0x00, 0xF8, 0x00, 0x02});
}

TEST_F(Structures, TheSizeStandsTwentyBytesBeforeTheEnd) {
    const int32_t rom = romof(i512K);
    EXPECT_EQ(answer(addsize, rom).result, 0);
    EXPECT_EQ(slotat(rom).iUsed, 524272);
    expectrecord(componentat(rom, 0), "Size", "Size", 524268, 4, "0x00080000");
    expectbytes(rom, 524268, {0x00, 0x08, 0x00, 0x00});
}

TEST_F(Structures, TheVectorsEndTheImage) {
    const int32_t rom = romof(i512K);
    EXPECT_EQ(answer(addvectors, rom).result, 0);
    EXPECT_EQ(slotat(rom).iUsed, i512K);
    expectrecord(componentat(rom, 0), "Vectors", "Vectors", 524272, 16, "0x00180019001a001b001c001d001e001f");
    expectbytes(rom, 524272, {0, 0x18, 0, 0x19, 0, 0x1A, 0, 0x1B, 0, 0x1C, 0, 0x1D, 0, 0x1E, 0, 0x1F});
}

TEST_F(Structures, TheChecksumIsThatOfTheImage) {
    const int32_t rom = romof(i512K);
    slotat(rom).pcROM[1000] = 0x12;
    const uint32_t sum = kickstartsum(slotat(rom).pcROM);
    const Answer given = answer(addchecksum, rom);
    EXPECT_EQ(given.result, 0);
    EXPECT_EQ(given.console, "");
    EXPECT_EQ(slotat(rom).iUsed, 524268);
    expectrecord(componentat(rom, 0), "Checksum", "Checksum", 524264, 4, hex32(sum));
    EXPECT_EQ(longat(slotat(rom).pcROM, 524264), sum);
    EXPECT_EQ(carrysum(slotat(rom).pcROM), 0xFFFFFFFFU);
}

TEST_F(Structures, TheHashOfAChecksumIsItsFirstValue) {
    // All zero: the sum is 0, its complement all ones.
    int32_t rom = -1;
    silently([&] { rom = newrom(1024, 0); });
    EXPECT_EQ(answer(addchecksum, rom).result, 0);
    EXPECT_EQ(componentat(rom, 0).pcHash, "0xffffffff");
    slotat(rom).pcROM[0] = 1;
    EXPECT_EQ(answer(checksum, rom).result, 0);
    EXPECT_EQ(componentat(rom, 0).pcHash, "0xffffffff");
    EXPECT_EQ(longat(slotat(rom).pcROM, 1000), 0xFEFFFFFFU);
}

TEST_F(Structures, InTheRightOrderAllFourMakeASoundImage) {
    const int32_t rom = romof(i512K);
    slotat(rom).pcROM[0] = 0x11;
    for (const Add add : {addkickitysplit, addchecksum, addsize, addvectors})
        EXPECT_EQ(answer(add, rom).result, 0);
    EXPECT_EQ(slotat(rom).iUsed, i512K);
    ASSERT_EQ(slotat(rom).iComponents(), 4);
    const std::array<const char*, 4> names = {"kickity-split", "Checksum", "Size", "Vectors"};
    int32_t former = -1;
    for (int32_t number = 0; number < 4; ++number) {
        EXPECT_EQ(componentat(rom, number).pcName, names[static_cast<size_t>(number)]);
        EXPECT_GT(componentat(rom, number).iStart, former);
        former = componentat(rom, number).iStart;
    }
    // The size and the vectors came after the sum was taken.
    EXPECT_NE(carrysum(slotat(rom).pcROM), 0xFFFFFFFFU);
    EXPECT_EQ(answer(checksum, rom).result, 0);
    EXPECT_EQ(carrysum(slotat(rom).pcROM), 0xFFFFFFFFU);
}

TEST_F(Structures, RecordsGoBehindThoseThatAreThere) {
    const int32_t rom = romof(i512K, 100);
    Component module;
    module.pcName = "module";
    module.pcType = "Library";
    module.iStart = 300000;
    module.iSize = 4;
    slotat(rom).psComponents.push_back(module);
    EXPECT_EQ(answer(addkickitysplit, rom).result, 0);
    EXPECT_EQ(componentat(rom, 0).pcName, "module");
    EXPECT_EQ(componentat(rom, 1).pcName, "kickity-split");
}

namespace {

/// A structure, the image, how much of it is used, and what is said when there is no room.
struct Room {
    Add add;
    int32_t size;
    int32_t used;
    const char* refusal; ///< empty: there is room
};

constexpr const char* cRoom = "";
constexpr const char* cNoSplit = "ERROR, no room for kickity-split\n";
constexpr const char* cNoChecksum = "ERROR, no room for Checksum\n";
constexpr const char* cNoSize = "ERROR, no room for Size\n";

const std::vector<Room> cRooms = {
    {addkickitysplit, i512K, 262144, cRoom},
    {addkickitysplit, i512K, 262145, cNoSplit},
    {addkickitysplit, i512K, 262152, cNoSplit},
    {addkickitysplit, 262144, 0, cNoSplit},
    {addkickitysplit, 262152, 0, cNoSplit},
    {addkickitysplit, 262153, 0, cRoom},
    {addkickitysplit, 0, 0, cNoSplit},
    {addchecksum, i512K, 524264, cRoom},
    {addchecksum, i512K, 524265, cNoChecksum},
    {addchecksum, 24, 0, cRoom},
    {addchecksum, 23, 0, cNoChecksum},
    {addchecksum, 0, 0, cNoChecksum},
    {addsize, i512K, 524268, cRoom},
    {addsize, i512K, 524269, cNoSize},
    {addsize, 20, 0, cRoom},
    {addsize, 19, 0, cNoSize},
    {addsize, 0, 0, cNoSize},
    {addvectors, i512K, 524272, cRoom},
    {addvectors, i512K, 524273, "ERROR, no room for Vectors Used=524273\n"},
    {addvectors, i512K, 524288, "ERROR, no room for Vectors Used=524288\n"},
    {addvectors, 16, 0, cRoom},
    {addvectors, 15, 0, "ERROR, no room for Vectors Used=0\n"},
    {addvectors, 0, 0, "ERROR, no room for Vectors Used=0\n"},
};

class StructureRoom : public FreshTest, public ::testing::WithParamInterface<Room> {};

} // namespace

TEST_P(StructureRoom, IsTestedExactly) {
    const Room& row = GetParam();
    const int32_t rom = romof(row.size, row.used);
    const Bytes before = slotat(rom).pcROM;
    const Answer given = answer(row.add, rom);
    EXPECT_EQ(given.console, row.refusal);
    const bool isroom = *row.refusal == '\0';
    EXPECT_EQ(given.result, isroom ? 0 : 1);
    EXPECT_EQ(slotat(rom).iComponents(), isroom ? 1 : 0);
    if (isroom) {
        EXPECT_EQ(slotat(rom).iUsed, componentat(rom, 0).iFixedEnd);
        return;
    }
    EXPECT_EQ(slotat(rom).iUsed, row.used);
    EXPECT_TRUE(slotat(rom).pcROM == before);
}

INSTANTIATE_TEST_SUITE_P(Limits, StructureRoom, ::testing::ValuesIn(cRooms));

TEST_F(Structures, VectorsFirstLeaveNoRoomForTheOthers) {
    const int32_t rom = romof(i512K);
    EXPECT_EQ(answer(addvectors, rom).result, 0);
    EXPECT_EQ(answer(addchecksum, rom).console, cNoChecksum);
    EXPECT_EQ(answer(addsize, rom).console, cNoSize);
    EXPECT_EQ(answer(addvectors, rom).console, "ERROR, no room for Vectors Used=524288\n");
    EXPECT_EQ(answer(addkickitysplit, rom).console, cNoSplit);
    EXPECT_EQ(slotat(rom).iComponents(), 1);
}

TEST_F(Structures, SizeFirstLeavesNoRoomForTheChecksum) {
    const int32_t rom = romof(i512K);
    EXPECT_EQ(answer(addsize, rom).result, 0);
    EXPECT_EQ(answer(addchecksum, rom).console, cNoChecksum);
    EXPECT_EQ(answer(addvectors, rom).result, 0);
}

TEST_F(Structures, NoneIsAddedTwice) {
    const int32_t rom = romof(i512K);
    for (const Add add : {addkickitysplit, addchecksum, addsize, addvectors}) {
        EXPECT_EQ(answer(add, rom).result, 0);
        EXPECT_EQ(answer(add, rom).result, 1);
    }
    EXPECT_EQ(slotat(rom).iComponents(), 4);
}

TEST_F(Structures, SlotsThatDoNotExistAreRefused) {
    romof(i512K);
    for (const int32_t rom : {-1, 1, 20, INT32_MIN}) {
        for (const Add add : {addkickitysplit, addchecksum, addsize, addvectors}) {
            const Answer given = answer(add, rom);
            EXPECT_EQ(given.result, 1);
            EXPECT_EQ(given.console, "ERROR, invalid ROM\n");
        }
        EXPECT_EQ(answer(checksum, rom).console, "Invalid ROM\n");
    }
}

TEST_F(Structures, TellAtTheirThresholds) {
    const auto blank = [] { romof(i512K); };
    const auto full = [] { romof(i512K, i512K); };
    expectthresholds(full, [] { addkickitysplit(0); }, {{kResult, cNoSplit}});
    expectthresholds(full, [] { addchecksum(0); }, {{kResult, cNoChecksum}});
    expectthresholds(full, [] { addsize(0); }, {{kResult, cNoSize}});
    expectthresholds(full, [] { addvectors(0); }, {{kResult, "ERROR, no room for Vectors Used=524288\n"}});
    expectthresholds(full, [] { addsize(1); }, {{kResult, "ERROR, invalid ROM\n"}});
    expectthresholds(full, [] { checksum(1); }, {{kResult, "Invalid ROM\n"}});
    expectthresholds(full, [] { checksum(0); }, {{kResult, "Error: No checksum component\n"}});
    // 131072 longs of all ones but the one left out: with end-around carry all ones, whose complement is 0.
    expectthresholds(blank, [] { addchecksum(0); },
                     {{kProgress, "Checksum calculated as 00000000, use \"checksum\" to update if you change "
                                  "the rom\n"}});
}

} // namespace vantorel::test
