#pragma once
// Makes Kickstart images of which everything is known: where each module lies, which of its longs are
// addresses, what its extract and its loadable form must be.
//
//     RomBuilder rom(512 * 1024, 0xF80000);
//     rom.module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 4096});
//     rom.gap(64).module({.name = "trackdisk.device", .idstring = "trackdisk 40.1 (9.2.93)\r\n",
//                         .init = Init::Auto16, .initstruct = libraryinit()});
//     BuiltRom built = rom.build();
//
// The same calls always make the same bytes. Wrong orders (modules that overlap, a module too small for what
// it must hold) throw std::logic_error.

#include "base/bytes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::test {

/// `value` bytes, and those that are missing to the next whole long.
constexpr int32_t wholelong(int32_t value) { return (value + 3) & ~3; }

/// How a module's RT_INIT is laid out.
enum class Init {
    Manual, ///< RT_INIT is the init function
    Auto32, ///< RT_INIT is an AUTOINIT table; its vectors are longs with absolute addresses, ended by
            ///< 0xFFFFFFFF
    Auto16  ///< the same with words relative to the vector table, between two words 0xFFFF
};

/// A long that holds the address of a byte of a module.
struct Pointer {
    std::string module{}; ///< its name; empty: the module that holds the pointer
    int32_t offset = 0;   ///< bytes from that module's first one
};

/// RT_FLAGS
inline constexpr uint8_t iColdStart = 0x01;
inline constexpr uint8_t iSingleTask = 0x02;
inline constexpr uint8_t iAfterDos = 0x04;
inline constexpr uint8_t iAutoInit = 0x80;

/// Start of a module that takes the next free place; ROMTAG of a block that has none.
inline constexpr int32_t iNone = -1;

/// What stands before a module's ROMTAG unless something else is asked for: MOVEQ #-1,D0 and RTS.
inline constexpr int32_t iUsualTag = 4;

/// A module with a ROMTAG. In order it holds: code up to the ROMTAG, the ROMTAG, the name, the id string, the
/// AUTOINIT table with its vectors and InitStruct data, the init function, the functions, and code up to its
/// end in which the pointers are spread. All longs with an address, and nothing else, are relocs.
struct ModuleSpec {
    std::string name{};
    std::string idstring{};     ///< as it stands in the ROM, usually with "\r\n"
    int32_t size = 2048;        ///< bytes; any number that suffices, 0: just as many longs as needed
    int32_t start = iNone;      ///< image offset in bytes
    int32_t tag = iUsualTag;    ///< offset of the ROMTAG in the module; even
    uint8_t flags = iColdStart; ///< RTF_AUTOINIT comes from `init`
    uint8_t version = 40;
    uint8_t type = 9; ///< NT_LIBRARY; 3 is NT_DEVICE, 8 NT_RESOURCE, 1 NT_TASK
    int8_t priority = 0;
    Init init = Init::Manual;
    uint32_t datasize = 0x40; ///< first long of the AUTOINIT table
    int32_t functions = 6;    ///< entries of the vector table: Open, Close, Expunge, Reserved, ...
    Bytes initstruct{};       ///< InitStruct stream with its end mark; empty: none, the table's pointer is 0
    bool initfunction = true; ///< false: the AUTOINIT table's last pointer is 0
    int32_t calls = 8;        ///< number of JSRs to the module's own functions by absolute address
    std::vector<Pointer> pointers{}; ///< further absolute addresses, each in a LEA
    uint32_t seed = 0; ///< varies the code; 0: from the name, so that it does not depend on the neighbours
    int32_t endskip = iNone; ///< offset in the module for RT_ENDSKIP; none: the module's end
    bool badmatch = false;   ///< RT_MATCHTAG points beside the tag, which makes it none
};

/// A block without a ROMTAG.
struct DataSpec {
    std::string name{};
    Bytes bytes{};                   ///< the contents; empty: `size` bytes of code
    int32_t size = 256;              ///< bytes, when `bytes` is empty
    int32_t start = iNone;           ///< image offset in bytes
    std::vector<Pointer> pointers{}; ///< absolute addresses spread in the code, only when `bytes` is empty
    uint32_t seed = 0;
};

/// The first 24 bytes of an image.
struct HeaderSpec {
    uint16_t ident = 0;   ///< 0: 0x1111 for 256K, else 0x1114
    uint32_t entry = 210; ///< image offset; the header holds its address
    uint16_t version = 40;
    uint16_t revision = 68;
    uint16_t execversion = 40;
    uint16_t execrevision = 10;
};

inline constexpr int32_t iHeaderSize = 24;
inline constexpr int32_t iSplitOffset = 262144;
inline constexpr int32_t iSplitSize = 8;
inline constexpr int32_t iTailSize = 24; ///< checksum, size and vectors

