#pragma once
// What burning a profile must leave on the disk, worked out byte by byte and without the program's own code.

#include "base/bytes.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace vantorel::test {

/// Files by their names.
using Files = std::map<std::string, Bytes>;

/// The images at F8, E0, B0 and A0; none where a position is not in use.
using Images = std::array<std::optional<Bytes>, 4>;

/// What is asked of the profile.
struct BurnOrder {
    int32_t type = 1; ///< as `romprofile` counts them
    bool byteswap = false;
    bool chips512 = false;
};

/// The size of the floppy disk images.
inline constexpr size_t iDiskSize = 901120;

/// The files of base name `name`; none when there is nothing to write.
[[nodiscard]] Files burnt(const Images& images, const BurnOrder& order, const std::string& name);

} // namespace vantorel::test
