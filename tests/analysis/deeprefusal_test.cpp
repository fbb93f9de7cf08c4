// What the deep analysis refuses, and what it says at which verbosity.

#include "analysis/deepanalyse.h"

#include "analysis/analysistest.h"

#include <cstdint>

namespace vantorel::test {
namespace {

constexpr const char* cNoRom = "ERROR, please load or create a ROM\n";
constexpr const char* cRomRange = "ERROR, source or destination ROM out of range\n";
constexpr const char* cComponentRange = "ERROR, source or destination component out of range\n";
constexpr const char* cNotVerified = "ERROR, source and destination components must have verfied start/end "
                                     "editcomponent to be sure\n";

// What is compared with what.
struct Order {
    int32_t srcRom = 0;
    int32_t srcComponent = 0;
    int32_t dstRom = 1;
    int32_t dstComponent = 0;
};

class DeepRefusalTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        makeslots();
    }

    static void makeslots() {
        for (const uint32_t base : {0x1000U, 0x2000U})
            wholeslot(longs({0x11111111, base + 4, 0x22222222, 0x33333333}), base);
    }

    static std::string console(const Order& order, int result, int32_t least = 4) {
        return at(1, [&] {
            EXPECT_EQ(deepanalysecomponent(order.srcRom, order.srcComponent, order.dstRom, order.dstComponent,
                                           least),
                      result);
        });
    }

    static void expectrefused(const Order& order, const std::string& why) {
        EXPECT_EQ(console(order, 1),
                  formatted("Deep analysis of component %d in ROM %d with component %d in ROM %d\n",
                            order.srcComponent, order.srcRom, order.dstComponent, order.dstRom) +
                      why);
    }

    // Checks that what lies between the first line and the end is one error line.
    static void expectoneerror(const Order& order) {
        const std::string text = console(order, 1);
        EXPECT_TRUE(isoneerror(text.substr(text.find('\n') + 1))) << text;
    }
};

TEST_F(DeepRefusalTest, WithoutAnyRomNothingElseIsLookedAt) {
    silently([] { freeroms(); });
    for (const int32_t rom : {-1, 0, 20, INT32_MAX})
        expectrefused({rom, -7, rom, 9}, cNoRom);
}

TEST_F(DeepRefusalTest, SlotsOutOfRange) {
    for (const int32_t rom : {-1, 2, 19, 20, INT32_MAX, INT32_MIN}) {
        expectrefused({.srcRom = rom}, cRomRange);
        expectrefused({.dstRom = rom}, cRomRange);
        expectrefused({.srcRom = rom, .srcComponent = 9, .dstComponent = 9}, cRomRange);
    }
}

TEST_F(DeepRefusalTest, ComponentsOutOfRange) {
    for (const int32_t component : {-1, 1, INT32_MAX, INT32_MIN}) {
        expectrefused({.srcComponent = component}, cComponentRange);
        expectrefused({.dstComponent = component}, cComponentRange);
    }
}

TEST_F(DeepRefusalTest, TheRangeOfTheComponentsIsAskedForBeforeTheirBounds) {
    componentat(0, 0).iFixedStart = -1;
    expectrefused({.dstComponent = 1}, cComponentRange);
}

TEST_F(DeepRefusalTest, EachOfTheFourBoundsHasToBeVerified) {
    for (const int32_t rom : {0, 1})
        for (int32_t Component::*bound : {&Component::iFixedStart, &Component::iFixedEnd})
            for (const int32_t value : {-1, INT32_MIN}) {
                Component& record = componentat(rom, 0);
                const int32_t former = record.*bound;
                record.*bound = value;
                expectrefused({}, cNotVerified);
                record.*bound = former;
            }
    EXPECT_TRUE(has(console({}, 0), "Verified RELOC=4 "));
}

TEST_F(DeepRefusalTest, BoundsAreAskedForBeforeTheImage) {
    componentat(0, 0).iFixedEnd = 17;
    componentat(1, 0).iFixedStart = -1;
    expectrefused({}, cNotVerified);
}

TEST_F(DeepRefusalTest, ComponentsThatDoNotLieInTheirImages) {
    for (const int32_t rom : {0, 1}) {
        const Component former = componentat(rom, 0);
        componentat(rom, 0).iFixedEnd = 17;
        expectoneerror({});
        componentat(rom, 0).iFixedEnd = INT32_MAX;
        expectoneerror({});
        componentat(rom, 0).iFixedStart = INT32_MAX;
        expectoneerror({});
        componentat(rom, 0) = former;
    }
}

// The bounds that count are the verified ones, wherever the component itself is said to lie.
TEST_F(DeepRefusalTest, StartAndSizeOfTheRecordDoNotMatter) {
    componentat(0, 0).iStart = 99;
    componentat(0, 0).iSize = -7;
    EXPECT_TRUE(has(console({}, 0), "Verified RELOC=4 "));
}

struct EditCase {
    std::string line;
    bool isrefused;
    std::string says; ///< part of the output; empty when it is one error line
};

