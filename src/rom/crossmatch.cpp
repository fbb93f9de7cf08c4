#include "rom/crossmatch.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/adopt.h"
#include "rom/store.h"

#include <algorithm>
#include <cstring>

namespace vantorel {

namespace {

// Two libraries are worth comparing when this many characters of their id strings agree.
constexpr size_t iLikeness = 12;

// How many bytes of `extract` the image has at `start`, where it would run at `address`: a long that differs
// from the extract's by just that address counts whole, any other byte for itself.
int32_t countmatches(View image, int64_t start, uint32_t address, View extract) {
    int32_t count = 0;
    const auto size = static_cast<int64_t>(extract.size());
    for (int64_t at = 0; at < size;) {
        const auto mine = longat(image, start + at);
        const auto theirs = longat(extract, at);
        if (mine && theirs && *mine - address == *theirs) {
            count += 4;
            at += 4;
            continue;
        }
        const bool same = isinside(image, start + at, 1) &&
                          image[static_cast<size_t>(start + at)] == extract[static_cast<size_t>(at)];
        if (same) ++count;
        ++at;
    }
    return count;
}

bool islike(const Component& component, const Component& other) {
    if (!other.pcLibString) return false;
    if (std::strncmp(component.pcLibString->c_str(), other.pcLibString->c_str(), iLikeness) != 0)
        return false;
    message(kProgress, "12 byte match %lu %lu\n", static_cast<unsigned long>(component.pcLibString->size()),
            static_cast<unsigned long>(other.pcLibString->size()));
    return true;
}

// A component of a slot, by both numbers.
struct Place {
    int32_t rom;
    int32_t number;

    [[nodiscard]] const KickstartRom& slot() const { return *findslot(rom); }
    [[nodiscard]] Component& component() const {
        return findslot(rom)->psComponents[static_cast<size_t>(number)];
    }
};

// Whether the image at `here` holds what `there` has an extract of. `start` is where it would begin.
bool isperfect(Place here, Place there, int64_t start) {
    const KickstartRom& slot = here.slot();
    const Component& other = there.component();
    const auto length = std::min(other.pcExtract->size(), static_cast<size_t>(std::max(other.iSize, 0)));
    const uint32_t address = slot.iROMBase + static_cast<uint32_t>(start);
    message(kResult, "Check source %d:%d @%08x with %d:%d @%08x\n", here.rom, here.number,
            static_cast<uint32_t>(start), there.rom, there.number, static_cast<uint32_t>(other.iStart));
    const int32_t count = countmatches(slot.pcROM, start, address, View(*other.pcExtract).first(length));
    message(kResult, "Match %d of %d\n", count, other.iSize);
    return count == other.iSize && isinside(slot.pcROM, start, other.iSize);
}

bool matchone(Place here, Place there) {
    const Component& other = there.component();
    if (other.isblank()) return false;
    const void* extract = other.pcExtract ? other.pcExtract->data() : nullptr;
    message(kProgress, "Checking component %d:%d [%s] Extract:%p\n", there.rom, there.number,
            shown(other.pcLibString), extract);
    Component& component = here.component();
    if (!islike(component, other) || !other.pcExtract) return false;
    const int64_t start = int64_t{component.iROMTag} - (int64_t{other.iROMTag} - other.iStart);
    if (!isperfect(here, there, start)) return false;
    message(kResult, "Perfect match, analysing ROM %d Component %d matches ROM %d Component %d\n", here.rom,
            here.number, there.rom, there.number);
    component.iStart = component.iFixedStart = static_cast<int32_t>(start);
    component.iSize = other.iSize;
    component.ipRelocs = other.ipRelocs;
    component.pcHash = other.pcHash;
    if (createextract(here.rom, here.number) == 0) settlecomponent(here.rom, here.number);
    return true;
}

void matchcomponent(Place here) {
    message(kProgress, "Looking for [%s]\n", shown(here.component().pcLibString));
    for (int32_t rom = 0; rom < iMaxRom; ++rom) {
        if (rom == here.rom) continue;
        const int32_t count = findslot(rom)->iComponents();
        message(kProgress, "Looking in ROM %d - checking against %d components\n", rom, count);
        for (int32_t number = 0; number < count; ++number)
            if (matchone(here, {rom, number})) return;
    }
}

} // namespace

void matchotherroms(int32_t rom) {
    const KickstartRom& slot = *findslot(rom);
    for (int32_t number = 0; number < slot.iComponents(); ++number)
        if (slot.psComponents[static_cast<size_t>(number)].pcLibString) matchcomponent({rom, number});
}

} // namespace vantorel
