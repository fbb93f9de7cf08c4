// Where components go in a ROM, and how they get there.

#include "component/placement.h"

#include "component/slotstate.h"

#include <algorithm>
#include <optional>

namespace vantorel::test {
namespace {

class PlacementTest : public RomTest {
protected:
    // Places `need` bytes 0x77 in slot 0; the number that the new component got, -1 for none.
    static int32_t place(int32_t need) {
        Component record = recordof(Bytes(static_cast<size_t>(need), 0x77));
        int result = 0;
        silently([&] { result = addcomponent(0, record); });
        if (result != 0) return -1;
        const int32_t number = findcomponent(0, "new");
        componentat(0, number).pcName = "placed";
        return number;
    }

    static void replaceslot(int32_t size, const std::vector<Extent>& places) {
        silently([] { freeroms(); });
        slotwith(size, places);
    }
};

struct PlacementCase {
    std::string name;
    int32_t size;
    std::vector<Extent> there;
    int32_t need;
    int32_t number; ///< -1: refused
    int32_t start;
};

TEST_F(PlacementTest, TheFirstPlaceThatFitsIsTaken) {
    const std::vector<PlacementCase> cases = {
        {"into an empty ROM", 100, {}, 10, 0, 0},
        {"a whole empty ROM", 100, {}, 100, 0, 0},
        {"one byte more than an empty ROM", 100, {}, 101, -1, 0},
        {"before the first", 100, {{20, 80}}, 5, 0, 0},
        {"exactly before the first", 100, {{20, 80}}, 20, 0, 0},
        {"one byte short before the first", 100, {{20, 20}}, 21, 1, 40},
        {"between two, exactly", 100, {{0, 20}, {30, 60}}, 10, 1, 20},
        {"one byte short between two", 100, {{0, 20}, {30, 60}}, 11, -1, 0},
        {"the first of two gaps", 100, {{0, 20}, {30, 10}, {60, 10}}, 10, 1, 20},
        {"the second of two gaps", 100, {{0, 20}, {30, 10}, {60, 10}}, 11, 2, 40},
        {"behind the last", 100, {{0, 20}, {30, 10}, {60, 10}}, 21, 3, 70},
        {"behind neighbours without gaps", 100, {{0, 20}, {20, 10}, {30, 10}}, 1, 3, 40},
        {"exactly at the end", 100, {{0, 90}}, 10, 1, 90},
        {"one byte short at the end", 100, {{0, 91}}, 10, -1, 0},
        {"into a full ROM", 100, {{0, 100}}, 1, -1, 0},
        {"a gap although the end is full", 100, {{0, 10}, {90, 10}}, 80, 1, 10},
        {"nothing at all into an empty ROM", 100, {}, 0, 0, 0},
        {"nothing at all into a full ROM", 100, {{0, 100}}, 0, 0, 0},
        {"nothing at all into no bytes", 0, {}, 0, 0, 0},
        {"one byte into no bytes", 0, {}, 1, -1, 0},
    };
    for (const PlacementCase& one : cases) {
        replaceslot(one.size, one.there);
        EXPECT_EQ(place(one.need), one.number) << one.name;
        const size_t added = one.number < 0 ? 0 : 1;
        ASSERT_EQ(slotat(0).psComponents.size(), one.there.size() + added) << one.name;
        if (added == 0) continue;
        EXPECT_EQ(componentat(0, one.number).iStart, one.start) << one.name;
    }
}

// The lowest image offset at which `need` bytes are free, byte by byte.
std::optional<int32_t> lowestfree(const std::vector<bool>& istaken, int32_t need) {
    int32_t run = 0;
    for (size_t i = 0; i < istaken.size(); ++i) {
        run = istaken[i] ? 0 : run + 1;
        if (run == need) return static_cast<int32_t>(i) + 1 - need;
    }
    return std::nullopt;
}

// Components in order, without overlaps, on 200 bytes at random.
std::vector<Extent> randomplaces(Noise& noise, std::vector<bool>& istaken) {
    std::vector<Extent> places;
    int32_t end = 0;
    for (;;) {
        const auto gap = static_cast<int32_t>(noise() % 3 == 0 ? noise() % 30 : 0);
        const auto size = static_cast<int32_t>(1 + noise() % 40);
        if (end + gap + size > 200 || noise() % 12 == 0) return places;
        places.push_back({end + gap, size});
        std::fill_n(istaken.begin() + end + gap, size, true);
        end += gap + size;
    }
}

TEST_F(PlacementTest, OnRandomMapsItIsTheLowestFreeRun) {
    Noise noise(42);
    int refusals = 0;
    for (int trial = 0; trial < 2000; ++trial) {
        std::vector<bool> istaken(200);
        replaceslot(200, randomplaces(noise, istaken));
        const auto need = static_cast<int32_t>(1 + noise() % 50);
        const auto expected = lowestfree(istaken, need);
        const SlotState before = stateof(0);
        const int32_t number = place(need);
        ASSERT_EQ(number >= 0, expected.has_value());
        if (!expected) {
            ASSERT_TRUE(stateof(0) == before);
            ++refusals;
            continue;
        }
        ASSERT_EQ(componentat(0, number).iStart, *expected);
        Bytes image = before.image;
        std::fill_n(image.begin() + *expected, need, uint8_t{0x77});
        ASSERT_EQ(slotat(0).pcROM, image);
        SlotState after = stateof(0);
        after.components.erase(after.components.begin() + number);
        ASSERT_EQ(after.components, before.components) << "the others only make room";
        for (int32_t i = 1; i < slotat(0).iComponents(); ++i)
            ASSERT_LE(componentat(0, i - 1).iEnd(), componentat(0, i).iStart);
    }
    EXPECT_GT(refusals, 100);
}

TEST_F(PlacementTest, ThePlacedOneHasItsBoundsForCertain) {
    slotwith(100, {{0, 20}, {50, 10}});
    Component record = recordof(noisebytes(30, 1));
    record.iStart = 77;
    record.iFixedStart = record.iFixedEnd = -1;
    silently([&] { EXPECT_EQ(addcomponent(0, record), 0); });
    const Component& placed = componentat(0, 1);
    EXPECT_EQ(placed.pcName, Text("new"));
    EXPECT_EQ(placed.pcHash, Text("newhash"));
    EXPECT_EQ(placed.pcType, Text("Library"));
    EXPECT_EQ(placed.iStart, 20);
    EXPECT_EQ(placed.iFixedStart, 20);
    EXPECT_EQ(placed.iFixedEnd, 50);
    EXPECT_EQ(placed.iSize, 30);
    EXPECT_EQ(placed.pcExtract, noisebytes(30, 1));
}

TEST_F(PlacementTest, OnlyTheLastComponentSetsWhatIsUsed) {
    slotwith(100, {{20, 20}});
    slotat(0).iUsed = 99;
    EXPECT_EQ(place(10), 0);
    EXPECT_EQ(slotat(0).iUsed, 99) << "placed before another";
    EXPECT_EQ(place(15), 2);
    EXPECT_EQ(slotat(0).iUsed, 55);
    replaceslot(100, {});
    EXPECT_EQ(place(7), 0);
    EXPECT_EQ(slotat(0).iUsed, 7);
}

TEST_F(PlacementTest, BlankComponentsTakeNoRoomAndBoundNoGap) {
    slotwith(100, {{0, 20}, {40, 10}});
    auto& components = slotat(0).psComponents;
    components.insert(components.begin() + 1, Component{});
    components.insert(components.begin(), Component{});
    components.emplace_back();
    // blank, 0-20, blank, 40-50, blank
    EXPECT_EQ(place(21), 5) << "behind the last one that is there";
    EXPECT_EQ(componentat(0, 5).iStart, 50);
    EXPECT_EQ(slotat(0).iUsed, 71);
    EXPECT_EQ(place(20), 3);
    EXPECT_EQ(componentat(0, 3).iStart, 20);
    EXPECT_EQ(componentat(0, 4).pcName, Text("c40"));
    EXPECT_EQ(slotat(0).iUsed, 71);
}

TEST_F(PlacementTest, BlankComponentsAloneAreAnEmptyRom) {
    slotwith(100);
    slotat(0).psComponents.resize(3);
    EXPECT_EQ(place(101), -1);
    EXPECT_EQ(place(100), 3);
    EXPECT_EQ(componentat(0, 3).iStart, 0);
}

TEST_F(PlacementTest, WithoutRoomRecordAndRomStayAsTheyAre) {
    slotwith(100, {{0, 95}});
    slotat(0).iUsed = 12;
    Component record = recordof(noisebytes(6, 1), {0, 2});
    const std::string fields = fieldsof(record);
    EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(addcomponent(0, record), -1); }),
              "Not enough space in rom\nNo space in rom\n");
    EXPECT_EQ(fieldsof(record), fields);
    EXPECT_EQ(record.pcExtract, noisebytes(6, 1));
}

