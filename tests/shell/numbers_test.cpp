#include "shell/numbers.h"

#include "base/message.h"
#include "support/capture.h"
#include "support/fresh.h"

#include <cstdint>

namespace vantorel::test {

TEST(HexDigit, BelowCapitalAItIsTheCodeLessThatOfZero) {
    EXPECT_EQ(hexdigit('0'), 0);
    EXPECT_EQ(hexdigit('9'), 9);
    EXPECT_EQ(hexdigit('@'), 16);
    EXPECT_EQ(hexdigit('/'), -1);
    EXPECT_EQ(hexdigit(' '), -16);
    EXPECT_EQ(hexdigit('\0'), -48);
}

TEST(HexDigit, FromCapitalAToBelowSmallAItIsTheCodeLess55) {
    EXPECT_EQ(hexdigit('A'), 10);
    EXPECT_EQ(hexdigit('F'), 15);
    EXPECT_EQ(hexdigit('G'), 16);
    EXPECT_EQ(hexdigit('`'), 41);
}

TEST(HexDigit, FromSmallAItIsTheCodeLess87) {
    EXPECT_EQ(hexdigit('a'), 10);
    EXPECT_EQ(hexdigit('f'), 15);
    EXPECT_EQ(hexdigit('z'), 35);
}

TEST(IsNumeric, OnlyDecimalDigitsAndTheEmptyTextAre) {
    EXPECT_TRUE(isnumeric("0123456789"));
    EXPECT_TRUE(isnumeric(""));
    for (const char* text : {"-1", "+1", " 1", "1 ", "1a", "a", "0x1", "1.", "/", ":"})
        EXPECT_FALSE(isnumeric(text)) << text;
}

TEST(Decimal, ReadsLeadingDigitsAfterBlanksAndASign) {
    EXPECT_EQ(decimal("12k"), 12);
    EXPECT_EQ(decimal(" \t12"), 12);
    EXPECT_EQ(decimal("-12"), -12);
    EXPECT_EQ(decimal("+12"), 12);
    EXPECT_EQ(decimal("0x12"), 0);
    EXPECT_EQ(decimal("- 12"), 0);
    EXPECT_EQ(decimal("abc"), 0);
    EXPECT_EQ(decimal(""), 0);
}

TEST(DecimalInRange, TheEndsOfTheRangeFit) {
    EXPECT_EQ(decimalinrange("2147483647"), 2147483647);
    EXPECT_EQ(decimalinrange("-2147483648"), INT32_MIN);
    EXPECT_EQ(decimalinrange("word"), 0);
}

TEST(DecimalInRange, WhatDoesNotFit32SignedBitsIsNoNumber) {
    for (const char* text :
         {"2147483648", "-2147483649", "4294967296", "99999999999", "18446744073709551616",
          "-18446744073709551617", "340282366920938463463374607431768211456000000000000000000000001"})
        EXPECT_EQ(decimalinrange(text), std::nullopt) << text;
}

TEST(AtoiOrHex, IsHexadecimalBehindALowerCasePrefix) {
    EXPECT_TRUE(ishexadecimal("0x"));
    EXPECT_EQ(atoiorhex("0x10"), 16U);
    EXPECT_EQ(atoiorhex("0xF80000"), 0xF80000U);
    EXPECT_EQ(atoiorhex("0xdeadBEEF"), 0xDEADBEEFU);
    EXPECT_EQ(atoiorhex("0x"), 0U);
}

TEST(AtoiOrHex, IsDecimalWithoutIt) {
    EXPECT_EQ(atoiorhex("10"), 10U);
    EXPECT_EQ(atoiorhex("10,20"), 10U);
    EXPECT_EQ(atoiorhex("-1"), 0xFFFFFFFFU);
    EXPECT_EQ(atoiorhex("abc"), 0U);
    EXPECT_EQ(atoiorhex(""), 0U);
    EXPECT_FALSE(ishexadecimal("0X10"));
    EXPECT_EQ(atoiorhex("0X10"), 0U);
    EXPECT_EQ(atoiorhex(" 0x10"), 0U);
}

TEST(AtoiOrHex, HexadecimalEndsAtAComma) {
    EXPECT_EQ(atoiorhex("0x10,20"), 16U);
    EXPECT_EQ(atoiorhex("0x,20"), 0U);
}

TEST(AtoiOrHex, HexadecimalWrapsAt32Bits) {
    EXPECT_EQ(atoiorhex("0x123456789"), 0x23456789U);
    EXPECT_EQ(atoiorhex("0x100000000"), 0U);
}

TEST(AtoiOrHex, AnOutOfRangeDigitIsFoldedInAsItIs) {
    EXPECT_EQ(atoiorhex("0x1G"), 32U);
    EXPECT_EQ(atoiorhex("0x1 2"), 2U);
}

TEST(Hex2UnsignedLong, TakesAtMostEightDigitsAndEndsEarlyOnlyAtTheEnd) {
    EXPECT_EQ(Hex2iUINT32("ff"), 255U);
    EXPECT_EQ(Hex2iUINT32("FFFFFFFF"), 0xFFFFFFFFU);
    EXPECT_EQ(Hex2iUINT32("123456789"), 0x12345678U);
    EXPECT_EQ(Hex2iUINT32(""), 0U);
    EXPECT_EQ(Hex2iUINT32("1,2"), 194U);
}

TEST(Hex2SignedLong, TheNumberIsAsWideAsItsDigits) {
    EXPECT_EQ(Hex2iINT32("80"), -128);
    EXPECT_EQ(Hex2iINT32("0080"), 128);
    EXPECT_EQ(Hex2iINT32("FFFE"), -2);
    EXPECT_EQ(Hex2iINT32("7FFE"), 0x7FFE);
    EXPECT_EQ(Hex2iINT32("8"), -8);
    EXPECT_EQ(Hex2iINT32("7"), 7);
    EXPECT_EQ(Hex2iINT32("ff"), -1);
    EXPECT_EQ(Hex2iINT32("80000000"), INT32_MIN);
    EXPECT_EQ(Hex2iINT32("7fffffff"), INT32_MAX);
    EXPECT_EQ(Hex2iINT32(""), 0);
}

TEST(Hex2SignedLong, EndsAtAParenthesisAndAfterEightDigits) {
    EXPECT_EQ(Hex2iINT32("10(A0)"), 16);
    EXPECT_EQ(Hex2iINT32("FFFE(PC,D0)"), -2);
    EXPECT_EQ(Hex2iINT32("(A0)"), 0);
    EXPECT_EQ(Hex2iINT32("123456789"), 0x12345678);
    EXPECT_EQ(Hex2iINT32("FFFFFFFF0"), -1);
}

class Hex2Bin : public FreshTest {};

TEST_F(Hex2Bin, PairsOfDigitsAreBytes) {
    EXPECT_EQ(hex2bin("0x11144EF9"), (Bytes{0x11, 0x14, 0x4E, 0xF9}));
    EXPECT_EQ(hex2bin("0xfF00"), (Bytes{0xFF, 0x00}));
    EXPECT_EQ(hex2bin("0x"), Bytes{});
}

TEST_F(Hex2Bin, AnOddLastDigitTakesTheEndOfTheTextForItsSecond) {
    EXPECT_EQ(hex2bin("0x1"), Bytes{0xE0});
    EXPECT_EQ(hex2bin("0x123"), (Bytes{0x12, 0x00}));
    EXPECT_EQ(hex2bin("0xABF"), (Bytes{0xAB, 0xC0}));
}

TEST_F(Hex2Bin, ATextWithoutThePrefixIsReported) {
    for (const char* text : {"1114", "0X1114", "", "x11"}) {
        Bytes bytes = {1};
        EXPECT_EQ(captured([&] { bytes = hex2bin(text); }), "Hex string must begin 0x\n") << text;
        EXPECT_TRUE(bytes.empty()) << text;
    }
}

TEST_F(Hex2Bin, ThatReportIsAnError) {
    iLogLevel = 0;
    EXPECT_EQ(captured([] { static_cast<void>(hex2bin("1114")); }), "");
}

} // namespace vantorel::test
