// The roads from a file into a slot.

#include "rom/load.h"
#include "rom/romtest.h"
#include "support/diskbuilder.h"

#include <filesystem>

namespace vantorel::test {
namespace {

class LoadTest : public RomTest {
protected:
    // Loads the file `path` into a new slot; what was said at `level`.
    static std::string loadpath(const std::string& path, int32_t level = 1) {
        silently([] { newrom(0, 0); });
        return at(level, [&] { EXPECT_EQ(loadrom(path, iMaxRom - 1), 0); });
    }

    std::string load(View file, int32_t level = 1) const {
        return loadpath(dir.file("rom.bin", file), level);
    }

    // With a hash file that says this of Format and FileType.
    std::string loadas(View file, const ContainerText& text, int32_t level = 1) const {
        hashes.container(file, text);
        index();
        return load(file, level);
    }
};

TEST_F(LoadTest, APlainRomWithoutAHashFile) {
    const BuiltRom rom = standardrom(524288);
    EXPECT_EQ(load(rom.image), "Unable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, rom.image);
}

TEST_F(LoadTest, TheNarrationOfAPlainRom) {
    const BuiltRom rom = standardrom(262144);
    const std::string crc = hex32(rom.crc);
    const std::string sum = formatted("%08x", longat(rom.image, 262144 - 24).value());
    EXPECT_EQ(maskpointers(load(rom.image, 2)), "Look for Hashfile:" + crc +
                                                    "\n"
                                                    "No hash file, loading rawdata\n"
                                                    "cChecksumData function Calculated=" +
                                                    sum + " Stored=" + sum +
                                                    " Size=262144 @*\n"
                                                    "Load ROMData, look for Hashfile:" +
                                                    crc +
                                                    "\n"
                                                    "Unable to find hash\n"
                                                    "Loaded 262144 bytes to ROM 0\n");
}

TEST_F(LoadTest, AByteSwappedRomLoadsSwappedBack) {
    const Bytes image = standardrom(524288).image;
    const std::string text = load(byteswapped(image), 2);
    EXPECT_TRUE(has(text, "No hash file, loading rawdata\n"
                          "Does not appear to be a valid ROM, trying byteswap\n"));
    EXPECT_TRUE(has(text, "Appears to be a valid ROM after byteswap\n"));
    EXPECT_EQ(slotat(0).pcROM, image);
}

TEST_F(LoadTest, ASwappedRomIsIdentifiedByItsOwnCRC) {
    const BuiltRom rom = standardrom(262144);
    hashes.add(rom);
    index();
    EXPECT_EQ(load(byteswapped(rom.image)), "");
    EXPECT_EQ(slotat(0).pcTitle, Text("Standard"));
    EXPECT_EQ(slotat(0).iCRC32, rom.crc);
}

TEST_F(LoadTest, WhatIsNoRomLoadsAsItIs) {
    const Bytes file = {0x11, 0x22, 0x33};
    const std::string text = load(file, 2);
    EXPECT_TRUE(has(text, "Does not appear to be a valid ROM, trying byteswap\n"));
    EXPECT_FALSE(has(text, "after byteswap"));
    EXPECT_EQ(slotat(0).pcROM, file);
}

TEST_F(LoadTest, ARomWithABadChecksumLoadsUnswapped) {
    Bytes image = standardrom(262144).image;
    image[777] ^= 1;
    load(image);
    EXPECT_EQ(slotat(0).pcROM, image);
    load(byteswapped(image));
    EXPECT_EQ(slotat(1).pcROM, byteswapped(image));
}

TEST_F(LoadTest, ARepeatedRomLoadsOnce) {
    const Bytes small = standardrom(262144).image;
    const Bytes large = standardrom(524288).image;
    EXPECT_EQ(load(overburnt(small)), "Overburnt 256k ROM, loading the first half\nUnable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, small);
    EXPECT_EQ(load(overburnt(large)), "Overburnt 512k ROM, loading the first half\nUnable to find hash\n");
    EXPECT_EQ(slotat(1).pcROM, large);
    EXPECT_EQ(load(overburnt(small, 4)), "Overburnt 512k ROM, loading the first half\n"
                                         "Overburnt 256k ROM, loading the first half\n"
                                         "Unable to find hash\n");
    EXPECT_EQ(slotat(2).pcROM, small);
}

TEST_F(LoadTest, AnEmptyFileLoadsAsAnImageOfNoBytes) {
    EXPECT_EQ(load(Bytes{}), "Unable to find hash\n");
    EXPECT_EQ(slotat(0).iSize(), 0);
    EXPECT_EQ(slotat(0).iUsed, 0);
    EXPECT_EQ(slotat(0).iCRC32, 0u);
    EXPECT_EQ(slotat(0).cFill, 0);
}

TEST_F(LoadTest, AFileThatCannotBeOpenedIsNamedAsTyped) {
    EXPECT_EQ(loadpath("no/such/file"), "ERROR: can't open file [no/such/file]\n");
    EXPECT_EQ(loadpath(""), "ERROR: can't open file []\n");
    EXPECT_EQ(loadpath(dir.path()), "ERROR: can't open file [" + dir.path() + "]\n") << "a directory";
    EXPECT_EQ(slotat(0).iSize(), 0);
    EXPECT_EQ(slotat(0).pcTitle, Text("Unnamed"));
}

TEST_F(LoadTest, AFileOfFourGigabytesIsRefusedUnread) {
    dir.file("huge", Bytes{});
    std::filesystem::resize_file(dir.file("huge"), uintmax_t{1} << 32);
    EXPECT_EQ(loadpath(dir.file("huge")),
              "ERROR, unable to read the file fully, only 0 of 4294967296 bytes\n");
    EXPECT_EQ(slotat(0).iSize(), 0);
}

TEST_F(LoadTest, ASlotThatDoesNotExistIsRefused) {
    const std::string path = dir.file("rom.bin", Bytes{1, 2, 3});
    for (const int32_t rom : {-1, 0, 20})
        EXPECT_EQ(at(1, [&] { loadrom(path, rom); }), "No such ROM\n");
}

TEST_F(LoadTest, EveryShortFileIsSurvived) {
    for (size_t size = 0; size <= 30; ++size) {
        silently(freeroms);
        const Bytes file(size, 0x11);
        load(file, 10);
        EXPECT_EQ(slotat(0).pcROM, file);
    }
}

TEST_F(LoadTest, MessagesHaveTheirThresholds) {
    const Bytes swapped = byteswapped(standardrom(262144).image);
    dir.file("rom.bin", swapped);
    const Action prepare = [] { newrom(0, 0); };
    expectthresholds(prepare, [&] { loadrom(dir.file("rom.bin"), 0); },
                     {{1, "Look for Hashfile:" + hex32(crc32of(swapped)) + "\n"},
                      {1, "No hash file, loading rawdata\n"},
                      {1, "Does not appear to be a valid ROM, trying byteswap\n"},
                      {1, "Appears to be a valid ROM after byteswap\n"}});
    expectthresholds(prepare, [&] { loadrom("nowhere", 0); }, {{0, "ERROR: can't open file [nowhere]\n"}});
    dir.file("huge", Bytes{});
    std::filesystem::resize_file(dir.file("huge"), uintmax_t{1} << 32);
    expectthresholds(prepare, [&] { loadrom(dir.file("huge"), 0); },
                     {{0, "ERROR, unable to read the file fully, only 0 of 4294967296 bytes\n"}});
}

class FormatTest : public LoadTest {
protected:
    static Bytes pairofroms() {
        return joined(standardrom(524288).image, standardrom(524288, 0xE00000).image);
    }
};

TEST_F(FormatTest, ACD32DumpIsDecoded) {
    const Bytes image = pairofroms();
    EXPECT_EQ(loadas(cd32interleaved(image), {.filetype = "Kickstart", .format = "CD32Encoded"}, 1),
              "Unable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, image);
    EXPECT_EQ(slotat(0).iCRC32, crc32of(image));
}

TEST_F(FormatTest, AShortCD32DumpIsRefused) {
    Bytes file = cd32interleaved(pairofroms());
    file.pop_back();
    EXPECT_EQ(loadas(file, {.filetype = "Kickstart", .format = "CD32Encoded"}),
              "ERROR, a CD32 image must be 1048576 bytes, is 1048575\n");
    EXPECT_EQ(slotat(0).iSize(), 0) << "nothing is loaded";
    EXPECT_EQ(loadas(Bytes{1}, {.filetype = "Kickstart", .format = "CD32Encoded"}),
              "ERROR, a CD32 image must be 1048576 bytes, is 1\n");
}

TEST_F(FormatTest, OfALongerCD32DumpTheRestStays) {
    const Bytes image = pairofroms();
    const Bytes tail = {1, 2, 3};
    loadas(joined(cd32interleaved(image), tail), {.filetype = "Kickstart", .format = "CD32Encoded"});
    EXPECT_EQ(slotat(0).pcROM, joined(image, tail));
}

TEST_F(FormatTest, ADecodedCD32DumpGoesToItsContainer) {
    const Bytes image = pairofroms();
    loadas(cd32interleaved(image), {.filetype = "Extended/Kickstart",
                                    .format = "CD32Encoded",
                                    .ranges = {{"Kickstart", 0, 524288}, {"Extended", 524288, 524288}}});
    ASSERT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(0).pcROM, standardrom(524288).image);
    EXPECT_EQ(slotat(1).pcROM, standardrom(524288, 0xE00000).image);
}

TEST_F(FormatTest, EachFormatHasItsMessage) {
    const Bytes file = {1, 2, 3, 4};
    const auto said = [&](const std::string& format) {
        silently(freeroms);
        const std::string text = loadas(file, {.filetype = "Kickstart", .format = format}, 1);
        EXPECT_EQ(slotat(0).pcROM, file) << "used as it is";
        return text.substr(0, text.find("Unable to find hash\n"));
    };
    // The first 4 bytes' own hash file is their container's, so it is found again for the slot.
    EXPECT_TRUE(has(said("Guru"), "Guru encrypted Expansion ROM - dunno how to handle that yet\n"));
    EXPECT_TRUE(has(said("KickstartFloppy"), "KickstartFloppy - Not encrypted\n"));
    EXPECT_TRUE(has(said(""), "No declared format, assuming unencoded, unencrypted data\n"));
    for (const char* other : {"Other", "guru", "Guru ", "cd32encoded", "CD32Encoded ", "kickstartfloppy"})
        EXPECT_EQ(said(other), "WARNING: No ROMBase\n") << other;
}

TEST_F(FormatTest, FormatMessagesHaveTheirThresholds) {
    const auto expect = [&](View file, const std::string& format, const Shown& shown) {
        hashes.container(file, {.filetype = "Kickstart", .format = format});
        dir.file("rom.bin", file);
        expectthresholds(
            [&] {
                index();
                newrom(0, 0);
            },
            [&] { loadrom(dir.file("rom.bin"), 0); }, {shown});
    };
    const Bytes file = {9, 8, 7};
    expect(file, "", {0, "No declared format, assuming unencoded, unencrypted data\n"});
    expect(file, "NewType", {5, "Newtype I don't know about\n"});
    expect(file, "NewType2", {5, "Newtype I don't know about\n"});
    expect(file, "Guru", {0, "Guru encrypted Expansion ROM - dunno how to handle that yet\n"});
    expect(file, "KickstartFloppy", {0, "KickstartFloppy - Not encrypted\n"});
    expect(file, "CD32Encoded", {1, "CD32Encoded\n"});
    expect(file, "CD32Encoded", {0, "ERROR, a CD32 image must be 1048576 bytes, is 3\n"});
}

// Files on a disk image.
class DiskRoadTest : public LoadTest {
protected:
    void SetUp() override {
        LoadTest::SetUp();
        DiskBuilder disk(FileSystem::Ffs, "Work");
        disk.addfile("Devs/kick.rom", kick);
        silently([&] { loadadfimage(disk.image()); });
    }

    Bytes kick = standardrom(262144).image;
    TempDir work;
    InDirectory in{work};
};

TEST_F(DiskRoadTest, AFileOfTheDiskIsSavedAndLoaded) {
    EXPECT_EQ(loadpath("ADF:/Devs/kick.rom"), "Unable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, kick);
    EXPECT_EQ(work.bytes("TEMPFILE.bin"), kick) << "the file is left in place";
}

TEST_F(DiskRoadTest, AMissingFileDoesNotLoadAnOlderOne) {
    work.file("TEMPFILE.bin", Bytes{1, 2, 3});
    EXPECT_EQ(loadpath("ADF:/Devs/none"), "ERROR: can't open file [ADF:/Devs/none]\n");
    EXPECT_EQ(slotat(0).iSize(), 0);
}

TEST_F(DiskRoadTest, WithoutADiskThereIsNoSuchFile) {
    silently([] { loadadfimage(Bytes(901120, 0)); });
    EXPECT_EQ(loadpath("ADF:/Devs/kick.rom"), "ERROR: can't open file [ADF:/Devs/kick.rom]\n");
    EXPECT_EQ(loadpath("ADF:"), "ERROR: can't open file [ADF:]\n");
}

TEST_F(DiskRoadTest, ThePrefixHeedsCase) {
    EXPECT_EQ(loadpath("adf:/Devs/kick.rom"), "ERROR: can't open file [adf:/Devs/kick.rom]\n");
}

TEST_F(DiskRoadTest, ATemporaryFileThatCannotBeWrittenLoadsNothing) {
    work.folder("TEMPFILE.bin");
    const std::string text = loadpath("ADF:/Devs/kick.rom");
    EXPECT_TRUE(text.ends_with("ERROR: can't open file [ADF:/Devs/kick.rom]\n")) << text;
    EXPECT_EQ(slotat(0).iSize(), 0);
}

} // namespace
} // namespace vantorel::test