TEST_F(PlacementTest, ARecordWithoutAWholeExtractIsRefused) {
    slotwith(100, {{0, 20}});
    for (const auto& extract : std::vector<std::optional<Bytes>>{std::nullopt, Bytes(9)}) {
        Component record = recordof(Bytes(10));
        record.pcExtract = extract;
        EXPECT_TRUE(isoneerror(expectunchanged(0, [&] { EXPECT_EQ(addcomponent(0, record), -1); })));
        EXPECT_EQ(record.pcName, Text("new"));
    }
}

TEST_F(PlacementTest, PlacesOutsideTheImageAreNoRoom) {
    // Bounds that somebody edited: in front of the image, across its end, behind it.
    const std::vector<std::vector<Extent>> maps = {{{-30, 10}, {0, 100}}, {{0, 10}, {10, 91}},
                                                   {{0, 90}, {200, 10}},  {{0, 100}, {120, 0}},
                                                   {{0, 100}, {-20, 10}}, {{0, 100}, {2147483000, 647}},
                                                   {{-2147483647, 5}},    {{0, 2147483647}, {7, 2147483647}},
                                                   {{5, -10}, {0, 100}}};
    for (const auto& map : maps) {
        replaceslot(100, map);
        Component record = recordof(Bytes(20, 0x77));
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(addcomponent(0, record), -1); }),
                  "Not enough space in rom\nNo space in rom\n");
    }
}

