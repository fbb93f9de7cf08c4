// How well the analyses find the relocs of modules that two ROMs hold at different places. Each module's
// relocs are known from its making; how many were found, missed and taken for relocs though they are none
// goes into the properties of the test.

#include "analysis/analysecomponent.h"
#include "analysis/analysistest.h"
#include "analysis/deepanalyse.h"

#include <algorithm>
#include <array>
#include <set>

namespace vantorel::test {
namespace {

using RelocSet = std::set<int32_t>;

constexpr int32_t cImageSize = 256 * 1024;
constexpr std::array<uint32_t, 5> cRomBases = {0xF80000, 0xFC0000, 0xE00000, 0x200000, 0xF00000};

// Relocs found compared with those that there are.
struct Score {
    int pairs = 0;
    int found = 0;
    int missed = 0;
    int wrong = 0;

    void add(const RelocSet& real, const RelocSet& told) {
        ++pairs;
        for (const int32_t reloc : told)
            real.contains(reloc) ? ++found : ++wrong;
        for (const int32_t reloc : real)
            if (!told.contains(reloc)) ++missed;
    }
    void record(const std::string& name) const {
        for (const auto& [what, count] :
             {std::pair{"pairs", pairs}, {"found", found}, {"missed", missed}, {"wrong", wrong}})
            ::testing::Test::RecordProperty(name + what, count);
    }
};

// The numbers behind `head` at the beginnings of lines.
RelocSet numbersbehind(const std::string& text, const std::string& head) {
    RelocSet numbers;
    for (size_t at = text.find("\n" + head); at != std::string::npos; at = text.find("\n" + head, at + 1))
        numbers.insert(std::stoi(text.substr(at + 1 + head.size())));
    return numbers;
}

// A chunk as the deep analysis tells of it.
struct ToldChunk {
    int32_t source = 0;
    int32_t destination = 0;
    int32_t length = 0;
};

std::vector<ToldChunk> toldchunks(const std::string& text) {
    std::vector<ToldChunk> chunks;
    static const std::regex line("Chunk \\d+ source (\\d+) dest (\\d+) size (\\d+)\n");
    for (std::sregex_iterator at(text.begin(), text.end(), line), end; at != end; ++at)
        chunks.push_back({std::stoi((*at)[1]), std::stoi((*at)[2]), std::stoi((*at)[3])});
    return chunks;
}

// One module in two ROMs, and what has been changed in the second.
class ModulePair {
public:
    explicit ModulePair(uint32_t seed) : noise(seed) {
        spec.name = "pair.library";
        spec.idstring = "pair 40.1 (1.1.93)\r\n";
        spec.init = std::array{Init::Manual, Init::Auto32, Init::Auto16}.at(noise() % 3);
        spec.functions = static_cast<int32_t>(noise() % 8);
        spec.calls = static_cast<int32_t>(noise() % 4);
        if (noise() % 2 == 0) spec.initstruct = libraryinit();
        // From 200 bytes to 64 KiB, small ones as often as large ones.
        const uint32_t power = noise() % 9;
        spec.size = std::min(65536, static_cast<int32_t>((200U << power) + noise() % (200U << power)));
        for (int32_t count = spec.size / 200; count > 0 && spec.pointers.size() < 60; --count)
            spec.pointers.push_back({.module = "", .offset = somewhere()});
        if (spec.size < 260) {
            spec.functions = std::min(spec.functions, 2);
            spec.pointers.clear();
        }
        places = {place(cRomBases.at(noise() % cRomBases.size())),
                  place(cRomBases.at(noise() % cRomBases.size()))};
        // The very same address proves nothing.
        if (addressof(places[0]) == addressof(places[1])) places[1].second += 64;
    }

    // Changes a few words of the second copy.
    void damage() {
        for (uint32_t count = 1 + noise() % 8; count > 0; --count)
            changes.insert(somewhere() & ~1);
    }

