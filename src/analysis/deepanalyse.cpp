#include "analysis/deepanalyse.h"

#include "analysis/agreement.h"
#include "base/bytes.h"
#include "base/message.h"
#include "component/extract.h"
#include "rom/store.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace vantorel {

namespace {

// More chunks than this are not looked for; the rest of the source comes after all chunks.
constexpr size_t iChunksMost = 199;

// Larger components than this, in bytes, are not compared: no ROM has them.
constexpr int64_t iSizeMost = int64_t{16} << 20;

// Part of the source that agrees with part of the destination. Bytes from the first byte of each.
struct Chunk {
    int32_t source = 0;
    int32_t destination = 0;
    int32_t length = 0;
};

// One of the two components.
struct Side {
    const KickstartRom& slot;
    int32_t start; // image offset of the first byte
    int32_t size;  // bytes
    uint32_t low;  // CPU address of the first byte
    uint32_t high; // that of the first byte behind it, which counts as an address of the component, too
    std::vector<char> map = {}; // for each byte and four more, 1 where it may be part of an address

    // The long at an offset from the first byte; none beyond the image.
    [[nodiscard]] std::optional<uint32_t> longof(int64_t offset) const {
        return longat(slot.pcROM, start + offset);
    }
    [[nodiscard]] bool ispointer(uint32_t value) const { return low <= value && value <= high; }
    [[nodiscard]] bool ismarked(int32_t offset) const { return map[static_cast<size_t>(offset)] != 0; }
    // Whether four bytes from an offset may be one address.
    [[nodiscard]] bool ismarkedlong(int32_t offset) const { return ismarked(offset) && ismarked(offset + 2); }
};

Side makeside(int32_t rom, int32_t component) {
    const KickstartRom& slot = *findslot(rom);
    const Component& record = *findrecord(rom, component);
    return {.slot = slot,
            .start = record.iFixedStart,
            .size = record.iFixedEnd - record.iFixedStart,
            .low = slot.iROMBase + static_cast<uint32_t>(record.iFixedStart),
            .high = slot.iROMBase + static_cast<uint32_t>(record.iFixedEnd)};
}

// Marks every long that may be an address, and tells how many there are.
void markaddresses(Side& side, const char* name) {
    message(kResult, "Finding potential RELOCs in %s between %08x and %08x (%d bytes)\n", name, side.low,
            side.high, side.size);
    side.map.assign(static_cast<size_t>(side.size) + 4, 0);
    int32_t count = 0;
    for (int32_t offset = 0; offset < side.size; offset += 2) {
        const auto value = side.longof(offset);
        if (!value || !side.ispointer(*value)) continue;
        std::fill_n(side.map.begin() + offset, 4, char{1});
        ++count;
    }
    message(kResult, "%d potential relocs\n", count);
}

void showmap(const Side& side) {
    constexpr size_t most = 80;
    std::string picture;
    for (size_t i = 0; i < std::min(side.map.size(), most); ++i)
        picture += side.map[i] != 0 ? 'R' : '_';
    message(kResult, "%s\n", picture.c_str());
}

// The words that begin inside the component, as far as the image has them.
Copy copyof(const Side& side) {
    Copy copy;
    for (int32_t offset = 0; offset < side.size; offset += 2) {
        const auto word = wordat(side.slot.pcROM, int64_t{side.start} + offset);
        if (!word) break;
        copy.words.push_back(*word);
        copy.isaddress.push_back(side.ismarked(offset));
    }
    return copy;
}

class DeepAnalysis {
public:
    DeepAnalysis(Side itssource, Side itsdestination)
        : source(std::move(itssource)), destination(std::move(itsdestination)) {}

    void run(int32_t least);

private:
    void findchunks(int32_t least);
    [[nodiscard]] const Chunk* chunkaround(int64_t relative) const;
    [[nodiscard]] int32_t numberof(const Chunk& chunk) const {
        return static_cast<int32_t>(&chunk - chunks.data());
    }
    void tellbefore() const;
    void tellchunk(const Chunk& chunk);
    void tellidentical() const;
    void classify(int32_t offset, uint32_t value, int64_t counterpart) const;
    void tellelsewhere(int32_t offset, uint32_t value, const Chunk& expected, int64_t counterpart) const;
    void tellrange(int32_t from, int32_t to, const char* where) const;

