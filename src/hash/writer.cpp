#include "hash/writer.h"

#include "audit/basename.h"
#include "base/files.h"
#include "base/message.h"
#include "base/settings.h"
#include "component/extract.h"
#include "component/loadable.h"
#include "component/selection.h"
#include "hash/crc32.h"
#include "hash/hashfile.h"
#include "hash/library.h"
#include "rom/store.h"

#include <algorithm>
#include <vector>

namespace vantorel {

namespace {

// The text of a hash file. A piece is one line or a whole section's beginning, and is cut where it grows
// longer than any reader's buffer.
class HashText {
public:
    void add(const std::string& piece) { text += piece.substr(0, iPieceMost); }

    [[nodiscard]] View bytes() const { return textbytes(text); }

private:
    static constexpr size_t iPieceMost = 1023;
    std::string text;
};

HashText romtext(const KickstartRom& slot) {
    HashText text;
    text.add(formatted("[%s]\nTitle=%s\nText=%s\nRomBase=0x%08x\nFileType=Kickstart\n\n", cDescriptionSection,
                       shown(slot.pcTitle), shown(slot.pcText), slot.iROMBase));
    text.add(formatted("[%s]\n", cComponentsSection));
    for (const Component& component : slot.psComponents)
        if (!component.isblank())
            text.add(formatted("%s=%d,%d,%s:%s\n", shown(component.pcName), component.iStart, component.iSize,
                               shown(component.pcType), shown(component.pcHash)));
    return text;
}

// Of a component that lies in its image, with those of its relocs that lie in it.
HashText componenttext(const Component& component, const std::vector<int32_t>& relocs) {
    HashText text;
    text.add(formatted("[%s]\nTitle=%s\nText=%s\nSize=%d\nROMTAG=%d\nRELOCS=%d\nFileType=Loadable "
                       "Library\n\n[Display]\nColour=0x555555\nIcon=153\n\n[%s]\n",
                       cDescriptionSection, shown(component.pcLibString), shown(component.pcName),
                       component.iSize, component.iROMTag - component.iStart,
                       static_cast<int32_t>(relocs.size()), cRelocSection));
    for (const int32_t reloc : relocs)
        text.add(formatted("RELOC=%-10d\n", reloc));
    return text;
}

} // namespace

int saveromhash(int32_t rom, const std::string& name) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) return 1;
    slot->iCRC32 = crc32buf(slot->pcROM);
    return savefile(savepath(name.empty() ? identityname(*slot) : name), romtext(*slot).bytes());
}

namespace {

void saveonehash(int32_t rom, int32_t number, const std::string& name) {
    const Component& component = *findrecord(rom, number);
    const std::string path = savepath(name.empty() ? shown(component.pcHash) : name);
    message(kProgress, name.empty() ? "No savefile given, using default %s\n" : "Savefile given, using %s\n",
            path.c_str());
    message(kProgress, "Saving component hash=%d (%s,%d relocs) from ROM %d to file %s\n", number,
            shown(component.pcName), component.iRelocs(), rom, path.c_str());
    if (!requirefit(*findslot(rom), number)) return;
    tellrelocsoutside(component);
    const std::vector<int32_t> relocs = relocsinside(component);
    if (relocs.empty()) {
        message(kResult, "No relocs, ignoring\n");
        return;
    }
    switch (writefile(path, componenttext(component, relocs).bytes())) {
    case WriteResult::Written:
        return;
    case WriteResult::NotOpened:
        message(kResult, "Unable to open output file\n");
        return;
    case WriteResult::NotWritten:
        reportnotwritten(path);
    }
}

} // namespace

void savecomponenthash(int32_t rom, int32_t component, const std::string& name) {
    saveselected(rom, component, name, saveonehash);
}

namespace {

std::string withoutblanks(std::string name) {
    std::ranges::replace(name, ' ', '_');
    return name;
}

// The name of a component that has relocs: the library's, if it has one.
void canonisebyform(int32_t rom, int32_t number) {
    Component& component = *findrecord(rom, number);
    message(kTrace, "Hashing component=%2d %s from ROM=%d\n", number, shown(component.pcName), rom);
    Bytes form;
    uint32_t crc = 0;
    if (loadedlib2loadablelib(rom, number, form, crc) == 0) return;
    message(kRaw, "CRC:%08x\n", crc);
    const std::string hash = hexlong(crc);
    const std::string& path = findhashfile(hash.c_str());
    if (path.empty()) {
        component.pcHash = withoutblanks(hash + "." + shown(component.pcLibString));
        return;
    }
    message(kProgress, "Hashfile:%s\n", path.c_str());
    component.pcHash = mBasename(path.c_str());
}

void canoniseone(int32_t rom, int32_t number) {
    Component& component = *findrecord(rom, number);
    if (!component.ipRelocs.empty()) {
        canonisebyform(rom, number);
    } else if (component.pcLibString) {
        const char* known = component.isverified() ? "Complete" : "Incomplete";
        component.pcHash = withoutblanks(
            formatted("%s.%08x.%s", known, findslot(rom)->iCRC32, shown(component.pcLibString)));
    } else {
        message(kProgress, "Ignoring component %d, no relocs (and no ROMTAG)\n", number);
    }
}

} // namespace

void canonisecomponent(int32_t rom, int32_t component) {
    const auto numbers = selectcomponents(rom, component < 0 ? iEveryComponent : component);
    if (!numbers) return;
    for (const int32_t number : *numbers) {
        if (findrecord(rom, number) != nullptr)
            canoniseone(rom, number);
        else
            message(kResult, "Component [%d] out of range or not found max=%d\n", number,
                    findslot(rom) != nullptr ? findslot(rom)->iComponents() : 0);
    }
}

} // namespace vantorel
