#include "shell/arguments.h"

#include "rom/store.h"
#include "shell/numbers.h"
#include "shell/session.h"
#include "shell/tokens.h"
#include "support/capture.h"

#include <cstdint>

namespace vantorel::test {

namespace {

class Arguments : public ShellTest {
protected:
    void TearDown() override {
        droptokens();
        ShellTest::TearDown();
    }

    void give(const std::string& text) {
        line = text;
        tokens(line.data());
    }

    // What `read` makes of argument 1, and that it says nothing.
    template <typename Read>
    auto silently(Read read) {
        decltype(read(1)) value{};
        EXPECT_EQ(captured([&] { value = read(1); }), "") << line;
        return value;
    }

    // Whether `read` refuses argument 1 with an error line.
    template <typename Read>
    bool isrefused(Read read) {
        bool isnone = false;
        return isoneerror(captured([&] { isnone = !read(1).has_value(); })) && isnone;
    }

    std::string line;
};

} // namespace

TEST_F(Arguments, AnEmptyTokenIsAbsent) {
    give("command word \"\"");
    EXPECT_TRUE(isgiven(1));
    EXPECT_FALSE(isgiven(2));
    EXPECT_FALSE(isgiven(3));
    EXPECT_FALSE(isgiven(15));
}

TEST_F(Arguments, AWordIsWholeAndInAnyCase) {
    give("command Add");
    EXPECT_TRUE(isword(1, "add"));
    EXPECT_FALSE(isword(1, "ad"));
    EXPECT_FALSE(isword(1, "adds"));
    EXPECT_FALSE(isword(2, "add"));
}

TEST_F(Arguments, OnlyDigitsAreANumber) {
    give("command 12 -1 \"\" x");
    EXPECT_TRUE(isnumber(1));
    EXPECT_FALSE(isnumber(2));
    EXPECT_FALSE(isnumber(3));
    EXPECT_FALSE(isnumber(4));
}

TEST_F(Arguments, AMissingOneIsComplainedOf) {
    give("command");
    bool isthere = true;
    EXPECT_EQ(captured([&] { isthere = require(1, "ERROR, 100% missing\n"); }), "ERROR, 100% missing\n");
    EXPECT_FALSE(isthere);
    give("command x");
    EXPECT_EQ(captured([&] { isthere = require(1, "ERROR, missing\n"); }), "");
    EXPECT_TRUE(isthere);
}

TEST_F(Arguments, ANumberMayBeNegativeAbsentOrNone) {
    give("command -2147483648");
    EXPECT_EQ(silently(numberargument), INT32_MIN);
    give("command");
    EXPECT_EQ(silently(numberargument), 0);
    give("command word");
    EXPECT_EQ(silently(numberargument), 0);
    give("command 2147483648");
    EXPECT_TRUE(isrefused(numberargument));
}

TEST_F(Arguments, ARequiredNumberIsGivenInDigitsAndFits) {
    const auto read = [](int32_t n) {
        return requirenumber(n, "ERROR, 100% missing\n", "ERROR, 100% bad\n");
    };
    give("command 12");
    EXPECT_EQ(silently(read), 12);
    give(std::string("command ") + cTooLarge);
    EXPECT_TRUE(isrefused(read));
    const auto refusal = [&](const char* text) {
        give(text);
        return captured([&] { EXPECT_EQ(read(1), std::nullopt) << text; });
    };
    EXPECT_EQ(refusal("command"), "ERROR, 100% missing\n");
    EXPECT_EQ(refusal("command -1"), "ERROR, 100% bad\n");
    EXPECT_EQ(refusal("command 12x"), "ERROR, 100% bad\n");
}

TEST_F(Arguments, ACountIsNeverNegative) {
    give("command 2147483647");
    EXPECT_EQ(silently(countargument), 2147483647);
    give("command -0");
    EXPECT_EQ(silently(countargument), 0);
    give("command -1");
    EXPECT_TRUE(isrefused(countargument));
    give(std::string("command ") + cTooLarge);
    EXPECT_TRUE(isrefused(countargument));
}

TEST_F(Arguments, AnOffsetMayBeHexadecimalAndThenWraps) {
    give("command 16");
    EXPECT_EQ(silently(offsetargument), 16U);
    give("command 0x10");
    EXPECT_EQ(silently(offsetargument), 16U);
    give("command 0x123456789");
    EXPECT_EQ(silently(offsetargument), 0x23456789U);
    give("command 0xFFFFFFFF");
    EXPECT_EQ(silently(offsetargument), 0xFFFFFFFFU);
    give("command -1");
    EXPECT_TRUE(isrefused(offsetargument));
    give(std::string("command ") + cTooLarge);
    EXPECT_TRUE(isrefused(offsetargument));
}

TEST_F(Arguments, ASlotIsTheCurrentOneUnlessANumberIsGiven) {
    iCurrentROM = 7;
    give("command 3");
    EXPECT_EQ(silently(slotargument), 3);
    for (const char* text : {"command", "command word", "command -1"}) {
        give(text);
        EXPECT_EQ(silently(slotargument), 7) << text;
    }
    give(std::string("command ") + cTooLarge);
    EXPECT_TRUE(isrefused(slotargument));
}

} // namespace vantorel::test