TEST_F(DeepRefusalTest, BoundsAsEditComponentSetsThem) {
    const std::vector<EditCase> cases = {
        {"editcomponent 0 start=4", false, "in source between 00001004 and 00001010 (12 bytes)\n"},
        {"editcomponent 0 end=12", false, "in source between 00001000 and 0000100c (12 bytes)\n"},
        {"editcomponent 0 end=15", false, "in source between 00001000 and 0000100f (15 bytes)\n"},
        {"editcomponent 0 start=0x1004", false, "in source between 00001004 and 00001010 (12 bytes)\n"},
        {"editcomponent 0 start=16", false, "in source between 00001010 and 00001010 (0 bytes)\n"},
        {"editcomponent 0 start=17", true, ""},
        {"editcomponent 0 end=17", true, ""},
        {"editcomponent 0 end=2147483647", true, ""},
    };
    for (const EditCase& edit : cases) {
        silently([] { freeroms(); });
        makeslots();
        iCurrentROM = 0;
        type(edit.line);
        if (edit.isrefused)
            expectoneerror({});
        else
            EXPECT_TRUE(has(console({}, 0), edit.says)) << edit.line;
    }
}

TEST_F(DeepRefusalTest, ReversedBoundsAreRefused) {
    iCurrentROM = 0;
    type("editcomponent 0 start=12");
    type("editcomponent 0 end=4");
    expectoneerror({});
}

TEST_F(DeepRefusalTest, ANegativeBoundIsNotVerified) {
    // Below every base, or it would be an address.
    slotat(0).iROMBase = 0xFFFFFFFF;
    iCurrentROM = 0;
    type("editcomponent 0 start=-4");
    EXPECT_EQ(componentat(0, 0).iFixedStart, -4);
    expectrefused({}, cNotVerified);
}

TEST_F(DeepRefusalTest, EveryLineIsShownAboveLevelZero) {
    const std::vector<Shown> all = {
        {0, "Deep analysis of component 0 in ROM 0 with component 0 in ROM 1\n"},
        {0, "Finding potential RELOCs in source between 00001000 and 00001024 (36 bytes)\n"},
        {0, "6 potential relocs\n"},
        {0, "RRRRRRRR____RRRR"},
        {0, "Finding potential RELOCs in destination between"},
        {0, "Scanning source 00000000 for matches in dest 00000000\n"},
        {0, "Found source chunk at position 8 of 8 bytes at dest position 8\n"},
        {0, "Potential RELOC=0 #00100C before matching chunks (points to chunk 0)\n"},
        {0, "Potential RELOC=4 #  1000 before matching chunks (does not point to chunk)\n"},
        {0, "Chunk 0 source 8 dest 8 size 8\n"},
        {0, "Verified RELOC=12 #points to the same offset in the matching chunk\n"},
        {0, "Potential RELOC=16 #  1000 between matching chunks (points to chunk 0)\n"},
        {0, "Potential RELOC=32 #  1000 after all matching chunks (points to chunk 0)\n"},
    };
    const Action prepare = [] {
        wholeslot(longs({0x100C, 0x1000, 0x33333333, 0x1008, 0x1000, 0x99999999, 0x1000, 0x99999999, 0x1000}),
                  0x1000);
        wholeslot(longs({0x88888888, 0x88888888, 0x33333333, 0x2008, 0x88888888, 0x88888888, 0x88888888,
                         0x88888888, 0x88888888}),
                  0x2000);
    };
    expectthresholds(
        prepare, [] { deepanalysecomponent(0, 0, 1, 0, 8); }, all);
    silently([] { freeroms(); });
    prepare();
    EXPECT_EQ(at(0, [] { deepanalysecomponent(0, 0, 1, 0, 8); }), "");
    EXPECT_EQ(at(1, [] { deepanalysecomponent(0, 0, 1, 0, 8); }),
              at(10, [] { deepanalysecomponent(0, 0, 1, 0, 8); }));
}

TEST_F(DeepRefusalTest, RefusalsAreShownAboveLevelZero) {
    for (const Order& order : {Order{.srcRom = 2}, Order{.srcComponent = 1}})
        EXPECT_EQ(
            at(0, [&] { EXPECT_EQ(deepanalysecomponent(order.srcRom, order.srcComponent, 1, 0, 4), 1); }),
            "");
    componentat(0, 0).iFixedEnd = 17;
    EXPECT_EQ(at(0, [] { EXPECT_EQ(deepanalysecomponent(0, 0, 1, 0, 4), 1); }), "");
    componentat(0, 0).iFixedEnd = -1;
    EXPECT_EQ(at(0, [] { EXPECT_EQ(deepanalysecomponent(0, 0, 1, 0, 4), 1); }), "");
    silently([] { freeroms(); });
    EXPECT_EQ(at(0, [] { EXPECT_EQ(deepanalysecomponent(0, 0, 1, 0, 4), 1); }), "");
}

TEST_F(DeepRefusalTest, ComponentsLargerThanAnyRomAreNotCompared) {
    constexpr int32_t most = 16 * 1024 * 1024;
    KickstartRom& slot = slotat(1);
    slot.pcROM.resize(most + 1);
    slot.psComponents[0].iFixedStart = 0;
    slot.psComponents[0].iFixedEnd = most + 1;
    expectrefused({}, "ERROR: Component 0 is too large to be compared (16777217 bytes)\n");
    slot.psComponents[0].iFixedEnd = most;
    EXPECT_EQ(console({}, 0).find("ERROR"), std::string::npos);
}

} // namespace
} // namespace vantorel::test
