#pragma once
// Amiga hunk (load) files, as "The AmigaDOS Manual" (Bantam, 1986) describes them, chapter "Amiga Binary File
// Structure".

#include "base/bytes.h"
#include "rom/store.h"

#include <cstdint>

namespace vantorel {

/// The ids of the hunks that the loadable library form is made of, longs.
namespace Hunk {
inline constexpr uint32_t iCode = 1001;
inline constexpr uint32_t iData = 1002;
inline constexpr uint32_t iReloc32 = 1004;
inline constexpr uint32_t iEnd = 1010;
inline constexpr uint32_t iHeader = 1011;
inline constexpr uint32_t iDrel32 = 1015;
} // namespace Hunk

/// Components below this size in bytes have their relocs written as words (HUNK_DREL32), others as longs.
inline constexpr int32_t iShortRelocLimit = 65536;

/// The loadable library form of a component: a hunk file of one hunk that holds the extract and its relocs.
/// Its CRC32 is the identity of the component. HUNK_CODE for the type "Library", else HUNK_DATA; the extract
/// is used up to `iSize`, and the counts are `iSize` / 4.
[[nodiscard]] Bytes loadablelibraryform(const Component& component);

} // namespace vantorel
