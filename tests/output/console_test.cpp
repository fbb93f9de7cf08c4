// What burning a profile says, line by line and in its order.

#include "output/burntest.h"

namespace vantorel::test {

namespace {

constexpr int32_t iTraces = 6; ///< the verbosity at which every line appears

class BurnConsole : public BurnTest {
protected:
    /// Everything that is said of a profile of ROMs of these sizes.
    std::string said(int32_t type, const Sizes& sizes, bool byteswap, int32_t savesize) {
        silently([&] { profileof(type, noiseimages(sizes)); });
        save(byteswap, savesize, iTraces);
        return console;
    }
};

const std::string cOne512 = "Adding ROMs to buffer\n"
                            "Adding ROM profile[0]=ROM 0 to buffer\n"
                            "Buffer is now 512k\n";

const std::string cCD32Wrong =
    "ERROR: First two ROMs MUST be exactly 512k, optional third ROM (4th in profile) "
    "MUST be 1Mb\n";

} // namespace

TEST_F(BurnConsole, TellsOfASingleFile) {
    EXPECT_EQ(said(1, {524288, iAbsent, iAbsent, iAbsent}, false, 0), cOne512 +
                                                                          "Single rom, no HI/LO separation\n"
                                                                          "Single-Chunk [#]:rom.bin\n");
}

TEST_F(BurnConsole, WithoutAProfileChosenTellsOfASingleFileToo) {
    EXPECT_EQ(said(0, {524288, iAbsent, iAbsent, iAbsent}, false, 0), cOne512 +
                                                                          "Single rom, no HI/LO separation\n"
                                                                          "Single-Chunk [#]:rom.bin\n");
}

TEST_F(BurnConsole, TellsOfEachRomFromTheLowestAddressRangeOn) {
    EXPECT_EQ(said(1, {1024, 2048, iAbsent, 4100}, false, 0), "Adding ROMs to buffer\n"
                                                              "Adding ROM profile[3]=ROM 2 to buffer\n"
                                                              "Adding ROM profile[1]=ROM 1 to buffer\n"
                                                              "Adding ROM profile[0]=ROM 0 to buffer\n"
                                                              "Buffer is now 7k\n"
                                                              "Single rom, no HI/LO separation\n"
                                                              "Single-Chunk [#]:rom.bin\n");
}

TEST_F(BurnConsole, TellsOfSwappingThenOfChunks) {
    EXPECT_EQ(said(1, {1048576, iAbsent, iAbsent, iAbsent}, true, 512),
              "Adding ROMs to buffer\n"
              "Adding ROM profile[0]=ROM 0 to buffer\n"
              "Buffer is now 1024k\n"
              "Buffer needs to be byteswapped\n"
              "Will need 2 chunks for each chip\n"
              "Single rom, no HI/LO separation\n"
              "Single-Chunk [#]:rom.0.bin\n"
              "Single-Chunk [#]:rom.1.bin\n");
}

TEST_F(BurnConsole, CountsWholeChunksOnly) {
    EXPECT_NE(said(1, {1048576 + 4, iAbsent, iAbsent, iAbsent}, false, 512)
                  .find("Will need 2 chunks for each chip\n"),
              std::string::npos);
    EXPECT_NE(console.find("Single-Chunk [#]:rom.2.bin\n"), std::string::npos);
}

TEST_F(BurnConsole, TellsOfTheSecondChunkUnderTheSameName) {
    EXPECT_EQ(said(1, {786432, iAbsent, iAbsent, iAbsent}, false, 512),
              "Adding ROMs to buffer\n"
              "Adding ROM profile[0]=ROM 0 to buffer\n"
              "Buffer is now 768k\n"
              "Only one chunk for each file required\n"
              "Single rom, no HI/LO separation\n"
              "Single-Chunk [#]:rom.bin\n"
              "Single-Chunk [#]:rom.bin\n");
}

TEST_F(BurnConsole, TellsOfDualFiles) {
    EXPECT_EQ(said(2, {524288, iAbsent, iAbsent, iAbsent}, false, 0), cOne512 +
                                                                          "Dual rom, separating into HI/LO\n"
                                                                          "Multi-Chunk-0 [#]:rom.hi.bin\n"
                                                                          "Multi-Chunk-1 [#]:rom.lo.bin\n");
}

TEST_F(BurnConsole, TellsOfFurtherDualFilesWithoutADash) {
    EXPECT_EQ(said(2, {2097152, iAbsent, iAbsent, iAbsent}, false, 512),
              "Adding ROMs to buffer\n"
              "Adding ROM profile[0]=ROM 0 to buffer\n"
              "Buffer is now 2048k\n"
              "Will need 2 chunks for each chip\n"
              "Dual rom, separating into HI/LO\n"
              "Multi-Chunk-0 [#]:rom.hi.0.bin\n"
              "Multi-Chunk-1 [#]:rom.lo.0.bin\n"
              "Multi-Chunk0 [#]:rom.hi.1.bin\n"
              "Multi-Chunk1 [#]:rom.lo.1.bin\n");
}

TEST_F(BurnConsole, TellsOfEachDoubling) {
    EXPECT_EQ(said(2, {131072, iAbsent, iAbsent, iAbsent}, false, 512),
              "Adding ROMs to buffer\n"
              "Adding ROM profile[0]=ROM 0 to buffer\n"
              "Buffer is now 128k\n"
              "Only one chunk for each file required\n"
              "Increasing overburn buffer size from 128k to 256k\n"
              "Increasing overburn buffer size from 256k to 512k\n"
              "Increasing overburn buffer size from 512k to 1024k\n"
              "Dual rom, separating into HI/LO\n"
              "Multi-Chunk-0 [#]:rom.hi.bin\n"
              "Multi-Chunk-1 [#]:rom.lo.bin\n");
}

TEST_F(BurnConsole, DoublesOneByteNineteenTimes) {
    const std::string text = said(1, {1, iAbsent, iAbsent, iAbsent}, false, 512);
    EXPECT_EQ(countof(text, "Increasing overburn buffer size from "), 19);
    EXPECT_EQ(countof(text, "Increasing overburn buffer size from 0k to 0k\n"), 9);
    EXPECT_EQ(countof(text, "Increasing overburn buffer size from 0k to 1k\n"), 1);
}

TEST_F(BurnConsole, TellsOfACD32File) {
    EXPECT_EQ(said(3, {524288, 524288, iAbsent, iAbsent}, false, 0),
              "Adding ROMs to buffer\n"
              "Adding ROM profile[1]=ROM 1 to buffer\n"
              "Adding ROM profile[0]=ROM 0 to buffer\n"
              "Buffer is now 1024k\n"
              "CD32 Buffer is 1024k, interleaving for single rom\n"
              "Single rom, no HI/LO separation\n"
              "Single-Chunk [#]:rom.bin\n");
}

TEST_F(BurnConsole, TellsOfACD32FileWithoutItsTwoRoms) {
    EXPECT_EQ(said(3, {524288, iAbsent, iAbsent, iAbsent}, false, 0),
              cOne512 + "CD32 Buffer is 1024k, interleaving for single rom\n" + cCD32Wrong +
                  "Single rom, no HI/LO separation\n"
                  "Single-Chunk [#]:rom.bin\n");
}

TEST_F(BurnConsole, TellsOfTheUntestedSecondMegabyte) {
    EXPECT_EQ(said(3, {524288, 524288, iAbsent, 1048576}, true, 512),
              "Adding ROMs to buffer\n"
              "Adding ROM profile[3]=ROM 2 to buffer\n"
              "Adding ROM profile[1]=ROM 1 to buffer\n"
              "Adding ROM profile[0]=ROM 0 to buffer\n"
              "Buffer is now 2048k\n"
              "CD32 Buffer is 2048k, interleaving for single rom\n"
              "ERROR: WARNING: Untested code, 2nd 1Mb interleave must be 4th ROM[3] (1Mb)\n"
              "Buffer needs to be byteswapped\n"
              "Will need 4 chunks for each chip\n"
              "Single rom, no HI/LO separation\n"
              "Single-Chunk [#]:rom.0.bin\n"
              "Single-Chunk [#]:rom.1.bin\n"
              "Single-Chunk [#]:rom.2.bin\n"
              "Single-Chunk [#]:rom.3.bin\n");
}

TEST_F(BurnConsole, TellsOfBothFaultsOfALongCD32File) {
    const std::string text = said(3, {524288, 262144, iAbsent, 1048576}, false, 0);
    EXPECT_EQ(countof(text, cCD32Wrong + "ERROR: WARNING: Untested code"), 1) << text;
}

TEST_F(BurnConsole, ASuperKickstartFileHasNoOptions) {
    const std::string file = "Single rom, no HI/LO separation\n"
                             "Single-Chunk [#]:rom.bin\n";
    EXPECT_EQ(said(4, {524288, iAbsent, iAbsent, iAbsent}, false, 0), cOne512 + file);
    freshstate();
    EXPECT_EQ(said(4, {524288, iAbsent, iAbsent, iAbsent}, true, 0),
              cOne512 + "WARNING: Removing Byteswap/512k filesize\n" + file);
    freshstate();
    EXPECT_EQ(said(4, {524288, iAbsent, iAbsent, iAbsent}, false, 512),
              cOne512 + "WARNING: Removing Byteswap/512k filesize\n" + file);
}

TEST_F(BurnConsole, TellsOfASuperKickstartDisk) {
    EXPECT_EQ(said(5, {262144, 5000, 524288, 1000}, true, 512), "Adding ROMs to buffer\n"
                                                                "Adding ROM profile[3]=ROM 3 to buffer\n"
                                                                "Adding ROM profile[2]=ROM 2 to buffer\n"
                                                                "Adding ROM profile[1]=ROM 1 to buffer\n"
                                                                "Adding ROM profile[0]=ROM 0 to buffer\n"
                                                                "Buffer is now 773k\n"
                                                                "ROM 0 [0] Size 262144 0x40000=262144\n"
                                                                "ROM 1 [1] Size 5000 0x40000=262144\n"
                                                                "ROM 2 [2] Size 524288 0x40000=262144\n"
                                                                "ROM 3 [3] Size 1000 0x40000=262144\n"
                                                                "WARNING: Removing Byteswap/512k filesize\n"
                                                                "ADF, no HI/LO separation or 512k chunks\n"
                                                                "Single file [#]:rom.adf\n");
}

TEST_F(BurnConsole, TellsWhatASuperKickstartDiskMisses) {
    silently([&] { static_cast<void>(slotof(noisebytes(4, 1))); });
    romprofile(5, 7, 0, -1, -5);
    EXPECT_EQ(save(false, 0, iTraces), 0);
    EXPECT_EQ(console, "Adding ROMs to buffer\n"
                       "Adding ROM profile[1]=ROM 0 to buffer\n"
                       "Buffer is now 0k\n"
                       "ROM 0 [7] Size 0 0x40000=262144\n"
                       "ROM 1 [0] Size 4 0x40000=262144\n"
                       "ROM 2 [-1] Size 0 0x40000=262144\n"
                       "ROM 3 [-5] Size 0 0x40000=262144\n"
                       "ERROR: Kickstart 1.3 missing - this will NOT be a valid Superkick ADF\n"
                       "ERROR: Kickstart 2+ missing - this will NOT be a valid Superkick ADF\n"
                       "ERROR: Kickstart 2+ Bonus code missing - this will NOT be a valid Superkick ADF\n"
                       "ADF, no HI/LO separation or 512k chunks\n"
                       "Single file [#]:rom.adf\n");
}

TEST_F(BurnConsole, TellsThatTheBonusCodeOf13IsMissing) {
    EXPECT_NE(
        said(5, {262144, iAbsent, 524288, 1000}, false, 0)
            .find("\nERROR: Kickstart 1.3 Bonus code missing - this will NOT be a valid Superkick ADF\nADF,"),
        std::string::npos)
        << console;
}

TEST_F(BurnConsole, TellsWhatDoesNotFitASuperKickstartDisk) {
    const std::string text = said(5, {262148, 109568, 262144, 4096}, false, 0);
    // The bonus code of 1.3 is called 2+, too.
    EXPECT_EQ(text.substr(text.find("ERROR")),
              "ERROR: Kickstart 1.3 ROM wrong size, ignoring - this will NOT be a valid Superkick ADF\n"
              "ERROR: Kickstart 2+ ROM wrong size, ignoring - this will NOT be a valid Superkick ADF\n"
              "ERROR: Kickstart 2+ ROM too large, ignoring - this will NOT be a valid Superkick ADF\n"
              "ERROR: Kickstart 2+ ROM too large, ignoring - this will NOT be a valid Superkick ADF\n"
              "ADF, no HI/LO separation or 512k chunks\n"
              "Single file [#]:rom.adf\n");
}

TEST_F(BurnConsole, TellsOfAnA1000Disk) {
    EXPECT_EQ(said(6, {262144, 5000, iAbsent, iAbsent}, true, 0), "Adding ROMs to buffer\n"
                                                                  "Adding ROM profile[1]=ROM 1 to buffer\n"
                                                                  "Adding ROM profile[0]=ROM 0 to buffer\n"
                                                                  "Buffer is now 260k\n"
                                                                  "ROM 0 [0] Size 262144 0x40000=262144\n"
                                                                  "WARNING: Removing Byteswap/512k filesize\n"
                                                                  "ADF, no HI/LO separation or 512k chunks\n"
                                                                  "Single file [#]:rom.adf\n");
}

TEST_F(BurnConsole, TellsThatAnA1000DiskHasTheWrongRom) {
    const std::string text = said(6, {524288, iAbsent, iAbsent, iAbsent}, false, 0);
    EXPECT_NE(text.find("\nROM 0 [0] Size 524288 0x40000=262144\nERROR: Kickstart 1.3/1.4 ROM wrong size, "
                        "ignoring - this will NOT be a valid A1000 Kickstart ADF\nADF,"),
              std::string::npos)
        << text;
}

TEST_F(BurnConsole, TellsThatAnA1000DiskHasNoRom) {
    const std::string text = said(6, {iAbsent, 262144, iAbsent, iAbsent}, false, 0);
    EXPECT_NE(text.find("\nROM 0 [-1] Size 0 0x40000=262144\nERROR: Kickstart missing - this will NOT be a "
                        "valid A1000 Kickstart ADF\nADF,"),
              std::string::npos)
        << text;
}

TEST_F(BurnConsole, BailsOutWithNothingToWrite) {
    EXPECT_EQ(said(1, {0, iAbsent, iAbsent, iAbsent}, true, 512), "Adding ROMs to buffer\n"
                                                                  "Adding ROM profile[0]=ROM 0 to buffer\n"
                                                                  "Buffer is now 0k\n"
                                                                  "Nothing to write, bailing out\n");
    EXPECT_TRUE(filesof(folder).empty());
}

TEST_F(BurnConsole, BailsOutBeforeAnyProfileIsChosen) {
    silently([&] { static_cast<void>(slotof(noisebytes(4, 1))); });
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "Nothing to write, bailing out\n");
    EXPECT_TRUE(filesof(folder).empty());
}

TEST_F(BurnConsole, BailsOutOfDisksToo) {
    for (const int32_t type : {2, 3, 4, 5, 6}) {
        freshstate();
        EXPECT_EQ(said(type, {iAbsent, iAbsent, iAbsent, 0}, false, 0),
                  "Adding ROMs to buffer\n"
                  "Adding ROM profile[3]=ROM 0 to buffer\n"
                  "Buffer is now 0k\n"
                  "Nothing to write, bailing out\n");
    }
    EXPECT_TRUE(filesof(folder).empty());
}

} // namespace vantorel::test
