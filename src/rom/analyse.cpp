#include "rom/analyse.h"

#include "base/message.h"
#include "rom/checksum.h"
#include "rom/crossmatch.h"
#include "rom/gaps.h"
#include "rom/identify.h"
#include "rom/librarymatch.h"
#include "rom/listing.h"
#include "rom/store.h"

namespace vantorel {

namespace {

void showheader(int32_t rom, const KickstartRom& slot) {
    const View image = slot.pcROM;
    message(kResult, "Analyse %2d %s", rom, slotsummary(slot).c_str());
    message(kResult, "File size=%06x, Ident=%02x%02x, Entry=%08x, Ver=%d.%d, ExecVer=%d.%d\n",
            static_cast<uint32_t>(slot.iUsed), image[0], image[1], *longat(image, RomHeader::iEntry),
            *wordat(image, RomHeader::iVersion), *wordat(image, RomHeader::iRevision),
            *wordat(image, RomHeader::iExecVersion), *wordat(image, RomHeader::iExecRevision));
}

void allocatemap(KickstartRom& slot, int32_t count) {
    message(kProgress, "Allocating space for %d components (%lu bytes)\n", count,
            static_cast<unsigned long>(static_cast<size_t>(count) * sizeof(Component)));
    slot.psComponents.reserve(static_cast<size_t>(count));
}

void matchcomponents(int32_t rom) {
    if (iMaxRom < 2) {
        message(kResult, "Please load additional ROMs or ROM components to compare with\n");
        return;
    }
    matchotherroms(rom);
    matchhashlibrary(rom);
}

} // namespace

int analyserom(int32_t rom) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) return 0;
    if (slot->iUsed < iChecksumFromEnd) {
        message(kResult, "ERROR, ROM %d is too small to analyse (%d used bytes)\n", rom, slot->iUsed);
        return 0;
    }
    uint32_t base = slot->iROMBase;
    freecomponents(rom);
    showheader(rom, *slot);
    const int32_t tags = countromtags(*slot, base);
    if (slot->iROMBase == 0) slot->iROMBase = base;
    const FixedStructures fixed = findfixedstructures(*slot);
    allocatemap(*slot, tags + fixed.count());
    addmodules(*slot, base, fixed.hassplit);
    addfixedstructures(*slot, fixed);
    matchcomponents(rom);
    closegaps(*slot);
    return 0;
}

} // namespace vantorel
