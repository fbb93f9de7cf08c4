#pragma once
// The Kickstart checksum, and what makes an image a valid Kickstart.

#include "base/bytes.h"
#include "rom/header.h"

#include <cstdint>

namespace vantorel {

/// The checksum that the image `data` should carry: the complement of the sum, with end-around carry, of its
/// big-endian longs, less the one at `iChecksumFromEnd`. Bytes that the last long lacks count as 0.
/// Shows calculated and stored value above level 1.
[[nodiscard]] uint32_t cChecksumData(View data);

/// The same of slot `rom`, over its whole image. 0, and an error line, when there is no such slot.
[[nodiscard]] uint32_t cChecksum(int32_t rom);

/// Whether an image of `size` bytes can be a Kickstart: 256K, 512K or 1M.
[[nodiscard]] bool iskickstartsize(size_t size);

/// Whether `data` is a valid Kickstart image: it begins with 0x11, has one of the sizes, and carries a
/// valid checksum (of 1M: each half its own). Shows what `cChecksumData` shows, for each half that is summed.
[[nodiscard]] bool validrom(View data);

} // namespace vantorel
