#pragma once
// The contents of a file, collected from its data blocks.

#include "base/bytes.h"

#include <cstdint>
#include <string>

namespace vantorel {

/// Appends the data blocks of the file with header block `header` to `out`, whole, from the header's table
/// and from its chain of extension blocks. Returns what is wrong with the tables or the chain, empty when
/// they are sound; what was found before the damage is then in `out`. Never more than the disk can hold;
/// prints nothing.
[[nodiscard]] std::string adfadddata(int32_t header, Bytes& out);

/// The contents of entry `n` of the file table, as many bytes as its header says; a directory has none. Of a
/// damaged file as much as can be found, with one "ERROR" line that names it. Empty when there is no such
/// entry.
[[nodiscard]] Bytes adffiledata(int32_t n);

} // namespace vantorel
