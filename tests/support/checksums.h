#pragma once
// CRC32 and Kickstart checksum, computed in the plainest way and without the program's own code, so that a
// fault there cannot hide behind itself.

#include "base/bytes.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vantorel::test {

/// The reflected CRC-32 (polynomial 0xEDB88320) of `data`.
[[nodiscard]] uint32_t crc32of(View data);

/// The end-around-carry sum of all longs of `data`, whose length is a multiple of 4. A good image has
/// 0xFFFFFFFF.
[[nodiscard]] uint32_t carrysum(View data);

/// What a Kickstart image of `data.size()` bytes must hold at `size` - 24, whatever stands there now.
[[nodiscard]] uint32_t kickstartsum(View data);

/// "0x%08x"
[[nodiscard]] std::string hex32(uint32_t value);

/// The name of the hash file of something with this CRC32 and id string: "0x%08x." and the string, each
/// blank, "/" and "\" replaced by "_".
[[nodiscard]] std::string hashname(uint32_t crc, std::string_view idstring);

} // namespace vantorel::test
