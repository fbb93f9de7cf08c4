// The deep analysis beside the plain one, on components made at random so that they agree often.

#include "analysis/deepanalyse.h"

#include "analysis/analysistest.h"
#include "analysis/plainanalysis.h"

#include <algorithm>
#include <array>

namespace vantorel::test {
namespace {

constexpr std::array<uint32_t, 5> cAnyBases = {0, 0x1000, 0xF80000, 0x10001000, 0xFFFFFFE0};
constexpr std::array<int32_t, 9> cLeasts = {1, 2, 3, 4, 6, 8, 16, 64, 1000};

// What a run of trials has met, so that it can be said that the trials meet everything.
struct Met {
    int chunks = 0;
    int verified = 0;
    int other = 0;
    int unexpected = 0;
    int nochunk = 0;
    int notfound = 0;
    int before = 0;
    int between = 0;
    int after = 0;

    void count(const std::string& text) {
        chunks += countof(text, "Found source chunk");
        verified += countof(text, "Verified RELOC");
        other += countof(text, "points to a different offset");
        unexpected += countof(text, "Unexpected RELOC");
        nochunk += countof(text, "points to no matching chunk");
        notfound += countof(text, "not found in a matching chunk");
        before += countof(text, "before matching chunks");
        between += countof(text, "between matching chunks");
        after += countof(text, "after all matching chunks");
    }
};

// Where two texts part, with what stands there in each.
std::string firstdifference(const std::string& expected, const std::string& text) {
    const auto place = std::ranges::mismatch(expected, text).in1 - expected.begin();
    const size_t line = expected.rfind('\n', static_cast<size_t>(place)) + 1;
    return "expected\n" + expected.substr(line, 200) + "\nbut got\n" + text.substr(line, 200);
}

// Components made at random out of few words and many addresses.
class Making {
public:
    explicit Making(uint32_t seed) : noise(seed) {}

    uint32_t upto(uint32_t most) { return noise() % (most + 1); }
    template <typename Choices>
    auto oneof(const Choices& choices) {
        return choices[noise() % choices.size()];
    }

    // A component somewhere in an image, seldom of an even size, often at the image's end.
    Place place(uint32_t imagesize) {
        const auto start = static_cast<int32_t>(upto(std::min(imagesize, 40U)));
        const uint32_t rest = imagesize - static_cast<uint32_t>(start);
        const uint32_t size = upto(3) == 0 ? rest : upto(rest);
        return {start, start + static_cast<int32_t>(size)};
    }

    void scatter(Bytes& image, const Place& place, uint32_t base) {
        const auto size = static_cast<uint32_t>(place.end - place.start);
        const uint32_t low = base + static_cast<uint32_t>(place.start);
        const uint32_t often = upto(4);
        for (size_t at = 0; at + 4 <= image.size(); at += 2) {
            if (upto(9) < often)
                setlong(&image[at], low + upto(size + 2) - upto(1));
            else if (upto(1) == 0)
                setword(&image[at], upto(fewness));
        }
    }

    // What `image` is, relocated, at another place and with some words changed.
    Bytes copyof(const Bytes& image, uint32_t difference, uint32_t low, uint32_t high) {
        Bytes copy = image;
        for (size_t at = 0; at + 4 <= image.size(); at += 2)
            if (const uint32_t value = iUINT32(&image[at]); low <= value && value <= high && upto(7) != 0) {
                setlong(&copy[at], value + difference);
                at += 2;
            }
        for (uint32_t changes = upto(6); changes > 0 && copy.size() >= 2; --changes)
            setword(&copy[upto(static_cast<uint32_t>(copy.size()) - 2)], upto(fewness));
        return copy;
    }

    uint32_t fewness = 2; // the words that are no addresses run from 0 to this

private:
    Noise noise;
};

class DeepJudgeTest : public RomTest {
protected:
    void compare(int32_t dstRom, int32_t dstComponent, int32_t least, const std::string& trial) {
        const std::string text =
            at(1, [&] { ASSERT_EQ(deepanalysecomponent(0, 0, dstRom, dstComponent, least), 0); });
        const std::string expected = plaindeepanalysis(0, 0, dstRom, dstComponent, least);
        ASSERT_TRUE(text == expected) << trial << ": " << firstdifference(expected, text);
        met.count(text);
    }

