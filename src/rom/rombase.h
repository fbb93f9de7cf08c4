#pragma once
// Moving a ROM to another base.

#include <cstdint>
#include <string>

namespace vantorel {

/// Makes the number `text` (decimal, or hexadecimal behind "0x") the base of slot `rom`, a CPU address, and
/// rewrites the relocated longs of its components in the image for it. What has no relocs (Kickity-Split,
/// headers) stays, and so does the checksum. Returns 0; 1 with an error line, nothing changed, when there is
/// no such slot, or a component with relocs does not lie in its image or has a reloc outside itself.
int rombase(int32_t rom, const std::string& text);

} // namespace vantorel
