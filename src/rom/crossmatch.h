#pragma once
// The components of one image recognised as those of the other loaded ROMs.

#include <cstdint>

namespace vantorel {

/// Looks for each library of slot `rom` in every other slot, in ascending order, and takes over start, size,
/// relocs and hash of the first that is the same but for its place and base. The two are aligned by their
/// ROMTAGs.
void matchotherroms(int32_t rom);

} // namespace vantorel
