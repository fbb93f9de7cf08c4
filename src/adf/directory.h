#pragma once
// The file table: every file and directory of the loaded disk, flat, in the order of the hash tables, the
// contents of a directory directly behind it.

#include <cstdint>
#include <string>
#include <vector>

namespace vantorel {

/// What `DiskEntry::iParent` says of an entry in the root directory.
inline constexpr int32_t iNoParent = -1;

/// One file or directory. Its path is formed from its ancestors when it is asked for (`adflist`): a thousand
/// directories, one in the other, would otherwise hold megabytes of paths.
struct DiskEntry {
    std::string cName;           ///< last part of the path, without "/"
    int32_t iParent = iNoParent; ///< table index of the directory that holds it, always below its own
    int32_t iFNBlock = 0;        ///< header block number, 2 to 1759
    int64_t iSeconds = 0;        ///< modification time in seconds since 1970-01-01
    bool isdirectory = false;
};

/// The table. Emptied and filled by `loadadf`; nobody else changes it.
extern std::vector<DiskEntry> psFiles;

/// Path of entry `n` of the table (0 and up): "/name", "/dir/name", a directory with a trailing "/".
/// Empty when there is no such entry.
[[nodiscard]] std::string adflist(int32_t n);

/// Adds everything below the root directory of the image to the table. Always ends, whatever the image holds:
/// each block is listed once at most. A hash table or chain that leads off the disk or back to a block listed
/// before is left there, with one "ERROR" line that names the directory or the entry; a header that is
/// neither file nor directory is named with its type and not added. Everything else is listed.
void dir();

} // namespace vantorel
