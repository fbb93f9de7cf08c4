#pragma once
// Where the code of a component is entered from outside, as its ROMTAGs tell: struct Resident of
// exec/resident.h and, with RTF_AUTOINIT, the four longs and the vector table that MakeLibrary takes.

#include "missassembler/walk.h"

#include <cstdint>

namespace vantorel {

/// Adds records for every ROMTAG of the component and the structures that it points at, and marks its entry
/// points. Returns how many it found. What lies outside the component is left out. Traces above level 5.
int32_t addromtagentries(Walk& walk);

} // namespace vantorel
