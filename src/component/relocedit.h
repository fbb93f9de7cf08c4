#pragma once
// Relocation lists edited by hand. A list in ascending order and without duplicates stays so, and the extract
// is rebuilt after each change.

#include <cstdint>
#include <vector>

namespace vantorel {

/// Adds the reloc at `offset` (bytes from the component's first) to component `component` of slot `rom`. A
/// value that points outside the component is warned about. Returns 0; 1 with a message, nothing changed,
/// when there is no such slot or component, the component has no ROMTAG or does not lie in its image, the
/// reloc's long does not lie inside it, or the list has it already (told above level 1).
int addreloc(int32_t rom, int32_t component, int32_t offset);

/// Relocs of one component added one after the other, in ascending order, as `addreloc` adds them. Unless
/// each step is to be shown (above level 1), they go into list and extract all at once, by `finish`: one by
/// one they would take as many passes over both as there are.
class RelocBatch {
public:
    /// Slot and component exist.
    RelocBatch(int32_t itsrom, int32_t itscomponent);

    void add(int32_t offset);
    void finish();

private:
    int32_t rom;
    int32_t component;
    std::vector<int32_t> before; ///< the relocs that the component came with, ascending
    std::vector<int32_t> found;  ///< those still to be put into the list, ascending
};

/// Takes the reloc at `offset` out of the list. Returns 0; 1 with an error line, nothing changed, when there
/// is no such slot, component or reloc or the component does not lie in its image.
int deletereloc(int32_t rom, int32_t component, int32_t offset);

/// Adds, as `addreloc` does, each long of the component that points into the component itself, and tells how
/// many there are, those refused included. An error line when there is no such slot or component or it does
/// not lie in its image.
void addrelocs(int32_t rom, int32_t component);

} // namespace vantorel
