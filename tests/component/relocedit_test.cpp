// Relocation lists edited by hand.

#include "component/relocedit.h"

#include "component/extract.h"
#include "component/slotstate.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace vantorel::test {
namespace {

using Relocs = std::vector<int32_t>;

class RelocEditTest : public RomTest {
protected:
    // Slot 0: 256 bytes at 0xF80000, on bytes 64 to 127 a component with a tag, whose longs all point at its
    // first byte.
    void SetUp() override {
        RomTest::SetUp();
        makeslot();
    }

    static void makeslot() {
        slotwith(256, {{0, 64}, {64, 64}}, 0xF80000);
        componentat(0, 1).iROMTag = 64;
        componentat(0, 1).pcExtract = Bytes(64, 1);
        for (int32_t offset = 0; offset < 64; offset += 4)
            point(offset, 0xF80040);
    }

    static void point(int32_t offset, uint32_t value) {
        ASSERT_TRUE(putlong(slotat(0).pcROM, 64 + offset, value));
    }

    static Relocs& relocs() { return componentat(0, 1).ipRelocs; }

    // What adding the reloc says at verbosity 1, and nothing else but list and extract changes.
    static std::string add(int32_t offset) {
        const Bytes image = slotat(0).pcROM;
        const std::string console = at(1, [&] { EXPECT_EQ(addreloc(0, 1, offset), 0); });
        EXPECT_EQ(slotat(0).pcROM, image);
        expectfresh();
        return console;
    }

    // Checks that raising the extract gives the image again.
    static void expectfresh() {
        ASSERT_TRUE(componentat(0, 1).pcExtract.has_value());
        EXPECT_EQ(raised(*componentat(0, 1).pcExtract, relocs(), 0xF80040), bytesat(0, 64, 64));
    }
};

TEST_F(RelocEditTest, AddedOnesAreKeptInOrder) {
    for (const int32_t offset : {40, 8, 24})
        EXPECT_EQ(add(offset), "");
    EXPECT_EQ(relocs(), (Relocs{8, 24, 40}));
    for (const int32_t offset : {0, 60, 32})
        EXPECT_EQ(add(offset), "");
    EXPECT_EQ(relocs(), (Relocs{0, 8, 24, 32, 40, 60}));
    EXPECT_EQ(longat(*componentat(0, 1).pcExtract, 24), 0u);
    EXPECT_EQ(longat(*componentat(0, 1).pcExtract, 20), 0xF80040u);
}

TEST_F(RelocEditTest, TheLastLongIsTakenAndOneByteBehindItIsNot) {
    EXPECT_EQ(add(60), "");
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(addreloc(0, 1, 61), 1); }),
              "ERROR, reloc (61) out of range Size=64\n");
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(addreloc(0, 1, INT32_MAX), 1); }),
              "ERROR, reloc (2147483647) out of range Size=64\n");
    EXPECT_EQ(relocs(), Relocs{60});
}

TEST_F(RelocEditTest, InAComponentShorterThanALongNothingFits) {
    componentat(0, 1).iSize = 3;
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(addreloc(0, 1, 0), 1); }),
              "ERROR, reloc (0) out of range Size=3\n");
}

TEST_F(RelocEditTest, ANegativeOffsetIsRefused) {
    for (const int32_t offset : {-1, -4, INT32_MIN})
        EXPECT_TRUE(isoneerror(expectunchanged(0, [&] { EXPECT_EQ(addreloc(0, 1, offset), 1); })));
}

TEST_F(RelocEditTest, OneThatIsThereIsRefusedAndToldAtLevelTwoOnly) {
    add(8);
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(addreloc(0, 1, 8), 1); }), "");
    const Action again = [] { addreloc(0, 1, 8); };
    EXPECT_TRUE(has(at(2, again), "WARNING, RELOC 8 already exists, ignoring\n"));
    EXPECT_EQ(relocs(), Relocs{8});
}

