#pragma once
// The one disk image in memory, and the fields of its blocks. Block numbers come from the image itself and
// may be anything: `isblock` says which of them lead to a block of the file system, and only those may be
// asked for fields.

#include "adf/blocks.h"
#include "base/bytes.h"

#include <array>
#include <cstdint>
#include <string>

namespace vantorel {

/// The image, zeros until the first load. Filled by `loadadf`, also in part when the file ends early.
extern std::array<uint8_t, adf::iImageSize> cBuffer;

/// 1 for a Fast File System disk, 0 for the Old File System. This and the two below are set by
/// `detectfilesystem`.
extern int32_t FFS;
/// Payload bytes of a data block: 512 (FFS) or 488 (OFS).
extern int32_t iDataBlockSize;
/// Byte offset of the payload in a data block: 0 (FFS) or 24 (OFS).
extern int32_t iDataBlockOffset;

/// Takes the file system from the image's boot block. Any other type than FFS counts as OFS.
void detectfilesystem();

/// Whether `number` is a block that a file system may use: 2 to 1759.
[[nodiscard]] inline bool isblock(uint32_t number) {
    return number >= uint32_t{adf::iFirstBlock} && number < uint32_t{adf::iBlocks};
}

/// The 512 bytes of a block; none of a number outside the disk.
[[nodiscard]] View blockat(int32_t block);

/// The long at byte `offset` of a block; 0 of anything outside.
[[nodiscard]] uint32_t blocklong(int32_t block, int32_t offset);

/// The name in a header or the root block. It ends at its zero padding or after the length that stands before
/// it, whichever comes first; a length that is not 1 to 30 counts as 30.
[[nodiscard]] std::string blockname(int32_t block);

/// The modification time of a header, in seconds since 1970-01-01.
[[nodiscard]] int64_t blockseconds(int32_t block);

/// The payload of a data block.
[[nodiscard]] View blockpayload(int32_t block);

} // namespace vantorel
