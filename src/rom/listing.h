#pragma once
// The listings of slots and components.

#include "rom/store.h"

#include <cstdint>
#include <string>

namespace vantorel {

/// What a line of `slot` tells behind its number, in the form
/// "ROMBase:%08x CRC32:0x%08x (%d of %d/%dk)\n".
[[nodiscard]] std::string slotsummary(const KickstartRom& slot);

/// Lists every slot, marking `current`. Returns how many were listed.
int32_t roms(int32_t current);

/// Lists slot `n` and its component map, with the gaps between. Returns `n`, or -1 (silent) when there is
/// none.
int32_t rom(int32_t n);

/// Prints, at every level, the header facts of slot `n` and its libraries. Returns `n`; -1 when there is no
/// such slot (silent) or its image is too small to have a header (one error line).
int32_t modules(int32_t n);

} // namespace vantorel
