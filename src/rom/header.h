#pragma once
// Where a Kickstart image keeps its fixed structures, in bytes.

#include <cstdint>

namespace vantorel {

/// Fields of an image's first bytes, from its start.
namespace RomHeader {
inline constexpr int64_t iIdent = 0;         ///< word, its first byte 0x11 in a valid image
inline constexpr int64_t iEntry = 4;         ///< long, CPU address
inline constexpr int64_t iVersion = 12;      ///< word
inline constexpr int64_t iRevision = 14;     ///< word
inline constexpr int64_t iExecVersion = 16;  ///< word
inline constexpr int64_t iExecRevision = 18; ///< word
} // namespace RomHeader

// What stands at an image's end, from there.
inline constexpr int32_t iChecksumFromEnd = 24; ///< the checksum, a long
inline constexpr int32_t iSizeFromEnd = 20;     ///< the internal size, a long
inline constexpr int32_t iVectorsFromEnd = 16;  ///< the eight words 0x0018 to 0x001F

// Sizes of Kickstart images.
inline constexpr int32_t iSize256K = 262144;
inline constexpr int32_t iSize512K = 524288;
inline constexpr int32_t iSize1M = 1048576;

} // namespace vantorel