TEST_F(RelocEditTest, WithoutATagNoneCanBeAddedButTheyCanBeDeleted) {
    componentat(0, 1).iROMTag = -1;
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(addreloc(0, 1, 8), 1); }),
              "ERROR, only components with a ROMTAG can have relocs added\n");
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(addreloc(0, 1, 999), 1); }),
              "ERROR, only components with a ROMTAG can have relocs added\n")
        << "the tag is asked for before the range";
    relocs() = {8};
    silently([] { EXPECT_EQ(deletereloc(0, 1, 8), 0); });
    EXPECT_EQ(relocs(), Relocs{});
}

TEST_F(RelocEditTest, ValuesOutsideTheComponentAreWarnedAboutAndAdded) {
    // The component runs from 0xF80040 to 0xF80080; its last long is at 0xF8007C.
    point(0, 0xF8007C);
    EXPECT_EQ(add(0), "");
    point(4, 0xF8007D);
    EXPECT_EQ(add(4), "WARNING, reloc value (F8007D) beyond this module, max=F80080\n");
    point(8, 0xF8003F);
    EXPECT_EQ(add(8), "WARNING, reloc value (F8003F) before this modules start=F80040\n");
    point(12, 0x12);
    EXPECT_EQ(add(12), "WARNING, reloc value (    12) before this modules start=F80040\n");
    point(16, 0xFFFFFFFF);
    EXPECT_EQ(add(16), "WARNING, reloc value (FFFFFFFF) beyond this module, max=F80080\n");
    point(20, 0xF80040);
    EXPECT_EQ(add(20), "");
    EXPECT_EQ(relocs(), (Relocs{0, 4, 8, 12, 16, 20}));
}

TEST_F(RelocEditTest, OddOffsetsAreTaken) {
    silently([] { EXPECT_EQ(addreloc(0, 1, 3), 0); });
    EXPECT_EQ(relocs(), Relocs{3});
    expectfresh();
}

TEST_F(RelocEditTest, DeletingTakesTheOneOut) {
    relocs() = {8, 24, 40};
    EXPECT_EQ(at(5, [] { EXPECT_EQ(deletereloc(0, 1, 24), 0); }), "");
    EXPECT_EQ(relocs(), (Relocs{8, 40}));
    expectfresh();
    silently([] { EXPECT_EQ(deletereloc(0, 1, 8), 0); });
    silently([] { EXPECT_EQ(deletereloc(0, 1, 40), 0); });
    EXPECT_EQ(componentat(0, 1).iRelocs(), 0);
    EXPECT_EQ(componentat(0, 1).pcExtract, bytesat(0, 64, 64)) << "nothing is relocated any more";
    EXPECT_EQ(expectunchanged(0, [] { EXPECT_EQ(deletereloc(0, 1, 8), 1); }), "ERROR, reloc 8 not found\n");
}

TEST_F(RelocEditTest, OfTwoEqualOnesTheFirstGoes) {
    relocs() = {40, 8, 24, 8};
    silently([] { EXPECT_EQ(deletereloc(0, 1, 8), 0); });
    EXPECT_EQ(relocs(), (Relocs{40, 24, 8}));
}

TEST_F(RelocEditTest, WhatIsNotInTheListCannotBeDeleted) {
    relocs() = {8, 24};
    for (const int32_t offset : {0, 9, 64, -8, INT32_MAX, INT32_MIN})
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(deletereloc(0, 1, offset), 1); }),
                  "ERROR, reloc " + std::to_string(offset) + " not found\n");
}

