#include "rom/identify.h"

#include "base/message.h"
#include "rom/checksum.h"
#include "rom/romtag.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace vantorel {

namespace {

// A Kickity-Split begins so, wherever in the lower half it jumps to.
constexpr View cSplitMarker = View(cSplit).first(5);

// The vectors, less the first word, which may be damaged without harm.
constexpr View cVectorTail = View(cVectors).subspan(2);

View used(const KickstartRom& slot) { return part(slot.pcROM, 0, slot.iUsed); }

bool holds(View image, int64_t offset, View bytes) {
    return isinside(image, offset, static_cast<int64_t>(bytes.size())) &&
           std::ranges::equal(part(image, offset, static_cast<int64_t>(bytes.size())), bytes);
}

std::string hexof(View bytes) {
    std::string text = "0x";
    for (const uint8_t byte : bytes)
        text += formatted("%02x", byte);
    return text;
}

// Reports the tag at `offset`; returns where the scan goes on.
int64_t skiptag(View image, int32_t offset, uint32_t base) {
    const uint32_t skip = *longat(image, offset + RomTag::iEndSkip) - base;
    const auto end = static_cast<int32_t>(skip);
    if (end >= offset) {
        message(kResult, "ROMTAG (0x%08x) found at %d, skipping to %d\n", base, offset, end);
        return std::max<int64_t>(end, int64_t{offset} + 1);
    }
    message(kResult,
            "ROMTAG (0x%08x) found at %d, has and ENDSKIP (0x%08x) before the ROMTAG, possibly bad, skipping "
            "26 bytes\n",
            base, offset, skip);
    return int64_t{offset} + RomTag::iLength + 1;
}

bool findsplit(const KickstartRom& slot) {
    if (slot.iSize() != iSize512K || slot.pcROM[0] != RomHeader::cFirstByte) return false;
    const bool found = holds(slot.pcROM, iSplitOffset, cSplitMarker);
    if (found)
        message(kProgress, "Virtual component: Kickity-split\n");
    else
        message(kResult, "512k ROM but no Kickity-Split\n");
    return found;
}

} // namespace

int32_t countromtags(const KickstartRom& slot, uint32_t& base) {
    const View image = slot.pcROM;
    int32_t count = 0;
    for (int64_t i = 0; (i = nextmatchword(image, i, slot.iUsed)) < slot.iUsed;) {
        const auto candidate = romtagbase(image, i);
        if (candidate && base == 0) base = *candidate;
        if (candidate && *candidate == base) {
            ++count;
            i = skiptag(image, static_cast<int32_t>(i), base);
        } else {
            ++i;
        }
    }
    message(kResult, "There are %d ROMTAGs\n", count);
    return count;
}

FixedStructures findfixedstructures(const KickstartRom& slot) {
    const View image = used(slot);
    FixedStructures fixed;
    fixed.iComputed = cChecksumData(image);
    fixed.iStored = *longat(image, slot.iUsed - iChecksumFromEnd);
    fixed.iInternalSize = *longat(image, slot.iUsed - iSizeFromEnd);

    fixed.hassplit = findsplit(slot);
    fixed.haschecksum = fixed.iStored == fixed.iComputed;
    if (fixed.haschecksum)
        message(kProgress, "Virtual component: Checksum\n");
    else
        message(kResult, "Checksum calculated as %08x but is %08x\n", fixed.iComputed, fixed.iStored);
    fixed.hassize = fixed.iInternalSize == static_cast<uint32_t>(slot.iSize());
    if (fixed.hassize) message(kProgress, "Virtual component: Size\n");
    message(kResult, "IntSize=%06x, Checksum=%08x/%08x\n", fixed.iInternalSize, fixed.iStored,
            fixed.iComputed);
    fixed.hasvectors = holds(image, slot.iUsed - static_cast<int64_t>(cVectorTail.size()), cVectorTail);
    if (fixed.hasvectors) message(kProgress, "Virtual component: Vectors\n");
    return fixed;
}

namespace {

Component fixedcomponent(std::string_view type, int32_t start, int32_t size, std::string hash) {
    message(kResult, "Extra component: %s\n", type.data());
    Component component;
    component.pcName = type;
    component.pcType = type;
    component.iStart = component.iFixedStart = start;
    component.iSize = size;
    component.iFixedEnd = -1;
    component.pcHash = std::move(hash);
    return component;
}

Component splitcomponent(const KickstartRom& slot) {
    const View bytes = part(slot.pcROM, iSplitOffset, iSplitLength);
    Component split = fixedcomponent(cTypeKickitySplit, iSplitOffset, iSplitLength, hexof(bytes));
    split.iFixedStart = -1;
    split.iFixedEnd = iSplitOffset + iSplitLength;
    split.pcExtract.emplace(bytes.begin(), bytes.end());
    return split;
}

Component modulecomponent(const RomTagInfo& tag) {
    Component component;
    component.pcName = component.pcLibName = tag.cName;
    component.pcLibString = tag.cIdString;
    component.pcType = cTypeLibrary;
    component.iStart = component.iROMTag = static_cast<int32_t>(tag.iOffset);
    component.iFixedStart = component.iFixedEnd = -1;
    component.iSize = tag.iEndSkip;
    if (tag.iEndSkip < RomTag::iLength) {
        message(kResult, "Negative EndSkip (%d), setting to 26\n", tag.iEndSkip);
        component.iSize = RomTag::iLength;
    }
    return component;
}

} // namespace

void addmodules(KickstartRom& slot, uint32_t base, bool hassplit) {
    constexpr int64_t furthest = std::numeric_limits<int32_t>::max();
    auto& components = slot.psComponents;
    int32_t from = 0;
    while (const auto tag = findromtag(slot.pcROM, from, slot.iUsed, base)) {
        if (slot.iComponents() >= iComponentsMost) {
            message(kResult, "ERROR: More ROMTAGs than a ROM can hold, leaving off at %u\n", tag->iOffset);
            return;
        }
        const bool above = tag->iOffset > static_cast<uint32_t>(iSplitOffset);
        if (hassplit && above && !components.empty() && components.back().iStart < iSplitOffset)
            components.push_back(splitcomponent(slot));
        components.push_back(modulecomponent(*tag));
        from = static_cast<int32_t>(std::min(components.back().iEnd(), furthest));
    }
}

void addfixedstructures(KickstartRom& slot, const FixedStructures& fixed) {
    auto& components = slot.psComponents;
    if (fixed.haschecksum)
        components.push_back(
            fixedcomponent(cTypeChecksum, slot.iUsed - iChecksumFromEnd, 4, hexlong(fixed.iComputed)));
    if (fixed.hassize)
        components.push_back(
            fixedcomponent(cTypeSize, slot.iUsed - iSizeFromEnd, 4, hexlong(fixed.iInternalSize)));
    if (fixed.hasvectors) {
        const int32_t start = slot.iUsed - iVectorsFromEnd;
        components.push_back(fixedcomponent(cTypeVectors, start, iVectorsFromEnd,
                                            hexof(part(slot.pcROM, start, iVectorsFromEnd))));
        components.back().iFixedEnd = slot.iUsed;
    }
}

} // namespace vantorel
