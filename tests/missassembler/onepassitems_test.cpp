// What the one-pass listing makes of the bytes at a stop: longs, words, texts, InitStruct commands.

#include "missassembler/onepass.h"

#include <array>

namespace vantorel::test {
namespace {

class OnePassItems : public OnePass {
protected:
    // The lines for a component of these bytes with a text at component offset `offset`.
    static std::string textlines(const Bytes& bytes, int32_t offset = 0) {
        makeground(bytes);
        puttag({.name = 0xF80100 + static_cast<uint32_t>(offset)});
        return listedlines();
    }

    // The lines for a component of these bytes with an InitStruct stream at component offset `offset`, from
    // the line of that stop on.
    static std::string streamlines(const Bytes& bytes, int32_t offset = 0) {
        makeground(bytes);
        putautotag({.initstruct = 0xF80100 + static_cast<uint32_t>(offset)});
        const std::string lines = listedlines();
        const std::string head = "INIT InitStruct():\n";
        const size_t place = lines.find(head);
        return place == std::string::npos ? "no stream: " + lines : lines.substr(place + head.size());
    }
};

TEST_F(OnePassItems, LongsAreShownBehindTheirText) {
    makeground(hexed("4E71 00000044 89ABCDEF 00000000 00F80102 4E75"));
    puttag({.init = 0xF80102, .flags = iAutoInit});
    EXPECT_EQ(listedlines(), "AutoInit flag set but no autoinit call\n"
                             "F80100 NOP\n"
                             "F80102 AUTOINIT:\n dataSize:\t: 0x00000044\n"
                             " vectors:\t: 0x89ABCDEF\n"
                             " InitStruct():\t: 0x00000000\n"
                             " LibraryInit():\t: 0x00F80102\n"
                             "F80112 RTS\n");
}

// Texts and instructions are results; the data are the listing itself, and no level hides it.
TEST_F(OnePassItems, DataStandAtEveryLevelAndTheirTextsAboveZero) {
    makeground(hexed("4E71 00000044 89ABCDEF 00000000 00F80102 4100 4E75"));
    puttag({.name = 0xF80112, .init = 0xF80102, .flags = iAutoInit});
    EXPECT_EQ(listed(0), "\t: 0x00000044\n\t: 0x89ABCDEF\n\t: 0x00000000\n\t: 0x00F80102\n"
                         "F80112 \"A\\0\"\n");
}

TEST_F(OnePassItems, LongVectorsAreOneLongAndThenCode) {
    makeground(hexed("00F84E71 4E714E75"));
    putautotag({.vectors = 0xF80100, .initstruct = 0xF80050});
    EXPECT_EQ(listedlines(), "\nVECTORS[00f80100]\n\nFIRST VECTOR[00f8]\n"
                             "INIT Vectors: \n\t: 0x00F84E71\n"
                             "F80104 NOP\nF80106 RTS\n");
}

TEST_F(OnePassItems, WordVectorsAreWordsAndTheirFunctionsCode) {
    // Open at 0x10C, Close 64 KiB beyond where -2 would be, Expunge beyond the component.
    makeground(hexed("4E71 FFFF 000A FFFE 00C0 FFFF 4E71 4E75"));
    putautotag({.vectors = 0xF80102, .initstruct = 0xF80050});
    EXPECT_EQ(listedlines(), "\nVECTORS[00f80102]\n\nFIRST VECTOR[ffff]\n"
                             "F80100 NOP\n"
                             "INIT Vector table start\t: 0xFFFF\n"
                             "INIT 0xF8010C LVO Open()\t: 0x000A\n"
                             "INIT 0xF90100 LVO Close()\t: 0xFFFE\n"
                             "INIT 0xF801C2 LVO Expunge()\t: 0x00C0\n"
                             "INIT Vector table end\t: 0xFFFF\n"
                             "Library Vector Open():\n"
                             "F8010C NOP\nF8010E RTS\n"
                             "Missassember, premature end (component runs until at least 0xF90100):\n");
}

TEST_F(OnePassItems, AWordOrLongMayRunOverTheComponentsEnd) {
    makeground(hexed("4E71 00F8"));
    putbytes(0x104, hexed("1234"));
    putautotag({.vectors = 0xF80102, .initstruct = 0xF80050});
    EXPECT_EQ(listedlines(), "\nVECTORS[00f80102]\n\nFIRST VECTOR[00f8]\n"
                             "F80100 NOP\nINIT Vectors: \n\t: 0x00F81234\n" +
                                 boundary("0xF80100-0xF80106", 262));
}

TEST_F(OnePassItems, ATextIsShownInQuotesWithItsNul) {
    EXPECT_EQ(textlines(hexed("61626300 4E75")), "NAME:\nF80100 \"abc\\0\"\nF80104 RTS\n");
    EXPECT_EQ(textlines(hexed("616200FF 4E75")), "NAME:\nF80100 \"ab\\0\\0\"\nF80104 RTS\n")
        << "a second one for the byte that makes it even, whatever that is";
    EXPECT_EQ(textlines(hexed("00FF 4E75")), "NAME:\nF80100 \"\\0\\0\"\nF80102 RTS\n");
}

TEST_F(OnePassItems, LineEndsInATextHaveNames) {
    EXPECT_EQ(textlines(hexed("610D0A0A0D00 4E75")), "NAME:\nF80100 \"a\\r\\n\\n\\r\\0\"\nF80106 RTS\n");
}

TEST_F(OnePassItems, OtherCharactersOfATextStandAsTheyAre) {
    EXPECT_EQ(textlines(hexed("09225C25 73A9FF7F 0100")), "NAME:\nF80100 \"\t\"\\%s\xA9\xFF\x7F\x01\\0\"\n");
}

TEST_F(OnePassItems, ATextMayBeginAtAnOddPlace) {
    // BYTE takes three bytes.
    EXPECT_EQ(textlines(hexed("0003AA 616200 4E75"), 3),
              "F80100 BYTE AA\nNAME:\nF80103 \"ab\\0\"\nF80106 RTS\n");
    EXPECT_EQ(textlines(hexed("0003AA 6100 FF 4E75"), 3),
              "F80100 BYTE AA\nNAME:\nF80103 \"a\\0\\0\"\nF80106 RTS\n");
}

TEST_F(OnePassItems, OddIsCountedFromTheComponentsFirstByte) {
    makeground(hexed("00 616200FF 4E75"));
    componentat(0, 1).iStart = 0x101;
    componentat(0, 1).iSize = 6;
    puttag({.name = 0xF80101});
    EXPECT_EQ(listedlines(), "NAME:\nF80101 \"ab\\0\\0\"\nF80105 RTS\n");
}

TEST_F(OnePassItems, TwoTextsAtOneAddressAreListedTwice) {
    makeground(hexed("61626300"));
    puttag({.name = 0xF80100, .idstring = 0xF80100});
    EXPECT_EQ(listedlines(), "NAME:\nF80100 \"abc\\0\"\n") << "the second one's turn would be past the end";
    makeground(hexed("61626300 4E75"));
    puttag({.name = 0xF80100, .idstring = 0xF80100});
    EXPECT_EQ(listedlines(), "NAME:\nF80100 \"abc\\0\"\nMissassember miss, reseting position:\n"
                             "IDSTRING:\nF80100 \"abc\\0\"\nF80104 RTS\n");
}

TEST_F(OnePassItems, ATextWithoutANulEndsBehindTheImage) {
    makeground({});
    componentat(0, 1).iStart = 0x1FC;
    componentat(0, 1).iSize = 4;
    putbytes(0x1FC, hexed("61626364"));
    puttag({.name = 0xF801FC});
    slotat(0).psComponents.pop_back();
    EXPECT_EQ(listedlines(), "NAME:\nF801FC \"abcd\\0\\0\"\n" + boundary("0xF801FC-0xF80202", 514));
}

TEST_F(OnePassItems, AStreamEndsWithAZero) {
    EXPECT_EQ(streamlines(hexed("0000 4E75")), "F80100 0x0000\nF80102 RTS\n") << "and one that makes it even";
    EXPECT_EQ(streamlines(hexed("00FF 4E75")), "F80100 0x0000\nF80102 RTS\n") << "whatever that is";
    EXPECT_EQ(streamlines(hexed("0003AA 00 4E75"), 3), "F80103 0x00\nF80104 RTS\n");
}

// A command with count 2, with the end of its stream, and the lines for both. Bytes that are passed over are
// 9F, those of the destination 0A 0B 0C.
struct Command {
    const char* bytes;
    const char* lines;
};

TEST_F(OnePassItems, EveryKindOfCommandAtAnEvenPlace) {
    constexpr std::array<Command, 16> commands = {{
        // to where the last one ended
        {"01 9F 11223344 55667788 0000", "F80100 0x010011223344\nF8010A 0x0000\n"},
        {"11 9F 1122 3344 0000", "F80100 0x11001122\nF80106 0x0000\n"},
        {"21 11 22 9F 0000", "F80100 0x211100\nF80104 0x0000\n"},
        {"31 9F 0000", "F80100 0x3100\nF80102 0x0000\n"},
        // the same value repeated
        {"41 9F 11223344 0000", "F80100 0x410011223344\nF80106 0x0000\n"},
        {"51 9F 1122 0000", "F80100 0x51001122\nF80104 0x0000\n"},
        {"61 11 0000", "F80100 0x6111\nF80102 0x0000\n"},
        {"71 9F 0000", "F80100 0x7100\nF80102 0x0000\n"},
        // to an offset of one byte
        {"81 0A 11223344 55667788 0000", "F80100 0x810A11223344\nF8010A 0x0000\n"},
        {"91 0A 1122 3344 0000", "F80100 0x910A1122\nF80106 0x0000\n"},
        {"A1 0A 11 22 0000", "F80100 0xA10A11\nF80104 0x0000\n"},
        {"B1 0A 0000", "F80100 0xB10A\nF80102 0x0000\n"},
        // to an offset of three
        {"C1 0A0B0C 11223344 55667788 0000", "F80100 0xC10A0B0C11223344\nF8010C 0x0000\n"},
        {"D1 0A0B0C 1122 3344 0000", "F80100 0xD10A0B0C1122\nF80108 0x0000\n"},
        {"E1 0A0B0C 11 22 0000", "F80100 0xE10A0B0C11\nF80106 0x0000\n"},
        {"F1 0A0B0C 0000", "F80100 0xF10A0B0C\nF80104 0x0000\n"},
    }};
    for (const Command& command : commands)
        EXPECT_EQ(streamlines(hexed(command.bytes)), command.lines) << command.bytes;
}

TEST_F(OnePassItems, EveryKindOfCommandAtAnOddPlace) {
    constexpr std::array<Command, 16> commands = {{
        {"01 11223344 55667788 0000", "F80103 0x0111223344\nF8010C 0x0000\n"},
        {"11 1122 3344 0000", "F80103 0x111122\nF80108 0x0000\n"},
        {"21 11 22 0000", "F80103 0x2111\nF80106 0x0000\n"},
        {"31 0000", "F80103 0x31\nF80104 0x0000\n"},
        {"41 11223344 0000", "F80103 0x4111223344\nF80108 0x0000\n"},
        {"51 1122 0000", "F80103 0x511122\nF80106 0x0000\n"},
        {"61 11 9F 0000", "F80103 0x611100\nF80106 0x0000\n"},
        {"71 0000", "F80103 0x71\nF80104 0x0000\n"},
        {"81 0A 9F 11223344 55667788 0000", "F80103 0x810A0011223344\nF8010E 0x0000\n"},
        {"91 0A 9F 1122 3344 0000", "F80103 0x910A001122\nF8010A 0x0000\n"},
        {"A1 0A 11 22 9F 0000", "F80103 0xA10A1100\nF80108 0x0000\n"},
        {"B1 0A 9F 0000", "F80103 0xB10A00\nF80106 0x0000\n"},
        {"C1 0A0B0C 9F 11223344 55667788 0000", "F80103 0xC10A0B0C0011223344\nF80110 0x0000\n"},
        {"D1 0A0B0C 9F 1122 3344 0000", "F80103 0xD10A0B0C001122\nF8010C 0x0000\n"},
        {"E1 0A0B0C 11 22 9F 0000", "F80103 0xE10A0B0C1100\nF8010A 0x0000\n"},
        {"F1 0A0B0C 9F 0000", "F80103 0xF10A0B0C00\nF80108 0x0000\n"},
    }};
    for (const Command& command : commands)
        EXPECT_EQ(streamlines(joined(hexed("0003AA"), hexed(command.bytes)), 3), command.lines)
            << command.bytes;
}

TEST_F(OnePassItems, TheLowBitsCountTheValues) {
    // 0 to 7 mean one to eight values, of which only the first is shown.
    EXPECT_EQ(streamlines(hexed("10 9F 1122 0000")), "F80100 0x10001122\nF80104 0x0000\n");
    EXPECT_EQ(streamlines(hexed("17 9F 1122 3344 5566 7788 99AA BBCC DDEE F001 0000")),
              "F80100 0x17001122\nF80112 0x0000\n");
    EXPECT_EQ(streamlines(hexed("27 11 22 33 44 55 66 77 88 9F 0000")), "F80100 0x271100\nF8010A 0x0000\n");
    EXPECT_EQ(streamlines(joined(hexed("07 9F"), joined(Bytes(32, 0x11), hexed("0000")))),
              "F80100 0x070011111111\nF80122 0x0000\n");
    EXPECT_EQ(streamlines(hexed("57 9F 1122 0000")), "F80100 0x57001122\nF80104 0x0000\n")
        << "a repeat takes one value";
    EXPECT_EQ(streamlines(hexed("C9 0A0B0C 11223344 55667788 0000")),
              "F80100 0xC90A0B0C11223344\nF8010C 0x0000\n")
        << "bit 3 is none of them";
}

TEST_F(OnePassItems, CommandsFollowOneAnother) {
    EXPECT_EQ(streamlines(hexed("A0 08 09 00" // byte 8
                                "90 14 0028"  // word 20
                                "80 18 00F80100"
                                "C0 000020 12345678"
                                "21 AB CD 00"
                                "00 00"
                                "4E75")),
              "F80100 0xA0080900\n"
              "F80104 0x90140028\n"
              "F80108 0x801800F80100\n"
              "F8010E 0xC000002012345678\n"
              "F80116 0x21AB00\n"
              "F8011A 0x0000\n"
              "F8011C RTS\n");
}

TEST_F(OnePassItems, AStreamWithoutAnEndStopsBehindTheImage) {
    makeground({});
    componentat(0, 1).iStart = 0x1FC;
    componentat(0, 1).iSize = 4;
    putbytes(0x1FC, hexed("17 9F 1122")); // eight words from 0x1FE on
    putautotag({.initstruct = 0xF801FC});
    slotat(0).psComponents.pop_back();
    EXPECT_EQ(listedlines(), "\nVECTORS[00f80058]\n\nFIRST VECTOR[0000]\nINIT InitStruct():\n"
                             "F801FC 0x17001122\n"
                             "F8020E 0x0000\n" +
                                 boundary("0xF801FC-0xF80210", 528));
}

TEST_F(OnePassItems, AStreamGoesOnBeyondTheComponent) {
    // The third command's long is the component's last word and the next one of the image.
    EXPECT_EQ(streamlines(hexed("61 4E 61 71 4E 75 1234")),
              "F80100 0x614E\nF80102 0x6171\nF80104 0x4E0012340000\nF8010A 0x0000\n" +
                  boundary("0xF80100-0xF8010C", 268));
}

} // namespace
} // namespace vantorel::test