TEST_F(PlacementTest, AGapThatRunsOutOfTheImageIsNoRoom) {
    slotwith(100, {{90, 5}, {300, 10}});
    EXPECT_EQ(place(91), -1);
    EXPECT_EQ(place(6), 0) << "the one before the first is good";
    EXPECT_EQ(place(85), -1);
}

TEST_F(PlacementTest, OutOfOrderAGapCountsFromTheOneBefore) {
    slotwith(100, {{0, 50}, {10, 10}, {60, 10}});
    EXPECT_EQ(place(41), -1);
    EXPECT_EQ(place(40), 2);
    EXPECT_EQ(componentat(0, 2).iStart, 20);
    replaceslot(100, {{60, 40}, {10, 10}});
    EXPECT_EQ(place(61), 2) << "behind the last one of the map";
    EXPECT_EQ(componentat(0, 2).iStart, 20);
}

TEST_F(PlacementTest, MissingSlotsAreRefused) {
    slotwith(100);
    for (const int32_t rom : {-1, 1, 20, 2147483647}) {
        Component record = recordof(Bytes(4));
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(addcomponent(rom, record), -1); }),
                  "ERROR, No current ROM\n");
        EXPECT_EQ(record.pcName, Text("new"));
    }
}

TEST_F(PlacementTest, TheTagAndItsTextsAreFoundAtTheNewPlace) {
    const BuiltRom standard = standardrom();
    const BuiltModule& utility = standard.module("utility.library");
    for (const uint32_t base : {0xF80000u, 0xFC0000u, 0x200000u, 0u}) {
        silently([] { freeroms(); });
        slotwith(8192, {{0, 100}}, base);
        Component record = recordof(utility.extract, utility.relocs);
        silently([&] { EXPECT_EQ(addcomponent(0, record), 0); });
        EXPECT_EQ(componentat(0, 1).iROMTag, 100 + utility.tag) << base;
        EXPECT_EQ(componentat(0, 1).pcLibName, Text("utility.library"));
        EXPECT_EQ(componentat(0, 1).pcLibString, Text("utility 40.1 (8.2.93)"));
        EXPECT_EQ(slotat(0).iROMBase, base) << "finding a tag does not set the base";
    }
}

TEST_F(PlacementTest, WithoutATagTheOldTextsGo) {
    slotwith(100);
    Component record = recordof(Bytes(40, 1));
    record.iROMTag = 12;
    record.pcLibName = "old";
    record.pcLibString = "old";
    silently([&] { EXPECT_EQ(addcomponent(0, record), 0); });
    EXPECT_EQ(componentat(0, 0).iROMTag, -1);
    EXPECT_EQ(componentat(0, 0).pcLibName, std::nullopt);
    EXPECT_EQ(componentat(0, 0).pcLibString, std::nullopt);
}

TEST_F(PlacementTest, ATagBehindTheComponentIsNotItsOwn) {
    const BuiltRom standard = standardrom();
    const BuiltModule& keymap = standard.module("keymap.library");
    slotwith(8192, {{64, keymap.size}});
    const Bytes bytes = raised(keymap.extract, keymap.relocs, 64);
    std::ranges::copy(bytes, slotat(0).pcROM.begin() + 64);
    EXPECT_EQ(place(64), 0);
    EXPECT_EQ(componentat(0, 0).iROMTag, -1);
}

