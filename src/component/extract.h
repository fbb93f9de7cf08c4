#pragma once
// Extracts: a component's bytes with every relocated long made relative to the component's own first byte, so
// that the component can be placed in any ROM.

#include "base/bytes.h"
#include "rom/store.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vantorel {

/// The CPU address at which the first byte of `component` runs in `slot`.
[[nodiscard]] uint32_t runaddress(const KickstartRom& slot, const Component& component);

/// Whether `value` is the CPU address of a byte of `component`, which lies in the image of `slot`, or of the
/// first behind it: ends of tables and of what is skipped are told so.
[[nodiscard]] bool pointsinto(const KickstartRom& slot, const Component& component, uint32_t value);

/// Whether the bytes of component `component` of `slot`, which exists, lie inside its image; an error line
/// when they do not.
[[nodiscard]] bool requirefit(const KickstartRom& slot, int32_t component);

/// Whether `size` bytes from image offset `start`, a range of component `component`, lie inside the image of
/// `slot`; the same error line when they do not.
[[nodiscard]] bool requirerange(const KickstartRom& slot, int32_t component, int64_t start, int64_t size);

/// Whether the long at `reloc`, a component offset, lies inside `size` bytes; an error line when it does not.
[[nodiscard]] bool requireinside(int32_t reloc, int64_t size);

/// Says that the long at `reloc`, a component offset, does not lie inside its component.
[[gnu::noinline]] void telloutside(int32_t reloc);

/// Takes out of `relocs` (component offsets in bytes) each one whose long does not lie inside a component of
/// `size` bytes, with an error line each.
void droprelocsoutside(std::vector<int32_t>& relocs, int32_t size);

/// Subtracts `address` from the big-endian long at each of `relocs` (offsets into `bytes`), in order; a reloc
/// named twice counts twice. One whose long does not lie inside `bytes` is left out with an error line.
void makerelative(Bytes& bytes, std::span<const int32_t> relocs, uint32_t address);

/// The bytes of `component`, which lies in the image of `slot`, with the longs at its relocs made relative to
/// its first byte; relocs outside it are left out with an error line each.
[[nodiscard]] Bytes extractof(const KickstartRom& slot, const Component& component);

/// Writes the relocated longs of component `component` of `slot`, which lies in its image and has an extract
/// of at least `iSize` bytes, from that extract: the long there plus the component's run address. Nothing
/// else of the image changes. Relocs outside the component are left out with an error line each.
void patchrelocs(KickstartRom& slot, int32_t component);

/// (Re)builds the extract of component `component` of slot `rom` from the image and the component's relocs;
/// longs at relocs outside the component stay as they are, with an error line each. Returns 0; 1 with an
/// error line, the extract as it was, when slot or component do not exist or the component does not lie in
/// its image.
int createextract(int32_t rom, int32_t component);

/// Whether `component` has an extract of at least `iSize` bytes.
[[nodiscard]] bool haswholeextract(const Component& component);

/// Builds the extract of component `component` of slot `rom`, which both exist, when it has no whole one,
/// and tells of each reloc outside the component with an error line. False, and an error line, when the
/// component does not lie in its image.
bool requireextract(int32_t rom, int32_t component);

/// The relocs of `component` whose longs lie inside it, in their order.
[[nodiscard]] std::vector<int32_t> relocsinside(const Component& component);

/// Tells of each reloc of `component` whose long does not lie inside it with an error line.
void tellrelocsoutside(const Component& component);

} // namespace vantorel
