#include "rom/crossmatch.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/adopt.h"
#include "rom/likeness.h"
#include "rom/store.h"

#include <algorithm>
#include <cstring>

namespace vantorel {

namespace {

// Two libraries are worth comparing when this many characters of their id strings agree.
constexpr size_t iLikeness = 12;

// A component of another slot.
struct Other {
    int32_t rom;
    int32_t number;
    const Component& component;
};

// Comparing is worth its time up to this many bytes in an analysis; real ROMs come to a fiftieth of it. Each
// comparison counts for some bytes more, for what it prints.
constexpr int64_t iComparedMost = int64_t{512} << 20;
constexpr int64_t iComparisonCost = 4096;

// The search for the components of one slot in all others.
class CrossMatcher {
public:
    explicit CrossMatcher(int32_t slotnumber) : rom(slotnumber), slot(*findslot(slotnumber)) {}

    void matchall() {
        for (int32_t number = 0; number < slot.iComponents() && !istoomuch(); ++number)
            if (slot.component(number).pcLibString) lookfor(number);
        if (istoomuch()) message(kResult, "ERROR: There is too much to compare in other ROMs, leaving off\n");
    }

private:
    [[nodiscard]] bool istoomuch() const { return work > iComparedMost; }

    void lookfor(int32_t number) {
        message(kProgress, "Looking for [%s]\n", shown(slot.component(number).pcLibString));
        for (int32_t otherrom = 0; otherrom < iMaxRom; ++otherrom) {
            if (otherrom == rom) continue;
            const auto& others = findslot(otherrom)->psComponents;
            message(kProgress, "Looking in ROM %d - checking against %d components\n", otherrom,
                    static_cast<int32_t>(others.size()));
            for (size_t i = 0; i < others.size() && !istoomuch(); ++i)
                if (matches(number, {otherrom, static_cast<int32_t>(i), others[i]})) return;
        }
    }

    // Compares with one component of another slot, and takes over what that tells when the two are the same.
    bool matches(int32_t number, const Other& other) {
        if (other.component.isblank()) return false;
        const auto& extract = other.component.pcExtract;
        message(kProgress, "Checking component %d:%d [%s] Extract:%p\n", other.rom, other.number,
                shown(other.component.pcLibString),
                extract ? static_cast<const void*>(extract->data()) : nullptr);
        if (!comparestrings(number, other) || !extract) return false;
        const int64_t start = int64_t{slot.component(number).iROMTag} -
                              (int64_t{other.component.iROMTag} - other.component.iStart);
        if (!comparebytes(number, other, start)) return false;
        message(kResult, "Perfect match, analysing ROM %d Component %d matches ROM %d Component %d\n", rom,
                number, other.rom, other.number);
        take(number, other.component, static_cast<int32_t>(start));
        return true;
    }

    // Whether the first characters of both id strings agree; tells it when they do.
    bool comparestrings(int32_t number, const Other& other) {
        const Text& mine = slot.component(number).pcLibString;
        const Text& theirs = other.component.pcLibString;
        if (!theirs || std::strncmp(mine->c_str(), theirs->c_str(), iLikeness) != 0) return false;
        message(kProgress, "12 byte match %lu %lu\n", static_cast<unsigned long>(mine->size()),
                static_cast<unsigned long>(theirs->size()));
        return true;
    }

    // Whether the image at `start` holds what the other component has an extract of; tells how much of it.
    bool comparebytes(int32_t number, const Other& other, int64_t start) {
        const View extract = View(*other.component.pcExtract)
                                 .first(std::min(other.component.pcExtract->size(),
                                                 static_cast<size_t>(std::max(other.component.iSize, 0))));
        message(kResult, "Check source %d:%d @%08x with %d:%d @%08x\n", rom, number,
                static_cast<uint32_t>(start), other.rom, other.number,
                static_cast<uint32_t>(other.component.iStart));
        // An extract is relative to where it runs.
        const uint32_t address = slot.iROMBase + static_cast<uint32_t>(start);
        const int32_t count = countlike(slot.pcROM, start, extract, 0, static_cast<int64_t>(extract.size()),
                                        address, [](int32_t /*place*/) {});
        work += static_cast<int64_t>(extract.size()) + iComparisonCost;
        message(kResult, "Match %d of %d\n", count, other.component.iSize);
        return count == other.component.iSize && isinside(slot.pcROM, start, other.component.iSize);
    }

    // All memory is had before the record changes.
    void take(int32_t number, const Component& other, int32_t start) {
        Component found = slot.component(number);
        found.iStart = found.iFixedStart = start;
        found.iSize = other.iSize;
        found.ipRelocs = other.ipRelocs;
        found.pcHash = other.pcHash;
        message(kTrace, "There are %d relocs\n", found.iRelocs());
        found.pcExtract = extractof(slot, found);
        adoptcomponent(slot, static_cast<size_t>(number), std::move(found));
    }

    int32_t rom;
    KickstartRom& slot;
    int64_t work = 0;
};

} // namespace

void matchotherroms(int32_t rom) { CrossMatcher(rom).matchall(); }

} // namespace vantorel
