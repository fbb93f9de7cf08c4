#pragma once
// Hash files found by their names, and their sections. `rom/map.h` tells what stands in these.

#include "base/text.h"
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

/// The hash file that `hash` names. None when it is absent or the library has no such file.
[[nodiscard]] std::optional<IniFile> loadhashfile(const Text& hash);

/// The hash files of the components of one ROM, which together may hold 16 MiB: components that all name one
/// large file would otherwise take time and memory out of all proportion.
class ComponentHashFiles {
public:
    /// The hash file that `hash` names. None when the library has none, or when those loaded before were too
    /// large; an error line when they have become so.
    [[nodiscard]] std::optional<IniFile> load(const Text& hash);

private:
    int64_t size = 0; ///< bytes so far
};

} // namespace vantorel
