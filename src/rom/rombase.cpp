#include "rom/rombase.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/store.h"
#include "shell/numbers.h"

#include <algorithm>

namespace vantorel {

namespace {

// Whether component `number` can follow its ROM; an error line when not. One without a whole extract gets it
// while the old base still counts.
bool ismovable(int32_t rom, int32_t number) {
    const Component& component = *findrecord(rom, number);
    if (component.ipRelocs.empty()) return true;
    if (!requirefit(*findslot(rom), number)) return false;
    const auto isin = [&](int32_t reloc) { return requireinside(reloc, component.iSize); };
    return std::ranges::all_of(component.ipRelocs, isin) && requireextract(rom, number);
}

bool aremovable(int32_t rom) {
    const int32_t count = findslot(rom)->iComponents();
    for (int32_t number = 0; number < count; ++number)
        if (!ismovable(rom, number)) return false;
    return true;
}

void repatch(KickstartRom& slot) {
    message(kResult, "Changing ROMBase, need to repatch components in ROM\n");
    int32_t counter = 0;
    for (int32_t number = 0; number < slot.iComponents(); ++number) {
        const Component& component = slot.psComponents[static_cast<size_t>(number)];
        if (component.ipRelocs.empty()) continue;
        message(kResult, "Repatching [%d] %s\n", counter, shown(component.pcLibString));
        patchrelocs(slot, number);
        // What the line above shows for the next component; the lines' readers know it as it is.
        counter = component.iRelocs();
    }
    message(kResult,
            "Warning, if kickity-split, SKSize or extended ROMHEADER exists, these have NOT been patched\n");
    message(kResult, "This code is incomplete, or at least not as smart as it should be\n");
}

} // namespace

int rombase(int32_t rom, const std::string& text) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr || !aremovable(rom)) return 1;
    slot->iROMBase = atoiorhex(text.c_str());
    message(kResult, "ROMBase set to %08x\n", slot->iROMBase);
    if (!slot->psComponents.empty()) repatch(*slot);
    return 0;
}

} // namespace vantorel
