#pragma once
// A component of an analysed image takes over what a match has told of it.

#include "rom/store.h"

#include <cstddef>

namespace vantorel {

/// Puts `found`, which has an extract, in the place of record `number` and takes the extract's CRC32. Then
/// deletes the records that follow and lie wholly inside it, and tells each. The image's bytes stay.
void adoptcomponent(KickstartRom& slot, size_t number, Component found);

} // namespace vantorel
