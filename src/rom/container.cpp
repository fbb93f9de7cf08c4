#include "rom/container.h"

#include "base/message.h"
#include "hash/filerange.h"
#include "hash/hashfile.h"
#include "rom/header.h"
#include "rom/layout.h"
#include "rom/map.h"
#include "rom/store.h"

#include <array>
#include <string_view>

namespace vantorel {

namespace {

// A ROM inside a container: the key that tells its place, and the word that announces it, if any does.
struct ContainerPart {
    const char* key = nullptr;
    const char* announcement = nullptr;
};

// A kind of container; its first part goes into the slot asked for, the others into new ones.
struct ContainerType {
    std::string_view type;
    std::array<ContainerPart, 4> parts;
};

constexpr auto cContainerTypes = std::to_array<ContainerType>({
    {"KickItKickstart", {{{"Kickstart", "KICK"}}}},
    {"Kickstart-Disk", {{{"Kickstart", "KICK"}}}},
    {"SuperKickstart", {{{"Kickstart1"}, {"Bonus1"}, {"Kickstart2"}, {"Bonus2"}}}},
    {"Extended/Kickstart", {{{"Kickstart", "KICK"}, {"Extended", "EXTENDED"}}}},
    {"Kickstart/Bonus", {{{"Kickstart", "KICK"}, {"Bonus", "BONUS"}}}},
});

// New slots are made for the parts behind the first.
constexpr uint8_t cNewSlotFill = 255;

void loadpart(const IniFile& ini, View data, const ContainerPart& piece, int32_t rom, bool isfirst) {
    const char* value = readiniitem(ini, cComponentsSection, piece.key);
    if (value == nullptr) return;
    const auto range = readrange(piece.key, value);
    if (!range) return;
    if (piece.announcement != nullptr)
        message(kTrace, "%s: from %d to %d [%s]\n", piece.announcement, range->start, range->size,
                range->sizetext);
    if (!requirerange(piece.key, *range, data)) return;
    loadromdata(isfirst ? rom : newrom(range->size, cNewSlotFill), part(data, range->start, range->size));
}

void loadparts(const IniFile& ini, View data, const ContainerType& container, int32_t rom) {
    for (const ContainerPart& piece : container.parts)
        if (piece.key != nullptr) loadpart(ini, data, piece, rom, &piece == container.parts.data());
}

} // namespace

bool decodeformat(const IniFile& ini, Bytes& data) {
    const char* value = readiniitem(ini, cDescriptionSection, "Format");
    if (value == nullptr) {
        message(kResult, "No declared format, assuming unencoded, unencrypted data\n");
        return true;
    }
    const std::string_view format = value;
    if (format == "CD32Encoded") {
        message(kProgress, "CD32Encoded\n");
        if (data.size() < iSize1M) {
            message(kResult, "ERROR, a CD32 image must be 1048576 bytes, is %ld\n",
                    static_cast<long>(data.size()));
            return false;
        }
        deinterleaveCD32(data);
    } else if (format.starts_with("NewType")) {
        message(kTrace, "Newtype I don't know about\n");
    } else if (format == "Guru") {
        message(kResult, "Guru encrypted Expansion ROM - dunno how to handle that yet\n");
    } else if (format == "KickstartFloppy") {
        message(kResult, "KickstartFloppy - Not encrypted\n");
    }
    return true;
}

void loadcontainer(const IniFile& ini, View data, int32_t rom) {
    const char* value = readiniitem(ini, cDescriptionSection, "FileType");
    if (value == nullptr) {
        message(kResult, "Undefined FileType, loading %d of raw data\n", static_cast<int32_t>(data.size()));
        loadromdata(rom, data);
        return;
    }
    const std::string_view type = value;
    for (const ContainerType& container : cContainerTypes)
        if (type == container.type) return loadparts(ini, data, container, rom);
    if (type == "Kickstart" || type == "Extended")
        loadromdata(rom, data);
    else if (type == "Expansion")
        message(kResult, "Device - dunno how to handle that yet\n");
    else
        message(kResult, "Unknown FileType [%s]\n", value);
}

} // namespace vantorel
