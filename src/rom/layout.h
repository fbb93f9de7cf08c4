#pragma once
// The layouts in which dumps hold an image, undone.

#include "base/bytes.h"

namespace vantorel {

/// Exchanges the two bytes of every 16-bit word of `data`; an odd last byte stays.
void swapbytes(std::span<uint8_t> data);

/// `data` with the two bytes of every 16-bit word exchanged; an odd last byte stays.
[[nodiscard]] Bytes byteswapped(View data);

/// Copies every second 16-bit word of `from`, beginning at its byte `start` (0 or 2), to `to`, which has room
/// for half of `from`. The last may be cut short. Returns the number of bytes.
size_t takewords(View from, size_t start, std::span<uint8_t> to);

/// Lays the 16-bit words of `high` and `low`, which is as long, in turn from `to` on; an odd last byte of
/// both is left out.
void interleavewords(View high, View low, uint8_t* to);

/// Whether `data` is one thing twice: of even length, both halves the same.
[[nodiscard]] bool isdoubled(View data);

/// Undoes the interleave of the first `iSize1M` bytes of `data`, a CD32 ROM file, which has at least as many;
/// the rest stays. Long k of the image's first half is word k of the file's first quarter and word k of its
/// third, long k of the second half word k of the second quarter and word k of the fourth.
void deinterleaveCD32(Bytes& data);

} // namespace vantorel
