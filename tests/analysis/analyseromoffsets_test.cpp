// Bounds that the components of other ROMs propose for those of one.

#include "analysis/analysecomponent.h"

#include "analysis/analysistest.h"

#include <cstdint>

namespace vantorel::test {
namespace {

class AnalyseRomOffsetsTest : public RomTest {
protected:
    // A slot whose components have tags 8 bytes behind their starts.
    static int32_t rom(const std::vector<Place>& places) { return slotof(Bytes(256, 0), 0xF80000, places); }

    static void forget(int32_t slot, int32_t component, bool isstart, bool isend) {
        if (isstart) componentat(slot, component).iFixedStart = -1;
        if (isend) componentat(slot, component).iFixedEnd = -1;
    }

    static std::string console(int32_t slot = 0) {
        return expectunchanged(0, [&] { EXPECT_EQ(analyseromoffsets(slot), 0); });
    }
};

TEST_F(AnalyseRomOffsetsTest, MissingBoundsAreProposed) {
    rom({{16, 48, 24, cCopied}});
    rom({{100, 140, 104, cCopied}});
    forget(0, 0, true, true);
    // The other begins 4 bytes before its tag and ends 36 behind it.
    EXPECT_EQ(console(),
              lines({"copied 1.0", "   Matching/Missing START for 0 at 1:0", "   editcomponent 0 START=20",
                     "   Matching/Missing END for 0 at 1:0", "   editcomponent 0 END=60"}));
}

TEST_F(AnalyseRomOffsetsTest, EachBoundByItself) {
    rom({{16, 48, 24, cCopied}, {64, 96, 72, cCopied}, {128, 160, 136, cCopied}});
    rom({{100, 140, 104, cCopied}});
    forget(0, 0, true, false);
    forget(0, 1, false, true);
    EXPECT_EQ(console(),
              lines({"copied 1.0", "   Matching/Missing START for 0 at 1:0", "   editcomponent 0 START=20",
                     "copied 1.0", "   Matching/Missing END for 1 at 1:0", "   editcomponent 1 END=108"}));
}

TEST_F(AnalyseRomOffsetsTest, WhatTheOtherDoesNotKnowEitherIsNotProposed) {
    rom({{16, 48, 24, cCopied}});
    rom({{100, 140, 104, cCopied}});
    forget(0, 0, true, true);
    forget(1, 0, true, false);
    EXPECT_EQ(console(),
              lines({"copied 1.0", "   Matching/Missing END for 0 at 1:0", "   editcomponent 0 END=60"}));
    forget(1, 0, true, true);
    EXPECT_EQ(console(), "copied 1.0\n");
    componentat(1, 0).iFixedStart = 0;
    EXPECT_EQ(console(), lines({"copied 1.0", "   Matching/Missing START for 0 at 1:0",
                                "   editcomponent 0 START=-80"}));
}

TEST_F(AnalyseRomOffsetsTest, ComponentsThatAreKnownOrHaveNoNameAreLeftOut) {
    rom({{16, 48, 24, cCopied}, {64, 96, 72, {}}, {128, 160, 136, "other 1.0"}});
    rom({{16, 48, 24, cCopied}, {64, 96, 72, {}}, {128, 160, 136, "Other 1.0"}});
    forget(0, 1, true, true);
    EXPECT_EQ(console(), "");
    forget(0, 2, true, true);
    EXPECT_EQ(console(), "other 1.0\n");
}

TEST_F(AnalyseRomOffsetsTest, EveryOtherSlotAndEveryCopyInItIsTold) {
    rom({{100, 140, 104, cCopied}});
    rom({{16, 48, 24, cCopied}, {64, 96, 72, cCopied}});
    rom({{0, 4, 0, {}}, {8, 40, 16, cCopied}, {50, 90, 60, cCopied}});
    forget(1, 1, true, true);
    EXPECT_EQ(expectunchanged(1, [] { EXPECT_EQ(analyseromoffsets(1), 0); }),
              lines({"copied 1.0", "   Matching/Missing START for 1 at 0:0", "   editcomponent 1 START=68",
                     "   Matching/Missing END for 1 at 0:0", "   editcomponent 1 END=108",
                     "   Matching/Missing START for 1 at 2:1", "   editcomponent 1 START=64",
                     "   Matching/Missing END for 1 at 2:1", "   editcomponent 1 END=96",
                     "   Matching/Missing START for 1 at 2:2", "   editcomponent 1 START=62",
                     "   Matching/Missing END for 1 at 2:2", "   editcomponent 1 END=102"}));
}

TEST_F(AnalyseRomOffsetsTest, WithASingleRomItIsSilent) {
    for (const int32_t slot : {-1, 0, 1, 20})
        EXPECT_EQ(at(1, [&] { EXPECT_EQ(analyseromoffsets(slot), 0); }), "");
    rom({{16, 48, 24, cCopied}, {64, 96, 72, cCopied}});
    forget(0, 0, true, true);
    for (const int32_t slot : {-1, 0, 1, 20})
        EXPECT_EQ(console(slot), "");
}

TEST_F(AnalyseRomOffsetsTest, SlotsThatDoNotExistAreRefused) {
    rom({});
    rom({});
    for (const int32_t slot : {-1, 2, 20, INT32_MIN}) {
        EXPECT_EQ(console(slot), "ERROR, No current ROM\n");
        EXPECT_EQ(at(0, [&] { analyseromoffsets(slot); }), "");
    }
}

TEST_F(AnalyseRomOffsetsTest, EverythingIsShownAboveLevelZero) {
    expectthresholds(
        [] {
            rom({{16, 48, 24, cCopied}});
            rom({{100, 140, 104, cCopied}});
            forget(0, 0, true, true);
        },
        [] { analyseromoffsets(0); },
        {{0, "copied 1.0\n"},
         {0, "   Matching/Missing START for 0 at 1:0\n"},
         {0, "   editcomponent 0 START=20\n"},
         {0, "   Matching/Missing END for 0 at 1:0\n"},
         {0, "   editcomponent 0 END=60\n"}});
}

} // namespace
} // namespace vantorel::test
