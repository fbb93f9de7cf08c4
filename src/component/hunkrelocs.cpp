#include "component/hunkrelocs.h"

#include "base/message.h"
#include "component/extract.h"

#include <algorithm>

namespace vantorel {

bool RelocReader::readlong(int64_t& position, std::span<uint8_t> extract) {
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
        take(part(input, at + 8, size), table.find(*target), extract);
        at += 8 + size;
    }
    position = at + 4;
    return true;
}

namespace {

// What the relocs of a group have in common: where their hunk and its target begin in the extract, and
// how long the extract will be.
struct RelocGroup {
    uint32_t source;
    uint32_t target;
    int64_t length;
};

void relocate(std::span<uint8_t> bytes, uint32_t place, uint32_t target) {
    if (isinside(bytes, place, 4)) setlong(bytes.data() + place, iUINT32(bytes.data() + place) + target);
}

// Records relocs of a group without a trace, stored from `next` on; returns the end of what was recorded.
// Apart from everything else, because files have tens of thousands of relocs and this loop is what they cost.
[[gnu::noinline]] int32_t* relocateall(View offsets, std::span<uint8_t> bytes, RelocGroup group,
                                       int32_t* next) {
    for (size_t i = 0; i < offsets.size(); i += 4) {
        const uint32_t place = iUINT32(offsets.data() + i) + group.source;
        if (int64_t{place} + 4 > group.length) {
            telloutside(static_cast<int32_t>(place));
            continue;
        }
        relocate(bytes, place, group.target);
        *next++ = static_cast<int32_t>(place);
    }
    return next;
}

} // namespace

// Records relocs of the current hunk and adds the place of their target to the long at each. Bytes that
// are yet to come will replace what is added before them.
void RelocReader::take(View offsets, std::optional<uint32_t> target, std::span<uint8_t> extract) {
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
            telloutside(static_cast<int32_t>(place));
            continue;
        }
        relocate(extract, place, *target);
        trace(from, place, extract);
        relocs.push_back(static_cast<int32_t>(place));
    }
}

void RelocReader::trace(uint32_t from, uint32_t place, View extract) const {
    message(kTrace, "Reloc [%d] ", static_cast<int32_t>(relocs.size()));
    message(kTrace, "pos=%d (%d) =%d\n", static_cast<int32_t>(from), static_cast<int32_t>(place),
            static_cast<int32_t>(longat(extract, place).value_or(0)));
}

// The relocs of this form stand for the only hunk of a file, which begins with the extract; its longs are
// relative to it already. A HUNK_END follows such a block and is stepped over with it.
bool RelocReader::readshort(int64_t& position, View extract) {
    relocs.clear();
    int64_t at = position + 4;
    for (;;) {
        const auto count = wordat(input, at);
        if (!count) return false;
        if (*count == 0) break;
        const auto target = wordat(input, at + 2);
        const int64_t size = int64_t{*count} * 2;
        if (!target || !isinside(input, at + 4, size)) return false;
        takeshort(part(input, at + 4, size), *target, extract);
        at += 4 + size;
    }
    position = ((at + 2 + 3) & ~int64_t{3}) + 4;
    return true;
}

void RelocReader::takeshort(View offsets, uint16_t target, View extract) {
    message(kTrace, " %d entries\n", static_cast<int32_t>(offsets.size() / 2));
    message(kTrace, " Target hunk %d\n", target);
    const bool istraced = isshown(kTrace);
    for (size_t i = 0; i < offsets.size(); i += 2) {
        const int32_t place = iUINT16(offsets.data() + i);
        relocs.push_back(place);
        if (istraced)
            message(kTrace, "Reloc: pos=%d add=%d R=%08x\n", place,
                    static_cast<int32_t>(table.find(target).value_or(0)), longat(extract, place).value_or(0));
    }
    message(kAlways, "\n");
}

} // namespace vantorel
