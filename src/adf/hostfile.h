#pragma once
// Paths that may name a file on the disk image in memory.

#include <optional>
#include <string>

namespace vantorel {

/// A path that begins so names a file on the disk image: the rest is its path there.
inline constexpr const char* cAdfPrefix = "ADF:";

/// The scratch file, in the current directory, that receives a file taken off the disk image. It stays.
inline constexpr const char* cTempFile = "TEMPFILE.bin";

/// Whether `path` names a file on the disk image.
[[nodiscard]] bool isadfpath(const std::string& path);

/// The host file that holds what `path` names: `path` itself, or `cTempFile` with the file from the disk
/// image in it. None when the disk image has no such file or the scratch file cannot be written.
[[nodiscard]] std::optional<std::string> hostfile(const std::string& path);

} // namespace vantorel
