// Bytes searched for in an image.

#include "shell/find.h"

#include "component/slotstate.h"
#include "shell/alias.h"

#include <algorithm>

namespace vantorel::test {
namespace {

// The bytes as the pattern's text has them.
std::string hextext(View bytes) {
    std::string text = "0x";
    for (const uint8_t byte : bytes)
        for (const int digit : {byte >> 4, byte & 15})
            text += "0123456789ABCDEF"[digit];
    return text;
}

class FindTest : public RomTest {
protected:
    static void makeslot(const Bytes& image) {
        silently([] { freeroms(); });
        slotwith(static_cast<int32_t>(image.size()));
        slotat(0).pcROM = image;
    }

    // What the alias FIND is after a search; "-" when nothing was found.
    static std::string found(uint32_t start, uint32_t end, const std::string& pattern) {
        freealiases();
        int result = -1;
        silently([&] { result = find(0, start, end, pattern); });
        EXPECT_EQ(result, iAliasCnt() == 1 ? 0 : 1);
        if (iAliasCnt() == 0) return "-";
        EXPECT_EQ(pcAliasname[0], "FIND");
        return pcAliasvalue[0];
    }

    // An image of `size` zeros with the word 0x4AFC at `place`.
    static void maketag(int32_t size, int32_t place) {
        Bytes image(static_cast<size_t>(size), 0);
        setword(image.data() + place, 0x4AFC);
        makeslot(image);
    }
};

TEST_F(FindTest, TheFirstPlaceBecomesTheAlias) {
    const BuiltRom standard = standardrom();
    makeslot(standard.image);
    const Bytes word = {0x4A, 0xFC};
    const auto place = std::search(standard.image.begin(), standard.image.end(), word.begin(), word.end());
    EXPECT_EQ(found(0, 524288, "0x4AFC"), hex32(static_cast<uint32_t>(place - standard.image.begin())));
    EXPECT_EQ(at(1, [] { static_cast<void>(find(0, 0, 524288, "0x4afc")); }), "") << "in silence";
}

TEST_F(FindTest, AnAliasThatIsThereIsReplacedOrLeftAsItWas) {
    maketag(100, 17);
    silently([] { alias("FIND", "old"); });
    silently([] { find(0, 0, 100, "0x4AFD"); });
    EXPECT_EQ(pcAliasvalue, std::vector<std::string>{"old"});
    silently([] { find(0, 0, 100, "0x4AFC"); });
    EXPECT_EQ(pcAliasvalue, std::vector<std::string>{"0x00000011"});
}

TEST_F(FindTest, TheStartIsSubtractedTwice) {
    // From 256 to 1024, the last position tried is 1024 - 256 - 2 - 1 = 765.
    maketag(2048, 765);
    EXPECT_EQ(found(256, 1024, "0x4AFC"), "0x000002fd");
    maketag(2048, 766);
    EXPECT_EQ(found(256, 1024, "0x4AFC"), "-");
    EXPECT_EQ(found(0, 1024, "0x4AFC"), "0x000002fe");
    maketag(2048, 256);
    EXPECT_EQ(found(256, 1024, "0x4AFC"), "0x00000100");
    EXPECT_EQ(found(257, 2048, "0x4AFC"), "-");
}

TEST_F(FindTest, AStartInTheSecondHalfTriesNothing) {
    makeslot(Bytes(1000, 0));
    EXPECT_EQ(found(499, 1000, "0x00"), "0x000001f3") << "position 499 is below 1000 - 499 - 1";
    EXPECT_EQ(found(500, 1000, "0x00"), "-");
    EXPECT_EQ(found(900, 1000, "0x00"), "-");
    EXPECT_EQ(found(10, 5, "0x00"), "-");
}

TEST_F(FindTest, ThePatternAtTheVeryEndNeedsAnEndBehindIt) {
    maketag(100, 98);
    EXPECT_EQ(found(0, 100, "0x4AFC"), "-");
    EXPECT_EQ(found(0, 101, "0x4AFC"), "0x00000062");
    EXPECT_EQ(found(0, 2147483647, "0x4AFC"), "0x00000062");
    EXPECT_EQ(found(0, 2147483647, "0x4AFC00"), "-") << "its last byte would lie outside";
}

TEST_F(FindTest, NothingIsTriedOutsideTheImage) {
    makeslot(Bytes(100, 0));
    EXPECT_EQ(found(100, 1000, "0x00"), "-");
    EXPECT_EQ(found(99, 1000, "0x00"), "0x00000063");
    EXPECT_EQ(found(99, 1000, "0x0000"), "-");
    EXPECT_EQ(found(0, 1000, "0x" + std::string(202, '0')), "-") << "101 bytes";
    EXPECT_EQ(found(0, 1000, "0x" + std::string(200, '0')), "0x00000000");
    makeslot({});
    EXPECT_EQ(found(0, 1000, "0x00"), "-");
}

TEST_F(FindTest, OfAnyLengthTheLastPlaceTriedIsTheSame) {
    const Bytes image = noisebytes(1000, 8);
    makeslot(image);
    for (uint32_t length = 1; length <= 200; ++length) {
        const std::string pattern = hextext(bytesat(0, 300, static_cast<int32_t>(length)));
        const std::string first = hex32(static_cast<uint32_t>(
            std::search(image.begin(), image.end(), image.begin() + 300, image.begin() + 300 + length) -
            image.begin()));
        EXPECT_EQ(found(0, 301 + length, pattern), first) << length;
        if (first != hex32(300)) continue;
        EXPECT_EQ(found(0, 300 + length, pattern), "-") << length;
        EXPECT_EQ(found(290, 591 + length, pattern), first) << length;
        EXPECT_EQ(found(290, 590 + length, pattern), "-") << length;
    }
}

TEST_F(FindTest, NoDigitsAreFoundAtOnce) {
    makeslot(Bytes(100, 0));
    EXPECT_EQ(found(0, 100, "0x"), "0x00000000");
    EXPECT_EQ(found(49, 100, "0x"), "0x00000031");
    EXPECT_EQ(found(50, 100, "0x"), "-") << "100 - 50 - 0 positions end at 50";
    EXPECT_EQ(found(0, 0, "0x"), "-");
}

TEST_F(FindTest, ADigitWithoutAPartnerIsNoPartOfThePattern) {
    maketag(100, 20);
    EXPECT_EQ(found(0, 100, "0x4AFC3"), "0x00000014");
    EXPECT_EQ(found(0, 100, "0x4AF"), "0x00000014") << "0x4A alone";
    EXPECT_EQ(found(3, 100, "0x7"), "0x00000003") << "nothing at all";
}

TEST_F(FindTest, OtherCharactersAreWorthWhatTheDigitRuleGives) {
    // ':' is 10 and 'G' is 16: 10 * 16 + 16 = 0xB0.
    Bytes image(100, 0);
    image[30] = 0xB0;
    makeslot(image);
    EXPECT_EQ(found(0, 100, "0x:G"), "0x0000001e");
}

TEST_F(FindTest, WithoutThePrefixNothingIsSearched) {
    maketag(100, 20);
    silently([] { alias("FIND", "old"); });
    for (const char* pattern : {"4AFC", "0X4AFC", "x", "exec", "", "00x4AFC"})
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(find(0, 0, 100, pattern), 1); }),
                  "Hex string must begin 0x\n");
    EXPECT_EQ(at(0, [] { find(0, 0, 100, "4AFC"); }), "");
    EXPECT_EQ(at(2, [] { find(0, 0, 100, "4AFC"); }), "Hex string must begin 0x\n");
    EXPECT_EQ(pcAliasvalue, std::vector<std::string>{"old"});
}

