// Real ROMs, in all the layouts in which such ROMs are dumped.

#include "rom/analyse.h"
#include "rom/checksum.h"
#include "rom/listing.h"
#include "rom/load.h"
#include "rom/romtest.h"
#include "rom/split.h"
#include "support/realfiles.h"

namespace vantorel::test {
namespace {

struct RealRom {
    const char* file;
    uint32_t crc;
    uint32_t checksum;
};

void PrintTo(const RealRom& rom, std::ostream* stream) { *stream << rom.file; }

constexpr std::array<RealRom, 2> kRoms = {{
    {"aros-20130502.rom", 0x1277da62, 0x707e5fe9},
    {"aros-20130502-ext.rom", 0x527f8834, 0x429ed871},
}};

// Counts the tags with a scan of its own: each is a match word whose pointer is its own address.
int32_t tagsof(const Bytes& image) {
    int32_t count = 0;
    uint32_t base = 0;
    for (uint32_t at = 0; at + 26 <= image.size();) {
        const auto read = [&](uint32_t offset) {
            uint32_t value = 0;
            for (uint32_t byte = 0; byte < 4; ++byte)
                value = value << 8 | image[at + offset + byte];
            return value;
        };
        const uint32_t candidate = read(2) - at;
        const bool istag = read(0) >> 16 == 0x4AFC && candidate % 0x1000 == 0 && candidate < 0x1000000;
        if (istag && base == 0) base = candidate;
        if (!istag || candidate != base) {
            ++at;
            continue;
        }
        ++count;
        const uint32_t skip = read(6) - base;
        at = skip > at && skip < 0x80000000 ? skip : at + 27;
    }
    return count;
}

class RealRomTest : public RomTest, public ::testing::WithParamInterface<RealRom> {
protected:
    void SetUp() override {
        RomTest::SetUp();
        const auto path = realfile(GetParam().file);
        if (!path) GTEST_SKIP() << needsreal;
        image = contentsof(*path);
        silently([] { newrom(0, 0); });
    }

    // What slot 0 holds after `load`.
    uint32_t crcafter(const Action& load) {
        silently(freeroms);
        silently([] { newrom(0, 0); });
        silently(load);
        return crc32of(usedof(0));
    }

    uint32_t crcof(View file) {
        const std::string path = dir.file("dump", file);
        return crcafter([&] { loadrom(path, 0); });
    }

    uint32_t crcof(const ChipPair& pair) {
        const std::string first = dir.file("first", pair.first);
        const std::string second = dir.file("second", pair.second);
        return crcafter([&] { loadsplitrom(first, second, 0); });
    }

    Bytes image;
};

TEST_P(RealRomTest, LoadsAsItIs) {
    const std::string path = *realfile(GetParam().file);
    EXPECT_EQ(at(1, [&] { loadrom(path, 0); }), "Unable to find hash\n");
    EXPECT_EQ(slotat(0).pcROM, image);
    EXPECT_EQ(slotat(0).iCRC32, GetParam().crc);
    EXPECT_EQ(cChecksum(0), GetParam().checksum);
    EXPECT_TRUE(validrom(slotat(0).pcROM));
}

TEST_P(RealRomTest, AnalysisFindsEveryTag) {
    silently([&] { loadromdata(0, image); });
    const std::string console = at(1, [] { analyserom(0); });
    const int32_t tags = tagsof(image);
    ASSERT_GT(tags, 0);
    EXPECT_TRUE(has(console, "There are " + std::to_string(tags) + " ROMTAGs\n")) << console;
    EXPECT_EQ(countof(console, "Extra component: Checksum\n"), 1);
    EXPECT_EQ(countof(at(0, [] { modules(0); }), "\n") - 4, tags) << "a line for each module";
}

TEST_P(RealRomTest, ByteSwapped) { EXPECT_EQ(crcof(byteswapped(image)), GetParam().crc); }

TEST_P(RealRomTest, BurntTwice) { EXPECT_EQ(crcof(overburnt(image)), GetParam().crc); }

TEST_P(RealRomTest, SplitInEveryOrder) {
    for (const WordOrder order :
         {WordOrder::LoHi, WordOrder::LoHiSwapped, WordOrder::HiLo, WordOrder::HiLoSwapped}) {
        const ChipPair pair = splitpair(image, order);
        EXPECT_EQ(crcof(pair), GetParam().crc);
        EXPECT_EQ(crcof(ChipPair{pair.second, pair.first}), GetParam().crc);
        EXPECT_EQ(crcof(ChipPair{overburnt(pair.first), overburnt(pair.second)}), GetParam().crc);
    }
}

TEST_P(RealRomTest, AsTheFirstOfAPair) {
    const Bytes other = standardrom(static_cast<int32_t>(image.size()), 0xE00000).image;
    if (image.size() != 524288) GTEST_SKIP() << "only two ROMs of 512K are taken apart";
    EXPECT_EQ(crcof(ChipPair{image, other}), GetParam().crc);
    EXPECT_EQ(usedof(1), other);
}

TEST_P(RealRomTest, InACD32DumpAndAContainer) {
    if (image.size() != 524288) GTEST_SKIP() << "a CD32 dump holds two ROMs of 512K";
    const Bytes file = cd32interleaved(image, standardrom(524288, 0xE00000).image);
    hashes.container(file, {.filetype = "SuperKickstart",
                            .format = "CD32Encoded",
                            .ranges = {{"Kickstart1", 0, 524288}, {"Bonus1", 524288, 524288}}});
    index();
    EXPECT_EQ(crcof(file), GetParam().crc);
    EXPECT_EQ(usedof(1), standardrom(524288, 0xE00000).image);
}

std::string nameof(const ::testing::TestParamInfo<RealRom>& rom) {
    return std::string(rom.param.file).find("ext") == std::string::npos ? "Main" : "Extended";
}

INSTANTIATE_TEST_SUITE_P(Aros, RealRomTest, ::testing::ValuesIn(kRoms), nameof);

} // namespace
} // namespace vantorel::test