    void load() {
        for (size_t i = 0; i < 2; ++i) {
            const BuiltRom rom = build(i);
            const BuiltModule& module = rom.modules.front();
            relocs = {module.relocs.begin(), module.relocs.end()};
            slotof(rom.image, rom.base, {{module.start, module.end(), module.romtag(), module.idstring}});
        }
    }

    [[nodiscard]] uint32_t valueat(int32_t offset) const {
        return *longat(slotat(0).pcROM, componentat(0, 0).iStart + offset) - slotat(0).iROMBase -
               static_cast<uint32_t>(componentat(0, 0).iStart);
    }
    [[nodiscard]] bool ischanged(int32_t offset, int32_t size) const {
        return std::ranges::any_of(
            changes, [&](int32_t change) { return change < offset + size && offset < change + 2; });
    }

    RelocSet relocs;
    ModuleSpec spec;
    std::set<int32_t> changes; // offsets of changed words

private:
    int32_t somewhere() { return static_cast<int32_t>(noise() % static_cast<uint32_t>(spec.size)); }
    using Home = std::pair<uint32_t, int32_t>; // base of the ROM, start in its image

    static uint32_t addressof(const Home& home) { return home.first + static_cast<uint32_t>(home.second); }
    Home place(uint32_t base) { return {base, static_cast<int32_t>(24 + 4 * (noise() % 30000))}; }

    [[nodiscard]] BuiltRom build(size_t which) const {
        const auto& [base, start] = places.at(which);
        ModuleSpec here = spec;
        here.start = start;
        RomBuilder rom(cImageSize, base);
        rom.module(here);
        if (which == 1)
            for (const int32_t change : changes)
                rom.overwrite(start + change, Bytes{0xC1, static_cast<uint8_t>(change)});
        return rom.build();
    }

    Noise noise;
    std::array<Home, 2> places;
};

class PairsTest : public RomTest {
protected:
    static RelocSet addedtofirst() {
        silently([] { analysecomponent(0, 0, VerifiedRelocs::Add); });
        return {componentat(0, 0).ipRelocs.begin(), componentat(0, 0).ipRelocs.end()};
    }