TEST_F(RelocEditTest, MissingSlotsAndComponentsAreRefused) {
    for (const auto& edit : {addreloc, deletereloc}) {
        for (const int32_t rom : {-1, 1, 20, INT32_MAX})
            EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(edit(rom, 1, 8), 1); }),
                      "ERROR, ROM out of range\n");
        for (const int32_t component : {-1, 2, INT32_MAX, INT32_MIN})
            EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(edit(0, component, 8), 1); }),
                      "ERROR, component out of range\n");
        EXPECT_EQ(at(0, [&] { edit(0, 2, 8); }), "");
        EXPECT_EQ(at(0, [&] { edit(1, 0, 8); }), "");
    }
    silently([] { freeroms(); });
    for (const auto& edit : {addreloc, deletereloc})
        for (const int32_t rom : {-1, 0, 1, 20}) {
            EXPECT_EQ(at(1, [&] { EXPECT_EQ(edit(rom, 0, 8), 1); }), "ERROR, please load or create a ROM\n");
            EXPECT_EQ(at(0, [&] { edit(rom, 0, 8); }), "");
        }
}

TEST_F(RelocEditTest, OneRelocOutsideDoesNotKeepTheOthersFromTheExtract) {
    relocs() = {100};
    EXPECT_EQ(at(1, [] { EXPECT_EQ(addreloc(0, 1, 8), 0); }), "ERROR: Reloc 100 is outside its component\n");
    EXPECT_EQ(relocs(), (Relocs{8, 100}));
    EXPECT_EQ(longat(*componentat(0, 1).pcExtract, 8), 0u);
}

TEST_F(RelocEditTest, MessagesOfAddingHaveTheirThresholds) {
    const Action prepare = [] {
        makeslot();
        relocs() = {8, 40};
        point(24, 0xF80041);
    };
    expectthresholds(prepare, [] { addreloc(0, 1, 24); },
                     {{1, "RELOCS=2\n"},
                      {5, "RELOC$=0x"},
                      {5, "EXTRACT$=0x"},
                      {9, "iSTART$=64\n"},
                      {5, "RELOC Value=00f80041\n"},
                      {1, "Inserting new RELOC\n"},
                      {1, "RELOC=8\nRELOC=24\nRELOC=40\n"},
                      {1, "Refreshing/creating extract\n"},
                      {5, "There are 3 relocs\n"}});
    expectthresholds([] { makeslot(); }, [] { addreloc(0, 1, 24); },
                     {{1, "RELOCS=0\n"},
                      {1, "New RELOC, no RELOCS so far, creating RELOC table\n"},
                      {1, "Refreshing/creating extract\n"}});
    expectthresholds(prepare, [] { addreloc(0, 1, 40); },
                     {{1, "WARNING, RELOC 40 already exists, ignoring\n"}});
    expectthresholds(prepare, [] { addreloc(0, 1, 61); }, {{0, "ERROR, reloc (61) out of range Size=64\n"}});
    expectthresholds(prepare, [] { addreloc(0, 0, 4); },
                     {{0, "ERROR, only components with a ROMTAG can have relocs added\n"}});
    expectthresholds(
        [] {
            makeslot();
            point(0, 0xF80081);
            point(4, 0xF80000);
        },
        [] {
            addreloc(0, 1, 0);
            addreloc(0, 1, 4);
        },
        {{0, "WARNING, reloc value (F80081) beyond this module, max=F80080\n"},
         {0, "WARNING, reloc value (F80000) before this modules start=F80040\n"}});
}

TEST_F(RelocEditTest, TheFirstOfAListIsNotListed) {
    EXPECT_FALSE(has(at(2, [] { addreloc(0, 1, 24); }), "RELOC=24"));
}

TEST_F(RelocEditTest, MessagesOfDeletingHaveTheirThresholds) {
    expectthresholds(
        [] {
            makeslot();
            relocs() = {8, 40};
        },
        [] {
            deletereloc(0, 1, 8);
            deletereloc(0, 1, 9);
        },
        {{5, "There are 1 relocs\n"}, {0, "ERROR, reloc 9 not found\n"}});
}

