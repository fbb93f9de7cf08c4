#pragma once
// The bounds of neighbouring components, confirmed or moved over the gap between them.

#include "rom/store.h"

namespace vantorel {

/// Confirms the bounds where a component meets or overlaps the next one. Of two with a gap between, a library
/// without relocs grows over the gap to a neighbour that has some.
void closegaps(KickstartRom& slot);

} // namespace vantorel
