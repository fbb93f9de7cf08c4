// adfsavefile and the contents of files on sound disks.

#include "adf/filedata.h"
#include "adf/loaded.h"

#include <array>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vantorel::test {
namespace {

class AdfSaving : public testing::TestWithParam<FileSystem> {};
INSTANTIATE_TEST_SUITE_P(Both, AdfSaving, testing::Values(FileSystem::Ofs, FileSystem::Ffs),
                         [](const auto& tested) { return nameof(tested.param); });

// Around every boundary: a block of either system, a full table, and a full extension block.
constexpr std::array<size_t, 17> kSizes = {0,     1,     487,   488,   489,   511,   512,   513,   35135,
                                           35136, 35137, 36863, 36864, 36865, 70272, 73729, 200000};

DiskBuilder diskofsizes(FileSystem system) {
    DiskBuilder disk(system);
    for (const size_t size : kSizes)
        disk.addfile("sizes/" + std::to_string(size), pattern(size));
    return disk;
}

TEST_P(AdfSaving, FilesOfEverySizeComeBack) {
    load(diskofsizes(GetParam()));
    for (const size_t size : kSizes) {
        const Saved saved = save("/sizes/" + std::to_string(size));
        EXPECT_EQ(saved.result, 0);
        EXPECT_EQ(saved.console, "");
        EXPECT_EQ(saved.bytes, pattern(size));
    }
}

TEST(AdfSaving, BothFileSystemsGiveIdenticalFiles) {
    for (const size_t size : kSizes) {
        const std::string path = "/sizes/" + std::to_string(size);
        load(diskofsizes(FileSystem::Ofs));
        const Bytes ofs = save(path).bytes;
        load(diskofsizes(FileSystem::Ffs));
        EXPECT_EQ(save(path).bytes, ofs);
    }
}

TEST_P(AdfSaving, FileAsLargeAsTheDiskAllows) {
    const size_t size = 1720 * payloadof(GetParam());
    DiskBuilder disk(GetParam());
    disk.addfile("big", pattern(size));
    load(disk);
    const Saved saved = save("/big");
    EXPECT_EQ(saved.console, "");
    EXPECT_EQ(saved.bytes, pattern(size));
}

TEST_P(AdfSaving, NameWithoutItsLeadingSlashFindsNothing) {
    DiskBuilder disk(GetParam());
    disk.addfile("Startup", "x");
    load(disk);
    const AtLevel level(10);
    const Saved saved = save("Startup");
    EXPECT_EQ(saved.result, 1);
    EXPECT_EQ(saved.console, "");
    EXPECT_FALSE(saved.exists);
}

TEST_P(AdfSaving, NamesAreComparedWholeAndWithCase) {
    DiskBuilder disk(GetParam());
    disk.addfile("S/Startup", "x");
    load(disk);
    for (const char* name : {"", "/", "/s/startup", "/S/Startu", "/S/Startup2", "/S", "//S/Startup"}) {
        EXPECT_EQ(save(name).result, 1) << name;
        EXPECT_FALSE(save(name).exists) << name;
    }
}

TEST_P(AdfSaving, DirectoryIsSavedAsAnEmptyFile) {
    DiskBuilder disk(GetParam());
    disk.addfile("S/Startup", "x");
    load(disk);
    const Saved saved = save("/S/");
    EXPECT_EQ(saved.result, 0);
    EXPECT_EQ(saved.console, "");
    EXPECT_TRUE(saved.exists);
    EXPECT_EQ(saved.bytes, Bytes{});
}

TEST_P(AdfSaving, FirstOfTwoEntriesWithOnePathIsTaken) {
    DiskBuilder disk(GetParam());
    const Lines names = chained("Twin", 2);
    disk.addfile(names[0], "first");
    disk.addfile(names[1], "second");
    disk.pokebytes(disk.blockof(names[1]), adf::kNameLength, bytesof(std::string("\x04Twin\0\0\0\0", 9)));
    EXPECT_EQ(load(disk).paths, (Lines{"/Twin", "/Twin"}));
    EXPECT_EQ(save("/Twin").bytes, bytesof("first"));
}

TEST_P(AdfSaving, ExistingFileIsReplaced) {
    DiskBuilder disk(GetParam());
    disk.addfile("Startup", "short");
    load(disk);
    const TempDir directory;
    const std::string target = directory.file("out", std::string_view("something much longer"));
    EXPECT_EQ(adfsavefile("/Startup", target), 0);
    EXPECT_EQ(directory.bytes("out"), bytesof("short"));
}

TEST_P(AdfSaving, NewFileGetsPermissionBits0755) {
    DiskBuilder disk(GetParam());
    disk.addfile("Startup", "x");
    load(disk);
    const TempDir directory;
    const mode_t former = umask(0);
    EXPECT_EQ(adfsavefile("/Startup", directory.file("out")), 0);
    umask(former);
    struct stat status {};
    ASSERT_EQ(stat(directory.file("out").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0755u);
}

/// What saving a small file to `target` prints at a level.
std::string consoleof(FileSystem system, const std::string& target, int32_t level) {
    DiskBuilder disk(system);
    disk.addfile("Startup", "x");
    load(disk);
    const AtLevel verbosity(level);
    return captured([&] { EXPECT_EQ(adfsavefile("/Startup", target), 1); });
}

TEST_P(AdfSaving, TargetThatCannotBeOpenedIsReportedAtEveryLevel) {
    for (const int32_t level : {0, 1})
        for (const char* target : {"/no/such/folder/out", "", "/tmp"})
            EXPECT_EQ(consoleof(GetParam(), target, level), "ERROR: failed to open output file\n");
}

TEST_P(AdfSaving, FullHostDiskIsReportedAboveLevel0) {
    EXPECT_EQ(consoleof(GetParam(), "/dev/full", 1), "ERROR: failed to write output file /dev/full\n");
    EXPECT_EQ(consoleof(GetParam(), "/dev/full", 0), "");
}

TEST_P(AdfSaving, DataIsAppendedInWholeBlocks) {
    DiskBuilder disk(GetParam());
    const int32_t header = disk.addfile("F", pattern(600));
    load(disk);
    Bytes out = bytesof("before");
    EXPECT_EQ(adfadddata(header, out), "");
    ASSERT_EQ(out.size(), 6 + 2 * payloadof(GetParam()));
    Bytes expected = pattern(600);
    expected.insert(expected.begin(), {'b', 'e', 'f', 'o', 'r', 'e'});
    out.resize(606);
    EXPECT_EQ(out, expected);
}

TEST_P(AdfSaving, EntriesOutsideTheTableHaveNoData) {
    DiskBuilder disk(GetParam());
    disk.addfile("F", "x");
    load(disk);
    EXPECT_EQ(adffiledata(0), bytesof("x"));
    EXPECT_EQ(adffiledata(1), Bytes{});
    EXPECT_EQ(adffiledata(-1), Bytes{});
}

} // namespace
} // namespace vantorel::test
