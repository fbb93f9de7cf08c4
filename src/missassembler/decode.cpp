#include "missassembler/decode.h"

#include "base/message.h"
#include "missassembler/finish.h"
#include "rom/store.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace vantorel {

InstructionTable sMnemonic;

const Expansion* InstructionTable::expansion(uint16_t opcode) {
    if (slots.empty()) slots.assign(size_t{1} << 16, iUnseen);
    int32_t& slot = slots[opcode];
    if (slot == iUnseen) {
        auto expanded = expandopcode(mnemonics, opcode);
        slot = iByItself;
        if (expanded) {
            expansions.push_back(std::move(*expanded));
            slot = static_cast<int32_t>(expansions.size());
        }
    }
    return slot == iByItself ? nullptr : &expansions[static_cast<size_t>(slot) - 1];
}

namespace {

constexpr int32_t iOpcodeLength = 2;

// Room for a text of `iMissTextMost` characters in which a target replaces a displacement, and for the rest
// of a literal's last block.
using WorkText = std::array<char, iMissTextMost + iTargetMost + iLiteralBlock>;

// In blocks: nearly all literals are shorter than one, and a length that the compiler knows is copied at
// once.
char* writeliteral(char* out, const char* from, size_t length) {
    for (size_t at = 0; at < length; at += iLiteralBlock)
        std::memcpy(out + at, from + at, iLiteralBlock);
    return out + length;
}

char* writeexpansion(char* out, const Expansion& expansion, InstructionBytes& bytes) {
    std::array<uint32_t, iFetchesMost> values;
    size_t count = 0;
    for (const Fetch what : expansion.fetches) {
        values[count] = fetch(bytes, what, values);
        ++count;
    }
    for (const Piece& piece : expansion.pieces)
        out = piece.kind == Piece::Literal
                  ? writeliteral(out, expansion.literals.data() + piece.at, piece.length)
                  : writepiece(out, piece, values);
    return out;
}

// The rest of an instruction whose opcode word has been taken from `bytes`; `expansion` is null when it must
// be expanded by itself.
void decode(const MnemonicTable& names, const Expansion* expansion, uint16_t opcode, InstructionBytes& bytes,
            uint32_t from, MissText& out) {
    WorkText text;
    char* end = expansion != nullptr
                    ? writeexpansion(text.data(), *expansion, bytes)
                    : std::ranges::copy(expandinstruction(names, opcode, bytes), text.data()).out;
    if (expansion == nullptr || expansion->hasmarker) end = settarget(text.data(), end, from, bytes.rom);
    const size_t length = std::min(static_cast<size_t>(end - text.data()), iMissTextMost);
    *dropzeros(out.data(), {text.data(), length}) = '\0';
}

} // namespace

int32_t missassembleA(int32_t rom, int32_t offset, MissText& out, InstructionTable& table) {
    const KickstartRom& slot = psKickstartRoms[static_cast<size_t>(rom)];
    InstructionBytes bytes = {.image = slot.pcROM, .offset = offset, .rom = rom};
    const auto opcode = static_cast<uint16_t>(bytes.take(iOpcodeLength));
    // Traces show each pass.
    const Expansion* expansion = isshown(kRaw) ? nullptr : table.expansion(opcode);
    if (expansion != nullptr && expansion->isfixed) {
        writeliteral(out.data(), expansion->literals.data(), expansion->length() + 1); // with its NUL
        return bytes.length;
    }
    const uint32_t from = slot.iROMBase + static_cast<uint32_t>(offset) + iOpcodeLength;
    decode(table.names(), expansion, opcode, bytes, from, out);
    return bytes.length;
}

} // namespace vantorel
