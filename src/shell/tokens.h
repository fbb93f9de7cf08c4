#pragma once
// The tokens of the current command line.

#include <array>
#include <cstdint>

namespace vantorel {

inline constexpr int32_t iTokenSlots = 16;

/// What unused slots point at.
inline constexpr const char* cNull = "";

/// The tokens; never null, `cNull` behind the last. They point into the line that `tokens` cut and live as
/// long. Filled by `tokens`, emptied by `droptokens` when the command is done.
extern std::array<const char*, iTokenSlots> cpTokens;
/// Number of tokens found in the line.
extern int32_t iTokens;

/// Cuts `text` in place at its spaces into at most 16 tokens, the first in lower case. A token that begins
/// with a quote runs to the next such quote, which ends it even with no space behind it, or to the end of the
/// line.
void tokens(char* text);

/// Empties every slot.
void droptokens();

} // namespace vantorel
