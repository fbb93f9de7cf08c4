#pragma once
// Components brought from files into a ROM.

#include <cstdint>
#include <string>

namespace vantorel {

/// Loads a component from the file at `path` and places it in slot `rom`. With an empty `name` the whole file
/// is the component; a path beginning "ADF:" names a file on the disk image, always taken whole. Otherwise
/// `name` is looked for in the file's own hash file; one that ends in "*" stands for every library there
/// whose name begins so and that the ROM does not hold yet. Reports what it cannot load or place, which
/// leaves the ROM as it was; no such slot gives an error line before the file is touched.
void addlibrary(int32_t rom, const std::string& path, const std::string& name);

} // namespace vantorel
