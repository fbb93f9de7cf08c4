// RTB files in the hands of a loader: what it makes of an image is what the image is at the other base.

#include "output/rtbreader.h"

#include "output/savertb.h"
#include "rom/rombase.h"
#include "rom/romtest.h"
#include "support/noise.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace vantorel::test {

namespace {

using Places = std::vector<int32_t>;
using LongPlaces = std::vector<uint32_t>;

/// A file with these entries, made without the program.
Bytes fileof(const Places& entries, const LongPlaces& bcpl = {}) {
    Bytes file = {0x12, 0x34, 0x56, 0x78, 0, 0, 0};
    const Bytes stream = rtbstream(entries);
    file.insert(file.end(), stream.begin(), stream.end());
    appendlong(file, 0);
    appendlong(file, 0xFFFFFFFF);
    for (const uint32_t place : bcpl)
        appendlong(file, place);
    if (!bcpl.empty()) appendlong(file, 0);
    appendlong(file, 0);
    return file;
}

/// Images of which everything is known, with addresses at least every 64K.
RomBuilder fullbuilder(int32_t size, uint32_t base) {
    RomBuilder rom(size, base);
    if (size > iSplitOffset) rom.split();
    for (int32_t number = 0; (number + 2) * 32000 < size; ++number)
        rom.module({.name = "m" + std::to_string(number) + ".library",
                    .idstring = "m 1.0 (1.1.94)\r\n",
                    .size = 32000,
                    .init = number % 2 == 0 ? Init::Auto32 : Init::Manual,
                    .functions = 4 + number,
                    .pointers = {{.module = "m0.library", .offset = 8}, {.offset = 40}}});
    return rom;
}

struct Known {
    const char* name;
    int32_t size;
    uint32_t base;
    uint32_t newbase;
    bool ismarked; ///< has a SuperKickstart end marker
    bool hasbcpl;
};

const std::vector<Known> cKnown = {{"Small", 262144, 0xFC0000, 0x200000, false, false},
                                   {"SmallMarked", 262144, 0xFC0000, 0x07F80000, true, false},
                                   {"SmallMarkedBcpl", 262144, 0xFC0000, 0xFC0001, true, true},
                                   {"Split", 524288, 0xF80000, 0x200000, false, false},
                                   {"SplitBcpl", 524288, 0xF80000, 0xFFFF0000, false, true},
                                   {"SplitMarked", 524288, 0xF80000, 0, true, false},
                                   {"SplitMarkedBcpl", 524288, 0, 0xF80000, true, true}};

class RtbLoader : public RomTest, public ::testing::WithParamInterface<Known> {
protected:
    [[nodiscard]] static RomBuilder builderat(uint32_t base) {
        const Known& known = GetParam();
        RomBuilder builder = fullbuilder(known.size, base);
        const BuiltRom rom = builder.build();
        Bytes end;
        appendlong(end, base + static_cast<uint32_t>(rom.modules.back().end()));
        if (known.ismarked) builder.overwrite(known.size - 28, end);
        return builder;
    }

    /// Gives the second module's hash file a BCPL list.
    void addbcpl(const BuiltRom& rom) const {
        hashes.write(rom.modules[1].hash(), componenthash(rom.modules[1]) + "[BCPL]\nRELOC=32\nRELOC=100\n");
    }

    /// Every place that must be in the file.
    [[nodiscard]] static Places placesof(const BuiltRom& rom) {
        Places places;
        for (const BuiltModule& module : rom.modules)
            for (const int32_t reloc : module.relocs)
                places.push_back(module.start + reloc);
        if (rom.size() > iSplitOffset) places.push_back(iSplitOffset + 4);
        if (GetParam().ismarked) places.push_back(rom.size() - 28);
        std::ranges::sort(places);
        return places;
    }

    InDirectory inside{dir};
};

/// `image` with the long at `place` raised by `distance`.
void raise(Bytes& image, int32_t place, uint32_t distance) {
    ASSERT_TRUE(putlong(image, place, longat(image, place).value() + distance));
}

} // namespace

