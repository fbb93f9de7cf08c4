#pragma once
// The loadable library form of a component: a hunk file of one hunk that holds the extract and its relocs.
// Its CRC32 is the identity of the component and names its hash file.

#include "base/bytes.h"
#include "rom/store.h"

#include <cstdint>

namespace vantorel {

/// Components below this size in bytes have their relocs written as words (HUNK_DREL32), others as longs
/// (HUNK_RELOC32).
inline constexpr int32_t iShortRelocLimit = 65536;

/// Whether a component of this type has a loadable library form; any other is kept as its raw bytes.
[[nodiscard]] bool haslibraryform(const Component& component);

/// The loadable library form. HUNK_CODE for the type "Library", else HUNK_DATA; the extract is used up to
/// `iSize`, relocs outside the component are left out, and the counts are `iSize` / 4.
[[nodiscard]] Bytes loadablelibraryform(const Component& component);

/// Readies component `component` of slot `rom`, which both exist, for `componentfile`: it must lie in its
/// image, and one with a loadable library form gets a fresh extract when it has none or too short a one, and
/// an error line for each reloc outside it. False, and an error line, when it does not lie there.
[[nodiscard]] bool readyforfile(int32_t rom, int32_t component);

/// The bytes that stand for `component` of `slot` in a file, once it is ready: its loadable library form, or
/// else ("Saving RAW") its bytes of the image.
[[nodiscard]] Bytes componentfile(const KickstartRom& slot, const Component& component);

/// Puts the file of component `component` of slot `rom` into `buffer` and returns its length in bytes. `crc`
/// becomes the CRC32 of a loadable library form, which is built from a fresh extract where there is none;
/// for raw bytes it is left alone. 0, and an error line, when there is no such component, it does not lie in
/// its image, or `requireselectable` refuses the slot.
int32_t loadedlib2loadablelib(int32_t rom, int32_t component, Bytes& buffer, uint32_t& crc);

} // namespace vantorel
