#pragma once
// The ROM store: the slots with their images, and the component records that say what lies where in each.

#include "base/bytes.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel {

// The type words of components. `rom/map.cpp` holds the full list that hash files may use.
inline constexpr std::string_view cTypeKickitySplit = "Kickity-Split";
inline constexpr std::string_view cTypeLibrary = "Library";
inline constexpr std::string_view cTypeChecksum = "Checksum";
inline constexpr std::string_view cTypeSize = "Size";
inline constexpr std::string_view cTypeVectors = "Vectors";
inline constexpr std::string_view cTypeData = "Data";
inline constexpr std::string_view cTypeUnknown = "Unknown";

/// A byte range of an image and what is known of it. A record as it is made here, all texts absent, is a
/// blank component: operations on every component pass over it in silence.
struct Component {
    Text pcName;                    ///< library name such as exec.library, or "Kickity-Split", ...
    int32_t iStart = 0;             ///< first byte, an image offset
    int32_t iROMTag = -1;           ///< image offset of the ROMTAG's RT_MATCHWORD; -1: none
    int32_t iSize = 0;              ///< length in bytes
    int32_t iFixedStart = 0;        ///< the start when known for certain, an image offset; -1: only inferred
    int32_t iFixedEnd = 0;          ///< first byte behind it when known for certain; -1: only inferred
    Text pcHash;                    ///< names the component's hash file
    Text pcType;                    ///< type word, such as `cTypeLibrary`
    std::vector<int32_t> ipRelocs;  ///< component offsets of the longs that hold absolute ROM addresses
    std::optional<Bytes> pcExtract; ///< the bytes, each relocated long less `iROMBase` + `iStart`
    uint32_t iCRC32 = 0;            ///< CRC32 of the extract
    Text pcLibName;                 ///< RT_NAME text
    Text pcLibString;               ///< RT_IDSTRING text

    [[nodiscard]] int32_t iRelocs() const { return static_cast<int32_t>(ipRelocs.size()); }
    /// First byte behind the component, an image offset, wide enough for any record.
    [[nodiscard]] int64_t iEnd() const { return int64_t{iStart} + iSize; }
    [[nodiscard]] bool isblank() const { return !pcName && !pcType; }
    /// Whether both bounds are known for certain.
    [[nodiscard]] bool isverified() const { return iFixedStart >= 0 && iFixedEnd >= 0; }
};

/// More components than any ROM has: a map of more is damage, and working on it would take out of all
/// proportion.
inline constexpr int32_t iComponentsMost = 4096;

/// One slot. `rom/header.h` tells where its image keeps what.
struct KickstartRom {
    Bytes pcROM;                         ///< the image
    int32_t iUsed = 0;                   ///< bytes of the image that hold loaded data
    uint32_t iCRC32 = 0;                 ///< CRC32 of the image as it was loaded
    uint32_t iROMBase = 0;               ///< CPU address at which the image runs
    std::vector<Component> psComponents; ///< ascending by `iStart` until a bound is edited
    Text pcTitle;                        ///< "Unnamed" for a new ROM
    Text pcText;                         ///< description
    uint8_t cFill = 0;                   ///< what fills empty or erased space

    [[nodiscard]] int32_t iSize() const { return static_cast<int32_t>(pcROM.size()); }
    [[nodiscard]] int32_t iComponents() const { return static_cast<int32_t>(psComponents.size()); }
    /// The record of a component that exists.
    [[nodiscard]] Component& component(int32_t number) { return psComponents[static_cast<size_t>(number)]; }
    [[nodiscard]] const Component& component(int32_t number) const {
        return psComponents[static_cast<size_t>(number)];
    }
};

inline constexpr int32_t iRomSlots = 20;

/// The slots; those below `iMaxRom` are in use. Filled by `newrom`, emptied by `freeroms`.
extern std::array<KickstartRom, iRomSlots> psKickstartRoms;
/// Number of slots in use. Slots are handed out in order and given back all at once.
extern int32_t iMaxRom;
/// Slot of the current ROM, -1 for none. Set by the command layer and by `loadsplitrom`; may name no slot.
extern int32_t iCurrentROM;

/// The slot `rom`, or null when there is none. Silent.
[[nodiscard]] KickstartRom* findslot(int32_t rom);

/// The slot `rom`, or null with "ERROR, No current ROM".
[[nodiscard]] KickstartRom* requireslot(int32_t rom);

/// The record of component `component` of slot `rom`, or null when there is none. Silent.
[[nodiscard]] Component* findrecord(int32_t rom, int32_t component);

/// The same; null with the line of `requireslot`, or with "ERROR: No such component".
[[nodiscard]] Component* requirerecord(int32_t rom, int32_t component);

/// The number of the first component of `slot` for which `is` is true; -1 when there is none.
template <class Predicate>
[[nodiscard]] int32_t findnumber(const KickstartRom& slot, Predicate is) {
    const auto found = std::ranges::find_if(slot.psComponents, is);
    return found == slot.psComponents.end() ? -1 : static_cast<int32_t>(found - slot.psComponents.begin());
}

/// Makes an empty ROM of `size` bytes (0 or more), each holding `fill`, in the next slot.
/// Returns the slot, or -1 with a message when all are used. `iCurrentROM` is left alone.
int32_t newrom(int32_t size, uint8_t fill);

/// The name of a file that holds the image of `slot` or tells of it: "0x", its CRC32, "." and its title.
[[nodiscard]] std::string identityname(const KickstartRom& slot);

/// Titles slot `rom` and says so. Returns 0; 1 when there is no such slot.
int romname(int32_t rom, const std::string& text);

/// What `getromdata` tells of a slot.
struct RomData {
    int32_t iComponents = 0;
    int32_t iSize = 0; ///< bytes
    uint32_t iROMBase = 0;
    std::string cTitle; ///< at most `iRecordText` characters
};

/// Fills `record` for slot `rom` and returns `rom`; returns `iMaxRom` for -1 and -1 for any other slot not in
/// use, both without touching `record`.
int32_t getromdata(int32_t rom, RomData& record);

/// Releases the component map of slot `rom`, narrating each piece at every level.
void freecomponents(int32_t rom);

/// Hook for releasing a single component; records release themselves. Returns 0.
int destroycomponent(const Component& component);

/// Releases every slot, narrating at every level; no ROM is current afterwards.
void freeroms();

} // namespace vantorel
