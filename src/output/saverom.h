#pragma once
// Images saved as they stand.

#include <cstdint>
#include <string>

namespace vantorel {

/// Writes the image of slot `rom` to the file `name` below the save directory; with an empty name to
/// "0x", its CRC32, "." and its title. Returns 0; 1 when there is no such slot or the file cannot be written,
/// with an error line unless there is no slot at all.
int saverom(int32_t rom, const std::string& name);

} // namespace vantorel