class RelocScanTest : public RomTest {
protected:
    // A component with a tag on `place` of slot 0, which holds `image`.
    static void makeslot(const Bytes& image, const Extent& place, uint32_t base) {
        silently([] { freeroms(); });
        slotwith(static_cast<int32_t>(image.size()), {place}, base);
        slotat(0).pcROM = image;
        componentat(0, 0).iROMTag = place.start;
    }

    static std::string scan(int32_t level = 1) {
        return at(level, [] { addrelocs(0, 0); });
    }

    static const Relocs& relocs() { return componentat(0, 0).ipRelocs; }
};

TEST_F(RelocScanTest, PointersIntoTheComponentItselfAreAdded) {
    Bytes image(64, 0xFF);
    for (const auto& [place, value] : std::vector<std::pair<int32_t, uint32_t>>{
             {16, 0xF80010}, {22, 0xF80014}, {28, 0xF8000F}, {32, 0xF80030}, {36, 0xF80031}, {48, 0xF80010}})
        ASSERT_TRUE(putlong(image, place, value));
    // The component is on 16 to 47. A pointer at its end still counts, one behind it or before it does not,
    // nor one that stands behind it.
    makeslot(image, {16, 32}, 0xF80000);
    EXPECT_EQ(scan(), "Adding potential relocs 00000010 to 00000030\n"
                      "WARNING, reloc value (F80030) beyond this module, max=F80030\n"
                      "3 potential relocs added\n");
    EXPECT_EQ(relocs(), (Relocs{0, 6, 16}));
    EXPECT_EQ(slotat(0).pcROM, image);
    EXPECT_EQ(raised(*componentat(0, 0).pcExtract, relocs(), 0xF80010), bytesat(0, 16, 32));
}

TEST_F(RelocScanTest, TheModulesOfAKickstart) {
    // What the builder wrote as pointers into the module itself is found; calls in random code may add some.
    const BuiltRom standard = standardrom();
    const BuiltModule& utility = standard.module("utility.library");
    makeslot(standard.image, {utility.start, utility.size}, standard.base);
    componentat(0, 0).iROMTag = utility.romtag();
    scan();
    EXPECT_TRUE(std::ranges::includes(relocs(), utility.relocs));
    EXPECT_TRUE(std::ranges::binary_search(relocs(), utility.tag + 2)) << "RT_MATCHTAG";
}

TEST_F(RelocScanTest, AHitSkipsItsWholeLong) {
    // At base 0 each of these longs, and each that begins between them, points into the component.
    makeslot(Bytes(64, 0), {0, 16}, 0);
    EXPECT_EQ(scan(), "Adding potential relocs 00000000 to 00000010\n4 potential relocs added\n");
    EXPECT_EQ(relocs(), (Relocs{0, 4, 8, 12}));
}

TEST_F(RelocScanTest, OddStartsStepFromThemselves) {
    Bytes image(32, 0xFF);
    ASSERT_TRUE(putlong(image, 7, 0x00F80007));
    ASSERT_TRUE(putlong(image, 14, 0x00F80007));
    makeslot(image, {5, 20}, 0xF80000);
    EXPECT_EQ(scan(), "Adding potential relocs 00000005 to 00000019\n1 potential relocs added\n");
    EXPECT_EQ(relocs(), Relocs{2});
}

TEST_F(RelocScanTest, RefusedCandidatesAreCounted) {
    // Zeros in the last 2 bytes and behind: a long that begins inside and ends outside.
    Bytes image(32, 0xFF);
    std::fill_n(image.begin() + 14, 4, uint8_t{0});
    makeslot(image, {0, 16}, 0);
    EXPECT_EQ(scan(), "Adding potential relocs 00000000 to 00000010\n"
                      "ERROR, reloc (14) out of range Size=16\n"
                      "1 potential relocs added\n");
    EXPECT_EQ(relocs(), Relocs{});
}

