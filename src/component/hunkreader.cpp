#include "component/hunkreader.h"

#include "base/message.h"
#include "component/extract.h"
#include "component/hunk.h"
#include "component/hunkrelocs.h"
#include "hash/crc32.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace vantorel {

namespace {

// What a file holds where a hunk id is expected and none stands there.
constexpr uint32_t iNoHunk = 0xFFFFFFFF;

// How many passes of adjacent exchange it takes until one exchanges nothing: each pass moves an entry at most
// one place down.
int32_t exchangepasses(const std::vector<int32_t>& relocs) {
    std::vector<std::pair<int32_t, int32_t>> order;
    order.reserve(relocs.size());
    for (const int32_t reloc : relocs)
        order.emplace_back(reloc, static_cast<int32_t>(order.size()));
    std::ranges::sort(order);
    int32_t farthest = 0;
    for (int32_t to = 0; to < std::ssize(order); ++to)
        farthest = std::max(farthest, order[static_cast<size_t>(to)].second - to);
    return farthest + 1;
}

void sortrelocs(std::vector<int32_t>& relocs) {
    if (isshown(kTrace)) {
        message(kTrace, "Sorting %d relocs", static_cast<int32_t>(relocs.size()));
        for (int32_t pass = exchangepasses(relocs); pass > 0; --pass)
            message(kTrace, ".");
        message(kTrace, "sorted\n");
    }
    if (!std::ranges::is_sorted(relocs)) std::ranges::sort(relocs);
}

class HunkReader {
public:
    HunkReader(View data, int32_t rawoffset, int32_t length)
        : buffer(data), offset(rawoffset), input(part(data, 0, length)) {}

    bool read();
    void populate(Component& component);

private:
    [[nodiscard]] int64_t end() const { return std::ssize(input); }

    // Each of these reads the block at `position` and moves on behind it; false when the block is not all
    // there. A position behind the end says the same.
    bool readhunk();
    bool skipunexpected();
    bool readheader();
    bool readcode();
    bool readdata();
    bool readbss();
    bool readsymbols();
    bool readdebug();
    bool readend();
    bool takeraw(uint32_t id);

    bool readsizes(uint32_t first, uint32_t last, bool hastable);
    bool appendhunk(const char* what, std::optional<uint32_t> longs);

