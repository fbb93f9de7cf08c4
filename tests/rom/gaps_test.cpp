// The bounds of neighbours: confirmed, moved over a gap, or left.

#include "rom/gaps.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

class GapsTest : public RomTest {
protected:
    // Bounds inferred, as an analysis finds them.
    static Component inferred(int32_t start, int32_t size) {
        Component component;
        component.pcName = "x";
        component.pcType = cTypeLibrary;
        component.iStart = start;
        component.iSize = size;
        component.iFixedStart = component.iFixedEnd = -1;
        return component;
    }

    // A library of which nothing is proved.
    static Component unproved(int32_t start, int32_t size) {
        Component component = inferred(start, size);
        component.iROMTag = start;
        component.pcLibString = "lib";
        return component;
    }

    // A library whose relocs are known.
    static Component proved(int32_t start, int32_t size) {
        Component component = unproved(start, size);
        component.ipRelocs = {0};
        return component;
    }

    static std::string close(KickstartRom& slot, int32_t level = 2) {
        return at(level, [&] { closegaps(slot); });
    }

    KickstartRom slot;
};

TEST_F(GapsTest, NeighboursThatMeetConfirmEachOther) {
    slot.psComponents = {unproved(100, 50), unproved(150, 50)};
    EXPECT_EQ(close(slot), "");
    EXPECT_EQ(slot.psComponents[0].iFixedStart, -1);
    EXPECT_EQ(slot.psComponents[0].iFixedEnd, 150);
    EXPECT_EQ(slot.psComponents[1].iFixedStart, 150);
    EXPECT_EQ(slot.psComponents[1].iFixedEnd, -1);
}

TEST_F(GapsTest, NeighboursThatOverlapConfirmTheirBoundsAsTheyAre) {
    slot.psComponents = {unproved(100, 60), unproved(150, 50)};
    EXPECT_EQ(close(slot), "");
    EXPECT_EQ(slot.psComponents[0].iFixedEnd, 160);
    EXPECT_EQ(slot.psComponents[1].iFixedStart, 150);
}

TEST_F(GapsTest, AnUnprovedLibraryGrowsBackwardsToAProvedOne) {
    slot.psComponents = {proved(100, 50), unproved(170, 30)};
    EXPECT_EQ(close(slot), "Seeing if we can allocate the space between component 0 and 1\n");
    const Component& next = slot.psComponents[1];
    EXPECT_EQ(next.iStart, 150);
    EXPECT_EQ(next.iSize, 50);
    EXPECT_EQ(next.iFixedStart, 150);
    EXPECT_EQ(next.iFixedEnd, -1);
    EXPECT_EQ(next.iROMTag, 170) << "the tag stays where it is";
    EXPECT_EQ(slot.psComponents[0].iSize, 50);
    EXPECT_EQ(slot.psComponents[0].iFixedEnd, -1);
}

TEST_F(GapsTest, AnUnprovedLibraryGrowsForwardsToAProvedOne) {
    slot.psComponents = {unproved(100, 50), proved(170, 30)};
    close(slot);
    const Component& component = slot.psComponents[0];
    EXPECT_EQ(component.iStart, 100);
    EXPECT_EQ(component.iSize, 70);
    EXPECT_EQ(component.iFixedStart, -1);
    EXPECT_EQ(component.iFixedEnd, 170);
    EXPECT_EQ(slot.psComponents[1].iStart, 170);
    EXPECT_EQ(slot.psComponents[1].iSize, 30);
    EXPECT_EQ(slot.psComponents[1].iFixedStart, -1);
}

TEST_F(GapsTest, GapsOfOtherPairsStay) {
    const Component plain = inferred(0, 0);
    const auto placed = [](Component component, int32_t start) {
        component.iStart = start;
        component.iSize = 50;
        return component;
    };
    const std::vector<std::pair<Component, Component>> pairs = {
        {proved(0, 50), proved(0, 50)},     // both proved
        {unproved(0, 50), unproved(0, 50)}, // neither
        {proved(0, 50), plain},             // no library behind
        {plain, proved(0, 50)},             // no library before
        {plain, plain},
    };
    for (const auto& [first, second] : pairs) {
        slot.psComponents = {placed(first, 100), placed(second, 170)};
        EXPECT_EQ(close(slot), "Seeing if we can allocate the space between component 0 and 1\n");
        for (const Component& component : slot.psComponents) {
            EXPECT_EQ(component.iSize, 50);
            EXPECT_EQ(component.iFixedStart, -1);
            EXPECT_EQ(component.iFixedEnd, -1);
        }
        EXPECT_EQ(slot.psComponents[1].iStart, 170);
    }
}

TEST_F(GapsTest, AGapOfOneByteIsAGap) {
    slot.psComponents = {proved(100, 50), unproved(151, 30)};
    close(slot);
    EXPECT_EQ(slot.psComponents[1].iStart, 150);
    EXPECT_EQ(slot.psComponents[1].iSize, 31);
}

TEST_F(GapsTest, OneLibraryGrowsOverTheGapsOnBothSides) {
    slot.psComponents = {proved(100, 50), unproved(160, 20), proved(200, 10)};
    close(slot);
    const Component& middle = slot.psComponents[1];
    EXPECT_EQ(middle.iStart, 150);
    EXPECT_EQ(middle.iSize, 50);
    EXPECT_EQ(middle.iFixedStart, 150);
    EXPECT_EQ(middle.iFixedEnd, 200);
}

TEST_F(GapsTest, NoneAndOneComponentHaveNoGap) {
    EXPECT_EQ(close(slot), "");
    slot.psComponents = {unproved(100, 50)};
    EXPECT_EQ(close(slot), "");
    EXPECT_EQ(slot.psComponents[0].iFixedEnd, -1);
}

TEST_F(GapsTest, SizesAtTheEndOfTheRangeAreSurvived) {
    slot.psComponents = {unproved(2147483000, 2147483647), unproved(0, 2147483647),
                         proved(2147483647, 2147483647), unproved(-2147483647, 26)};
    close(slot);
    EXPECT_EQ(slot.psComponents.size(), 4u);
}

TEST_F(GapsTest, TheNarrationIsProgress) {
    slot.psComponents = {unproved(0, 8), unproved(16, 8)};
    expectthresholds([] {}, [&] { closegaps(slot); },
                     {{1, "Seeing if we can allocate the space between component 0 and 1\n"}});
}

} // namespace
} // namespace vantorel::test
