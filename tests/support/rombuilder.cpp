#include "support/rombuilder.h"

#include "support/checksums.h"
#include "support/modulewriter.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace vantorel::test {

namespace {

void put(Bytes& image, int32_t offset, uint32_t value) {
    if (!putlong(image, offset, value))
        throw std::logic_error("outside the image: " + std::to_string(offset));
}

/// Copies `bytes` into the image; false when they do not fit.
bool store(Bytes& image, int32_t offset, View bytes) {
    if (!isinside(image, offset, static_cast<int64_t>(bytes.size()))) return false;
    std::copy(bytes.begin(), bytes.end(), image.begin() + offset);
    return true;
}

std::string hexbytes(View bytes) {
    std::string text = "0x";
    for (uint8_t byte : bytes)
        text += hex32(byte).substr(8);
    return text;
}

std::string withoutlineend(const std::string& text) { return text.substr(0, text.find_first_of("\r\n")); }

void makeextract(BuiltModule& module, View bytes, uint32_t base) {
    module.extract.assign(bytes.begin(), bytes.end());
    const uint32_t origin = base + static_cast<uint32_t>(module.start);
    for (int32_t reloc : module.relocs) {
        const uint32_t address = iUINT32(module.extract.data() + reloc);
        put(module.extract, reloc, address - origin);
    }
    module.extractcrc = crc32of(module.extract);
    module.loadable = loadableform(module.extract, module.relocs, module.type);
    module.loadablecrc = crc32of(module.loadable);
}

void checkoverlaps(const std::vector<MapLine>& map) {
    for (size_t i = 1; i < map.size(); ++i)
        if (map[i - 1].start + map[i - 1].size > map[i].start)
            throw std::logic_error(map[i - 1].name + " and " + map[i].name + " overlap");
}

} // namespace

std::string BuiltModule::hash() const { return hashname(loadablecrc, idstring.empty() ? name : idstring); }

const BuiltModule& BuiltRom::module(std::string_view name) const {
    for (const BuiltModule& module : modules)
        if (module.name == name) return module;
    throw std::logic_error("no module " + std::string(name));
}

RomBuilder::RomBuilder(int32_t size, uint32_t base) : imagesize(size), imagebase(base) {}

RomBuilder& RomBuilder::header(const HeaderSpec& spec) {
    headerspec = spec;
    return *this;
}

RomBuilder& RomBuilder::noheader() {
    hasheader = false;
    if (blocks.empty()) cursor = 0;
    return *this;
}

RomBuilder& RomBuilder::fill(uint8_t byte) {
    fillbyte = byte;
    return *this;
}

RomBuilder& RomBuilder::split() {
    hassplit = true;
    return *this;
}

RomBuilder& RomBuilder::nochecksum() {
    haschecksum = false;
    return *this;
}

RomBuilder& RomBuilder::nosize() {
    hassize = false;
    return *this;
}

RomBuilder& RomBuilder::novectors() {
    hasvectors = false;
    return *this;
}

RomBuilder& RomBuilder::base(uint32_t address) {
    imagebase = address;
    return *this;
}

RomBuilder& RomBuilder::gap(int32_t bytes) {
    cursor += bytes;
    return *this;
}

RomBuilder& RomBuilder::overwrite(int32_t offset, View bytes) {
    patches.push_back({offset, {bytes.begin(), bytes.end()}});
    return *this;
}

RomBuilder& RomBuilder::module(const ModuleSpec& spec) {
    ModuleSpec sized = spec;
    const int32_t minimum = layoutof(spec).minimum;
    if (sized.size == 0) sized.size = minimum;
    if (sized.size < minimum)
        throw std::logic_error(spec.name + " needs " + std::to_string(minimum) + " bytes");
    place({.spec = sized}, sized.size);
    return *this;
}

RomBuilder& RomBuilder::data(const DataSpec& spec) {
    Block block;
    block.isdata = true;
    block.contents = spec.bytes;
    block.spec = {.name = spec.name,
                  .idstring = "",
                  .size = spec.bytes.empty() ? spec.size : static_cast<int32_t>(spec.bytes.size()),
                  .start = spec.start,
                  .tag = iNone,
                  .functions = 0,
                  .calls = 0,
                  .pointers = spec.pointers,
                  .seed = spec.seed};
    if (spec.bytes.empty() && 6 * static_cast<int32_t>(spec.pointers.size()) > spec.size)
        throw std::logic_error(spec.name + " has no room for its pointers");
    place(block, block.spec.size);
    return *this;
}

void RomBuilder::place(Block block, int32_t size) {
    block.start = block.spec.start;
    if (block.start == iNone) {
        block.start = wholelong(cursor);
        const bool isacross = block.start < iSplitOffset + iSplitSize && block.start + size > iSplitOffset;
        if (hassplit && isacross) block.start = iSplitOffset + iSplitSize;
    }
    cursor = block.start + size;
    blocks.push_back(std::move(block));
}

int32_t RomBuilder::startof(const std::string& name) const {
    for (const Block& block : blocks)
        if (block.spec.name == name) return block.start;
    throw std::logic_error("a pointer into " + name + ", which there is not");
}

