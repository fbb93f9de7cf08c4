#include "support/diskbuilder.h"

#include <algorithm>
#include <stdexcept>

namespace vantorel::test {

namespace {

constexpr int32_t kBitmapBlock = adf::iRootBlock + 1;
constexpr int32_t kBitmapChecksum = 0;
constexpr uint32_t kBitmapValid = 0xFFFFFFFF;

// A block that the disk hands out: from behind the root to the end, then from the start.
constexpr int32_t kFirstFree = kBitmapBlock + 1;

struct SplitPath {
    std::string parent, name;
};

SplitPath split(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return {"", path};
    return {path.substr(0, slash), path.substr(slash + 1)};
}

uint32_t upper(char c) { return static_cast<uint8_t>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c); }

uint32_t number(int32_t block) { return static_cast<uint32_t>(block); }

} // namespace

void repairchecksum(std::span<uint8_t> block, int32_t offset) {
    uint32_t sum = 0;
    if (!putlong(block, offset, 0)) throw std::runtime_error("no room for a checksum");
    for (size_t i = 0; i + 4 <= block.size(); i += 4)
        sum += iUINT32(block.data() + i);
    (void)putlong(block, offset, 0 - sum);
}

DiskBuilder::DiskBuilder(FileSystem system, const std::string& volume)
    : eSystem(system), cImage(adf::iImageSize) {
    std::ranges::fill_n(bUsed.begin(), adf::iFirstBlock, true);
    bUsed[adf::iRootBlock] = bUsed[kBitmapBlock] = true;
    eSums[adf::iRootBlock] = Sum::Header;
    eSums[kBitmapBlock] = Sum::Bitmap;
    set(adf::iBootBlock, adf::kDosType, 0x444F5300u | (system == FileSystem::Ffs ? adf::kFlagFFS : 0u));
    iHeaders[""] = adf::iRootBlock;
    set(adf::iRootBlock, adf::kType, adf::kHeaderBlock);
    set(adf::iRootBlock, adf::kDataSize, adf::iTableSize);
    set(adf::iRootBlock, adf::kBitmapFlag, kBitmapValid);
    set(adf::iRootBlock, adf::kBitmapPages, kBitmapBlock);
    set(adf::iRootBlock, adf::kSecondaryType, adf::kRoot);
    setname(adf::iRootBlock, volume, {});
    seal(adf::iRootBlock);
}

int32_t DiskBuilder::addfile(const std::string& path, View bytes, AmigaTime time) {
    const int32_t header = addheader(path, adf::kFile, time);
    set(header, adf::kFileSize, static_cast<uint32_t>(bytes.size()));
    adddata(header, bytes);
    seal(header);
    return header;
}

int32_t DiskBuilder::addfile(const std::string& path, std::string_view text, AmigaTime time) {
    return addfile(path, textbytes(text), time);
}

int32_t DiskBuilder::adddirectory(const std::string& path, AmigaTime time) {
    const int32_t header = addheader(path, adf::kDirectory, time);
    seal(header);
    return header;
}

int32_t DiskBuilder::blockof(const std::string& path) const {
    const auto found = iHeaders.find(path);
    if (found == iHeaders.end()) throw std::runtime_error("not on the disk: " + path);
    return found->second;
}

int32_t DiskBuilder::datablockof(const std::string& path, size_t n) const {
    return iData.at(blockof(path)).at(n);
}

int32_t DiskBuilder::extensionof(const std::string& path, size_t n) const {
    return iExtensions.at(blockof(path)).at(n);
}

int32_t DiskBuilder::slotof(std::string_view name) {
    auto hash = static_cast<uint32_t>(name.size());
    for (const char c : name)
        hash = (hash * 13 + upper(c)) & 0x7FF;
    return static_cast<int32_t>(hash % adf::iTableSize);
}

int32_t DiskBuilder::slotoffset(std::string_view name) { return adf::kHashTable + 4 * slotof(name); }

uint32_t DiskBuilder::peek(int32_t block, int32_t offset) const {
    return longat(cImage, int64_t{block} * adf::iBlockSize + offset).value();
}

void DiskBuilder::poke(int32_t block, int32_t offset, uint32_t value) {
    set(block, offset, value);
    seal(block);
}

void DiskBuilder::pokebytes(int32_t block, int32_t offset, View bytes) {
    if (!isinside(at(block), offset, static_cast<int64_t>(bytes.size())))
        throw std::runtime_error("bytes beyond the block");
    std::ranges::copy(bytes, at(block).begin() + offset);
    seal(block);
}

Bytes DiskBuilder::image() const {
    DiskBuilder whole = *this;
    for (int32_t block = adf::iFirstBlock; block < adf::iBlocks; block++) {
        const int32_t bit = block - adf::iFirstBlock;
        const int32_t offset = kBitmapChecksum + 4 + bit / 32 * 4;
        if (!bUsed[static_cast<size_t>(block)])
            whole.set(kBitmapBlock, offset, whole.peek(kBitmapBlock, offset) | 1u << bit % 32);
    }
    whole.seal(kBitmapBlock);
    return whole.cImage;
}

