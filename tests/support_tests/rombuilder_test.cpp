#include "support/rombuilder.h"

#include "support/checksums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace vantorel::test {
namespace {

uint32_t longof(const BuiltRom& rom, int32_t offset) { return longat(rom.image, offset).value(); }
uint32_t wordof(const BuiltRom& rom, int32_t offset) { return wordat(rom.image, offset).value(); }

std::string textof(const BuiltRom& rom, uint32_t address) {
    return reinterpret_cast<const char*>(rom.image.data() + (address - rom.base));
}

BuiltRom smallrom(uint32_t base = 0xFC0000) {
    RomBuilder rom(65536, base);
    rom.module({.name = "one.library", .idstring = "one 1.0 (1.1.93)\r\n", .size = 512, .calls = 0});
    return rom.build();
}

TEST(RomBuilder, WritesTheHeader) {
    const BuiltRom rom =
        RomBuilder(262144, 0xFC0000).header({.entry = 0xD2, .version = 34, .revision = 5}).build();
    EXPECT_EQ(rom.size(), 262144);
    EXPECT_EQ(longof(rom, 0), 0x11114EF9U);
    EXPECT_EQ(longof(rom, 4), 0xFC00D2U);
    EXPECT_EQ(wordof(rom, 12), 34U);
    EXPECT_EQ(wordof(rom, 14), 5U);
    EXPECT_EQ(wordof(rom, 16), 40U);
    EXPECT_EQ(wordof(rom, 18), 10U);
    EXPECT_EQ(longof(standardrom(), 0), 0x11144EF9U);
}

TEST(RomBuilder, WritesSizeVectorsAndAChecksumThatMakesTheSumAllOnes) {
    for (const int32_t size : {262144, 524288}) {
        const BuiltRom rom = standardrom(size);
        EXPECT_EQ(carrysum(rom.image), 0xFFFFFFFFU);
        EXPECT_EQ(longof(rom, size - 24), kickstartsum(rom.image));
        EXPECT_EQ(longof(rom, size - 20), static_cast<uint32_t>(size));
        for (int32_t k = 0; k < 8; ++k)
            EXPECT_EQ(wordof(rom, size - 16 + 2 * k), 0x18U + static_cast<uint32_t>(k));
        EXPECT_EQ(rom.crc, crc32of(rom.image));
    }
}

TEST(RomBuilder, LeavesOutTheTailWhenAsked) {
    const BuiltRom rom = RomBuilder(4096, 0).noheader().nochecksum().nosize().novectors().fill(0x5A).build();
    EXPECT_EQ(rom.image, Bytes(4096, 0x5A));
    EXPECT_TRUE(rom.map.empty());
}

TEST(RomBuilder, PutsTheSplitMarkerInTheMiddle) {
    const BuiltRom rom = standardrom();
    EXPECT_EQ(longof(rom, 262144), 0x11114EF9U);
    EXPECT_EQ(longof(rom, 262148), 0x00F80002U);
}

TEST(RomBuilder, MovesAModuleBehindTheSplitMarkerRatherThanAcrossIt) {
    RomBuilder builder(524288, 0xF80000);
    builder.split().gap(262144 - 24 - 256);
    const BuiltRom rom = builder.module({.name = "a", .idstring = "a 1.0", .size = 1024}).build();
    EXPECT_EQ(rom.module("a").start, 262152);
}

TEST(RomBuilder, WritesARomTagByTheBook) {
    RomBuilder builder(65536, 0xFC0000);
    builder.module({.name = "one.library",
                    .idstring = "one 1.0 (1.1.93)\r\n",
                    .size = 512,
                    .start = 0x100,
                    .tag = 4,
                    .flags = iColdStart | iSingleTask,
                    .version = 34,
                    .type = 9,
                    .priority = -5,
                    .init = Init::Auto32,
                    .initstruct = libraryinit()});
    const BuiltRom rom = builder.build();
    const int32_t tag = rom.module("one.library").romtag();
    ASSERT_EQ(tag, 0x104);
    EXPECT_EQ(wordof(rom, tag), 0x4AFCU);
    EXPECT_EQ(longof(rom, tag + 2), 0xFC0104U);
    EXPECT_EQ(longof(rom, tag + 6), 0xFC0300U);
    EXPECT_EQ(longof(rom, tag + 10), 0x832209FBU); // flags, version, type, priority
    EXPECT_EQ(longof(rom, tag + 14), 0xFC011EU);   // directly behind the tag
    EXPECT_EQ(longof(rom, tag + 18), 0xFC012AU);   // the name's 11 characters and NUL later
    EXPECT_EQ(longof(rom, tag + 22), 0xFC013EU);   // the id string's 18 characters and two NULs later
    EXPECT_EQ(textof(rom, 0xFC011E), "one.library");
    EXPECT_EQ(textof(rom, 0xFC012A), "one 1.0 (1.1.93)\r\n");
}

TEST(RomBuilder, WritesAnAutoInitTableWithAbsoluteVectors) {
    RomBuilder builder(65536, 0xFC0000);
    builder.module({.name = "a",
                    .idstring = "a",
                    .start = 0,
                    .init = Init::Auto32,
                    .datasize = 0x123,
                    .functions = 2,
                    .initstruct = libraryinit()});
    const BuiltRom rom = builder.noheader().build();
    const int32_t table = 4 + 26 + 2 + 2;
    EXPECT_EQ(longof(rom, 4 + 22), 0xFC0000U + table);
    EXPECT_EQ(longof(rom, table), 0x123U);
    EXPECT_EQ(longof(rom, table + 4), 0xFC0000U + table + 16); // vectors
    EXPECT_EQ(longof(rom, table + 8),
              0xFC0000U + table + 28); // InitStruct data, after two vectors and the end
    EXPECT_EQ(longof(rom, table + 12), 0xFC0000U + table + 46); // init function
    EXPECT_EQ(longof(rom, table + 16), 0xFC0000U + table + 54); // first function
    EXPECT_EQ(longof(rom, table + 20), 0xFC0000U + table + 62);
    EXPECT_EQ(longof(rom, table + 24), 0xFFFFFFFFU);
    EXPECT_EQ(wordof(rom, table + 52), 0x4E75U); // the init function's RTS
}

TEST(RomBuilder, WritesAnAutoInitTableWithRelativeVectors) {
    RomBuilder builder(65536, 0xFC0000);
    builder.module({.name = "a",
                    .idstring = "a",
                    .start = 0,
                    .init = Init::Auto16,
                    .functions = 2,
                    .initfunction = false});
    const BuiltRom rom = builder.noheader().build();
    const int32_t table = 34;
    EXPECT_EQ(longof(rom, table + 8), 0U);
    EXPECT_EQ(longof(rom, table + 12), 0U);
    const int32_t vectors = table + 16;
    EXPECT_EQ(wordof(rom, vectors), 0xFFFFU);
    EXPECT_EQ(wordof(rom, vectors + 2), 16U); // behind the table's 8 bytes and the init function's 8
    EXPECT_EQ(wordof(rom, vectors + 4), 24U);
    EXPECT_EQ(wordof(rom, vectors + 6), 0xFFFFU);
}

TEST(RomBuilder, KnowsTheRelocsOfAPlainModule) {
    // RT_MATCHTAG, RT_ENDSKIP, RT_NAME, RT_IDSTRING, RT_INIT of a tag at 4.
    EXPECT_EQ(smallrom().module("one.library").relocs, (std::vector<int32_t>{6, 10, 18, 22, 26}));
}

TEST(RomBuilder, KnowsTheRelocOfAPointerIntoAnotherModule) {
    RomBuilder builder(65536, 0xFC0000);
    builder.module({.name = "a", .idstring = "a", .size = 512, .calls = 0, .pointers = {{"b", 7}}});
    builder.module({.name = "b", .idstring = "b", .size = 512});
    const BuiltRom rom = builder.build();
    const BuiltModule& a = rom.module("a");
    ASSERT_EQ(a.relocs.size(), 6U);
    EXPECT_EQ(longof(rom, a.start + a.relocs.back()), 0xFC0000U + 24 + 512 + 7);
    EXPECT_EQ(longat(a.extract, a.relocs.back()), 512U + 7);
}

TEST(RomBuilder, RelocsAscendAndHoldAddressesInsideTheRom) {
    const BuiltRom rom = standardrom();
    for (const BuiltModule& module : rom.modules) {
        EXPECT_EQ(std::set<int32_t>(module.relocs.begin(), module.relocs.end()).size(), module.relocs.size());
        EXPECT_TRUE(std::ranges::is_sorted(module.relocs));
        for (const int32_t reloc : module.relocs) {
            const uint32_t address = longof(rom, module.start + reloc);
            EXPECT_GE(address, rom.base) << module.name << " " << reloc;
            EXPECT_LE(address, rom.base + static_cast<uint32_t>(rom.size())) << module.name << " " << reloc;
            const uint32_t relative = address - rom.base - static_cast<uint32_t>(module.start);
            EXPECT_EQ(longat(module.extract, reloc), relative) << module.name << " " << reloc;
        }
    }
}

TEST(RomBuilder, NoEvenLongOfAModuleLooksLikeAnAddressExceptItsRelocs) {
    const BuiltRom rom = standardrom();
    for (const BuiltModule& module : rom.modules) {
        const std::set<int32_t> relocs(module.relocs.begin(), module.relocs.end());
        for (int32_t offset = 0; offset + 4 <= module.size; offset += 2) {
            const uint32_t value = longof(rom, module.start + offset);
            const bool isaddress = value >= rom.base && value < rom.base + static_cast<uint32_t>(rom.size());
            EXPECT_TRUE(!isaddress || relocs.contains(offset)) << module.name << " " << offset;
        }
    }
}

TEST(RomBuilder, AnotherBaseChangesNothingButRelocsEntryAndChecksum) {
    const BuiltRom low = standardrom(524288, 0xF80000);
    const BuiltRom high = standardrom(524288, 0xA00000);
    std::set<int32_t> allowed = {4, 524288 - 24};
    for (const BuiltModule& module : low.modules)
        for (const int32_t reloc : module.relocs)
            allowed.insert(module.start + reloc);
    std::set<int32_t> changed;
    for (int32_t offset = 0; offset < low.size();) {
        if (allowed.contains(offset)) {
            if (longof(low, offset) != longof(high, offset)) changed.insert(offset);
            offset += 4;
        } else {
            ASSERT_EQ(low.image[static_cast<size_t>(offset)], high.image[static_cast<size_t>(offset)])
                << offset;
            ++offset;
        }
    }
    EXPECT_EQ(changed, allowed);
    for (size_t i = 0; i < low.modules.size(); ++i) {
        EXPECT_EQ(low.modules[i].extract, high.modules[i].extract);
        EXPECT_EQ(low.modules[i].hash(), high.modules[i].hash());
    }
}

TEST(RomBuilder, AModuleHasTheSameExtractWhereverItLies) {
    const ModuleSpec spec{.name = "a", .idstring = "a", .size = 1000};
    const BuiltRom low = RomBuilder(65536, 0xFC0000).module(spec).build();
    const BuiltRom high = RomBuilder(65536, 0xF80000).gap(5000).module(spec).build();
    EXPECT_NE(low.module("a").start, high.module("a").start);
    EXPECT_EQ(low.module("a").extract, high.module("a").extract);
}

TEST(RomBuilder, MakesNoAccidentalRomTag) {
    for (const BuiltRom& rom : {standardrom(262144), standardrom(524288)}) {
        std::set<int32_t> expected;
        for (const BuiltModule& module : rom.modules)
            if (module.tag >= 0) expected.insert(module.romtag());
        std::set<int32_t> found;
        for (int32_t i = 0; i + 1 < rom.size(); ++i)
            if (rom.image[static_cast<size_t>(i)] == 0x4A && rom.image[static_cast<size_t>(i) + 1] == 0xFC)
                found.insert(i);
        EXPECT_EQ(found, expected);
    }
}

TEST(RomBuilder, WritesABadMatchOnRequest) {
    const BuiltRom rom =
        RomBuilder(65536, 0xFC0000).module({.name = "a", .idstring = "a", .badmatch = true}).build();
    const int32_t tag = rom.module("a").romtag();
    EXPECT_EQ(longof(rom, tag + 2), rom.base + static_cast<uint32_t>(tag) + 2);
}

TEST(RomBuilder, BuildsTheSameTwice) { EXPECT_EQ(standardrom().image, standardrom().image); }

TEST(RomBuilder, SeedsChangeTheCode) {
    const BuiltRom a = RomBuilder(65536, 0).module({.name = "a", .idstring = "a", .seed = 1}).build();
    const BuiltRom b = RomBuilder(65536, 0).module({.name = "a", .idstring = "a", .seed = 2}).build();
    EXPECT_EQ(a.module("a").relocs, b.module("a").relocs);
    EXPECT_NE(a.module("a").extract, b.module("a").extract);
}

TEST(RomBuilder, TakesAnySizeThatSuffices) {
    for (const int32_t size : {301, 302, 303, 304, 4095}) {
        const BuiltRom rom =
            RomBuilder(65536, 0).module({.name = "a", .idstring = "a", .size = size}).build();
        EXPECT_EQ(rom.module("a").extract.size(), static_cast<size_t>(size));
        EXPECT_EQ(rom.module("a").relocs.size(), 13U);
    }
}

TEST(RomBuilder, SizeZeroIsAsSmallAsPossible) {
    const BuiltRom rom = RomBuilder(65536, 0)
                             .module({.name = "a", .idstring = "a", .size = 0, .functions = 0, .calls = 1})
                             .build();
    EXPECT_EQ(rom.module("a").size, 48); // 34 up to the code, 8 of init function, 6 of JSR
    EXPECT_EQ(rom.module("a").relocs.back(), 44);
}

TEST(RomBuilder, RefusesWhatDoesNotFit) {
    EXPECT_THROW(RomBuilder(65536, 0).module({.name = "a", .idstring = "a", .size = 40}), std::logic_error);
    EXPECT_THROW((void)RomBuilder(1024, 0).module({.name = "a", .idstring = "a"}).build(), std::logic_error);
    RomBuilder builder(65536, 0);
    builder.data({.name = "a", .start = 100}).data({.name = "b", .start = 200});
    EXPECT_THROW((void)builder.build(), std::logic_error);
    builder = RomBuilder(65536, 0);
    builder.module({.name = "a", .idstring = "a", .pointers = {{"nobody", 0}}});
    EXPECT_THROW((void)builder.build(), std::logic_error);
}

TEST(RomBuilder, MapAscendsWithoutOverlaps) {
    for (const BuiltRom& rom : {standardrom(262144), standardrom(524288)})
        for (size_t i = 1; i < rom.map.size(); ++i)
            EXPECT_LE(rom.map[i - 1].start + rom.map[i - 1].size, rom.map[i].start);
}

TEST(RomBuilder, MapHoldsTheVirtualComponents) {
    const BuiltRom rom = standardrom();
    ASSERT_EQ(rom.map.size(), rom.modules.size() + 5);
    EXPECT_EQ(rom.map.front().name, "ROMHeader");
    EXPECT_EQ(rom.map.back().hash, "0x00180019001a001b001c001d001e001f");
    EXPECT_EQ(rom.map[rom.map.size() - 2].start, 524268);
    EXPECT_EQ(rom.map[rom.map.size() - 2].hash, "0x00080000");
    EXPECT_EQ(rom.map[rom.map.size() - 3].hash, hex32(longof(rom, 524264)));
}

TEST(RomBuilder, OverwritesBeforeTheChecksum) {
    RomBuilder builder = standardbuilder();
    const Bytes patch = {0x4A, 0xFC};
    const BuiltRom rom = builder.overwrite(400000, patch).build();
    EXPECT_EQ(wordof(rom, 400000), 0x4AFCU);
    EXPECT_EQ(carrysum(rom.image), 0xFFFFFFFFU);
}

TEST(StandardRom, HasOneModuleOfEveryKind) {
    const BuiltRom rom = standardrom();
    EXPECT_EQ(rom.base, 0xF80000U);
    EXPECT_EQ(rom.modules.size(), 9U);
    EXPECT_GE(rom.module("graphics.library").size, 65536);
    EXPECT_GE(rom.module("graphics.library").relocs.back(), 65536);
    EXPECT_EQ(rom.module("font").tag, iNone);
    EXPECT_EQ(rom.module("trackdisk.device").start, 262152);
    EXPECT_EQ(standardrom(262144).base, 0xFC0000U);
}

TEST(LoadableForm, ShortRelocsArePaddedToALong) {
    const Bytes extract = {1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes two = loadableform(extract, {0, 4}, "Library");
    const Bytes expected = {0, 0, 3, 0xF3, 0, 0, 0, 0,    0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0,
                            0, 0, 0, 2,    0, 0, 3, 0xE9, 0, 0, 0, 2, 1, 2, 3, 4, 5, 6, 7, 8,
                            0, 0, 3, 0xF7, 0, 2, 0, 0,    0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 3, 0xF2};
    EXPECT_EQ(two, expected);
    EXPECT_EQ(loadableform(extract, {4}, "Library").size(), two.size() - 4);
}

TEST(LoadableForm, WithoutRelocsHasNoRelocBlock) {
    const Bytes form = loadableform(Bytes(8, 9), {}, "Data");
    EXPECT_EQ(form.size(), 32U + 8 + 4);
    EXPECT_EQ(longat(form, 24), 1002U);
    EXPECT_EQ(longat(form, 40), 1010U);
}

TEST(LoadableForm, LargeOnesHaveLongRelocs) {
    const Bytes form = loadableform(Bytes(65536, 0), {65532}, "Library");
    EXPECT_EQ(longat(form, 32 + 65536), 1004U);
    EXPECT_EQ(longat(form, 32 + 65536 + 4), 1U);
    EXPECT_EQ(longat(form, 32 + 65536 + 8), 0U);
    EXPECT_EQ(longat(form, 32 + 65536 + 12), 65532U);
    EXPECT_EQ(longat(form, 32 + 65536 + 16), 0U);
    EXPECT_EQ(longat(form, 32 + 65536 + 20), 1010U);
    EXPECT_EQ(form.size(), 32U + 65536 + 24);
}

} // namespace
} // namespace vantorel::test
