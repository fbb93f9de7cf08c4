#include "rom/listing.h"

#include "base/message.h"
#include "hash/crc32.h"
#include "rom/checksum.h"

namespace vantorel {

std::string slotsummary(const KickstartRom& slot) {
    return formatted("ROMBase:%08x CRC32:0x%08x (%d of %d/%dk)\n", slot.iROMBase, slot.iCRC32, slot.iUsed,
                     slot.iSize(), slot.iSize() / 1024);
}

int32_t roms(int32_t current) {
    message(kResult, "ROMS:\n");
    for (int32_t i = 0; i < iMaxRom; ++i) {
        const KickstartRom& slot = psKickstartRoms[static_cast<size_t>(i)];
        message(kResult, "ROM%2d%c%s", i, i == current ? '*' : ' ', slotsummary(slot).c_str());
    }
    return iMaxRom;
}

namespace {

const char* unlessknown(int32_t fixed) { return fixed < 0 ? "?" : ""; }

void listgap(int64_t size) { message(kResult, "-- (Unallocated) %lld\n", static_cast<long long>(size)); }

// The bytes from the tag to the end, in the column's eleven characters.
std::string fromtagon(const Component& c, int32_t beforetag) {
    constexpr size_t most = 11;
    const auto bytes = static_cast<int32_t>(int64_t{c.iSize} - beforetag);
    return formatted("%d%s", bytes, unlessknown(c.iFixedEnd)).substr(0, most);
}

// A component with a ROMTAG is shown as the bytes before the tag, the tag's place, and the bytes from the tag
// on.
void listcomponent(int32_t number, const Component& c) {
    const auto beforetag = static_cast<int32_t>(int64_t{c.iROMTag} - c.iStart);
    if (c.iROMTag < 0) {
        message(kResult, "%2d %-30s %6d%s:%-6d%s %4d 0x%08x %s:%s\n", number, shown(c.pcName), c.iStart,
                unlessknown(c.iFixedStart), c.iSize, unlessknown(c.iFixedEnd), c.iRelocs(), c.iCRC32,
                shown(c.pcType), shown(c.pcHash));
    } else {
        const std::string fromtag = fromtagon(c, beforetag);
        message(kResult, "%2d %-30s %6d%s:%d:%-7s %4d 0x%08x %s:%s\n", number, shown(c.pcName), beforetag,
                unlessknown(c.iFixedStart), c.iROMTag, fromtag.c_str(), c.iRelocs(), c.iCRC32,
                shown(c.pcType), shown(c.pcHash));
    }
    if (c.pcLibString) message(kResult, "   %s\n", shown(c.pcLibString));
}

} // namespace

int32_t rom(int32_t n) {
    const KickstartRom* slot = findslot(n);
    if (slot == nullptr) return -1;
    message(kResult, "ROM %2d %s", n, slotsummary(*slot).c_str());
    message(kResult, "%s\n", shown(slot->pcTitle));
    const auto& components = slot->psComponents;
    if (!components.empty() && components[0].iStart != 0) listgap(components[0].iStart);
    for (size_t i = 0; i < components.size(); ++i) {
        listcomponent(static_cast<int32_t>(i), components[i]);
        if (i + 1 < components.size() && components[i].iEnd() < components[i + 1].iStart)
            listgap(components[i + 1].iStart - components[i].iEnd());
    }
    return n;
}

namespace {

void showheader(const KickstartRom& slot) {
    const View image = slot.pcROM;
    message(kAlways, "Size=%d/%dk, Ident=0x%04x, Entry=0x%06x, Ver=r%d.%d\n", slot.iSize(),
            slot.iSize() / 1024, *wordat(image, RomHeader::iIdent), *longat(image, RomHeader::iEntry),
            *wordat(image, RomHeader::iVersion), *wordat(image, RomHeader::iRevision));
}

void showsums(int32_t rom, const KickstartRom& slot) {
    const View image = slot.pcROM;
    const uint32_t computed = cChecksum(rom);
    const uint32_t stored = *longat(image, slot.iSize() - iChecksumFromEnd);
    const uint32_t size = *longat(image, slot.iSize() - iSizeFromEnd);
    if (computed != stored)
        message(kAlways, "IntSize=%d/%dk, Checksum=0x%08x/0x%08x, ROMBase=0x%08x\n",
                static_cast<int32_t>(size), static_cast<int32_t>(size >> 10), stored, computed,
                slot.iROMBase);
    else
        message(kAlways, "IntSize=%d/%dk, Checksum=0x%08x, ROMBase=0x%08x\n", static_cast<int32_t>(size),
                static_cast<int32_t>(size >> 10), stored, slot.iROMBase);
    const uint32_t crc = crc32buf(image);
    if (crc != slot.iCRC32)
        message(kAlways, "CRC32=0x%08x/0x%08x\n\n", slot.iCRC32, crc);
    else
        message(kAlways, "CRC32=0x%08x\n\n", crc);
}

} // namespace

int32_t modules(int32_t n) {
    const KickstartRom* slot = findslot(n);
    if (slot == nullptr) return -1;
    if (slot->iSize() < iChecksumFromEnd) {
        message(kResult, "ERROR, ROM %d is too small for a header (%d bytes)\n", n, slot->iSize());
        return -1;
    }
    showheader(*slot);
    showsums(n, *slot);
    for (const Component& component : slot->psComponents)
        if (component.pcType == cTypeLibrary)
            message(kAlways, "%06X %s\n", static_cast<uint32_t>(component.iROMTag),
                    component.pcLibString ? shown(component.pcLibString) : "Unknown");
    return n;
}

} // namespace vantorel
