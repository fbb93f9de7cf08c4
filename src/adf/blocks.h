#pragma once
// The layout of an Amiga double-density floppy: where its blocks and their fields lie, in both file systems.
// All fields are big-endian longs unless said otherwise; all offsets are bytes from the start of a block.

#include <cstdint>

namespace vantorel::adf {

inline constexpr int32_t iBlockSize = 512;                  ///< bytes
inline constexpr int32_t iBlocks = 1760;                    ///< 80 cylinders, 2 heads, 11 sectors
inline constexpr int32_t iImageSize = iBlocks * iBlockSize; ///< bytes
inline constexpr int32_t iBootBlock = 0;                    ///< block number
inline constexpr int32_t iFirstBlock = 2;         ///< first block number that the file system hands out
inline constexpr int32_t iRootBlock = 880;        ///< block number
inline constexpr int32_t iTableSize = 72;         ///< entries of a hash table or of a table of data pointers
inline constexpr int32_t iNameMax = 30;           ///< characters of a volume, file or directory name
inline constexpr int64_t iAmigaEpoch = 252460800; ///< seconds from 1970-01-01 to 1978-01-01
inline constexpr int32_t iTicksPerSecond = 50;

/// Boot block.
enum BootField : int32_t {
    kDosType = 0,  ///< "DOS" and the flags byte
    kBootFlags = 3 ///< one byte, see `kFlagFFS`
};
inline constexpr uint8_t kFlagFFS = 1; ///< set: Fast File System, clear: Old File System

/// Root block, directory and file headers, extension blocks, and the first six also in OFS data blocks.
enum BlockField : int32_t {
    kType = 0,   ///< primary type
    kOwnKey = 4, ///< the block's own number; in an OFS data block that of the file header
    kPointerCount =
        8,           ///< data pointers held in this block; in an OFS data block its place in the file, from 1
    kDataSize = 12,  ///< root: entries of the hash table; OFS data block: payload bytes
    kFirstData = 16, ///< file header: the first data block; OFS data block: the next one, 0 at the end
    kChecksum = 20,  ///< makes the sum of the block's longs 0
    kHashTable = 24, ///< root and directories: `iTableSize` block numbers, 0 for an empty slot
    kFirstPointer =
        308, ///< files and extension blocks: number of the first data block, the next at 304 and so on
    kBitmapFlag = 312,  ///< root: -1 when the bitmap is valid
    kBitmapPages = 316, ///< root: 25 numbers of bitmap blocks
    kFileSize = 324,    ///< file header: bytes in the file
    kDays = 420,        ///< days since 1978-01-01
    kMinutes = 424,     ///< minutes since midnight
    kTicks = 428,       ///< fiftieths of a second since that minute began
    kNameLength = 432,  ///< one byte
    kName = 433,        ///< bytes, `iNameMax` at most
    kHashChain = 496,   ///< next header in the same hash chain, 0 at the end
    kParent = 500,      ///< header of the directory; in an extension block that of the file
    kExtension = 504,   ///< next extension block of the file, 0 at the end
    kSecondaryType = 508
};

/// What stands at `kType`.
enum PrimaryType : int32_t { kHeaderBlock = 2, kDataBlock = 8, kListBlock = 16 };

/// What stands at `kSecondaryType`, signed.
enum SecondaryType : int32_t { kRoot = 1, kDirectory = 2, kFile = -3 };

/// Where a data block's payload lies, in bytes.
struct Payload {
    int32_t iOffset;
    int32_t iSize;
};
inline constexpr Payload kPayloadOFS{24, 488};
inline constexpr Payload kPayloadFFS{0, 512};

} // namespace vantorel::adf
