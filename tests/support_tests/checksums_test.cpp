#include "support/checksums.h"

#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

TEST(Crc32Of, GivesThePublishedCheckValue) {
    const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(crc32of(digits), 0xCBF43926U);
    EXPECT_EQ(crc32of({}), 0U);
    EXPECT_EQ(crc32of(Bytes{0}), 0xD202EF8DU);
}

TEST(CarrySum, AddsLongs) { EXPECT_EQ(carrysum(Bytes{0, 0, 0, 1, 0, 0, 1, 2}), 0x103U); }

TEST(CarrySum, BringsACarryRound) {
    // 0xFFFFFFFF + 2 wraps to 1, and the carry makes it 2.
    EXPECT_EQ(carrysum(Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 2}), 2U);
    EXPECT_EQ(carrysum(Bytes(8, 0xFF)), 0xFFFFFFFFU);
    EXPECT_EQ(carrysum(Bytes(12, 0x80)), 0x81818181U); // 3 * 0x80808080 = 0x181818180
}

TEST(KickstartSum, OfZerosIsAllOnes) { EXPECT_EQ(kickstartsum(Bytes(256, 0)), 0xFFFFFFFFU); }

TEST(KickstartSum, LeavesOutWhatStandsInTheChecksumsPlace) {
    Bytes image(32, 0);
    image[3] = 1;
    const uint32_t sum = kickstartsum(image);
    EXPECT_EQ(sum, 0xFFFFFFFEU);
    image[8] = 0x77;
    EXPECT_EQ(kickstartsum(image), sum);
}

TEST(HashName, ReplacesBlanksAndSlashes) {
    EXPECT_EQ(hashname(0xBEEF, "exec 40.10 (15/7\\93)"), "0x0000beef.exec_40.10_(15_7_93)");
}

} // namespace
} // namespace vantorel::test
