// Archives of hostile disks: whatever the blocks say, the archive must be sound and hold what the table
// lists.
//
// The first byte of the input chooses the sound disk (bit 0; 0: OFS, 1: FFS), the rest is a list of patches
// over it. A patch is a byte that chooses one of the blocks around those in use, a byte that chooses a field,
// and a value: two bytes, modulo 2048 so that most name a block, or four after a field byte above 127.

#include "adf/blocks.h"
#include "adf/disk.h"
#include "adf/filedata.h"
#include "adf/savezip.h"
#include "adf/zipreader.h"
#include "base/text.h"
#include "input.h"
#include "support/diskbuilder.h"

#include <array>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

namespace vantorel::test {
namespace {

// A disk can list gigabytes; the archive of a part of the table shows as much.
constexpr size_t kEnough = 256 << 10;
// The builder hands out blocks from here on.
constexpr int32_t kFirstUsed = adf::iRootBlock + 2;
constexpr int32_t kUsed = 160;

constexpr std::array<int32_t, 16> kFields = {adf::kPointerCount,
                                             adf::kHashTable,
                                             adf::kHashTable + 4 * 30,
                                             adf::kHashTable + 4 * 60,
                                             adf::kFirstPointer,
                                             adf::kFirstPointer - 4,
                                             adf::kFileSize,
                                             adf::kDays,
                                             adf::kMinutes,
                                             adf::kTicks,
                                             adf::kNameLength,
                                             adf::kName + 3,
                                             adf::kHashTable + 4 * 45,
                                             adf::kHashChain,
                                             adf::kExtension,
                                             adf::kSecondaryType};

void require(bool holds) {
    if (!holds) std::abort();
}

/// A disk with every kind of structure on it: chains, nested directories, an extension block.
Bytes sounddisk(FileSystem system) {
    DiskBuilder disk(system, "Fuzz");
    disk.addfile("long", Bytes(40000, 'y'), {17000, 1000, 2999});
    disk.addfile("A/B/C/deep", Bytes(1500, 'x'), {2, 3, 4});
    disk.addfile("A/empty", "");
    for (int i = 0; i < 20; i++)
        disk.addfile("Many/" + std::to_string(i), std::to_string(i));
    return disk.image();
}

void patch(Bytes& image, Input& input) {
    const int64_t block = kFirstUsed - 2 + input.byte() % kUsed;
    const int32_t choice = input.byte();
    const auto high = static_cast<uint32_t>(input.word());
    const uint32_t value = choice > 127 ? high << 16 | static_cast<uint32_t>(input.word()) : high % 2048;
    const int32_t field = kFields[static_cast<size_t>(choice) % kFields.size()];
    require(putlong(image, block * adf::iBlockSize + field, value));
}

Bytes imageof(Input input) {
    static const Bytes ofs = sounddisk(FileSystem::Ofs);
    static const Bytes ffs = sounddisk(FileSystem::Ffs);
    Bytes image = input.byte() & 1 ? ffs : ofs;
    while (!input.isempty())
        patch(image, input);
    return image;
}

/// Cuts the table where its contents become too many; parents stand before their children.
void cuttable() {
    size_t total = 0;
    for (size_t n = 0; n < psFiles.size(); ++n) {
        total += adflist(static_cast<int32_t>(n)).size() + adffiledata(static_cast<int32_t>(n)).size();
        if (total > kEnough) return psFiles.resize(n);
    }
}

/// The archive of the table, from a file in memory.
Bytes archive() {
    static const int memory = ::memfd_create("zip", MFD_CLOEXEC);
    static const std::string path = formatted("/proc/self/fd/%d", memory);
    adfsavezip(path);
    Bytes bytes(static_cast<size_t>(::lseek(memory, 0, SEEK_END)));
    require(::pread(memory, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    return bytes;
}

/// The archive must open, and hold what the table says.
void compare(View bytes) {
    const std::vector<ZipEntry> entries = readzip(bytes);
    require(entries.size() == psFiles.size());
    for (int32_t n = 0; n < static_cast<int32_t>(entries.size()); ++n) {
        const ZipEntry& entry = entries[static_cast<size_t>(n)];
        require("/" + entry.name == adflist(n));
        require(entry.data == adffiledata(n));
    }
}

} // namespace

void exercise(View bytes) {
    loadadfimage(imageof(Input(bytes)));
    cuttable();
    compare(archive());
}

} // namespace vantorel::test
