#include "build/virtualcomponents.h"

#include "base/message.h"
#include "component/extract.h"
#include "component/placement.h"
#include "rom/checksum.h"
#include "rom/header.h"
#include "rom/store.h"

#include <algorithm>
#include <array>
#include <string>

namespace vantorel {

namespace {

KickstartRom* requirebuildable(int32_t rom) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) message(kResult, "ERROR, invalid ROM\n");
    return slot;
}

// The component's record; the bytes it stands for are written apart.
Component& append(KickstartRom& slot, const char* name, const char* type, int32_t start, int32_t size) {
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

// The eight bytes: the first word of a 256K Kickstart, and a jump to the second word of the lower half.
constexpr int32_t iSplitSize = 8;
constexpr uint32_t iSplitFirst = 0x11114EF9;
constexpr uint32_t iSplitTarget = 0x00F80002;

constexpr std::array<uint16_t, 8> iVectors = {0x0018, 0x0019, 0x001A, 0x001B, 0x001C, 0x001D, 0x001E, 0x001F};

} // namespace

int addkickitysplit(int32_t rom) {
    KickstartRom* slot = requirebuildable(rom);
    if (slot == nullptr) return 1;
    if (slot->iUsed > iSize256K || slot->iSize() <= iSize256K + iSplitSize) {
        message(kResult, "ERROR, no room for kickity-split\n");
        return 1;
    }
    Component& split = append(*slot, "kickity-split", cTypeKickitySplit, iSize256K, iSplitSize);
    split.pcHash = "0x11114EF900F80002";
    setlong(bytesof(*slot, split), iSplitFirst);
    setlong(bytesof(*slot, split) + 4, iSplitTarget);
    return 0;
}

namespace {

// Appends the component called `type` whose `size` bytes begin `fromend` bytes before the end of the image.
// Null, and an error line, when there is no such slot or what is in use reaches into it.
Component* appendatend(int32_t rom, const char* type, int32_t fromend, int32_t size) {
    KickstartRom* slot = requirebuildable(rom);
    if (slot == nullptr) return nullptr;
    const int32_t start = slot->iSize() - fromend;
    if (slot->iUsed <= start) return &append(*slot, type, type, start, size);
    const std::string used = type == cTypeVectors ? formatted(" Used=%d", slot->iUsed) : "";
    message(kResult, "ERROR, no room for %s%s\n", type, used.c_str());
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
    uint8_t* place = bytesof(*findslot(rom), *component);
    for (const uint16_t vector : iVectors) {
        setword(place, vector);
        place += 2;
    }
    return 0;
}

int addunallocated(int32_t rom, int32_t bytes, int8_t fill) {
    const KickstartRom* slot = requirebuildable(rom);
    if (slot == nullptr) return -1;
    Component block;
    block.pcName = "Unallocated";
    block.pcHash = "Unallocated";
    block.pcType = cTypeData;
    block.iStart = -1;
    block.iSize = bytes;
    // What is larger than the whole image needs no bytes to be refused.
    if (bytes <= slot->iSize())
        block.pcExtract.emplace(static_cast<size_t>(bytes), static_cast<uint8_t>(fill));
    return addcomponent(rom, block);
}

int checksum(int32_t rom) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) {
        message(kResult, "Invalid ROM\n");
        return 1;
    }
    const auto found = std::ranges::find_if(
        slot->psComponents, [](const Component& component) { return component.pcType == cTypeChecksum; });
    if (found == slot->psComponents.end()) {
        message(kResult, "Error: No checksum component\n");
        return 1;
    }
    const auto number = static_cast<int32_t>(found - slot->psComponents.begin());
    if (!requirefit(*slot, number)) return 1;
    if (putlong(slot->pcROM, found->iStart, cChecksum(rom))) return 0;
    message(kResult, "ERROR: Component %d is too small for a checksum\n", number);
    return 1;
}

} // namespace vantorel
