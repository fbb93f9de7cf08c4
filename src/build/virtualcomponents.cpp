#include "build/virtualcomponents.h"

#include "base/message.h"
#include "component/extract.h"
#include "rom/checksum.h"
#include "rom/header.h"
#include "rom/store.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace vantorel {

namespace {

KickstartRom* requirebuildable(int32_t rom) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) message(kResult, "ERROR, invalid ROM\n");
    return slot;
}

// The component's record; the bytes it stands for are written apart.
Component& append(KickstartRom& slot, std::string_view name, std::string_view type, int32_t start,
                  int32_t size) {
    Component& component = slot.psComponents.emplace_back();
    component.pcName = name;
    component.pcType = type;
    component.iStart = component.iFixedStart = start;
    component.iSize = size;
    component.iFixedEnd = slot.iUsed = start + size;
    return component;
}

uint8_t* bytesof(KickstartRom& slot, const Component& component) {
    return slot.pcROM.data() + component.iStart;
}

} // namespace

int addkickitysplit(int32_t rom) {
    KickstartRom* slot = requirebuildable(rom);
    if (slot == nullptr) return 1;
    if (slot->iUsed > iSplitOffset || slot->iSize() <= iSplitOffset + iSplitLength) {
        message(kResult, "ERROR, no room for kickity-split\n");
        return 1;
    }
    Component& split = append(*slot, "kickity-split", cTypeKickitySplit, iSplitOffset, iSplitLength);
    split.pcHash = "0x11114EF900F80002";
    std::ranges::copy(cSplit, bytesof(*slot, split));
    return 0;
}

namespace {

// Appends the component called `type` whose `size` bytes begin `fromend` bytes before the end of the image.
// Null, and an error line, when there is no such slot or what is in use reaches into it.
Component* appendatend(int32_t rom, std::string_view type, int32_t fromend, int32_t size) {
    KickstartRom* slot = requirebuildable(rom);
    if (slot == nullptr) return nullptr;
    const int32_t start = slot->iSize() - fromend;
    if (slot->iUsed <= start) return &append(*slot, type, type, start, size);
    const std::string used = type == cTypeVectors ? formatted(" Used=%d", slot->iUsed) : "";
    message(kResult, "ERROR, no room for %s%s\n", type.data(), used.c_str());
    return nullptr;
}

// Puts `value` into the component's bytes and names it after it.
void store(int32_t rom, Component& component, uint32_t value) {
    component.pcHash = hexlong(value);
    setlong(bytesof(*findslot(rom), component), value);
}

} // namespace

int addchecksum(int32_t rom) {
    Component* component = appendatend(rom, cTypeChecksum, iChecksumFromEnd, 4);
    if (component == nullptr) return 1;
    const uint32_t value = cChecksum(rom);
    message(kProgress, "Checksum calculated as %08x, use \"checksum\" to update if you change the rom\n",
            value);
    store(rom, *component, value);
    return 0;
}

int addsize(int32_t rom) {
    Component* component = appendatend(rom, cTypeSize, iSizeFromEnd, 4);
    if (component == nullptr) return 1;
    store(rom, *component, static_cast<uint32_t>(findslot(rom)->iSize()));
    return 0;
}

int addvectors(int32_t rom) {
    Component* component = appendatend(rom, cTypeVectors, iVectorsFromEnd, iVectorsFromEnd);
    if (component == nullptr) return 1;
    component->pcHash = "0x00180019001a001b001c001d001e001f";
    std::ranges::copy(cVectors, bytesof(*findslot(rom), *component));
    return 0;
}

int checksum(int32_t rom) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) {
        message(kResult, "Invalid ROM\n");
        return 1;
    }
    const int32_t number =
        findnumber(*slot, [](const Component& component) { return component.pcType == cTypeChecksum; });
    if (number < 0) {
        message(kResult, "Error: No checksum component\n");
        return 1;
    }
    if (!requirefit(*slot, number)) return 1;
    if (putlong(slot->pcROM, slot->component(number).iStart, cChecksum(rom))) return 0;
    message(kResult, "ERROR: Component %d is too small for a checksum\n", number);
    return 1;
}

} // namespace vantorel