TEST_F(RelocScanTest, ThereIsNoLongBeyondTheImage) {
    makeslot(Bytes(18, 0), {0, 18}, 0);
    EXPECT_EQ(scan(), "Adding potential relocs 00000000 to 00000012\n4 potential relocs added\n");
    EXPECT_EQ(relocs(), (Relocs{0, 4, 8, 12}));
}

TEST_F(RelocScanTest, ASecondScanCountsTheSameAndAddsNothing) {
    makeslot(Bytes(16, 0), {0, 16}, 0);
    scan();
    const std::string again = expectunchanged(0, [] { addrelocs(0, 0); });
    EXPECT_EQ(again, "Adding potential relocs 00000000 to 00000010\n4 potential relocs added\n");
    EXPECT_EQ(countof(scan(2), "already exists, ignoring\n"), 4);
}

TEST_F(RelocScanTest, OnesThatWereThereStayInAnyOrder) {
    makeslot(Bytes(24, 0), {0, 24}, 0);
    componentat(0, 0).ipRelocs = {2, 8, 17};
    scan();
    EXPECT_EQ(relocs(), (Relocs{0, 2, 4, 8, 12, 16, 17, 20}));
}

TEST_F(RelocScanTest, WhateverIsShownTheListIsTheSame) {
    Noise noise(5);
    for (int trial = 0; trial < 100; ++trial) {
        Relocs there;
        for (uint32_t i = noise() % 12; i > 0; --i)
            there.push_back(static_cast<int32_t>(noise() % 29));
        // A new one goes to the end of the list and from there before each larger one that it meets.
        Relocs expected = there;
        for (int32_t offset = 0; offset < 32; offset += 4) {
            if (std::ranges::find(there, offset) != there.end()) continue;
            expected.push_back(offset);
            for (size_t i = expected.size() - 1; i > 0 && expected[i - 1] > expected[i]; --i)
                std::swap(expected[i - 1], expected[i]);
        }
        for (const int32_t level : {0, 1, 2, 6}) {
            makeslot(Bytes(32, 0), {0, 32}, 0);
            componentat(0, 0).ipRelocs = there;
            static_cast<void>(scan(level));
            ASSERT_EQ(relocs(), expected) << "at level " << level;
            ASSERT_EQ(componentat(0, 0).pcExtract, Bytes(32, 0));
        }
    }
}

TEST_F(RelocScanTest, WithoutATagTheCandidatesAreCountedOnly) {
    makeslot(Bytes(12, 0), {0, 12}, 0);
    componentat(0, 0).iROMTag = -1;
    const std::string refusal = "ERROR, only components with a ROMTAG can have relocs added\n";
    EXPECT_EQ(expectunchanged(0, [] { addrelocs(0, 0); }), "Adding potential relocs 00000000 to 0000000c\n" +
                                                               refusal + refusal + refusal +
                                                               "3 potential relocs added\n");
}

TEST_F(RelocScanTest, AnEmptyComponentHasNone) {
    makeslot(Bytes(12, 0), {8, 0}, 0);
    EXPECT_EQ(scan(), "Adding potential relocs 00000008 to 00000008\n0 potential relocs added\n");
}

TEST_F(RelocScanTest, MissingSlotsAndComponentsAreRefused) {
    makeslot(Bytes(12, 0), {0, 12}, 0);
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(expectunchanged(0, [&] { addrelocs(rom, 0); }), "ERROR, No current ROM\n");
    for (const int32_t component : {-1, 1, INT32_MAX})
        EXPECT_EQ(expectunchanged(0, [&] { addrelocs(0, component); }), "ERROR: No such component\n");
}

