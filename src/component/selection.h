#pragma once
// Which components of a ROM a command means.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantorel {

/// Means every component where a component number is asked for: those that are not blank.
inline constexpr int32_t iEveryComponent = -1;

/// Whether components can be chosen from slot `rom`: one equal to `iMaxRom` counts as a ROM without
/// components; of any other that does not exist, "ROM out of range".
[[nodiscard]] bool requireselectable(int32_t rom);

/// The numbers that `component` stands for in slot `rom`: itself, whether there is such a component or not;
/// or of `iEveryComponent` all but the blank ones. None of a slot that `requireselectable` refuses.
[[nodiscard]] std::optional<std::vector<int32_t>> selectcomponents(int32_t rom, int32_t component);

/// What a save command does with one component that exists; `name` is the file's, or empty.
using SaveComponent = void (*)(int32_t rom, int32_t number, const std::string& name);

/// Calls `save` for each of them that exists; "Component out of range or not found" for one that does not.
void saveselected(int32_t rom, int32_t component, const std::string& name, SaveComponent save);

} // namespace vantorel
