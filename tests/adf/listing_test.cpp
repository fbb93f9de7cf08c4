// adflist and the file table: order, paths, names and times of sound disks.

#include "adf/image.h"
#include "adf/loaded.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace vantorel::test {
namespace {

class AdfListing : public testing::TestWithParam<FileSystem> {};
INSTANTIATE_TEST_SUITE_P(Both, AdfListing, testing::Values(FileSystem::Ofs, FileSystem::Ffs),
                         [](const auto& tested) { return nameof(tested.param); });

TEST_P(AdfListing, FileInTheRoot) {
    DiskBuilder disk(GetParam());
    disk.addfile("Startup", "x");
    EXPECT_EQ(load(disk).paths, Lines{"/Startup"});
}

TEST_P(AdfListing, DirectoryThenItsFile) {
    DiskBuilder disk(GetParam());
    disk.addfile("S/Startup-Sequence", "x");
    EXPECT_EQ(load(disk).paths, (Lines{"/S/", "/S/Startup-Sequence"}));
}

TEST_P(AdfListing, ContentsComeDirectlyBehindTheirDirectoryInHashOrder) {
    DiskBuilder disk(GetParam());
    const Lines names = {"Libs", "Devs", "C", "Fonts", "Prefs", "System"};
    for (const auto& name : names)
        disk.addfile(name + "/inside", "x");
    Lines sorted = names;
    std::ranges::sort(sorted, {}, DiskBuilder::slotof);
    Lines expected;
    for (const auto& name : sorted) {
        expected.push_back("/" + name + "/");
        expected.push_back("/" + name + "/inside");
    }
    EXPECT_EQ(load(disk).paths, expected);
}

TEST_P(AdfListing, NamesInOneSlotComeInChainOrder) {
    DiskBuilder disk(GetParam());
    const Lines names = chained("Name", 4);
    disk.addfile(names[0], "0");
    disk.addfile(names[1] + "/inside", "1");
    disk.addfile(names[2], "2");
    disk.addfile(names[3], "3");
    EXPECT_EQ(load(disk).paths, (Lines{"/" + names[0], "/" + names[1] + "/", "/" + names[1] + "/inside",
                                       "/" + names[2], "/" + names[3]}));
}

TEST_P(AdfListing, OutsideTheTableThereIsNothing) {
    DiskBuilder disk(GetParam());
    disk.addfile("Startup", "x");
    load(disk);
    EXPECT_EQ(adflist(1), "");
    EXPECT_EQ(adflist(-1), "");
    EXPECT_EQ(adflist(INT32_MAX), "");
    EXPECT_EQ(adflist(INT32_MIN), "");
}

TEST_P(AdfListing, MoreEntriesThanTheTableFirstHolds) {
    DiskBuilder disk(GetParam());
    for (int i = 0; i < 350; i++)
        disk.addfile("file" + std::to_string(i), std::to_string(i));
    const Lines paths = load(disk).paths;
    EXPECT_EQ(paths.size(), 350u);
    EXPECT_EQ(std::set(paths.begin(), paths.end()).size(), 350u);
    for (int i = 0; i < 350; i++)
        EXPECT_EQ(save("/file" + std::to_string(i)).bytes, bytesof(std::to_string(i)));
}

TEST_P(AdfListing, DirectoriesAsDeepAsTheDisk) {
    DiskBuilder disk(GetParam());
    std::string path = "d";
    for (int depth = 1; depth < 1700; depth++)
        path += "/d";
    disk.adddirectory(path);
    const Loaded loaded = load(disk);
    EXPECT_EQ(loaded.console, "");
    ASSERT_EQ(loaded.paths.size(), 1700u);
    EXPECT_EQ(loaded.paths.back(), "/" + path + "/");
}

TEST_P(AdfListing, EntriesKnowTheirTimeAndHeader) {
    DiskBuilder disk(GetParam());
    disk.addfile("Shell-Startup", "x", {12905, 3 * 60 + 35, 2 * 50});
    load(disk);
    ASSERT_EQ(psFiles.size(), 1u);
    EXPECT_EQ(psFiles[0].iSeconds, 1367465702); // 2013-05-02 03:35:02 UTC
    EXPECT_EQ(psFiles[0].iFNBlock, disk.blockof("Shell-Startup"));
    EXPECT_FALSE(psFiles[0].isdirectory);
}

TEST_P(AdfListing, TheEpochAndPartsOfASecond) {
    DiskBuilder disk(GetParam());
    disk.adddirectory("D");
    load(disk);
    EXPECT_EQ(psFiles.at(0).iSeconds, 252460800);
    EXPECT_TRUE(psFiles.at(0).isdirectory);
    for (const auto& [ticks, seconds] : {std::pair{49u, 0}, {50u, 1}, {2999u, 59}}) {
        disk.poke(disk.blockof("D"), adf::kTicks, ticks);
        load(disk);
        EXPECT_EQ(psFiles.at(0).iSeconds, 252460800 + seconds);
    }
}

TEST_P(AdfListing, TheLargestTimeDoesNotWrap) {
    DiskBuilder disk(GetParam());
    disk.addfile("F", "x", {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF});
    load(disk);
    EXPECT_EQ(psFiles.at(0).iSeconds, 371343210685845);
}

/// Bytes from the length byte on, of the volume and of a file alike.
void expectname(FileSystem system, const std::string& field, const std::string& name) {
    DiskBuilder disk(system);
    disk.addfile("X", "x");
    disk.pokebytes(adf::iRootBlock, adf::kNameLength, bytesof(field));
    disk.pokebytes(disk.blockof("X"), adf::kNameLength, bytesof(field));
    const Loaded loaded = load(disk);
    EXPECT_EQ(loaded.volume, name);
    EXPECT_EQ(loaded.paths, Lines{"/" + name});
}

const std::string kThirty = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123";

TEST_P(AdfListing, NameOfThirtyCharactersWithoutPadding) {
    expectname(GetParam(), "\x1E" + kThirty + "junk", kThirty);
}

TEST_P(AdfListing, NameEndsAtItsLengthWithoutPadding) { expectname(GetParam(), "\x04Namejunkjunk", "Name"); }

TEST_P(AdfListing, NameEndsAtItsPaddingBeforeItsLength) {
    expectname(GetParam(), "\x1EName" + std::string(30, '\0'), "Name");
}

TEST_P(AdfListing, LengthThatCannotBeLeavesItToThePadding) {
    expectname(GetParam(), std::string(1, '\0') + "Name" + std::string(30, '\0'), "Name");
    expectname(GetParam(), "\x1FName" + std::string(30, '\0'), "Name");
    expectname(GetParam(), "\xFFName" + std::string(30, '\0'), "Name");
}

TEST_P(AdfListing, NeverMoreThanThirtyCharacters) {
    expectname(GetParam(), std::string(1, '\0') + kThirty + "junk", kThirty);
    expectname(GetParam(), "\x1F" + kThirty + "junk", kThirty);
    expectname(GetParam(), "\xFF" + kThirty + "junk", kThirty);
}

TEST_P(AdfListing, LinksAreNamedWithTheirTypeAndNotAdded) {
    DiskBuilder disk(GetParam());
    const Lines names = chained("Link", 2);
    disk.addfile("S/" + names[0], "x");
    disk.addfile("S/" + names[1], "behind the link");
    disk.poke(disk.blockof("S/" + names[0]), adf::kSecondaryType, static_cast<uint32_t>(-4));
    const AtLevel level(0);
    const Loaded loaded = load(disk);
    EXPECT_EQ(loaded.console, "-4? /S/Link\n");
    EXPECT_EQ(loaded.paths, (Lines{"/S/", "/S/" + names[1]}));
}

TEST_P(AdfListing, UnknownTypeInTheRoot) {
    DiskBuilder disk(GetParam());
    disk.addfile("Odd", "x");
    disk.poke(disk.blockof("Odd"), adf::kSecondaryType, 77);
    EXPECT_EQ(load(disk).console, "77? /Odd\n");
    EXPECT_EQ(listing(), Lines{});
}

} // namespace
} // namespace vantorel::test