BuiltRom RomBuilder::build() const {
    BuiltRom rom;
    rom.base = imagebase;
    rom.image.assign(static_cast<size_t>(imagesize), fillbyte);
    for (const Block& block : blocks)
        rom.modules.push_back(buildblock(block));
    std::ranges::sort(rom.modules, {}, &BuiltModule::start);
    if (hasheader) writeheader(rom);
    if (hassplit) writesplit(rom);
    for (const BuiltModule& module : rom.modules) {
        // Until it is placed a module's extract holds its bytes as they are in the image.
        if (!store(rom.image, module.start, module.extract))
            throw std::logic_error(module.name + " does not fit");
    }
    for (const Patch& patch : patches)
        if (!store(rom.image, patch.offset, patch.bytes))
            throw std::logic_error("overwrite outside the image");
    for (BuiltModule& module : rom.modules) {
        makeextract(module, rom.bytes(module), rom.base);
        rom.map.push_back({module.name, module.start, module.size, module.type, module.hash()});
    }
    writetail(rom);
    std::ranges::stable_sort(rom.map, {}, &MapLine::start);
    checkoverlaps(rom.map);
    rom.crc = crc32of(rom.image);
    return rom;
}

BuiltModule RomBuilder::buildblock(const Block& block) const {
    BuiltModule module;
    module.name = block.spec.name;
    module.idstring = withoutlineend(block.spec.idstring);
    module.type = block.isdata ? "Data" : "Library";
    module.start = block.start;
    module.size = block.spec.size;
    module.tag = block.spec.tag;
    module.extract = block.contents;
    if (!block.contents.empty()) return module;
    const auto resolve = [&](const Pointer& pointer) {
        const int32_t start = pointer.module.empty() ? block.start : startof(pointer.module);
        return imagebase + static_cast<uint32_t>(start + pointer.offset);
    };
    ModuleWriter writer(block.spec, resolve);
    block.isdata ? writer.writecode() : writer.writemodule();
    module.extract = std::move(writer.bytes);
    module.relocs = std::move(writer.relocs);
    return module;
}

void RomBuilder::writeheader(BuiltRom& rom) const {
    const bool issmall = imagesize == 262144;
    const uint16_t ident = headerspec.ident != 0 ? headerspec.ident : issmall ? 0x1111 : 0x1114;
    Bytes bytes;
    appendword(bytes, ident);
    appendword(bytes, 0x4EF9);
    appendlong(bytes, imagebase + headerspec.entry);
    appendlong(bytes, 0x0000FFFF);
    appendword(bytes, headerspec.version);
    appendword(bytes, headerspec.revision);
    appendword(bytes, headerspec.execversion);
    appendword(bytes, headerspec.execrevision);
    appendlong(bytes, 0xFFFFFFFF);
    if (!store(rom.image, 0, bytes)) throw std::logic_error("no room for the header");
    rom.map.push_back({"ROMHeader", 0, iHeaderSize, "ROMHeader", "ROMHeader"});
}

void RomBuilder::writesplit(BuiltRom& rom) const {
    put(rom.image, iSplitOffset, 0x11114EF9);
    put(rom.image, iSplitOffset + 4, 0x00F80002);
    rom.map.push_back({"Kickity-Split", iSplitOffset, iSplitSize, "Kickity-Split",
                       hexbytes(part(rom.image, iSplitOffset, 8))});
}

void RomBuilder::writetail(BuiltRom& rom) const {
    const int32_t tail = imagesize - iTailSize;
    if (hasvectors) {
        Bytes vectors;
        for (uint32_t vector = 0x18; vector <= 0x1F; ++vector)
            appendword(vectors, vector);
        if (!store(rom.image, tail + 8, vectors)) throw std::logic_error("no room for the vectors");
        rom.map.push_back({"Vectors", tail + 8, 16, "Vectors", hexbytes(vectors)});
    }
    if (hassize) {
        put(rom.image, tail + 4, static_cast<uint32_t>(imagesize));
        rom.map.push_back({"Size", tail + 4, 4, "Size", hex32(static_cast<uint32_t>(imagesize))});
    }
    // Last, since it covers everything else.
    if (haschecksum) {
        const uint32_t sum = kickstartsum(rom.image);
        put(rom.image, tail, sum);
        rom.map.push_back({"Checksum", tail, 4, "Checksum", hex32(sum)});
    }
}

Bytes libraryinit() {
    return {0xA0, 0x08, 0x09, 0x00,              // byte 8 (LN_TYPE): NT_LIBRARY
            0xA0, 0x0E, 0x06, 0x00,              // byte 14 (LIB_FLAGS): LIBF_SUMUSED | LIBF_CHANGED
            0x90, 0x14, 0x00, 0x28,              // word 20 (LIB_VERSION): 40
            0x90, 0x16, 0x00, 0x01, 0x00, 0x00}; // word 22 (LIB_REVISION): 1, end
}

Bytes loadableform(View extract, const std::vector<int32_t>& relocs, std::string_view type) {
    constexpr uint32_t HUNK_CODE = 1001, HUNK_DATA = 1002, HUNK_RELOC32 = 1004, HUNK_END = 1010;
    constexpr uint32_t HUNK_HEADER = 1011, HUNK_DREL32 = 1015;
    const auto longs = static_cast<uint32_t>(extract.size() / 4);
    Bytes hunks;
    for (uint32_t value :
         {HUNK_HEADER, 0U, 1U, 0U, 0U, longs, type == "Library" ? HUNK_CODE : HUNK_DATA, longs})
        appendlong(hunks, value);
    hunks.insert(hunks.end(), extract.begin(), extract.end());
    if (!relocs.empty()) {
        const bool isshort = extract.size() < 65536;
        const auto append = isshort ? appendword : appendlong;
        appendlong(hunks, isshort ? HUNK_DREL32 : HUNK_RELOC32);
        append(hunks, static_cast<uint32_t>(relocs.size()));
        append(hunks, 0);
        for (int32_t reloc : relocs)
            append(hunks, static_cast<uint32_t>(reloc));
        append(hunks, 0);
        if (hunks.size() & 2) appendword(hunks, 0);
    }
    appendlong(hunks, HUNK_END);
    return hunks;
}

} // namespace vantorel::test
