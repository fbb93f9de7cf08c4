// The builder of test disks itself, checked against the layout by hand.

#include "adf/loaded.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace vantorel::test {
namespace {

uint32_t sumof(View image, int32_t block) {
    uint32_t sum = 0;
    for (int32_t offset = 0; offset < 512; offset += 4)
        sum += longat(image, int64_t{block} * 512 + offset).value();
    return sum;
}

// Worked out by hand: "S" is 1, then 1 * 13 + 83 = 96, modulo 72.
TEST(DiskBuilder, NamesHashWithoutCase) {
    EXPECT_EQ(DiskBuilder::slotof("S"), 24);
    EXPECT_EQ(DiskBuilder::slotof("s"), 24);
    EXPECT_EQ(DiskBuilder::slotoffset("s"), 24 + 4 * 24);
}

TEST(DiskBuilder, BlocksSumToZeroAlsoWhenTheyLie) {
    for (const FileSystem system : {FileSystem::Ofs, FileSystem::Ffs}) {
        DiskBuilder disk(system);
        disk.addfile("S/file", pattern(100000));
        disk.poke(disk.blockof("S/file"), adf::kFileSize, 0xFFFFFFFF);
        disk.poke(disk.extensionof("S/file", 0), adf::kPointerCount, 99);
        const Bytes image = disk.image();
        for (const int32_t block :
             {880, 881, disk.blockof("S"), disk.blockof("S/file"), disk.extensionof("S/file", 1)})
            EXPECT_EQ(sumof(image, block), 0u) << block;
    }
}

TEST(DiskBuilder, OfsDataBlocksAreChained) {
    DiskBuilder disk(FileSystem::Ofs);
    const int32_t header = disk.addfile("file", pattern(1000));
    for (size_t n = 0; n < 3; n++) {
        const int32_t block = disk.datablockof("file", n);
        EXPECT_EQ(disk.peek(block, 0), 8u);
        EXPECT_EQ(disk.peek(block, 4), static_cast<uint32_t>(header));
        EXPECT_EQ(disk.peek(block, 8), n + 1);
        EXPECT_EQ(disk.peek(block, 12), n < 2 ? 488u : 24u);
        EXPECT_EQ(disk.peek(block, 16), n < 2 ? static_cast<uint32_t>(disk.datablockof("file", n + 1)) : 0u);
        EXPECT_EQ(sumof(disk.image(), block), 0u);
    }
}

TEST(DiskBuilder, BitmapHasABitForEveryFreeBlock) {
    DiskBuilder disk(FileSystem::Ffs);
    const int32_t header = disk.addfile("file", "x");
    const Bytes image = disk.image();
    auto isfree = [&](int32_t block) {
        return (longat(image, 881 * 512 + 4 + (block - 2) / 32 * 4).value() >> (block - 2) % 32 & 1) != 0;
    };
    for (const int32_t block : {880, 881, header, disk.datablockof("file", 0)})
        EXPECT_FALSE(isfree(block)) << block;
    for (const int32_t block : {2, 33, 34, 879, 1759})
        EXPECT_TRUE(isfree(block)) << block;
}

TEST(DiskBuilder, RefusesWhatCannotBe) {
    DiskBuilder disk(FileSystem::Ffs);
    disk.addfile("file", "x");
    EXPECT_THROW(disk.addfile("file", "x"), std::runtime_error);
    EXPECT_THROW(disk.addfile("a name of more than thirty chars", "x"), std::runtime_error);
    EXPECT_THROW(disk.addfile("huge", Bytes(901120)), std::runtime_error);
    EXPECT_THROW((void)disk.blockof("none"), std::runtime_error);
    EXPECT_THROW(disk.poke(1760, 0, 0), std::runtime_error);
    EXPECT_THROW(disk.poke(880, 509, 0), std::runtime_error);
}

} // namespace
} // namespace vantorel::test
