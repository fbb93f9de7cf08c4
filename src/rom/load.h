#pragma once
// The roads by which a ROM file becomes an image in a slot.

#include <cstdint>
#include <string>

namespace vantorel {

/// Loads the file at `path`, whole or byte-swapped, or as its hash file says: CD32 interleaved, or a
/// container whose further ROMs go into new slots. The first image goes into slot `rom`. A path that begins
/// with "ADF:" names a file on the loaded disk image, which is first saved as "TEMPFILE.bin". Returns 0;
/// failures are messages.
int loadrom(const std::string& path, int32_t rom);

} // namespace vantorel
