#pragma once
// The CRC-32 of ISO 3309 and IEEE 802.3 in its reflected form (polynomial 0xEDB88320): the identity of images
// and components. The nine digits "123456789" give 0xCBF43926.

#include "base/bytes.h"
#include "base/files.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantorel {

/// The CRC register after one more byte. The register starts as 0xFFFFFFFF and the CRC is its complement.
[[nodiscard]] uint32_t updateCRC32(uint8_t byte, uint32_t crc);

/// The CRC register after all of `data`, in the terms of `updateCRC32`.
[[nodiscard]] uint32_t updateCRC32(View data, uint32_t crc);

/// The CRC32 of `data`; 0 of no bytes.
[[nodiscard]] uint32_t crc32buf(View data);

/// The CRC32 of an open file of which nothing has been read yet, read piece by piece; none when it ends
/// before its size.
[[nodiscard]] std::optional<uint32_t> crc32rest(InputFile& file);

/// The CRC32 of a whole file; 0 when it cannot be opened or read in full.
[[nodiscard]] uint32_t crc32file(const std::string& path);

} // namespace vantorel
