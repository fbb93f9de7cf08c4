#pragma once
// The component map of a ROM, as its hash file tells it.
//
// A hash file is an INI text named "0x%08x" after the CRC32 of what it describes. Its section [Description]
// holds Title, Text and ROMBase ("0x" and hexadecimal digits); each line of [Components] is
//     name=start,size,type:hash
// with decimal image offset and size in bytes, a type word, and the name of the component's own hash file,
// whose section [RELOC32] holds a line "RELOC=" and a decimal component offset for each long that is an
// absolute ROM address.

#include "base/bytes.h"

#include <cstdint>

namespace vantorel {

/// Puts the image `data` into slot `rom` (an overburnt one once), and builds its component map when the hash
/// library knows it. A slot that is larger keeps its size. Above 2 GiB - 1 bytes is the caller's to refuse.
/// Returns 0 when the image is in the slot; 1 with "No such ROM" and nothing changed.
int loadromdata(int32_t rom, View data);

} // namespace vantorel
