#pragma once
// ROMTAGs: the resident structures (struct Resident of exec/resident.h) that mark the modules of a Kickstart
// image.

#include "base/bytes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantorel {

/// The fields of a ROMTAG, in bytes from its first.
namespace RomTag {
inline constexpr uint16_t iMatch = 0x4AFC; ///< what the match word is
inline constexpr int32_t iMatchWord = 0;   ///< word
inline constexpr int32_t iMatchTag = 2;    ///< CPU address of the ROMTAG itself
inline constexpr int32_t iEndSkip = 6;     ///< CPU address at which a scan for further tags goes on
inline constexpr int32_t iFlags = 10;      ///< byte
inline constexpr int32_t iVersion = 11;    ///< byte
inline constexpr int32_t iType = 12;       ///< byte, a node type
inline constexpr int32_t iPri = 13;        ///< signed byte
inline constexpr int32_t iName = 14;       ///< CPU address of a text
inline constexpr int32_t iIdString = 18;   ///< CPU address of a text
inline constexpr int32_t iInit = 22;       ///< CPU address of code, or of the auto-init table
inline constexpr int32_t iLength = 26;

inline constexpr uint8_t cColdStart = 1 << 0;
inline constexpr uint8_t cSingleTask = 1 << 1;
inline constexpr uint8_t cAfterDos = 1 << 2;
inline constexpr uint8_t cAutoInit = 1 << 7;
} // namespace RomTag

/// The longs of the table that RT_INIT points to with RTF_AUTOINIT, in bytes from its first.
namespace AutoInit {
inline constexpr int32_t iDataSize = 0;
inline constexpr int32_t iVectors = 4;    ///< CPU address of the vector table
inline constexpr int32_t iInitStruct = 8; ///< CPU address of an InitStruct table; 0: none
inline constexpr int32_t iInit = 12;      ///< CPU address of LibraryInit; 0: none
} // namespace AutoInit

/// Ends a vector table of addresses.
inline constexpr uint32_t iVectorsEnd = 0xFFFFFFFF;
/// Begins and ends a vector table of words, each the distance of a function from the table.
inline constexpr uint16_t iWordVectors = 0xFFFF;

/// A ROMTAG found in an image.
struct RomTagInfo {
    uint32_t iOffset = 0;  ///< image offset of the tag
    int32_t iEndSkip = 0;  ///< bytes from the tag to its end-skip address; may be negative
    uint8_t cFlags = 0;    ///< RT_FLAGS
    std::string cName;     ///< RT_NAME text, at most 128 characters; "(bad pointer)" for a null pointer
    std::string cIdString; ///< RT_IDSTRING text, at most 128 characters; empty when it lies outside the image
};

/// Image offset of the next RT_MATCHWORD in [from, to), image offsets in bytes; `to` when there is none.
/// Whether it marks a ROMTAG is for `romtagbase` to say.
[[nodiscard]] int64_t nextmatchword(View image, int64_t from, int64_t to);

/// The base (a CPU address) for which the bytes at image offset `offset` would be a ROMTAG: its match tag
/// points at itself for a base of whole 4 KiB below 16 MB. None when they are no tag or its 26 bytes run out
/// of the image.
[[nodiscard]] std::optional<uint32_t> romtagbase(View image, int64_t offset);

/// The next ROMTAG in [from, to), image offsets in bytes.
/// `romBase` is the base of the image, a CPU address; when it comes in as 0 the first tag sets it. A tag for
/// another base is warned about and passed over. Narrates what it reads above level 5.
[[nodiscard]] std::optional<RomTagInfo> findromtag(View image, int32_t from, int32_t to, uint32_t& romBase);

/// The names of the bits that are set in RT_FLAGS `flags`, in ascending order, with `behind` behind each.
[[nodiscard]] std::string flagnames(uint8_t flags, char behind);

} // namespace vantorel