    Side source;
    Side destination;
    std::vector<Chunk> chunks;
    int32_t stop = 0; // source offset at which the search for chunks ended
    // The value examined last inside a chunk, relative to the source. What is found between and after the
    // chunks has always been looked up by it.
    int64_t examined = 0;
};

void DeepAnalysis::findchunks(int32_t least) {
    message(kResult, "Scanning source %08x for matches in dest %08x\n", static_cast<uint32_t>(source.start),
            static_cast<uint32_t>(destination.start));
    const Copy first = copyof(source);
    const Copy second = copyof(destination);
    AgreementSearch search(first, second);
    const int32_t leastwords = least / 2 + least % 2;
    while (chunks.size() < iChunksMost && int64_t{stop} + least < source.size) {
        const Agreement found = search.find(stop / 2, leastwords);
        if (search.isexhausted()) {
            message(kResult, "ERROR: There is too much to compare, leaving off\n");
            return;
        }
        if (found.iLength == 0) {
            stop += 2;
            continue;
        }
        const Chunk chunk = {.source = stop, .destination = found.iPlace * 2, .length = found.iLength * 2};
        message(kResult, "Found source chunk at position %d of %d bytes at dest position %d\n", chunk.source,
                chunk.length, chunk.destination);
        chunks.push_back(chunk);
        stop += chunk.length;
    }
}

bool isaround(int32_t start, int32_t length, int64_t value) {
    return start <= value && value <= int64_t{start} + length;
}

// The first chunk whose source holds a value relative to the source; null when none does.
const Chunk* DeepAnalysis::chunkaround(int64_t relative) const {
    const auto found = std::ranges::find_if(
        chunks, [relative](const Chunk& chunk) { return isaround(chunk.source, chunk.length, relative); });
    return found == chunks.end() ? nullptr : &*found;
}

// What may be an address before the first chunk, or anywhere when there is none.
void DeepAnalysis::tellbefore() const {
    const int32_t end = chunks.empty() ? source.size : chunks.front().source;
    for (int32_t offset = 0; offset < end; offset += 2) {
        if (!source.ismarkedlong(offset)) continue;
        const uint32_t value = source.longof(offset).value_or(0);
        const Chunk* chunk = chunkaround(value - source.low);
        if (chunk != nullptr)
            message(kResult, "Potential RELOC=%d #%06X before matching chunks (points to chunk %d)\n", offset,
                    value, numberof(*chunk));
        else
            message(kResult, "Potential RELOC=%d #%6X before matching chunks (does not point to chunk)\n",
                    offset, value);
        offset += 2;
    }
}

void DeepAnalysis::tellchunk(const Chunk& chunk) {
    message(kResult, "Chunk %d source %d dest %d size %d\n", numberof(chunk), chunk.source, chunk.destination,
            chunk.length);
    for (int32_t place = 0; place < chunk.length; place += 2) {
        const int32_t offset = chunk.source + place;
        if (!source.ismarkedlong(offset)) continue;
        const uint32_t value = source.longof(offset).value_or(0);
        const auto counterpart = destination.longof(int64_t{chunk.destination} + place);
        if (counterpart == value) tellidentical();
        examined = value - source.low;
        classify(offset, value, counterpart ? int64_t{*counterpart - destination.low} : -1);
        place += 2;
    }
}

void DeepAnalysis::tellidentical() const {
    if (source.slot.iROMBase == destination.slot.iROMBase)
        message(kResult, "The following reloc value at the same position in the target component, unlikely "
                         "RELOC unless the components are in the same position in the ROM\n");
    else
        message(kResult, "The following reloc value is identical and the same position in both components, "
                         "exceptionally unlikely to be a RELOC as the ROMBases are different\n");
}

// Tells what the long `value` at a source offset inside a chunk is; `counterpart` is the value in its place
// in the destination, relative to that, -1 when there is none.
void DeepAnalysis::classify(int32_t offset, uint32_t value, int64_t counterpart) const {
    const Chunk* expected = chunkaround(examined);
    if (expected == nullptr)
        return message(kResult, "Potential RELOC=%d #%6X not found in a matching chunk\n", offset, value);
    if (!isaround(expected->destination, expected->length, counterpart))
        return tellelsewhere(offset, value, *expected, counterpart);
    if (examined - expected->source != counterpart - expected->destination)
        return message(kResult, "Potential RELOC=%d #%6X points to a different offset in a matching chunk\n",
                       offset, value);
    message(kResult, "Verified RELOC=%d #points to the same offset in the matching chunk\n", offset);
}

void DeepAnalysis::tellelsewhere(int32_t offset, uint32_t value, const Chunk& expected,
                                 int64_t counterpart) const {
    // Every chunk is taken to be as long as the expected one; so it has always been.
    const auto found = std::ranges::find_if(chunks, [&expected, counterpart](const Chunk& chunk) {
        return isaround(chunk.destination, expected.length, counterpart);
    });
    if (found != chunks.end())
        message(kResult, "Unexpected RELOC=%d #%6X points to a different chunk (points to %d expected %d)\n",
                offset, value, numberof(*found), numberof(expected));
    else
        message(kResult, "Potential RELOC=%d #%6X points to no matching chunk (expected %d)\n", offset, value,
                numberof(expected));
}

// Tells of every long that may be an address in a range of source offsets outside the chunks.
void DeepAnalysis::tellrange(int32_t from, int32_t to, const char* where) const {
    const Chunk* chunk = chunkaround(examined);
    for (int32_t offset = from; offset < to; offset += 2) {
        const auto value = source.longof(offset);
        if (!value || !source.ispointer(*value)) continue;
        if (chunk != nullptr)
            message(kResult, "Potential RELOC=%d #%6X %s matching chunks (points to chunk %d)\n", offset,
                    *value, where, numberof(*chunk));
        else
            message(kResult, "Potential RELOC=%d #%6X %s matching chunks (does not point to chunk)\n", offset,
                    *value, where);
        offset += 2;
    }
}

void DeepAnalysis::run(int32_t least) {
    markaddresses(source, "source");
    showmap(source);
    markaddresses(destination, "destination");
    findchunks(least);
    tellbefore();
    for (const Chunk& chunk : chunks)
        tellchunk(chunk);
    for (size_t i = 0; i < chunks.size(); ++i) {
        const int32_t next = i + 1 < chunks.size() ? chunks[i + 1].source : stop;
        tellrange(chunks[i].source + chunks[i].length, next, "between");
    }
    tellrange(chunks.empty() ? 0 : chunks.back().source + chunks.back().length, source.size, "after all");
}

bool requirecomparable(int32_t rom, int32_t component) {
    const Component& record = *findrecord(rom, component);
    const int64_t size = int64_t{record.iFixedEnd} - record.iFixedStart;
    if (!requirerange(*findslot(rom), component, record.iFixedStart, size)) return false;
    if (size > iSizeMost)
        message(kResult, "ERROR: Component %d is too large to be compared (%ld bytes)\n", component,
                static_cast<long>(size));
    return size <= iSizeMost;
}

// Whether both components are there and can be compared; an error line when not.
bool require(int32_t srcRom, int32_t srcComponent, int32_t dstRom, int32_t dstComponent) {
    const auto refuse = [](const char* what) {
        message(kResult, "ERROR, %s\n", what);
        return false;
    };
    if (iMaxRom == 0) return refuse("please load or create a ROM");
    if (findslot(srcRom) == nullptr || findslot(dstRom) == nullptr)
        return refuse("source or destination ROM out of range");
    const Component* source = findrecord(srcRom, srcComponent);
    const Component* destination = findrecord(dstRom, dstComponent);
    if (source == nullptr || destination == nullptr)
        return refuse("source or destination component out of range");
    if (!source->isverified() || !destination->isverified())
        return refuse(
            "source and destination components must have verfied start/end editcomponent to be sure");
    return requirecomparable(srcRom, srcComponent) && requirecomparable(dstRom, dstComponent);
}

} // namespace

int deepanalysecomponent(int32_t srcRom, int32_t srcComponent, int32_t dstRom, int32_t dstComponent,
                         int32_t minChunk) {
    message(kResult, "Deep analysis of component %d in ROM %d with component %d in ROM %d\n", srcComponent,
            srcRom, dstComponent, dstRom);
    if (!require(srcRom, srcComponent, dstRom, dstComponent)) return 1;
    DeepAnalysis(makeside(srcRom, srcComponent), makeside(dstRom, dstComponent)).run(minChunk);
    return 0;
}

} // namespace vantorel
