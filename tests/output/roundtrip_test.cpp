// Every burnt layout loads again as what was burnt.

#include "output/burntest.h"
#include "rom/load.h"
#include "rom/split.h"

namespace vantorel::test {

namespace {

class BurnRoundTrip : public RomTest {
protected:
    /// A new slot with a standard ROM.
    static int32_t romof(int32_t size, uint32_t base = 0) { return loaded(standardrom(size, base).image); }

    /// Burns slots `slots` as "rom...".
    static void burn(int32_t type, const std::array<int32_t, 4>& slots, bool byteswap = false,
                     int32_t savesize = 0) {
        silently([&] {
            romprofile(type, slots[0], slots[1], slots[2], slots[3]);
            EXPECT_EQ(saveprofile(byteswap, savesize, "rom"), 0);
        });
    }

    /// The slot into which the file is loaded.
    static int32_t load(const std::string& path) {
        int32_t rom = -1;
        silently([&] {
            rom = newrom(0, 0);
            loadrom(path, rom);
        });
        return rom;
    }

    static int32_t load(const std::string& high, const std::string& low) {
        int32_t rom = -1;
        silently([&] {
            rom = newrom(0, 0);
            EXPECT_EQ(loadsplitrom(high, low, rom), 0);
        });
        return rom;
    }

    static void expectsame(int32_t rom, View image) {
        EXPECT_EQ(slotat(rom).iCRC32, crc32of(image));
        EXPECT_TRUE(std::ranges::equal(slotat(rom).pcROM, image));
    }

    InDirectory inside{dir};
};

/// Size of the ROM, and of the chip in KiB (0: as it is).
struct Chip {
    int32_t size;
    int32_t savesize;
};

class ChipRoundTrip : public BurnRoundTrip, public ::testing::WithParamInterface<Chip> {};

} // namespace

TEST_P(ChipRoundTrip, ASingleFileLoadsPlainAndSwapped) {
    const Chip& chip = GetParam();
    const int32_t rom = romof(chip.size);
    for (const bool byteswap : {false, true}) {
        burn(1, {rom, -1, -1, -1}, byteswap, chip.savesize);
        expectsame(load("rom.bin"), slotat(rom).pcROM);
    }
}

TEST_P(ChipRoundTrip, APairLoadsPlainAndSwappedInEitherOrder) {
    const Chip& chip = GetParam();
    const int32_t rom = romof(chip.size);
    for (const bool byteswap : {false, true}) {
        burn(2, {rom, -1, -1, -1}, byteswap, chip.savesize);
        expectsame(load("rom.hi.bin", "rom.lo.bin"), slotat(rom).pcROM);
        expectsame(load("rom.lo.bin", "rom.hi.bin"), slotat(rom).pcROM);
    }
}

INSTANTIATE_TEST_SUITE_P(Chips, ChipRoundTrip,
                         ::testing::Values(Chip{262144, 0}, Chip{524288, 0}, Chip{262144, 512},
                                           Chip{524288, 512}));

TEST_F(BurnRoundTrip, APairOfTwoRomsLoadsIntoTwoSlots) {
    const int32_t upper = romof(524288);
    const int32_t lower = romof(524288, 0xE00000);
    for (const bool byteswap : {false, true}) {
        burn(2, {upper, lower, -1, -1}, byteswap, 512);
        const int32_t rom = load("rom.hi.bin", "rom.lo.bin");
        expectsame(rom, slotat(lower).pcROM);
        expectsame(rom + 1, slotat(upper).pcROM);
    }
}

TEST_F(BurnRoundTrip, ASuperKickstartFileLoads) {
    const int32_t rom = romof(524288);
    burn(4, {rom, -1, -1, -1}, true, 512);
    expectsame(load("rom.bin"), slotat(rom).pcROM);
}

TEST_F(BurnRoundTrip, ACD32FileLoadsByItsHashFile) {
    const int32_t upper = romof(524288);
    const int32_t lower = romof(524288, 0xE00000);
    burn(3, {upper, lower, -1, -1});
    const Bytes image = joined(slotat(lower).pcROM, slotat(upper).pcROM);
    EXPECT_TRUE(dir.bytes("rom.bin") == cd32interleaved(image));
    hashes.container(dir.bytes("rom.bin"), {.filetype = "Kickstart", .format = "CD32Encoded"});
    index();
    expectsame(load("rom.bin"), image);
}

TEST_F(BurnRoundTrip, ASwappedCD32FileIsThePlainOneSwapped) {
    const int32_t upper = romof(524288);
    const int32_t lower = romof(524288, 0xE00000);
    burn(3, {upper, lower, -1, -1}, true);
    const Bytes image = joined(slotat(lower).pcROM, slotat(upper).pcROM);
    EXPECT_TRUE(byteswapped(View(dir.bytes("rom.bin"))) == cd32interleaved(image));
}

TEST_F(BurnRoundTrip, ASuperKickstartDiskLoadsByItsHashFile) {
    const int32_t one = romof(262144);
    const int32_t bonusone = slotof(noisebytes(109567, 1));
    const int32_t two = romof(524288);
    const int32_t bonustwo = slotof(noisebytes(4095, 2));
    burn(5, {one, bonusone, two, bonustwo});
    hashes.container(dir.bytes("rom.adf"), {.filetype = "SuperKickstart",
                                            .format = "Plain",
                                            .ranges = {{"Kickstart1", 1024, 262144},
                                                       {"Bonus1", 791552, 109567},
                                                       {"Kickstart2", 263168, 524288},
                                                       {"Bonus2", 787456, 4095}}});
    index();
    const int32_t first = load("rom.adf");
    expectsame(first, slotat(one).pcROM);
    expectsame(first + 1, slotat(bonusone).pcROM);
    expectsame(first + 2, slotat(two).pcROM);
    expectsame(first + 3, slotat(bonustwo).pcROM);
}

TEST_F(BurnRoundTrip, AnA1000DiskLoadsByItsHashFile) {
    const int32_t rom = romof(262144);
    burn(6, {rom, -1, -1, -1}, true, 512);
    hashes.container(
        dir.bytes("rom.adf"),
        {.filetype = "Kickstart-Disk", .format = "KickstartFloppy", .ranges = {{"Kickstart", 512, 262144}}});
    index();
    expectsame(load("rom.adf"), slotat(rom).pcROM);
}

TEST_F(BurnRoundTrip, ChunksJoinedAreTheImage) {
    const int32_t upper = romof(524288);
    const int32_t lower = romof(524288, 0xE00000);
    burn(1, {upper, lower, -1, -1}, false, 512);
    expectsame(load("rom.0.bin"), slotat(lower).pcROM);
    expectsame(load("rom.1.bin"), slotat(upper).pcROM);
}

} // namespace vantorel::test
