// Templates turned into the text of an instruction: fields, lookups, targets, leading zeros, traces.

#include "missassembler/decode.h"

#include "missassembler/misstest.h"

namespace vantorel::test {
namespace {

class DecodeTest : public FreshTest {
protected:
    // What `instruction`, a template for every opcode word, makes of this opcode word alone.
    static std::string expanded(const std::string& instruction, uint32_t opcode,
                                const std::string& sections = "") {
        return expandedall(instruction, opcode, sections, 2);
    }

    static std::string expandedall(const std::string& instruction, uint32_t opcode,
                                   const std::string& sections, int32_t length) {
        Bytes image(2);
        setword(image.data(), opcode);
        const Decoded instructiontext = decoded(onetemplate(instruction, sections), image);
        EXPECT_EQ(instructiontext.length, length) << instruction;
        return instructiontext.text;
    }
};

TEST_F(DecodeTest, TextWithoutCodesIsTakenAsItIs) {
    EXPECT_EQ(expanded("NOP", 0x4E71), "NOP");
    EXPECT_EQ(expanded("", 0x4E71), "");
    EXPECT_EQ(expanded(" a=b;[c]  ", 0x4E71), " a=b;[c]  ");
}

TEST_F(DecodeTest, AFieldIsDecimal) {
    EXPECT_EQ(expanded("%04.%44.%84.%C4", 0x1234), "1.2.3.4");
    EXPECT_EQ(expanded("%c4", 0x1234), "4") << "digits of either case";
    EXPECT_EQ(expanded("%0A", 0xFFFF), "1023");
    EXPECT_EQ(expanded("%0a", 0xFFFF), "1023");
    EXPECT_EQ(expanded("%0F", 0xFFFF), "32767");
    EXPECT_EQ(expanded("D%D3", 0x1234), "D4");
    EXPECT_EQ(expanded("%D33", 0x1234), "43") << "a code has three characters";
    EXPECT_EQ(expanded("%00", 0xFFFF), "0");
}

TEST_F(DecodeTest, AFieldOfEightBitsIsHexadecimal) {
    EXPECT_EQ(expanded("%08%88", 0x60AB), "60AB");
    EXPECT_EQ(expanded("%88", 0x6008), "08");
    EXPECT_EQ(expanded("%A8", 0x1234), "D0") << "runs over the end";
    EXPECT_EQ(expanded("%F8", 0x1234), "00");
}

TEST_F(DecodeTest, AFieldThatIsNoneIsZero) {
    EXPECT_EQ(expanded("%0)", 0xFFFF), "0") << "a width of -7";
    EXPECT_EQ(expanded("% 4", 0xFFFF), "0");
    EXPECT_EQ(expanded("%Z4", 0xFFFF), "0");
    EXPECT_EQ(expanded("%4 x", 0xFFFF), "0x");
    EXPECT_EQ(expanded("%0%88", 0xFFFF), "088") << "the second percent sign is the width";
}

TEST_F(DecodeTest, ATemplateMayEndInsideACode) {
    EXPECT_EQ(expanded("AB%", 0xFFFF), "AB0");
    EXPECT_EQ(expanded("AB%4", 0xFFFF), "AB0");
    EXPECT_EQ(expanded("AB%%", 0xFFFF), "AB???");
    EXPECT_EQ(expandedall("AB%X", 0x4E71, "", 4), "AB[X:0000]");
    for (const std::string code : {"%(", "%(s", "%(s2", "%(s22"})
        EXPECT_EQ(expanded("AB" + code, 0xFFFF, "[s22]\n0=z\n"), "AB???") << code;
    EXPECT_EQ(expanded("AB%(s22", 0x1FFF, "[s22]\n1=z\n"), "ABz") << "only the closing character is missing";
}

TEST_F(DecodeTest, TheOpcodeWordIsInSmallLettersWithoutPadding) {
    EXPECT_EQ(expanded("%%0", 0xABCD), "abcd");
    EXPECT_EQ(expanded("%%0", 0x00EF), "ef");
    EXPECT_EQ(expanded("%%0", 0x0000), "0");
}

TEST_F(DecodeTest, AnUnknownCodeIsThreeQuestionMarks) {
    for (const std::string code : {"%%3", "%%5", "%%Z", "%% ", "%%(", "%%x", "%%X", "%%."})
        EXPECT_EQ(expanded("a" + code + "b", 0x4E71), "a???b") << code;
}

TEST_F(DecodeTest, ALookupGivesTheTextForItsField) {
    const std::string sections = "[sA2]\n1=B\n2=L\n3=W\n[dC4]\n10=ten\n1=one\n0=\n";
    EXPECT_EQ(expanded("MOVE.%(sA2) X", 0x0010, sections), "MOVE.B X");
    EXPECT_EQ(expanded("MOVE.%(sA2) X", 0x0020, sections), "MOVE.L X");
    EXPECT_EQ(expanded("%(dC4)", 0xFFFA, sections), "ten");
    EXPECT_EQ(expanded("%(dC4)", 0xFFF1, sections), "one");
    EXPECT_EQ(expanded("<%(dC4)>", 0xFFF0, sections), "<>");
}

TEST_F(DecodeTest, TheClosingCharacterIsNotLookedAt) {
    const std::string sections = "[dC4]\n1=one\n";
    for (const char closing : {')', ']', '%', 'x', '('})
        EXPECT_EQ(expanded(std::string("%(dC4") + closing + "04", 1, sections), "one04") << closing;
}

TEST_F(DecodeTest, AMissingSectionOrKeyIsThreeQuestionMarks) {
    EXPECT_EQ(expanded("a%(dC4)b", 1), "a???b");
    EXPECT_EQ(expanded("a%(dC4)b", 2, "[dC4]\n1=one\n"), "a???b");
    EXPECT_EQ(expanded("a%(dC4)b", 1, "[dC4]\n01=one\n1 =one\n11=one\n"), "a???b");
    EXPECT_EQ(expanded("a%(dC4)b", 1, "[eC4]\n1=one\n[dC44]\n1=one\n[dC]\n1=one\n"), "a???b");
}

TEST_F(DecodeTest, ALetterServesSeveralFields) {
    EXPECT_EQ(expanded("%(s04)%(s44)", 0x1200, "[s04]\n1=a\n2=b\n[s44]\n1=c\n2=d\n"), "ad");
}

TEST_F(DecodeTest, WhatIsLookedUpMayHoldCodesAndLookups) {
    const std::string sections = "[a04]\n1=(%(b44),%84)\n[b44]\n2=%(cC4)%44\n[cC4]\n4=D%84\n";
    EXPECT_EQ(expanded("X %(a04)", 0x1234, sections), "X (D32,3)");
}

TEST_F(DecodeTest, ALookupThatNeverEndsStopsAfter32Passes) {
    EXPECT_EQ(expanded("%(a04)", 0, "[a04]\n0=%(a04)\n"), "%(a04)");
    EXPECT_EQ(expanded("%(a04)", 0, "[a04]\n0=%(b04)\n[b04]\n0=%(a04)\n"), "%(a04)");
    EXPECT_EQ(expanded("%(a04)", 0, "[a04]\n0=%(b04)\n[b04]\n0=%(c04)\n[c04]\n0=%(a04)\n"), "%(c04)")
        << "32 is two more than thirty";
    EXPECT_EQ(expanded("%(a04)", 0, "[a04]\n0=x%(a04)\n"), std::string(32, 'x') + "%(a04)");
}

TEST_F(DecodeTest, ALookupThatForksIsCut) {
    std::string expected;
    for (int i = 0; i < 42; ++i)
        expected += "%(a04)";
    EXPECT_EQ(expanded("%(a04)", 0, "[a04]\n0=%(a04)%(a04)\n"), expected + "%(a");
}

TEST_F(DecodeTest, ATextEndsAfter255Characters) {
    const std::string x(250, 'x');
    EXPECT_EQ(expanded(x + "abcdefgh", 0), x + "abcde");
    EXPECT_EQ(expanded("%(a04)%(a04)", 0, "[a04]\n0=" + x + "\n"), x + "xxxxx");
    EXPECT_EQ(expanded("%(a04)", 0, "[a04]\n0=" + x + "abcdefgh\n"), x + "abcde");
    EXPECT_EQ(expanded(x + "%0F%0F", 0xFFFF), x + "32767");
    EXPECT_EQ(expanded(x + "1234%", 0), x + "12340");
    EXPECT_EQ(expanded(x + "1234%%0", 0xFFFF), x + "12340")
        << "the template itself is cut to one percent sign";
}

TEST_F(DecodeTest, WhatIsFetchedIsCutToo) {
    const std::string x(250, 'x');
    Bytes image = {0x4E, 0x71, 0x1A, 0x2B, 0x3C, 0x4D};
    EXPECT_EQ(decoded(onetemplate(x + "a%%4"), image), (Decoded{x + "a1A2B", 6}));
    EXPECT_EQ(decoded(onetemplate(x.substr(1) + "%%2"), image), (Decoded{x.substr(1) + "1A2B", 4}));
    EXPECT_EQ(decoded(onetemplate(x.substr(5) + "%%R"), image), (Decoded{x.substr(5) + "D0/D1/D3/D", 4}));
    EXPECT_EQ(decoded(onetemplate("%%4" + x), image), (Decoded{"1A2B3C4D" + x.substr(3), 6}));
}

TEST_F(DecodeTest, DigitsThatWereFetchedMayBePartOfACode) {
    // "%" and the digits "04": the field is 1.
    EXPECT_EQ(decoded(onetemplate("%(p04)%%1", "[p04]\n1=%\n"), {0x12, 0x34, 0x04}), (Decoded{"1", 3}));
    EXPECT_EQ(decoded(onetemplate("%(p04)%%1", "[p04]\n1=%\n"), {0x12, 0x34, 0x88}), (Decoded{"34", 3}));
    // The name of a section, first its letter and then its field.
    EXPECT_EQ(decoded(onetemplate("%(p04)%%1)", "[p04]\n1=%(d\n[d44]\n2=yes\n"), {0x12, 0x34, 0x44}),
              (Decoded{"yes", 3}));
    EXPECT_EQ(decoded(onetemplate("%(p04)%%14)", "[p04]\n1=%(\n[E44]\n2=yes\n"), {0x12, 0x34, 0xE4}),
              (Decoded{"yes", 3}));
    // The closing character alone: "C5" loses its "C".
    EXPECT_EQ(decoded(onetemplate("%(p04)%%1", "[p04]\n1=%(d44\n[d44]\n2=yes\n"), {0x12, 0x34, 0xC5}),
              (Decoded{"yes5", 3}));
}

TEST_F(DecodeTest, AnEmptyRegisterListIsNoCharacterOfACode) {
    const std::string sections = "[p04]\n1=%(d44\n[d44]\n2=yes\n";
    // Nothing stands where the list was, so the code takes the character behind it.
    EXPECT_EQ(decoded(onetemplate("%(q04)%%R;:", "[q04]\n1=%(p04)\n" + sections), {0x12, 0x34, 0, 0}),
              (Decoded{"yes:", 4}));
    EXPECT_EQ(decoded(onetemplate("%(q04)%%R;:", "[q04]\n1=%(p04)\n" + sections), {0x12, 0x34, 0, 1}),
              (Decoded{"yes0;:", 4}));
    EXPECT_EQ(decoded(onetemplate("X %%2(P%%RC)"), {0x12, 0x34, 0, 4, 0, 0}, 0xF80000),
              (Decoded{"X F80006(PC)", 6}));
    EXPECT_EQ(decoded(onetemplate("X %%2(P%%RC)"), {0x12, 0x34, 0, 4, 0, 1}, 0xF80000),
              (Decoded{"X 4(PD0C)", 6}));
}

TEST_F(DecodeTest, AnOpcodeThatMatchesNoEntryIsUnknown) {
    const Decoded unknown = {"(unknown 0", 2};
    EXPECT_EQ(decoded("[mnemonics]\n0100111001110001=NOP\n", {0x4E, 0x75, 0x12, 0x34}), unknown);
    EXPECT_EQ(decoded("[mnemonics]\n", {0xFF, 0xFF}), unknown);
    EXPECT_EQ(decoded("", {0xFF, 0xFF}), unknown) << "no section";
    InstructionTable none;
    EXPECT_EQ(decodedat(0, 0, none), unknown) << "no table";
}

TEST_F(DecodeTest, TheEarlierOfTwoLinesWins) {
    const std::string table = "[mnemonics]\n0100111001??????:general\n0100111001110001=NOP\n";
    EXPECT_EQ(decoded(table, {0x4E, 0x71}), (Decoded{"general", 2}));
    EXPECT_EQ(decoded(table, {0x4E, 0xF1}), (Decoded{"(unknown 0", 2}));
}

class TargetTest : public FreshTest {
protected:
    // An instruction at image offset 0x10 of a ROM at `base`.
    static std::string target(const std::string& instruction, const Bytes& bytes, uint32_t base = kBase) {
        Bytes image(16, 0xFF);
        image.insert(image.end(), bytes.begin(), bytes.end());
        return decoded(onetemplate(instruction), image, base, 16).text;
    }
};

TEST_F(TargetTest, TheSmallMarkerGivesABareAddress) {
    EXPECT_EQ(target("BRA %88(pc)", {0x60, 0xFE}), "BRA F80010");
    EXPECT_EQ(target("BRA %88(pc)", {0x60, 0x7E}), "BRA F80090");
    EXPECT_EQ(target("BRA %88(pc)", {0x60, 0x80}), "BRA F7FF92");
    EXPECT_EQ(target("BRA %%2(pc)", {0x60, 0x00, 0xFF, 0xFE}), "BRA F80010");
    EXPECT_EQ(target("BRA %%2(pc)", {0x60, 0x00, 0x7F, 0xFF}), "BRA F88011");
    EXPECT_EQ(target("BRA %%2(pc)", {0x60, 0x00, 0x80, 0x00}), "BRA F78012");
    EXPECT_EQ(target("BRA %%4(pc)", {0x60, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}), "BRA F80010");
    EXPECT_EQ(target("BRA %%4(pc)", {0x60, 0xFF, 0x00, 0x00, 0xFF, 0xFE}), "BRA F90010");
    EXPECT_EQ(target("DBF D%D3,%%2(pc);x", {0x51, 0xCB, 0x00, 0x04}), "DBF D3,F80016;x");
}

TEST_F(TargetTest, TheLargeMarkerStaysBehindTheAddress) {
    EXPECT_EQ(target("LEA %%2(PC),A0", {0x41, 0xFA, 0x03, 0x5C}), "LEA F8036E(PC),A0");
    EXPECT_EQ(target("LEA %%2(PC),A0", {0x41, 0xFA, 0xFF, 0xEE}), "LEA F80000(PC),A0");
    EXPECT_EQ(target("JMP $%%2(PC)", {0x4E, 0xFA, 0x00, 0x04}), "JMP $F80016(PC)");
}

TEST_F(TargetTest, TheAddressCountsFromBehindTheOpcodeWordWhateverIsBetween) {
    EXPECT_EQ(target("MOVE #$%%2,%%2(PC)", {0x4E, 0xFA, 0x12, 0x34, 0x00, 0x04}), "MOVE #$1234,F80016(PC)");
    EXPECT_EQ(target("MOVE #$%%4,%%2(pc)", {0x4E, 0xFA, 0x12, 0x34, 0x56, 0x78, 0x00, 0x04}),
              "MOVE #$12345678,F80016");
}

TEST_F(TargetTest, TheLargeMarkerIsPreferredAndTheFirstOfAKindCounts) {
    const Bytes bytes = {0x4E, 0xFA, 0x00, 0x04, 0x00, 0x08};
    EXPECT_EQ(target("X %%2(pc),%%2(PC)", bytes), "X 4(pc),F8001A(PC)");
    EXPECT_EQ(target("X %%2(PC),%%2(PC)", bytes), "X F80016(PC),8(PC)");
    EXPECT_EQ(target("X %%2(pc),%%2(pc)", bytes), "X F80016,8(pc)");
    EXPECT_EQ(target("X %%2(Pc),%%2(pC)", bytes), "X 4(Pc),8(pC)");
}

TEST_F(TargetTest, TheDisplacementBeginsBehindBlankCommaOrDollar) {
    const Bytes bytes = {0x4E, 0xFA, 0x00, 0x04};
    EXPECT_EQ(target("A B,C$%%2(PC)", bytes), "A B,C$F80016(PC)");
    EXPECT_EQ(target("A$B,%%2(PC)", bytes), "A$B,F80016(PC)");
    EXPECT_EQ(target("A,B$C %%2(PC)", bytes), "A,B$C F80016(PC)");
    // A parenthesis and a hash do not end it.
    EXPECT_EQ(target("A (0%%2(PC)", bytes), "A F80012(PC)") << "(0 is no number at all";
    EXPECT_EQ(target("A #%%2(PC)", bytes), "A EB0016(PC)") << "the hash is a digit, worth -13";
    EXPECT_EQ(target("JMP (PC)", bytes), "JMP F80012(PC)");
    EXPECT_EQ(target("JMP $(pc)", bytes), "JMP $F80012");
}

TEST_F(TargetTest, TheFirstCharacterOfTheTextIsNoPartOfADisplacement) {
    const Bytes bytes = {0x4E, 0xFA, 0x00, 0x04};
    EXPECT_EQ(target("A%%2(PC)", bytes), "AF80016(PC)");
    EXPECT_EQ(target(" %%2(PC)", bytes), " F80016(PC)");
    EXPECT_EQ(target("%%2(PC)", bytes), "0F80016(PC)") << "the digits 004";
    EXPECT_EQ(target("%%2(PC)", {0x4E, 0xFA, 0xFF, 0xFE}), "FF80010(PC)") << "the digits FFE";
    EXPECT_EQ(target("%%2(pc)", {0x4E, 0xFA, 0xF0, 0x02}), "FF80014") << "the digits 002";
    // Of a marker that begins the text, the digits "PC)" are worth 25, 12 and -7: negative, so each counts
    // from 15, and -(-10 * 256 + 3 * 16 + 22 + 1) = 0x9B9.
    EXPECT_EQ(target("(PC)", bytes), "(F809CB(PC)");
    EXPECT_EQ(target("(pc)", {0x4E, 0xFA}).substr(0, 1), "(");
}

TEST_F(TargetTest, OnlyEightDigitsAreRead) {
    EXPECT_EQ(target("X %%4%%2(PC)", {0x4E, 0xFA, 0x00, 0x00, 0x00, 0x10, 0xFF, 0xFF}), "X F80022(PC)");
    EXPECT_EQ(target("X %%4%%4(PC)", {0x4E, 0xFA, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF}),
              "X F80010(PC)");
}

TEST_F(TargetTest, SmallLettersAreDigitsToo) {
    EXPECT_EQ(target("X %%0(pc)", {0xFF, 0xFE}), "X F80010");
    EXPECT_EQ(target("X 7a(pc)", {0, 0}), "X F8008C");
}

TEST_F(TargetTest, AnAddressHasAtLeastSixDigits) {
    EXPECT_EQ(target("A%%2(PC)", {0, 0, 0x00, 0x04}, 0), "A000016(PC)");
    EXPECT_EQ(target("A%%2(PC)", {0, 0, 0x00, 0x04}, 0x12F80000), "A12F80016(PC)");
    EXPECT_EQ(target("A%%2(PC)", {0, 0, 0x00, 0x04}, 0x1000000), "A1000016(PC)");
    EXPECT_EQ(target("A%%2(PC)", {0, 0, 0xFF, 0x00}, 0), "AFFFFFF12(PC)");
    EXPECT_EQ(target("A%%2(pc)", {0, 0, 0x00, 0x04}, 0xFFFFFFF0), "A000006") << "addresses wrap";
}

TEST_F(TargetTest, ItsLeadingZerosGoLikeAllOthers) {
    EXPECT_EQ(target("LEA %%2(PC),A0", {0, 0, 0x00, 0x04}, 0), "LEA 16(PC),A0");
    EXPECT_EQ(target("JMP $%%2(pc)", {0, 0, 0x00, 0x04}, 0x200000), "JMP $200016");
    EXPECT_EQ(target("JMP $%%2(pc)", {0, 0, 0xFF, 0xEE}, 0), "JMP $0");
}

TEST_F(TargetTest, AMarkerMayBeLookedUpOrBePutTogether) {
    const Bytes image = {0x12, 0x34, 0x00, 0x04};
    EXPECT_EQ(decoded(onetemplate("X %(e04)", "[e04]\n1=%%2(PC)\n"), image), (Decoded{"X F80006(PC)", 4}));
    EXPECT_EQ(decoded(onetemplate("X %(e04)C)", "[e04]\n1=%%2(P\n"), image), (Decoded{"X F80006(PC)", 4}));
    EXPECT_EQ(decoded(onetemplate("X %(e04)c%(f04)", "[e04]\n1=%%2(p\n[f04]\n1=)\n"), image),
              (Decoded{"X F80006", 4}));
}

TEST_F(DecodeTest, LeadingZerosGoBehindBlankHashDollarAndComma) {
    EXPECT_EQ(expanded("#$0000 $00F80010 0012,000A", 0), "#$0 $F80010 12,A");
    EXPECT_EQ(expanded("#0010", 0), "#10");
    EXPECT_EQ(expanded("#000.", 0), "#0.");
    EXPECT_EQ(expanded(" 0", 0), " 0");
    EXPECT_EQ(expanded(" 00", 0), " 0");
    EXPECT_EQ(expanded(",0A0", 0), ",A0");
    EXPECT_EQ(expanded(" 0F 0G 0@ 0/ 0:", 0), " F 0G 0@ 0/ 0:");
    EXPECT_EQ(expanded(" 1000", 0), " 1000");
}

TEST_F(DecodeTest, LeadingZerosStayEverywhereElse) {
    EXPECT_EQ(expanded("0012(0012)-0012/0012D0012", 0), "0012(0012)-0012/0012D0012");
    EXPECT_EQ(expanded(" 00a 0f", 0), " 0a 0f") << "small letters are no digits here";
    EXPECT_EQ(decoded(onetemplate("%%2(%%2)"), {0, 0, 0, 1, 0, 2}), (Decoded{"0001(0002)", 6}));
    EXPECT_EQ(decoded(onetemplate("#$%88,$%%2 %%4"), {0, 8, 0, 0, 0, 0xF8, 0, 0x10}),
              (Decoded{"#$8,$0 F80010", 8}));
}

TEST_F(DecodeTest, TracesTellEachStep) {
    const int32_t rom = romof({0x48, 0xE7, 0x80, 0x00, 0xFF, 0xFF}, 0);
    InstructionTable table = tableof("[mnemonics]\n0100100011??????:MOVEM %%R,%(eA6)\n[eA6]\n39=-(A7)\n");
    Decoded instruction;
    EXPECT_EQ(at(10, [&] { instruction = decodedat(rom, 0, table); }),
              "getting first two bytes\n"
              "First two bytes 48e7\n"
              "Defaulting Mnemonic to unknown \"(unknown %0)\"\n"
              "Initial setting : [48e7] (unknown %0)\n"
              "[48e7]\n"
              "[FOUND:MOVEM %%R,%(eA6)]\n"
              "cMnI=[MOVEM %%R,%(eA6)]\n"
              "cMnI=[MOVEM %%r,-(A7)]\n"
              "PreDec[8000:0001]");
    EXPECT_EQ(instruction, (Decoded{"MOVEM D0,-(A7)", 4}));
    EXPECT_EQ(at(10, [&] { instruction = decodedat(rom, 4, table); }),
              "getting first two bytes\n"
              "First two bytes ffff\n"
              "Defaulting Mnemonic to unknown \"(unknown %0)\"\n"
              "Initial setting : [ffff] (unknown %0)\n"
              "[ffff]\n"
              "cMnI=[(unknown %0)]\n");
    EXPECT_EQ(instruction, (Decoded{"(unknown 0", 2}));
    EXPECT_EQ(at(9, [&] { static_cast<void>(decodedat(rom, 0, table)); }), "");
}

TEST_F(DecodeTest, ATemplateWithoutCodesTakesNoPass) {
    const int32_t rom = romof({0x4E, 0x71}, 0);
    InstructionTable table = tableof("[mnemonics]\n0100111001110001=NOP\n");
    const std::string console = at(10, [&] { static_cast<void>(decodedat(rom, 0, table)); });
    EXPECT_TRUE(console.ends_with("[FOUND:NOP]\n")) << console;
}

} // namespace
} // namespace vantorel::test
