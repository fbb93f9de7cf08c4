#pragma once
// Reads RTB files the way a loader does, and moves an image with what they say.

#include "base/bytes.h"

#include <cstdint>
#include <vector>

namespace vantorel::test {

/// What an RTB file holds.
struct Rtb {
    uint32_t checksum = 0;       ///< the stored checksum of the image that it belongs to
    std::vector<int32_t> places; ///< image offsets of the longs that hold addresses, in the file's order
    std::vector<uint32_t> bcpl;  ///< image offsets of BCPL addresses
};

/// Reads a whole file. Throws std::runtime_error when there is more or less in it than there must be.
[[nodiscard]] Rtb readrtb(View file);

/// `image`, moved upwards by `distance` bytes: the long at each of the places raised by it. Throws
/// std::runtime_error when one does not lie in the image.
[[nodiscard]] Bytes moved(Bytes image, const Rtb& rtb, uint32_t distance);

} // namespace vantorel::test
