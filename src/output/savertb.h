#pragma once
// RTB files: the places in an image that hold addresses, for loaders that put the image at another base.
//
// All numbers are big-endian. The stored checksum of the image (a long), three zero bytes; a stream of
// places; longs 0 and 0xFFFFFFFF; the places of BCPL addresses, a long each, and a long 0, if there are any;
// a long 0. In the stream each place, the image offset of a long, stands as its distance from the one before
// it, the first from 0: as one byte up to 255, else as a zero byte, another one where that makes the file
// position even, and a word. The last place stands as a word, too, where it would begin at an even position.

#include "base/bytes.h"

#include <cstdint>
#include <span>
#include <string>

namespace vantorel {

/// Where the stream of an RTB file begins, in bytes.
inline constexpr int32_t iRtbHeader = 7;

/// The stream of `entries`, image offsets in bytes. A distance above 65535 loses its high bits, one below 0
/// all but its low byte; an entry equal to the one before it is left out. Traces above level 8.
[[nodiscard]] Bytes rtbstream(std::span<const int32_t> entries);

/// Writes the RTB file of slot `rom` to `name` + ".RTB" below the save directory; with an empty name to "0x",
/// the CRC32 of the image, which is taken afresh, "." and the title before that. Returns 0; 1 when there is
/// no such slot (silently), its image is too small or the file cannot be written.
int savertb(int32_t rom, const std::string& name);

} // namespace vantorel
