#include "missassembler/decode.h"

#include "base/message.h"
#include "missassembler/bounds.h"
#include "rom/store.h"
#include "shell/numbers.h"

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

// Room for a text of `iMissTextMost` characters in which a target replaces a displacement.
constexpr size_t iTargetMost = 8;
using WorkText = std::array<char, iMissTextMost + iTargetMost + 1>;

char* writeliteral(char* out, const Expansion& expansion, const Piece& piece) {
    std::memcpy(out, expansion.literals.data() + piece.at, piece.length);
    return out + piece.length;
}

char* writeexpansion(char* out, const Expansion& expansion, InstructionBytes& bytes) {
    std::array<uint32_t, iFetchesMost> values;
    size_t count = 0;
    for (const Fetch what : expansion.fetches) {
        values[count] = fetch(bytes, what, values);
        ++count;
    }
    for (const Piece& piece : expansion.pieces)
        out = piece.kind == Piece::Literal ? writeliteral(out, expansion, piece)
                                           : writepiece(out, piece, values);
    return out;
}

bool endsdisplacement(char c) { return c == ' ' || c == ',' || c == '$'; }

// Where the displacement before `marker` begins: behind the nearest blank, comma or dollar, never with the
// first character.
size_t displacementstart(std::string_view text, size_t marker) {
    while (marker > 0 && !endsdisplacement(text[marker]))
        --marker;
    return marker + 1;
}

// At least six digits.
char* writetarget(char* out, uint32_t target) {
    int digits = 6;
    while (digits < static_cast<int>(iTargetMost) && target >> (4 * digits) != 0)
        ++digits;
    return writehex(out, target, digits);
}

// Replaces the displacement before the first "(PC)" of the text in [begin, end), or "(pc)" when there is
// none, by the address that it leads to. The displacement counts from behind the opcode word, at CPU address
// `from`, whatever words are before it. Returns the new end.
char* settarget(char* begin, char* end, uint32_t from, int32_t rom) {
    constexpr size_t markerlength = 4;
    *end = '\0';
    const std::string_view text(begin, end);
    size_t marker = text.find("(PC)");
    const bool keepmarker = marker != std::string_view::npos;
    if (!keepmarker) marker = text.find("(pc)");
    if (marker == std::string_view::npos) return end;
    char* const displacement = begin + displacementstart(text, marker);
    const uint32_t target = from + static_cast<uint32_t>(Hex2iINT32(displacement));
    checkaddressbound(rom, target);
    std::array<char, iTargetMost> digits;
    const char* const digitsend = writetarget(digits.data(), target);
    const char* const rest = begin + marker + (keepmarker ? 0 : markerlength);
    char* const newrest = displacement + (digitsend - digits.data());
    std::memmove(newrest, rest, static_cast<size_t>(end - rest));
    std::copy<const char*>(digits.data(), digitsend, displacement);
    return newrest + (end - rest);
}

bool beginsnumber(char c) { return c == ' ' || c == '#' || c == '$' || c == ','; }

bool isupperhex(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); }

// Copies a text less the zeros that lead its numbers.
void copywithoutzeros(std::string_view text, MissText& out) {
    char* to = out.data();
    const char* const end = text.data() + text.size();
    for (const char* from = text.data(); from != end;) {
        const char c = *from++;
        *to++ = c;
        if (!beginsnumber(c)) continue;
        while (end - from >= 2 && *from == '0' && isupperhex(from[1]))
            ++from;
    }
    *to = '\0';
}

// The instruction's text before targets and zeros are seen to; `hasmarker` tells whether it may hold a
// marker.
char* writeinstruction(char* out, uint16_t opcode, InstructionTable& table, InstructionBytes& bytes,
                       bool& hasmarker) {
    const Expansion* expansion = isshown(kRaw) ? nullptr : table.expansion(opcode);
    hasmarker = expansion == nullptr || expansion->hasmarker;
    if (expansion != nullptr) return writeexpansion(out, *expansion, bytes);
    return std::ranges::copy(expandinstruction(table.names(), opcode, bytes), out).out;
}

} // namespace

int32_t missassembleA(int32_t rom, int32_t offset, MissText& out, InstructionTable& table) {
    const KickstartRom& slot = psKickstartRoms[static_cast<size_t>(rom)];
    InstructionBytes bytes = {.image = slot.pcROM, .offset = offset, .rom = rom};
    const auto opcode = static_cast<uint16_t>(bytes.take(iOpcodeLength));
    WorkText text;
    bool hasmarker = false;
    char* end = writeinstruction(text.data(), opcode, table, bytes, hasmarker);
    if (hasmarker) {
        const uint32_t from = slot.iROMBase + static_cast<uint32_t>(offset) + iOpcodeLength;
        end = settarget(text.data(), end, from, rom);
    }
    const size_t length = std::min(static_cast<size_t>(end - text.data()), iMissTextMost);
    copywithoutzeros({text.data(), length}, out);
    return bytes.length;
}

} // namespace vantorel
