#include "component/hunkreader.h"

#include "base/message.h"
#include "component/extract.h"
#include "component/hunk.h"
#include "hash/crc32.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace vantorel {

namespace {

// What a file holds where a hunk id is expected and none stands there.
constexpr uint32_t iNoHunk = 0xFFFFFFFF;

// Where each hunk of a file begins in the extract.
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

    // False, and an error line, when the file ends inside a hunk.
    bool read() {
        while (position < end()) {
            const int64_t start = position;
            if (readhunk() && position <= end()) continue;
            message(kResult, "ERROR: Truncated hunk file at %d of %d\n", static_cast<int32_t>(start),
                    static_cast<int32_t>(end()));
            return false;
        }
        return true;
    }

    void populate(Component& component) {
        droprelocsoutside(relocs, static_cast<int32_t>(extract.size()));
        message(kResult, "Populating component %d relocs\n", static_cast<int32_t>(relocs.size()));
        if (!relocs.empty()) {
            message(kProgress, "First reloc=%d\n", relocs.front());
            sortrelocs(relocs);
        }
        component.pcType = type;
        component.iCRC32 = crc32buf(input);
        component.iSize = static_cast<int32_t>(extract.size());
        component.ipRelocs = std::move(relocs);
        component.pcExtract = std::move(extract);
    }

private:
    [[nodiscard]] int64_t end() const { return std::ssize(input); }

    // Each of these reads the block at `position` and moves on behind it; false when the block is not all
    // there. A position behind the end says the same.

