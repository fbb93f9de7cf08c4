#include "output/burnlayouts.h"

#include "adf/blocks.h"
#include "base/message.h"
#include "output/profile.h"
#include "rom/header.h"
#include "rom/layout.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace vantorel {

namespace {

// Fills `to` with every second word of `from`, beginning at its byte `start`. Bytes for which `from` has no
// whole word stay as they are.
void fillwithwords(std::span<uint8_t> to, View from, size_t start) {
    takewords(from.first(std::min(from.size() & ~size_t{1}, 2 * to.size())), start, to);
}

void interleavepair(std::span<uint8_t> buffer) {
    const View upper = profilerom(iPositionF8)->pcROM;
    const View lower = profilerom(iPositionE0)->pcROM;
    constexpr size_t quarter = iSize1M / 4;
    for (const size_t word : {size_t{0}, size_t{2}}) {
        fillwithwords(buffer.first(quarter), lower, word);
        fillwithwords(buffer.subspan(quarter, quarter), upper, word);
        buffer = buffer.subspan(2 * quarter);
    }
}

// The second MiB moves its first half down and takes the words of the fourth ROM around it.
void interleavefourth(std::span<uint8_t> buffer) {
    constexpr size_t half = iSize512K;
    std::ranges::copy(buffer.subspan(2 * half, half), buffer.begin() + half);
    const KickstartRom* fourth = profilerom(iPositionA0);
    if (fourth == nullptr) return;
    fillwithwords(buffer.subspan(half, half), fourth->pcROM, 0);
    fillwithwords(buffer.subspan(3 * half, half), fourth->pcROM, 2);
}

} // namespace

void interleaveCD32(Bytes& buffer) {
    const size_t length = buffer.size() <= iSize1M ? iSize1M : 2 * iSize1M;
    message(kProgress, "CD32 Buffer is %dk, interleaving for single rom\n",
            static_cast<int32_t>(length / 1024));
    buffer.resize(length);
    if (profilesize(iPositionF8) == iSize512K && profilesize(iPositionE0) == iSize512K)
        interleavepair(buffer);
    else
        message(kResult,
                "ERROR: First two ROMs MUST be exactly 512k, optional third ROM (4th in profile) MUST be "
                "1Mb\n");
    if (length == iSize1M) return;
    message(kResult, "ERROR: WARNING: Untested code, 2nd 1Mb interleave must be 4th ROM[3] (1Mb)\n");
    interleavefourth(buffer);
}

namespace {

void puttext(Bytes& disk, std::string_view text) { std::ranges::copy(text, disk.begin()); }

void narratesize(Threshold threshold, size_t position) {
    message(threshold, "ROM %d [%d] Size %d 0x40000=%d\n", static_cast<int32_t>(position),
            isProfileROM[position], profilesize(position), iSize256K);
}

// A piece of a disk: what fills it and where, and what is said when that cannot be.
struct DiskPiece {
    size_t position;   // in the profile
    int32_t offset;    // on the disk, in bytes
    int32_t size;      // what the ROM must have, or have less than
    bool isexact;      // which of the two
    int32_t sizefield; // where on the disk its size is stored; 0: nowhere
    const char* misfit;
    const char* missing;

    [[nodiscard]] bool admits(int32_t bytes) const { return isexact ? bytes == size : bytes < size; }
};

void putpiece(Bytes& disk, const DiskPiece& piece) {
    const KickstartRom* slot = profilerom(piece.position);
    if (slot == nullptr) {
        message(kResult, "%s", piece.missing);
    } else if (!piece.admits(slot->iSize())) {
        message(kResult, "%s", piece.misfit);
    } else {
        std::ranges::copy(slot->pcROM, disk.begin() + piece.offset);
        if (piece.sizefield != 0)
            setlong(disk.data() + piece.sizefield, static_cast<uint32_t>(slot->iSize()));
    }
}

// What a SuperKickstart disk holds, one behind the other: its boot blocks, which store the sizes of both
// bonus codes as longs, two Kickstarts, the bonus code of the second, and that of the first up to the end.
constexpr int32_t iFirstBonusSize = 8;
constexpr int32_t iSecondBonusSize = 12;
constexpr int32_t iFirstKickstart = 2 * adf::iBlockSize;
constexpr int32_t iSecondKickstart = iFirstKickstart + iSize256K;
constexpr int32_t iSecondBonus = iSecondKickstart + iSize512K;
constexpr int32_t iFirstBonus = iSecondBonus + 4096;

// Both kinds of bonus code that are too large get the same line.
constexpr const char* cBonusTooLarge =
    "ERROR: Kickstart 2+ ROM too large, ignoring - this will NOT be a valid Superkick ADF\n";

constexpr auto cSuperkickPieces = std::to_array<DiskPiece>({
    {.position = iPositionF8,
     .offset = iFirstKickstart,
     .size = iSize256K,
     .isexact = true,
     .sizefield = 0,
     .misfit = "ERROR: Kickstart 1.3 ROM wrong size, ignoring - this will NOT be a valid Superkick ADF\n",
     .missing = "ERROR: Kickstart 1.3 missing - this will NOT be a valid Superkick ADF\n"},
    {.position = iPositionB0,
     .offset = iSecondKickstart,
     .size = iSize512K,
     .isexact = true,
     .sizefield = 0,
     .misfit = "ERROR: Kickstart 2+ ROM wrong size, ignoring - this will NOT be a valid Superkick ADF\n",
     .missing = "ERROR: Kickstart 2+ missing - this will NOT be a valid Superkick ADF\n"},
    {.position = iPositionA0,
     .offset = iSecondBonus,
     .size = iFirstBonus - iSecondBonus,
     .isexact = false,
     .sizefield = iSecondBonusSize,
     .misfit = cBonusTooLarge,
     .missing = "ERROR: Kickstart 2+ Bonus code missing - this will NOT be a valid Superkick ADF\n"},
    {.position = iPositionE0,
     .offset = iFirstBonus,
     .size = adf::iImageSize - iFirstBonus,
     .isexact = false,
     .sizefield = iFirstBonusSize,
     .misfit = cBonusTooLarge,
     .missing = "ERROR: Kickstart 1.3 Bonus code missing - this will NOT be a valid Superkick ADF\n"},
});

constexpr DiskPiece cA1000Piece = {
    .position = iPositionF8,
    .offset = adf::iBlockSize,
    .size = iSize256K,
    .isexact = true,
    .sizefield = 0,
    .misfit =
        "ERROR: Kickstart 1.3/1.4 ROM wrong size, ignoring - this will NOT be a valid A1000 Kickstart ADF\n",
    .missing = "ERROR: Kickstart missing - this will NOT be a valid A1000 Kickstart ADF\n"};
} // namespace

Bytes superkickdisk() {
    Bytes disk(adf::iImageSize);
    puttext(disk, "KICKSUP0");
    for (size_t position = 0; position < iProfileSlots; ++position)
        narratesize(kProgress, position);
    for (const DiskPiece& piece : cSuperkickPieces)
        putpiece(disk, piece);
    return disk;
}

Bytes a1000disk() {
    Bytes disk(adf::iImageSize);
    puttext(disk, "KICK");
    narratesize(kAlways, iPositionF8);
    putpiece(disk, cA1000Piece);
    return disk;
}

} // namespace vantorel
