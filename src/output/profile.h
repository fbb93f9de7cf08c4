#pragma once
// The burn profile: which ROMs are to be burnt together, and in which layout.

#include "rom/store.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vantorel {

/// The layouts of a profile.
namespace RomType {
inline constexpr int32_t iUnset = 0;         ///< no profile was ever chosen; saved like a single one
inline constexpr int32_t iSingle = 1;        ///< one file
inline constexpr int32_t iDual = 2;          ///< a file for each of two chips, high and low words
inline constexpr int32_t iCD32 = 3;          ///< one file, interleaved as the CD32's ROM is
inline constexpr int32_t iSuperkickFile = 4; ///< one file that SuperKickstart loads
inline constexpr int32_t iSuperkickADF = 5;  ///< the image of a SuperKickstart disk
inline constexpr int32_t iA1000 = 6;         ///< the image of an A1000 Kickstart disk
} // namespace RomType

/// The positions of a profile, named after where the machine sees them.
inline constexpr size_t iProfileSlots = 4;
inline constexpr size_t iPositionF8 = 0;
inline constexpr size_t iPositionE0 = 1;
inline constexpr size_t iPositionB0 = 2;
inline constexpr size_t iPositionA0 = 3;

/// A profile without a ROM.
inline constexpr auto iNoProfile = [] {
    std::array<int32_t, iProfileSlots> none{};
    none.fill(-1);
    return none;
}();

/// The layout of the profile, a `RomType`. Set by `romprofile`.
extern int32_t isROMType;
/// The slot at each position; one that does not exist leaves its position unused. Set by `romprofile`.
extern std::array<int32_t, iProfileSlots> isProfileROM;

/// Chooses the profile. Nothing is checked.
void romprofile(int32_t type, int32_t rom0, int32_t rom1, int32_t rom2, int32_t rom3);

/// The ROM at a position; null when the position is not in use.
[[nodiscard]] const KickstartRom* profilerom(size_t position);

/// The size in bytes of the ROM at a position; 0 when it is not in use.
[[nodiscard]] int32_t profilesize(size_t position);

} // namespace vantorel
