#pragma once
// The layouts that need more than the images one behind the other. Each takes the ROMs of the profile.

#include "base/bytes.h"

namespace vantorel {

/// Turns `buffer`, the images of the profile one behind the other, into a CD32 ROM file of 1 or 2 MiB: in
/// quarters of the first MiB the even words of the ROM at E0, those of the ROM at F8, and the odd words of
/// both. Without two ROMs of 512K at these positions: an error line, the bytes as they were. The second MiB
/// is experimental, and says so.
void interleaveCD32(Bytes& buffer);

/// The image of a SuperKickstart floppy disk, 880 KiB: Kickstart 1.3 at F8, its bonus code at E0, Kickstart
/// 2+ at B0, its bonus code at A0. What is missing or has the wrong size is told of and left out.
[[nodiscard]] Bytes superkickdisk();

/// The image of an A1000 Kickstart disk, 880 KiB, with the 256K ROM at F8; told of and left out when missing
/// or of the wrong size.
[[nodiscard]] Bytes a1000disk();

} // namespace vantorel
