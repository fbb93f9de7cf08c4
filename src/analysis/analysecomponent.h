#pragma once
// Bounds and relocs of components found by the copies of them, the components of the same identity string, in
// the other ROMs.

#include <cstdint>

namespace vantorel {

/// What `analysecomponent` does with the relocs that it verifies.
enum class VerifiedRelocs { Tell, Add };

/// Tells of component `component` of slot `rom`, which needs a ROMTAG: the bounds that its copies propose for
/// it, which of its longs each copy shows to be relocs (those are added to it if `verified` says so), and
/// every long that points into it; above level 1 also every long that would as a BCPL address. Error lines
/// when there is no such ROM or component, it has no ROMTAG or does not lie in its image. Returns 0.
int analysecomponent(int32_t rom, int32_t component, VerifiedRelocs verified);

/// Tells the bounds that the components of the other ROMs propose for those of slot `rom` whose own are only
/// inferred. Silent with fewer than two ROMs. Returns 0.
int analyseromoffsets(int32_t rom);

} // namespace vantorel
