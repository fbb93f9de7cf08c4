// Images of noise: whatever they hold, the listing and the extraction end, and the table stays in order.

#include "adf/filedata.h"
#include "adf/loaded.h"
#include "support/noise.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace vantorel::test {
namespace {

DiskBuilder busydisk(FileSystem system) {
    DiskBuilder disk(system);
    for (int i = 0; i < 40; i++)
        disk.addfile("Dir" + std::to_string(i % 5) + "/Sub" + std::to_string(i % 3) + "/file" +
                         std::to_string(i),
                     pattern(static_cast<size_t>(i) * 500));
    disk.addfile("big", pattern(150000));
    return disk;
}

/// Loads an image, checks the table and collects every file. Returns the bytes found.
size_t exercise(View image) {
    size_t bytes = 0;
    (void)captured([&] {
        loadadfimage(image);
        std::set<int32_t> headers;
        for (size_t n = 0; n < psFiles.size(); n++) {
            const DiskEntry& entry = psFiles[n];
            EXPECT_LT(entry.iParent, static_cast<int32_t>(n));
            EXPECT_GE(entry.iParent, iNoParent);
            EXPECT_TRUE(headers.insert(entry.iFNBlock).second);
            EXPECT_EQ(adflist(static_cast<int32_t>(n)).front(), '/');
            const Bytes data = adffiledata(static_cast<int32_t>(n));
            EXPECT_LE(data.size(), size_t{adf::iImageSize});
            bytes += data.size();
        }
    });
    return bytes;
}

TEST(AdfNoise, ZerosAreADiskWithoutNameAndFiles) {
    const Loaded loaded = load(Bytes(adf::iImageSize));
    EXPECT_EQ(loaded.volume, "");
    EXPECT_EQ(loaded.console, "");
    EXPECT_EQ(loaded.paths, Lines{});
}

TEST(AdfNoise, OnesAreADiskWithOneDamagedDirectory) {
    const Loaded loaded = load(Bytes(adf::iImageSize, 0xFF));
    EXPECT_EQ(loaded.volume, std::string(30, '\xFF'));
    EXPECT_EQ(linesof(loaded.console).size(), 1u);
    EXPECT_EQ(loaded.paths, Lines{});
}

TEST(AdfNoise, WholeImagesOfNoise) {
    Noise random(1);
    for (int round = 0; round < 10; round++) {
        Bytes image(adf::iImageSize);
        std::ranges::generate(image, [&] { return static_cast<uint8_t>(random()); });
        exercise(image);
    }
}

// Small numbers in every long: all of them lead to blocks.
TEST(AdfNoise, EveryLongIsABlockNumber) {
    Noise random(2);
    for (int round = 0; round < 5; round++) {
        Bytes image;
        while (image.size() < size_t{adf::iImageSize})
            appendlong(image, random() % 1760);
        for (int32_t block = 2; block < adf::iBlocks; block++) {
            const uint32_t type = static_cast<uint32_t>(random() % 3 ? adf::kDirectory : adf::kFile);
            ASSERT_TRUE(putlong(image, int64_t{block} * 512 + adf::kSecondaryType, type));
            ASSERT_TRUE(putlong(image, int64_t{block} * 512 + adf::kFileSize, random() % 5000));
        }
        exercise(image);
        EXPECT_GT(psFiles.size(), 1500u);
    }
}

TEST(AdfNoise, RandomBytesChanged) {
    Noise random(3);
    for (const FileSystem system : {FileSystem::Ofs, FileSystem::Ffs}) {
        const Bytes sound = busydisk(system).image();
        for (int round = 0; round < 60; round++) {
            Bytes image = sound;
            for (int change = 0; change < 2000; change++)
                image[random() % image.size()] = static_cast<uint8_t>(random());
            exercise(image);
        }
    }
}

// Only the longs that lead somewhere, so that each change matters.
TEST(AdfNoise, RandomLinksChanged) {
    Noise random(4);
    const std::vector<int32_t> links = {adf::kPointerCount, adf::kFirstPointer, adf::kFileSize,
                                        adf::kHashChain,    adf::kExtension,    adf::kSecondaryType};
    for (const FileSystem system : {FileSystem::Ofs, FileSystem::Ffs}) {
        const Bytes sound = busydisk(system).image();
        for (int round = 0; round < 100; round++) {
            Bytes image = sound;
            for (int change = 0; change < 300; change++) {
                const int64_t block = 880 + random() % 400;
                const uint32_t value = random() % 4 ? 880 + random() % 400 : random();
                ASSERT_TRUE(putlong(image, block * 512 + links[random() % links.size()], value));
            }
            exercise(image);
        }
    }
}

// A disk that was read only in part, the rest zeros.
TEST(AdfNoise, CutOffDisksPaddedWithZeros) {
    const Bytes sound = busydisk(FileSystem::Ofs).image();
    for (size_t size = 0; size < sound.size(); size += 9973) {
        Bytes image = sound;
        std::fill(image.begin() + static_cast<ptrdiff_t>(size), image.end(), uint8_t{0});
        exercise(image);
    }
}

} // namespace
} // namespace vantorel::test
