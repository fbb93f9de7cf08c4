// Paths that may name a file on the disk image.

#include "adf/hostfile.h"

#include "adf/loaded.h"
#include "support/fresh.h"

namespace vantorel::test {
namespace {

constexpr const char* cTemporary = "TEMPFILE.bin";

class HostFileTest : public FreshTest {
protected:
    void SetUp() override {
        FreshTest::SetUp();
        DiskBuilder disk(FileSystem::Ofs);
        disk.addfile("S/Startup-Sequence", startup);
        disk.addfile("empty", Bytes{});
        load(disk);
    }

    TempDir directory;
    InDirectory inside{directory};
    const Bytes startup = pattern(2000);
};

TEST_F(HostFileTest, OnlyThePrefixInCapitalsNamesTheDisk) {
    for (const char* path : {"ADF:", "ADF:/S/Startup-Sequence", "ADF:x", "ADF:ADF:"})
        EXPECT_TRUE(isadfpath(path)) << path;
    for (const char* path : {"", "ADF", "adf:/x", "Adf:x", "/ADF:x", " ADF:x", "ADF /x", "A"})
        EXPECT_FALSE(isadfpath(path)) << path;
}

TEST_F(HostFileTest, OtherPathsStandForThemselves) {
    for (const std::string path : {"", "file", "/no/such/file", "adf:/empty", "dir/ADF:/empty"})
        EXPECT_EQ(hostfile(path), path);
    EXPECT_FALSE(directory.exists(cTemporary));
}

TEST_F(HostFileTest, AFileOnTheDiskIsCopiedToTheScratchFile) {
    EXPECT_EQ(captured([] { EXPECT_EQ(hostfile("ADF:/S/Startup-Sequence"), cTemporary); }), "");
    EXPECT_EQ(directory.bytes(cTemporary), startup);
    EXPECT_EQ(hostfile("ADF:/empty"), cTemporary);
    EXPECT_EQ(directory.bytes(cTemporary), Bytes{}) << "a longer one is replaced whole";
}

TEST_F(HostFileTest, WhatIsNotOnTheDiskHasNoHostFile) {
    directory.file(cTemporary, Bytes{1, 2, 3});
    for (const char* path :
         {"ADF:", "ADF:/", "ADF:/missing", "ADF:empty", "ADF:/S", "ADF:/s/startup-sequence2"})
        EXPECT_EQ(captured([&] { EXPECT_EQ(hostfile(path), std::nullopt) << path; }), "");
    freshstate();
    EXPECT_EQ(hostfile("ADF:/empty"), std::nullopt) << "no disk";
}

TEST_F(HostFileTest, WithoutAScratchFileThereIsNone) {
    directory.folder(cTemporary);
    EXPECT_EQ(captured([] { EXPECT_EQ(hostfile("ADF:/empty"), std::nullopt); }),
              "ERROR: failed to open output file\n");
}

} // namespace
} // namespace vantorel::test
