// loadadf: what is taken, what is refused, and what stays when it is refused.

#include "adf/image.h"
#include "adf/loaded.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

constexpr size_t kImageSize = 901120;

DiskBuilder smalldisk() {
    DiskBuilder disk(FileSystem::Ofs, "Small");
    disk.addfile("Startup", "hello");
    return disk;
}

TEST(AdfLoad, GivesTheVolumeNameAndSaysNothing) {
    const AtLevel level(10);
    const Loaded loaded = load(DiskBuilder(FileSystem::Ofs, "Work Bench 1.3"));
    EXPECT_EQ(loaded.volume, "Work Bench 1.3");
    EXPECT_EQ(loaded.console, "");
    EXPECT_EQ(loaded.paths, Lines{});
}

TEST(AdfLoad, TakesTheFileSystemFromBit0OfByte3) {
    load(DiskBuilder(FileSystem::Ffs));
    EXPECT_EQ(FFS, 1);
    EXPECT_EQ(iDataBlockSize, 512);
    EXPECT_EQ(iDataBlockOffset, 0);
    load(DiskBuilder(FileSystem::Ofs));
    EXPECT_EQ(FFS, 0);
    EXPECT_EQ(iDataBlockSize, 488);
    EXPECT_EQ(iDataBlockOffset, 24);
    Bytes international = DiskBuilder(FileSystem::Ofs).image();
    international[3] = 2;
    load(international);
    EXPECT_EQ(FFS, 0);
}

TEST(AdfLoad, OneByteTooLongIsRefusedWithItsSize) {
    Bytes image = smalldisk().image();
    image.push_back(0);
    const Loaded loaded = load(image);
    EXPECT_EQ(loaded.volume, "<none>");
    EXPECT_EQ(loaded.console, "ERROR: ADF size wrong, must be 901120 bytes is 901121\n");
}

TEST(AdfLoad, EveryTruncationIsRefusedAndKeepsTheDiskBefore) {
    load(smalldisk());
    const Bytes other = DiskBuilder(FileSystem::Ffs, "Other").image();
    for (const size_t size : {size_t{0}, size_t{1}, size_t{3}, size_t{512}, size_t{450559}, kImageSize - 1}) {
        const Loaded loaded = load(View(other).first(size));
        EXPECT_EQ(loaded.volume, "<none>");
        EXPECT_EQ(loaded.console,
                  "ERROR: ADF size wrong, must be 901120 bytes is " + std::to_string(size) + "\n");
        EXPECT_EQ(loaded.paths, Lines{"/Startup"});
        EXPECT_EQ(save("/Startup").bytes, bytesof("hello"));
    }
}

TEST(AdfLoad, SizeMessageIsUnconditional) {
    const AtLevel level(0);
    EXPECT_EQ(load(Bytes(12)).console, "ERROR: ADF size wrong, must be 901120 bytes is 12\n");
}

TEST(AdfLoad, MissingFileKeepsTheDiskBefore) {
    load(smalldisk());
    const AtLevel level(0);
    std::string volume;
    EXPECT_EQ(captured([&] { volume = loadadf("/no/such/disk.adf"); }),
              "ERROR: Unable to open ADF:/no/such/disk.adf\n");
    EXPECT_EQ(volume, "<none>");
    EXPECT_EQ(listing(), Lines{"/Startup"});
    EXPECT_EQ(save("/Startup").bytes, bytesof("hello"));
}

TEST(AdfLoad, DirectoryOfTheHostCannotBeOpened) {
    const TempDir directory;
    EXPECT_EQ(captured([&] { EXPECT_EQ(loadadf(directory.path()), "<none>"); }),
              "ERROR: Unable to open ADF:" + directory.path() + "\n");
}

TEST(AdfLoad, SizeOfAnImageInMemoryIsCheckedToo) {
    std::string volume;
    EXPECT_EQ(captured([&] { volume = loadadfimage(Bytes(kImageSize + 512)); }),
              "ERROR: ADF size wrong, must be 901120 bytes is 901632\n");
    EXPECT_EQ(volume, "<none>");
    EXPECT_EQ(loadadfimage(smalldisk().image()), "Small");
    EXPECT_EQ(listing(), Lines{"/Startup"});
}

TEST(AdfLoad, SuccessReplacesImageAndTable) {
    load(smalldisk());
    DiskBuilder disk(FileSystem::Ffs, "Next");
    disk.addfile("Other", "world");
    EXPECT_EQ(load(disk).paths, Lines{"/Other"});
    EXPECT_EQ(save("/Startup").result, 1);
    EXPECT_EQ(save("/Other").bytes, bytesof("world"));
}

// The file shrinks between the look at its size and the reading.
TEST(AdfLoad, ShortReadLeavesAPartOfTheImageAndTheOldTable) {
    DiskBuilder next(FileSystem::Ffs, "Next");
    next.addfile("Other", "world");
    const Bytes image = next.image();
    const TempDir directory;
    for (const size_t size : {size_t{0}, size_t{700}, kImageSize / 2 + 700, kImageSize - 1}) {
        load(smalldisk());
        const Bytes former(cBuffer.begin(), cBuffer.end());
        const std::string path = directory.file("disk.adf", image);
        InputFile file(path);
        std::filesystem::resize_file(path, size);
        EXPECT_EQ(captured([&] { EXPECT_EQ(loadadf(file), "<none>"); }), "");
        EXPECT_EQ(listing(), Lines{"/Startup"});
        const auto split = static_cast<ptrdiff_t>(size);
        EXPECT_TRUE(std::equal(image.begin(), image.begin() + split, cBuffer.begin()));
        EXPECT_TRUE(std::equal(former.begin() + split, former.end(), cBuffer.begin() + split));
        EXPECT_EQ(FFS, 0);
        EXPECT_EQ(save("/Startup").result, 0);
    }
}

} // namespace
} // namespace vantorel::test
