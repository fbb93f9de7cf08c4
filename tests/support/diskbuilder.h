#pragma once
// Builds Amiga floppy images in memory, as the Amiga's own file systems would lay them out, and damages them.

#include "adf/blocks.h"
#include "base/bytes.h"

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::test {

enum class FileSystem { Ofs, Ffs };

/// A moment as the Amiga keeps it; the default is the epoch itself, midnight of 1978-01-01.
struct AmigaTime {
    uint32_t iDays = 0;    ///< since 1978-01-01
    uint32_t iMinutes = 0; ///< since midnight
    uint32_t iTicks = 0;   ///< fiftieths of a second
};

/// Makes the sum of a block's longs 0 by its long at byte `offset`.
void repairchecksum(std::span<uint8_t> block, int32_t offset = adf::kChecksum);

/// A disk of 1760 blocks. Paths are like "S/Startup-Sequence", without a leading "/". What does not fit, is
/// there already, or was never made throws std::runtime_error.
class DiskBuilder {
public:
    explicit DiskBuilder(FileSystem system, const std::string& volume = "Empty");

    /// Makes a file, and the directories above it where they are missing. Returns the number of its header
    /// block.
    int32_t addfile(const std::string& path, View bytes, AmigaTime time = {});
    int32_t addfile(const std::string& path, std::string_view text, AmigaTime time = {});

    /// Makes a directory, and those above it where they are missing. Returns the number of its header block.
    int32_t adddirectory(const std::string& path, AmigaTime time = {});

    /// Header block of a file or directory, the root block for "".
    [[nodiscard]] int32_t blockof(const std::string& path) const;
    /// The `n`-th (from 0) data block of a file.
    [[nodiscard]] int32_t datablockof(const std::string& path, size_t n) const;
    /// The `n`-th (from 0) extension block of a file.
    [[nodiscard]] int32_t extensionof(const std::string& path, size_t n) const;

    /// The hash table slot of a name, the way the original file systems count it (ASCII letters only).
    [[nodiscard]] static int32_t slotof(std::string_view name);
    /// Byte offset of that slot in a root block or directory header.
    [[nodiscard]] static int32_t slotoffset(std::string_view name);

    [[nodiscard]] uint32_t peek(int32_t block, int32_t offset) const;
    /// Stores a long and repairs the block's checksum where it has one, so that only the long itself is a
    /// lie.
    void poke(int32_t block, int32_t offset, uint32_t value);
    /// The same for any bytes.
    void pokebytes(int32_t block, int32_t offset, View bytes);

    /// The disk, its bitmap written.
    [[nodiscard]] Bytes image() const;

private:
    enum class Sum : uint8_t { None, Header, Bitmap };

    std::span<uint8_t> at(int32_t block);
    int32_t allocate();
    void set(int32_t block, int32_t offset, uint32_t value);
    void seal(int32_t block);
    void setname(int32_t block, std::string_view name, AmigaTime time);
    void link(int32_t parent, int32_t header, std::string_view name);
    int32_t addheader(const std::string& path, int32_t type, AmigaTime time);
    void adddata(int32_t header, View bytes);
    int32_t adddatablock(int32_t header, View payload, uint32_t sequence);
    int32_t addextension(int32_t header, int32_t previous);
    [[nodiscard]] size_t payloadsize() const;

    FileSystem eSystem;
    Bytes cImage;
    std::array<Sum, adf::iBlocks> eSums{};
    std::array<bool, adf::iBlocks> bUsed{};
    std::map<std::string, int32_t> iHeaders;
    std::map<int32_t, std::vector<int32_t>> iData;       ///< by file header
    std::map<int32_t, std::vector<int32_t>> iExtensions; ///< by file header
};

} // namespace vantorel::test
