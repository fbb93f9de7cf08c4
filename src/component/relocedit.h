#pragma once
// Relocation lists edited by hand. A list in ascending order and without duplicates stays so, and the extract
// is rebuilt after each change.

#include <cstdint>

namespace vantorel {

/// Adds the reloc at `offset` (bytes from the component's first) to component `component` of slot `rom`. A
/// value that points outside the component is warned about. Returns 0; 1 with a message, nothing changed,
/// when there is no such slot or component, the component has no ROMTAG or does not lie in its image, the
/// reloc's long does not lie inside it, or the list has it already (told above level 1).
int addreloc(int32_t rom, int32_t component, int32_t offset);

/// Takes the reloc at `offset` out of the list. Returns 0; 1 with an error line, nothing changed, when there
/// is no such slot, component or reloc or the component does not lie in its image.
int deletereloc(int32_t rom, int32_t component, int32_t offset);

/// Adds, as `addreloc` does, each long of the component that points into the component itself, and tells how
/// many there are, those refused included. An error line when there is no such slot or component or it does
/// not lie in its image.
void addrelocs(int32_t rom, int32_t component);

} // namespace vantorel
