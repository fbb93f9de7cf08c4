#include "rom/rombase.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/store.h"
#include "shell/numbers.h"

#include <algorithm>

namespace vantorel {

namespace {

// Whether component `number` can follow its ROM; an error line when not.
bool requiremovable(const KickstartRom& slot, int32_t number) {
    const Component& component = slot.component(number);
    if (component.ipRelocs.empty()) return true;
    const auto isin = [&](int32_t reloc) { return requireinside(reloc, component.iSize); };
    return requirefit(slot, number) && std::ranges::all_of(component.ipRelocs, isin);
}

bool requiremovable(const KickstartRom& slot) {
    for (int32_t number = 0; number < slot.iComponents(); ++number)
        if (!requiremovable(slot, number)) return false;
    return true;
}

// What has relocs and no whole extract gets it while the old base still counts.
void completeextracts(int32_t rom) {
    const KickstartRom& slot = *findslot(rom);
    for (int32_t number = 0; number < slot.iComponents(); ++number)
        if (!slot.component(number).ipRelocs.empty()) requireextract(rom, number);
}

void repatch(KickstartRom& slot) {
    message(kResult, "Changing ROMBase, need to repatch components in ROM\n");
    int32_t counter = 0;
    for (int32_t number = 0; number < slot.iComponents(); ++number) {
        const Component& component = slot.component(number);
        if (component.ipRelocs.empty()) continue;
        message(kResult, "Repatching [%d] %s\n", counter, shown(component.pcLibString));
        patchrelocs(slot, number);
        // The number shown is that of the relocs patched before, and stays it.
        counter = component.iRelocs();
    }
    message(kResult,
            "Warning, if kickity-split, SKSize or extended ROMHEADER exists, these have NOT been patched\n");
    message(kResult, "This code is incomplete, or at least not as smart as it should be\n");
}

} // namespace

int rombase(int32_t rom, const std::string& text) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr || !requiremovable(*slot)) return 1;
    completeextracts(rom);
    slot->iROMBase = atoiorhex(text.c_str());
    message(kResult, "ROMBase set to %08x\n", slot->iROMBase);
    if (!slot->psComponents.empty()) repatch(*slot);
    return 0;
}

} // namespace vantorel
