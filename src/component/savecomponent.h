#pragma once
// Components written to files of their own.

#include <cstdint>
#include <string>

namespace vantorel {

/// Writes component `component` of slot `rom`, or with -1 each in turn, to the file `name`, or
/// with an empty name each to the one called after its hash, below the save directory. Libraries and data go
/// out in loadable library form, all others as their bytes of the image. Each that cannot be written is told
/// of and passed over. The slot must be one that `requireselectable` admits.
void savecomponent(int32_t rom, int32_t component, const std::string& name);

} // namespace vantorel
