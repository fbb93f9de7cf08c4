// Disk images from hostile hands: whatever the blocks say, listing the disk and collecting its files must
// end.
//
// The first byte of the input chooses what the rest is:
//   bit 0     0: patches over a sound disk; 1: blocks of the disk as they are, zeros around them
//   bit 1     the sound disk is 0: OFS, 1: FFS
//   bit 2     patched blocks get good checksums, as a careful forger would see to
//   bit 3     the blocks begin with 0: the boot block, 1: the root block
// A patch is a block number and a byte offset (two bytes each, big-endian, taken modulo disk and block), a
// length (one byte, modulo 16), and as many bytes.

#include "adf/blocks.h"
#include "adf/disk.h"
#include "adf/filedata.h"
#include "input.h"
#include "support/diskbuilder.h"

#include <algorithm>
#include <cstdlib>

namespace vantorel::test {
namespace {

enum Mode : uint8_t { kRaw = 1, kFfs = 2, kRepair = 4, kFromRoot = 8 };

// Files that share their blocks can come to gigabytes in all; a part of that shows as much.
constexpr size_t kEnough = 4 << 20;

/// A disk with every kind of structure on it: chains, nested directories, an extension block.
Bytes sounddisk(FileSystem system) {
    DiskBuilder disk(system, "Fuzz");
    for (int i = 0; i < 100; i++)
        disk.addfile("Many/" + std::to_string(i), std::to_string(i));
    disk.addfile("A/B/C/deep", Bytes(1500, 'x'));
    disk.addfile("long", Bytes(40000, 'y'));
    return disk.image();
}

void patch(Bytes& image, Input& input, bool repair) {
    const auto number = static_cast<size_t>(input.word() % adf::iBlocks);
    const auto offset = static_cast<size_t>(input.word() % adf::iBlockSize);
    const View bytes = input.bytes(static_cast<size_t>(input.byte() % 16));
    const std::span block = std::span(image).subspan(number * adf::iBlockSize, adf::iBlockSize);
    std::ranges::copy(bytes.first(std::min(bytes.size(), block.size() - offset)),
                      block.begin() + static_cast<ptrdiff_t>(offset));
    if (repair) repairchecksum(block);
}

Bytes rawimage(View bytes, int32_t first) {
    Bytes image(static_cast<size_t>(first) * adf::iBlockSize);
    image.insert(image.end(), bytes.begin(), bytes.end());
    image.resize(adf::iImageSize);
    return image;
}

Bytes imageof(Input input) {
    static const Bytes ofs = sounddisk(FileSystem::Ofs);
    static const Bytes ffs = sounddisk(FileSystem::Ffs);
    const int32_t mode = input.byte();
    if (mode & kRaw) return rawimage(input.rest(), mode & kFromRoot ? adf::iRootBlock : adf::iBootBlock);
    Bytes image = mode & kFfs ? ffs : ofs;
    while (!input.isempty())
        patch(image, input, (mode & kRepair) != 0);
    return image;
}

void require(bool holds) {
    if (!holds) std::abort();
}

void exercisedisk(const Bytes& image) {
    loadadfimage(image);
    require(psFiles.size() < size_t{adf::iBlocks});
    size_t total = 0;
    for (int32_t n = 0; n < static_cast<int32_t>(psFiles.size()) && total < kEnough; n++) {
        require(psFiles[static_cast<size_t>(n)].iParent < n);
        total += adflist(n).size();
        const Bytes data = adffiledata(n);
        require(data.size() <= size_t{adf::iImageSize});
        total += data.size();
    }
}

} // namespace

void exercise(View bytes) { exercisedisk(imageof(Input(bytes))); }

} // namespace vantorel::test
