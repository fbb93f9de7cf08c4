#pragma once
// The bounds of a component as its own code tells them: the lowest and the highest address that the
// instructions listed so far refer to.

#include <cstdint>

namespace vantorel {

// CPU addresses, set by the one-pass listing when it starts. Whatever is decoded after it goes on widening
// the first two within the limits of the last listing.

extern uint32_t iMissMin;      ///< lowest address attributed to the component so far
extern uint32_t iMissMax;      ///< highest address attributed to it
extern uint32_t iMissMinLimit; ///< below this no address counts
extern uint32_t iMissMaxLimit; ///< above this no address counts

/// Widens the bounds to `address`, a CPU address that code of slot `rom` refers to, when it lies within the
/// limits. One that raises the upper bound is not looked at for the lower.
inline void checkaddressbound([[maybe_unused]] int32_t rom, uint32_t address) {
    if (address < iMissMinLimit || address > iMissMaxLimit) return;
    if (address > iMissMax)
        iMissMax = address;
    else if (address < iMissMin)
        iMissMin = address;
}

} // namespace vantorel
