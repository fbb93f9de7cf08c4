// ROMs moved to another base.

#include "rom/rombase.h"

#include "component/slotstate.h"

namespace vantorel::test {
namespace {

// Adds `difference` to the long at `place`, one byte after the other.
void addtolong(Bytes& image, int32_t place, uint32_t difference) {
    const std::vector<int32_t> places = {place};
    image = raised(std::move(image), places, difference);
}

class RomBaseTest : public RomTest {
protected:
    // Loads a ROM with its hash files into a new slot.
    int32_t load(const BuiltRom& built) {
        hashes.add(built);
        index();
        return loaded(built.image);
    }

    static std::string move(const std::string& text) {
        return at(1, [&] { EXPECT_EQ(rombase(0, text), 0); });
    }

    static void expectrefused(const std::string& text) {
        const std::string console = expectunchanged(0, [&] { EXPECT_EQ(rombase(0, text), 1); });
        EXPECT_TRUE(isoneerror(console)) << console;
    }
};

TEST_F(RomBaseTest, OfAnEmptyRomOnlyTheBaseChanges) {
    slotwith(100);
    SlotState expected = stateof(0);
    expected.base = 0xF80000;
    EXPECT_EQ(move("0xF80000"), "ROMBase set to 00f80000\n");
    EXPECT_TRUE(stateof(0) == expected);
}

TEST_F(RomBaseTest, NumbersAreDecimalOrHexadecimalUpToAComma) {
    slotwith(100);
    const std::vector<std::pair<std::string, uint32_t>> texts = {{"0xF80000", 0xF80000},
                                                                 {"0xf80000", 0xF80000},
                                                                 {"16252928", 0xF80000},
                                                                 {"0xf80000,junk", 0xF80000},
                                                                 {"0x", 0},
                                                                 {"0", 0},
                                                                 {"junk", 0},
                                                                 {"", 0},
                                                                 {"16252928junk", 0xF80000},
                                                                 {"0x1F80000F0", 0xF80000F0},
                                                                 {"0X10", 0},
                                                                 {"0xFFFFFFFF", 0xFFFFFFFF},
                                                                 {"2147483647", 0x7FFFFFFF},
                                                                 {"xF8", 0},
                                                                 {" 12", 12}};
    for (const auto& [text, base] : texts) {
        move(text);
        EXPECT_EQ(slotat(0).iROMBase, base) << text;
    }
}

TEST_F(RomBaseTest, EveryRelocatedLongGrowsByTheDifferenceAndNothingElseChanges) {
    const BuiltRom standard = standardrom();
    load(standard);
    Bytes expected = standard.image;
    size_t count = 0;
    for (const BuiltModule& module : standard.modules)
        for (const int32_t reloc : module.relocs) {
            addtolong(expected, module.start + reloc, 0x40000);
            ++count;
        }
    EXPECT_GT(count, 300u);
    SlotState state = stateof(0);
    state.image = expected;
    state.base = 0xFC0000;
    move("0xFC0000");
    EXPECT_TRUE(stateof(0) == state);
}

TEST_F(RomBaseTest, TheModulesAreThoseBuiltForTheNewBase) {
    load(standardrom());
    move("0x200000");
    const BuiltRom there = standardrom(512 * 1024, 0x200000);
    for (const BuiltModule& module : there.modules) {
        const View expected = there.bytes(module);
        EXPECT_EQ(bytesat(0, module.start, module.size), Bytes(expected.begin(), expected.end()))
            << module.name;
    }
}

// An image full of modules and data at random.
BuiltRom randomrom(Noise& noise, uint32_t base) {
    RomBuilder rom(64 * 1024, base);
    const uint32_t count = 1 + noise() % 12;
    for (uint32_t i = 0; i < count; ++i) {
        const std::string name = "m" + std::to_string(i);
        const auto size = static_cast<int32_t>(800 + noise() % 4000);
        if (noise() % 3 == 0) rom.gap(static_cast<int32_t>(noise() % 200) & ~3);
        if (noise() % 5 == 0)
            rom.data({.name = name + ".data", .size = size, .pointers = {{.offset = 8}}, .seed = noise()});
        else
            rom.module({.name = name + ".library",
                        .idstring = name + " 1.0 (1.1.93)\r\n",
                        .size = size,
                        .tag = static_cast<int32_t>(noise() % 20) * 2,
                        .init = static_cast<Init>(noise() % 3),
                        .functions = static_cast<int32_t>(1 + noise() % 9),
                        .calls = static_cast<int32_t>(noise() % 30),
                        .seed = noise()});
    }
    return rom.build();
}

TEST_F(RomBaseTest, ThereAndBackGivesTheIdenticalImage) {
    Noise noise(2024);
    for (int trial = 0; trial < 25; ++trial) {
        const uint32_t base = trial % 2 == 0 ? 0xF80000 : noise() & 0xFFF000;
        const BuiltRom built = randomrom(noise, base);
        silently([] { freeroms(); });
        load(built);
        const SlotState before = stateof(0);
        Bytes moved = built.image;
        const uint32_t other = noise();
        for (const BuiltModule& module : built.modules)
            for (const int32_t reloc : module.relocs)
                addtolong(moved, module.start + reloc, other - base);
        move(hex32(other));
        ASSERT_EQ(slotat(0).pcROM, moved) << built.modules.size() << " modules, to " << hex32(other);
        move(hex32(noise()));
        move(hex32(0));
        move(hex32(base));
        ASSERT_TRUE(stateof(0) == before);
    }
}

// A slot of 256 bytes at 0xF80000 with three components: one with two relocs, one without, and one with
// three.
void threecomponents() {
    slotwith(256, {{0, 64}, {64, 32}, {128, 64}}, 0xF80000);
    componentat(0, 0).ipRelocs = {4, 16};
    componentat(0, 0).pcLibString = "first 1.0";
    componentat(0, 2).ipRelocs = {0, 8, 60};
    for (const int32_t number : {0, 2})
        componentat(0, number).pcExtract = Bytes(64, 0);
}

TEST_F(RomBaseTest, EachMovedComponentIsToldWithTheRelocsOfTheOneBefore) {
    threecomponents();
    EXPECT_EQ(move("0xFC0000"),
              "ROMBase set to 00fc0000\n"
              "Changing ROMBase, need to repatch components in ROM\n"
              "Repatching [0] first 1.0\n"
              "Repatching [2] (null)\n"
              "Warning, if kickity-split, SKSize or extended ROMHEADER exists, these have NOT been patched\n"
              "This code is incomplete, or at least not as smart as it should be\n");
    EXPECT_EQ(longat(slotat(0).pcROM, 16), 0xFC0000u);
    EXPECT_EQ(longat(slotat(0).pcROM, 188), 0xFC0080u);
    EXPECT_EQ(longat(slotat(0).pcROM, 64), 0xEEEEEEEEu);
}

TEST_F(RomBaseTest, ComponentsWithoutRelocsAreLeftAloneWhereverTheyLie) {
    slotwith(100, {{0, 50}, {90, 50}, {-20, 10}}, 0xF80000);
    slotat(0).psComponents.emplace_back();
    SlotState expected = stateof(0);
    expected.base = 0;
    EXPECT_FALSE(has(move("0"), "ERROR"));
    EXPECT_TRUE(stateof(0) == expected);
}

TEST_F(RomBaseTest, MessagesHaveTheirThresholds) {
    expectthresholds(threecomponents, [] { rombase(0, "0xFC0000"); },
                     {{0, "ROMBase set to 00fc0000\n"},
                      {0, "Changing ROMBase, need to repatch components in ROM\n"},
                      {0, "Repatching [0] first 1.0\n"},
                      {0, "Repatching [2] (null)\n"},
                      {5, "Patching 0 position:4\nReloc 0=4 (00fc0000)\n"},
                      {5, "Patching 2 position:60\nReloc 2=60 (00fc0080)\n"},
                      {0, "these have NOT been patched\n"},
                      {0, "not as smart as it should be\n"}});
}

TEST_F(RomBaseTest, WithOneComponentOutsideItsImageNothingMoves) {
    for (const Extent& place :
         std::vector<Extent>{{-1, 64}, {193, 64}, {128, 129}, {256, 1}, {2147483000, 64}}) {
        silently([] { freeroms(); });
        threecomponents();
        componentat(0, 2).iStart = place.start;
        componentat(0, 2).iSize = place.size;
        expectrefused("0xFC0000");
    }
}

TEST_F(RomBaseTest, WithOneRelocOutsideItsComponentNothingMoves) {
    for (const int32_t reloc : {61, 64, -1, 2147483647, -2147483647 - 1}) {
        silently([] { freeroms(); });
        threecomponents();
        componentat(0, 2).ipRelocs = {0, reloc, 8};
        expectrefused("0xFC0000");
    }
}

TEST_F(RomBaseTest, AComponentWithoutAnExtractIsMovedAllTheSame) {
    threecomponents();
    for (const int32_t reloc : {0, 8, 60})
        ASSERT_TRUE(putlong(slotat(0).pcROM, 128 + reloc, 0xF80090));
    componentat(0, 2).pcExtract.reset();
    move("0xFC0000");
    for (const int32_t reloc : {0, 8, 60})
        EXPECT_EQ(longat(slotat(0).pcROM, 128 + reloc), 0xFC0090u);
}

TEST_F(RomBaseTest, ARefusedMoveBuildsNoExtracts) {
    threecomponents();
    componentat(0, 0).pcExtract.reset();
    componentat(0, 2).iStart = 200;
    expectrefused("0xFC0000");
}

TEST_F(RomBaseTest, MissingSlotsAreRefused) {
    threecomponents();
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(rombase(rom, "0"), 1); }), "ERROR, No current ROM\n");
}

} // namespace
} // namespace vantorel::test
