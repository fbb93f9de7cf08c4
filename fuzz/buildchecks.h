#pragma once
// What must be true of the program's state whatever has been typed.

#include "base/message.h"
#include "build/virtualcomponents.h"
#include "component/extract.h"
#include "component/hunkreader.h"
#include "component/loadable.h"
#include "hash/crc32.h"
#include "rom/listing.h"
#include "rom/rombase.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "support/checksums.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace vantorel::test {

/// Ends the process, so that the fuzzer keeps the input, unless `good`.
inline void expect(bool good, const char* promise) {
    if (good) return;
    std::fprintf(stderr, "not so: %s\n", promise);
    std::abort();
}

inline void checkaliases() {
    expect(pcAliasname.size() == pcAliasvalue.size(), "every alias has a value");
    expect(std::set(pcAliasname.begin(), pcAliasname.end()).size() == pcAliasname.size(),
           "the names of aliases are unique");
    expect(std::ranges::none_of(pcAliasname, &std::string::empty), "every alias has a name");
}

/// The loadable form of a component is read as the component it was made of, less the relocs outside it.
inline void checkloadable(int32_t rom, int32_t number) {
    Bytes file;
    uint32_t crc = 0;
    const int32_t length = loadedlib2loadablelib(rom, number, file, crc);
    const Component& component = *findrecord(rom, number);
    if (length == 0 || !haslibraryform(component) || component.iSize % 4 != 0) return;
    expect(length == std::ssize(file) && crc == crc32buf(file), "a file has its length and CRC32");
    std::vector<int32_t> relocs = component.ipRelocs;
    std::erase_if(relocs, [&](int32_t reloc) { return int64_t{reloc} + 4 > component.iSize; });
    std::ranges::sort(relocs);
    Component read;
    expect(librarybuffertocomponent(file, 0, length, read) == 0, "a loadable form is a hunk file");
    expect(read.pcType == component.pcType, "the type comes back");
    expect(read.iSize == component.iSize, "the size comes back");
    expect(read.ipRelocs == relocs, "the relocs come back");
    expect(std::ranges::equal(*read.pcExtract, part(*component.pcExtract, 0, component.iSize)),
           "the extract comes back");
}

/// Whether the relocated longs of the image are just those that its components' extracts tell of: no two
/// overlap, and none has been written over since its extract was made.
inline bool isrelocatable(const KickstartRom& slot) {
    std::vector<int64_t> longs;
    for (const Component& component : slot.psComponents) {
        if (component.ipRelocs.empty()) continue;
        if (!isinside(slot.pcROM, component.iStart, component.iSize)) return false;
        for (const int32_t reloc : component.ipRelocs)
            longs.push_back(int64_t{component.iStart} + reloc);
        if (component.pcExtract && *component.pcExtract != extractof(slot, component)) return false;
    }
    std::ranges::sort(longs);
    const auto meets = [](int64_t one, int64_t next) { return next - one < 4; };
    return std::ranges::adjacent_find(longs, meets) == longs.end();
}

/// A ROM that is moved away and back is as before.
inline void checkmoving(int32_t rom) {
    KickstartRom& slot = *findslot(rom);
    const std::string base = hexlong(slot.iROMBase);
    const std::string elsewhere = hexlong(slot.iROMBase + 0x00345678);
    const Bytes before = slot.pcROM;
    const bool isconsistent = isrelocatable(slot);
    if (rombase(rom, base) != 0) {
        expect(slot.pcROM == before, "a refused move changes nothing");
        return;
    }
    if (isconsistent) expect(slot.pcROM == before, "a move to the same base changes nothing");
    const Bytes here = slot.pcROM;
    expect(rombase(rom, elsewhere) == 0, "what can be moved can be moved on");
    expect(rombase(rom, base) == 0, "what can be moved can be moved back");
    expect(slot.pcROM == here, "moving away and back leaves the image as it was");
}

inline void checkcomponent(int32_t rom, int32_t number) {
    const Component& component = *findrecord(rom, number);
    for (const Text* text : {&component.pcName, &component.pcHash, &component.pcType, &component.pcLibName,
                             &component.pcLibString})
        expect(!*text || (*text)->find('\0') == std::string::npos, "a text has no NUL in it");
    expect(std::ranges::all_of(component.ipRelocs, [](int32_t reloc) { return reloc >= 0; }),
           "no reloc lies before its component");
    checkloadable(rom, number);
}

/// Of a ROM that was only ever added to and deleted from: its components lie in it one behind the other, the
/// checksum can be made good.
inline void checkbuilt(int32_t rom) {
    const KickstartRom& slot = *findslot(rom);
    const bool hassum = checksum(rom) == 0;
    int64_t end = 0;
    for (const Component& component : slot.psComponents) {
        expect(component.iStart >= end, "the components ascend and do not overlap");
        expect(isinside(slot.pcROM, component.iStart, component.iSize), "the components lie in their image");
        end = component.iEnd();
    }
    expect(slot.iUsed >= end, "what is in use reaches to the last component");
    if (hassum && slot.iSize() % 4 == 0)
        expect(longat(slot.pcROM, slot.iSize() - 24) == kickstartsum(slot.pcROM), "the checksum is right");
}

inline void checkslot(int32_t rom) {
    const KickstartRom& slot = *findslot(rom);
    expect(slot.iUsed >= 0 && slot.iUsed <= slot.iSize(), "no more of an image is used than there is");
    expect(slot.iComponents() <= iComponentsMost, "there are not too many components");
    // Of a ROM as large as somebody may type, the copies would take all memory.
    if (slot.iSize() <= 16 << 20) checkmoving(rom);
    for (int32_t number = 0; number < slot.iComponents(); ++number)
        checkcomponent(rom, number);
}

/// All of the above of all slots, and the listings at the highest level.
inline void checkeverything() {
    checkaliases();
    expect(iMaxRom >= 0 && iMaxRom <= iRomSlots, "there are as many slots as there can be");
    for (int32_t rom = 0; rom < iMaxRom; ++rom)
        checkslot(rom);
    iLogLevel = 10;
    roms(iCurrentROM);
    for (int32_t n = 0; n < iMaxRom; ++n) {
        rom(n);
        if (findslot(n)->iSize() < 65536) modules(n); // which takes long over the sums of large ones
    }
}

} // namespace vantorel::test
