// Components with copies made at random, beside the rules followed one by one; and relocs added all together
// beside relocs added one after the other.

#include "analysis/analysecomponent.h"
#include "analysis/analysistest.h"
#include "analysis/plaincomponent.h"
#include "component/relocedit.h"

#include <array>

namespace vantorel::test {
namespace {

constexpr std::array<uint32_t, 5> cRunAt = {0xF80000, 0xFC0000, 0x10000, 0x01010101, 0xFFFFFFF0};

class ComponentJudgeTest : public RomTest {
protected:
    // A slot with up to three components, one of them by chance called like the one in slot 0.
    static void makerom(Noise& noise) {
        const uint32_t base = cRunAt.at(noise() % cRunAt.size());
        Bytes image(noise() % 120 + 8, 0);
        const auto size = static_cast<int32_t>(image.size());
        for (size_t at = 0; at + 4 <= image.size(); at += 1 + noise() % 4)
            if (noise() % 2 == 0)
                setlong(&image[at], base + noise() % 130);
            else if (noise() % 8 == 0)
                setlong(&image[at], (base + noise() % 130) / 4);
        std::vector<Place> places;
        for (uint32_t count = noise() % 3 + 1; count > 0; --count) {
            const int32_t start = static_cast<int32_t>(noise()) % size;
            places.push_back(someplace(noise, std::abs(start), size));
        }
        slotof(std::move(image), base, places);
    }

    static Place someplace(Noise& noise, int32_t start, int32_t size) {
        const int32_t end = start + static_cast<int32_t>(noise() % static_cast<uint32_t>(size - start + 1));
        const auto tag = static_cast<int32_t>(noise() % static_cast<uint32_t>(size));
        const std::array<Text, 4> names = {"a", "a", "b", {}};
        return {start, end, tag, names.at(noise() % 4)};
    }

    // A slot with what slot 0 holds, relocated, further on, and with some bytes changed.
    static void makecopy(Noise& noise) {
        const KickstartRom& first = slotat(0);
        const uint32_t base = cRunAt.at(noise() % cRunAt.size());
        const uint32_t shift = noise() % 20;
        Bytes image(shift, 0);
        image.insert(image.end(), first.pcROM.begin(), first.pcROM.end());
        for (size_t at = shift; at + 4 <= image.size(); ++at) {
            const uint32_t offset = iUINT32(&image[at]) - first.iROMBase;
            if (offset > 130) continue;
            setlong(&image[at], base + shift + offset);
            at += 3;
        }
        for (uint32_t changes = noise() % 4; changes > 0; --changes)
            ++image[noise() % image.size()];
        const int32_t rom = slotof(std::move(image), base, {});
        slotat(rom).psComponents = slotat(0).psComponents;
        for (Component& record : slotat(rom).psComponents)
            for (int32_t* bound : {&record.iStart, &record.iROMTag, &record.iFixedStart, &record.iFixedEnd})
                *bound += static_cast<int32_t>(shift);
    }

    static void makeroms(uint32_t trial) {
        freshstate();
        Noise noise(trial + 1);
        makerom(noise);
        for (uint32_t roms = noise() % 3 + 1; roms > 0; --roms)
            noise() % 3 == 0 ? makerom(noise) : makecopy(noise);
        for (int32_t rom = 0; rom < iMaxRom; ++rom)
            for (Component& record : slotat(rom).psComponents) {
                if (noise() % 3 == 0) record.iFixedStart = -1;
                if (noise() % 3 == 0) record.iFixedEnd = -1;
                // The list is in order, as every list that was loaded.
                for (int32_t reloc = 0; reloc + 4 <= record.iSize; reloc += 4)
                    if (noise() % 4 == 0) record.ipRelocs.push_back(reloc);
            }
    }

    int verified = 0;
    int potential = 0;
    int bcpl = 0;
};

TEST_F(ComponentJudgeTest, TellsWhatTheRulesSay) {
    for (uint32_t trial = 0; trial < 2000 && !HasFailure(); ++trial) {
        makeroms(trial);
        const PlainComponent plain(0, 0);
        const std::string expected = plain.text + plain.potential(componentat(0, 0).iRelocs());
        const std::string text = expectunchanged(0, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); });
        ASSERT_EQ(text, expected) << trial;
        EXPECT_EQ(at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); }), expected + plain.bcpl())
            << trial;
        verified += static_cast<int>(plain.verified.size());
        potential += countof(text, "Potential RELOC");
        bcpl += countof(plain.bcpl(), "RELOC=");
    }
    EXPECT_GT(verified, 500);
    EXPECT_GT(potential, 500);
    EXPECT_GT(bcpl, 300);
}

// What adding the verified relocs one by one leaves.
struct Added {
    std::vector<int32_t> relocs;
    std::optional<Bytes> extract;
};

Added addedonebyone(const std::vector<int32_t>& verified) {
    silently([&] {
        for (const int32_t reloc : verified)
            addreloc(0, 0, reloc);
    });
    return {componentat(0, 0).ipRelocs, componentat(0, 0).pcExtract};
}

TEST_F(ComponentJudgeTest, AddsWhatAddrelocAddsOneByOneAtEveryLevel) {
    int longest = 0;
    for (uint32_t trial = 0; trial < 500 && !HasFailure(); ++trial) {
        makeroms(trial);
        const Added expected = addedonebyone(PlainComponent(0, 0).verified);
        longest = std::max(longest, static_cast<int>(expected.relocs.size()));
        for (const int32_t level : {0, 1, 2, 6}) {
            makeroms(trial);
            static_cast<void>(at(level, [] { analysecomponent(0, 0, VerifiedRelocs::Add); }));
            ASSERT_EQ(componentat(0, 0).ipRelocs, expected.relocs) << trial << " at level " << level;
            ASSERT_TRUE(componentat(0, 0).pcExtract == expected.extract) << trial << " at level " << level;
        }
    }
    EXPECT_GT(longest, 10);
}

// At level 2 the whole output is that of the comparison with that of each `addreloc` behind its line.
TEST_F(ComponentJudgeTest, AddsAndSaysWhatAddrelocSaysOneByOneAtLevelTwo) {
    for (uint32_t trial = 0; trial < 500 && !HasFailure(); ++trial) {
        makeroms(trial);
        const PlainComponent plain(0, 0);
        std::string expected = plain.text;
        size_t from = 0;
        for (const int32_t reloc : plain.verified) {
            const std::string line = formatted("\nVerified RELOC=%d\n", reloc);
            from = expected.find(line, from) + line.size();
            const std::string said = at(2, [&] { addreloc(0, 0, reloc); });
            expected.insert(from, said);
            from += said.size() - 1;
        }
        expected += plain.potential(componentat(0, 0).iRelocs()) + plain.bcpl();
        makeroms(trial);
        ASSERT_EQ(at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Add); }), expected) << trial;
    }
}

} // namespace
} // namespace vantorel::test
