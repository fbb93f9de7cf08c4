// The listing of a walk, character for character.

#include "missassembler/listing.h"

#include "missassembler/walktest.h"

#include <sys/stat.h>

namespace vantorel::test {
namespace {

// A component of given bytes of which given places are code, listed on the console and in a file.
class WalkListingTest : public WalkTest {
protected:
    struct Place {
        int32_t offset;
        int32_t length;
    };

    // Lists at verbosity `level`; the console and the file are in `console` and `file`.
    void list(const std::vector<Place>& code, int32_t level = 0) {
        const InDirectory there(dir);
        Walk walk = startwalk(0, 1);
        for (const Place& place : code)
            markcode(walk, place.offset, place.length);
        ListingFile listing;
        console = at(level, [&] {
            listwalk(walk, listing);
            listing.close();
        });
        file = dir.text(cListingFile);
    }

    // Lists a component without code, whose first record is of this type.
    std::string data(const Bytes& bytes, char type, int32_t repeat, const std::string& text = ";data") {
        silently([] { freeroms(); });
        silently(freemissassembler);
        makecomponent(bytes);
        silently([&] { addmisslabel(text, 0, type, repeat); });
        list({});
        EXPECT_EQ(file, console);
        return console;
    }

    std::string console;
    std::string file;
};

// `lines` and the totals of a component without code.
std::string withtotal(const std::string& lines, int32_t size) {
    const std::string bytes = std::to_string(size);
    return lines + "Scanned " + bytes + " bytes, 0 code " + bytes + " data\n";
}

// ------------------------------------------------------------------------------------------------ code

TEST_F(WalkListingTest, CodeWithoutRecords) {
    makecomponent(words({0x4EB9, 0x00F8, 0x0123, 0x7005, 0x4E75}));
    list({{0, 10}});
    EXPECT_EQ(console, "F80040 JSR F80123\nF80046 MOVEQ #$5,D0\nF80048 RTS\n"
                       "Scanned 10 bytes, 10 code 0 data\n");
    EXPECT_EQ(file, console);
}

TEST_F(WalkListingTest, ALabelHasABlankBeforeItInTheFileAlone) {
    makecomponent(words({0x4E71, 0x4E75}));
    silently([] { addmisslabel("Restart", 2, MissType::cNone, 1); });
    list({{0, 4}});
    EXPECT_EQ(console, "F80040 NOP\nRestart\nF80042 RTS\nScanned 4 bytes, 4 code 0 data\n");
    EXPECT_EQ(file, "F80040 NOP\n Restart\nF80042 RTS\nScanned 4 bytes, 4 code 0 data\n");
}

TEST_F(WalkListingTest, ACommentStandsBehindTwentyFourColumns) {
    makecomponent(words({0x4E90, 0x4E75}));
    silently([] { addmisslabel("; through A0", 0, MissType::cNone, 1); });
    list({{0, 4}});
    EXPECT_EQ(console, "F80040 JSR (A0)                 ; through A0\nF80042 RTS\n"
                       "Scanned 4 bytes, 4 code 0 data\n");
    EXPECT_EQ(file, console);
}

TEST_F(WalkListingTest, ALongInstructionMovesItsComment) {
    installtable("[mnemonics]\n0000000000000000=TWENTYTHREE CHARACTERS.\n"
                 "0000000000000001=TWENTYFOUR CHARACTERS...\n0000000000000010=AND TWENTYFIVE CHARACTERS\n");
    makecomponent(words({0, 1, 2}));
    for (const int32_t offset : {0, 2, 4})
        silently([offset] { addmisslabel(";", offset, MissType::cNone, 1); });
    list({{0, 6}});
    EXPECT_EQ(console, "F80040 TWENTYTHREE CHARACTERS.  ;\n"
                       "F80042 TWENTYFOUR CHARACTERS... ;\n"
                       "F80044 AND TWENTYFIVE CHARACTERS ;\n"
                       "Scanned 6 bytes, 6 code 0 data\n");
}

TEST_F(WalkListingTest, LabelAndCommentAtOnePlace) {
    makecomponent(words({0x4E90}));
    silently([] {
        addmisslabel("Here", 0, MissType::cNone, 1);
        addmisslabel("; and there", 0, MissType::cNone, 1);
    });
    list({{0, 2}});
    EXPECT_EQ(console, "Here\nF80040 JSR (A0)                 ; and there\n"
                       "Scanned 2 bytes, 2 code 0 data\n");
}

TEST_F(WalkListingTest, OfTwoRecordsAtOnePlaceTheLaterIsListed) {
    makecomponent(words({0x4E90}));
    silently([] {
        for (const char* text : {"First", "; first", "Second", "; second"})
            addmisslabel(text, 0, MissType::cNone, 1);
    });
    list({{0, 2}}, 2);
    EXPECT_EQ(console, "There are 4 labels\nSecond\nF80040 JSR (A0)                 ; second\n"
                       "Scanned 2 bytes, 2 code 0 data\n");
}

TEST_F(WalkListingTest, ATypedLabelIsLabelAndCommentOfCode) {
    makecomponent(words({0x4E75}));
    silently([] { addmisslabel("Name", 0, MissType::cText, 1); });
    list({{0, 2}});
    EXPECT_EQ(console, "Name\nF80040 RTS                      Name\nScanned 2 bytes, 2 code 0 data\n");
}

TEST_F(WalkListingTest, AnInstructionThatRunsOverTheEndCountsWhole) {
    makecomponent(words({0x4E71, 0x4EB9}));
    list({{0, 8}});
    // The two words behind the component are 0xEEEE.
    EXPECT_EQ(console, "F80040 NOP\nF80042 JSR EEEEEEEE\nScanned 8 bytes, 8 code 0 data\n");
}

TEST_F(WalkListingTest, AnInstructionHidesRecordsInsideIt) {
    makecomponent(words({0x4EB9, 0, 0x1234, 0x4E75}));
    silently([] {
        addmisslabel("Hidden", 2, MissType::cNone, 1);
        addmisslabel("; hidden", 4, MissType::cWord, 1);
    });
    list({{0, 8}});
    EXPECT_EQ(console, "F80040 JSR 1234\nF80046 RTS\nScanned 8 bytes, 8 code 0 data\n");
}

// ------------------------------------------------------------------------------------------------ rows

TEST_F(WalkListingTest, RowsOfSixteenBytes) {
    Bytes bytes;
    for (uint8_t byte = 0x1A; byte < 0x2B; ++byte)
        bytes.push_back(byte);
    makecomponent(bytes);
    list({});
    EXPECT_EQ(console, "F80040 1A 1B 1C 1D 1E 1F 20 21 22 23 24 25 26 27 28 29    ...... !\"#$%&'()\n"
                       "F80050 2A                                                 *\n"
                       "Scanned 17 bytes, 0 code 17 data\n");
    EXPECT_EQ(file, console);
}

TEST_F(WalkListingTest, WhichBytesAreCharacters) {
    makecomponent({31, 32, 126, 127, 128, 255, 0, 10});
    list({});
    EXPECT_EQ(console, withtotal("F80040 1F 20 7E 7F 80 FF 00 0A                            . ~.....\n", 8));
}

TEST_F(WalkListingTest, ARowEndsBeforeCodeAndComments) {
    Bytes bytes = words({0x4142, 0x4E75, 0x4344, 0x4546, 0x0007, 0x4748});
    makecomponent(bytes);
    silently([] {
        addmisslabel(";seven", 8, MissType::cWord, 1);
        addmisslabel("no comment, no end", 5, MissType::cNone, 1);
    });
    list({{2, 2}});
    EXPECT_EQ(console, hexrow("F80040 41 42", "AB") + "F80042 RTS\n" + hexrow("F80044 43 44 45 46", "CDEF") +
                           "F80048  0x0007 ;seven\n" + hexrow("F8004A 47 48", "GH") +
                           "Scanned 12 bytes, 2 code 10 data\n");
    EXPECT_EQ(file, console);
}

TEST_F(WalkListingTest, AnEntryThatWasNeverFollowedIsData) {
    makecomponent(words({0x4E75, 0x4142}));
    const InDirectory there(dir);
    Walk walk = startwalk(0, 1);
    markcode(walk, 0, 2);
    EXPECT_TRUE(markentry(walk, 3));
    ListingFile listing;
    EXPECT_EQ(at(0, [&] { listwalk(walk, listing); }),
              "F80040 RTS\n" + hexrow("F80042 41 42", "AB") + "Scanned 4 bytes, 2 code 2 data\n");
}

// ------------------------------------------------------------------------------------------------ data

TEST_F(WalkListingTest, Addresses) {
    Bytes bytes(16);
    setlongs(bytes, 0, {0x00F80012, 0, 0x12345678, 0x1F});
    EXPECT_EQ(data(bytes, 'A', 4), withtotal("F80040  0xF80012 0x00000000 0x12345678 0x00001F ;data\n", 16));
}

TEST_F(WalkListingTest, Longs) {
    Bytes bytes(12);
    setlongs(bytes, 0, {0x00F80012, 0, 0xFFFFFFFF});
    EXPECT_EQ(data(bytes, 'L', 3), withtotal("F80040  0x00F80012 0x00000000 0xFFFFFFFF ;data\n", 12));
}

TEST_F(WalkListingTest, Words) {
    EXPECT_EQ(data(words({0x4AFC, 0, 7}), 'W', 3), withtotal("F80040  0x4AFC 0x0000 0x0007 ;data\n", 6));
}

TEST_F(WalkListingTest, AByteIsAlwaysOne) {
    EXPECT_EQ(data({0x0B}, 'B', 1), withtotal("F80040  0x0B ;data\n", 1));
    EXPECT_EQ(data({0}, 'B', 1), withtotal("F80040  0x00 ;data\n", 1));
    EXPECT_EQ(data({0xA0, 0x41}, 'B', 2), withtotal("F80040  0xA0 ;data\n" + hexrow("F80041 41", "A"), 2));
}

TEST_F(WalkListingTest, OneItemWhereTheRepeatIsBelowOne) {
    for (const int32_t repeat : {1, 0, -1, -2147483647})
        EXPECT_EQ(data(words({7, 0x4142}), 'W', repeat),
                  withtotal("F80040  0x0007 ;data\n" + hexrow("F80042 41 42", "AB"), 4));
}

TEST_F(WalkListingTest, WhatFollowsTheItemsIsListedFromThere) {
    EXPECT_EQ(data(words({7, 8, 0x4142}), 'W', 2),
              withtotal("F80040  0x0007 0x0008 ;data\n" + hexrow("F80044 41 42", "AB"), 6));
}

Bytes bytesof(std::string_view text) { return {text.begin(), text.end()}; }

TEST_F(WalkListingTest, Texts) {
    EXPECT_EQ(data(bytesof(std::string_view("exec 1.0\r\n\0AB", 13)), 'T', 1, "RT_IDSTRING"),
              withtotal("F80040 \"exec 1.0\\r\\n\\0\" RT_IDSTRING\n" + hexrow("F8004B 41 42", "AB"), 13));
    EXPECT_EQ(data(Bytes{0}, 'T', 1), withtotal("F80040 \"\\0\" ;data\n", 1));
    EXPECT_EQ(data(bytesof("say \"it\" \xE9"), 'T', 7), withtotal("F80040 \"say \"it\" \xE9\" ;data\n", 10));
}

TEST_F(WalkListingTest, ATextWithoutANulEndsWithTheComponent) {
    EXPECT_EQ(data(bytesof("open"), 'T', 1), withtotal("F80040 \"open\" ;data\n", 4));
}

TEST_F(WalkListingTest, ItemsBehindTheComponentAreNotListed) {
    EXPECT_EQ(data(words({1, 2, 3}), 'W', 100000), withtotal("F80040  0x0001 0x0002 0x0003 ;data\n", 6));
    EXPECT_EQ(data(words({0, 1, 0, 2}), 'L', 2147483647),
              withtotal("F80040  0x00000001 0x00000002 ;data\n", 8));
}

TEST_F(WalkListingTest, AnItemThatTheComponentsEndCutsThrough) {
    // The last long begins in it; its other half is 0xEEEE.
    const std::string text = data(words({0, 1, 2}), 'L', 5);
    EXPECT_EQ(text.substr(0, text.find('\n') + 1), "F80040  0x00000001 0x0002EEEE ;data\n");
}

TEST_F(WalkListingTest, AnItemThatTheImagesEndCutsThrough) {
    makecomponent(words({0, 1, 2}));
    slotat(0).pcROM.resize(cWalkStart + 6);
    silently([] { addmisslabel(";data", 0, MissType::cLong, 2); });
    list({});
    EXPECT_TRUE(console.starts_with("F80040  0x00000001 0x00020000 ;data\n")) << console;
}

TEST_F(WalkListingTest, ACommentThatSaysNothingOfItsBytes) {
    const std::string rows =
        hexrow("F80040 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", "................") +
        hexrow("F80050 10 41", ".A");
    Bytes bytes;
    for (uint8_t byte = 0; byte <= 16; ++byte)
        bytes.push_back(byte);
    bytes.push_back('A');
    const std::string listed = data(bytes, MissType::cNone, 1, "; a table");
    EXPECT_EQ(listed.substr(listed.find('\n') + 1), withtotal(rows, 18));
    EXPECT_TRUE(listed.starts_with("F80040 ")) << listed;
    EXPECT_TRUE(has(listed.substr(0, listed.find('\n') + 1), " ; a table\n")) << listed;
}

TEST_F(WalkListingTest, AnUnknownTypeSaysNothingEither) {
    const std::string listed = data(words({0x4142}), 'x', 9, "not a comment");
    EXPECT_TRUE(listed.starts_with("F80040 ")) << listed;
    EXPECT_TRUE(has(listed, " not a comment\n" + hexrow("F80040 41 42", "AB"))) << listed;
}

TEST_F(WalkListingTest, AnEmptyTextBehindData) {
    EXPECT_EQ(data(words({7}), 'W', 1, ""), withtotal("F80040  0x0007 \n", 2));
}

TEST_F(WalkListingTest, OfTwoFormatsAtOnePlaceTheLaterIsListed) {
    makecomponent(words({0x0001, 0x0002}));
    silently([] {
        addmisslabel("; Start of 32 bit vector table", 0, MissType::cLong, 1);
        addmisslabel(";words", 0, MissType::cWord, 2);
    });
    list({});
    EXPECT_EQ(console, withtotal("F80040  0x0001 0x0002 ;words\n", 4));
}

// ---------------------------------------------------------------------------------------------- relocs

// A component of 32 bytes with code in its middle: a row, two instructions, a row and a bit.
Bytes relocated() {
    Bytes bytes(48, 0x41);
    setwords(bytes, 4, {0x4EB9, 0x00F8, 0x0040, 0x4E75});
    return bytes;
}

TEST_F(WalkListingTest, RelocsStandInTheFileBeforeTheLineBehindThem) {
    makecomponent(relocated());
    componentat(0, 1).ipRelocs = {0, 6, 12, 44};
    list({{4, 8}});
    const std::string first = hexrow("F80040 41 41 41 41", "AAAA");
    const std::string code = "F80044 JSR F80040\n";
    const std::string end = "F8004A RTS\n";
    const std::string row = "41 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41";
    const std::string rows1 = hexrow("F8004C " + row, std::string(16, 'A'));
    const std::string rows2 = hexrow("F8005C " + row, std::string(16, 'A'));
    const std::string rows3 = hexrow("F8006C 41 41 41 41", "AAAA");
    const std::string total = "Scanned 48 bytes, 8 code 40 data\n";
    EXPECT_EQ(console, first + code + end + rows1 + rows2 + rows3 + total);
    // That at 44 lies on the first byte of the last line, so no line comes behind it.
    EXPECT_EQ(file, first + "RELOC=0 @F80040 (41414141)\n" + code + "RELOC=6 @F80046 (F80040)\n" + end +
                        rows1 + "RELOC=12 @F8004C (41414141)\n" + rows2 + rows3 + total);
}

TEST_F(WalkListingTest, RelocsComeInAscendingOrder) {
    makecomponent(words({0x4E71, 0x4E71, 0x4E71, 0x4E75}));
    componentat(0, 1).ipRelocs = {2, 0, 1};
    list({{0, 8}});
    EXPECT_EQ(file, "F80040 NOP\n"
                    "RELOC=0 @F80040 (4E714E71)\nRELOC=1 @F80041 (714E714E)\n"
                    "F80042 NOP\n"
                    "RELOC=2 @F80042 (4E714E71)\n"
                    "F80044 NOP\nF80046 RTS\nScanned 8 bytes, 8 code 0 data\n");
}

TEST_F(WalkListingTest, RelocsStandBeforeTheLabel) {
    makecomponent(words({0, 0, 0x4E75}));
    componentat(0, 1).ipRelocs = {0};
    silently([] { addmisslabel("End", 4, MissType::cNone, 1); });
    list({{4, 2}});
    EXPECT_EQ(file, hexrow("F80040 00 00 00 00", "....") +
                        "RELOC=0 @F80040 (0)\n End\nF80044 RTS\nScanned 6 bytes, 2 code 4 data\n");
}

TEST_F(WalkListingTest, RelocsOutsideTheComponentAreLeftOut) {
    makecomponent(words({0x4E71, 0x4E71, 0x4E75}));
    componentat(0, 1).ipRelocs = {-1, 0, 3, 2147483647};
    list({{0, 6}}, 1);
    EXPECT_EQ(console, "ERROR: Reloc -1 is outside its component\n"
                       "ERROR: Reloc 3 is outside its component\n"
                       "ERROR: Reloc 2147483647 is outside its component\n"
                       "F80040 NOP\nF80042 NOP\nF80044 RTS\nScanned 6 bytes, 6 code 0 data\n");
    EXPECT_EQ(file, "F80040 NOP\nRELOC=0 @F80040 (4E714E71)\nF80042 NOP\nF80044 RTS\n"
                    "Scanned 6 bytes, 6 code 0 data\n");
    list({{0, 6}}, 0);
    EXPECT_FALSE(has(console, "ERROR"));
}

// ---------------------------------------------------------------------------------------------- traces

TEST_F(WalkListingTest, TracesOfTheIndex) {
    makecomponent(words({0x4142}));
    silently([] {
        addmisslabel("Label", 0, MissType::cNone, 1);
        addmisslabel(";comment", 0, MissType::cWord, 3);
        addmisslabel("Both", 1, MissType::cByte, 2);
        addmisslabel("", 1, MissType::cNone, 1);
        addmisslabel("", 1, MissType::cLong, 1);
    });
    const std::string lines = "Adding label [Label] repeat=1\n"
                              "Adding comment [;comment] repeat=3 type=W\n"
                              "Adding comment [Both] repeat=2 type=B\nAdding label [Both] repeat=2\n"
                              "Adding comment [] repeat=1 type=L\n";
    list({}, 8);
    EXPECT_TRUE(console.starts_with("There are 5 labels\n" + lines + "F80040 ")) << console;
    list({}, 7);
    EXPECT_TRUE(console.starts_with("There are 5 labels\nF80040 ")) << console;
    list({}, 1);
    EXPECT_TRUE(console.starts_with("F80040 ")) << console;
}

// ------------------------------------------------------------------------------------------ the file

TEST_F(WalkListingTest, ItsFileMayBeRunByItsOwner) {
    makecomponent(words({0x4E75}));
    const mode_t former = umask(0);
    list({});
    umask(former);
    struct stat status = {};
    ASSERT_EQ(stat(dir.file(cListingFile).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0755U);
}

} // namespace
} // namespace vantorel::test
