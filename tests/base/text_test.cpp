#include "base/text.h"

#include <gtest/gtest.h>

namespace vantorel::test {

TEST(TextShown, AnAbsentTextIsNotAnEmptyOne) {
    EXPECT_STREQ(shown(std::nullopt), "(null)");
    EXPECT_STREQ(shown(Text("")), "");
    EXPECT_STREQ(shown(Text("kick")), "kick");
}

TEST(TextShown, ATextEndsAtItsFirstNul) { EXPECT_STREQ(shown(Text(std::string("a\0b", 3))), "a"); }

TEST(TextShown, OnlyAPresentTextHasAnAddress) {
    EXPECT_EQ(address(std::nullopt), nullptr);
    const Text text = "kick";
    EXPECT_EQ(address(text), text->data());
}

TEST(Formatted, ShortAndLongTextsComeWhole) {
    EXPECT_EQ(formatted("%s=%08x", "crc", 0x1234U), "crc=00001234");
    const std::string longtext(100000, 'x');
    EXPECT_EQ(formatted("<%s>", longtext.c_str()), "<" + longtext + ">");
}

TEST(Formatted, NothingToPrintIsAnEmptyText) { EXPECT_EQ(formatted("%s", ""), ""); }

TEST(Cut, ATextIsAsLongAsItMayBe) {
    EXPECT_EQ(cut("kickstart", 4), "kick");
    EXPECT_EQ(cut("kick", 4), "kick");
    EXPECT_EQ(cut("kic", 4), "kic");
    EXPECT_EQ(cut("", 4), "");
    EXPECT_EQ(cut("kick", 0), "");
}

TEST(HexLong, EightSmallDigitsStandBehindAPrefix) {
    EXPECT_EQ(hexlong(0x89ABCDEF), "0x89abcdef");
    EXPECT_EQ(hexlong(0x1F), "0x0000001f");
    EXPECT_EQ(hexlong(0), "0x00000000");
}

TEST(JoinPath, ASlashStandsBetweenDirectoryAndName) {
    EXPECT_EQ(joinpath("a/b", "c"), "a/b/c");
    EXPECT_EQ(joinpath("", "c"), "/c");
    EXPECT_EQ(joinpath("a/", ""), "a//");
}

TEST(JoinPath, APathOf1023CharactersIsWhole) {
    const std::string directory(1020, 'd');
    EXPECT_EQ(joinpath(directory, "ab"), directory + "/ab");
}

TEST(JoinPath, CharactersBeyondThe1023rdAreCutOff) {
    const std::string directory(1020, 'd');
    EXPECT_EQ(joinpath(directory, "abc"), directory + "/ab");
    EXPECT_EQ(joinpath(std::string(2000, 'd'), "abc"), std::string(1023, 'd'));
}

TEST(NoCase, APrefixMatchesInEitherCase) {
    EXPECT_TRUE(startswithnocase("0xABCDEF01.txt", "0xabcdef01"));
    EXPECT_TRUE(startswithnocase("kick", ""));
    EXPECT_FALSE(startswithnocase("kick", "kicks"));
    EXPECT_FALSE(startswithnocase("kick", "sick"));
}

TEST(NoCase, EqualTextsHaveTheSameLength) {
    EXPECT_TRUE(equalnocase("Kick", "kICK"));
    EXPECT_FALSE(equalnocase("Kick", "Kic"));
    EXPECT_TRUE(equalnocase("", ""));
}

} // namespace vantorel::test
