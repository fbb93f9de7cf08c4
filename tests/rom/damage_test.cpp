// Images that are damaged in every way go through every operation.

#include "component/extract.h"
#include "rom/analyse.h"
#include "rom/checksum.h"
#include "rom/listing.h"
#include "rom/load.h"
#include "rom/romtag.h"
#include "rom/romtest.h"
#include "rom/split.h"
#include "support/noise.h"

namespace vantorel::test {
namespace {

// A ROM of every kind of module that is small enough to be damaged often.
RomBuilder smallbuilder(uint32_t base) {
    RomBuilder rom(16384, base);
    rom.module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 2048, .tag = 60});
    rom.module({.name = "expansion.library",
                .idstring = "expansion 40.2 (3.3.93)\r\n",
                .size = 1024,
                .init = Init::Auto32,
                .initstruct = libraryinit(),
                .pointers = {{.module = "exec.library", .offset = 512}}});
    rom.gap(40).module({.name = "trackdisk.device",
                        .idstring = "trackdisk 40.1 (9.2.93)\r\n",
                        .size = 1024,
                        .type = 3,
                        .init = Init::Auto16});
    rom.data({.name = "font", .size = 512});
    return rom;
}

class DamageTest : public RomTest {
protected:
    // A known ROM in slot 0, so that there is something to compare with.
    void SetUp() override {
        RomTest::SetUp();
        hashes.add(known);
        index();
        loaded(known.image);
    }

    // Everything that reads an image, at a verbosity that reads all of it.
    static void workon(View image, int32_t level) {
        static_cast<void>(at(level, [&] {
            const int32_t rom = newrom(0, 0);
            loadromdata(rom, image);
            everylisting(rom);
            expectsoundmap(rom);
            analyserom(rom);
            everylisting(rom);
            for (int32_t number = 0; number < slotat(rom).iComponents(); ++number)
                createextract(rom, number);
            expectsoundmap(rom);
            freecomponents(rom);
            slotat(rom) = {};
            --iMaxRom;
        }));
    }

    static void everylisting(int32_t number) {
        roms(number);
        rom(number);
        modules(number);
        static_cast<void>(cChecksum(number));
        static_cast<void>(validrom(slotat(number).pcROM));
    }

    BuiltRom known = smallbuilder(0xF80000).build();
};

