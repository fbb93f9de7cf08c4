#pragma once
// The hash library: an index of every file name in a directory tree, so that hash files and configuration
// files are found by name without touching the disk.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vantorel {

/// The library's folder, unless another one is given: below the current directory.
inline constexpr const char* cHashLibrary = "Vantorel Hashes";

/// A file of the library.
struct HashFileEntry {
    uint32_t iDirectory = 0; ///< index into `pcVanHashDir`
    std::string cName;       ///< the name alone, as the directory gave it
};

// The index. `loadhashes` fills it and `freehashes` empties the lists; nobody else changes it.

/// The directories found, breadth first; the first is the root as it was given.
extern std::vector<std::string> pcVanHashDir;
/// The files, ordered by bucket and within a bucket as they were found.
extern std::vector<HashFileEntry> psVanHashFile;
/// For each bucket, how many files it has, and the index of its first file in `psVanHashFile`. The bucket of
/// a name is the top byte of the CRC32 written in it, 0 when it does not begin with "0x". Left as they are by
/// `freehashes`, so they only count while there are files.
extern std::array<int32_t, 256> iIndexSize;
extern std::array<int32_t, 256> iIndexPos;

/// Discards the index and builds that of the tree rooted at `path`. A directory that cannot be read counts as
/// empty; links and hidden directories are not followed, nor one whose path fills `iPathMax`.
void loadhashes(const std::string& path);

/// Empties the index.
void freehashes();

/// The path of the first file whose name begins with `name`, case ignored, looked for in the bucket of `name`
/// only; empty when there is none or `name` is null. The result is overwritten by the next call.
[[nodiscard]] const std::string& findhashfile(const char* name);

/// The path of an entry: its directory's + "/" + its name.
[[nodiscard]] std::string hashfilepath(const HashFileEntry& file);

} // namespace vantorel
