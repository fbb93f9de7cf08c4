#pragma once
// Components put into a ROM and taken out of it. The components of a ROM lie in ascending order and do not
// overlap; each new one goes where it first fits.

#include "rom/store.h"

#include <cstdint>
#include <string>

namespace vantorel {

/// Writes the extract of component `component` of slot `rom` to its place in the image, each relocated long
/// raised by the address at which the component runs there. Returns 0; 1 with an error line, nothing
/// changed, when there is no such slot or component, it does not lie in its image, or has too short an
/// extract.
int copyextracttorom(int32_t rom, int32_t component);

/// Places `record` (size, extract, relocs, name, hash and type filled in) into slot `rom` and takes it over:
/// into the first gap that holds it, or behind the last component. Its start and bounds, its ROMTAG and the
/// library texts are set anew. Returns 0; -1 with an error line, `record` and ROM unchanged, when there is no
/// such slot, no room in it, or the extract is shorter than the size.
int addcomponent(int32_t rom, Component& record);

/// Places a block of `bytes` bytes (0 or more), each holding `fill`, as `addcomponent` does. Returns 0; -1
/// with an error line when there is no such slot or no room.
int addunallocated(int32_t rom, int32_t bytes, int8_t fill);

/// The first component of slot `rom` whose name begins with `name`, case ignored; -1 when there is none or,
/// with an error line, no such slot.
[[nodiscard]] int32_t findcomponent(int32_t rom, const std::string& name);

/// Takes component `component` out of slot `rom` and fills its bytes with the ROM's fill byte. Without such a
/// slot or component, or when it does not lie in its image: an error line, nothing changed.
void deletecomponent(int32_t rom, int32_t component);

// The next two move one bound of a component: `value` is an image offset, or an absolute address when it is
// not below the ROM's base. Image and extract stay as they are, and nothing is checked but that slot and
// component exist (an error line otherwise).

/// The start, which becomes certain; the end stays.
void editcomponentstart(int32_t rom, int32_t component, uint32_t value);

/// The end, the first byte behind the component, which becomes certain; the start stays.
void editcomponentend(int32_t rom, int32_t component, uint32_t value);

/// What a front end learns of a component.
struct ComponentData {
    std::string cName; ///< at most `iRecordText` characters; empty when the component has none
    std::string cType; ///< at most 31 characters
    std::string cHash; ///< at most `iRecordText` characters
    int32_t iStart = 0;
    int32_t iSize = 0;
};

/// Fills `record` for component `component` of slot `rom` and returns `rom`; -1, `record` untouched, when
/// there is no such slot or component.
int32_t getcomponentdata(int32_t rom, int32_t component, ComponentData& record);

} // namespace vantorel
