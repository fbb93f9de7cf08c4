#include "component/placement.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/taketag.h"

#include <algorithm>
#include <optional>

namespace vantorel {

int copyextracttorom(int32_t rom, int32_t component) {
    const Component* record = requirerecord(rom, component);
    if (record == nullptr || !requirefit(*findslot(rom), component)) return 1;
    if (!haswholeextract(*record)) {
        message(kResult, "ERROR: Component %d has no extract\n", component);
        return 1;
    }
    KickstartRom& slot = *findslot(rom);
    uint8_t* place = slot.pcROM.data() + record->iStart;
    message(kProgress, "Copying extract %p to ROM %p\n", static_cast<const void*>(record->pcExtract->data()),
            static_cast<const void*>(place));
    std::copy_n(record->pcExtract->begin(), record->iSize, place);
    message(kProgress, "Patching ROM component %d ROMBASE 0x%08x (%d relocs)\n", component, slot.iROMBase,
            record->iRelocs());
    patchrelocs(slot, component);
    message(kTrace, "Patched\n");
    return 0;
}

namespace {

// Where a component of some size goes: its number, and its image offset.
struct Place {
    int32_t number;
    int64_t start;
};

// The first gap before a component that holds `need` bytes.
std::optional<Place> findgap(const KickstartRom& slot, int32_t need) {
    int64_t end = 0;
    for (int32_t number = 0; number < slot.iComponents(); ++number) {
        const Component& component = slot.component(number);
        if (component.isblank()) continue;
        const int64_t gap = component.iStart - end;
        if (gap >= need) {
            message(kProgress, "Found space before component %d=%d\n", number, static_cast<int32_t>(gap));
            return Place{number, end};
        }
        end = component.iEnd();
    }
    return std::nullopt;
}

int64_t endoflast(const KickstartRom& slot) {
    const auto last = std::find_if(slot.psComponents.rbegin(), slot.psComponents.rend(),
                                   [](const Component& component) { return !component.isblank(); });
    return last != slot.psComponents.rend() ? last->iEnd() : 0;
}

std::optional<Place> findplace(const KickstartRom& slot, int32_t need) {
    if (slot.psComponents.empty())
        message(kProgress, "No existing components, need to create first component\n");
    const auto gap = findgap(slot, need);
    const Place place = gap ? *gap : Place{slot.iComponents(), endoflast(slot)};
    if (!isinside(slot.pcROM, place.start, need)) {
        message(kResult, "Not enough space in rom\n");
        return std::nullopt;
    }
    const auto start = static_cast<int32_t>(place.start);
    if (gap)
        message(kProgress, "Need to insert before component %d at position %d\n", place.number, start);
    else if (!slot.psComponents.empty())
        message(kProgress, "Need to add component %d at end at position %d\n", place.number, start);
    return place;
}

} // namespace

int addcomponent(int32_t rom, Component& record) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return -1;
    message(kProgress, "Adding component into ROM %d (need %d bytes)\n", rom, record.iSize);
    const auto place = findplace(*slot, record.iSize);
    if (!place) {
        message(kResult, "No space in rom\n");
        return -1;
    }
    if (!haswholeextract(record)) {
        message(kResult, "ERROR: %s has no extract\n", shown(record.pcName));
        return -1;
    }
    message(kProgress, "Space available - adding\n");
    slot->psComponents.insert(slot->psComponents.begin() + place->number, std::move(record));
    Component& component = slot->component(place->number);
    component.iStart = component.iFixedStart = static_cast<int32_t>(place->start);
    component.iFixedEnd = component.iStart + component.iSize;
    if (&component == &slot->psComponents.back()) slot->iUsed = component.iFixedEnd;
    copyextracttorom(rom, place->number);
    message(kProgress, "%s\n", taketag(*slot, component) ? "Found ROMTag" : "Couldn't find ROMTag!");
    return 0;
}

int addunallocated(int32_t rom, int32_t bytes, int8_t fill) {
    const KickstartRom* slot = findslot(rom);
    if (slot == nullptr) {
        message(kResult, "ERROR, invalid ROM\n");
        return -1;
    }
    Component block;
    block.pcName = "Unallocated";
    block.pcHash = "Unallocated";
    block.pcType = cTypeData;
    block.iStart = -1;
    block.iSize = bytes;
    // What is larger than the whole image needs no bytes to be refused.
    if (bytes <= slot->iSize())
        block.pcExtract.emplace(static_cast<size_t>(bytes), static_cast<uint8_t>(fill));
    return addcomponent(rom, block);
}

int32_t findcomponent(int32_t rom, const std::string& name) {
    const KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return -1;
    return findnumber(*slot, [&](const Component& component) {
        return component.pcName && startswithnocase(*component.pcName, name);
    });
}

void deletecomponent(int32_t rom, int32_t component) {
    const Component* record = requirerecord(rom, component);
    if (record == nullptr || !requirefit(*findslot(rom), component)) return;
    KickstartRom& slot = *findslot(rom);
    std::fill_n(slot.pcROM.begin() + record->iStart, record->iSize, slot.cFill);
    slot.psComponents.erase(slot.psComponents.begin() + component);
}

namespace {

int32_t imageoffset(const KickstartRom& slot, uint32_t value) {
    return static_cast<int32_t>(value >= slot.iROMBase ? value - slot.iROMBase : value);
}

// The difference of two offsets, wrapping at 32 bits.
int32_t difference(int32_t to, int32_t from) {
    return static_cast<int32_t>(static_cast<uint32_t>(to) - static_cast<uint32_t>(from));
}

} // namespace

void editcomponentstart(int32_t rom, int32_t component, uint32_t value) {
    Component* record = requirerecord(rom, component);
    if (record == nullptr) return;
    const int32_t start = imageoffset(*findslot(rom), value);
    record->iSize = difference(record->iSize, difference(start, record->iStart));
    record->iStart = record->iFixedStart = start;
}

void editcomponentend(int32_t rom, int32_t component, uint32_t value) {
    Component* record = requirerecord(rom, component);
    if (record == nullptr) return;
    record->iFixedEnd = imageoffset(*findslot(rom), value);
    record->iSize = difference(record->iFixedEnd, record->iStart);
}

int32_t getcomponentdata(int32_t rom, int32_t component, ComponentData& record) {
    const Component* found = findrecord(rom, component);
    if (found == nullptr) return -1;
    message(kRaw, "inDLL[%p=%s]\n", address(found->pcName), shown(found->pcName));
    constexpr size_t typetext = 31;
    record = {cut(found->pcName.value_or(""), iRecordText), cut(found->pcType.value_or(""), typetext),
              cut(found->pcHash.value_or(""), iRecordText), found->iStart, found->iSize};
    return rom;
}

} // namespace vantorel
