// The same disks given to an independent reader: built ones, so that the builder tells the truth, and real
// ones.

#include "adf/image.h"
#include "adf/loaded.h"
#include "adf/unadf.h"
#include "support/realfiles.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace vantorel::test {
namespace {

namespace fs = std::filesystem;

/// Paths below `folder` in the form of the file table.
std::set<std::string> pathsbelow(const fs::path& folder) {
    std::set<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        paths.insert("/" + entry.path().lexically_relative(folder).string() +
                     (entry.is_directory() ? "/" : ""));
    return paths;
}

/// Loads and saves everything on the disk `image` (a path) and compares it with what the judge extracted.
void comparewithjudge(const std::string& image, const fs::path& extracted) {
    std::string volume;
    EXPECT_EQ(captured([&] { volume = loadadf(image); }), "");
    const Lines paths = listing();
    EXPECT_EQ(std::set(paths.begin(), paths.end()), pathsbelow(extracted));
    for (const auto& path : paths)
        if (path.back() != '/') {
            const Saved saved = save(path);
            EXPECT_EQ(saved.console, "");
            EXPECT_EQ(saved.bytes, contentsof(extracted / path.substr(1))) << path;
        }
}

DiskBuilder variousdisk(FileSystem system) {
    DiskBuilder disk(system, "Various");
    disk.addfile("Startup", "hello", {12905, 215, 100});
    disk.adddirectory("Empty");
    disk.addfile("S/Startup-Sequence", "echo hi\n");
    disk.addfile("Libs/a/b/c/big", pattern(300000));
    for (const size_t blocks : {1u, 71u, 72u, 73u, 144u, 145u})
        disk.addfile("full/" + std::to_string(blocks), pattern(blocks * payloadof(system)));
    for (int i = 0; i < 200; i++)
        disk.addfile("many/File" + std::to_string(i), std::to_string(i));
    return disk;
}

class AdfJudge : public testing::TestWithParam<FileSystem> {};
INSTANTIATE_TEST_SUITE_P(Both, AdfJudge, testing::Values(FileSystem::Ofs, FileSystem::Ffs),
                         [](const auto& tested) { return nameof(tested.param); });

TEST_P(AdfJudge, BuiltDisksAreSoundAndReadAlike) {
    if (!hasunadf()) GTEST_SKIP() << "unadf is not installed";
    const TempDir directory;
    const std::string image = directory.file("disk.adf", variousdisk(GetParam()).image());
    const std::string report = unadf(image, directory);
    EXPECT_NE(report.find("\"Various\" between sectors [0-1759]. " + nameof(GetParam())), std::string::npos)
        << report;
    EXPECT_EQ(report.find("Warning"), std::string::npos) << report;
    EXPECT_EQ(report.find("Error"), std::string::npos) << report;
    comparewithjudge(image, directory.file("disk"));
    EXPECT_GT(listing().size(), 200u);
}

// The judge grumbles at an empty OFS file, whose first data block it reads from the boot block.
TEST_P(AdfJudge, EmptyFilesReadAlike) {
    if (!hasunadf()) GTEST_SKIP() << "unadf is not installed";
    DiskBuilder disk(GetParam());
    disk.addfile("nothing", "");
    const TempDir directory;
    const std::string image = directory.file("disk.adf", disk.image());
    unadf(image, directory);
    comparewithjudge(image, directory.file("disk"));
}

class RealDisk : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(All, RealDisk,
                         testing::Values("aros-20130502-boot.adf", "boot-dd-ofs.adf", "boot-dd-ffs.adf"));

TEST_P(RealDisk, EveryFileEqualsTheJudges) {
    const auto image = realfile(GetParam());
    if (!image) GTEST_SKIP() << needsreal;
    if (!hasunadf()) GTEST_SKIP() << "unadf is not installed";
    const TempDir directory;
    const std::string report = unadf(*image, directory);
    comparewithjudge(*image, directory.file("disk"));
    EXPECT_NE(report.find("\"" + loadadf(*image) + "\""), std::string::npos) << report;
}

/// Header block and time of an entry of the loaded disk; zeros when it is missing.
std::pair<int32_t, int64_t> entryat(const std::string& path) {
    const Lines paths = listing();
    const auto found = std::ranges::find(paths, path);
    if (found == paths.end()) return {};
    const DiskEntry& entry = psFiles[static_cast<size_t>(found - paths.begin())];
    return {entry.iFNBlock, entry.iSeconds};
}

// Volume, block numbers and times as the judge prints them, in UTC.
TEST(RealDisks, VolumesBlocksAndTimesAreTheJudges) {
    const auto aros = realfile("aros-20130502-boot.adf");
    const auto ofs = realfile("boot-dd-ofs.adf");
    const auto ffs = realfile("boot-dd-ffs.adf");
    if (!aros || !ofs || !ffs) GTEST_SKIP() << needsreal;
    EXPECT_EQ(loadadf(*aros), "AROS Kickstart");
    EXPECT_EQ(FFS, 0);
    EXPECT_EQ(entryat("/S/Shell-Startup"), std::pair(321, int64_t{1367465702})); // 2013-05-02 03:35:02
    EXPECT_EQ(loadadf(*ofs), "Boot-DD-OFS");
    EXPECT_EQ(FFS, 0);
    EXPECT_EQ(entryat("/S/Startup-Sequence"), std::pair(885, int64_t{1502856953})); // 2017-08-16 04:15:53
    EXPECT_EQ(loadadf(*ffs), "Boot-DD-FFS");
    EXPECT_EQ(FFS, 1);
    EXPECT_EQ(entryat("/S/Startup-Sequence"), std::pair(883, int64_t{1502856552})); // 2017-08-16 04:09:12
}

} // namespace
} // namespace vantorel::test