TEST_F(PlacementTest, AModulePlacedElsewhereIsTheModuleBuiltThere) {
    // Builder and workbench agree on every byte, for any base and place.
    const ModuleSpec spec{.name = "moved.library",
                          .idstring = "moved 1.2 (3.4.95)\r\n",
                          .size = 3000,
                          .init = Init::Auto32,
                          .initstruct = libraryinit()};
    const BuiltRom source = RomBuilder(65536, 0xFC0000).module(spec).build();
    for (const uint32_t base : {0xF80000u, 0xE00000u, 0u, 0x7FFFF000u}) {
        ModuleSpec there = spec;
        there.start = 4096;
        const BuiltRom target = RomBuilder(65536, base).module(there).build();
        const int32_t rom = slotwith(65536, {{0, 4096}}, base);
        Component record = recordof(source.modules[0].extract, source.modules[0].relocs);
        silently([&] { EXPECT_EQ(addcomponent(rom, record), 0); });
        const View expected = target.bytes(target.modules[0]);
        EXPECT_EQ(bytesat(rom, 4096, 3000), Bytes(expected.begin(), expected.end())) << base;
    }
}

TEST_F(PlacementTest, EveryRelocatedLongIsRaisedByItsAddressAndNothingElse) {
    Noise noise(7);
    for (int trial = 0; trial < 100; ++trial) {
        const uint32_t base = noise() & 0xFFFFF000;
        const auto gap = static_cast<int32_t>(noise() % 64);
        silently([] { freeroms(); });
        slotwith(1024, {{0, gap}}, base);
        std::vector<int32_t> relocs;
        for (int32_t offset = static_cast<int32_t>(noise() % 9); offset <= 496;
             offset += 4 + static_cast<int32_t>(noise() % 40))
            relocs.push_back(offset);
        const Bytes extract = noisebytes(500, noise());
        Component record = recordof(extract, relocs);
        silently([&] { ASSERT_EQ(addcomponent(0, record), 0); });
        ASSERT_EQ(bytesat(0, gap, 500), raised(extract, relocs, base + static_cast<uint32_t>(gap)));
        ASSERT_EQ(bytesat(0, 0, gap), Bytes(static_cast<size_t>(gap), 0xEE));
        ASSERT_EQ(bytesat(0, gap + 500, 524 - gap), Bytes(static_cast<size_t>(524 - gap), 0xEE));
        ASSERT_EQ(componentat(0, 1).pcExtract, extract) << "it can be placed once more";
    }
}

TEST_F(PlacementTest, AMissingPlaceIsToldAtLevelOneAndAPlaceAtLevelTwo) {
    const Action add = [] {
        Component record = recordof(Bytes(12, 1));
        addcomponent(0, record);
    };
    const std::vector<Shown> always = {{1, "Adding component into ROM 0 (need 12 bytes)\n"},
                                       {1, "Space available - adding\n"},
                                       {1, "Couldn't find ROMTag!\n"}};
    const auto placed = [&](const std::vector<Extent>& places, std::vector<Shown> texts) {
        texts.insert(texts.end(), always.begin(), always.end());
        expectthresholds([=] { slotwith(100, places); }, add, texts);
    };
    placed({}, {{1, "No existing components, need to create first component\n"}});
    placed({{30, 10}},
           {{1, "Found space before component 0=30\nNeed to insert before component 0 at position 0\n"}});
    placed({{0, 10}, {11, 5}, {30, 1}},
           {{1, "Found space before component 2=14\nNeed to insert before component 2 at position 16\n"}});
    placed({{0, 10}, {11, 5}}, {{1, "Need to add component 2 at end at position 16\n"}});
    expectthresholds([] { slotwith(10, {}); }, add,
                     {{0, "Not enough space in rom\n"},
                      {0, "No space in rom\n"},
                      {1, "No existing components, need to create first component\n"}});
    expectthresholds([] {}, add, {{0, "ERROR, No current ROM\n"}});
}

TEST_F(PlacementTest, AFoundTagIsToldAtLevelTwo) {
    const BuiltRom standard = standardrom();
    const BuiltModule& utility = standard.module("utility.library");
    expectthresholds([] { slotwith(8192); },
                     [&] {
                         Component record = recordof(utility.extract, utility.relocs);
                         addcomponent(0, record);
                     },
                     {{1, "Found ROMTag\n"}});
}

} // namespace
} // namespace vantorel::test
