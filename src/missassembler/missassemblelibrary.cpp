#include "missassembler/missassemblelibrary.h"

#include "base/files.h"
#include "base/message.h"
#include "base/text.h"
#include "component/extract.h"
#include "missassembler/entrypoints.h"
#include "missassembler/flow.h"
#include "missassembler/hints.h"
#include "missassembler/listing.h"
#include "missassembler/start.h"
#include "missassembler/walk.h"
#include "rom/store.h"

namespace vantorel {

namespace {

void walkcomponent(int32_t rom, int32_t component, ListingFile& listing) {
    Walk walk = startwalk(rom, component);
    message(kAlways, "ROM %d ROMBase %06X\n", rom, walk.slot.iROMBase);
    message(kAlways, "Missassembling %s\n", shown(walk.record.pcLibString));
    const int32_t entries = addromtagentries(walk);
    message(kAlways, "Found %d initial entry points\n", entries);
    addcomponenthints(walk);
    addromhints(walk);
    followentries(walk);
    listwalk(walk, listing);
}

void walkinto(ListingFile& listing, int32_t rom, int32_t component, bool istable) {
    const Component* record = findrecord(rom, component);
    if (record == nullptr) return message(kResult, "ERROR, ROM or component out of range\n");
    const KickstartRom& slot = *findslot(rom);
    listing.add(formatted("ROMBase=%06X\n", slot.iROMBase));
    listing.add(formatted("Component=%s\n", shown(record->pcLibString)));
    if (!istable) return message(kResult, "Unable to load ini file (missassemble.ini)\n");
    if (requirefit(slot, component)) walkcomponent(rom, component, listing);
}

} // namespace

void missassembleLibrary(int32_t rom, int32_t component) {
    const bool istable = readymissassembler();
    ListingFile listing;
    if (!listing.isopen()) return reportnotopened(cListingFile);
    walkinto(listing, rom, component, istable);
    listing.close();
}

} // namespace vantorel
