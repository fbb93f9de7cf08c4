#include "component/extract.h"

#include "base/message.h"

namespace vantorel {

uint32_t runaddress(const KickstartRom& slot, const Component& component) {
    return slot.iROMBase + static_cast<uint32_t>(component.iStart);
}

bool fitsimage(const KickstartRom& slot, const Component& component) {
    return isinside(slot.pcROM, component.iStart, component.iSize);
}

namespace {

// Whether the long at `reloc` lies inside `size` bytes; an error line when it does not.
bool requireinside(int32_t reloc, int64_t size) {
    const bool inside = reloc >= 0 && int64_t{reloc} + 4 <= size;
    if (!inside) message(kResult, "ERROR: Reloc %d is outside its component\n", reloc);
    return inside;
}

} // namespace

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

int createextract(int32_t rom, int32_t component) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return 1;
    if (component < 0 || component >= slot->iComponents()) {
        message(kResult, "ERROR: No such component\n");
        return 1;
    }
    Component& record = slot->psComponents[static_cast<size_t>(component)];
    if (!fitsimage(*slot, record)) {
        message(kResult, "ERROR: Component %d does not lie in its image\n", component);
        return 1;
    }
    message(kTrace, "There are %d relocs\n", record.iRelocs());
    record.pcExtract = extractof(*slot, record);
    return 0;
}

} // namespace vantorel
