#pragma once
// What the bytes behind an opcode word say, and how it is written: extension words, immediates, register
// lists and control registers. The extension word formats are those of the M68000 Family Programmer's
// Reference Manual, section 2.2.

#include "base/bytes.h"

#include <cstdint>
#include <span>

namespace vantorel {

/// The instruction being read: an image, where in it the instruction begins, and how far it has been read.
struct InstructionBytes {
    View image;
    int64_t offset = 0; ///< image offset in bytes
    int32_t length = 0; ///< bytes read so far
    int32_t rom = 0;    ///< slot, for the bounds

    /// The next `size` bytes, 1, 2 or 4, as a number. Bytes beyond the end of the image are 0.
    uint32_t take(int32_t size);
};

/// Something that an instruction takes from behind its opcode word.
struct Fetch {
    enum Kind : uint8_t {
        Byte,
        Word,
        Long,        ///< also an address for the bounds
        Displacement ///< that of the extension word that is value `extension`; nothing for some
    };
    Kind kind = Word;
    uint16_t extension = 0;
};

/// Takes it; `values` holds what was fetched before.
[[nodiscard]] uint32_t fetch(InstructionBytes& bytes, Fetch what, std::span<const uint32_t> values);

/// A piece of an instruction's text.
struct Piece {
    enum Kind : uint8_t {
        Literal,        ///< a text known beforehand
        Byte,           ///< two digits
        Word,           ///< four digits
        Long,           ///< eight digits
        Extension,      ///< an extension word as such
        Index,          ///< the index register of an extension word
        Displacement,   ///< the displacement of extension word `extension`
        ToControl,      ///< MOVEC's register and control register
        FromControl,    ///< the same the other way round
        Registers,      ///< MOVEM's register list
        RegistersTurned ///< the same from a mask in the order of a pre-decrement
    };
    Kind kind = Literal;
    uint8_t length = 0;     ///< of a literal, in characters
    uint16_t at = 0;        ///< of a literal, where in the literals it begins
    uint16_t value = 0;     ///< which of the values fetched it shows
    uint16_t extension = 0; ///< which of them is the extension word of a displacement
};

/// Room for a piece of any kind, in characters: for a register list, in which at most twelve registers stand
/// by themselves, each with a slash before it while the list is made.
inline constexpr size_t iPieceMost = 36;

/// Room for a piece of `kind`, in characters; 0 for a literal, which knows its own length.
[[nodiscard]] size_t longest(Piece::Kind kind);

/// Writes the piece, no literal, at `out` and returns where it ends. Room for `longest` characters.
[[nodiscard]] char* writepiece(char* out, const Piece& piece, std::span<const uint32_t> values);

/// The mask of a register list with its 16 bits in reverse.
[[nodiscard]] uint32_t turnedmask(uint32_t mask);

/// Writes the low `digits` * 4 bits of `value` as that many upper-case hexadecimal digits.
[[nodiscard]] char* writehex(char* out, uint32_t value, int digits);

} // namespace vantorel
