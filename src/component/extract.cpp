#include "component/extract.h"

#include "base/message.h"

namespace vantorel {

uint32_t runaddress(const KickstartRom& slot, const Component& component) {
    return slot.iROMBase + static_cast<uint32_t>(component.iStart);
}

bool pointsinto(const KickstartRom& slot, const Component& component, uint32_t value) {
    return value - runaddress(slot, component) <= static_cast<uint32_t>(component.iSize);
}

bool requirerange(const KickstartRom& slot, int32_t component, int64_t start, int64_t size) {
    const bool fits = isinside(slot.pcROM, start, size);
    if (!fits) message(kResult, "ERROR: Component %d does not lie in its image\n", component);
    return fits;
}

bool requirefit(const KickstartRom& slot, int32_t component) {
    const Component& record = slot.component(component);
    return requirerange(slot, component, record.iStart, record.iSize);
}

namespace {

bool liesinside(int32_t reloc, int64_t size) { return reloc >= 0 && int64_t{reloc} + 4 <= size; }

} // namespace

void telloutside(int32_t reloc) { message(kResult, "ERROR: Reloc %d is outside its component\n", reloc); }

bool requireinside(int32_t reloc, int64_t size) {
    const bool inside = liesinside(reloc, size);
    if (!inside) telloutside(reloc);
    return inside;
}

void droprelocsoutside(std::vector<int32_t>& relocs, int32_t size) {
    std::erase_if(relocs, [size](int32_t reloc) { return !requireinside(reloc, size); });
    relocs.shrink_to_fit();
}

void makerelative(Bytes& bytes, std::span<const int32_t> relocs, uint32_t address) {
    for (const int32_t reloc : relocs) {
        if (!requireinside(reloc, static_cast<int64_t>(bytes.size()))) continue;
        const uint32_t absolute = *longat(bytes, reloc);
        static_cast<void>(putlong(bytes, reloc, absolute - address));
    }
}

Bytes extractof(const KickstartRom& slot, const Component& component) {
    const View bytes = part(slot.pcROM, component.iStart, component.iSize);
    Bytes extract(bytes.begin(), bytes.end());
    makerelative(extract, component.ipRelocs, runaddress(slot, component));
    return extract;
}

void patchrelocs(KickstartRom& slot, int32_t component) {
    const Component& record = slot.component(component);
    const uint32_t address = runaddress(slot, record);
    const bool istraced = isshown(kTrace);
    for (const int32_t reloc : record.ipRelocs) {
        if (!requireinside(reloc, record.iSize)) continue;
        const uint32_t value = iUINT32(record.pcExtract->data() + reloc) + address;
        if (istraced) {
            message(kTrace, "Patching %d position:%d\n", component, reloc);
            message(kTrace, "Reloc %d=%d (%08x)\n", component, reloc, value);
        }
        setlong(slot.pcROM.data() + record.iStart + reloc, value);
    }
}

int createextract(int32_t rom, int32_t component) {
    Component* record = requirerecord(rom, component);
    if (record == nullptr || !requirefit(*findslot(rom), component)) return 1;
    message(kTrace, "There are %d relocs\n", record->iRelocs());
    record->pcExtract = extractof(*findslot(rom), *record);
    return 0;
}

bool haswholeextract(const Component& component) {
    return component.pcExtract && std::ssize(*component.pcExtract) >= component.iSize;
}

bool requireextract(int32_t rom, int32_t component) {
    const Component& record = *findrecord(rom, component);
    if (!haswholeextract(record)) return createextract(rom, component) == 0;
    tellrelocsoutside(record);
    return true;
}

std::vector<int32_t> relocsinside(const Component& component) {
    std::vector<int32_t> inside = component.ipRelocs;
    std::erase_if(inside, [&](int32_t reloc) { return !liesinside(reloc, component.iSize); });
    return inside;
}

void tellrelocsoutside(const Component& component) {
    for (const int32_t reloc : component.ipRelocs)
        static_cast<void>(requireinside(reloc, component.iSize));
}

} // namespace vantorel
