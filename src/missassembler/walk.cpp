#include "missassembler/walk.h"

#include "base/message.h"
#include "component/extract.h"
#include "missassembler/labels.h"

#include <algorithm>

namespace vantorel {

Walk startwalk(int32_t rom, int32_t component) {
    const KickstartRom& slot = *findslot(rom);
    const Component& record = *findrecord(rom, component);
    return {.rom = rom,
            .component = component,
            .slot = slot,
            .record = record,
            .bytes = part(slot.pcROM, record.iStart, record.iSize),
            .address = runaddress(slot, record),
            .marks = std::vector<char>(static_cast<size_t>(record.iSize), Walk::NotReached),
            .ipEntries = {},
            .iVectorsLeft = record.iSize};
}

int64_t componentoffset(const Walk& walk, uint32_t address) {
    return static_cast<int32_t>(address - walk.address);
}

bool isincomponent(const Walk& walk, int64_t offset) { return isinside(walk.bytes, offset, 1); }

bool markentry(Walk& walk, int64_t offset) {
    if (!isincomponent(walk, offset)) return false;
    walk.marks[static_cast<size_t>(offset)] = Walk::Entry;
    // An odd place is no instruction; it keeps its mark and is listed as data.
    if (offset % 2 == 0) walk.ipEntries.insert(static_cast<int32_t>(offset));
    return true;
}

bool takevector(Walk& walk) {
    if (walk.iVectorsLeft == 0)
        message(kResult, "ERROR: Component %d has more vectors than bytes\n", walk.component);
    return walk.iVectorsLeft >= 0 && --walk.iVectorsLeft >= 0;
}

void markcode(Walk& walk, int32_t offset, int32_t length) {
    const int64_t end = std::min<int64_t>(int64_t{offset} + length, walk.record.iSize);
    for (int64_t at = offset; at < end; ++at) {
        char& mark = walk.marks[static_cast<size_t>(at)];
        if (mark == Walk::Entry) walk.ipEntries.erase(static_cast<int32_t>(at));
        mark = Walk::Code;
    }
}

void addrecord(const Walk& walk, const std::string& text, int64_t offset, char type, int32_t repeat) {
    if (isincomponent(walk, offset)) addmisslabel(text, static_cast<int32_t>(offset), type, repeat);
}

} // namespace vantorel
