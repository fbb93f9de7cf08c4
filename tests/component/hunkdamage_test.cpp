// Hunk files that are cut short, lie about their counts, or are damaged at random.

#include "component/hunkread.h"
#include "support/noise.h"

#include <set>

namespace vantorel::test {
namespace {

class HunkDamageTest : public RomTest {};

// The counts that one hunk file of every block may lie about; none tells the truth.
struct Lies {
    HunkBuilder::Count names{};
    HunkBuilder::Count table{};
    HunkBuilder::Count last{};
    uint32_t first = 0;
    HunkBuilder::Count size{};
    HunkBuilder::Count code{};
    HunkBuilder::Count data{};
    uint32_t bss = 5;
    HunkBuilder::Count relocs{};
    uint32_t target = 0;
    HunkBuilder::Count inlinerelocs{};
    HunkBuilder::Count symbol{};
    HunkBuilder::Count debug{};
    uint32_t unexpected = 3;
    HunkBuilder::Count shortrelocs{};
};

struct RichFile {
    Bytes bytes;
    std::set<size_t> boundaries; ///< where the file may end
};

RichFile richfile(const Lies& lies = {}) {
    HunkBuilder file;
    file.header({.sizes = {lies.size.value_or(2), 5, 2, 3},
                 .names = lies.names.value_or(0),
                 .table = lies.table,
                 .first = lies.first,
                 .last = lies.last});
    file.code(longs({0x4E714E75, 4}), lies.code);
    file.reloc32({{.target = lies.target, .offsets = {4}, .count = lies.relocs},
                  {.target = 0, .offsets = {0}, .count = lies.inlinerelocs}});
    file.symbols({{"_main", 4}, {"abcd", 0xABCD1234}}, lies.symbol).debug(longs({1, 2}), lies.debug).end();
    file.bss(lies.bss).end();
    file.data(longs({7, 8}), lies.data).end();
    file.block({0xFFFFFFFF, lies.unexpected, 1, 2, 1010});
    const size_t unexpected = file.blockends().back() - 4; // its last long is the next id
    file.data(longs({9, 10, 11}));
    file.drel32({{.offsets = {4}, .count = lies.shortrelocs}, {.offsets = {0, 8}}});
    const size_t shortrelocs = file.blockends().back();
    file.end();
    std::set<size_t> boundaries(file.blockends().begin(), file.blockends().end());
    boundaries.insert({0, unexpected});
    boundaries.erase(shortrelocs); // what follows such a block is a part of it
    return {file.bytes(), boundaries};
}

// What a component that was taken must be, whatever the file.
void expectsound(const HunkRead& read, size_t length) {
    ASSERT_TRUE(read.component.pcExtract);
    const Bytes& extract = *read.component.pcExtract;
    EXPECT_EQ(read.component.iSize, std::ssize(extract));
    EXPECT_LE(extract.size(), length);
    EXPECT_LE(extract.capacity(), 2 * length + 64) << "memory in proportion to the file";
    EXPECT_LE(read.component.ipRelocs.size(), length);
    EXPECT_TRUE(std::ranges::is_sorted(read.component.ipRelocs));
    for (const int32_t reloc : read.component.ipRelocs)
        EXPECT_TRUE(isinside(extract, reloc, 4)) << reloc;
}

void expecttaken(const Lies& lies) {
    const Bytes file = richfile(lies).bytes;
    const HunkRead read = readhunks(file);
    EXPECT_EQ(read.result, 0) << read.console;
    expectsound(read, file.size());
}

TEST_F(HunkDamageTest, TheWholeFileIsTaken) {
    const RichFile rich = richfile();
    const HunkRead read = readhunks(rich.bytes);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.component.pcExtract, longs({0x4E714E75, 4, 7, 8, 9, 10, 11}));
    EXPECT_EQ(read.component.ipRelocs, (std::vector<int32_t>{0, 4, 8}));
    EXPECT_EQ(read.console, "\n\n\nPopulating component 3 relocs\n");
}

TEST_F(HunkDamageTest, CutAnywhereButBetweenBlocksItIsRefused) {
    const RichFile rich = richfile();
    for (size_t length = 0; length <= rich.bytes.size(); ++length) {
        const HunkRead read = readpart(rich.bytes, 0, static_cast<int32_t>(length));
        if (rich.boundaries.contains(length)) {
            EXPECT_EQ(read.result, 0) << length;
            expectsound(read, length);
            continue;
        }
        expectrefused(read);
        const size_t fault = *std::prev(rich.boundaries.lower_bound(length));
        EXPECT_TRUE(read.console.ends_with("ERROR: Truncated hunk file at " + std::to_string(fault) + " of " +
                                           std::to_string(length) + "\n"))
            << read.console;
        EXPECT_FALSE(has(read.console, "Populating"));
        if (::testing::Test::HasFailure()) FAIL() << "cut at " << length;
    }
}

TEST_F(HunkDamageTest, TheBufferMayEndWithTheFile) {
    // The bytes that are cut off are not there at all, so that the sanitizers would see them read.
    const RichFile rich = richfile();
    for (size_t length = 0; length <= rich.bytes.size(); ++length) {
        const Bytes part(rich.bytes.begin(), rich.bytes.begin() + static_cast<ptrdiff_t>(length));
        EXPECT_EQ(readhunks(part, 0).result, rich.boundaries.contains(length) ? 0 : 1) << length;
    }
}

TEST_F(HunkDamageTest, RawDataOfOneToThreeBytesAreRefused) {
    for (size_t length = 1; length <= 3; ++length) {
        const HunkRead read = readhunks(Bytes(length, 0x33));
        expectrefused(read);
        EXPECT_EQ(read.console, "ERROR: Truncated hunk file at 0 of " + std::to_string(length) + "\n");
    }
}

TEST_F(HunkDamageTest, AShortRelocBlockNeedsTheLongBehindIt) {
    for (uint32_t count = 1; count <= 4; ++count) {
        HunkBuilder file;
        file.header({.sizes = {2}}).code(longs({1, 2}));
        file.drel32({{.offsets = std::vector<uint32_t>(count, 4)}});
        expectrefused(readhunks(file.bytes()));
    }
}

// Counts that no file can hold. The last two are a long with all of its bits, and with all but the sign.
const std::vector<uint32_t> absurd = {0x40000001, 0xFFFFFFFF, 0x7FFFFFFF};

TEST_F(HunkDamageTest, AbsurdCountsOfWhatFollowsAreRefused) {
    for (const uint32_t count : absurd) {
        for (const Lies& lies : std::vector<Lies>{{.table = count, .last = count - 1},
                                                  {.last = count},
                                                  {.first = count},
                                                  {.relocs = count},
                                                  {.inlinerelocs = count},
                                                  {.symbol = count},
                                                  {.debug = count},
                                                  {.unexpected = count}})
            expectrefused(readhunks(richfile(lies).bytes));
        if (::testing::Test::HasFailure()) FAIL() << count;
    }
    for (const uint32_t count : {0xFFFFFFFFu, 0x7FFFFFFFu, 0xBFFFFFFFu, 0x3FFFFFFFu, 0x40000001u, 1000u})
        for (const Lies& lies : std::vector<Lies>{{.code = count}, {.data = count}})
            expectrefused(readhunks(richfile(lies).bytes));
}

TEST_F(HunkDamageTest, AbsurdShortCountsAreRefused) {
    for (const uint32_t count : {0xFFFFu, 0x7FFFu, 0x4001u})
        expectrefused(readhunks(richfile({.shortrelocs = count}).bytes));
}

TEST_F(HunkDamageTest, AbsurdCountsThatNothingDependsOnAreTaken) {
    for (const uint32_t count : absurd) {
        expecttaken({.names = count});
        expecttaken({.table = count});
        expecttaken({.bss = count});
        expecttaken({.target = count});
    }
}

TEST_F(HunkDamageTest, APromiseOfGigabytesTakesNoMemory) {
    for (const uint32_t size : {0x40000001u, 0x3FFFFFFFu, 0x7FFFFFFFu, 0xFFFFFFFFu, 0x20000000u})
        expecttaken({.size = size});
}

TEST_F(HunkDamageTest, OnlyTheHeadersSizesHaveFlags) {
    for (const uint32_t flags : {0x40000000u, 0x80000000u, 0xC0000000u})
        for (const Lies& lies : std::vector<Lies>{{.code = 2 | flags}, {.data = 2 | flags}})
            expectrefused(readhunks(richfile(lies).bytes));
}

TEST_F(HunkDamageTest, FirstAndLastHunkMustFitTheTable) {
    // Two sizes follow in each case, so that only the numbers are at fault.
    const auto file = [](uint32_t table, uint32_t first, uint32_t last) {
        return HunkBuilder().header({.sizes = {1, 1}, .table = table, .first = first, .last = last}).bytes();
    };
    EXPECT_EQ(readhunks(file(2, 0, 1)).result, 0);
    EXPECT_EQ(readhunks(file(3, 1, 2)).result, 0);
    expectrefused(readhunks(file(1, 0, 1)));
    expectrefused(readhunks(file(2, 1, 2)));
    expectrefused(readhunks(file(2, 1, 0)));
    expectrefused(readhunks(file(1, 5, 5)));
}

TEST_F(HunkDamageTest, ATableOfNoEntriesStillNeedsItsSizes) {
    expectrefused(readhunks(longs({1011, 0, 0, 0, 0})));
    expectrefused(readhunks(longs({1011, 0, 0, 0, 0x7FFFFFFF, 1})));
    EXPECT_EQ(readhunks(longs({1011, 0, 0, 0, 0, 1})).result, 0);
}

// Either sound or refused, and never anything else. Relocs outside may have been told of before.
void expectanswer(View file) {
    const HunkRead read = readhunks(file, 10);
    if (read.result == 0) return expectsound(read, file.size());
    EXPECT_EQ(read.result, 1);
    EXPECT_EQ(countof(read.console, "ERROR: Truncated hunk file at "), 1) << read.console;
    EXPECT_EQ(countof(readhunks(file).console, "ERROR"),
              1 + countof(readhunks(file).console, "ERROR: Reloc "));
    EXPECT_EQ(fieldsof(read.component), fieldsof(formercomponent()));
}

TEST_F(HunkDamageTest, DamagedLongsOfEveryKindAreSurvived) {
    const Bytes rich = richfile().bytes;
    for (size_t place = 0; place < rich.size(); place += 2)
        for (const uint32_t value :
             {0u, 1u, 0xFFFFFFFFu, 0x7FFFFFFFu, 0x80000000u, 1001u, 1011u, 1015u, 1004u}) {
            Bytes file = rich;
            static_cast<void>(putlong(file, static_cast<int64_t>(place), value));
            expectanswer(file);
        }
}

TEST_F(HunkDamageTest, NoiseIsSurvived) {
    const std::vector<uint32_t> ids = {1001, 1002, 1003, 1004, 1008, 1009, 1010, 1011, 1015, 0xFFFFFFFF};
    Noise noise(41);
    for (int round = 0; round < 5000; ++round) {
        std::vector<uint32_t> values = {1011, 0, 2, 0, 1, 2, 2};
        for (uint32_t left = noise() % 40; left > 0; --left)
            values.push_back(noise() % 2 == 0 ? ids[noise() % ids.size()] : noise() % 6);
        Bytes file = longs(values);
        file.resize(file.size() - noise() % 4);
        expectanswer(file);
    }
}

} // namespace
} // namespace vantorel::test
