#include "component/selection.h"

#include "base/message.h"
#include "rom/store.h"

namespace vantorel {

bool requireselectable(int32_t rom) {
    const bool isselectable = rom >= 0 && rom <= iMaxRom;
    if (!isselectable) message(kResult, "ROM out of range\n");
    return isselectable;
}

std::optional<std::vector<int32_t>> selectcomponents(int32_t rom, int32_t component) {
    if (!requireselectable(rom)) return std::nullopt;
    std::vector<int32_t> numbers;
    if (component != iEveryComponent) {
        numbers.push_back(component);
    } else if (const KickstartRom* slot = findslot(rom)) {
        for (int32_t number = 0; number < slot->iComponents(); ++number)
            if (!slot->component(number).isblank()) numbers.push_back(number);
    }
    return numbers;
}

void saveselected(int32_t rom, int32_t component, const std::string& name, SaveComponent save) {
    const auto numbers = selectcomponents(rom, component);
    if (!numbers) return;
    for (const int32_t number : *numbers) {
        if (findrecord(rom, number) != nullptr)
            save(rom, number, name);
        else
            message(kResult, "Component out of range or not found\n");
    }
}

} // namespace vantorel
