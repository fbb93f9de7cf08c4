// The mnemonic table: its lines read by position, its fields, its operand sections.

#include "missassembler/mnemonics.h"

#include "missassembler/misstest.h"

#include <bit>

namespace vantorel::test {
namespace {

IniFile iniof(const std::string& text) { return parseini({text.begin(), text.end()}); }

std::vector<std::string> templatesof(const std::string& text) {
    const auto entries = parsemnemonics(iniof(text));
    if (!entries) return {"no section"};
    std::vector<std::string> templates;
    for (const Mnemonic& entry : *entries)
        templates.push_back(entry.text);
    return templates;
}

using Texts = std::vector<std::string>;

void expectentry(const std::string& line, uint32_t value, uint32_t mask, const std::string& text) {
    const Mnemonic entry = parsemnemonic(line);
    EXPECT_EQ(entry.value, value) << line;
    EXPECT_EQ(entry.mask, mask) << line;
    EXPECT_EQ(entry.text, text) << line;
}

TEST(ParseMnemonic, SixteenCharactersArePatternTheRestIsTemplate) {
    expectentry("0100111001110001=NOP", 0x4E71, 0xFFFF, "NOP");
    expectentry("0110????????????:B%44 %88(pc)", 0x6000, 0xF000, "B%44 %88(pc)");
    expectentry("????????????????:any", 0, 0, "any");
    expectentry("1??????????????1=ends", 0x8001, 0x8001, "ends");
}

TEST(ParseMnemonic, EveryOtherCharacterFixesItsBitToZero) {
    expectentry("1x1 2=]o.1-?;111=A", 0xA047, 0xFFEF, "A");
    expectentry("oooooooooooooooo=A", 0, 0xFFFF, "A");
}

TEST(ParseMnemonic, TheSeparatorIsNotLookedAtAndTheTemplateIsTakenWhole) {
    expectentry("0100111001110001#NOP", 0x4E71, 0xFFFF, "NOP");
    expectentry("0100111001110001NOP", 0x4E71, 0xFFFF, "OP");
    expectentry("0100111001110001=A=B;[C] ", 0x4E71, 0xFFFF, "A=B;[C] ");
    expectentry("0100111001110001= NOP", 0x4E71, 0xFFFF, " NOP");
}

TEST(ParseMnemonic, AShortLineHasNoTemplateAndZerosForItsMissingBits) {
    expectentry("", 0, 0xFFFF, "");
    expectentry("11", 0xC000, 0xFFFF, "");
    expectentry("1?1", 0xA000, 0xBFFF, "");
    expectentry("0100111001110001", 0x4E71, 0xFFFF, "");
    expectentry("0100111001110001=", 0x4E71, 0xFFFF, "");
    expectentry("0100111001110001=N", 0x4E71, 0xFFFF, "N");
}

TEST(ParseMnemonic, ATemplateEndsAfter255Characters) {
    const std::string head = "0100111001110001=";
    EXPECT_EQ(parsemnemonic(head + std::string(255, 'a') + "b").text, std::string(255, 'a'));
    EXPECT_EQ(parsemnemonic(head + std::string(254, 'a') + "b").text, std::string(254, 'a') + "b");
}

TEST(ParseMnemonics, EveryLineOfTheSectionIsAnEntryInItsOrder) {
    EXPECT_EQ(templatesof("[s82]\n0=B\n[mnemonics]\n0100111001110001=NOP\r\n0100111001110101=RTS\n[x]\n1=A"),
              (Texts{"NOP", "RTS"}));
    EXPECT_EQ(templatesof("[mnemonics]\n0100111001110001=NOP"), Texts{"NOP"}) << "no line feed at the end";
}

TEST(ParseMnemonics, TheFirstEmptyLineEndsTheTable) {
    EXPECT_EQ(templatesof("[mnemonics]\n0100111001110001=NOP\n\n0100111001110101=RTS\n"), Texts{"NOP"});
    EXPECT_EQ(templatesof("[mnemonics]\n0100111001110001=NOP\n\r\n0100111001110101=RTS\n"), Texts{"NOP"});
    EXPECT_EQ(templatesof("[mnemonics]\n0100111001110001=NOP\n \n0100111001110101=RTS\n"),
              (Texts{"NOP", "", "RTS"}))
        << "a blank is a line";
    const InstructionTable table = tableof("[mnemonics]\n0100111001110001=NOP\n\n0100111001110101=RTS\n\n\n");
    EXPECT_EQ(table.names().iMnemonicCnt(), 1);
    EXPECT_EQ(table.names().find(0x4E75), nullptr);
}

TEST(ParseMnemonics, TheSectionIsTheFirstOfThatNameWhateverItsCase) {
    EXPECT_EQ(templatesof("[MNEMonics]\n0100111001110001=NOP\n[mnemonics]\n0100111001110101=RTS\n"),
              Texts{"NOP"});
    EXPECT_EQ(templatesof("[mnemonic]\n0100111001110001=NOP\n"), Texts{"no section"});
    EXPECT_EQ(templatesof("0100111001110001=NOP\n"), Texts{"no section"});
    EXPECT_EQ(templatesof(""), Texts{"no section"});
    EXPECT_EQ(templatesof("[mnemonics]\n[s82]\n0=B\n"), Texts{});
    EXPECT_EQ(templatesof("[mnemonics]"), Texts{});
}

TEST(ValueBits, AFieldIsCountedFromTheMostSignificantBit) {
    // 0xABCD is 1010 1011 1100 1101.
    EXPECT_EQ(valuebits(0xABCD, 0, 4), 0xAU);
    EXPECT_EQ(valuebits(0xABCD, 4, 3), 5U);
    EXPECT_EQ(valuebits(0xABCD, 8, 8), 0xCDU);
    EXPECT_EQ(valuebits(0xABCD, 10, 6), 0x0DU);
    EXPECT_EQ(valuebits(0xABCD, 13, 3), 5U);
    EXPECT_EQ(valuebits(0xABCD, 0, 15), 0x55E6U);
    EXPECT_EQ(valuebits(0xABCD, 0, 16), 0xABCDU);
}

TEST(ValueBits, AFieldThatRunsOverTheEndIsFilledWithZeros) {
    EXPECT_EQ(valuebits(0xABCD, 12, 8), 0xD0U);
    EXPECT_EQ(valuebits(0xFFFF, 15, 15), 0x4000U);
    EXPECT_EQ(valuebits(0xFFFF, 16, 15), 0U);
}

TEST(ValueBits, WithoutAWidthThereIsNothing) {
    EXPECT_EQ(valuebits(0xFFFF, 0, 0), 0U);
    EXPECT_EQ(valuebits(0xFFFF, 0, -7), 0U) << "the width that a closing parenthesis is";
    EXPECT_EQ(valuebits(0xFFFF, 4, -16), 0U);
}

TEST(ValueBits, EveryFieldBitByBit) {
    for (const uint32_t word : {0x0000U, 0x8001U, 0xA53CU, 0x1234U, 0xFFFFU})
        for (int32_t a = 0; a < 16; ++a)
            for (int32_t b = 1; b < 16; ++b) {
                uint32_t expected = 0;
                for (int32_t i = a; i < a + b; ++i)
                    expected = expected * 2 + (i < 16 && std::rotl(word << 16, i) >> 31 != 0 ? 1 : 0);
                ASSERT_EQ(valuebits(static_cast<uint16_t>(word), a, b), expected)
                    << word << ", " << b << " bits from " << a;
            }
}

TEST(Hex6toi, SixDigitsOfEitherCase) {
    EXPECT_EQ(hex6toi("F8036E"), 0xF8036EU);
    EXPECT_EQ(hex6toi("f8036e"), 0xF8036EU);
    EXPECT_EQ(hex6toi("FFFFFE"), 0xFFFFFEU) << "no sign";
    EXPECT_EQ(hex6toi("1234567"), 0x123456U);
    EXPECT_EQ(hex6toi("12F80010"), 0x12F800U);
}

TEST(Hex6toi, TheEndOrAParenthesisEndsIt) {
    EXPECT_EQ(hex6toi("F8036E(PC),A0"), 0xF8036EU);
    EXPECT_EQ(hex6toi("12(34"), 0x12U);
    EXPECT_EQ(hex6toi("12"), 0x12U);
    EXPECT_EQ(hex6toi("(12"), 0U);
    EXPECT_EQ(hex6toi(""), 0U);
}

TEST(FindMnemonic, TheFirstEntryThatMatchesWinsHoweverGeneral) {
    const InstructionTable table = tableof("[mnemonics]\n"
                                           "0100111001110001=NOP\n"
                                           "0100111001??????:general\n"
                                           "0100111001110101=RTS\n"
                                           "01??????????????:more\n");
    const MnemonicTable& names = table.names();
    const auto found = [&names](uint16_t opcode) {
        const Mnemonic* entry = names.find(opcode);
        return entry == nullptr ? "none" : entry->text;
    };
    EXPECT_EQ(found(0x4E71), "NOP");
    EXPECT_EQ(found(0x4E75), "general") << "the exact line comes later";
    EXPECT_EQ(found(0x7E75), "more");
    EXPECT_EQ(found(0x8E75), "none");
    EXPECT_EQ(names.iMnemonicCnt(), 4);
}

TEST(Spelling, KeysAreDecimalAndWhole) {
    const InstructionTable table =
        tableof("[mnemonics]\n[eA6]\n10=ten\n1=one\n0=\n1=again\n[dA6]\n01=other\n");
    const MnemonicTable& names = table.names();
    EXPECT_STREQ(names.spelling({'e', 'A', '6'}, 1), "one");
    EXPECT_STREQ(names.spelling({'e', 'A', '6'}, 10), "ten");
    EXPECT_STREQ(names.spelling({'e', 'A', '6'}, 0), "");
    EXPECT_STREQ(names.spelling({'e', 'A', '6'}, 1), "one") << "the second time";
    EXPECT_EQ(names.spelling({'e', 'A', '6'}, 2), nullptr);
    EXPECT_EQ(names.spelling({'d', 'A', '6'}, 1), nullptr) << "01 is another key";
    EXPECT_EQ(names.spelling({'f', 'A', '6'}, 1), nullptr);
}

TEST(Spelling, WithoutATableThereIsNone) {
    const MnemonicTable none;
    EXPECT_FALSE(none.isloaded());
    EXPECT_FALSE(none.hasmnemonics());
    EXPECT_EQ(none.iMnemonicCnt(), 0);
    EXPECT_EQ(none.find(0x4E71), nullptr);
    EXPECT_EQ(none.spelling({'e', 'A', '6'}, 1), nullptr);
}

TEST(Spelling, SurvivesATableThatIsMoved) {
    InstructionTable table = tableof("[mnemonics]\n0100111001110001=NOP\n[eA6]\n1=one\n");
    EXPECT_STREQ(table.names().spelling({'e', 'A', '6'}, 1), "one");
    const InstructionTable moved = std::move(table);
    EXPECT_STREQ(moved.names().spelling({'e', 'A', '6'}, 1), "one");
    EXPECT_EQ(moved.names().find(0x4E71)->text, "NOP");
}

} // namespace
} // namespace vantorel::test
