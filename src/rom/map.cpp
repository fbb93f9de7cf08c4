#include "rom/map.h"

#include "base/message.h"
#include "component/extract.h"
#include "component/relocs.h"
#include "hash/crc32.h"
#include "hash/hashfile.h"
#include "hash/ini.h"
#include "hash/library.h"
#include "rom/checksum.h"
#include "rom/layout.h"
#include "rom/store.h"
#include "rom/taketag.h"
#include "shell/numbers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace vantorel {

namespace {

// The type words of component lines, in the order in which they are tried.
constexpr auto cTypeWords = std::to_array<std::string_view>(
    {cTypeLibrary, "Device", "ROMHeader", cTypeKickitySplit, cTypeChecksum, "BadData", cTypeData, cTypeSize,
     cTypeVectors, "Loadable Library", "Kickstart ROM", "Extended ROM"});

// A burner that fills a larger chip repeats the image.
View withoutoverburn(View data) {
    if (data.size() == iSize1M && isdoubled(data)) {
        message(kResult, "Overburnt 512k ROM, loading the first half\n");
        data = data.first(iSize512K);
    }
    if (data.size() == iSize512K && isdoubled(data)) {
        message(kResult, "Overburnt 256k ROM, loading the first half\n");
        data = data.first(iSize256K);
    }
    return data;
}

void placeimage(KickstartRom& slot, View data) {
    slot.psComponents.clear();
    if (slot.pcROM.size() < data.size())
        slot.pcROM.assign(data.begin(), data.end());
    else
        std::ranges::copy(data, slot.pcROM.begin());
    slot.cFill = data.size() < iChecksumFromEnd ? uint8_t{0} : data[data.size() - iChecksumFromEnd];
    slot.iUsed = static_cast<int32_t>(data.size());
    slot.iCRC32 = crc32buf(data);
}

Text copyof(const char* text) { return text != nullptr ? Text(text) : Text(""); }

void readdescription(KickstartRom& slot, const IniFile& ini) {
    slot.pcTitle = copyof(readiniitem(ini, cDescriptionSection, "Title"));
    slot.pcText = copyof(readiniitem(ini, cDescriptionSection, "Text"));
    if (const auto base = describedbase(ini))
        slot.iROMBase = *base;
    else
        message(kResult, "WARNING: No ROMBase\n");
}

// Matches the type word of "type:hash"; without a known one the whole text is both.
void readtype(Component& component, std::string_view rest) {
    for (const std::string_view word : cTypeWords)
        if (rest.starts_with(word) && rest.substr(word.size()).starts_with(':')) {
            component.pcType = word;
            component.pcHash = rest.substr(word.size() + 1);
            return;
        }
    message(kResult, "ERROR: Invalid Component \"%s\"\n", rest.data());
    component.pcType = rest;
    component.pcHash = rest;
}

// The parts of a line "name=start,size,type:hash", the last as text.
struct MapLine {
    std::string name;
    int32_t start;
    int32_t size;
    const char* rest;
};

// None, and an error line, when a separator is missing.
std::optional<MapLine> splitline(const char* line) {
    const char* equals = std::strchr(line, '=');
    const char* first = equals != nullptr ? std::strchr(equals, ',') : nullptr;
    const char* second = first != nullptr ? std::strchr(first + 1, ',') : nullptr;
    if (second == nullptr) {
        message(kResult, "ERROR: Invalid Component \"%s\"\n", line);
        return std::nullopt;
    }
    return MapLine{std::string(line, equals), decimal(equals + 1), decimal(first + 1), second + 1};
}

// The relocs of section `section`, up to the first line that is none.
std::vector<int32_t> readrelocs(const IniFile& ini, int32_t section) {
    std::vector<int32_t> relocs;
    tellrelocs(ini, section);
    for (const char* const line : ini.lines(section)) {
        message(kRaw, "INI File=%s\n", line);
        if (!std::string_view(line).starts_with(cRelocKey)) {
            message(kProgress,
                    "Missing RELOC=, early end of section, abandoning any more relocs, setting reloc count "
                    "to %d\n",
                    static_cast<int32_t>(relocs.size()));
            break;
        }
        relocs.push_back(decimal(line + cRelocKey.size()));
    }
    return relocs;
}

void takeextract(Component& component, const KickstartRom& slot) {
    message(kTrace, "iSize=%d &3=%d\n", component.iSize, component.iSize & 3);
    const View bytes = part(slot.pcROM, component.iStart, component.iSize);
    component.pcExtract.emplace(bytes.begin(), bytes.end());
    droprelocsoutside(component.ipRelocs, component.iSize);
    message(kProgress, "There are %d relocs\n", component.iRelocs());
    for (const int32_t& reloc : component.ipRelocs) {
        makerelative(*component.pcExtract, {&reloc, 1}, runaddress(slot, component));
        message(kTrace, "Reloc at %d=%08x\n", reloc, *longat(*component.pcExtract, reloc));
    }
}

// A map names each byte of its image about once. One that claims this many times its image is damage: it
// would use time and memory out of proportion.
constexpr int64_t iMapClaimMost = 16;

// Builds the map of a slot line by line.
class MapReader {
public:
    explicit MapReader(int32_t slotnumber) : rom(slotnumber), slot(*findslot(slotnumber)) {}

