// Relocation lists in hash files.

#include "component/relocs.h"

#include <gtest/gtest.h>
#include <string_view>

namespace vantorel::test {
namespace {

std::vector<int32_t> relocsof(std::string_view lines) {
    const std::string text = "[Description]\nSize=8\n[RELOC32]\n" + std::string(lines);
    const IniFile ini = parseini({text.begin(), text.end()});
    return relocsofsection(ini, readinisection(ini, cRelocSection));
}

TEST(RelocSection, TheNumberStandsBehindSixCharacters) {
    EXPECT_EQ(relocsof("RELOC=12        \nRELOC=4\n"), (std::vector<int32_t>{12, 4}));
    EXPECT_EQ(relocsof("reloc:7\nxxxxxx 8\n"), (std::vector<int32_t>{7, 8})) << "whatever they are";
}

TEST(RelocSection, OrderAndRepetitionAreKept) {
    EXPECT_EQ(relocsof("RELOC=12\nRELOC=4\nRELOC=12\n"), (std::vector<int32_t>{12, 4, 12}));
}

TEST(RelocSection, LinesTooShortForANumberArePassedOver) {
    EXPECT_EQ(relocsof("\nRELOC=\nRELOC\nRELOC=5\nx\n\n"), std::vector<int32_t>{5});
}

TEST(RelocSection, WhatIsNoNumberIsZero) { EXPECT_EQ(relocsof("RELOC=x\n"), std::vector<int32_t>{0}); }

TEST(RelocSection, AnEmptySectionHasNone) { EXPECT_EQ(relocsof(""), std::vector<int32_t>{}); }

TEST(RelocSection, TheListEndsWithTheSection) {
    EXPECT_EQ(relocsof("RELOC=4\n[Display]\nRELOC=8\n"), std::vector<int32_t>{4});
}

TEST(RelocSection, HugeNumbersStayOutsideEveryComponent) {
    EXPECT_EQ(relocsof("RELOC=99999999999\nRELOC=-99999999999\nRELOC=-4\n"),
              (std::vector<int32_t>{2147483647, -2147483647 - 1, -4}));
}

} // namespace
} // namespace vantorel::test
