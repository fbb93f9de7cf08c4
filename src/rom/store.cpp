#include "rom/store.h"

#include "base/message.h"

namespace vantorel {

std::array<KickstartRom, iRomSlots> psKickstartRoms;
int32_t iMaxRom = 0;
int32_t iCurrentROM = -1;

KickstartRom* findslot(int32_t rom) {
    if (rom < 0 || rom >= iMaxRom) return nullptr;
    return &psKickstartRoms[static_cast<size_t>(rom)];
}

KickstartRom* requireslot(int32_t rom) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) message(kResult, "ERROR, No current ROM\n");
    return slot;
}

Component* findrecord(int32_t rom, int32_t component) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr || component < 0 || component >= slot->iComponents()) return nullptr;
    return &slot->component(component);
}

Component* requirerecord(int32_t rom, int32_t component) {
    if (requireslot(rom) == nullptr) return nullptr;
    Component* record = findrecord(rom, component);
    if (record == nullptr) message(kResult, "ERROR: No such component\n");
    return record;
}

int32_t newrom(int32_t size, uint8_t fill) {
    if (iMaxRom == iRomSlots) {
        message(kResult, "Sorry, 20 ROMs maximum\n");
        return -1;
    }
    if (iMaxRom == 0) message(kProgress, "First ROM %d bytes\n", size);
    KickstartRom slot;
    slot.pcTitle = "Unnamed";
    slot.pcROM.assign(static_cast<size_t>(size), fill);
    slot.cFill = fill;
    psKickstartRoms[static_cast<size_t>(iMaxRom)] = std::move(slot);
    return iMaxRom++;
}

std::string identityname(const KickstartRom& slot) {
    return hexlong(slot.iCRC32) + "." + shown(slot.pcTitle);
}

int romname(int32_t rom, const std::string& text) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return 1;
    slot->pcTitle = text;
    message(kResult, "ROMName set to %s\n", shown(slot->pcTitle));
    return 0;
}

int32_t getromdata(int32_t rom, RomData& record) {
    if (rom == -1) return iMaxRom;
    const KickstartRom* slot = findslot(rom);
    if (slot == nullptr) return -1;
    record = {slot->iComponents(), slot->iSize(), slot->iROMBase, cut(shown(slot->pcTitle), iRecordText)};
    return rom;
}

namespace {

void narratefreeing(int32_t number, const Component& component) {
    const void* extract = component.pcExtract ? component.pcExtract->data() : nullptr;
    message(kAlways, "Freeing component %d\n", number);
    message(kAlways, "Freeing name %d [%p]\n", number, address(component.pcName));
    message(kAlways, "Freeing hash %d [%p]\n", number, address(component.pcHash));
    message(kAlways, "Freeing relocs %d [%p]\n", number, static_cast<const void*>(component.ipRelocs.data()));
    message(kAlways, "Freeing extract %d [%p]\n", number, extract);
    message(kAlways, "Freeing libname %d [%p]\n", number, address(component.pcLibName));
    message(kAlways, "Freeing libstring %d [%p]\n", number, address(component.pcLibString));
}

} // namespace

void freecomponents(int32_t rom) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return;
    message(kAlways, "Freeing psComponents [%p]\n", static_cast<const void*>(slot->psComponents.data()));
    for (int32_t number = 0; number < slot->iComponents(); ++number)
        narratefreeing(number, slot->component(number));
    slot->psComponents = {};
}

int destroycomponent(const Component& /*component*/) { return 0; }

void freeroms() {
    message(kAlways, "There are %d ROMs\n", iMaxRom);
    for (int32_t rom = 0; rom < iMaxRom; ++rom) {
        KickstartRom& slot = psKickstartRoms[static_cast<size_t>(rom)];
        message(kAlways, "ROM %d has %d Components\n", rom, slot.iComponents());
        freecomponents(rom);
        message(kAlways, "Freeing ROM %d\n", rom);
        message(kAlways, "Freeing pcROM [%p]\n", static_cast<const void*>(slot.pcROM.data()));
        message(kAlways, "Freeing pcTitle [%p]\n", address(slot.pcTitle));
        message(kAlways, "Freeing pcText [%p]\n", address(slot.pcText));
        slot = KickstartRom{};
    }
    iMaxRom = 0;
    iCurrentROM = -1;
}

} // namespace vantorel
