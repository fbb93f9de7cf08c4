#pragma once
// Zip archives of the disk image in memory, all entries stored as they are: the format is that of PKWARE's
// APPNOTE, sections 4.3.7 (local header), 4.3.12 (central directory) and 4.3.16 (end of it).

#include "base/bytes.h"

#include <cstdint>
#include <string>

namespace vantorel {

/// Stores `value` in the four bytes at `out`, least significant first.
void leUINT32(uint8_t* out, uint32_t value);

/// Stores the low 16 bits of `value` in the two bytes at `out`, least significant first.
void leUINT16(uint8_t* out, uint32_t value);

/// A moment as archives have it, in local time. Each is cut to 16 bits, as happens before 1980.
struct DosTime {
    uint16_t iDate = 0; ///< years since 1980, month and day
    uint16_t iTime = 0; ///< hour, minute and pairs of seconds
};

/// `seconds` since 1970-01-01, in the local time zone.
[[nodiscard]] DosTime dostime(int64_t seconds);

/// Writes every entry of the file table into the archive `path`, and tells of each. Of a damaged file what
/// can be found, with an error line. Nothing is told when `path` cannot be opened; an error line when it
/// cannot be written in full.
void adfsavezip(const std::string& path);

} // namespace vantorel
