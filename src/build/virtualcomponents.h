#pragma once
// The fixed structures of a Kickstart image that are no modules: the program writes their bytes itself and
// keeps a component for each. Those at the image's end use up the room below them, so they are added in the
// order checksum, size, vectors, and all of them after the modules that lie below.

#include <cstdint>

namespace vantorel {

// Each of these appends one component to slot `rom` and moves `iUsed` to its end. Returns 0; 1 with an error
// line, nothing changed, when there is no such slot or no room.

/// The jump in the middle of a 512K image that lets it start like a 256K one. Nothing may lie above the
/// middle yet.
int addkickitysplit(int32_t rom);

/// The checksum, calculated for the image as it is.
int addchecksum(int32_t rom);

/// The size of the image in bytes.
int addsize(int32_t rom);

/// The autovector numbers 24 to 31 that an image ends with.
int addvectors(int32_t rom);

/// Calculates the checksum of slot `rom` and stores it in the first Checksum component. Returns 0; 1 with an
/// error line when there is no such slot, no such component, or the component's long is not in the image.
int checksum(int32_t rom);

} // namespace vantorel
