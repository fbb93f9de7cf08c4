#include "hash/ini.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace vantorel::test {

namespace {

using namespace std::string_view_literals;

IniFile parsed(std::string_view text) { return parseini({text.begin(), text.end()}); }

std::vector<std::string> lines(const IniFile& ini) {
    std::vector<std::string> texts;
    texts.reserve(ini.ipLines.size());
    for (int32_t number = 0; number < ini.iLines(); ++number)
        texts.emplace_back(ini.line(number));
    return texts;
}

std::vector<std::string> lines(const IniFile& ini, int32_t section) {
    std::vector<std::string> texts;
    for (const char* const line : ini.lines(section))
        texts.emplace_back(line);
    return texts;
}

using Texts = std::vector<std::string>;
using Numbers = std::vector<int32_t>;

} // namespace

TEST(Ini, AnEmptyFileIsOneLineAndNoSections) {
    const IniFile ini = parsed("");
    EXPECT_EQ(lines(ini), Texts{""});
    EXPECT_EQ(ini.iSections(), 0);
    EXPECT_EQ(readinisection(ini, "Description"), -1);
    EXPECT_EQ(readinisection(ini, ""), -1);
    EXPECT_EQ(readiniitem(ini, "Description", "Title"), nullptr);
    EXPECT_EQ(readiniitem(ini, "", ""), nullptr);
}

TEST(Ini, AFileWithoutAFinalLineFeedYieldsItsLastLine) {
    const IniFile ini = parsed("[Description]\nSize=1\nTitle=Kick");
    EXPECT_EQ(ini.iLines(), 3);
    EXPECT_STREQ(readiniitem(ini, "Description", "Title"), "Kick");
    EXPECT_EQ(ini.ipItems, Numbers{2});
}

TEST(Ini, AFinalLineFeedBeginsNoFurtherLine) {
    EXPECT_EQ(lines(parsed("a=1\n")), Texts{"a=1"});
    EXPECT_EQ(lines(parsed("\n")), Texts{""});
    EXPECT_EQ(lines(parsed("\n\n")), (Texts{"", ""}));
}

TEST(Ini, SectionsAndKeysDisregardCase) {
    const IniFile ini = parsed("[Description]\ntitle=Kick\n");
    EXPECT_STREQ(readiniitem(ini, "description", "Title"), "Kick");
    EXPECT_EQ(readinisection(ini, "DESCRIPTION"), 0);
}

TEST(Ini, ASectionThatEndsTheFileHasNoItems) {
    EXPECT_EQ(parsed("[Last]\n").ipItems, Numbers{0});
    EXPECT_EQ(parsed("[Last]").ipItems, Numbers{0});
}

TEST(Ini, ABlankLineAfterAHeadIsAnItem) { EXPECT_EQ(parsed("[Last]\n\n").ipItems, Numbers{1}); }

TEST(Ini, CarriageReturnsMakeNoDifference) {
    const std::string plain = "[Description]\nTitle=Kick\n\n[Components]\nExec=1,2\n";
    std::string dos;
    for (const char c : plain)
        dos += c == '\n' ? "\r\n" : std::string(1, c);
    const IniFile a = parsed(plain);
    const IniFile b = parsed(dos);
    EXPECT_EQ(lines(a), lines(b));
    EXPECT_EQ(a.ipSections, b.ipSections);
    EXPECT_EQ(a.ipItems, b.ipItems);
    EXPECT_STREQ(readiniitem(b, "Components", "Exec"), "1,2");
}

TEST(Ini, ACarriageReturnInsideALineCutsIt) {
    const IniFile ini = parsed("[A]\nkey=val\rue\n[B\rC]\nx=1\n");
    EXPECT_STREQ(readiniitem(ini, "A", "key"), "val");
    EXPECT_STREQ(readiniitem(ini, "B", "x"), "1");
}

TEST(Ini, SectionsRememberTheirHeadsAndItemCounts) {
    const IniFile ini = parsed("before=1\n[A]\na=1\n; no comment\n\n[B]\n[C]\nc=1");
    EXPECT_EQ(ini.ipSections, (Numbers{1, 5, 6}));
    EXPECT_EQ(ini.ipItems, (Numbers{3, 0, 1}));
    EXPECT_EQ(ini.firstline(0), 2);
    EXPECT_STREQ(ini.head(1), "B");
    EXPECT_EQ(lines(ini), (Texts{"before=1", "A", "a=1", "; no comment", "", "B", "C", "c=1"}));
}