    // Slot 0 with one component made of few words.
    static Place makefirst(Making& making, uint32_t most, uint32_t least = 0) {
        making.fewness = 1U << making.upto(12);
        const uint32_t size = least + making.upto(most - least);
        const Place place = making.place(size);
        Bytes image(size, 0);
        const uint32_t base = making.oneof(cAnyBases);
        making.scatter(image, place, base);
        slotof(std::move(image), base, {place});
        return place;
    }

    // Slot 1: what the first is, at another place of another image; now and then something else.
    static void makesecond(Making& making, const Place& first) {
        const uint32_t base = making.oneof(cAnyBases);
        const int32_t start = static_cast<int32_t>(making.upto(30));
        const Bytes bytes = bytesat(0, first.start, first.end - first.start);
        const uint32_t low = slotat(0).iROMBase + static_cast<uint32_t>(first.start);
        const uint32_t difference = base + static_cast<uint32_t>(start) - low;
        Bytes image(static_cast<size_t>(start), 0);
        const Bytes copy = making.copyof(bytes, difference, low, low + static_cast<uint32_t>(bytes.size()));
        image.insert(image.end(), copy.begin(), copy.end());
        Place place = {start, static_cast<int32_t>(image.size())};
        if (making.upto(3) == 0) making.scatter(image, place, base);
        if (making.upto(3) == 0) place.end -= static_cast<int32_t>(making.upto(3)) % (place.end - start + 1);
        if (making.upto(1) == 0) image.resize(image.size() + making.upto(9), 1);
        slotof(std::move(image), base, {place});
    }

    void expectallmet() const {
        EXPECT_GT(met.chunks, 1000);
        for (const int count : {met.verified, met.other, met.unexpected, met.nochunk, met.notfound,
                                met.before, met.between, met.after})
            EXPECT_GT(count, 100);
    }

    Met met;
};

TEST_F(DeepJudgeTest, CopiesAtOtherPlaces) {
    for (uint32_t trial = 0; trial < 4000 && !HasFailure(); ++trial) {
        freshstate();
        Making making(trial + 1);
        makesecond(making, makefirst(making, 300));
        compare(1, 0, making.oneof(cLeasts), "trial " + std::to_string(trial));
    }
    expectallmet();
}

TEST_F(DeepJudgeTest, ComponentsOfOneRomThatMayOverlapOrBeTheSame) {
    for (uint32_t trial = 0; trial < 1500 && !HasFailure(); ++trial) {
        freshstate();
        Making making(trial + 1);
        makefirst(making, 200);
        Component second = recordat(making.place(static_cast<uint32_t>(slotat(0).iSize())));
        slotat(0).psComponents.push_back(second);
        compare(0, trial % 4 == 0 ? 0 : 1, making.oneof(cLeasts), "trial " + std::to_string(trial));
    }
    EXPECT_GT(met.verified, 100);
}

TEST_F(DeepJudgeTest, ComponentsThatHaveNothingToDoWithEachOther) {
    for (uint32_t trial = 0; trial < 1000 && !HasFailure(); ++trial) {
        freshstate();
        Making making(trial + 1);
        makefirst(making, 300);
        makefirst(making, 300);
        compare(1, 0, making.oneof(cLeasts), "trial " + std::to_string(trial));
    }
    EXPECT_GT(met.chunks, 500);
}

// Larger ones, in which there may be more chunks than are taken.
TEST_F(DeepJudgeTest, ComponentsOfSomeKilobytes) {
    int full = 0;
    for (uint32_t trial = 0; trial < 24 && !HasFailure(); ++trial) {
        freshstate();
        Making making(trial + 1);
        const Place first = makefirst(making, 3000, 2000);
        if (trial % 2 == 0)
            makesecond(making, first);
        else
            makefirst(making, 3000, 2000);
        const int before = met.chunks;
        compare(1, 0, static_cast<int32_t>(1 + making.upto(8)), "trial " + std::to_string(trial));
        if (met.chunks - before == 199) ++full;
    }
    EXPECT_GT(met.chunks, 400);
    EXPECT_GT(full, 0);
}

TEST_F(DeepJudgeTest, TinyComponents) {
    for (uint32_t trial = 0; trial < 4000 && !HasFailure(); ++trial) {
        freshstate();
        Making making(trial + 1);
        const Place first = makefirst(making, 7);
        if (trial % 2 == 0)
            makesecond(making, first);
        else
            makefirst(making, 7);
        compare(1, 0, static_cast<int32_t>(1 + making.upto(4)), "trial " + std::to_string(trial));
    }
    EXPECT_GT(met.chunks, 50);
}

} // namespace
} // namespace vantorel::test
