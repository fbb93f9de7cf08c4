#include "missassembler/missassemblecomponent.h"

#include "base/bytes.h"
#include "base/message.h"
#include "base/text.h"
#include "component/extract.h"
#include "missassembler/bounds.h"
#include "missassembler/decode.h"
#include "missassembler/labels.h"
#include "missassembler/start.h"
#include "missassembler/structurelabels.h"
#include "rom/store.h"

#include <optional>
#include <string>

namespace vantorel {

namespace {

// The listing as it goes: `at` is the component offset that it has come to.
class OnePass {
public:
    OnePass(int32_t itsrom, int32_t itscomponent)
        : rom(itsrom), slot(*findslot(itsrom)), record(*findrecord(itsrom, itscomponent)),
          first(runaddress(slot, record)) {}

    // Lists the component and returns the CPU address that the listing ends at.
    uint32_t list();

private:
    [[nodiscard]] uint32_t address() const { return first + static_cast<uint32_t>(at); }
    uint32_t take(int32_t size);
    std::optional<char> takelabel();
    void resetposition(uint32_t label);
    void listitem(char type);
    void liststring();
    void listinitstruct();
    void listcommand(uint32_t command);
    void listvalues(uint32_t command, int32_t count);
    void listpadding();
    void listinstruction();
    [[nodiscard]] std::string relochints(const std::string& text, int32_t length) const;

