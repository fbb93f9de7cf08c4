#pragma once
// The layouts in which dumps hold an image, undone.

#include "base/bytes.h"

namespace vantorel {

/// `data` with the two bytes of every 16-bit word exchanged; an odd last byte stays.
[[nodiscard]] Bytes byteswapped(View data);

/// A CD32 ROM file: the words of each half of the image interleaved over two quarters of the file.
inline constexpr int32_t iCD32Size = 1048576;

/// Undoes the interleave of the first `iCD32Size` bytes of `data`, which has at least as many; the rest
/// stays. Long k of the image's first half is word k of the file's first quarter and word k of its third,
/// long k of the second half word k of the second quarter and word k of the fourth.
void deinterleaveCD32(Bytes& data);

} // namespace vantorel
