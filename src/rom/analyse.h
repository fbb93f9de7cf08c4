#pragma once
// The analysis of an image: its component map rebuilt from the image itself.

#include <cstdint>

namespace vantorel {

/// Rebuilds the component map of slot `rom` from its ROMTAGs and fixed structures, improves it by what the
/// other loaded ROMs and the hash library know, and closes the gaps. A slot whose base is 0 takes it from the
/// first ROMTAG. Returns 0. No such slot: nothing happens. Fewer than 24 used bytes: one error line, the map
/// stays.
int analyserom(int32_t rom);

} // namespace vantorel