std::span<uint8_t> DiskBuilder::at(int32_t block) {
    const int64_t offset = int64_t{block} * adf::iBlockSize;
    if (!isinside(cImage, offset, adf::iBlockSize)) throw std::runtime_error("no such block");
    return std::span(cImage).subspan(static_cast<size_t>(offset), adf::iBlockSize);
}

int32_t DiskBuilder::allocate() {
    auto free = std::find(bUsed.begin() + kFirstFree, bUsed.end(), false);
    if (free == bUsed.end()) free = std::ranges::find(bUsed, false);
    if (free == bUsed.end()) throw std::runtime_error("disk full");
    *free = true;
    return static_cast<int32_t>(free - bUsed.begin());
}

void DiskBuilder::set(int32_t block, int32_t offset, uint32_t value) {
    if (!putlong(at(block), offset, value)) throw std::runtime_error("a long beyond the block");
}

void DiskBuilder::seal(int32_t block) {
    const Sum sum = eSums[static_cast<size_t>(block)];
    if (sum != Sum::None) repairchecksum(at(block), sum == Sum::Bitmap ? kBitmapChecksum : adf::kChecksum);
}

void DiskBuilder::setname(int32_t block, std::string_view name, AmigaTime time) {
    if (name.empty() || name.size() > adf::iNameMax)
        throw std::runtime_error("no name for the Amiga: " + std::string(name));
    at(block)[adf::kNameLength] = static_cast<uint8_t>(name.size());
    std::ranges::copy(name, at(block).begin() + adf::kName);
    set(block, adf::kDays, time.iDays);
    set(block, adf::kMinutes, time.iMinutes);
    set(block, adf::kTicks, time.iTicks);
}

/// Puts a header at the end of its chain.
void DiskBuilder::link(int32_t parent, int32_t header, std::string_view name) {
    int32_t block = parent;
    int32_t offset = slotoffset(name);
    while (peek(block, offset) != 0) {
        block = static_cast<int32_t>(peek(block, offset));
        offset = adf::kHashChain;
    }
    poke(block, offset, number(header));
}

int32_t DiskBuilder::addheader(const std::string& path, int32_t type, AmigaTime time) {
    const auto [parent, name] = split(path);
    if (iHeaders.contains(path)) throw std::runtime_error("on the disk already: " + path);
    if (!iHeaders.contains(parent)) adddirectory(parent);
    const int32_t header = allocate();
    eSums[static_cast<size_t>(header)] = Sum::Header;
    set(header, adf::kType, adf::kHeaderBlock);
    set(header, adf::kOwnKey, number(header));
    setname(header, name, time);
    set(header, adf::kParent, number(blockof(parent)));
    set(header, adf::kSecondaryType, static_cast<uint32_t>(type));
    link(blockof(parent), header, name);
    iHeaders[path] = header;
    return header;
}

void DiskBuilder::adddata(int32_t header, View bytes) {
    int32_t table = header;
    uint32_t count = 0;
    for (uint32_t sequence = 1; !bytes.empty(); sequence++, count++) {
        if (count == adf::iTableSize) {
            table = addextension(header, table);
            count = 0;
        }
        const View payload = bytes.first(std::min(bytes.size(), payloadsize()));
        const int32_t block = adddatablock(header, payload, sequence);
        set(table, adf::kFirstPointer - 4 * static_cast<int32_t>(count), number(block));
        set(table, adf::kPointerCount, count + 1);
        seal(table);
        bytes = bytes.subspan(payload.size());
    }
}

int32_t DiskBuilder::adddatablock(int32_t header, View payload, uint32_t sequence) {
    const int32_t block = allocate();
    if (eSystem == FileSystem::Ffs) {
        pokebytes(block, adf::kPayloadFFS.iOffset, payload);
    } else {
        eSums[static_cast<size_t>(block)] = Sum::Header;
        set(block, adf::kType, adf::kDataBlock);
        set(block, adf::kOwnKey, number(header));
        set(block, adf::kPointerCount, sequence);
        set(block, adf::kDataSize, static_cast<uint32_t>(payload.size()));
        pokebytes(block, adf::kPayloadOFS.iOffset, payload);
        if (sequence > 1) poke(iData[header].back(), adf::kFirstData, number(block));
    }
    if (sequence == 1) set(header, adf::kFirstData, number(block));
    iData[header].push_back(block);
    return block;
}

int32_t DiskBuilder::addextension(int32_t header, int32_t previous) {
    const int32_t block = allocate();
    eSums[static_cast<size_t>(block)] = Sum::Header;
    set(block, adf::kType, adf::kListBlock);
    set(block, adf::kOwnKey, number(block));
    set(block, adf::kParent, number(header));
    set(block, adf::kSecondaryType, static_cast<uint32_t>(adf::kFile));
    seal(block);
    poke(previous, adf::kExtension, number(block));
    iExtensions[header].push_back(block);
    return block;
}

size_t DiskBuilder::payloadsize() const {
    return static_cast<size_t>(eSystem == FileSystem::Ffs ? adf::kPayloadFFS.iSize : adf::kPayloadOFS.iSize);
}

} // namespace vantorel::test