    static std::string deepoutput() {
        return at(1, [] { deepanalysecomponent(0, 0, 1, 0, iChunkLeast); });
    }
};

TEST_F(PairsTest, OfIdenticalModulesEveryRelocIsFoundAndNothingElse) {
    Score quick;
    Score deep;
    for (uint32_t trial = 0; trial < 200; ++trial) {
        freshstate();
        ModulePair pair(trial + 1);
        pair.load();
        deep.add(pair.relocs, numbersbehind(deepoutput(), "Verified RELOC="));
        quick.add(pair.relocs, addedtofirst());
        ASSERT_EQ(quick.missed + quick.wrong, 0) << "pair " << trial;
        // All of them point into the module itself, and it is one chunk.
        ASSERT_EQ(deep.missed + deep.wrong, 0) << "pair " << trial;
    }
    quick.record("quick.");
    deep.record("deep.");
    EXPECT_GT(quick.found, 3000);
    EXPECT_EQ(deep.found, quick.found);
}

// A reloc is missed only when one of its bytes was changed.
TEST_F(PairsTest, OfModulesThatDifferALittleOnlyDamagedRelocsAreMissed) {
    Score quick;
    for (uint32_t trial = 0; trial < 200; ++trial) {
        freshstate();
        ModulePair pair(trial + 1001);
        pair.damage();
        pair.load();
        const RelocSet told = addedtofirst();
        quick.add(pair.relocs, told);
        for (const int32_t reloc : pair.relocs)
            ASSERT_EQ(told.contains(reloc), !pair.ischanged(reloc, 4)) << "pair " << trial << ", " << reloc;
    }
    quick.record("quick.");
    EXPECT_EQ(quick.wrong, 0);
    EXPECT_GT(quick.missed, 0) << "the damage met no reloc";
    EXPECT_GT(quick.found, 20 * quick.missed);
}

// Why the deep analysis cannot verify a reloc. A module with changes falls into chunks; it verifies only
// relocs that lie whole in a chunk and point into a chunk (its end included) that lies as far on in the other
// copy.
enum class Miss { None, Changed, OutsideChunks, PointsOutside, OtherChunk };

const ToldChunk* chunkaround(const std::vector<ToldChunk>& chunks, int64_t offset) {
    const auto found = std::ranges::find_if(chunks, [&](const ToldChunk& chunk) {
        return chunk.source <= offset && offset <= chunk.source + chunk.length;
    });
    return found == chunks.end() ? nullptr : &*found;
}

Miss missof(const ModulePair& pair, const std::vector<ToldChunk>& chunks, int32_t reloc) {
    if (pair.ischanged(reloc, 4)) return Miss::Changed;
    const ToldChunk* here = chunkaround(chunks, reloc);
    if (here != nullptr && reloc == here->source + here->length) here = chunkaround(chunks, reloc + 1);
    if (here == nullptr || reloc + 4 > here->source + here->length) return Miss::OutsideChunks;
    const ToldChunk* there = chunkaround(chunks, pair.valueat(reloc));
    if (there == nullptr) return Miss::PointsOutside;
    return there->source == there->destination && here->source == here->destination ? Miss::None
                                                                                    : Miss::OtherChunk;
}

TEST_F(PairsTest, TheDeepAnalysisMissesWhatLiesOrPointsOutsideTheChunks) {
    Score deep;
    std::map<Miss, int> misses;
    for (uint32_t trial = 0; trial < 200; ++trial) {
        freshstate();
        ModulePair pair(trial + 1001);
        pair.damage();
        pair.load();
        const std::string text = deepoutput();
        const std::vector<ToldChunk> chunks = toldchunks(text);
        const RelocSet told = numbersbehind(text, "Verified RELOC=");
        deep.add(pair.relocs, told);
        for (const int32_t reloc : pair.relocs) {
            const Miss miss = missof(pair, chunks, reloc);
            ASSERT_EQ(told.contains(reloc), miss == Miss::None) << "pair " << trial << ", " << reloc;
            ++misses[miss];
        }
    }
    deep.record("deep.");
    EXPECT_EQ(deep.wrong, 0);
    for (const Miss miss : {Miss::Changed, Miss::OutsideChunks, Miss::PointsOutside})
        EXPECT_GT(misses[miss], 0) << static_cast<int>(miss);
    EXPECT_GT(deep.found, 2 * deep.missed);
}

// What follows shows by one example each what the design of the analyses cannot tell apart.

RelocSet quicklytold() {
    return numbersbehind(at(1, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); }), "Verified RELOC=");
}

class LimitsTest : public PairsTest {
protected:
    static RelocSet deeplytold(int32_t least = 4) {
        return numbersbehind(at(1, [&] { deepanalysecomponent(0, 0, 1, 0, least); }), "Verified RELOC=");
    }
    static void pair(const std::vector<uint32_t>& first, const std::vector<uint32_t>& second) {
        wholeslot(longs(first), 0xF80000);
        wholeslot(longs(second), 0xFC0000);
        for (const int32_t rom : {0, 1}) {
            componentat(rom, 0).iROMTag = 0;
            componentat(rom, 0).pcLibString = cCopied;
        }
    }
};

// The bases are 0x00040000 apart. A byte that one copy has 4 higher than the other, such as a version number,
// second in a long, differs in just that way: minus 4 makes it a reloc. The deep analysis demands that the
// value be an address of the component, and is not misled.
TEST_F(LimitsTest, DataThatDiffersAsTheBasesDoLooksLikeAReloc) {
    pair({0x4AFC1111, 0x20242526, 0x33333333, 0x44444444}, {0x4AFC1111, 0x20282526, 0x33333333, 0x44444444});
    EXPECT_EQ(quicklytold(), RelocSet{4});
    EXPECT_EQ(deeplytold(), RelocSet{});
}

