#include "output/burnmodel.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

namespace vantorel::test {

namespace {

constexpr int32_t iDualType = 2;
constexpr int32_t iCD32Type = 3;
constexpr int32_t iFileType = 4;
constexpr int32_t iSuperkickType = 5;
constexpr int32_t iA1000Type = 6;

constexpr size_t iQuarterMB = 262144;
constexpr size_t iHalfMB = 524288;
constexpr size_t iMB = 1048576;

bool hassize(const std::optional<Bytes>& image, size_t size) { return image && image->size() == size; }

Bytes inaddressorder(const Images& images) {
    Bytes buffer;
    for (size_t position = 4; position > 0; --position)
        if (const auto& image = images[position - 1])
            buffer.insert(buffer.end(), image->begin(), image->end());
    return buffer;
}

void copyword(Bytes& to, size_t at, const Bytes& from, size_t place) {
    if (place + 1 >= from.size()) return;
    to[at] = from[place];
    to[at + 1] = from[place + 1];
}

void cd32(Bytes& buffer, const Images& images) {
    buffer.resize(buffer.size() <= iMB ? iMB : 2 * iMB);
    if (hassize(images[0], iHalfMB) && hassize(images[1], iHalfMB))
        for (size_t i = 0; i < iQuarterMB; i += 2) {
            copyword(buffer, i, *images[1], 2 * i);
            copyword(buffer, iQuarterMB + i, *images[0], 2 * i);
            copyword(buffer, 2 * iQuarterMB + i, *images[1], 2 * i + 2);
            copyword(buffer, 3 * iQuarterMB + i, *images[0], 2 * i + 2);
        }
    if (buffer.size() == iMB) return;
    for (size_t i = 0; i < iHalfMB; ++i)
        buffer[iHalfMB + i] = buffer[iMB + i];
    if (!images[3]) return;
    for (size_t i = 0; i < iHalfMB; i += 2) {
        copyword(buffer, iHalfMB + i, *images[3], 2 * i);
        copyword(buffer, iMB + iHalfMB + i, *images[3], 2 * i + 2);
    }
}

void put(Bytes& disk, size_t offset, const Bytes& piece) {
    std::copy(piece.begin(), piece.end(), disk.begin() + static_cast<std::ptrdiff_t>(offset));
}

// A piece that has no fixed size, and where its size goes.
void putbonus(Bytes& disk, const std::optional<Bytes>& piece, size_t limit, size_t offset, size_t sizefield) {
    if (!piece || piece->size() >= limit) return;
    put(disk, offset, *piece);
    for (size_t i = 0; i < 4; ++i)
        disk[sizefield + i] = static_cast<uint8_t>(piece->size() >> (24 - 8 * i));
}

Bytes emptydisk(std::string_view mark) {
    Bytes disk(iDiskSize, 0);
    put(disk, 0, Bytes(mark.begin(), mark.end()));
    return disk;
}

Bytes superkick(const Images& images) {
    Bytes disk = emptydisk("KICKSUP0");
    if (hassize(images[0], iQuarterMB)) put(disk, 1024, *images[0]);
    if (hassize(images[2], iHalfMB)) put(disk, 263168, *images[2]);
    putbonus(disk, images[3], 4096, 787456, 12);
    putbonus(disk, images[1], 109568, 791552, 8);
    return disk;
}

Bytes a1000(const Images& images) {
    Bytes disk = emptydisk("KICK");
    if (hassize(images[0], iQuarterMB)) put(disk, 512, *images[0]);
    return disk;
}

void swappairs(Bytes& buffer) {
    for (size_t i = 0; i + 1 < buffer.size(); i += 2)
        std::swap(buffer[i], buffer[i + 1]);
}

void mirror(Bytes& buffer, size_t chip) {
    while (buffer.size() < chip) {
        const Bytes once = buffer;
        buffer.insert(buffer.end(), once.begin(), once.end());
    }
}

// Every other word, beginning with the first one or the second.
Bytes everyotherword(std::span<const uint8_t> piece, size_t first) {
    Bytes words;
    for (size_t place = 2 * first; place < piece.size(); place += 4)
        for (const uint8_t byte : piece.subspan(place, std::min<size_t>(2, piece.size() - place)))
            words.push_back(byte);
    return words;
}

// One piece into its file or files, which are made anew where there are some of that name.
void write(Files& files, const BurnOrder& order, const std::string& name, const std::string& suffix,
           std::span<const uint8_t> piece) {
    if (order.type == iDualType) {
        files[name + ".hi" + suffix + ".bin"] = everyotherword(piece, 0);
        files[name + ".lo" + suffix + ".bin"] = everyotherword(piece, 1);
        return;
    }
    const bool isdisk = order.type == iSuperkickType || order.type == iA1000Type;
    files[isdisk ? name + ".adf" : name + suffix + ".bin"].assign(piece.begin(), piece.end());
}

Files inchunks(std::span<const uint8_t> buffer, const BurnOrder& order, const std::string& name,
               size_t chip) {
    if (chip == 0) chip = buffer.size();
    const bool isnumbered = buffer.size() / chip >= 2;
    Files files;
    char number = '0';
    for (; !buffer.empty(); ++number) {
        const size_t size = std::min(chip, buffer.size());
        write(files, order, name, isnumbered ? std::string(".") + number : "", buffer.first(size));
        buffer = buffer.subspan(size);
    }
    return files;
}

} // namespace

Files burnt(const Images& images, const BurnOrder& order, const std::string& name) {
    Bytes buffer = inaddressorder(images);
    if (buffer.empty()) return {};
    if (order.type == iCD32Type) cd32(buffer, images);
    if (order.type == iSuperkickType) buffer = superkick(images);
    if (order.type == iA1000Type) buffer = a1000(images);
    const bool isplain = order.type < iFileType;
    if (isplain && order.byteswap) swappairs(buffer);
    size_t chip = isplain && order.chips512 ? iHalfMB : 0;
    if (order.type == iDualType) chip *= 2;
    if (chip != 0 && buffer.size() / chip < 2) mirror(buffer, chip);
    return inchunks(buffer, order, name, chip);
}

} // namespace vantorel::test
