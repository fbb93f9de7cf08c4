#pragma once
// The search for chunks that two components share, done the long way: for every place of the source every
// place of the destination, word by word. Slow, but nothing in it can hide; it judges the fast one.

#include "base/bytes.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vantorel::test {

/// One of the two components. Bounds are image offsets, bytes.
struct PlainSide {
    View image;
    uint32_t base = 0;
    int32_t start = 0;
    int32_t end = 0;
    std::vector<uint8_t> map = {}; ///< for each byte and four more, 1 where it may be part of an address
    int32_t potential = 0;         ///< how many longs may be addresses

    [[nodiscard]] int32_t size() const { return end - start; }
    [[nodiscard]] uint32_t low() const { return base + static_cast<uint32_t>(start); }
    [[nodiscard]] uint32_t high() const { return base + static_cast<uint32_t>(end); }

    /// The big-endian number in `count` bytes from `offset` of the component on; none beyond the image.
    [[nodiscard]] std::optional<uint32_t> number(int32_t offset, int32_t count) const {
        const int64_t first = int64_t{start} + offset;
        if (first < 0 || first + count > static_cast<int64_t>(image.size())) return std::nullopt;
        uint32_t value = 0;
        for (int64_t i = first; i < first + count; ++i)
            value = value << 8 | image[static_cast<size_t>(i)];
        return value;
    }
    [[nodiscard]] bool ismarked(int32_t offset) const { return map[static_cast<size_t>(offset)] == 1; }
    [[nodiscard]] bool isaddress(uint32_t value) const { return low() <= value && value <= high(); }
};

/// Fills the map.
inline void plainmap(PlainSide& side) {
    side.map.assign(static_cast<size_t>(side.size()) + 4, 0);
    side.potential = 0;
    for (int32_t offset = 0; offset < side.size(); offset += 2) {
        const auto value = side.number(offset, 4);
        if (!value || !side.isaddress(*value)) continue;
        for (int32_t i = 0; i < 4; ++i)
            side.map[static_cast<size_t>(offset + i)] = 1;
        ++side.potential;
    }
}

/// Offsets from the first byte of each component.
struct PlainChunk {
    int32_t source = 0;
    int32_t destination = 0;
    int32_t length = 0;
};

struct PlainChunks {
    std::vector<PlainChunk> table;
    int32_t stop = 0; ///< source offset at which the search ended
};

inline bool plainagree(const PlainSide& source, int32_t s, const PlainSide& destination, int32_t d) {
    const auto mine = source.number(s, 2);
    const auto theirs = destination.number(d, 2);
    if (!mine || !theirs) return false;
    return *mine == *theirs || (source.ismarked(s) && destination.ismarked(d));
}

/// Bytes that agree from source offset `s` and destination offset `d` on.
inline int32_t plainlength(const PlainSide& source, int32_t s, const PlainSide& destination, int32_t d) {
    int32_t length = 0;
    while (s + length < source.size() && d + length < destination.size() &&
           plainagree(source, s + length, destination, d + length))
        length += 2;
    return length;
}

/// The chunks of at least `least` bytes; both maps are filled.
inline PlainChunks plainsearch(const PlainSide& source, const PlainSide& destination, int32_t least) {
    PlainChunks found;
    while (found.table.size() < 199 && int64_t{found.stop} + least < source.size()) {
        PlainChunk best = {.source = found.stop};
        for (int32_t d = 0; d < destination.size(); d += 2) {
            const int32_t length = plainlength(source, found.stop, destination, d);
            if (length > best.length) best = {found.stop, d, length};
        }
        if (best.length >= least) found.table.push_back(best);
        found.stop += best.length >= least ? best.length : 2;
    }
    return found;
}

} // namespace vantorel::test
