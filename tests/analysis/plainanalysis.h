#pragma once
// What the deep analysis of two components has to print, worked out step by step on top of the plain search.

#include "analysis/plainsearch.h"
#include "base/text.h"
#include "rom/store.h"

#include <string>
#include <utility>

namespace vantorel::test {

inline PlainSide plainside(int32_t rom, int32_t component) {
    const KickstartRom& slot = *findslot(rom);
    const Component& record = *findrecord(rom, component);
    PlainSide side{slot.pcROM, slot.iROMBase, record.iFixedStart, record.iFixedEnd};
    plainmap(side);
    return side;
}

class PlainAnalysis {
public:
    PlainAnalysis(PlainSide first, PlainSide second)
        : source(std::move(first)), destination(std::move(second)) {}

    /// Everything behind the line that names the components.
    [[nodiscard]] std::string run(int32_t least) {
        text.clear();
        tellmaps();
        found = plainsearch(source, destination, least);
        for (const PlainChunk& chunk : found.table)
            say(formatted("Found source chunk at position %d of %d bytes at dest position %d\n", chunk.source,
                          chunk.length, chunk.destination));
        before();
        for (int i = 0; i < chunks(); ++i)
            inside(i);
        for (int i = 0; i < chunks(); ++i)
            outside(endof(i), i + 1 < chunks() ? chunk(i + 1).source : found.stop, "between");
        outside(chunks() == 0 ? 0 : endof(chunks() - 1), source.size(), "after all");
        return text;
    }

private:
    void say(const std::string& line) { text += line; }
    [[nodiscard]] int chunks() const { return static_cast<int>(found.table.size()); }
    [[nodiscard]] const PlainChunk& chunk(int i) const { return found.table.at(static_cast<size_t>(i)); }
    [[nodiscard]] int32_t endof(int i) const { return chunk(i).source + chunk(i).length; }
    [[nodiscard]] bool ismarkedlong(int32_t offset) const {
        return source.ismarked(offset) && source.ismarked(offset + 2);
    }
    // The number of the first chunk whose source holds `relative`, its end included; -1 for none. Addresses
    // wrap at 32 bits, so that one below the component is far behind it.
    [[nodiscard]] int chunkof(int64_t relative) const {
        for (int i = 0; i < chunks(); ++i)
            if (chunk(i).source <= relative && relative <= endof(i)) return i;
        return -1;
    }

    void tellmap(const char* name, const PlainSide& side) {
        say(formatted("Finding potential RELOCs in %s between %08x and %08x (%d bytes)\n", name, side.low(),
                      side.high(), side.size()));
        say(formatted("%d potential relocs\n", side.potential));
    }
    void tellmaps() {
        tellmap("source", source);
        for (size_t i = 0; i < source.map.size() && i < 80; ++i)
            text += source.map[i] == 1 ? 'R' : '_';
        text += '\n';
        tellmap("destination", destination);
        say(formatted("Scanning source %08x for matches in dest %08x\n", static_cast<uint32_t>(source.start),
                      static_cast<uint32_t>(destination.start)));
    }

    void before() {
        const int32_t end = chunks() == 0 ? source.size() : chunk(0).source;
        int32_t offset = 0;
        while (offset < end) {
            if (!ismarkedlong(offset)) {
                offset += 2;
                continue;
            }
            const uint32_t value = source.number(offset, 4).value();
            const int to = chunkof(value - source.low());
            say(to >= 0 ? formatted("Potential RELOC=%d #%06X before matching chunks (points to chunk %d)\n",
                                    offset, value, to)
                        : formatted("Potential RELOC=%d #%6X before matching chunks (does not point to "
                                    "chunk)\n",
                                    offset, value));
            offset += 4;
        }
    }

    void inside(int i) {
        const PlainChunk& here = chunk(i);
        say(formatted("Chunk %d source %d dest %d size %d\n", i, here.source, here.destination, here.length));
        int32_t p = 0;
        while (p < here.length) {
            if (!ismarkedlong(here.source + p)) {
                p += 2;
                continue;
            }
            examine(here.source + p, here.destination + p);
            p += 4;
        }
    }

    void examine(int32_t offset, int32_t counterpart) {
        const uint32_t value = source.number(offset, 4).value();
        const auto other = destination.number(counterpart, 4);
        if (other && *other == value)
            say(source.base == destination.base
                    ? "The following reloc value at the same position in the target component, unlikely "
                      "RELOC unless the components are in the same position in the ROM\n"
                    : "The following reloc value is identical and the same position in both components, "
                      "exceptionally unlikely to be a RELOC as the ROMBases are different\n");
        last = value - source.low();
        classify(offset, value, other ? int64_t{*other - destination.low()} : -1);
    }

    void classify(int32_t offset, uint32_t value, int64_t other) {
        const int expected = chunkof(last);
        if (expected < 0) {
            say(formatted("Potential RELOC=%d #%6X not found in a matching chunk\n", offset, value));
            return;
        }
        const PlainChunk& wanted = chunk(expected);
        const int64_t into = other - wanted.destination;
        if (into < 0 || into > wanted.length)
            elsewhere(offset, value, other, expected);
        else if (into != last - wanted.source)
            say(formatted("Potential RELOC=%d #%6X points to a different offset in a matching chunk\n",
                          offset, value));
        else
            say(formatted("Verified RELOC=%d #points to the same offset in the matching chunk\n", offset));
    }

    // Every chunk counts as long as the expected one.
    void elsewhere(int32_t offset, uint32_t value, int64_t other, int expected) {
        for (int m = 0; m < chunks(); ++m) {
            const int64_t into = other - chunk(m).destination;
            if (into < 0 || into > chunk(expected).length) continue;
            say(formatted("Unexpected RELOC=%d #%6X points to a different chunk (points to %d expected %d)\n",
                          offset, value, m, expected));
            return;
        }
        say(formatted("Potential RELOC=%d #%6X points to no matching chunk (expected %d)\n", offset, value,
                      expected));
    }

    // Looked up is what was examined last inside a chunk, whatever the value.
    void outside(int32_t from, int32_t to, const char* where) {
        int32_t offset = from;
        while (offset < to) {
            const auto value = source.number(offset, 4);
            if (!value || !source.isaddress(*value)) {
                offset += 2;
                continue;
            }
            const int pointed = chunkof(last);
            say(formatted("Potential RELOC=%d #%6X %s matching chunks ", offset, *value, where));
            say(pointed >= 0 ? formatted("(points to chunk %d)\n", pointed) : "(does not point to chunk)\n");
            offset += 4;
        }
    }

    PlainSide source;
    PlainSide destination;
    PlainChunks found;
    int64_t last = 0;
    std::string text;
};

/// All that `deepanalysecomponent` has to print of two components that lie in their images.
[[nodiscard]] inline std::string plaindeepanalysis(int32_t srcRom, int32_t srcComponent, int32_t dstRom,
                                                   int32_t dstComponent, int32_t least) {
    return formatted("Deep analysis of component %d in ROM %d with component %d in ROM %d\n", srcComponent,
                     srcRom, dstComponent, dstRom) +
           PlainAnalysis(plainside(srcRom, srcComponent), plainside(dstRom, dstComponent)).run(least);
}

} // namespace vantorel::test