    View buffer;
    int32_t offset;
    View input;
    int64_t position = 0;
    std::string_view type = cTypeUnknown;
    Bytes extract;
    RelocReader relocs{input};
};

// False, and an error line, when the file ends inside a hunk.
bool HunkReader::read() {
    while (position < end()) {
        const int64_t start = position;
        if (readhunk() && position <= end()) continue;
        message(kResult, "ERROR: Truncated hunk file at %d of %d\n", static_cast<int32_t>(start),
                static_cast<int32_t>(end()));
        return false;
    }
    return true;
}

void HunkReader::populate(Component& component) {
    std::vector<int32_t>& places = relocs.relocs;
    droprelocsoutside(places, static_cast<int32_t>(extract.size()));
    message(kResult, "Populating component %d relocs\n", static_cast<int32_t>(places.size()));
    if (!places.empty()) {
        message(kProgress, "First reloc=%d\n", places.front());
        sortrelocs(places);
    }
    component.pcType = type;
    component.iCRC32 = crc32buf(input);
    component.iSize = static_cast<int32_t>(extract.size());
    component.ipRelocs = std::move(places);
    component.pcExtract = std::move(extract);
}

void announce(uint32_t id) { message(kTrace, "%s [%08x]\n", cHunkType(id), id); }

bool HunkReader::readhunk() {
    const auto id = longat(input, position);
    if (!id) return false;
    switch (*id) {
    case iNoHunk:
        return skipunexpected();
    case Hunk::iHeader:
        return announce(*id), readheader();
    case Hunk::iCode:
        return announce(*id), readcode();
    case Hunk::iData:
        return announce(*id), readdata();
    case Hunk::iBss:
        return readbss();
    case Hunk::iReloc32:
        return announce(*id), relocs.readlong(position, extract);
    case Hunk::iDrel32:
        return announce(*id), relocs.readshort(position, extract);
    case Hunk::iSymbol:
        return announce(*id), readsymbols();
    case Hunk::iDebug:
        return announce(*id), readdebug();
    case Hunk::iEnd:
        return announce(*id), readend();
    default:
        return takeraw(*id);
    }
}

bool HunkReader::readend() {
    position += 4;
    return true;
}

// The count counts itself as one of its words, so what follows is read from the last of them on.
bool HunkReader::skipunexpected() {
    const auto count = longat(input, position + 4);
    if (!count) return false;
    message(kProgress, "Unexpected hunk %s %08x, skipping %d words\n", cHunkType(iNoHunk), iNoHunk,
            static_cast<int32_t>(*count));
    position += 4 + int64_t{*count} * 4;
    return true;
}

bool HunkReader::readheader() {
    constexpr int64_t length = 20;
    if (!isinside(input, position, length)) return false;
    const uint32_t names = *longat(input, position + 4);
    const uint32_t entries = *longat(input, position + 8);
    const uint32_t first = *longat(input, position + 12);
    const uint32_t last = *longat(input, position + 16);
    if (names != 0)
        message(kProgress, "ERROR: libraries to open, leninlongwords=%d\n", static_cast<int32_t>(names));
    else
        message(kTrace, " No libraries to open (OK)\n");
    if (entries == 0)
        message(kProgress, "ERROR: No hunk table\n");
    else
        message(kTrace, " %d hunk%s in the hunk table\n", static_cast<int32_t>(entries),
                entries >= 2 ? "s" : "");
    if (entries != 0 && (first > last || last >= entries)) return false;
    position += length;
    return readsizes(first, last, entries != 0);
}

// The sizes of hunks `first` to `last`; only with a table are their places kept.
bool HunkReader::readsizes(uint32_t first, uint32_t last, bool hastable) {
    const int64_t count = std::max<int64_t>(int64_t{last} - first + 1, 0);
    if (!isinside(input, position, count * 4)) return false;
    HunkTable table(first);
    uint32_t total = 0;
    for (int64_t i = 0; i < count; ++i, position += 4) {
        const uint32_t size = *longat(input, position) * 4; // without the memory flags, the top two bits
        if (hastable) table.add(total);
        total += size;
        message(kTrace, " Hunk %d size=%d bytes\n", static_cast<int32_t>(first + i),
                static_cast<int32_t>(size));
    }
    message(kTrace, "Total extract size will be %d bytes\n", static_cast<int32_t>(total));
    relocs.begin(std::move(table), total);
    extract.clear();
    extract.reserve(std::min<size_t>(total, input.size()));
    return true;
}

bool HunkReader::readcode() {
    type = cTypeLibrary;
    const auto longs = longat(input, position + 4);
    if (longs) message(kTrace, " Skip %d words\n", static_cast<int32_t>(*longs));
    return appendhunk("Code", longs);
}

bool HunkReader::readdata() {
    if (type == cTypeUnknown) type = cTypeData;
    return appendhunk("Data", longat(input, position + 4));
}

bool HunkReader::appendhunk(const char* what, std::optional<uint32_t> longs) {
    if (!longs) return false;
    const int64_t start = position + 8;
    const int64_t size = int64_t{*longs} * 4;
    message(kTrace, " %s Start=%d Size=%d\n", what, static_cast<int32_t>(start), static_cast<int32_t>(size));
    if (!isinside(input, start, size)) return false;
    const View bytes = part(input, start, size);
    extract.insert(extract.end(), bytes.begin(), bytes.end());
    relocs.nexthunk();
    position = start + size;
    return true;
}

// A BSS hunk takes no hunk number for the relocs that follow.
bool HunkReader::readbss() {
    const auto longs = longat(input, position + 4);
    if (!longs) return false;
    message(kProgress, "ERROR: %s [%08x]\n", cHunkType(Hunk::iBss), Hunk::iBss);
    message(kProgress,
            "ERROR: Library will need to allocate %d bytes during load, not appropriate for Kickstart "
            "module (IGNORNING)\n",
            static_cast<int32_t>(*longs * 4));
    position += 8;
    return true;
}

bool HunkReader::readsymbols() {
    int64_t at = position + 4;
    for (;;) {
        const auto longs = longat(input, at);
        if (!longs) return false;
        if (*longs == 0) break;
        const int64_t valueat = at + 4 + int64_t{*longs} * 4;
        const auto value = longat(input, valueat);
        if (!value) return false;
        message(kTrace, " Symbol at %d value=%08x\n", static_cast<int32_t>(at), *value);
        at = valueat + 4;
    }
    message(kAlways, "\n");
    position = at + 4;
    return true;
}

bool HunkReader::readdebug() {
    const auto longs = longat(input, position + 4);
    if (!longs) return false;
    message(kTrace, " Skip %d words\n", static_cast<int32_t>(*longs));
    position += 8 + int64_t{*longs} * 4;
    return true;
}

// What begins with no hunk id is taken as it is. Relocs met before stay.
bool HunkReader::takeraw(uint32_t id) {
    message(kProgress, "Unexpected hunk %s %08x at %d of %d\n", cHunkType(id), id,
            static_cast<int32_t>(position), static_cast<int32_t>(end()));
    if (!isinside(buffer, offset, end())) return false;
    const View raw = part(buffer, offset, end());
    type = cTypeData;
    extract.assign(raw.begin(), raw.end());
    position = end();
    return true;
}

} // namespace

int librarybuffertocomponent(View buffer, int32_t offset, int32_t length, Component& component) {
    HunkReader reader(buffer, offset, length);
    if (!reader.read()) return 1;
    reader.populate(component);
    return 0;
}

} // namespace vantorel
