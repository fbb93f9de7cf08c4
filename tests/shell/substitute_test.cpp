#include "shell/substitute.h"

#include "audit/audit.h"
#include "base/message.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/session.h"
#include "support/capture.h"
#include "support/checksums.h"
#include "support/rombuilder.h"

#include <cstdint>

// The CRCs of audited files were computed with Python's zlib.crc32.

namespace vantorel::test {

namespace {

constexpr const char* cNothingKnown = "No custom aliases found, no current ROM\n";

class Substitute : public ShellTest {
protected:
    // `line` with its references replaced; nothing may be printed.
    static std::string expanded(const std::string& line) {
        std::string result;
        EXPECT_EQ(captured([&] { result = parsealias(line.c_str()); }), "") << line;
        return result;
    }

    // The same for a line that also prints `text`.
    static std::string expandedsaying(const std::string& text, const std::string& line) {
        std::string result;
        EXPECT_EQ(captured([&] { result = parsealias(line.c_str()); }), text) << line;
        return result;
    }

    // What the substitution prints at verbosity `level`.
    static std::string traced(int32_t level, const std::string& line) {
        iLogLevel = level;
        std::string text = captured([&] { static_cast<void>(parsealias(line.c_str())); });
        iLogLevel = 1;
        return withoutpointers(text);
    }

    // A current ROM.
    static KickstartRom& kick() {
        iCurrentROM = newrom(64, 0);
        KickstartRom& slot = *findslot(iCurrentROM);
        slot.iROMBase = 0xF80000;
        return slot;
    }

