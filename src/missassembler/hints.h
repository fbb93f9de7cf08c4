#pragma once
// Entry points and labels that people have found out and written down: for a component in its hash file, for
// a ROM in "misshints.ini". "Vantorel Hashes/misshints.md" tells how they are written.

#include "missassembler/walk.h"

namespace vantorel {

/// Takes the hints of section "Missassembler" in the component's hash file, if the library has one, and shows
/// each. What lies outside the component is left out. Traces above level 5.
void addcomponenthints(Walk& walk);

/// Takes the hints for the ROM, the section of "misshints.ini" that is named after its CRC32, and shows each.
/// Those for other components are passed over. Says so when there is no such section.
void addromhints(Walk& walk);

} // namespace vantorel
