#pragma once
// The shapes in which ROM images come out of EPROM readers, and files that hold several of them.

#include "base/bytes.h"

#include <cstdint>
#include <vector>

namespace vantorel::test {

/// The two bytes of every word exchanged; an odd last byte stays.
[[nodiscard]] Bytes byteswapped(View bytes);

/// Which file of a pair of EPROM dumps holds which half of each long, in the order in which they are tried.
enum class WordOrder {
    LoHi,        ///< the first file has the first word of each long, the second file the second
    LoHiSwapped, ///< the same, each word byte-swapped
    HiLo,        ///< the first file has the second word of each long
    HiLoSwapped
};

struct ChipPair {
    Bytes first;
    Bytes second;
};

/// The pair that gives `image` again when it is merged in this order. The length is a multiple of 4.
[[nodiscard]] ChipPair splitpair(View image, WordOrder order = WordOrder::LoHi);

/// `bytes` over and over, `times` times.
[[nodiscard]] Bytes overburnt(View bytes, int times = 2);

/// The file of a CD32 dump that holds this image: of each long of the first half, the first word goes to the
/// first quarter of the file and the second to the third; of the second half, to the second and fourth. The
/// length is a multiple of 8, of a real one 1 MB.
[[nodiscard]] Bytes cd32interleaved(View image);
/// The same for an image given as its two halves.
[[nodiscard]] Bytes cd32interleaved(View lower, View upper);

/// `bytes` at byte `offset` of a file.
struct Part {
    int32_t offset = 0;
    Bytes bytes{};
};

/// A file of `size` bytes (0: as long as needed) with these parts, and `fill` elsewhere.
[[nodiscard]] Bytes container(const std::vector<Part>& parts, int32_t size = 0, uint8_t fill = 0);

/// One after the other.
[[nodiscard]] Bytes joined(View first, View second);

} // namespace vantorel::test
