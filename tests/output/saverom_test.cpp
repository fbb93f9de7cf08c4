#include "output/saverom.h"

#include "output/burntest.h"

#include <sys/stat.h>

namespace vantorel::test {

namespace {

class SaveRom : public BurnTest {
protected:
    /// What saving slot `rom` prints; its result is in `result`.
    std::string printed(int32_t rom, const std::string& name) {
        return captured([&] { result = saverom(rom, name); });
    }

    int result = -1;
};

} // namespace

TEST_F(SaveRom, TheImageGoesOutAsItIs) {
    for (const size_t size : {0U, 1U, 3U, 5U, 1023U, 524288U}) {
        const Bytes image = noisebytes(size, 5);
        const int32_t rom = slotof(image);
        EXPECT_EQ(printed(rom, "image"), "");
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(folder.bytes("image") == image) << size;
    }
}

TEST_F(SaveRom, UnusedBytesGoOutToo) {
    silently([] { newrom(100, 0xA5); });
    EXPECT_EQ(slotat(0).iUsed, 0);
    EXPECT_EQ(printed(0, "image"), "");
    EXPECT_EQ(folder.bytes("image"), Bytes(100, 0xA5));
}

TEST_F(SaveRom, TheNameIsFormedOfCrcAndTitle) {
    slotof({1, 2, 3});
    slotat(0).iCRC32 = 0x0BADF00D;
    slotat(0).pcTitle = "A title with blanks";
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_EQ(folder.bytes("0x0badf00d.A title with blanks"), (Bytes{1, 2, 3}));
}

TEST_F(SaveRom, ANewRomIsCalledUnnamed) {
    silently([] { newrom(4, 7); });
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_EQ(folder.bytes("0x00000000.Unnamed"), Bytes(4, 7));
}

TEST_F(SaveRom, AnAbsentTitleIsCalledNull) {
    slotof({1});
    slotat(0).pcTitle.reset();
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_TRUE(folder.exists("0x00000000.(null)"));
}

TEST_F(SaveRom, TheCrcIsThatOfLoading) {
    const BuiltRom rom = standardrom(262144);
    loaded(rom.image);
    slotat(0).pcTitle = "x";
    slotat(0).pcROM[0] = 0;
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_TRUE(folder.exists(hex32(rom.crc) + ".x"));
}

TEST_F(SaveRom, BothKindsOfNamesStandBelowTheSaveDirectory) {
    folder.folder("out");
    slotof({1});
    cSaveDir = "out/";
    EXPECT_EQ(printed(0, "image"), "");
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_TRUE(folder.exists("out/image"));
    EXPECT_TRUE(folder.exists("out/0x00000000.Unnamed"));
}

TEST_F(SaveRom, ATitleWithASlashNamesAFolder) {
    slotof({1});
    slotat(0).pcTitle = "1/2";
    EXPECT_EQ(printed(0, ""), "ERROR: failed to open output file 0x00000000.1/2\n");
    EXPECT_EQ(result, 1);
    folder.folder("0x00000000.1");
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_TRUE(folder.exists("0x00000000.1/2"));
}

TEST_F(SaveRom, WithoutAnySlotItFailsInSilence) {
    EXPECT_EQ(printed(0, "image"), "");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(printed(-1, "image"), "");
    EXPECT_EQ(result, 1);
    EXPECT_FALSE(folder.exists("image"));
}

TEST_F(SaveRom, SlotsBeyondBothEndsAreRefused) {
    slotof({1});
    for (const int32_t rom : {-2147483647 - 1, -1, 1, 20, 2147483647}) {
        EXPECT_EQ(printed(rom, "image"), "ERROR: no such ROM [" + std::to_string(rom) + "]\n");
        EXPECT_EQ(result, 1);
    }
    EXPECT_FALSE(folder.exists("image"));
}

TEST_F(SaveRom, AFileOfBeforeIsEmptiedFirst) {
    folder.file("image", noisebytes(1000, 3));
    slotof({1, 2});
    EXPECT_EQ(printed(0, "image"), "");
    EXPECT_EQ(folder.bytes("image"), (Bytes{1, 2}));
}

TEST_F(SaveRom, TheFileMayBeRunAndRead) {
    slotof({1});
    const mode_t mask = ::umask(022);
    EXPECT_EQ(printed(0, "image"), "");
    ::umask(mask);
    struct stat status {};
    ASSERT_EQ(::stat("image", &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0755U);
}

TEST_F(SaveRom, GeneratedPathsAreCutAt1023Characters) {
    slotof({1});
    slotat(0).pcTitle = std::string(100, 'x');
    folder.folder("d");
    // 1001 characters, 11 of "0x00000000." and 11 of the title.
    cSaveDir = "d" + std::string(1000, '/');
    EXPECT_EQ(printed(0, ""), "");
    EXPECT_TRUE(folder.exists("d/0x00000000." + std::string(11, 'x')));
}

} // namespace vantorel::test
