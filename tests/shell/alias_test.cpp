#include "shell/alias.h"

#include "base/message.h"
#include "rom/store.h"
#include "shell/session.h"
#include "support/capture.h"

#include <algorithm>

namespace vantorel::test {

namespace {

using Texts = std::vector<std::string>;

class Alias : public ShellTest {
protected:
    [[nodiscard]] static std::string value(const std::string& name) {
        const auto found = std::ranges::find(pcAliasname, name);
        return found == pcAliasname.end() ? "no alias"
                                          : pcAliasvalue[static_cast<size_t>(found - pcAliasname.begin())];
    }

    // A current ROM of 16 bytes.
    static void kick() {
        iCurrentROM = newrom(16, 0xAB);
        const Bytes first = {0x11, 0x14, 0x4E, 0xF9};
        std::ranges::copy(first, findslot(iCurrentROM)->pcROM.begin());
    }
};

} // namespace

TEST_F(Alias, AreKeptInTheOrderInWhichTheyWereMade) {
    type("alias b 2");
    type("alias a 1");
    type("alias c 3");
    EXPECT_EQ(pcAliasname, (Texts{"b", "a", "c"}));
    EXPECT_EQ(pcAliasvalue, (Texts{"2", "1", "3"}));
    EXPECT_EQ(iAliasCnt(), 3);
}

TEST_F(Alias, AnExistingNameKeepsItsPlaceAndGetsTheNewValue) {
    type("alias b 2");
    type("alias a 1");
    type("alias b changed");
    EXPECT_EQ(pcAliasname, (Texts{"b", "a"}));
    EXPECT_EQ(pcAliasvalue, (Texts{"changed", "1"}));
}

TEST_F(Alias, NamesHeedCase) {
    type("alias x small");
    type("alias X large");
    EXPECT_EQ(value("x"), "small");
    EXPECT_EQ(value("X"), "large");
}

TEST_F(Alias, ANameAloneShowsTheValue) {
    type("alias x 'a b'");
    EXPECT_EQ(printed("alias x"), "Value:a b\n");
    EXPECT_EQ(printed("alias x \"\""), "Value:a b\n");
    EXPECT_EQ(printedat(0, "alias x"), "");
}

TEST_F(Alias, AnUnknownNameIsReported) {
    EXPECT_EQ(printed("alias x"), "No such alias\n");
    EXPECT_EQ(printed("alias x add 1"), "No such alias\n");
    EXPECT_EQ(printed("alias x subtract 1"), "No such alias\n");
    EXPECT_EQ(printed("alias x mid 1"), "No such alias\n");
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(Alias, AnEmptyNameDoesNothing) {
    iLogLevel = 6;
    EXPECT_EQ(captured([] { alias("", "value"); }), "");
    EXPECT_EQ(captured([] { aliasadd("", "1"); }), "");
    EXPECT_EQ(captured([] { aliassub("", "1"); }), "");
    EXPECT_EQ(captured([] { aliasmid("", 0, 1); }), "");
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(Alias, WithoutANameAsksWhetherToListAtLevelTwo) {
    EXPECT_EQ(printedat(2, "alias"), "Parsed [alias]\nList aliases?\n");
    EXPECT_EQ(printed("alias"), "");
    EXPECT_EQ(printed("alias \"\" add 1"), "");
}

TEST_F(Alias, TheSearchAndTheCreationAreTraced) {
    iLogLevel = 6;
    EXPECT_EQ(captured([] { alias("x", "1 2"); }), "Search for existing alias x\nCreate new alias to 1 2\n");
    EXPECT_EQ(captured([] { alias("x", "3"); }), "Search for existing alias x\n");
    iLogLevel = 5;
    EXPECT_EQ(captured([] { alias("y", "1"); }), "");
}

TEST_F(Alias, AWordThatIsNoFormIsUnknown) {
    EXPECT_EQ(printed("alias x multiply 2"), "unknown alias command\n");
    EXPECT_EQ(printed("alias x adds 2"), "unknown alias command\n");
    EXPECT_EQ(printed("alias x \"\" 2"), "unknown alias command\n");
    EXPECT_EQ(printedat(0, "alias x multiply 2"), "");
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(Alias, AFormWithoutItsOperandIsAValue) {
    for (const char* word : {"add", "subtract", "mid", "romdata"}) {
        type(std::string("alias x ") + word);
        EXPECT_EQ(value("x"), word);
    }
}

TEST_F(Alias, TheFormsAreKnownInAnyCase) {
    type("alias x 0x00000010");
    type("alias x ADD 1");
    type("alias x Subtract 0x10");
    EXPECT_EQ(value("x"), "0x00000001");
}

TEST_F(Alias, AddTakesHexadecimalAndDecimal) {
    type("alias x 0x10");
    type("alias x add 0x10");
    EXPECT_EQ(value("x"), "0x00000020");
    type("alias x add 10");
    EXPECT_EQ(value("x"), "0x0000002a");
    type("alias x add -1");
    EXPECT_EQ(value("x"), "0x00000029");
}

TEST_F(Alias, AddWrapsAt32Bits) {
    type("alias x 0xFFFFFFFF");
    type("alias x add 2");
    EXPECT_EQ(value("x"), "0x00000001");
}

TEST_F(Alias, SubtractingOneFromZeroWraps) {
    type("alias x 0x0");
    type("alias x subtract 1");
    EXPECT_EQ(value("x"), "0xffffffff");
    type("alias x subtract 0xffffffff");
    EXPECT_EQ(value("x"), "0x00000000");
    type("alias x subtract -5");
    EXPECT_EQ(value("x"), "0x00000005");
}

TEST_F(Alias, ArithmeticReadsUpToEightDigitsFromTheThirdCharacterOn) {
    type("alias x 0x123456789");
    type("alias x add 0");
    EXPECT_EQ(value("x"), "0x12345678");
    type("alias x abc");
    type("alias x add 1");
    EXPECT_EQ(value("x"), "0x0000000d");
    type("alias x 0x0");
    type("alias x add 0x123456789");
    EXPECT_EQ(value("x"), "0x12345678");
}

TEST_F(Alias, ArithmeticOnAValueTooShortForADigitStartsFromZero) {
    type("alias x 9");
    type("alias x add 3");
    EXPECT_EQ(value("x"), "0x00000003");
}

TEST_F(Alias, TheSumIsStoredLikeAnyValue) {
    type("alias x 0x1");
    iLogLevel = 6;
    EXPECT_EQ(captured([] { aliasadd("x", "1"); }), "Search for existing alias x\n");
}

TEST_F(Alias, AnOperandThatDoesNotFitIsRefused) {
    type("alias x 0x1");
    EXPECT_TRUE(isoneerror(printed("alias x add 99999999999")));
    EXPECT_TRUE(isoneerror(printed("alias x subtract 2147483648")));
    EXPECT_EQ(printedat(0, "alias x add 99999999999"), "");
    EXPECT_EQ(value("x"), "0x1");
}

TEST_F(Alias, MidKeepsTheCharactersAskedFor) {
    type("alias x 0x12345678");
    type("alias x mid 2 4");
    EXPECT_EQ(value("x"), "1234");
}

TEST_F(Alias, MidWithoutALengthGoesToTheEnd) {
    type("alias x 0x12345678");
    type("alias x mid 6");
    EXPECT_EQ(value("x"), "5678");
    type("alias x mid 1 0");
    EXPECT_EQ(value("x"), "678");
}

TEST_F(Alias, MidBeyondTheEndEndsThere) {
    type("alias x 0123456789");
    type("alias x mid 8 100");
    EXPECT_EQ(value("x"), "89");
    type("alias x mid 2 5");
    EXPECT_EQ(value("x"), "");
}

TEST_F(Alias, MidFromBeyondTheEndGivesTheEmptyText) {
    type("alias x abc");
    type("alias x mid 4 1");
    EXPECT_EQ(printed("alias x"), "Value:\n");
}

TEST_F(Alias, MidTellsTheSearchAtLevelTwo) {
    alias("x", "abcdef");
    iLogLevel = 2;
    EXPECT_EQ(captured([] { aliasmid("x", 1, 3); }),
              "Search for existing alias x\nSearched for existing alias x\n");
    EXPECT_EQ(captured([] { aliasmid("y", 1, 3); }),
              "Search for existing alias y\nSearched for existing alias y\nNo such alias\n");
    iLogLevel = 1;
    EXPECT_EQ(captured([] { aliasmid("x", 1, 3); }), "");
}

TEST_F(Alias, MidTracesTheLength) {
    alias("x", "abcdef");
    const std::string search = "Search for existing alias x\nSearched for existing alias x\n";
    iLogLevel = 6;
    EXPECT_EQ(captured([] { aliasmid("x", 1, 3); }), search + "New len:3\n");
    EXPECT_EQ(captured([] { aliasmid("x", 1, 0); }), search + "New len:2\n");
    EXPECT_EQ(captured([] { aliasmid("x", 2, 1); }), search + "New len:1\n");
    EXPECT_EQ(captured([] { aliasmid("x", 2, 1); }), search + "Too short - zeroing\n");
    iLogLevel = 5;
    EXPECT_EQ(captured([] { aliasmid("x", 0, 1); }), search);
    EXPECT_EQ(captured([] { aliasmid("x", 1, 1); }), search);
}

TEST_F(Alias, MidRefusesABadBoundBeforeItLooksForTheAlias) {
    for (const char* bounds : {"-1", "0 -1", "99999999999", "0 99999999999"})
        EXPECT_TRUE(isoneerror(printed(std::string("alias nothere mid ") + bounds))) << bounds;
    type("alias x abc");
    type("alias x mid 1 -1");
    EXPECT_EQ(value("x"), "abc");
}

TEST_F(Alias, RomDataIsTheBytesOfTheCurrentRom) {
    kick();
    EXPECT_EQ(printed("alias x romdata 0 4"), "");
    EXPECT_EQ(value("x"), "0x11144EF9");
    type("alias x romdata 0x2 0x3");
    EXPECT_EQ(value("x"), "0x4EF9AB");
}

TEST_F(Alias, RomDataWithoutACountIsAnEmptyNumber) {
    kick();
    type("alias x romdata 4");
    EXPECT_EQ(value("x"), "0x");
}

TEST_F(Alias, RomDataEndsBelowTheLastByte) {
    kick();
    type("alias x romdata 0 15");
    EXPECT_EQ(value("x"), "0x11144EF9ABABABABABABABABABABAB");
    type("alias x kept");
    for (const char* range : {"0 16", "12 4", "15 1", "16", "0xFFFFFFFF 2", "2 0xFFFFFFFF", "2147483647 9"})
        EXPECT_EQ(printed(std::string("alias x romdata ") + range), "Error: Out of ROM bounds\n") << range;
    EXPECT_EQ(printedat(0, "alias x romdata 0 16"), "");
    EXPECT_EQ(value("x"), "kept");
}

TEST_F(Alias, RomDataNeedsARom) {
    EXPECT_EQ(printed("alias x romdata 0 4"), "Invalid ROM\n");
    kick();
    iCurrentROM = 1;
    EXPECT_EQ(printed("alias x romdata 0 4"), "Invalid ROM\n");
    EXPECT_EQ(printedat(0, "alias x romdata 0 4"), "");
    iCurrentROM = -2;
    EXPECT_EQ(printed("alias x romdata 0 4"), "Invalid ROM\n");
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(Alias, RomDataIsTracedBeforeAnyCheck) {
    const std::string trace = "Create/update alias x from ROM 3 starting position 5 for 7 bytes\n";
    iLogLevel = 6;
    EXPECT_EQ(captured([] { aliasromdata(3, "x", 5, 7); }), trace + "Invalid ROM\n");
    iLogLevel = 5;
    EXPECT_EQ(captured([] { aliasromdata(3, "x", 5, 7); }), "Invalid ROM\n");
}

TEST_F(Alias, RomDataIsSetLikeAnyValue) {
    kick();
    iLogLevel = 6;
    EXPECT_EQ(captured([] { aliasromdata(0, "x", 1, 1); }),
              "Create/update alias x from ROM 0 starting position 1 for 1 bytes\n"
              "Search for existing alias x\nCreate new alias to 0x14\n");
}

TEST_F(Alias, RomDataRefusesNegativeAndTooLargeNumbers) {
    for (const char* range : {"-1 1", "0 -1", "99999999999 1", "0 99999999999"})
        EXPECT_TRUE(isoneerror(printed(std::string("alias x romdata ") + range))) << range;
    EXPECT_EQ(iAliasCnt(), 0);
}

TEST_F(Alias, FreeingTracesTheirNumber) {
    alias("x", "1");
    alias("y", "2");
    iLogLevel = 6;
    EXPECT_EQ(captured(freealiases), "Freeing 2 aliases\n");
    EXPECT_EQ(iAliasCnt(), 0);
    EXPECT_TRUE(pcAliasvalue.empty());
    iLogLevel = 5;
    EXPECT_EQ(captured(freealiases), "");
}

} // namespace vantorel::test
