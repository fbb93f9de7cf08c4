#pragma once
// A component of an analysed image takes over what a match has told of it.

#include "rom/store.h"

#include <cstdint>

namespace vantorel {

/// Takes the CRC32 of the extract of component `number` of slot `rom`, which has one, and deletes the records
/// that follow and lie wholly inside it; the image's bytes stay.
void settlecomponent(int32_t rom, int32_t number);

} // namespace vantorel
