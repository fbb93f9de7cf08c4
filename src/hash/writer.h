#pragma once
// Hash files written: what `rom/map.h` reads. Put into the hash library, they let the program know a ROM or a
// component again.

#include <cstdint>
#include <string>

namespace vantorel {

/// Writes the hash file of slot `rom`, whose CRC32 is taken anew, to the file `name` below the save
/// directory; with an empty name to the one that the library would look for. Returns 0; 1 when there is no
/// such slot (silent) or, with an error line, the file cannot be written.
int saveromhash(int32_t rom, const std::string& name);

/// Writes the hash file of component `component` of slot `rom`, or with -1 each in turn, to the
/// file `name`, or with an empty name each to the one called after its hash, below the save directory. One
/// without relocs, or that cannot be written, is told of and passed over. The slot must be one that
/// `requireselectable` admits.
void savecomponenthash(int32_t rom, int32_t component, const std::string& name);

/// Gives component `component` of slot `rom`, or of a negative number each, its canonical hash name: that of
/// the library's file for its loadable library form, or one formed from that form's CRC32 and the id string;
/// without relocs one formed from the ROM's CRC32 and the id string. Slots as for `savecomponenthash`.
void canonisecomponent(int32_t rom, int32_t component);

} // namespace vantorel