    int32_t rom;
    const KickstartRom& slot;
    const Component& record;
    uint32_t first; // CPU address of the component's first byte
    int64_t at = 0;
};

// The next `size` bytes as a number; bytes beyond the end of the image are 0.
uint32_t OnePass::take(int32_t size) {
    InstructionBytes bytes = {.image = slot.pcROM, .offset = record.iStart + at};
    at += size;
    return bytes.take(size);
}

void OnePass::resetposition(uint32_t label) {
    message(kResult, "Missassember miss, reseting position:\n");
    message(kTrace, "Missassember miss, old position [%06x] new position [%06x]\n", address(), label);
    at = label - first;
}

// Takes the next label when the listing has come to it, prints it, and returns what it says of the bytes.
std::optional<char> OnePass::takelabel() {
    if (sLabels.empty() || address() < sLabels.begin()->iLabel) return std::nullopt;
    const StopLabel label = sLabels.extract(sLabels.begin()).value();
    if (address() > label.iLabel) resetposition(label.iLabel);
    if (label.cLabel.empty()) return StopType::cCode;
    message(kResult, "%s", label.cLabel.c_str() + 1);
    return label.cLabel[0];
}

void OnePass::listitem(char type) {
    switch (type) {
    case StopType::cPrint:
        return;
    case StopType::cLong:
        return message(kAlways, "\t: 0x%08X\n", take(4));
    case StopType::cWord:
        return message(kAlways, "\t: 0x%04X\n", take(2));
    case StopType::cString:
        return liststring();
    case StopType::cInitStruct:
        return listinitstruct();
    default:
        return listinstruction();
    }
}

void OnePass::liststring() {
    message(kAlways, "%06X \"", address());
    for (uint32_t byte = take(1); byte != 0; byte = take(1)) {
        if (byte == '\n')
            message(kAlways, "\\n");
        else if (byte == '\r')
            message(kAlways, "\\r");
        else
            message(kAlways, "%c", static_cast<int>(byte));
    }
    message(kAlways, "\\0");
    if (at % 2 != 0) {
        message(kAlways, "\\0");
        ++at;
    }
    message(kAlways, "\"\n");
}

// The commands of exec's InitStruct: what bits 7 and 6 of the command byte say of the destination, and bits 5
// and 4 of the size of what is stored there.
constexpr uint32_t iDestination = 0xC0;
constexpr uint32_t iRepeat = 0x40;
constexpr uint32_t iByteOffset = 0x80;
constexpr uint32_t iLongOffset = 0xC0;
constexpr uint32_t iSizeMask = 0x30;
constexpr uint32_t iLongs = 0x00;
constexpr uint32_t iWords = 0x10;
constexpr uint32_t iBytes = 0x20;

void OnePass::listinitstruct() {
    uint32_t place = address();
    for (uint32_t command = take(1); command != 0; command = take(1)) {
        message(kAlways, "%06X 0x%02X", place, command);
        listcommand(command);
        place = address();
    }
    const bool isodd = at % 2 != 0;
    message(kAlways, isodd ? "%06X 0x0000\n" : "%06X 0x00\n", place);
    if (isodd) ++at;
}

void OnePass::listcommand(uint32_t command) {
    const uint32_t destination = command & iDestination;
    const int32_t offsets = destination == iByteOffset ? 1 : destination == iLongOffset ? 3 : 0;
    for (int32_t i = 0; i < offsets; ++i)
        message(kAlways, "%02X", take(1));
    listvalues(command, destination == iRepeat ? 1 : static_cast<int32_t>(command & 7U) + 1);
    listpadding();
    message(kAlways, "\n");
}

void OnePass::listvalues(uint32_t command, int32_t count) {
    const uint32_t kind = command & iSizeMask;
    if (kind == iLongs || kind == iWords) {
        const int32_t size = kind == iLongs ? 4 : 2;
        listpadding();
        message(kAlways, "%0*X", size * 2, take(size));
        at += int64_t{size} * (count - 1);
    } else if (kind == iBytes) {
        message(kAlways, "%02X", take(1));
        at += count - 1;
    }
}

void OnePass::listpadding() {
    if (at % 2 == 0) return;
    message(kAlways, "00");
    ++at;
}

void OnePass::listinstruction() {
    const uint32_t place = address();
    MissText decoded;
    const auto offset = static_cast<int32_t>(record.iStart + at);
    const int32_t length = missassembleA(rom, offset, decoded, sMnemonic);
    std::string text = decoded.data();
    if (isshown(kProgress)) text = relochints(text, length);
    message(kResult, "%06X ", place);
    message(kResult, "%s\n", text.c_str());
    at += length;
}

// The text of the instruction of `length` bytes here, with a hint for each of its longs that is an address of
// the component and stands in the text.
std::string OnePass::relochints(const std::string& text, int32_t length) const {
    constexpr int32_t opcodeandlong = 6;
    std::string hinted = text;
    for (int64_t place = at; at + length - place >= opcodeandlong; place += 2) {
        const auto value = longat(slot.pcROM, record.iStart + place + 2);
        if (!value || *value < iMissMin || *value > iMissMax) continue;
        const auto reloc = static_cast<int32_t>(place + 2);
        message(kDetail, "Potential RELOC=%d\n", reloc);
        if (text.find(formatted("%6X", *value)) != std::string::npos)
            hinted += formatted(" #RELOC=%d", reloc);
    }
    return hinted;
}

uint32_t OnePass::list() {
    while (at < record.iSize - 1)
        listitem(takelabel().value_or(StopType::cCode));
    return address();
}

void setbounds(const KickstartRom& slot, int32_t component) {
    const auto& components = slot.psComponents;
    const auto number = static_cast<size_t>(component);
    const Component& record = components[number];
    const auto absolute = [&slot](int64_t offset) { return slot.iROMBase + static_cast<uint32_t>(offset); };
    iMissMin = runaddress(slot, record);
    iMissMax = absolute(record.iEnd());
    iMissMinLimit = number == 0 ? slot.iROMBase : absolute(components[number - 1].iEnd());
    iMissMaxLimit = absolute(number + 1 == components.size() ? slot.iSize() : components[number + 1].iStart);
    message(kResult, "Current allocation (0x%06X-0x%06x) potential maximum allocation (0x%06X-0x%06x)\n",
            iMissMin, iMissMax, iMissMinLimit, iMissMaxLimit);
}

// Suggests other bounds for the component when its code refers to addresses beyond its own.
void suggestbounds(const KickstartRom& slot, int32_t component) {
    const Component& record = slot.component(component);
    const uint32_t first = runaddress(slot, record);
    const bool iswhole = iMissMax == iMissMin + static_cast<uint32_t>(record.iSize);
    if (iMissMin == first && iswhole) return;
    if (iMissMin % 2 != 0)
        message(kResult,
                "Warning: odd START, this is probably wrong, perhaps there's some bad dissasembly\n");
    if (iMissMax % 2 != 0)
        message(kResult, "Warning: odd END, this is probably wrong, perhaps there's some bad dissasembly\n");
    message(kResult, "Component boundary (at least) 0x%06X-0x%06X\n", iMissMin, iMissMax);
    const auto offset = [&slot](uint32_t address) { return static_cast<int32_t>(address - slot.iROMBase); };
    if (iMissMin != first) message(kResult, "editcomponent %d START=%d\n", component, offset(iMissMin));
    if (!iswhole)
        message(kResult,
                "editcomponent %d END=%d\nNOTE: it's likely that the boundary is actually greater than "
                "this, as this address is referred to by the code,\nbut END is the first byte NOT part of "
                "the component, so keep adding a dozen or so until RTS/RTN?\n",
                component, offset(iMissMax));
}

void listcomponent(int32_t rom, int32_t component) {
    const KickstartRom& slot = *findslot(rom);
    message(kResult, "MissAssembling %s\n", shown(findrecord(rom, component)->pcLibString));
    message(kResult, "ROMBase %08x\n", slot.iROMBase);
    setbounds(slot, component);
    addstructurelabels(rom, component);
    const uint32_t end = OnePass(rom, component).list();
    iMissMax = std::max(iMissMax, end);
    if (!sLabels.empty() && end < sLabels.rbegin()->iLabel)
        message(kResult, "Missassember, premature end (component runs until at least 0x%06X):\n",
                sLabels.rbegin()->iLabel);
    suggestbounds(slot, component);
}

} // namespace

void missassembleComponent(int32_t rom, int32_t component) {
    const bool istable = readymissassembler();
    if (findrecord(rom, component) == nullptr)
        return message(kResult, "ERROR, ROM or component out of range\n");
    if (!istable) return message(kResult, "ERROR, unable to initialise the missassembler\n");
    if (requirefit(*findslot(rom), component)) listcomponent(rom, component);
}

} // namespace vantorel
