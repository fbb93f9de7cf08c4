#pragma once
// The stops that a library's own structures give the one-pass listing.

#include <cstdint>

namespace vantorel {

/// What the first letter of a stop's text says of the bytes there.
namespace StopType {
inline constexpr char cPrint = 'H';      ///< nothing, the text is all
inline constexpr char cLong = 'X';       ///< one long
inline constexpr char cWord = 'x';       ///< one word
inline constexpr char cString = 's';     ///< a text up to its NUL
inline constexpr char cInitStruct = 'i'; ///< a command stream of InitStruct
inline constexpr char cCode = 'l';       ///< an instruction; so does any other letter
} // namespace StopType

/// Adds the stops for the ROMTAG of component `component` of slot `rom`, which both exist, and for what it
/// points at; none without a ROMTAG. One below the component is left out, but shown to `checkaddressbound`.
/// Tells of the vectors above level 0.
void addstructurelabels(int32_t rom, int32_t component);

} // namespace vantorel
