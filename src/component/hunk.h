#pragma once
// The blocks of Amiga hunk (load) files. Everything in them is big-endian; sizes and counts are in longs.
//
// Those up to HUNK_BREAK are described in "The AmigaDOS Manual" (Bantam, 1986), chapter "Amiga Binary File
// Structure"; the later ones in the include file dos/doshunks.h of the AmigaOS 3.1 developer kit and, for the
// PowerPC's, in that of the extended hunk format.

#include <cstdint>

namespace vantorel {

/// The ids that begin a block, longs.
namespace Hunk {
inline constexpr uint32_t iUnit = 999;
inline constexpr uint32_t iName = 1000;
inline constexpr uint32_t iCode = 1001;
inline constexpr uint32_t iData = 1002;
inline constexpr uint32_t iBss = 1003;
inline constexpr uint32_t iReloc32 = 1004;
inline constexpr uint32_t iReloc16 = 1005;
inline constexpr uint32_t iReloc8 = 1006;
inline constexpr uint32_t iExt = 1007;
inline constexpr uint32_t iSymbol = 1008;
inline constexpr uint32_t iDebug = 1009;
inline constexpr uint32_t iEnd = 1010;
inline constexpr uint32_t iHeader = 1011;
inline constexpr uint32_t iOverlay = 1013;
inline constexpr uint32_t iBreak = 1014;
inline constexpr uint32_t iDrel32 = 1015;
inline constexpr uint32_t iDrel16 = 1016;
inline constexpr uint32_t iDrel8 = 1017;
inline constexpr uint32_t iLib = 1018;
inline constexpr uint32_t iIndex = 1019;
inline constexpr uint32_t iReloc32Short = 1020;
inline constexpr uint32_t iRelReloc32 = 1021;
inline constexpr uint32_t iAbsReloc16 = 1022;
inline constexpr uint32_t iPpcCode = 1257;
inline constexpr uint32_t iRelReloc26 = 1260;
} // namespace Hunk

/// The name of a block id; "UNKNOWN HUNK" for any that is not listed above.
[[nodiscard]] const char* cHunkType(uint32_t id);

} // namespace vantorel
