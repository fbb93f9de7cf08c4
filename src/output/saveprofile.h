#pragma once
// The ROMs of the burn profile written as EPROM burners, boards and soft-kick loaders want them.

#include <cstdint>
#include <string>

namespace vantorel {

/// Writes the profile to files whose names begin with `name`, below the save directory. With `byteswap` the
/// two bytes of every word are exchanged; `savesize`, the size of a chip in KiB, 0 for any, splits two chips'
/// worth and more into a file for each chip and repeats what is smaller than one until it is full; of what
/// lies between, only the second part stays in the file. Disk images and SuperKickstart files have neither.
/// Returns 0; 1 with a message when there is nothing to write or a file cannot be written (those made so far
/// stay).
int saveprofile(bool byteswap, int32_t savesize, const std::string& name);

} // namespace vantorel