TEST(RtbReader, GivesBackAnyAscendingPlaces) {
    constexpr std::array<int32_t, 9> distances = {1, 2, 4, 254, 255, 256, 257, 65534, 65535};
    Noise noise(6);
    for (int round = 0; round < 2000; ++round) {
        Places entries;
        for (uint32_t count = noise() % 12, place = 0; count > 0; --count) {
            place += static_cast<uint32_t>(distances.at(noise() % distances.size()));
            entries.push_back(static_cast<int32_t>(place));
        }
        ASSERT_EQ(readrtb(fileof(entries, {8, 12})).places, entries);
    }
}

TEST(RtbReader, SeesWhatIsMissingOrTooMuch) {
    const Bytes good = fileof({4, 300, 400}, {20, 40});
    EXPECT_EQ(readrtb(good).checksum, 0x12345678U);
    EXPECT_EQ(readrtb(good).bcpl, (LongPlaces{20, 40}));
    Bytes longer = good;
    longer.push_back(0);
    EXPECT_THROW(static_cast<void>(readrtb(longer)), std::runtime_error);
    for (size_t size = 0; size < good.size(); ++size)
        EXPECT_THROW(static_cast<void>(readrtb(View(good).first(size))), std::runtime_error) << size;
    EXPECT_THROW(static_cast<void>(readrtb(fileof({4, 65540}))), std::runtime_error);
}

TEST(RtbReader, MovesWithCarries) {
    const Bytes image = {1, 0x00, 0xFF, 0xFF, 0xFF, 2};
    EXPECT_EQ(moved(image, Rtb{0, {1}, {}}, 1), (Bytes{1, 0x01, 0, 0, 0, 2}));
    EXPECT_EQ(moved(image, Rtb{0, {1}, {}}, 0xFFFFFFFF), (Bytes{1, 0x00, 0xFF, 0xFF, 0xFE, 2}));
    EXPECT_THROW(static_cast<void>(moved(image, Rtb{0, {3}, {}}, 1)), std::runtime_error);
}

TEST_P(RtbLoader, MovesAnImageAsRombaseDoes) {
    const Known& known = GetParam();
    const BuiltRom rom = builderat(known.base).build();
    hashes.add(rom);
    if (known.hasbcpl) addbcpl(rom);
    index();
    const int32_t slot = loaded(rom.image);
    silently([&] { EXPECT_EQ(savertb(slot, "rom"), 0); });
    const Rtb rtb = readrtb(dir.bytes("rom.RTB"));
    EXPECT_EQ(rtb.checksum, longat(rom.image, rom.size() - 24));
    EXPECT_EQ(rtb.places, placesof(rom));
    const auto start = static_cast<uint32_t>(rom.modules[1].start);
    EXPECT_EQ(rtb.bcpl, known.hasbcpl ? LongPlaces({start + 32, start + 100}) : LongPlaces());
    silently([&] { EXPECT_EQ(rombase(slot, hex32(known.newbase)), 0); });
    Bytes expected = slotat(slot).pcROM;
    // `rombase` leaves these two to its user.
    if (known.size > iSplitOffset) raise(expected, iSplitOffset + 4, known.newbase - known.base);
    if (known.ismarked) raise(expected, known.size - 28, known.newbase - known.base);
    EXPECT_TRUE(moved(rom.image, rtb, known.newbase - known.base) == expected);
}

TEST_P(RtbLoader, MovesAnImageAsIfItHadBeenBuiltThere) {
    const Known& known = GetParam();
    const BuiltRom rom = builderat(known.base).build();
    hashes.add(rom);
    index();
    const int32_t slot = loaded(rom.image);
    silently([&] { EXPECT_EQ(savertb(slot, "rom"), 0); });
    Bytes image = moved(rom.image, readrtb(dir.bytes("rom.RTB")), known.newbase - known.base);
    // The header, which has no relocs, the pointer of the split, which does not depend on the base here, and
    // the checksum stay behind.
    Bytes expected = builderat(known.newbase).build().image;
    raise(image, 4, known.newbase - known.base);
    if (known.size > iSplitOffset) raise(expected, iSplitOffset + 4, known.newbase - known.base);
    for (Bytes* bytes : {&image, &expected})
        ASSERT_TRUE(putlong(*bytes, known.size - 24, 0));
    EXPECT_TRUE(image == expected);
}

INSTANTIATE_TEST_SUITE_P(Known, RtbLoader, ::testing::ValuesIn(cKnown),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace vantorel::test