/// A module or data block as it lies in the image.
struct BuiltModule {
    std::string name;
    std::string idstring;        ///< without its line end, as the program shows it
    std::string type;            ///< type word: "Library" or "Data"
    int32_t start = 0;           ///< image offset in bytes
    int32_t size = 0;            ///< bytes
    int32_t tag = iNone;         ///< offset of the ROMTAG in the module
    std::vector<int32_t> relocs; ///< offsets in the module, ascending
    Bytes extract;               ///< the bytes, each reloc's long less base + start
    uint32_t extractcrc = 0;
    Bytes loadable;           ///< the loadable library form
    uint32_t loadablecrc = 0; ///< its CRC32, which names the module's hash file

    [[nodiscard]] int32_t end() const { return start + size; }
    /// Image offset of the ROMTAG, -1 for none.
    [[nodiscard]] int32_t romtag() const { return tag < 0 ? -1 : start + tag; }
    /// The name of its hash file, made of `loadablecrc` and the id string (of a data block: the name).
    [[nodiscard]] std::string hash() const;
};

/// A line of the component map.
struct MapLine {
    std::string name;
    int32_t start = 0;
    int32_t size = 0;
    std::string type;
    std::string hash;
};

struct BuiltRom {
    Bytes image;
    uint32_t base = 0;
    uint32_t crc = 0;                 ///< CRC32 of the image
    std::vector<BuiltModule> modules; ///< modules and data blocks, ascending
    std::vector<MapLine> map;         ///< those, the header and the virtual components, ascending

    [[nodiscard]] int32_t size() const { return static_cast<int32_t>(image.size()); }
    /// The module of this name; throws when there is none.
    [[nodiscard]] const BuiltModule& module(std::string_view name) const;
    /// The module's bytes as they stand in the image.
    [[nodiscard]] View bytes(const BuiltModule& module) const {
        return part(image, module.start, module.size);
    }
};

class RomBuilder {
public:
    /// An image of `size` bytes for CPU address `base`, with header, checksum, size and vectors.
    RomBuilder(int32_t size, uint32_t base);

    RomBuilder& header(const HeaderSpec& spec);
    /// Starts the image with the first module or with fill instead of a header.
    RomBuilder& noheader();
    /// What fills the places that nothing covers; 0xFF unless given.
    RomBuilder& fill(uint8_t byte);
    /// Puts the Kickity-Split marker at 262144; what would lie across it moves behind it.
    RomBuilder& split();
    RomBuilder& nochecksum();
    RomBuilder& nosize();
    RomBuilder& novectors();

    /// Adds a module or block at its start, or directly behind what was added last (on a whole long).
    RomBuilder& module(const ModuleSpec& spec);
    RomBuilder& data(const DataSpec& spec);
    /// Leaves `bytes` of fill before what is added next.
    RomBuilder& gap(int32_t bytes);
    /// Writes `bytes` over whatever lies at image offset `offset`, before the checksum is made; for damage.
    RomBuilder& overwrite(int32_t offset, View bytes);

    /// Changes the base for a further `build`.
    RomBuilder& base(uint32_t address);

    [[nodiscard]] BuiltRom build() const;

private:
    struct Block {
        ModuleSpec spec;
        Bytes contents{};
        bool isdata = false;
        int32_t start = 0;
    };
    struct Patch {
        int32_t offset;
        Bytes bytes;
    };

    void place(Block block, int32_t size);
    [[nodiscard]] int32_t startof(const std::string& name) const;
    [[nodiscard]] BuiltModule buildblock(const Block& block) const;
    void writeheader(BuiltRom& rom) const;
    void writesplit(BuiltRom& rom) const;
    void writetail(BuiltRom& rom) const;

    int32_t imagesize;
    uint32_t imagebase;
    HeaderSpec headerspec;
    bool hasheader = true;
    bool hassplit = false;
    bool haschecksum = true;
    bool hassize = true;
    bool hasvectors = true;
    uint8_t fillbyte = 0xFF;
    int32_t cursor = iHeaderSize;
    std::vector<Block> blocks;
    std::vector<Patch> patches;
};

/// An InitStruct stream that sets a library node's type, flags and version; ends with its end mark.
[[nodiscard]] Bytes libraryinit();

/// The loadable library form (a hunk file of one hunk) of an extract with its relocs. `type` as in a
/// component map: "Library" makes a code hunk, everything else a data hunk.
[[nodiscard]] Bytes loadableform(View extract, const std::vector<int32_t>& relocs, std::string_view type);

/// A realistic image with modules of every kind, a data block, a gap, checksum, size and vectors; at 512K and
/// above a module above 64K and the split marker too. `size` is 256K, 512K or 1 MB. Base 0: 0xFC0000 for
/// 256K, 0xF80000 for 512K, 0xF00000 for 1 MB.
[[nodiscard]] RomBuilder standardbuilder(int32_t size = 512 * 1024, uint32_t base = 0);
[[nodiscard]] BuiltRom standardrom(int32_t size = 512 * 1024, uint32_t base = 0);

} // namespace vantorel::test
