// The search for agreements by itself: where it gives up. What it finds is compared with the plain search in
// the tests of the whole analysis.

#include "analysis/agreement.h"

#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

// `count` words that are all the same, none of them part of an address.
Copy oneword(size_t count) {
    return {.words = std::vector<uint16_t>(count, 0x4E71), .isaddress = std::vector<bool>(count)};
}

TEST(AgreementSearchTest, FindsTheLowestOfTheLongest) {
    const Copy first = oneword(40);
    const Copy second = oneword(60);
    AgreementSearch search(first, second);
    const Agreement found = search.find(0, 32);
    EXPECT_EQ(found.iPlace, 0);
    EXPECT_EQ(found.iLength, 40);
    EXPECT_FALSE(search.isexhausted());
}

// The first place alone makes 41 steps: one for itself, and 40 words.
TEST(AgreementSearchTest, GivesUpWhenThereIsTooMuchToCompare) {
    const Copy first = oneword(40);
    const Copy second = oneword(60);
    AgreementSearch search(first, second, 50);
    EXPECT_FALSE(search.isexhausted());
    static_cast<void>(search.find(0, 32));
    EXPECT_TRUE(search.isexhausted());
}

} // namespace
} // namespace vantorel::test
