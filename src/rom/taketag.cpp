#include "rom/taketag.h"

#include "rom/romtag.h"

namespace vantorel {

bool taketag(const KickstartRom& slot, Component& component) {
    uint32_t base = slot.iROMBase;
    const auto end = static_cast<int32_t>(component.iEnd());
    const auto tag = findromtag(slot.pcROM, component.iStart, end, base);
    component.iROMTag = tag ? static_cast<int32_t>(tag->iOffset) : -1;
    component.pcLibName = tag ? Text(tag->cName) : std::nullopt;
    component.pcLibString = tag ? Text(tag->cIdString) : std::nullopt;
    return tag.has_value();
}

} // namespace vantorel
