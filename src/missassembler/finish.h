#pragma once
// What is done to every instruction's text at last: displacements become targets, and numbers lose the zeros
// before them.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vantorel {

/// What stands behind a displacement from the instruction: it stays behind the target, or goes.
inline constexpr std::string_view cMarker = "(PC)";
inline constexpr std::string_view cDroppedMarker = "(pc)";

/// The most characters that `settarget` makes a text longer by.
inline constexpr size_t iTargetMost = 8;

/// Replaces the displacement before the first `cMarker` of the text in [begin, end), or `cDroppedMarker` when
/// there is none, by the address that it leads to, and removes the latter. The displacement counts from
/// behind the opcode word, at CPU address `from`, whatever words are before it; the target is shown to
/// `checkaddressbound` of slot `rom`. Returns the new end; room for `iTargetMost` more characters.
[[nodiscard]] char* settarget(char* begin, char* end, uint32_t from, int32_t rom);

/// Copies `text` to `to`, which may be where it is, less every zero that leads a number behind a blank, "#",
/// "$" or ",". Returns the end.
[[nodiscard]] char* dropzeros(char* to, std::string_view text);

} // namespace vantorel
