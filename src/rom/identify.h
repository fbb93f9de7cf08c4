#pragma once
// What an image itself tells of its contents, without any hash file: its modules, marked by ROMTAGs, and the
// fixed structures of a Kickstart.

#include "rom/store.h"

#include <cstdint>

namespace vantorel {

/// The fixed structures found in the used bytes of an image.
struct FixedStructures {
    bool hassplit = false;
    bool haschecksum = false;
    bool hassize = false;
    bool hasvectors = false;
    uint32_t iComputed = 0;     ///< the checksum that the used bytes should carry
    uint32_t iStored = 0;       ///< the checksum that they carry
    uint32_t iInternalSize = 0; ///< the size long

    [[nodiscard]] int32_t count() const { return int32_t{hassplit} + haschecksum + hassize + hasvectors; }
};

/// Counts the ROMTAGs in the used bytes of `slot`, following their end-skips, and reports each.
/// `base`, the image's base, is taken from the first tag when it comes in as 0.
[[nodiscard]] int32_t countromtags(const KickstartRom& slot, uint32_t& base);

/// Looks for the fixed structures of `slot`, which has at least `iChecksumFromEnd` used bytes, and reports
/// them.
[[nodiscard]] FixedStructures findfixedstructures(const KickstartRom& slot);

/// Appends a component for each ROMTAG to the map of `slot`, in address order, and the Kickity-Split (when
/// `hassplit`) between the modules below and above it. `base` is the image's base.
void addmodules(KickstartRom& slot, uint32_t base, bool hassplit);

/// Appends components for the checksum, the size and the vectors that `fixed` found.
void addfixedstructures(KickstartRom& slot, const FixedStructures& fixed);

} // namespace vantorel