// Such a false hit takes four bytes, and with the last of them the beginning of a true reloc: at 5 stand
// 20 24 26 00 and 20 28 26 00. The deep analysis goes by even addresses that point into the component.
TEST_F(LimitsTest, AFalseRelocHidesTheTrueOneBehindIt) {
    pair({0x4AFC1111, 0x22202426, 0x00F80000, 0x44444444}, {0x4AFC1111, 0x22202826, 0x00FC0000, 0x44444444});
    EXPECT_EQ(quicklytold(), RelocSet{5});
    EXPECT_EQ(deeplytold(), RelocSet{8});
}

// Copies that run at the same address do not differ at all, be the bases and the offsets "Good": every long
// seems to be a reloc.
TEST_F(LimitsTest, CopiesAtTheSameAddressProveNothing) {
    slotof(longs({0, 0x4AFC1111, 0x00F80004, 0x33333333}), 0xF80000, {{4, 16, 4, cCopied}});
    slotof(longs({0x4AFC1111, 0x00F80004, 0x33333333}), 0xF80004, {{0, 12, 0, cCopied}});
    const std::string text = at(1, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); });
    EXPECT_TRUE(has(text, "ROM Offset=4 (Good)\nROMBase Offset=fffffffc (Good)\n"));
    EXPECT_EQ(quicklytold(), (RelocSet{0, 4, 8}));
    // The deep analysis notes that the value is identical, and verifies it all the same.
    EXPECT_EQ(deeplytold(), RelocSet{4});
}

// Two bytes more before a reloc, and the byte by byte comparison has lost its way; the deep analysis finds
// both parts again. What points across the insertion is verified too, since each end is looked up by itself.
TEST_F(LimitsTest, InsertedBytesMisleadTheQuickComparisonOnly) {
    pair({0x4AFC1111, 0x22222222, 0x33333333, 0x00F80010, 0x44444444, 0x55555555},
         {0x4AFC1111, 0x22222222, 0x77773333, 0x333300FC, 0x00124444, 0x44445555, 0x55550000});
    EXPECT_EQ(quicklytold(), RelocSet{});
    EXPECT_EQ(deeplytold(), RelocSet{12});
}

// At the seam of two chunks the address belongs to the first one, whose end counts as inside, but its
// counterpart is the beginning of the second, so that a true reloc seems to point elsewhere.
TEST_F(LimitsTest, APointerToTheSeamOfTwoChunksIsNotVerified) {
    pair({0x4AFC1111, 0x00F8000C, 0x22222222, 0x33333333, 0x44444444},
         {0x4AFC1111, 0x00FC0010, 0x22222222, 0x77777777, 0x33333333, 0x44444444});
    const std::string text = at(1, [] { deepanalysecomponent(0, 0, 1, 0, 4); });
    EXPECT_TRUE(
        has(text, "Unexpected RELOC=4 #F8000C points to a different chunk (points to 1 expected 0)\n"))
        << text;
}

// An address in bytes that only one of the copies has cannot be looked up.
TEST_F(LimitsTest, APointerIntoUnmatchedBytesIsNotVerified) {
    pair({0x4AFC1111, 0x00F80010, 0x22222222, 0x77777777, 0x77777777, 0x33333333, 0x44444444},
         {0x4AFC1111, 0x00FC0010, 0x22222222, 0x66666666, 0x66666666, 0x33333333, 0x44444444});
    EXPECT_EQ(quicklytold(), RelocSet{4});
    EXPECT_EQ(deeplytold(8), RelocSet{});
}

// An address of another module is no potential reloc to the deep analysis. The quick one verifies it if that
// module has moved as far as this one.
TEST_F(LimitsTest, APointerIntoAnotherModuleIsNoneToTheDeepAnalysis) {
    pair({0x4AFC1111, 0x00F80100, 0x22222222}, {0x4AFC1111, 0x00FC0100, 0x22222222});
    EXPECT_EQ(quicklytold(), RelocSet{4});
    EXPECT_EQ(deeplytold(), RelocSet{});
    silently([] { freeroms(); });
    pair({0x4AFC1111, 0x00F80100, 0x22222222}, {0x4AFC1111, 0x00FC0110, 0x22222222});
    EXPECT_EQ(quicklytold(), RelocSet{});
}

} // namespace
} // namespace vantorel::test
