// The relocs of hunk files: where they come to lie, what is added to their longs, and how they are sorted.

#include "component/hunkread.h"
#include "support/noise.h"

#include <utility>

namespace vantorel::test {
namespace {

class HunkRelocsTest : public RomTest {};

// One code hunk of these longs, and a place for its relocs.
HunkBuilder onehunk(const std::vector<uint32_t>& values) {
    HunkBuilder builder;
    builder.header({.sizes = {static_cast<uint32_t>(values.size())}}).code(longs(values));
    return builder;
}

std::string missing(int32_t place) {
    return "ERROR: Reloc " + std::to_string(place) + " is outside its component\n";
}

TEST_F(HunkRelocsTest, EachHunkReachesEveryOther) {
    // Places in the extract: code 0, data 8, second code 16.
    const Component component =
        taken(HunkBuilder()
                  .header({.sizes = {2, 2, 1}})
                  .code(longs({100, 200}))
                  .reloc32({{.target = 1, .offsets = {4}}, {.target = 0, .offsets = {0}}})
                  .end()
                  .data(longs({300, 400}))
                  .reloc32({{.target = 0, .offsets = {0}}, {.target = 2, .offsets = {4}}})
                  .end()
                  .code(longs({500}))
                  .reloc32({{.target = 1, .offsets = {0}}})
                  .end()
                  .bytes());
    EXPECT_EQ(component.pcExtract, longs({100, 208, 300, 416, 508}));
    EXPECT_EQ(component.ipRelocs, (std::vector<int32_t>{0, 4, 8, 12, 16}));
}

TEST_F(HunkRelocsTest, AddingWrapsAt32BitsAndRepeatedRelocsCountTwice) {
    const Component component = taken(HunkBuilder()
                                          .header({.sizes = {1, 1}})
                                          .code(longs({0xFFFFFFFF}))
                                          .reloc32({{.target = 1, .offsets = {0, 0}}})
                                          .data(longs({0}))
                                          .end()
                                          .bytes());
    EXPECT_EQ(component.pcExtract, longs({7, 0}));
    EXPECT_EQ(component.ipRelocs, (std::vector<int32_t>{0, 0}));
}

TEST_F(HunkRelocsTest, OddPlacesAreTaken) {
    const Component component = taken(HunkBuilder()
                                          .header({.sizes = {2, 1}})
                                          .code(longs({0x01000000, 0x03FFFFFF}))
                                          .reloc32({{.target = 1, .offsets = {1}}})
                                          .data(longs({0}))
                                          .end()
                                          .bytes());
    // Bytes 1 to 4 hold 0x00000003, and the data lie 8 bytes on.
    EXPECT_EQ(component.pcExtract, longs({0x01000000, 0x0BFFFFFF, 0}));
}

TEST_F(HunkRelocsTest, SeveralBlocksOfOneHunkAddUp) {
    const Component component = taken(onehunk({1, 2, 3})
                                          .reloc32({{.offsets = {8}}})
                                          .symbols({{"a", 1}})
                                          .reloc32({{.offsets = {4}}, {.offsets = {0}}})
                                          .end()
                                          .bytes());
    EXPECT_EQ(component.ipRelocs, (std::vector<int32_t>{0, 4, 8}));
    EXPECT_EQ(component.pcExtract, longs({1, 2, 3}));
}

TEST_F(HunkRelocsTest, ABlockWithoutGroupsHasNone) {
    EXPECT_TRUE(taken(onehunk({1}).reloc32({}).end().bytes()).ipRelocs.empty());
    EXPECT_TRUE(taken(onehunk({1}).drel32({}).end().bytes()).ipRelocs.empty());
}

TEST_F(HunkRelocsTest, BssHasAPlaceInTheTableButNoHunkNumber) {
    // By the table: code 0, BSS 8, data 20. The data hunk counts as hunk 1, so its relocs lie from 8 on,
    // which is where its bytes are; what is aimed at it by its true number 2 goes to 20.
    const Component component =
        taken(HunkBuilder()
                  .header({.sizes = {2, 3, 2}})
                  .code(longs({100, 200}))
                  .reloc32({{.target = 1, .offsets = {0}}, {.target = 2, .offsets = {4}}})
                  .end()
                  .bss(3)
                  .end()
                  .data(longs({300, 400}))
                  .reloc32({{.target = 2, .offsets = {4}}})
                  .end()
                  .bytes());
    EXPECT_EQ(component.pcExtract, longs({108, 220, 300, 420}));
    EXPECT_EQ(component.ipRelocs, (std::vector<int32_t>{0, 4, 12}));
}

TEST_F(HunkRelocsTest, FirstHunkOfTheTableIsTheFirstOfTheFile) {
    const Component component = taken(HunkBuilder()
                                          .header({.sizes = {0, 1, 1}})
                                          .code({})
                                          .end()
                                          .code(longs({1}))
                                          .reloc32({{.target = 2, .offsets = {0}}})
                                          .end()
                                          .data(longs({2}))
                                          .reloc32({{.target = 1, .offsets = {0}}})
                                          .end()
                                          .bytes());
    EXPECT_EQ(component.pcExtract, longs({5, 2}));
    EXPECT_EQ(component.ipRelocs, (std::vector<int32_t>{0, 4}));
}

TEST_F(HunkRelocsTest, RelocsOutsideAreLeftOutWithALineEach) {
    const HunkRead read =
        readhunks(onehunk({1, 2})
                      .reloc32({{.offsets = {0, 5, 4, 8, 0x7FFFFFFF, 0xFFFFFFFC, 0x80000000}}})
                      .end()
                      .bytes());
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.console, missing(5) + missing(8) + missing(2147483647) + missing(-4) +
                                missing(-2147483647 - 1) + "Populating component 2 relocs\n");
    EXPECT_EQ(read.component.ipRelocs, (std::vector<int32_t>{0, 4}));
    EXPECT_EQ(read.component.pcExtract, longs({1, 2}));
}

TEST_F(HunkRelocsTest, RelocsIntoAHunkStillToComeAreKeptButItsBytesReplaceTheirLongs) {
    HunkBuilder file;
    file.header({.sizes = {1, 1}}).code(longs({1})).reloc32({{.target = 1, .offsets = {4, 0}}});
    const HunkRead cut = readhunks(file.bytes());
    EXPECT_EQ(cut.console, missing(4) + "Populating component 1 relocs\n") << "the bytes never came";
    EXPECT_EQ(cut.component.ipRelocs, std::vector<int32_t>{0});
    const HunkRead read = readhunks(file.data(longs({2})).end().bytes());
    EXPECT_EQ(read.console, "Populating component 2 relocs\n");
    EXPECT_EQ(read.component.ipRelocs, (std::vector<int32_t>{0, 4}));
    EXPECT_EQ(read.component.pcExtract, longs({5, 2}));
}

// Files in which the two relocs of the only hunk have no place to be judged by.
void expectwithoutplaces(View file) {
    const HunkRead read = readhunks(file);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(countof(read.console, "ERROR: Reloc "), 2) << read.console;
    EXPECT_EQ(countof(read.console, " is outside its component\n"), 2);
    EXPECT_TRUE(read.console.ends_with("Populating component 0 relocs\n"));
    EXPECT_TRUE(read.component.ipRelocs.empty());
}

TEST_F(HunkRelocsTest, RelocsThatLackTheirTableAreLeftOut) {
    const std::vector<RelocGroup> two = {{.offsets = {0, 4}}};
    const Bytes code = longs({1, 2});
    // No header at all; the table empty; before the first hunk.
    expectwithoutplaces(HunkBuilder().code(code).reloc32(two).end().bytes());
    expectwithoutplaces(
        HunkBuilder().header({.sizes = {2}, .table = 0}).code(code).reloc32(two).end().bytes());
    expectwithoutplaces(HunkBuilder().header({.sizes = {2}}).reloc32(two).code(code).end().bytes());
    expectwithoutplaces(HunkBuilder().reloc32(two).end().bytes());
    // More hunks than the table has; aimed at a hunk that it lacks.
    expectwithoutplaces(HunkBuilder().header({.sizes = {0}}).code({}).code(code).reloc32(two).end().bytes());
    for (const uint32_t target : {1u, 2u, 0x40000000u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        expectwithoutplaces(onehunk({1, 2}).reloc32({{.target = target, .offsets = {0, 4}}}).end().bytes());
}

TEST_F(HunkRelocsTest, ASecondHeaderKeepsRelocsAndHunkNumbers) {
    // The second file's only hunk is number 1 by now, which its table of one entry lacks.
    const Bytes file = onehunk({1, 2})
                           .reloc32({{.offsets = {4}}})
                           .end()
                           .header({.sizes = {2}})
                           .code(longs({7, 8}))
                           .reloc32({{.offsets = {0}}})
                           .end()
                           .bytes();
    const HunkRead read = readhunks(file);
    EXPECT_EQ(countof(read.console, "ERROR: Reloc "), 1);
    EXPECT_EQ(read.component.ipRelocs, std::vector<int32_t>{4});
    EXPECT_EQ(read.component.pcExtract, longs({7, 8}));
}

TEST_F(HunkRelocsTest, RelocsBeforeRawDataAreKeptWhereTheyFit) {
    const Bytes file = onehunk({1, 2}).reloc32({{.offsets = {4}}}).block({999}).bytes();
    const Component component = taken(file);
    EXPECT_EQ(component.pcType, "Data");
    EXPECT_EQ(component.pcExtract, file);
    EXPECT_EQ(component.ipRelocs, std::vector<int32_t>{4});
}

TEST_F(HunkRelocsTest, RelocsOfAnEarlierExtractThatNoLongerFitAreLeftOut) {
    const HunkRead read = readhunks(
        onehunk({1, 2}).reloc32({{.offsets = {4}}}).header({.sizes = {1}}).data(longs({9})).bytes());
    EXPECT_EQ(read.console, missing(4) + "Populating component 0 relocs\n");
    EXPECT_EQ(read.component.pcExtract, longs({9}));
}

TEST_F(HunkRelocsTest, ShortRelocsStandAsTheyAre) {
    const HunkRead read = readhunks(onehunk({100, 200, 300}).drel32({{.offsets = {8, 0}}}).end().bytes());
    EXPECT_EQ(read.component.ipRelocs, (std::vector<int32_t>{0, 8}));
    EXPECT_EQ(read.component.pcExtract, longs({100, 200, 300})) << "they are relative already";
    EXPECT_EQ(read.console, "\nPopulating component 2 relocs\n") << "an empty line for the group";
}

TEST_F(HunkRelocsTest, ShortRelocsKeepAllGroups) {
    for (uint32_t count = 0; count <= 5; ++count) {
        std::vector<RelocGroup> groups = {{.offsets = {16, 12}}, {.offsets = {}}};
        groups[1].offsets.assign({0, 4, 8, 1, 2});
        groups[1].offsets.resize(count);
        if (count == 0) groups.pop_back();
        const HunkRead read = readhunks(onehunk({1, 2, 3, 4, 5}).drel32(groups).end().bytes(), 0);
        std::vector<int32_t> wanted(groups.back().offsets.begin(), groups.back().offsets.end());
        if (count != 0) wanted.insert(wanted.end(), {16, 12});
        std::ranges::sort(wanted);
        EXPECT_EQ(read.component.ipRelocs, wanted) << count;
        EXPECT_EQ(read.console, std::string(groups.size(), '\n')) << "one for each group, at every level";
    }
}

TEST_F(HunkRelocsTest, ShortRelocsTakeTheHunkEndBehindThemAlong) {
    // Were it read, the long behind the block would make the file raw.
    for (uint32_t count = 1; count <= 4; ++count) {
        const std::vector<RelocGroup> group = {{.offsets = std::vector<uint32_t>(count, 4)}};
        const Component component = taken(onehunk({1, 2}).drel32(group).block({999}).end().bytes());
        EXPECT_EQ(component.pcType, "Library") << count;
        EXPECT_EQ(component.ipRelocs, std::vector<int32_t>(count, 4));
    }
}

TEST_F(HunkRelocsTest, ShortRelocsReplaceWhatCameBefore) {
    const std::vector<RelocGroup> first = {{.offsets = {0}}};
    const std::vector<RelocGroup> second = {{.offsets = {4}}};
    const Component both = taken(onehunk({1, 2, 3}).drel32(first).end().drel32(second).end().bytes());
    EXPECT_EQ(both.ipRelocs, std::vector<int32_t>{4});
    const Component mixed = taken(onehunk({1, 2, 3}).reloc32(first).drel32(second).end().bytes());
    EXPECT_EQ(mixed.ipRelocs, std::vector<int32_t>{4});
    const Component after = taken(onehunk({1, 2, 3}).drel32(second).end().reloc32(first).end().bytes());
    EXPECT_EQ(after.ipRelocs, (std::vector<int32_t>{0, 4})) << "long ones join what is there";
}

TEST_F(HunkRelocsTest, ShortRelocsOutsideAreLeftOutAtTheEnd) {
    const HunkRead read = readhunks(onehunk({1, 2}).drel32({{.offsets = {5, 4, 65535}}}).end().bytes());
    EXPECT_EQ(read.console, "\n" + missing(5) + missing(65535) + "Populating component 1 relocs\n");
    EXPECT_EQ(read.component.ipRelocs, std::vector<int32_t>{4});
}

TEST_F(HunkRelocsTest, ShortRelocsNeedNoHeader) {
    EXPECT_EQ(taken(HunkBuilder().data(longs({1, 2})).drel32({{.offsets = {4}}}).end().bytes()).ipRelocs,
              std::vector<int32_t>{4});
}

TEST_F(HunkRelocsTest, MessagesOfLongRelocsHaveTheirThresholds) {
    const Bytes file = HunkBuilder()
                           .header({.sizes = {2, 1}})
                           .code(longs({100, 200}))
                           .end()
                           .data(longs({300}))
                           .reloc32({{.target = 1, .offsets = {0}}, {.target = 0, .offsets = {0}}})
                           .end()
                           .bytes();
    expectthresholds([] {}, [&] { readonly(file); },
                     {{5, "HUNK_RELOC32 [000003ec]\n"},
                      {5, " 1 new HUNK entries (Total=1)\n Target hunk 1\nReloc [0] pos=0 (8) =308\n"},
                      {5, " 1 new inline entries (Total=2)\n Target hunk 0\nReloc [1] pos=0 (8) =308\n"},
                      {0, "Populating component 2 relocs\n"},
                      {1, "First reloc=8\n"},
                      {5, "Sorting 2 relocs.sorted\n"}});
}

TEST_F(HunkRelocsTest, MessagesOfShortRelocsHaveTheirThresholds) {
    const Bytes file = HunkBuilder()
                           .header({.sizes = {2, 1}})
                           .code(longs({100, 0xABCDEF01}))
                           .drel32({{.offsets = {4, 0}}, {.target = 1, .offsets = {0}}})
                           .end()
                           .bytes();
    expectthresholds([] {}, [&] { readonly(file); },
                     {{5, "HUNK_DREL32 [000003f7]\n"},
                      {5, " 2 entries\n Target hunk 0\n"},
                      {5, "Reloc: pos=4 add=0 R=abcdef01\nReloc: pos=0 add=0 R=00000064\n\n"},
                      {5, " 1 entries\n Target hunk 1\nReloc: pos=0 add=8 R=00000064\n\n"},
                      {-1, "\n\n"},
                      {1, "First reloc=4\n"},
                      {5, "Sorting 3 relocs"},
                      {5, "sorted\n"}});
}

TEST_F(HunkRelocsTest, RelocsOutsideHaveTheirThreshold) {
    const Bytes longform = onehunk({1}).reloc32({{.offsets = {1}}}).end().bytes();
    const Bytes shortform = onehunk({1}).drel32({{.offsets = {1}}}).end().bytes();
    for (const Bytes& file : {longform, shortform})
        expectthresholds([] {}, [&] { readonly(file); }, {{0, missing(1)}});
}

TEST_F(HunkRelocsTest, WithoutRelocsNothingIsSorted) {
    EXPECT_FALSE(has(readhunks(onehunk({1}).end().bytes(), 10).console, "Sorting"));
    EXPECT_FALSE(has(readhunks(onehunk({1}).end().bytes(), 10).console, "First reloc"));
}

// Sorts by exchanging neighbours, and gives the number of passes, the last of which exchanges nothing.
int bubblesort(std::vector<int32_t>& values) {
    for (int passes = 1;; ++passes) {
        bool exchanged = false;
        for (size_t i = 1; i < values.size(); ++i) {
            if (values[i - 1] <= values[i]) continue;
            std::swap(values[i - 1], values[i]);
            exchanged = true;
        }
        if (!exchanged) return passes;
    }
}

// Reads a file with these relocs, in the form that the size of its only hunk has, and judges order and trace.
void expectsorted(const std::vector<uint32_t>& offsets, bool isshort) {
    HunkBuilder builder = onehunk(std::vector<uint32_t>(64));
    if (isshort)
        builder.drel32({{.offsets = offsets}});
    else
        builder.reloc32({{.offsets = offsets}});
    const HunkRead read = readhunks(builder.end().bytes(), 6);
    std::vector<int32_t> relocs(offsets.begin(), offsets.end());
    const std::string first = "First reloc=" + std::to_string(relocs.front()) + "\n";
    const std::string count = std::to_string(relocs.size());
    const std::string dots(static_cast<size_t>(bubblesort(relocs)), '.');
    EXPECT_TRUE(read.console.ends_with("Populating component " + count + " relocs\n" + first + "Sorting " +
                                       count + " relocs" + dots + "sorted\n"))
        << read.console;
    EXPECT_EQ(read.component.ipRelocs, relocs);
}

TEST_F(HunkRelocsTest, TheSortIsToldPassByPass) {
    for (const bool isshort : {false, true}) {
        expectsorted({0}, isshort);
        expectsorted({0, 4, 8}, isshort);
        expectsorted({8, 4, 0}, isshort);
        expectsorted({4, 8, 12, 16, 0}, isshort);
        expectsorted({16, 0, 4, 8, 12}, isshort);
        expectsorted({4, 4, 4}, isshort);
        expectsorted({8, 4, 8, 4}, isshort);
    }
}

TEST_F(HunkRelocsTest, TheSortIsToldPassByPassWhateverTheOrder) {
    Noise noise(20);
    for (int round = 0; round < 300; ++round) {
        std::vector<uint32_t> offsets(1 + noise() % 40);
        for (uint32_t& offset : offsets)
            offset = noise() % 253;
        expectsorted(offsets, round % 2 == 0);
    }
}

TEST_F(HunkRelocsTest, ManyRelocsTheWrongWayRoundAreSortedSoon) {
    const uint32_t count = 200000;
    std::vector<uint32_t> offsets(count);
    for (uint32_t i = 0; i < count; ++i)
        offsets[i] = 4 * (count - 1 - i);
    const Component component = taken(HunkBuilder()
                                          .header({.sizes = {count}})
                                          .code(Bytes(size_t{count} * 4))
                                          .reloc32({{.offsets = offsets}})
                                          .end()
                                          .bytes());
    EXPECT_EQ(component.iRelocs(), 200000);
    EXPECT_TRUE(std::ranges::is_sorted(component.ipRelocs));
}

} // namespace
} // namespace vantorel::test
