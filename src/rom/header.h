#pragma once
// Where a Kickstart image keeps its fixed structures, in bytes.

#include <array>
#include <cstdint>

namespace vantorel {

/// Fields of an image's first bytes, from its start.
namespace RomHeader {
inline constexpr int64_t iIdent = 0;         ///< word, which begins with `cFirstByte` in a valid image
inline constexpr int64_t iEntry = 4;         ///< long, CPU address
inline constexpr int64_t iVersion = 12;      ///< word
inline constexpr int64_t iRevision = 14;     ///< word
inline constexpr int64_t iExecVersion = 16;  ///< word
inline constexpr int64_t iExecRevision = 18; ///< word

inline constexpr uint8_t cFirstByte = 0x11;
} // namespace RomHeader

// What stands at an image's end, from there.
inline constexpr int32_t iMarkerFromEnd = 28;   ///< where the components of a SuperKickstart end, a long
inline constexpr int32_t iChecksumFromEnd = 24; ///< the checksum, a long
inline constexpr int32_t iSizeFromEnd = 20;     ///< the internal size, a long
inline constexpr int32_t iVectorsFromEnd = 16;  ///< the vectors, up to the end

/// The vectors: the words 0x0018 to 0x001F.
inline constexpr std::array<uint8_t, iVectorsFromEnd> cVectors = {
    0x00, 0x18, 0x00, 0x19, 0x00, 0x1A, 0x00, 0x1B, 0x00, 0x1C, 0x00, 0x1D, 0x00, 0x1E, 0x00, 0x1F};

// Sizes of Kickstart images.
inline constexpr int32_t iSize256K = 262144;
inline constexpr int32_t iSize512K = 524288;
inline constexpr int32_t iSize1M = 1048576;

// The Kickity-Split, in the middle of an image made of two of 256K.
inline constexpr int32_t iSplitOffset = iSize256K;
inline constexpr int32_t iSplitLength = 8;
inline constexpr int32_t iSplitPointer = iSplitOffset + 4; ///< the address in its jump, a long

/// Its bytes: the first word of a Kickstart, and a jump to the second word of the lower half.
inline constexpr std::array<uint8_t, iSplitLength> cSplit = {0x11, 0x11, 0x4E, 0xF9, 0x00, 0xF8, 0x00, 0x02};

} // namespace vantorel
