// Files that cannot be made or filled: one line each, nothing written after it, what is done stays.

#include "output/burntest.h"
#include "output/saverom.h"

#include <sys/stat.h>
#include <unistd.h>

namespace vantorel::test {

namespace {

class BurnFailure : public BurnTest {
protected:
    void full(const std::string& name) const {
        std::filesystem::create_symlink("/dev/full", folder.file(name));
    }

    void blocked(const std::string& name) const { std::filesystem::create_directory(folder.file(name)); }

    static void profilesized(int32_t type, int32_t size) {
        profileof(type, noiseimages({size, iAbsent, iAbsent, iAbsent}));
    }

    /// Burns a ROM for three chips, of which the second fails.
    void expectonlythefirstof3(const std::string& line) {
        profilesized(1, 3 * 524288);
        EXPECT_EQ(save(false, 512), 1);
        EXPECT_EQ(console, line);
        EXPECT_EQ(folder.bytes("rom.0.bin").size(), 524288U);
        EXPECT_FALSE(folder.exists("rom.2.bin"));
    }
};

} // namespace

TEST_F(BurnFailure, AFullDiskIsToldOf) {
    full("rom.bin");
    profilesized(1, 1024);
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "ERROR: failed to write output file rom.bin\n");
}

TEST_F(BurnFailure, AFullDiskIsToldOfForADiskImage) {
    full("rom.adf");
    profilesized(6, 262144);
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "ROM 0 [0] Size 262144 0x40000=262144\n"
                       "ERROR: failed to write output file rom.adf\n");
}

TEST_F(BurnFailure, AFullDiskEndsTheChunksAndThoseBeforeStay) {
    full("rom.1.bin");
    expectonlythefirstof3("ERROR: failed to write output file rom.1.bin\n");
}

TEST_F(BurnFailure, AChunkThatCannotBeOpenedEndsTheChunksAndThoseBeforeStay) {
    blocked("rom.1.bin");
    expectonlythefirstof3("ERROR: failed to open output file rom.1.bin\n");
}

TEST_F(BurnFailure, AHighFileThatCannotBeOpenedLeavesNoLowFile) {
    blocked("rom.hi.bin");
    profilesized(2, 1024);
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "ERROR: failed to open output file rom.hi.bin\n");
    EXPECT_FALSE(folder.exists("rom.lo.bin"));
}

TEST_F(BurnFailure, ALowFileThatCannotBeOpenedLeavesTheHighOneEmpty) {
    blocked("rom.lo.bin");
    profilesized(2, 1024);
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "ERROR: failed to open output file rom.lo.bin\n");
    EXPECT_EQ(folder.bytes("rom.hi.bin"), Bytes{});
}

TEST_F(BurnFailure, AFullChipIsToldOfOnce) {
    full("rom.hi.bin");
    full("rom.lo.bin");
    profilesized(2, 1024);
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(countof(console, "ERROR: failed to write output file rom."), 1) << console;
    EXPECT_EQ(countof(console, "\n"), 1) << console;
}

TEST_F(BurnFailure, AFullLowChipIsToldOf) {
    full("rom.lo.bin");
    profilesized(2, 1024);
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "ERROR: failed to write output file rom.lo.bin\n");
}

TEST_F(BurnFailure, NoDescriptorStaysOpen) {
    full("rom.hi.bin");
    blocked("rom.lo.1.bin");
    profilesized(2, 4 * 524288);
    const int before = ::dup(STDOUT_FILENO);
    ::close(before);
    for (const int32_t savesize : {0, 512})
        EXPECT_EQ(save(false, savesize), 1);
    const int after = ::dup(STDOUT_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

TEST_F(BurnFailure, AFolderThatMayNotBeWrittenToIsToldOf) {
    if (::geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
    folder.folder("locked");
    ::chmod(folder.file("locked").c_str(), 0500);
    profilesized(1, 1024);
    cSaveDir = "locked/";
    EXPECT_EQ(save(false, 0), 1);
    ::chmod(folder.file("locked").c_str(), 0700);
    EXPECT_EQ(console, "ERROR: failed to open output file locked/rom.bin\n");
}

TEST_F(BurnFailure, AFolderThatIsGoneIsToldOf) {
    profilesized(1, 1024);
    cSaveDir = "gone/";
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "ERROR: failed to open output file gone/rom.bin\n");
}

TEST_F(BurnFailure, APathLongerThanTheHostAllowsIsShownAsItWasCut) {
    profilesized(1, 1024);
    const std::string name(2000, 'x');
    EXPECT_EQ(captured([&] { EXPECT_EQ(saveprofile(false, 0, name), 1); }),
              "ERROR: failed to open output file " + std::string(1023, 'x') + "\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(saverom(0, name), 1); }),
              "ERROR: failed to open output file " + std::string(1023, 'x') + "\n");
}

} // namespace vantorel::test
