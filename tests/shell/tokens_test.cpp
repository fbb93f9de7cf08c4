#include "shell/tokens.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantorel::test {

namespace {

using Words = std::vector<std::string>;

// The tokens of `text`. Every slot behind them must be empty.
Words cut(std::string text) {
    tokens(text.data());
    Words words;
    for (int32_t n = 0; n < iTokenSlots; ++n) {
        const char* token = cpTokens[static_cast<size_t>(n)];
        if (token == nullptr) ADD_FAILURE() << "slot " << n << " is null";
        if (n < iTokens)
            words.emplace_back(token);
        else
            EXPECT_STREQ(token, "") << "slot " << n;
    }
    droptokens();
    return words;
}

} // namespace

TEST(Tokens, AreSeparatedByAnyNumberOfSpaces) {
    EXPECT_EQ(cut("loadrom kick.rom 2"), (Words{"loadrom", "kick.rom", "2"}));
    EXPECT_EQ(cut("   loadrom   kick.rom  "), (Words{"loadrom", "kick.rom"}));
}

TEST(Tokens, AnEmptyLineHasNone) {
    EXPECT_EQ(cut(""), Words{});
    EXPECT_EQ(cut("    "), Words{});
}

TEST(Tokens, ATabIsAnOrdinaryCharacter) { EXPECT_EQ(cut("\techo\ta b"), (Words{"\techo\ta", "b"})); }

TEST(Tokens, EitherQuoteHoldsSpacesTogether) {
    EXPECT_EQ(cut("loadrom 'a b' 2"), (Words{"loadrom", "a b", "2"}));
    EXPECT_EQ(cut("loadhashes \"Vantorel Hashes\""), (Words{"loadhashes", "Vantorel Hashes"}));
    EXPECT_EQ(cut("echo ' a  b '"), (Words{"echo", " a  b "}));
}

TEST(Tokens, OneQuoteHoldsTheOther) {
    EXPECT_EQ(cut("echo \"it's\" 'say \"x\"'"), (Words{"echo", "it's", "say \"x\""}));
}

TEST(Tokens, AClosingQuoteEndsTheTokenWithoutASpace) {
    EXPECT_EQ(cut("\"ab\"cd"), (Words{"ab", "cd"}));
    EXPECT_EQ(cut("echo 'a''b'c d"), (Words{"echo", "a", "b", "c", "d"}));
}

TEST(Tokens, BehindAClosingQuoteTheSpaceSeparatesAgain) {
    EXPECT_EQ(cut("echo 'a b' c d"), (Words{"echo", "a b", "c", "d"}));
}

TEST(Tokens, AQuoteInsideAWordIsAnOrdinaryCharacter) {
    EXPECT_EQ(cut("echo don't a\"b c\""), (Words{"echo", "don't", "a\"b", "c\""}));
}

TEST(Tokens, AnUnclosedQuoteRunsToTheEndOfTheLine) {
    EXPECT_EQ(cut("echo 'a b  c "), (Words{"echo", "a b  c "}));
    EXPECT_EQ(cut("echo \""), (Words{"echo", ""}));
}

TEST(Tokens, AnEmptyQuotedTokenIsAnEmptyToken) {
    EXPECT_EQ(cut("echo \"\" a"), (Words{"echo", "", "a"}));
    EXPECT_EQ(cut("'' Echo"), (Words{"", "Echo"}));
}

TEST(Tokens, TheSixteenthEndsAtItsOwnTerminatorAndTheRestIsIgnored) {
    const Words sixteen = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"};
    EXPECT_EQ(cut("a b c d e f g h i j k l m n o p"), sixteen);
    EXPECT_EQ(cut("a b c d e f g h i j k l m n o p q r"), sixteen);
    Words quoted = sixteen;
    quoted[15] = "p q";
    EXPECT_EQ(cut("a b c d e f g h i j k l m n o 'p q' r"), quoted);
}

TEST(Tokens, OnlyTheFirstIsPutIntoLowerCase) {
    EXPECT_EQ(cut("LoadROM Kick.ROM"), (Words{"loadrom", "Kick.ROM"}));
    EXPECT_EQ(cut("\"ROMS\" A"), (Words{"roms", "A"}));
}

TEST(Tokens, OnlyTheLettersAToZChangeCase) { EXPECT_EQ(cut("@AZaz[\xC4_"), (Words{"@azaz[\xC4_"})); }

TEST(Tokens, AShorterLineLeavesNothingOfALongerOne) {
    std::string before = "a b c d";
    tokens(before.data());
    EXPECT_EQ(iTokens, 4);
    EXPECT_EQ(cut("x"), Words{"x"});
}

} // namespace vantorel::test