    bool readhunk() {
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
            return announce(*id), readrelocs();
        case Hunk::iDrel32:
            return announce(*id), readshortrelocs();
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

    static void announce(uint32_t id) { message(kTrace, "%s [%08x]\n", cHunkType(id), id); }

    bool readend() {
        position += 4;
        return true;
    }

    // The count counts itself as one of its words, so what follows is read from the last of them on.
    bool skipunexpected() {
        const auto count = longat(input, position + 4);
        if (!count) return false;
        message(kProgress, "Unexpected hunk %s %08x, skipping %d words\n", cHunkType(iNoHunk), iNoHunk,
                static_cast<int32_t>(*count));
        position += 4 + int64_t{*count} * 4;
        return true;
    }

    bool readheader() {
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
    bool readsizes(uint32_t first, uint32_t last, bool hastable) {
        const int64_t count = std::max<int64_t>(int64_t{last} - first + 1, 0);
        if (!isinside(input, position, count * 4)) return false;
        table = HunkTable(first);
        total = 0;
        for (int64_t i = 0; i < count; ++i, position += 4) {
            const uint32_t size = *longat(input, position) * 4; // without the memory flags, the top two bits
            if (hastable) table.add(total);
            total += size;
            message(kTrace, " Hunk %d size=%d bytes\n", static_cast<int32_t>(first + i),
                    static_cast<int32_t>(size));
        }
        message(kTrace, "Total extract size will be %d bytes\n", static_cast<int32_t>(total));
        extract.clear();
        extract.reserve(std::min<size_t>(total, input.size()));
        return true;
    }

    bool readcode() {
        type = cTypeLibrary;
        const auto longs = longat(input, position + 4);
        if (longs) message(kTrace, " Skip %d words\n", static_cast<int32_t>(*longs));
        return appendhunk("Code", longs);
    }

    bool readdata() {
        if (type == cTypeUnknown) type = cTypeData;
        return appendhunk("Data", longat(input, position + 4));
    }

    bool appendhunk(const char* what, std::optional<uint32_t> longs) {
        if (!longs) return false;
        const int64_t start = position + 8;
        const int64_t size = int64_t{*longs} * 4;
        message(kTrace, " %s Start=%d Size=%d\n", what, static_cast<int32_t>(start),
                static_cast<int32_t>(size));
        if (!isinside(input, start, size)) return false;
        const View bytes = part(input, start, size);
        extract.insert(extract.end(), bytes.begin(), bytes.end());
        ++hunk;
        position = start + size;
        return true;
    }

    // A BSS hunk takes no hunk number for the relocs that follow.
    bool readbss() {
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

    bool readrelocs() {
        int64_t at = position + 4;
        for (bool isfirst = true;; isfirst = false) {
            const auto count = longat(input, at);
            if (!count) return false;
            if (*count == 0) break;
            const auto target = longat(input, at + 4);
            const int64_t size = int64_t{*count} * 4;
            if (!target || !isinside(input, at + 8, size)) return false;
            message(kTrace, " %d new %s entries (Total=%d)\n", static_cast<int32_t>(*count),
                    isfirst ? "HUNK" : "inline", static_cast<int32_t>(relocs.size() + *count));
            message(kTrace, " Target hunk %d\n", static_cast<int32_t>(*target));
            takerelocs(part(input, at + 8, size), table.find(*target));
            at += 8 + size;
        }
        position = at + 4;
        return true;
    }

    // Records relocs of the current hunk and adds the place of their target to the long at each. Bytes that
    // are yet to come will replace what is added before them.
    void takerelocs(View offsets, std::optional<uint32_t> target) {
        const auto source = table.find(hunk);
        const int64_t length = std::max<int64_t>(total, std::ssize(extract));
        if (source && target && !isshown(kTrace)) {
            const size_t before = relocs.size();
            relocs.resize(before + offsets.size() / 4);
            const int32_t* end = relocateall(offsets, extract, {*source, *target, length}, &relocs[before]);
            relocs.resize(static_cast<size_t>(end - relocs.data()));
            return;
        }
        for (size_t i = 0; i < offsets.size(); i += 4) {
            const uint32_t from = iUINT32(offsets.data() + i);
            const uint32_t place = from + source.value_or(0);
            if (!source || !target || int64_t{place} + 4 > length) {
                leaveout(place);
                continue;
            }
            relocate(extract, place, *target);
            tracereloc(from, place);
            relocs.push_back(static_cast<int32_t>(place));
        }
    }

    // What the relocs of a group have in common: where their hunk and its target begin in the extract, and
    // how long the extract will be.
    struct RelocGroup {
        uint32_t source;
        uint32_t target;
        int64_t length;
    };

    // The same without a trace, stored from `next` on; returns the end of what was recorded. Apart from
    // everything else, because files have tens of thousands of relocs and this loop is what they cost.
    [[gnu::noinline]] static int32_t* relocateall(View offsets, std::span<uint8_t> bytes, RelocGroup group,
                                                  int32_t* next) {
        for (size_t i = 0; i < offsets.size(); i += 4) {
            const uint32_t place = iUINT32(offsets.data() + i) + group.source;
            if (int64_t{place} + 4 > group.length) {
                leaveout(place);
                continue;
            }
            relocate(bytes, place, group.target);
            *next++ = static_cast<int32_t>(place);
        }
        return next;
    }

    static void relocate(std::span<uint8_t> bytes, uint32_t place, uint32_t target) {
        if (isinside(bytes, place, 4)) setlong(bytes.data() + place, iUINT32(bytes.data() + place) + target);
    }

    [[gnu::noinline]] static void leaveout(uint32_t place) {
        message(kResult, "ERROR: Reloc %d is outside its component\n", static_cast<int32_t>(place));
    }

    void tracereloc(uint32_t from, uint32_t place) const {
        message(kTrace, "Reloc [%d] ", static_cast<int32_t>(relocs.size()));
        message(kTrace, "pos=%d (%d) =%d\n", static_cast<int32_t>(from), static_cast<int32_t>(place),
                static_cast<int32_t>(longat(extract, place).value_or(0)));
    }

    // The relocs of this form stand for the only hunk of a file, which begins with the extract; its longs are
    // relative to it already. A HUNK_END follows such a block and is stepped over with it.
    bool readshortrelocs() {
        relocs.clear();
        int64_t at = position + 4;
        for (;;) {
            const auto count = wordat(input, at);
            if (!count) return false;
            if (*count == 0) break;
            const auto target = wordat(input, at + 2);
            const int64_t size = int64_t{*count} * 2;
            if (!target || !isinside(input, at + 4, size)) return false;
            takeshortrelocs(part(input, at + 4, size), *target);
            at += 4 + size;
        }
        position = ((at + 2 + 3) & ~int64_t{3}) + 4;
        return true;
    }

    void takeshortrelocs(View offsets, uint16_t target) {
        message(kTrace, " %d entries\n", static_cast<int32_t>(offsets.size() / 2));
        message(kTrace, " Target hunk %d\n", target);
        const bool istraced = isshown(kTrace);
        for (size_t i = 0; i < offsets.size(); i += 2) {
            const int32_t place = iUINT16(offsets.data() + i);
            relocs.push_back(place);
            if (istraced)
                message(kTrace, "Reloc: pos=%d add=%d R=%08x\n", place,
                        static_cast<int32_t>(table.find(target).value_or(0)),
                        longat(extract, place).value_or(0));
        }
        message(kAlways, "\n");
    }

    bool readsymbols() {
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

    bool readdebug() {
        const auto longs = longat(input, position + 4);
        if (!longs) return false;
        message(kTrace, " Skip %d words\n", static_cast<int32_t>(*longs));
        position += 8 + int64_t{*longs} * 4;
        return true;
    }

    // What begins with no hunk id is taken as it is. Relocs met before stay.
    bool takeraw(uint32_t id) {
        message(kProgress, "Unexpected hunk %s %08x at %d of %d\n", cHunkType(id), id,
                static_cast<int32_t>(position), static_cast<int32_t>(end()));
        if (!isinside(buffer, offset, end())) return false;
        const View raw = part(buffer, offset, end());
        type = cTypeData;
        extract.assign(raw.begin(), raw.end());
        position = end();
        return true;
    }

    View buffer;
    int32_t offset;
    View input;
    int64_t position = 0;
    std::string_view type = cTypeUnknown;
    Bytes extract;
    std::vector<int32_t> relocs;
    HunkTable table;
    uint32_t total = 0; // what the header promises, in bytes
    int64_t hunk = -1;
};

} // namespace

int librarybuffertocomponent(View buffer, int32_t offset, int32_t length, Component& component) {
    HunkReader reader(buffer, offset, length);
    if (!reader.read()) return 1;
    reader.populate(component);
    return 0;
}

} // namespace vantorel
