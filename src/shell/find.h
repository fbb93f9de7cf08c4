#pragma once
// Bytes of an image searched for and overwritten, both given as texts of hexadecimal digits.

#include <cstdint>
#include <string>

namespace vantorel {

/// Looks in the image of slot `rom` for the bytes that `hextext` ("0x" and pairs of digits) spells, trying
/// the offsets from `start` up to, not including, `end` - `start` - their number. The first found becomes the
/// value of the alias "FIND", as "0x%08x". Returns 0; 1 with a message when there is none, no such slot, or
/// `hextext` does not begin with "0x".
int find(int32_t rom, uint32_t start, uint32_t end, const std::string& hextext);

/// Writes the bytes that `hextext` spells into the image of slot `rom`, up to its end. `where` is a decimal
/// offset, or "0x" and up to eight digits: an offset, or when it lies behind the image an address. Tells
/// which component it hit; the extract of one with relocs is rebuilt. An error line, nothing changed, when
/// there is no such slot, the place lies outside the image, `hextext` does not begin with "0x", or the
/// component hit has relocs and does not lie in the image.
void patch(int32_t rom, const std::string& where, const std::string& hextext);

} // namespace vantorel
