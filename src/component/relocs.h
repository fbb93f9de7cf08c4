#pragma once
// Relocation lists as hash files hold them: a section [RELOC32] of lines "RELOC=" and a decimal component
// offset.

#include "base/text.h"
#include "hash/hashfile.h"
#include "hash/ini.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace vantorel {

inline constexpr std::string_view cRelocKey = "RELOC=";

/// Tells how many lines section `section` of `ini` (an index from `readinisection`) has, and where.
void tellrelocs(const IniFile& ini, int32_t section);

/// The offsets in section `section` of `ini`: the decimal number behind as many characters of each line as
/// `cRelocKey` has, whatever they are. A line too short to hold one is passed over.
[[nodiscard]] std::vector<int32_t> relocsofsection(const IniFile& ini, int32_t section);

/// The relocs that the hash file named by `hash` lists, in its order; none without such a file.
[[nodiscard]] std::vector<int32_t> loadrelocs(const Text& hash);

} // namespace vantorel
