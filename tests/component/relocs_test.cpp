// Relocation lists in hash files.

#include "component/relocs.h"
#include "rom/romtest.h"

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

TEST(RelocSection, HowManyLinesThereAreAndWhereIsToldAsProgress) {
    const std::string text = "[Description]\nSize=8\n[RELOC32]\nRELOC=4\n\n[Display]\n";
    const IniFile ini = parseini({text.begin(), text.end()});
    const Action tell = [&] { tellrelocs(ini, 1); };
    EXPECT_EQ(at(2, tell), "Relocs=2 in section 1 starts at line=3\n");
    EXPECT_EQ(at(1, tell), "");
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

// Lists of hash files that are found by name in the library.
class LoadRelocsTest : public RomTest {
protected:
    // A hash file of this name with these lines in [RELOC32], known to the program.
    void write(const std::string& name, const std::string& lines) const {
        hashes.write(name, "[Description]\nTitle=x\nSize=99\n\n[RELOC32]\n" + lines);
        index();
    }
};

using Relocs = std::vector<int32_t>;

TEST_F(LoadRelocsTest, TheListIsThatOfTheFileFound) {
    write("0x12345678.exec_40.10", "RELOC=12        \nRELOC=4         \n");
    EXPECT_EQ(loadrelocs("0x12345678.exec_40.10"), (Relocs{12, 4}));
    EXPECT_EQ(loadrelocs("0x12345678"), (Relocs{12, 4})) << "the first name that begins so";
    EXPECT_EQ(loadrelocs("0X12345678.EXEC"), Relocs{}) << "another bucket of the index";
    EXPECT_EQ(loadrelocs("0x12345678.EXEC"), (Relocs{12, 4}));
}

TEST_F(LoadRelocsTest, WithoutAFileThereAreNone) {
    EXPECT_EQ(loadrelocs("0x12345678"), Relocs{}) << "nothing is indexed";
    write("0x12345678", "RELOC=4\n");
    EXPECT_EQ(loadrelocs("0x12345679"), Relocs{});
    EXPECT_EQ(loadrelocs(std::nullopt), Relocs{});
    EXPECT_FALSE(has(at(10, [] { static_cast<void>(loadrelocs("0x87654321")); }), "Loading relocs"));
}

TEST_F(LoadRelocsTest, WithoutTheSectionThereAreNone) {
    hashes.write("0x12345678", "[Description]\nTitle=x\nRELOC=4\n");
    index();
    EXPECT_EQ(loadrelocs("0x12345678"), Relocs{});
}

TEST_F(LoadRelocsTest, AFileThatWentAwayHasNone) {
    write("0x12345678", "RELOC=4\n");
    ASSERT_EQ(std::remove(dir.file("hashes/0x12345678").c_str()), 0);
    EXPECT_EQ(loadrelocs("0x12345678"), Relocs{});
}

TEST_F(LoadRelocsTest, LinesTooShortForANumberArePassedOverInSilence) {
    write("0x12345678", "RELOC=4\n\nRELOC=\nRELOC\nRELOC=8\n");
    EXPECT_EQ(loadrelocs("0x12345678"), (Relocs{4, 8}));
    EXPECT_EQ(at(1, [] { static_cast<void>(loadrelocs("0x12345678")); }), "");
}

TEST_F(LoadRelocsTest, TracesHaveTheirThresholds) {
    const Action load = [] { static_cast<void>(loadrelocs("0x12345678")); };
    const Action prepare = [this] { write("0x12345678", "RELOC=12\nRELOC=4\n"); };
    expectthresholds(prepare, load,
                     {{5, "Loading relocs\n"},
                      {5, "Section size=2\n"},
                      {5, "RELOC #0 position 12"},
                      {5, "RELOC #1 position 4"},
                      {9, "Allocating 2 ints\n"}});
}

} // namespace
} // namespace vantorel::test
