#include "base/message.h"
#include "support/capture.h"

#include <gtest/gtest.h>

namespace vantorel::test {

namespace {

class Messages : public ::testing::Test {
protected:
    void TearDown() override { iLogLevel = 1; }

    static std::string said(int32_t level, Threshold threshold) {
        iLogLevel = level;
        return captured([&] { message(threshold, "slot %d\n", 7); });
    }
};

} // namespace

TEST_F(Messages, AppearOneLevelAboveTheirThreshold) {
    for (const Threshold threshold : {kResult, kProgress, kTrace, kChatty, kRaw})
        EXPECT_EQ(said(threshold + 1, threshold), "slot 7\n");
}

TEST_F(Messages, AreSilentAtTheirThreshold) {
    for (const Threshold threshold : {kResult, kProgress, kTrace, kChatty, kRaw})
        EXPECT_EQ(said(threshold, threshold), "");
}

TEST_F(Messages, UnconditionalOnesAppearAtLevel0) { EXPECT_EQ(said(0, kAlways), "slot 7\n"); }

TEST_F(Messages, ResultsAppearAtTheFirstLevelAndProgressDoesNot) {
    EXPECT_EQ(said(1, kResult), "slot 7\n");
    EXPECT_EQ(said(1, kProgress), "");
}

TEST_F(Messages, IsShownTellsWhatWouldAppear) {
    iLogLevel = 6;
    EXPECT_TRUE(isshown(kTrace));
    EXPECT_FALSE(isshown(kChatty));
}

} // namespace vantorel::test
