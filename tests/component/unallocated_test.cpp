// Blocks of fill bytes, which go where they first fit.

#include "component/placement.h"

#include "build/virtualcomponents.h"
#include "rom/romtest.h"

#include <cstdint>

namespace vantorel::test {

namespace {

constexpr int32_t iEmptySize = 4096;

class Unallocated : public FreshTest {
protected:
    void SetUp() override {
        FreshTest::SetUp();
        silently([] { newrom(iEmptySize, 0); });
    }

    /// Adds a block; what is said is in `console`.
    int add(int32_t bytes, int8_t fill) {
        int result = 1;
        console = captured([&] { result = addunallocated(0, bytes, fill); });
        return result;
    }

    /// Adds blocks of 1000, 1024 and 500 bytes and takes the middle one out again.
    void makegap() {
        EXPECT_EQ(add(1000, 1), 0);
        EXPECT_EQ(add(1024, 2), 0);
        EXPECT_EQ(add(500, 3), 0);
        silently([] { deletecomponent(0, 1); });
    }

    std::string console;
};

const std::string cNoSpace = "Not enough space in rom\nNo space in rom\n";

} // namespace

TEST_F(Unallocated, TheFirstBlockBeginsTheImage) {
    EXPECT_EQ(add(1024, -1), 0);
    EXPECT_EQ(console, "");
    ASSERT_EQ(slotat(0).iComponents(), 1);
    const Component& block = componentat(0, 0);
    EXPECT_EQ(block.pcName, "Unallocated");
    EXPECT_EQ(block.pcHash, "Unallocated");
    EXPECT_EQ(block.pcType, "Data");
    EXPECT_EQ(block.iStart, 0);
    EXPECT_EQ(block.iSize, 1024);
    EXPECT_EQ(block.iFixedStart, 0);
    EXPECT_EQ(block.iFixedEnd, 1024);
    EXPECT_EQ(block.iROMTag, -1);
    EXPECT_EQ(block.iRelocs(), 0);
    EXPECT_FALSE(block.pcLibName);
    EXPECT_FALSE(block.pcLibString);
    EXPECT_EQ(block.pcExtract, Bytes(1024, 0xFF));
    EXPECT_EQ(slotat(0).iUsed, 1024);
    Bytes expected(iEmptySize, 0);
    std::fill_n(expected.begin(), 1024, uint8_t{0xFF});
    EXPECT_EQ(slotat(0).pcROM, expected);
}

TEST_F(Unallocated, AGapOfJustItsSizeIsTaken) {
    makegap();
    EXPECT_EQ(add(1024, 0x7F), 0);
    EXPECT_EQ(componentat(0, 1).iStart, 1000);
    EXPECT_EQ(componentat(0, 2).iStart, 2024);
    EXPECT_EQ(slotat(0).pcROM[1000], 0x7F);
    EXPECT_EQ(slotat(0).pcROM[2023], 0x7F);
    EXPECT_EQ(slotat(0).pcROM[2024], 3);
    EXPECT_EQ(slotat(0).iUsed, 2524) << "only the last component moves it";
}

TEST_F(Unallocated, AGapOneByteTooSmallIsPassedOver) {
    makegap();
    EXPECT_EQ(add(1025, 0x7F), 0);
    EXPECT_EQ(componentat(0, 2).iStart, 2524);
    EXPECT_EQ(slotat(0).iUsed, 3549);
}

TEST_F(Unallocated, TheLastByteOfTheImageCanBeTaken) {
    EXPECT_EQ(add(4000, 1), 0);
    EXPECT_EQ(add(97, 2), -1);
    EXPECT_EQ(console, cNoSpace);
    EXPECT_EQ(slotat(0).iUsed, 4000);
    EXPECT_EQ(slotat(0).iComponents(), 1);
    EXPECT_EQ(add(96, 2), 0);
    EXPECT_EQ(slotat(0).iUsed, iEmptySize);
}

TEST_F(Unallocated, WhatIsLargerThanTheImageIsRefused) {
    for (const int32_t bytes : {iEmptySize + 1, 2147483647}) {
        EXPECT_EQ(add(bytes, 1), -1);
        EXPECT_EQ(console, cNoSpace);
    }
    EXPECT_EQ(slotat(0).iComponents(), 0);
    EXPECT_EQ(slotat(0).pcROM, Bytes(iEmptySize, 0));
}

TEST_F(Unallocated, SlotsThatDoNotExistAreRefused) {
    for (const int32_t rom : {-1, 1, 20, INT32_MIN}) {
        int result = 0;
        EXPECT_EQ(captured([&] { result = addunallocated(rom, 4, 0); }), "ERROR, invalid ROM\n");
        EXPECT_EQ(result, -1);
    }
}

TEST_F(Unallocated, TheWholeImageCanBeTaken) {
    EXPECT_EQ(add(iEmptySize, 9), 0);
    EXPECT_EQ(slotat(0).pcROM, Bytes(iEmptySize, 9));
}

TEST_F(Unallocated, ABlockOfNoBytesIsAComponentToo) {
    EXPECT_EQ(add(0, 9), 0);
    EXPECT_EQ(componentat(0, 0).iSize, 0);
    EXPECT_EQ(slotat(0).iUsed, 0);
    EXPECT_EQ(slotat(0).pcROM, Bytes(iEmptySize, 0));
}

TEST_F(Unallocated, ItMakesRoomForTheEndOfTheImageOnlyBelowIt) {
    silently([] {
        addchecksum(0);
        addsize(0);
        addvectors(0);
    });
    EXPECT_EQ(add(iEmptySize - 24, 9), 0);
    EXPECT_EQ(componentat(0, 0).pcName, "Unallocated");
    EXPECT_EQ(componentat(0, 1).pcName, "Checksum");
    EXPECT_EQ(slotat(0).iUsed, iEmptySize);
    EXPECT_EQ(add(1, 9), -1);
    EXPECT_EQ(console, cNoSpace);
}

} // namespace vantorel::test