TEST_F(DamageTest, ImagesOfUpTo30BytesInEveryOperation) {
    const Bytes plain = {0x11, 0x14, 0x4E, 0xF9, 0x00, 0xF8, 0x00, 0xD2};
    Bytes tag = {0x4A, 0xFC, 0x00, 0xF8, 0x00, 0x00, 0x00, 0xF8};
    for (size_t size = 0; size <= 30; ++size)
        for (const Bytes& start : {plain, tag}) {
            Bytes image = start;
            image.resize(size, 0x80);
            workon(image, 10);
            dir.file("first", image);
            dir.file("second", image);
            static_cast<void>(at(10, [&] {
                loadrom(dir.file("first"), 0);
                loadsplitrom(dir.file("first"), dir.file("second"), 0);
            }));
        }
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, ImagesCutAtEveryPlace) {
    for (size_t size = 0; size < known.image.size(); size += 61)
        workon(View(known.image).first(size), 1);
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, TagPointersToEverywhere) {
    const BuiltModule& module = known.module("expansion.library");
    const auto self = static_cast<size_t>(module.romtag());
    for (const int32_t field : {2, 6, 14, 18, 22})
        for (const uint32_t value : {0u, 1u, 0x460140u, 0xF80000u, 0xF7FFFFu, 0xF83FFFu, 0xF84000u, 0xF83FFEu,
                                     0x7FFFFFFFu, 0x80000000u, 0x80F80000u, 0xFFFFFFFFu}) {
            Bytes image = known.image;
            ASSERT_TRUE(putlong(image, static_cast<int64_t>(self) + field, value));
            workon(image, 10);
        }
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, AutoInitTablesToEverywhere) {
    const BuiltModule& module = known.module("expansion.library");
    const uint32_t table = longat(known.image, module.romtag() + 22).value() - known.base;
    for (const int32_t field : {0, 4, 8, 12})
        for (const uint32_t value : {0u, 1u, 0xF83FFDu, 0xF84000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            Bytes image = known.image;
            ASSERT_TRUE(putlong(image, static_cast<int64_t>(table) + field, value));
            workon(image, 10);
        }
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, RandomBytes) {
    Noise random(20130502);
    for (int round = 0; round < 150; ++round) {
        Bytes image = known.image;
        const uint32_t changes = 1 + random() % 64;
        for (uint32_t change = 0; change < changes; ++change)
            image[random() % image.size()] = static_cast<uint8_t>(random());
        workon(image, round % 10 == 0 ? 10 : 1);
    }
    EXPECT_EQ(iMaxRom, 1);
}

// Most random changes hit code; these hit the tags.
TEST_F(DamageTest, RandomBytesInTheTags) {
    Noise random(4711);
    for (int round = 0; round < 300; ++round) {
        Bytes image = known.image;
        for (const BuiltModule& module : known.modules) {
            if (module.tag < 0 || random() % 2 == 0) continue;
            const uint32_t place = static_cast<uint32_t>(module.romtag()) + 6 + random() % 20;
            image[place] = static_cast<uint8_t>(random());
        }
        workon(image, round % 10 == 0 ? 10 : 1);
    }
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, TagsEverywhere) {
    // A match word on every even place, each a true tag of the same base.
    Bytes image(4096, 0);
    for (uint32_t i = 0; i + 6 <= image.size(); i += 6) {
        image[i] = 0x4A;
        image[i + 1] = 0xFC;
        ASSERT_TRUE(putlong(image, i + 2, 0xF80000 + i));
    }
    workon(image, 2);
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, RandomHashFiles) {
    Noise random(31);
    const std::string romtext = romhash(known);
    const std::string moduletext = componenthash(known.modules[0]);
    const auto damaged = [&](std::string text) {
        for (uint32_t change = 1 + random() % 6; change > 0; --change)
            text[random() % text.size()] = "=,:-9[\n\r]0 "[random() % 11];
        return text;
    };
    for (int round = 0; round < 300; ++round) {
        hashes.write(hex32(known.crc), damaged(romtext));
        hashes.write(known.modules[0].hash(), damaged(moduletext));
        workon(known.image, round % 20 == 0 ? 10 : 1);
    }
    EXPECT_EQ(iMaxRom, 1);
}

TEST_F(DamageTest, AMapThatNoLongerFitsItsImageIsListed) {
    Component& component = componentat(0, 1);
    for (const int32_t start : {-2147483647 - 1, -1, 16383, 2147483647})
        for (const int32_t size : {-2147483647 - 1, -1, 2, 2147483647}) {
            component.iStart = start;
            component.iSize = size;
            EXPECT_TRUE(has(at(1, [] { rom(0); }), " 1 exec.library ")) << start << " " << size;
        }
}

TEST_F(DamageTest, AComponentOfAnotherRomThatNoLongerFitsIsNoMatch) {
    const BuiltRom other = smallbuilder(0xE00000).build();
    loaded(other.image);
    Component& component = componentat(0, 1);
    for (const int32_t size : {-2147483647 - 1, -1, 2147483647}) {
        component.iSize = size;
        EXPECT_FALSE(has(at(1, [] { analyserom(1); }), "Perfect match, analysing ROM 1 Component 0 "));
    }
    component.iSize = 2048;
    for (const int32_t start : {-2147483647 - 1, 2147483647}) {
        component.iStart = start;
        EXPECT_FALSE(has(at(1, [] { analyserom(1); }), "Perfect match, analysing ROM 1 Component 0 "));
    }
}

} // namespace
} // namespace vantorel::test
