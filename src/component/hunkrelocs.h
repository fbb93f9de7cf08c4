#pragma once
// The reloc blocks of hunk files.

#include "base/bytes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace vantorel {

/// Where each hunk of a file begins in the extract.
class HunkTable {
public:
    HunkTable() = default;
    explicit HunkTable(uint32_t firsthunk) : first(firsthunk) {}

    void add(uint32_t place) { places.push_back(place); }

    [[nodiscard]] std::optional<uint32_t> find(int64_t hunk) const {
        const int64_t index = hunk - first;
        if (index < 0 || index >= std::ssize(places)) return std::nullopt;
        return places[static_cast<size_t>(index)];
    }

private:
    uint32_t first = 0;
    std::vector<uint32_t> places;
};

/// Reads the reloc blocks of a hunk file: which longs of the extract, to which its hunks are appended, are
/// relocated. Those not there yet count as well, up to what the header promises.
class RelocReader {
public:
    explicit RelocReader(View file) : input(file) {}

    /// What the file's header says: its hunk table, and the bytes that its hunks have in all.
    void begin(HunkTable hunks, uint32_t promised) {
        table = std::move(hunks);
        total = promised;
    }

    /// The relocs that follow are those of the next hunk.
    void nexthunk() { ++hunk; }

    // Each of these reads the block at `position` of the file and moves that on behind the block; false when
    // it is not all there. A position behind the end says the same.

    /// A HUNK_RELOC32: adds to each relocated long where the hunk that it points into begins. Relocs outside
    /// the extract are left out with an error line each.
    [[nodiscard]] bool readlong(int64_t& position, std::span<uint8_t> extract);

    /// A HUNK_DREL32, whose relocs, unchecked, replace those read before.
    [[nodiscard]] bool readshort(int64_t& position, View extract);

    std::vector<int32_t> relocs; ///< offsets in the extract, as they came

private:
    void take(View offsets, std::optional<uint32_t> target, std::span<uint8_t> extract);
    void takeshort(View offsets, uint16_t target, View extract);
    void trace(uint32_t from, uint32_t place, View extract) const;

    View input;
    HunkTable table;
    uint32_t total = 0; // what the header promises, in bytes
    int64_t hunk = -1;
};

} // namespace vantorel
