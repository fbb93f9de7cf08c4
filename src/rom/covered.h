#pragma once
// Records of a component map that a larger component has made redundant.

#include "rom/store.h"

#include <cstddef>

namespace vantorel {

/// Deletes the records that follow record `number` and lie wholly inside it, and tells each. The image's
/// bytes stay.
void deletecovered(KickstartRom& slot, size_t number);

} // namespace vantorel
