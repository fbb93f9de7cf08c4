// The bounds of a component: which addresses widen them.

#include "missassembler/bounds.h"

#include "support/fresh.h"

namespace vantorel::test {
namespace {

class Bounds : public FreshTest {
protected:
    // A component at 0x2000 to 0x3000 with room from 0x1000 to 0x4000.
    void SetUp() override {
        FreshTest::SetUp();
        iMissMin = 0x2000;
        iMissMax = 0x3000;
        iMissMinLimit = 0x1000;
        iMissMaxLimit = 0x4000;
    }

    static std::pair<uint32_t, uint32_t> after(uint32_t address) {
        checkaddressbound(0, address);
        return {iMissMin, iMissMax};
    }

    using Pair = std::pair<uint32_t, uint32_t>;
};

TEST_F(Bounds, AnAddressBetweenThemChangesNothing) {
    for (const uint32_t address : {0x2000U, 0x2001U, 0x2800U, 0x2FFFU, 0x3000U})
        EXPECT_EQ(after(address), Pair(0x2000, 0x3000)) << address;
}

TEST_F(Bounds, OneAboveRaisesTheUpper) {
    EXPECT_EQ(after(0x3001), Pair(0x2000, 0x3001));
    EXPECT_EQ(after(0x3800), Pair(0x2000, 0x3800));
    EXPECT_EQ(after(0x3400), Pair(0x2000, 0x3800));
}

TEST_F(Bounds, OneBelowLowersTheLower) {
    EXPECT_EQ(after(0x1FFF), Pair(0x1FFF, 0x3000));
    EXPECT_EQ(after(0x1800), Pair(0x1800, 0x3000));
    EXPECT_EQ(after(0x1C00), Pair(0x1800, 0x3000));
}

TEST_F(Bounds, TheLimitsThemselvesCount) {
    EXPECT_EQ(after(0x1000), Pair(0x1000, 0x3000));
    EXPECT_EQ(after(0x4000), Pair(0x1000, 0x4000));
}

TEST_F(Bounds, WhatIsBeyondTheLimitsDoesNot) {
    for (const uint32_t address : {0U, 0xFFFU, 0x4001U, 0xFFFFFFFFU})
        EXPECT_EQ(after(address), Pair(0x2000, 0x3000)) << address;
}

TEST_F(Bounds, AddressesAreUnsigned) {
    iMissMin = 0x7FFFFF00;
    iMissMax = 0x80000000;
    iMissMinLimit = 0x7FFF0000;
    iMissMaxLimit = 0xF0000000;
    EXPECT_EQ(after(0x80000002), Pair(0x7FFFFF00, 0x80000002));
    EXPECT_EQ(after(0x7FFF8000), Pair(0x7FFF8000, 0x80000002));
    EXPECT_EQ(after(0x00001000), Pair(0x7FFF8000, 0x80000002));
}

TEST_F(Bounds, OneThatRaisesTheUpperIsNotLookedAtForTheLower) {
    // Bounds the wrong way round: 0x2000 is above the upper and below the lower.
    iMissMin = 0x3000;
    iMissMax = 0x1800;
    EXPECT_EQ(after(0x2000), Pair(0x3000, 0x2000));
    EXPECT_EQ(after(0x2000), Pair(0x2000, 0x2000)) << "no longer above the upper";
}

} // namespace
} // namespace vantorel::test
