#include "rom/adopt.h"

#include "base/message.h"
#include "hash/crc32.h"

#include <algorithm>

namespace vantorel {

namespace {

void deletecovered(KickstartRom& slot, size_t number) {
    auto& components = slot.psComponents;
    const Component& component = components[number];
    const auto first = components.begin() + static_cast<std::ptrdiff_t>(number) + 1;
    const auto last = std::find_if(first, components.end(), [&](const Component& next) {
        return next.iStart < component.iStart || next.iEnd() > component.iEnd();
    });
    for (auto next = first; next != last; ++next) {
        message(kProgress, "Deleting redundant/hidden component\n");
        message(kProgress, "Next component [%s] should be deleted\n", shown(next->pcName));
    }
    components.erase(first, last);
}

} // namespace

void adoptcomponent(KickstartRom& slot, size_t number, Component found) {
    found.iCRC32 = crc32buf(*found.pcExtract);
    slot.psComponents[number] = std::move(found);
    deletecovered(slot, number);
}

} // namespace vantorel
