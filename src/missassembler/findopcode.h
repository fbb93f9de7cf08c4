#pragma once
// Instructions searched for by their text.

#include <cstdint>
#include <string>

namespace vantorel {

/// Looks in the image of slot `rom` for the instruction that is spelt `text`, whole and case ignored, at
/// `start`, `start` + 2 and so on below `end` (image offsets in bytes; none beyond the image). The first
/// found becomes the value of the alias "FIND", as "0x%08x". Returns 0; 1 with a message when there is none,
/// no such slot, or no mnemonic table.
int findopcode(int32_t rom, uint32_t start, uint32_t end, const std::string& text);

} // namespace vantorel
