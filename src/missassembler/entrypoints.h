#pragma once
// Where the code of a component is entered from outside, as its ROMTAGs tell: struct Resident of
// exec/resident.h and, with RTF_AUTOINIT, the four longs and the vector table that MakeLibrary takes.

#include "missassembler/walk.h"

#include <cstdint>

namespace vantorel {

/// The longs of an AUTOINIT table, in bytes from its first.
namespace AutoInit {
inline constexpr int32_t iDataSize = 0;
inline constexpr int32_t iVectors = 4;    ///< CPU address of the vector table
inline constexpr int32_t iInitStruct = 8; ///< CPU address of an InitStruct table; 0: none
inline constexpr int32_t iInit = 12;      ///< CPU address of LibraryInit; 0: none
} // namespace AutoInit

/// Ends a vector table of addresses.
inline constexpr uint32_t iVectorsEnd = 0xFFFFFFFF;
/// Begins and ends a vector table of words, each the distance of a function from the table.
inline constexpr uint16_t iWordVectors = 0xFFFF;

/// Adds records for every ROMTAG of the component and the structures that it points at, and marks its entry
/// points. Returns how many it found. What lies outside the component is left out. Traces above level 5.
int32_t addromtagentries(Walk& walk);

} // namespace vantorel
