#pragma once
// Components brought in from files: hunk files, raw data, members of library archives, and libraries of other
// Kickstart ROMs.

#include "rom/store.h"

#include <string>

namespace vantorel {

/// Reads the file at `path` into `component`. With an empty `name` the whole file is the component, named
/// after the file; otherwise `name` is a key in [Components] of the file's own hash file, whose FileType says
/// what the file holds. Returns 0; 1 with an error line, `component` of no use, when the file cannot be read,
/// is not what it should be, or has no such component.
int loadcomponent(const std::string& path, const std::string& name, Component& component);

} // namespace vantorel
