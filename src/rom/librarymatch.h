#pragma once
// The components of an image recognised by the hash library: the bytes that a hash file describes, taken from
// the image and made relocatable, have the CRC32 that the file is named after.

#include <cstdint>

namespace vantorel {

/// Tries each library of slot `rom` that has no hash with every hash file whose name holds its id string, and
/// takes over start, size and relocs of the first that fits.
void matchhashlibrary(int32_t rom);

} // namespace vantorel
