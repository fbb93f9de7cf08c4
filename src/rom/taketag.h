#pragma once
// What the ROMTAG of a component tells of it.

#include "rom/store.h"

namespace vantorel {

/// Looks in the bytes of `component`, which lies in the image of `slot`, for a ROMTAG, and takes its place
/// and its texts; without one `iROMTag` is -1 and the texts are absent. The base of the slot stays as it is.
/// Returns whether there is one.
bool taketag(const KickstartRom& slot, Component& component);

} // namespace vantorel
