#pragma once
// The program's number parsers. They read texts as loosely as users and hash files write them; what a text
// holds beyond the number is ignored.

#include "base/bytes.h"

#include <cstdint>
#include <optional>

namespace vantorel {

/// Worth of a hexadecimal digit: below 'A' the code less '0', below 'a' the code less 55, else the code
/// less 87. Nothing is validated: any other character is worth what this gives.
[[nodiscard]] constexpr int32_t hexdigit(char c) {
    const int32_t code = static_cast<unsigned char>(c);
    if (code < 'A') return code - '0';
    return code < 'a' ? code - 55 : code - 87;
}

/// The leading decimal number of `text`, after blanks and a sign; 0 when there is none. Held at the ends of
/// the 32-bit range.
[[nodiscard]] int32_t decimal(const char* text);

/// The same, or none when the number does not fit 32 signed bits.
[[nodiscard]] std::optional<int32_t> decimalinrange(const char* text);

/// Whether every character of `text` is a decimal digit; true of the empty text.
[[nodiscard]] bool isnumeric(const char* text);

/// Whether `text` begins with "0x" (lower-case x).
[[nodiscard]] bool ishexadecimal(const char* text);

/// A text that begins with "0x": its hexadecimal digits up to the end or a comma, wrapping at 32 bits. Any
/// other: its decimal number.
[[nodiscard]] uint32_t atoiorhex(const char* text);

/// At most eight hexadecimal digits, ending early at the end of `text`. A prefix is the caller's to skip.
[[nodiscard]] uint32_t Hex2iUINT32(const char* text);

/// At most eight hexadecimal digits, ending early at the end of `text` or at "(", read as a signed number
/// that is as wide as its digits: "80" is -128, "0080" is 128.
[[nodiscard]] int32_t Hex2iINT32(const char* text);

/// The bytes that `text`, "0x" and pairs of hexadecimal digits, spells. Of an odd number of digits the last
/// pair's second is the NUL behind them. None, and a message, when the text does not begin with "0x".
[[nodiscard]] Bytes hex2bin(const char* text);

} // namespace vantorel
