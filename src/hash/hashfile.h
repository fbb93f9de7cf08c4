#pragma once
// The sections of hash files. `rom/map.h` tells what stands in them.

namespace vantorel {

inline constexpr const char* cDescriptionSection = "Description";
inline constexpr const char* cComponentsSection = "Components";
inline constexpr const char* cRelocSection = "RELOC32";

} // namespace vantorel
