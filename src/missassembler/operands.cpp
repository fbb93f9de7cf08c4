#include "missassembler/operands.h"

#include "missassembler/bounds.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vantorel {

uint32_t InstructionBytes::take(int32_t size) {
    const int64_t at = offset + length;
    length += size;
    if (isinside(image, at, size)) {
        const uint8_t* p = image.data() + at;
        return size == 4 ? iUINT32(p) : size == 2 ? iUINT16(p) : *p;
    }
    uint32_t value = 0;
    for (int64_t i = at; i < at + size; ++i)
        value = value << 8 | (isinside(image, i, 1) ? image[static_cast<size_t>(i)] : 0U);
    return value;
}

namespace {

// Extension words
constexpr uint32_t iFullFormat = 1U << 8;
constexpr uint32_t iAddressRegister = 1U << 15;

uint32_t registernumber(uint32_t extension) { return extension >> 12 & 7U; }

// Bytes of the displacement behind a full extension word: reserved, null, word, long.
constexpr std::array<int32_t, 4> iBaseDisplacement = {0, 0, 2, 4};

int32_t basedisplacement(uint32_t extension) { return iBaseDisplacement[extension >> 4 & 3U]; }

uint32_t fetchdisplacement(InstructionBytes& bytes, uint32_t extension) {
    if ((extension & iFullFormat) == 0) return extension & 0xFFU;
    const int32_t size = basedisplacement(extension);
    return size == 0 ? 0 : bytes.take(size);
}

} // namespace

uint32_t fetch(InstructionBytes& bytes, Fetch what, std::span<const uint32_t> values) {
    switch (what.kind) {
    case Fetch::Byte:
        return bytes.take(1);
    case Fetch::Word:
        return bytes.take(2);
    case Fetch::Displacement:
        return fetchdisplacement(bytes, values[what.extension]);
    case Fetch::Long:
        break;
    }
    const uint32_t value = bytes.take(4);
    checkaddressbound(bytes.rom, value);
    return value;
}

size_t longest(Piece::Kind kind) {
    switch (kind) {
    case Piece::Literal:
        break;
    case Piece::Byte:
        return 2;
    case Piece::Word:
        return 4;
    case Piece::Long:
    case Piece::Extension:
        return 8;
    case Piece::Index:
        return 10;
    case Piece::Displacement:
    case Piece::ToControl:
    case Piece::FromControl:
        return 16;
    case Piece::Registers:
    case Piece::RegistersTurned:
        return iPieceMost;
    }
    return 0;
}

char* writehex(char* out, uint32_t value, int digits) {
    for (int i = digits - 1; i >= 0; --i, value >>= 4)
        out[i] = "0123456789ABCDEF"[value & 15U];
    return out + digits;
}

uint32_t turnedmask(uint32_t mask) {
    uint32_t result = 0;
    for (int bit = 0; bit < 16; ++bit)
        result |= (mask >> bit & 1U) << (15 - bit);
    return result;
}

namespace {

char* writetext(char* out, std::string_view text) { return std::ranges::copy(text, out).out; }

char* writeextension(char* out, uint32_t extension) {
    out = writehex(writetext(out, "[X:"), extension, 4);
    *out++ = ']';
    return out;
}

// The register that the top four bits of an extension word name.
char* writeregister(char* out, uint32_t extension) {
    *out++ = (extension & iAddressRegister) != 0 ? 'A' : 'D';
    *out++ = static_cast<char>('0' + registernumber(extension));
    return out;
}

char* writedisplacement(char* out, uint32_t extension, uint32_t value) {
    out = writeextension(out, extension);
    if ((extension & iFullFormat) == 0) return writehex(out, value, 4);
    const int32_t size = basedisplacement(extension);
    return size == 0 ? writetext(out, "?") : writehex(out, value, size * 2);
}

struct ControlRegister {
    uint32_t number; // low 12 bits of MOVEC's extension word
    std::string_view name;
};

constexpr auto sControlRegisters = std::to_array<ControlRegister>({
    {0x000, "SFC (68010+)"},
    {0x001, "DFC (68010+)"},
    {0x002, "CACR (68020+)"},
    {0x800, "USP (68010+)"},
    {0x801, "VBR (68010+)"},
    {0x802, "CAAR (68020+)"},
    {0x803, "MSP (68020+)"},
    {0x804, "ISP (68020+)"},
});

std::string_view controlregister(uint32_t extension) {
    const auto found = std::ranges::find(sControlRegisters, extension & 0xFFFU, &ControlRegister::number);
    return found == sControlRegisters.end() ? "(unknown)" : found->name;
}

char* writetocontrol(char* out, uint32_t extension) {
    out = writeregister(out, extension);
    *out++ = ',';
    return writetext(out, controlregister(extension));
}

char* writefromcontrol(char* out, uint32_t extension) {
    out = writetext(out, controlregister(extension));
    *out++ = ',';
    return writeregister(out, extension);
}

// The eight registers of one kind, each with a slash before it; three and more in a row as a range.
char* writeregisters(char* out, uint32_t mask, char kind) {
    for (int n = 0; n < 8; ++n) {
        if ((mask >> n & 1U) == 0) continue;
        *out++ = '/';
        *out++ = kind;
        *out++ = static_cast<char>('0' + n);
        if ((mask >> n & 7U) != 7U) continue;
        while ((mask >> n & 2U) != 0)
            ++n;
        *out++ = '-';
        *out++ = kind;
        *out++ = static_cast<char>('0' + n);
    }
    return out;
}

char* writeregisterlist(char* out, uint32_t mask) {
    std::array<char, iPieceMost> list;
    char* end = writeregisters(list.data(), mask & 0xFFU, 'D');
    end = writeregisters(end, mask >> 8 & 0xFFU, 'A');
    if (end == list.data()) return out;
    return std::copy(list.data() + 1, end, out);
}

} // namespace

char* writepiece(char* out, const Piece& piece, std::span<const uint32_t> values) {
    const uint32_t value = values[piece.value];
    switch (piece.kind) {
    case Piece::Literal:
        break;
    case Piece::Byte:
        return writehex(out, value, 2);
    case Piece::Word:
        return writehex(out, value, 4);
    case Piece::Long:
        return writehex(out, value, 8);
    case Piece::Extension:
        return writeextension(out, value);
    case Piece::Index:
        return writeregister(writeextension(out, value), value);
    case Piece::Displacement:
        return writedisplacement(out, values[piece.extension], value);
    case Piece::ToControl:
        return writetocontrol(out, value);
    case Piece::FromControl:
        return writefromcontrol(out, value);
    case Piece::Registers:
        return writeregisterlist(out, value);
    case Piece::RegistersTurned:
        return writeregisterlist(out, turnedmask(value));
    }
    return out;
}

} // namespace vantorel