TEST_F(FindTest, MissingSlotsAreRefused) {
    maketag(100, 20);
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(at(1, [&] { EXPECT_EQ(find(rom, 0, 100, "0x4AFC"), 1); }), "ERROR, No current ROM\n");
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(FindTest, MessagesHaveTheirThresholds) {
    const Action prepare = [] { maketag(100, 20); };
    expectthresholds(
        prepare, [] { find(0, 3, 90, "0x4AFC"); },
        {{1, "Looking for 2 bytes 0x4AFC between 3 and 90\n"}, {1, "find, found at 20 [0x00000014]\n"}});
    expectthresholds(prepare, [] { find(0, 3, 90, "0x4AFD0"); },
                     {{1, "Looking for 2 bytes 0x4AFD0 between 3 and 90\n"}, {0, "Not found\n"}});
}

// The position that the rule gives: the first from `start` up to, not including, `end` - `start` - length.
std::string judged(const Bytes& image, View pattern, int64_t start, int64_t end) {
    const auto length = std::ssize(pattern);
    const int64_t behind = std::min(end - start - 1, std::ssize(image)); // where the last tried one ends
    if (start + length > behind) return "-";
    const auto last = image.begin() + behind;
    const auto place = std::search(image.begin() + start, last, pattern.begin(), pattern.end());
    return place == last ? "-" : hex32(static_cast<uint32_t>(place - image.begin()));
}

TEST_F(FindTest, PatternsOfAllLengthsAtRandomPlaces) {
    Noise noise(99);
    int hits = 0;
    int misses = 0;
    for (int trial = 0; trial < 4000; ++trial) {
        const uint32_t letters = trial % 2 == 0 ? 256 : 2;
        if (trial % 40 < 2) {
            Bytes image(1000 + noise() % 500);
            for (uint8_t& byte : image)
                byte = static_cast<uint8_t>(noise() % letters);
            makeslot(image);
        }
        const Bytes& image = slotat(0).pcROM;
        const auto length = static_cast<int32_t>(1 + noise() % (letters == 2 ? 14 : 200));
        const auto place = static_cast<int32_t>(noise() % (image.size() - static_cast<size_t>(length) + 1));
        Bytes pattern = bytesat(0, place, length);
        if (noise() % 8 == 0) pattern[noise() % pattern.size()] ^= 1;
        const uint32_t start = noise() % 4 == 0 ? 0 : noise() % 400;
        const auto end = static_cast<uint32_t>(noise() % 3 == 0 ? 2000 : noise() % 1600);
        const std::string expected = judged(image, pattern, start, end);
        ASSERT_EQ(found(start, end, hextext(pattern)), expected)
            << length << " bytes between " << start << " and " << end;
        ++(expected == "-" ? misses : hits);
    }
    EXPECT_GT(hits, 1000);
    EXPECT_GT(misses, 500);
}

class FindCommand : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        type("newrom 100");
        setword(slotat(0).pcROM.data() + 20, 0x4AFC);
    }
};

