#pragma once
// The listing of one directory of the host, for walks over a tree of files.

#include <cstddef>
#include <functional>
#include <string>

namespace vantorel {

/// Lists the directory at `path`, the one at `index` of a walk, in the order of the system: calls
/// `adddirectory` with the path of each directory in it and `addfile` with the name of each other entry.
/// Directories whose names begin with "." are left out, and a link to one is none, so that no walk runs in
/// circles. One that cannot be opened is empty, and so is one below the root whose path fills `iPathMax`.
/// Traces which it is.
void scandirectory(size_t index, const std::string& path,
                   const std::function<void(std::string path)>& adddirectory,
                   const std::function<void(const char* name)>& addfile);

} // namespace vantorel