// The offsets at which a scan finds a pointer, by the rule itself.
Relocs pointersin(const Bytes& image, const Extent& place, uint32_t base) {
    Relocs found;
    int32_t p = place.start;
    while (p < place.start + place.size) {
        bool ishit = false;
        if (static_cast<size_t>(p) + 4 <= image.size()) {
            uint64_t value = 0;
            for (int32_t i = 0; i < 4; ++i)
                value = value * 256 + image[static_cast<size_t>(p + i)];
            const uint64_t offset = (value + 0x100000000u - base) % 0x100000000u;
            ishit = offset >= static_cast<uint64_t>(place.start) &&
                    offset <= static_cast<uint64_t>(place.start + place.size);
        }
        if (ishit) found.push_back(p - place.start);
        p += ishit ? 4 : 2;
    }
    return found;
}

TEST_F(RelocScanTest, OnRandomImagesItFindsWhatTheRuleFinds) {
    Noise noise(11);
    size_t hits = 0;
    for (int trial = 0; trial < 500; ++trial) {
        const uint32_t base = noise() % 2 == 0 ? 0xFFFFFFE0 : noise() % 2 * 0xF80000;
        const auto start = static_cast<int32_t>(noise() % 40);
        const auto size = static_cast<int32_t>(noise() % static_cast<uint32_t>(201 - start));
        Bytes image = noisebytes(200, noise());
        for (int i = 0; i < 30; ++i)
            ASSERT_TRUE(putlong(image, noise() % 197, base + noise() % 240));
        makeslot(image, {start, size}, base);
        const std::string console = scan();
        Relocs expected = pointersin(image, {start, size}, base);
        ASSERT_TRUE(console.ends_with("\n" + std::to_string(expected.size()) + " potential relocs added\n"));
        std::erase_if(expected, [&](int32_t offset) { return offset > size - 4; });
        ASSERT_EQ(relocs(), expected);
        hits += expected.size();
        if (!expected.empty()) {
            ASSERT_EQ(raised(*componentat(0, 0).pcExtract, relocs(), base + static_cast<uint32_t>(start)),
                      bytesat(0, start, size));
        }
    }
    EXPECT_GT(hits, 1000u);
}

TEST_F(RelocScanTest, EachHitIsTracedTwoBytesAhead) {
    makeslot(Bytes(8, 0), {0, 8}, 0);
    const std::string console = scan(6);
    const size_t first = console.find("Potential RELOC=2\n");
    const size_t second = console.find("Potential RELOC=6\n");
    ASSERT_NE(second, std::string::npos) << console;
    EXPECT_LT(first, console.find("New RELOC, no RELOCS so far, creating RELOC table\n"));
    EXPECT_LT(console.find("New RELOC, no RELOCS so far, creating RELOC table\n"), second);
    EXPECT_EQ(countof(console, "Potential RELOC="), 2);
}

TEST_F(RelocScanTest, MessagesHaveTheirThresholds) {
    expectthresholds(
        [] {
            makeslot(Bytes(8, 0), {0, 8}, 0);
        },
        [] { addrelocs(0, 0); },
        {{0, "Adding potential relocs 00000000 to 00000008\n"},
         {0, "2 potential relocs added\n"},
         {5, "Potential RELOC=2\n"},
         {1, "Inserting new RELOC\nRELOC=0\nRELOC=4\nRefreshing/creating extract\n"},
         {5, "There are 2 relocs\n"}});
}

TEST_F(RelocScanTest, ABlankRomFullOfHitsTakesNoTime) {
    // Each of the 131072 zeros points at the component's start. An extract built for each would take hours.
    constexpr int32_t size = 512 * 1024;
    makeslot(Bytes(size, 0), {0, size}, 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(has(scan(), "131072 potential relocs added\n"));
    EXPECT_TRUE(has(scan(), "131072 potential relocs added\n"));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LT(taken.count(), 10) << "a fraction of a second, on a machine that does nothing else";
    ASSERT_EQ(componentat(0, 0).iRelocs(), size / 4);
    for (int32_t i = 0; i < size / 4; ++i)
        ASSERT_EQ(relocs()[static_cast<size_t>(i)], 4 * i);
}

} // namespace
} // namespace vantorel::test