TEST(IniLines, ASectionHasItsOwnLinesInTheirOrder) {
    const IniFile ini = parsed("before=1\n[A]\na=1\n\na=2\n[B]\n[C]\nc=1");
    EXPECT_EQ(lines(ini, 0), (Texts{"a=1", "", "a=2"}));
    EXPECT_EQ(lines(ini, 1), Texts{});
    EXPECT_EQ(lines(ini, 2), Texts{"c=1"});
    EXPECT_EQ(ini.lines(0).size(), 3);
    EXPECT_EQ(ini.lines(1).size(), 0);
}

TEST(IniLines, TheLastSectionMayBeEmpty) { EXPECT_EQ(lines(parsed("[A]\na=1\n[B]"), 1), Texts{}); }

TEST(Ini, LineOffsetsOfHeadsStandBehindTheBracket) {
    const IniFile ini = parsed("a\n[B]\nc\n");
    EXPECT_EQ(ini.ipLines, (Numbers{0, 3, 6}));
}

TEST(Ini, TheBufferIsOneByteLongerThanTheFile) {
    EXPECT_EQ(parsed("").pcBuffer.size(), 1U);
    EXPECT_EQ(parsed("a=1").pcBuffer.size(), 4U);
}

TEST(Ini, AHeadWithoutAClosingBracketIsStillAHead) {
    EXPECT_STREQ(readiniitem(parsed("[Open\nkey=1\n"), "Open", "key"), "1");
    EXPECT_EQ(readinisection(parsed("[Open"), "Open"), 0);
}

TEST(Ini, TextBehindTheClosingBracketIsIgnored) {
    EXPECT_STREQ(readiniitem(parsed("[A] rest=1]\nkey=1\n"), "A", "key"), "1");
    EXPECT_EQ(readiniitem(parsed("[A]key=1\n"), "A", "key"), nullptr);
}

TEST(Ini, ABracketOnTheNextLineDoesNotCloseAHead) {
    const IniFile ini = parsed("[A\nkey=1]2\n");
    EXPECT_EQ(readinisection(ini, "A"), 0);
    EXPECT_STREQ(readiniitem(ini, "A", "key"), "1]2");
}

TEST(Ini, BlanksInsideTheBracketsBelongToTheName) {
    const IniFile ini = parsed("[ A ]\nkey=1\n");
    EXPECT_EQ(readinisection(ini, "A"), -1);
    EXPECT_EQ(readinisection(ini, " a "), 0);
}

TEST(Ini, ABlankBeforeTheBracketMakesNoHead) { EXPECT_EQ(parsed(" [A]\n").iSections(), 0); }

TEST(Ini, AnEmptyNameIsAName) {
    EXPECT_STREQ(readiniitem(parsed("[]\nkey=1\n"), "", "key"), "1");
    EXPECT_EQ(readinisection(parsed("["), ""), 0);
}

TEST(Ini, BlanksAroundKeyAndValueAreNotTrimmed) {
    const IniFile ini = parsed("[A]\nTitle = X\nText= Y \n");
    EXPECT_EQ(readiniitem(ini, "A", "Title"), nullptr);
    EXPECT_STREQ(readiniitem(ini, "A", "Title "), " X");
    EXPECT_STREQ(readiniitem(ini, "A", "Text"), " Y ");
}

TEST(Ini, ALongerKeyDoesNotMatch) {
    const IniFile ini = parsed("[A]\nSizeX=1\nRELOC=12\n");
    EXPECT_EQ(readiniitem(ini, "A", "Size"), nullptr);
    EXPECT_STREQ(readiniitem(ini, "A", "RELOC"), "12");
    EXPECT_EQ(readiniitem(ini, "A", "RELOCS"), nullptr);
}

TEST(Ini, AnEmptyValueIsNotAMissingOne) { EXPECT_STREQ(readiniitem(parsed("[A]\nkey=\n"), "A", "key"), ""); }

TEST(Ini, AValueMayHoldEqualsSigns) {
    const IniFile ini = parsed("[A]\nkey=a=b\n");
    EXPECT_STREQ(readiniitem(ini, "A", "key"), "a=b");
    EXPECT_STREQ(readiniitem(ini, "A", "key=a"), "b");
}

TEST(Ini, AnEmptyKeyMatchesALineThatStartsWithAnEqualsSign) {
    EXPECT_STREQ(readiniitem(parsed("[A]\nx=1\n=2\n"), "A", ""), "2");
}

TEST(Ini, TheFirstOfDuplicateKeysWins) {
    EXPECT_STREQ(readiniitem(parsed("[A]\nkey=1\nKEY=2\n"), "A", "key"), "1");
}