TEST_F(FindCommand, MissingArgumentsAreAskedFor) {
    EXPECT_EQ(printed("find"), "ERROR, please specify where you want to start searching\n");
    EXPECT_EQ(printed("find \"\" 100 0x4AFC"), "ERROR, please specify where you want to start searching\n");
    EXPECT_EQ(printed("find 0"), "ERROR, please specify what you want to end searching\n");
    EXPECT_EQ(printed("find 0 100"), "ERROR, please specify what you want to find\n");
    EXPECT_EQ(printedat(0, "find") + printedat(0, "find 0") + printedat(0, "find 0 100"), "");
}

TEST_F(FindCommand, BoundsAreDecimalOrHexadecimal) {
    EXPECT_EQ(printedat(2, "FIND 0x3 0x5a 0x4AFC"), "Parsed [FIND 0x3 0x5a 0x4AFC]\n"
                                                    "Looking for 2 bytes 0x4AFC between 3 and 90\n"
                                                    "find, found at 20 [0x00000014]\n");
    EXPECT_EQ(printedat(2, "find abc 90x 0x4AFC more"), "Parsed [find abc 90x 0x4AFC more]\n"
                                                        "Looking for 2 bytes 0x4AFC between 0 and 90\n"
                                                        "find, found at 20 [0x00000014]\n");
    EXPECT_EQ(printed("alias FIND"), "Value:0x00000014\n");
}

TEST_F(FindCommand, ReferencesStandForBounds) {
    type("alias from 0x00000014");
    EXPECT_EQ(printed("find $from 90 0x4AFC"), "");
    EXPECT_EQ(printed("find $FIND 42 0x4AFC"), "Not found\n");
    EXPECT_EQ(printed("find $FIND 43 0x4AFC"), "") << "20 is below 43 - 20 - 2";
}

TEST_F(FindCommand, BoundsThatAreNegativeOrDoNotFitAreRefused) {
    for (const std::string line : {"find -1 100 0x4AFC", "find 0 -1 0x4AFC", "find 99999999999 100 0x4AFC",
                                   "find 0 99999999999 0x4AFC", "find 0 2147483648 0x4AFC"})
        EXPECT_TRUE(isoneerror(printed(line))) << line;
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(FindCommand, WithoutACurrentRomNothingIsSearched) {
    type("rom 7");
    EXPECT_EQ(printed("find 0 100 0x4AFC"), "ERROR, No current ROM\n");
    type("reset roms");
    EXPECT_EQ(printed("find 0 100 0x4AFC"), "ERROR, No current ROM\n");
}

} // namespace
} // namespace vantorel::test
