#include "component/relocedit.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/store.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace vantorel {

namespace {

// Slot and component for an edit of relocs; null, and the edit's own error line, without them.
Component* requireeditable(int32_t rom, int32_t component) {
    Component* record = findrecord(rom, component);
    if (record != nullptr) return record;
    if (iMaxRom == 0)
        message(kResult, "ERROR, please load or create a ROM\n");
    else if (findslot(rom) == nullptr)
        message(kResult, "ERROR, ROM out of range\n");
    else
        message(kResult, "ERROR, component out of range\n");
    return nullptr;
}

void warnofpointer(const KickstartRom& slot, const Component& record, uint32_t value) {
    const uint32_t start = runaddress(slot, record);
    const uint32_t end = start + static_cast<uint32_t>(record.iSize);
    if (value > end - 4)
        message(kResult, "WARNING, reloc value (%6X) beyond this module, max=%6X\n", value, end);
    if (value < start)
        message(kResult, "WARNING, reloc value (%6X) before this modules start=%6X\n", value, start);
}

// Puts `offset` before the larger ones at the list's end.
void insertsorted(std::vector<int32_t>& relocs, int32_t offset) {
    const auto notlarger =
        std::find_if(relocs.rbegin(), relocs.rend(), [offset](int32_t reloc) { return reloc <= offset; });
    relocs.insert(notlarger.base(), offset);
}

void insertnew(std::vector<int32_t>& relocs, int32_t offset) {
    if (relocs.empty()) {
        message(kProgress, "New RELOC, no RELOCS so far, creating RELOC table\n");
        relocs.push_back(offset);
        return;
    }
    message(kProgress, "Inserting new RELOC\n");
    insertsorted(relocs, offset);
    if (isshown(kProgress))
        for (const int32_t reloc : relocs)
            message(kProgress, "RELOC=%d\n", reloc);
}

// Whether a reloc at `offset` can be added to the list, which `isknown` says it is in already; tells why not.
bool admitreloc(int32_t rom, int32_t component, int32_t offset, bool isknown) {
    const KickstartRom& slot = *findslot(rom);
    const Component& record = *findrecord(rom, component);
    if (record.iROMTag < 0) {
        message(kResult, "ERROR, only components with a ROMTAG can have relocs added\n");
        return false;
    }
    if (offset < 0 || offset > int64_t{record.iSize} - 4) {
        message(kResult, "ERROR, reloc (%d) out of range Size=%d\n", offset, record.iSize);
        return false;
    }
    if (!requirefit(slot, component)) return false;
    message(kProgress, "RELOCS=%d\n", record.iRelocs());
    message(kTrace, "RELOC$=%p\n", static_cast<const void*>(record.ipRelocs.data()));
    message(kTrace, "EXTRACT$=%p\n",
            static_cast<const void*>(record.pcExtract ? record.pcExtract->data() : nullptr));
    message(kRaw, "iSTART$=%d\n", record.iStart);
    const uint32_t value = *longat(slot.pcROM, int64_t{record.iStart} + offset);
    message(kTrace, "RELOC Value=%08x\n", value);
    warnofpointer(slot, record, value);
    if (isknown) {
        message(kProgress, "WARNING, RELOC %d already exists, ignoring\n", offset);
        return false;
    }
    return true;
}

int insertreloc(int32_t rom, int32_t component, int32_t offset) {
    insertnew(findrecord(rom, component)->ipRelocs, offset);
    message(kProgress, "Refreshing/creating extract\n");
    return createextract(rom, component);
}

} // namespace

int addreloc(int32_t rom, int32_t component, int32_t offset) {
    const Component* record = requireeditable(rom, component);
    if (record == nullptr) return 1;
    const bool isknown = std::ranges::find(record->ipRelocs, offset) != record->ipRelocs.end();
    return admitreloc(rom, component, offset, isknown) ? insertreloc(rom, component, offset) : 1;
}

int deletereloc(int32_t rom, int32_t component, int32_t offset) {
    Component* record = requireeditable(rom, component);
    if (record == nullptr || !requirefit(*findslot(rom), component)) return 1;
    const auto found = std::ranges::find(record->ipRelocs, offset);
    if (found == record->ipRelocs.end()) {
        message(kResult, "ERROR, reloc %d not found\n", offset);
        return 1;
    }
    record->ipRelocs.erase(found);
    return createextract(rom, component);
}

RelocBatch::RelocBatch(int32_t itsrom, int32_t itscomponent)
    : rom(itsrom), component(itscomponent), before(findrecord(rom, component)->ipRelocs) {
    std::ranges::sort(before);
}

void RelocBatch::add(int32_t offset) {
    if (!admitreloc(rom, component, offset, std::ranges::binary_search(before, offset))) return;
    if (isshown(kProgress))
        insertreloc(rom, component, offset);
    else
        found.push_back(offset);
}

// Puts each of what was found before the larger ones at the list's end, as inserting them one by one does.
void RelocBatch::finish() {
    if (found.empty()) return;
    std::vector<int32_t>& relocs = findrecord(rom, component)->ipRelocs;
    std::vector<int32_t> merged(relocs.size() + found.size());
    std::merge(found.rbegin(), found.rend(), relocs.rbegin(), relocs.rend(), merged.rbegin(),
               std::greater<>());
    relocs = std::move(merged);
    found.clear();
    createextract(rom, component);
}

namespace {

// Adds every long of the component that points into it, and returns how many there are.
int32_t scanrelocs(int32_t rom, int32_t component) {
    const KickstartRom& slot = *findslot(rom);
    const Component& record = *findrecord(rom, component);
    const auto first = static_cast<uint32_t>(record.iStart);
    const auto last = first + static_cast<uint32_t>(record.iSize);
    message(kResult, "Adding potential relocs %08x to %08x\n", first, last);
    RelocBatch batch(rom, component);
    int32_t count = 0;
    for (int64_t place = first; place < last; place += 2) {
        const auto value = longat(slot.pcROM, place);
        if (!value || !pointsinto(slot, record, *value)) continue;
        ++count;
        const auto offset = static_cast<int32_t>(place - first);
        // The trace names the reloc as the scan has it, which has moved on by a word already.
        message(kTrace, "Potential RELOC=%d\n", offset + 2);
        batch.add(offset);
        place += 2;
    }
    batch.finish();
    return count;
}

} // namespace

void addrelocs(int32_t rom, int32_t component) {
    if (requirerecord(rom, component) == nullptr || !requirefit(*findslot(rom), component)) return;
    message(kResult, "%d potential relocs added\n", scanrelocs(rom, component));
}

} // namespace vantorel