TEST(Ini, OnlyTheFirstOfDuplicateSectionsIsSearched) {
    const IniFile ini = parsed("[A]\nx=1\n[a]\ny=2\n");
    EXPECT_EQ(readinisection(ini, "a"), 0);
    EXPECT_STREQ(readiniitem(ini, "a", "x"), "1");
    EXPECT_EQ(readiniitem(ini, "a", "y"), nullptr);
}

TEST(Ini, LinesBeforeTheFirstHeadCannotBeLookedUp) {
    const IniFile ini = parsed("key=1\n[A]\n");
    EXPECT_EQ(readiniitem(ini, "A", "key"), nullptr);
    EXPECT_EQ(readiniitem(ini, "", "key"), nullptr);
}

TEST(Ini, AKeyIsNotLookedForInTheNextSection) {
    EXPECT_EQ(readiniitem(parsed("[A]\nx=1\n[B]\nkey=1\n"), "A", "key"), nullptr);
}

TEST(Ini, CommentSignsHaveNoMeaning) {
    EXPECT_STREQ(readiniitem(parsed("[A]\n;key=1\n#key=2\n"), "A", ";key"), "1");
}

TEST(Ini, ANulEndsALinesTextButNotTheLine) {
    const IniFile ini = parsed("[A]\nkey=1\0hidden\nnext=2\n[B\0C]\nb=3\n"sv);
    EXPECT_STREQ(readiniitem(ini, "A", "key"), "1");
    EXPECT_STREQ(readiniitem(ini, "A", "next"), "2");
    EXPECT_STREQ(readiniitem(ini, "B", "b"), "3");
}

TEST(Ini, AKeyLongerThanTheLastLineStaysInside) {
    const std::string key(1000, 'k');
    EXPECT_EQ(readiniitem(parsed("[A]\nkkk"), "A", key.c_str()), nullptr);
}

TEST(Ini, ALineOfEveryByteIsReturnedAsWritten) {
    std::string value;
    for (int c = 1; c < 256; ++c)
        if (c != '\n' && c != '\r') value += static_cast<char>(c);
    EXPECT_EQ(readiniitem(parsed("[A]\nkey=" + value + "\n"), "A", "key"), value);
}

TEST(Ini, ManyLinesAreIndexed) {
    std::string text = "[A]\n";
    for (int i = 0; i < 20000; ++i)
        text += "k" + std::to_string(i) + "=" + std::to_string(i * 3) + "\n";
    const IniFile ini = parsed(text);
    EXPECT_EQ(ini.ipItems, Numbers{20000});
    EXPECT_STREQ(readiniitem(ini, "A", "k19999"), "59997");
}

TEST(LoadIni, AFileIsLoaded) {
    const TempDir directory;
    const auto ini = loadinifile(directory.file("0x12345678", "[Description]\nTitle=Kick"));
    ASSERT_TRUE(ini);
    EXPECT_STREQ(readiniitem(*ini, "Description", "Title"), "Kick");
}

TEST(LoadIni, TheTextsOutliveAMoveOfTheRecord) {
    IniFile ini = parsed("[A]\nkey=value\n");
    const char* value = readiniitem(ini, "A", "key");
    const IniFile moved = std::move(ini);
    EXPECT_EQ(readiniitem(moved, "A", "key"), value);
    EXPECT_STREQ(value, "value");
}

TEST(LoadIni, AnEmptyFileLoads) {
    const TempDir directory;
    const auto ini = loadinifile(directory.file("empty", ""));
    ASSERT_TRUE(ini);
    EXPECT_EQ(ini->iLines(), 1);
}

TEST(LoadIni, WhatCannotBeOpenedIsNone) {
    const TempDir directory;
    EXPECT_FALSE(loadinifile(directory.file("missing")));
    EXPECT_FALSE(loadinifile(directory.path()));
    EXPECT_FALSE(loadinifile(""));
}

TEST(LoadIni, AFileOfFourGigabytesIsNone) {
    const TempDir directory;
    const std::string path = directory.file("huge", "[A]\n");
    std::filesystem::resize_file(path, 4ULL * 1024 * 1024 * 1024);
    EXPECT_FALSE(loadinifile(path));
}

TEST(LoadIni, OfAFileThatEndsEarlyWhatArrivedIsIndexed) {
    const auto ini = loadinifile("/sys/kernel/mm/transparent_hugepage/enabled");
    if (!ini) GTEST_SKIP() << "no such file here";
    EXPECT_EQ(ini->iLines(), 1);
    EXPECT_NE(std::strstr(ini->line(0), "never"), nullptr);
}

} // namespace vantorel::test
