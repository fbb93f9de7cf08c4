#pragma once
// Templates turned into text. Most of a template depends on the opcode word alone, so that this much is
// worked out once for each opcode word, and only the rest for each instruction.

#include "missassembler/mnemonics.h"
#include "missassembler/operands.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantorel {

/// Literals may be read in blocks of this many characters.
inline constexpr size_t iLiteralBlock = 16;

/// What there is to do for every instruction with one opcode word.
struct Expansion {
    std::vector<Fetch> fetches; ///< in the order of the bytes; at most `iFetchesMost`
    std::vector<Piece> pieces;  ///< in the order of the text; at most `iMissTextMost` characters in all
    std::string literals;       ///< the characters of all literal pieces, and `iLiteralBlock` NULs
    bool hasmarker = false;     ///< whether the text may hold a marker of `finish.h`
    bool isfixed = false;       ///< whether `literals` is the text of every such instruction, finished

    /// The characters of all literal pieces.
    [[nodiscard]] size_t length() const { return literals.size() - iLiteralBlock; }
};

inline constexpr size_t iFetchesMost = 16;

/// Works it out for `opcode`. None when that cannot be done without the bytes that follow: a code that
/// fetched digits are part of, a text that may have to be cut, more fetches than an instruction has room for.
[[nodiscard]] std::optional<Expansion> expandopcode(const MnemonicTable& table, uint16_t opcode);

/// The text of one instruction, whose opcode word `opcode` has been taken from `bytes`, expanded pass by pass
/// with the bytes at hand. Traces above level 9.
[[nodiscard]] std::string expandinstruction(const MnemonicTable& table, uint16_t opcode,
                                            InstructionBytes& bytes);

} // namespace vantorel
