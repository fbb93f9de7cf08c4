#pragma once
// One instruction as text: the decoder that listings and searches share.

#include "missassembler/expansion.h"
#include "missassembler/mnemonics.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace vantorel {

/// Where an instruction's text goes; a NUL ends it.
using MissText = std::array<char, iMissTextMost + 1>;

/// A mnemonic table with what was worked out from it so far for each opcode word.
class InstructionTable {
public:
    InstructionTable() = default;
    explicit InstructionTable(MnemonicTable itsmnemonics) : mnemonics(std::move(itsmnemonics)) {}

    [[nodiscard]] const MnemonicTable& names() const { return mnemonics; }

    /// The expansion for `opcode`; null when each instruction must be expanded by itself. Lives until the
    /// next call.
    [[nodiscard]] const Expansion* expansion(uint16_t opcode);

private:
    static constexpr int32_t iUnseen = 0;
    static constexpr int32_t iByItself = -1;

    MnemonicTable mnemonics;
    /// For each opcode word 1 + its index in `expansions`, or one of the above. Empty until the first is
    /// asked for.
    std::vector<int32_t> slots;
    std::vector<Expansion> expansions;
};

/// The table of the process, from "missassemble.ini". Filled by `initmissassembler`, then kept.
extern InstructionTable sMnemonic;

/// Writes the instruction at image offset `offset` of slot `rom`, both of which exist, into `out`, spelt as
/// `table` says; addresses it refers to are shown to `checkaddressbound`. Returns its length in bytes, 2 or
/// more; bytes beyond the end of the image count as 0. Traces above level 9.
int32_t missassembleA(int32_t rom, int32_t offset, MissText& out, InstructionTable& table);

} // namespace vantorel
