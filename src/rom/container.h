#pragma once
// Files that hold ROMs: what their hash files say of their format, and where in them the ROMs lie.
//
// The key Format of [Description] says how a file is encoded, FileType what it is. In a container, keys of
// [Components] name the ROMs' places with the value offset,size (decimal, bytes).

#include "base/bytes.h"
#include "hash/ini.h"

#include <cstdint>

namespace vantorel {

/// Decodes `data` as Format says and reports it. False, with an error line, when the file is too short for
/// its format: it is not to be loaded then.
[[nodiscard]] bool decodeformat(const IniFile& ini, Bytes& data);

/// Loads the ROMs of `data` as FileType says: the first into slot `rom`, further ones into new slots filled
/// with 0xFF before. A range outside the file is left out with an error line; an unknown type loads nothing
/// and says so.
void loadcontainer(const IniFile& ini, View data, int32_t rom);

} // namespace vantorel
