#pragma once
// Amiga floppy images (ADF: the 1760 blocks of 512 bytes of a double-density disk) in the Old and Fast File
// Systems: one image is held at a time, its files listed (`adflist`, in adf/directory.h) and saved to the
// host. What the blocks hold is in adf/blocks.h. Checksums are not looked at: a damaged disk gives what it
// still can.

#include "adf/directory.h" // IWYU pragma: export
#include "base/bytes.h"
#include "base/files.h"

#include <cstdint>
#include <string>

namespace vantorel {

/// What stands for a volume name when nothing could be loaded.
inline constexpr const char* cError = "<none>";

/// Loads the image at `path` and lists its files and directories into the table.
/// Returns the volume name. A file that cannot be opened or is not 901120 bytes long is refused with a
/// message, at any level: `cError`, and image and table are as they were.
std::string loadadf(const std::string& path);

/// The same for a file that is open already. One that ends before its size gives `cError` without a message,
/// a part of it in the image, and the table as it was.
std::string loadadf(InputFile& file);

/// The same for 901120 bytes in memory.
std::string loadadfimage(View image);

/// Writes the contents of the file `name` (its whole path on the disk, with the leading "/") to `target` on
/// the host. Of a damaged file it writes what can be found. Returns 0; 1 when there is no such entry (silent)
/// or `target` could not be opened or written (reported).
int adfsavefile(const std::string& name, const std::string& target);

} // namespace vantorel
