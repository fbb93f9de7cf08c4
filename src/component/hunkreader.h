#pragma once
// The reader of hunk files: what loads as one piece of memory becomes one component.

#include "base/bytes.h"
#include "rom/store.h"

#include <cstdint>

namespace vantorel {

/// Reads the first `length` bytes of `buffer` as a hunk file and fills the type, CRC32 (of those bytes),
/// size, relocs and extract of `component`. The extract is all code and data, one after the other, relocated
/// to address 0. Bytes that are no hunk file become one "Data" component: `length` bytes of `buffer` from
/// byte `offset`. Returns 0; 1 with an error line, `component` unchanged, when the file ends inside a hunk.
int librarybuffertocomponent(View buffer, int32_t offset, int32_t length, Component& component);

} // namespace vantorel
