#include "component/extract.h"

#include "base/message.h"

namespace vantorel {

uint32_t runaddress(const KickstartRom& slot, const Component& component) {
    return slot.iROMBase + static_cast<uint32_t>(component.iStart);
}

bool fitsimage(const KickstartRom& slot, const Component& component) {
    return isinside(slot.pcROM, component.iStart, component.iSize);
}

void droprelocsoutside(std::vector<int32_t>& relocs, int32_t size) {
    std::erase_if(relocs, [size](int32_t reloc) {
        const bool outside = reloc < 0 || int64_t{reloc} + 4 > size;
        if (outside) message(kResult, "ERROR: Reloc %d is outside its component\n", reloc);
        return outside;
    });
}

void makerelative(Bytes& bytes, const std::vector<int32_t>& relocs, uint32_t address) {
    for (const int32_t reloc : relocs) {
        const auto absolute = longat(bytes, reloc);
        if (!absolute) continue;
        const uint32_t relative = *absolute - address;
        message(kTrace, "Reloc at %d=%08x\n", reloc, relative);
        static_cast<void>(putlong(bytes, reloc, relative));
    }
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
    droprelocsoutside(record.ipRelocs, record.iSize);
    message(kTrace, "There are %d relocs\n", record.iRelocs());
    const View bytes = part(slot->pcROM, record.iStart, record.iSize);
    record.pcExtract.emplace(bytes.begin(), bytes.end());
    makerelative(*record.pcExtract, record.ipRelocs, runaddress(*slot, record));
    return 0;
}

} // namespace vantorel