    void read(const IniFile& ini, int32_t section) {
        const IniLines lines = ini.lines(section);
        slot.psComponents.reserve(static_cast<size_t>(lines.size()));
        for (const char* const line : lines)
            slot.psComponents.push_back(readline(slot.iComponents(), line));
    }

private:
    // The component that line `number` tells of; blank when the line is empty or at fault.
    Component readline(int32_t number, const char* line) {
        if (*line == '\0') return {};
        const auto parts = splitline(line);
        if (!parts || !admit(number, *parts)) return {};
        Component component;
        component.pcName = parts->name;
        component.iStart = component.iFixedStart = parts->start;
        component.iSize = parts->size;
        component.iFixedEnd = parts->start + parts->size;
        readtype(component, parts->rest);
        applyhashfile(number, component);
        return component;
    }

    // Fills in what the component's own hash file, and with its help the image, tells.
    void applyhashfile(int32_t number, Component& component) {
        message(kProgress, "looking for component hash %s\n", shown(component.pcHash));
        const auto ini = hashfiles.load(component.pcHash);
        if (!ini) {
            message(kProgress, "WARNING, No hash file for component %d may have unknown relocs\n", number);
            return;
        }
        const int32_t section = readinisection(*ini, cRelocSection);
        if (section < 0) {
            message(kResult, "No relocs\n");
            return;
        }
        component.ipRelocs = readrelocs(*ini, section);
        message(kProgress, "Hashing raw component=%2d %s (%d bytes) from ROM=%d\n", number,
                shown(component.pcName), component.iSize, rom);
        takeextract(component, slot);
        message(kProgress, "Finding ROMTAG in newly loaded ROM at %d to %d\n", component.iStart,
                static_cast<int32_t>(component.iEnd()));
        taketag(slot, component);
        component.iCRC32 = crc32buf(*component.pcExtract);
        message(kProgress, "CRC:0x%08x\n", component.iCRC32);
    }

    // Whether the range lies in the image, and the map claims no more of it than a sound one; an error line
    // when not.
    bool admit(int32_t number, const MapLine& parts) {
        if (!isinside(slot.pcROM, parts.start, parts.size)) {
            message(kResult, "ERROR: Component %d (%s) does not fit in its image\n", number,
                    parts.name.c_str());
            return false;
        }
        claimed += parts.size;
        if (claimed <= iMapClaimMost * slot.iSize()) return true;
        message(kResult, "ERROR: Component %d (%s) is left out, the map claims too much of its image\n",
                number, parts.name.c_str());
        return false;
    }

    int32_t rom;
    KickstartRom& slot;
    int64_t claimed = 0; // bytes of the components so far
    ComponentHashFiles hashfiles;
};

void readcomponents(int32_t rom, const IniFile& ini) {
    const int32_t section = readinisection(ini, cComponentsSection);
    if (section < 0) return;
    const int32_t count = ini.lines(section).size();
    if (count > iComponentsMost) {
        message(kResult, "ERROR: A map of %d components is more than a ROM can hold\n", count);
        return;
    }
    message(kTrace, "Section:%s\n", ini.head(section));
    message(kRaw, "Allocating space for %d components (%lu bytes)\n", count,
            static_cast<unsigned long>(static_cast<size_t>(count) * sizeof(Component)));
    MapReader(rom).read(ini, section);
}

void applyhashfile(int32_t rom) {
    KickstartRom& slot = *findslot(rom);
    const std::string name = hexlong(slot.iCRC32);
    message(kProgress, "Load ROMData, look for Hashfile:%s\n", name.c_str());
    const auto ini = loadinifile(findhashfile(name.c_str()));
    if (!ini) {
        message(kResult, "Unable to find hash\n");
        return;
    }
    message(kTrace, "Hashfile found\n");
    readdescription(slot, *ini);
    readcomponents(rom, *ini);
}

} // namespace

int loadromdata(int32_t rom, View data) {
    data = withoutoverburn(data);
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) {
        message(kResult, "No such ROM\n");
        return 1;
    }
    placeimage(*slot, data);
    applyhashfile(rom);
    message(kProgress, "Loaded %d bytes to ROM %d\n", slot->iUsed, rom);
    return 0;
}

} // namespace vantorel