    static void addcomponent(KickstartRom& slot, const std::string& name, int32_t start, int32_t end,
                             int32_t tag = -1) {
        Component component;
        component.pcName = name;
        component.pcType = cTypeLibrary;
        component.iFixedStart = start;
        component.iFixedEnd = end;
        component.iROMTag = tag;
        slot.psComponents.push_back(component);
    }
};

} // namespace

TEST_F(Substitute, ALineWithoutReferencesStaysAsItIs) {
    EXPECT_EQ(expanded("loadrom 'a b' 2"), "loadrom 'a b' 2");
    EXPECT_EQ(expanded(""), "");
}

TEST_F(Substitute, TwoDollarSignsAreOne) {
    EXPECT_EQ(expanded("$$"), "$");
    EXPECT_EQ(expanded("a$$b$$$$c"), "a$b$$c");
}

TEST_F(Substitute, BehindTwoDollarSignsNothingIsAReference) {
    alias("X", "value");
    EXPECT_EQ(expanded("$$X"), "$X");
    EXPECT_EQ(expanded("$$$X"), "$value");
}

TEST_F(Substitute, ADollarSignAtTheEndDisappears) {
    EXPECT_EQ(expandedsaying(cNothingKnown, "echo $"), "echo ");
    kick();
    EXPECT_EQ(expanded("echo $"), "echo ");
}

TEST_F(Substitute, AnAliasIsReplacedAnywhereInALine) {
    alias("X", "0x10");
    EXPECT_EQ(expanded("find $X 0x20"), "find 0x10 0x20");
    EXPECT_EQ(expanded("$X$X-a$X"), "0x100x10-a0x10");
    EXPECT_EQ(expanded("'$X'"), "'0x10'");
}

TEST_F(Substitute, AnAliasMatchesByItsOwnLength) {
    alias("A", "first");
    alias("AB", "second");
    EXPECT_EQ(expanded("$AB"), "firstB");
    EXPECT_EQ(expanded("$Alpha"), "firstlpha");
}

TEST_F(Substitute, TheAliasMadeFirstWins) {
    alias("AB", "second");
    alias("A", "first");
    EXPECT_EQ(expanded("$AB $AC"), "second firstC");
}

TEST_F(Substitute, AliasesHeedCase) {
    alias("Name", "value");
    EXPECT_EQ(expandedsaying(cNothingKnown, "$name"), "name");
}

TEST_F(Substitute, AValueIsNotExpandedAgain) {
    alias("X", "$Y");
    alias("Y", "value");
    EXPECT_EQ(expanded("$X"), "$Y");
}

TEST_F(Substitute, AValueCutDownToNothingReplacesItsReference) {
    alias("X", "abc");
    aliasmid("X", 4, 1);
    EXPECT_EQ(expanded("a$X.b"), "a.b");
}

TEST_F(Substitute, AnAliasComesBeforeFilesBuiltInNamesAndComponents) {
    addcomponent(kick(), "exec.library", 1, 2);
    alias("0xbb6f4ec5", "file");
    alias("ROMBASE", "base");
    alias("exec", "module");
    EXPECT_EQ(expanded("$0xbb6f4ec5 $ROMBASE $exec.library"), "file base module.library");
}

TEST_F(Substitute, TheLineIsTracedBeforeAndShownAfter) {
    alias("X", "12345");
    EXPECT_EQ(traced(6, "a $X b"),
              "Parsing [a $X b]\nrealloc(<ptr>,7);\nrealloc(<ptr>,11);\nParsed [a 12345 b]\n");
    EXPECT_EQ(traced(5, "a $X b"), "Parsed [a 12345 b]\n");
    EXPECT_EQ(traced(2, "a $X b"), "Parsed [a 12345 b]\n");
    EXPECT_EQ(traced(1, "a $X b"), "");
}

TEST_F(Substitute, EveryExpansionOfAnAliasResizesTheBuffer) {
    alias("SAME", "same");
    alias("SHRINKS", "1");
    EXPECT_EQ(traced(6, "$SAME"), "Parsing [$SAME]\nrealloc(<ptr>,6);\nrealloc(<ptr>,6);\nParsed [same]\n");
    EXPECT_EQ(traced(6, "$SHRINKS$SAME"),
              "Parsing [$SHRINKS$SAME]\nrealloc(<ptr>,14);\nrealloc(<ptr>,8);\nrealloc(<ptr>,8);\n"
              "Parsed [1same]\n");
}

TEST_F(Substitute, ALineWithoutExpansionsIsSizedOnce) {
    EXPECT_EQ(traced(6, "a$$b"), "Parsing [a$$b]\nrealloc(<ptr>,5);\nParsed [a$b]\n");
}

// Audited files

TEST_F(Substitute, AFileReferenceIsThePathOfTheFileWithThatCrc) {
    directory.file("tree/modules/exec", "exec");
    directory.file("tree/dos", "dos");
    auditfiles("tree");
    EXPECT_EQ(expanded("loadrom $0xbb6f4ec5 2"), "loadrom tree/modules/exec 2");
    EXPECT_EQ(expanded("$0x9BF6ED00"), "tree/dos");
}

TEST_F(Substitute, AFileReferenceNeedsNoRom) {
    directory.file("tree/exec", "exec");
    auditfiles("tree");
    EXPECT_EQ(expanded("$0xbb6f4ec5"), "tree/exec");
}

TEST_F(Substitute, OfEqualFilesTheFirstIsTaken) {
    directory.file("tree/b", "exec");
    directory.file("tree/c", "exec");
    directory.file("tree/a", "dos");
    auditfiles("tree");
    EXPECT_EQ(expanded("$0xbb6f4ec5"), "tree/b");
    EXPECT_NE(psAuditFilesFile[0].iCRC32, 0U);
    EXPECT_EQ(psAuditFilesFile[2].iCRC32, 0U) << "a file behind the match was read";
}

TEST_F(Substitute, AFileReferenceEndsAfterItsEightDigits) {
    directory.file("tree/exec", "exec");
    auditfiles("tree");
    EXPECT_EQ(expanded("$0xbb6f4ec55 $0xbb6f4ec5.bak"), "tree/exec5 tree/exec.bak");
}

TEST_F(Substitute, AFileReferenceThatFindsNothingDisappearsWhole) {
    directory.file("tree/exec", "exec");
    auditfiles("tree");
    EXPECT_EQ(expanded("loadrom $0x12345678 2"), "loadrom  2");
    EXPECT_EQ(expanded("$0x12345678$0xbb6f4ec5"), "tree/exec");
}

TEST_F(Substitute, OnlyEightTrueHexadecimalDigitsMakeAFileReference) {
    for (const char* reference : {"0x1234567", "0x1234567g", "0X12345678", "0x 2345678", "0x"})
        EXPECT_EQ(expandedsaying(cNothingKnown, std::string("$") + reference), reference);
}

TEST_F(Substitute, AFileThatCannotBeReadIsReportedAndPassedOver) {
    const std::string gone = directory.file("tree/a", "exec");
    directory.file("tree/b", "exec");
    auditfiles("tree");
    ASSERT_EQ(std::remove(gone.c_str()), 0);
    EXPECT_EQ(expandedsaying("ERROR: file tree/a failed to open\n", "$0xbb6f4ec5"), "tree/b");
}

TEST_F(Substitute, TheSearchForAFileIsTraced) {
    directory.file("tree/exec", "exec");
    auditfiles("tree");
    static_cast<void>(expanded("$0xbb6f4ec5")); // its CRC is computed and told now
    const std::string text = traced(6, "$0xBB6F4EC5");
    EXPECT_NE(text.find("\nSearch for file alias\nLook for Hash [0xbb6f4ec5]\nFound:tree\nFound:exec\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(traced(6, "$0x12345678"), "Parsing [$0x12345678]\nrealloc(<ptr>,12);\nSearch for file alias\n"
                                        "Look for Hash [0x12345678]\nParsed []\n");
    EXPECT_EQ(traced(5, "$0xbb6f4ec5"), "Parsed [tree/exec]\n");
}

// Built-in names

TEST_F(Substitute, WithoutARomABuiltInNameLosesItsDollarSign) {
    EXPECT_EQ(expandedsaying(cNothingKnown, "echo $ROMBASE"), "echo ROMBASE");
    EXPECT_EQ(traced(0, "$ROMBASE"), "");
}

TEST_F(Substitute, EveryReferenceWithoutARomIsReported) {
    EXPECT_EQ(expandedsaying(std::string(cNothingKnown) + cNothingKnown, "$a $b"), "a b");
}

TEST_F(Substitute, ACurrentNumberThatNamesNoSlotIsNoRom) {
    kick();
    for (const int32_t number : {1, 20, 2147483647, -1, -2}) {
        iCurrentROM = number;
        EXPECT_EQ(expandedsaying(cNothingKnown, "$ROMBASE"), "ROMBASE") << number;
    }
}

TEST_F(Substitute, RomBaseIsTheBaseOfTheCurrentRom) {
    kick();
    EXPECT_EQ(expanded("rombase $ROMBASE"), "rombase 0x00f80000");
}

TEST_F(Substitute, CalcChecksumIsTheChecksumThatTheImageShouldCarry) {
    RomBuilder builder = standardbuilder();
    const BuiltRom good = builder.build();
    KickstartRom& slot = kick();
    slot.pcROM = good.image;
    EXPECT_EQ(expanded("$CALCCHECKSUM"), hex32(kickstartsum(good.image)));
    slot.pcROM[5] ^= 0x40;
    const std::string computed = hex32(kickstartsum(slot.pcROM));
    ASSERT_NE(computed, hex32(kickstartsum(good.image)));
    EXPECT_EQ(expanded("$CALCCHECKSUM"), computed);
}

TEST_F(Substitute, KickstartVersionIsAlwaysTwelve) {
    kick();
    EXPECT_EQ(expanded("$(KICKSTARTVERSION)"), "0x0000000c");
}

TEST_F(Substitute, BuiltInNamesHeedCaseAndMatchAsPrefixes) {
    kick();
    EXPECT_EQ(expanded("$rombase"), "rombase");
    EXPECT_EQ(expanded("$ROMBASES"), "0x00f80000S");
    EXPECT_EQ(expanded("$KICKSTARTVERSION"), "KICKSTARTVERSION");
}

TEST_F(Substitute, OneReferenceRunsThroughTheBuiltInNamesInTheirOrder) {
    KickstartRom& slot = kick();
    slot.pcROM.assign(64, 0);
    const std::string sum = hex32(kickstartsum(slot.pcROM));
    EXPECT_EQ(expanded("$ROMBASECALCCHECKSUM"), "0x00f80000" + sum);
    EXPECT_EQ(expanded("$ROMBASECALCCHECKSUM(KICKSTARTVERSION)"), "0x00f80000" + sum + "0x0000000c");
    EXPECT_EQ(expanded("$ROMBASE(KICKSTARTVERSION)"), "0x00f800000x0000000c");
    EXPECT_EQ(expanded("$CALCCHECKSUMROMBASE"), sum + "ROMBASE");
}

TEST_F(Substitute, BehindABuiltInNameNoComponentIsLookedFor) {
    KickstartRom& slot = kick();
    addcomponent(slot, "ROMBASE", 1, 2);
    addcomponent(slot, "dos", 3, 4);
    EXPECT_EQ(expanded("$ROMBASEdos"), "0x00f80000dos");
}

// Components

TEST_F(Substitute, APlainComponentIsItsStartAndEndInDecimal) {
    addcomponent(kick(), "exec.library", 24, 12312, 184);
    EXPECT_EQ(expanded("find $exec.library 0x4e75"), "find 24 12312 0x4e75");
}

TEST_F(Substitute, ASuffixGivesABoundOrThePlaceOfARomTagField) {
    addcomponent(kick(), "exec.library", 24, 12312, 0x1000);
    const std::pair<const char*, const char*> values[] = {
        {".(START)", "0x00000018"},           {".(END)", "0x00003018"},
        {".(ROMTAG)", "0x00001000"},          {".(ROMTAG.MATCHTAG)", "0x00001002"},
        {".(ROMTAG.ENDSKIP)", "0x00001006"},  {".(ROMTAG.FLAGS)", "0x0000100a"},
        {".(ROMTAG.VERSION)", "0x0000100b"},  {".(ROMTAG.TYPE)", "0x0000100c"},
        {".(ROMTAG.PRI)", "0x0000100d"},      {".(ROMTAG.NAME)", "0x0000100e"},
        {".(ROMTAG.IDSTRING)", "0x00001012"}, {".(ROMTAG.INIT)", "0x00001016"}};
    for (const auto& [suffix, value] : values)
        EXPECT_EQ(expanded(std::string("$exec.library") + suffix + "!"), std::string(value) + "!");
}

TEST_F(Substitute, SuffixesAreKnownInAnyCaseAndNamesAreNot) {
    addcomponent(kick(), "exec.library", 24, 12312, 184);
    EXPECT_EQ(expanded("$exec.library.(romTag.Name)"), "0x000000c6");
    EXPECT_EQ(expanded("$Exec.library.(START)"), "Exec.library.(START)");
}

TEST_F(Substitute, WhatIsNoSuffixStaysBehindThePlainReference) {
    addcomponent(kick(), "exec", 24, 100, 184);
    EXPECT_EQ(expanded("$exec.(SIZE)"), "24 100.(SIZE)");
    EXPECT_EQ(expanded("$exec.(ROMTAG.)"), "24 100.(ROMTAG.)");
    EXPECT_EQ(expanded("$exec.(START"), "24 100.(START");
    EXPECT_EQ(expanded("$exec START"), "24 100 START");
}

TEST_F(Substitute, AnInferredBoundAndAMissingRomTagAreNegative) {
    addcomponent(kick(), "font", -1, -1);
    EXPECT_EQ(expanded("$font"), "-1 -1");
    EXPECT_EQ(expanded("$font.(START) $font.(ROMTAG) $font.(ROMTAG.NAME)"),
              "0xffffffff 0xffffffff 0x0000000d");
}

TEST_F(Substitute, TheSearchGoesOnBehindAMatch) {
    KickstartRom& slot = kick();
    addcomponent(slot, "a", 1, 2);
    addcomponent(slot, "b", 3, 4);
    EXPECT_EQ(expanded("$ab"), "1 23 4");
    EXPECT_EQ(expanded("$a.(END)b.(START)"), "0x000000020x00000003");
    EXPECT_EQ(expanded("$ba"), "3 4a");
    EXPECT_EQ(expanded("$a b"), "1 2 b");
}

TEST_F(Substitute, TheFirstComponentOfANameIsTaken) {
    KickstartRom& slot = kick();
    addcomponent(slot, "x", 1, 2);
    addcomponent(slot, "x", 3, 4);
    EXPECT_EQ(expanded("$x"), "1 2");
    EXPECT_EQ(expanded("$xx"), "1 23 4");
}

TEST_F(Substitute, ABlankComponentIsPassedOver) {
    KickstartRom& slot = kick();
    slot.psComponents.emplace_back();
    addcomponent(slot, "exec", 1, 2);
    EXPECT_EQ(expanded("$exec"), "1 2");
}

TEST_F(Substitute, AComponentOfAnotherRomIsNone) {
    addcomponent(kick(), "exec", 1, 2);
    kick();
    EXPECT_EQ(expanded("$exec"), "exec");
}

TEST_F(Substitute, AReferenceLongerThanItsNameComesWhole) {
    const int32_t least = INT32_MIN;
    addcomponent(kick(), "x", least, least);
    std::string line;
    std::string wanted;
    for (int i = 0; i < 50; ++i) {
        line += "$x";
        wanted += "-2147483648 -2147483648";
    }
    EXPECT_EQ(expanded(line), wanted);
}

TEST_F(Substitute, BuiltInNamesAndComponentsResizeTheBufferToo) {
    addcomponent(kick(), "x", 24, 100);
    EXPECT_EQ(traced(6, "$x"), "Parsing [$x]\nrealloc(<ptr>,3);\nrealloc(<ptr>,8);\nParsed [24 100]\n");
    EXPECT_EQ(traced(6, "$ROMBASE"),
              "Parsing [$ROMBASE]\nrealloc(<ptr>,9);\nrealloc(<ptr>,12);\nParsed [0x00f80000]\n");
}

TEST_F(Substitute, AnUnknownReferenceLosesOnlyItsDollarSign) {
    kick();
    EXPECT_EQ(expanded("a$unknown.(START) b"), "aunknown.(START) b");
    EXPECT_EQ(expanded("$ x"), " x");
}

} // namespace vantorel::test
