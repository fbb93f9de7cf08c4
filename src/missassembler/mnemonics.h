#pragma once
// The mnemonic table: an INI file that spells every instruction that the missassembler knows, and the
// operands of each. "Vantorel Hashes/missassemble.md" tells how it is written.

#include "hash/ini.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vantorel {

/// The longest text of an instruction, and the longest template, in characters; more is cut off.
inline constexpr size_t iMissTextMost = 255;

/// One pattern line: the instructions whose opcode word, masked by `mask`, is `value`.
struct Mnemonic {
    uint32_t value = 0; ///< the fixed bits of the opcode word
    uint32_t mask = 0;  ///< 1 where the bit is fixed, in the low 16 bits
    std::string text;   ///< the template of the instruction's text
};

/// Reads a pattern line by position: 16 characters of pattern, one that is skipped, the template. '1' fixes
/// a bit to 1, '?' leaves it free, anything else fixes it to 0; bits that a short line lacks are fixed to 0.
[[nodiscard]] Mnemonic parsemnemonic(std::string_view line);

/// The pattern lines of section "mnemonics" of `ini`, up to the first empty one; none when there is no such
/// section.
[[nodiscard]] std::optional<std::vector<Mnemonic>> parsemnemonics(const IniFile& ini);

/// The `b` bits of `word` that begin `a` bits from its most significant end. 0 for a field of no or negative
/// width and for one that does not begin inside the word.
[[nodiscard]] constexpr uint32_t valuebits(uint16_t word, int32_t a, int32_t b) {
    if (a < 0 || a > 15 || b <= 0 || b > 16) return 0;
    return (uint32_t{word} << a & 0xFFFFU) >> (16 - b);
}

/// Up to six hexadecimal digits of `text`, either case, ending early at the end or at "(". No sign; nothing
/// is validated.
[[nodiscard]] uint32_t hex6toi(const char* text);

/// The name of an operand section: a letter and the two digits of the field that it spells.
using SectionName = std::array<char, 3>;

/// A loaded table: the pattern lines and the operand sections that their templates look up.
class MnemonicTable {
public:
    MnemonicTable() = default;
    /// The table in `ini`, whose sections stay with it.
    explicit MnemonicTable(IniFile ini);
    // What was looked up points into the file's text, which moves with the table but is not copied with it.
    MnemonicTable(MnemonicTable&&) = default;
    MnemonicTable& operator=(MnemonicTable&&) = default;
    MnemonicTable(const MnemonicTable&) = delete;
    MnemonicTable& operator=(const MnemonicTable&) = delete;
    ~MnemonicTable() = default;

    /// Whether there is an INI file behind it, with or without pattern lines.
    [[nodiscard]] bool isloaded() const { return psMissasemblerINI.has_value(); }
    /// Whether that file has a section "mnemonics".
    [[nodiscard]] bool hasmnemonics() const { return hassection; }

    [[nodiscard]] int32_t iMnemonicCnt() const { return static_cast<int32_t>(sMnemonic.size()); }

    /// The first entry that matches `opcode`; null when none does.
    [[nodiscard]] const Mnemonic* find(uint16_t opcode) const;

    /// The text for key `value` in the operand section of that name; null when there is no such section or
    /// key. Lives as long as the table.
    [[nodiscard]] const char* spelling(SectionName section, uint32_t value) const;

private:
    std::vector<Mnemonic> sMnemonic;
    std::optional<IniFile> psMissasemblerINI;
    bool hassection = false;
    /// What was found so far, by section name and value.
    mutable std::unordered_map<uint64_t, const char*> spellings;
};

} // namespace vantorel
