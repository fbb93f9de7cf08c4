#include "rom/adopt.h"

#include "base/message.h"
#include "hash/crc32.h"

namespace vantorel {

namespace {

void deletecovered(KickstartRom& slot, size_t number) {
    auto& components = slot.psComponents;
    while (number + 1 < components.size()) {
        const Component& component = components[number];
        const Component& next = components[number + 1];
        if (next.iStart < component.iStart || next.iEnd() > component.iEnd()) return;
        message(kProgress, "Deleting redundant/hidden component\n");
        message(kProgress, "Next component [%s] should be deleted\n", shown(next.pcName));
        components.erase(components.begin() + static_cast<std::ptrdiff_t>(number) + 1);
    }
}

} // namespace

void settlecomponent(int32_t rom, int32_t number) {
    KickstartRom& slot = *findslot(rom);
    Component& component = slot.psComponents[static_cast<size_t>(number)];
    component.iCRC32 = crc32buf(*component.pcExtract);
    deletecovered(slot, static_cast<size_t>(number));
}

} // namespace vantorel
