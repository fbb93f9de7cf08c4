#include "missassembler/structurelabels.h"

#include "base/bytes.h"
#include "base/message.h"
#include "base/text.h"
#include "component/extract.h"
#include "missassembler/bounds.h"
#include "missassembler/labels.h"
#include "rom/romtag.h"
#include "rom/store.h"

#include <array>
#include <string>

namespace vantorel {

namespace {

class Structures {
public:
    Structures(int32_t itsrom, int32_t itscomponent)
        : rom(itsrom), slot(*findslot(itsrom)), first(runaddress(slot, *findrecord(itsrom, itscomponent))) {}

    void addromtag(int32_t tag);

private:
    [[nodiscard]] uint32_t longataddress(uint32_t address) const;
    [[nodiscard]] std::optional<uint16_t> wordataddress(uint32_t address) const;
    void add(uint32_t address, char type, const std::string& text) const;
    void addautoinit(uint32_t table) const;
    void addvectors(uint32_t table) const;
    void addwordvectors(uint32_t table) const;

    int32_t rom;
    const KickstartRom& slot;
    uint32_t first; // CPU address of the component's first byte
};

// What lies outside the image is 0, no pointer.
uint32_t Structures::longataddress(uint32_t address) const {
    return longat(slot.pcROM, int64_t{address} - slot.iROMBase).value_or(0);
}

std::optional<uint16_t> Structures::wordataddress(uint32_t address) const {
    return wordat(slot.pcROM, int64_t{address} - slot.iROMBase);
}

void Structures::add(uint32_t address, char type, const std::string& text) const {
    // The listing begins at the first byte and never comes to what is before it.
    if (address < first) return checkaddressbound(rom, address);
    addlabel(rom, address, type + text);
}

void Structures::addromtag(int32_t tag) {
    if (!isinside(slot.pcROM, tag, RomTag::iLength)) return;
    const uint8_t* const fields = slot.pcROM.data() + tag;
    add(iUINT32(fields + RomTag::iEndSkip), StopType::cCode, "ENDSKIP:\n");
    add(iUINT32(fields + RomTag::iName), StopType::cString, "NAME:\n");
    add(iUINT32(fields + RomTag::iIdString), StopType::cString, "IDSTRING:\n");
    const uint32_t init = iUINT32(fields + RomTag::iInit);
    if ((fields[RomTag::iFlags] & RomTag::cAutoInit) != 0)
        addautoinit(init);
    else
        add(init, StopType::cCode, "INIT:\n");
}

void Structures::addautoinit(uint32_t table) const {
    add(table, StopType::cLong, formatted("%06X AUTOINIT:\n dataSize:", table));
    add(table + AutoInit::iVectors, StopType::cLong, " vectors:");
    add(table + AutoInit::iInitStruct, StopType::cLong, " InitStruct():");
    add(table + AutoInit::iInit, StopType::cLong, " LibraryInit():");
    const uint32_t initstruct = longataddress(table + AutoInit::iInitStruct);
    if (initstruct == 0) return message(kResult, "AutoInit flag set but no autoinit call\n");
    add(initstruct, StopType::cInitStruct, "INIT InitStruct():\n");
    const uint32_t init = longataddress(table + AutoInit::iInit);
    if (init != 0) add(init, StopType::cCode, "LibraryInit():\n");
    addvectors(longataddress(table + AutoInit::iVectors));
}

void Structures::addvectors(uint32_t table) const {
    const uint16_t firstword = wordataddress(table).value_or(0);
    message(kResult, "\nVECTORS[%08x]\n", table);
    message(kResult, "\nFIRST VECTOR[%04x]\n", firstword);
    if (firstword == iWordVectors)
        addwordvectors(table);
    else
        add(table, StopType::cLong, "INIT Vectors: \n");
}

std::string functionname(int32_t number) {
    constexpr std::array<const char*, 4> standard = {"Open()", "Close()", "Expunge()", "Reserved()"};
    if (number < std::ssize(standard)) return standard[static_cast<size_t>(number)];
    return formatted("Function%d()", number);
}

void Structures::addwordvectors(uint32_t table) const {
    add(table, StopType::cWord, "INIT Vector table start");
    uint32_t entry = table + 2;
    for (int32_t number = 0; const auto word = wordataddress(entry); ++number, entry += 2) {
        if (*word == iWordVectors) return add(entry, StopType::cWord, "INIT Vector table end");
        // Functions before the table come out 64 KiB too high: the listing has never known their sign.
        const uint32_t function = table + *word;
        const std::string name = functionname(number);
        add(function, StopType::cCode, "Library Vector " + name + ":\n");
        add(entry, StopType::cWord, formatted("INIT 0x%06X LVO %s", function, name.c_str()));
    }
}

} // namespace

void addstructurelabels(int32_t rom, int32_t component) {
    const int32_t tag = findrecord(rom, component)->iROMTag;
    // A component that begins with the image has long been taken to have no tag at 0.
    if (tag > 0) Structures(rom, component).addromtag(tag);
}

} // namespace vantorel
