#pragma once
// The sections of hash files. `rom/map.h` tells what stands in them.

#include "hash/ini.h"

#include <cstdint>
#include <optional>

namespace vantorel {

inline constexpr const char* cDescriptionSection = "Description";
inline constexpr const char* cComponentsSection = "Components";
inline constexpr const char* cRelocSection = "RELOC32";

/// The ROM base that the description in `ini` tells, a CPU address: hexadecimal digits behind two characters,
/// usually "0x", that are not looked at. None when it tells none.
[[nodiscard]] std::optional<uint32_t> describedbase(const IniFile& ini);

} // namespace vantorel
