#pragma once
// Slots with components made by hand, and all that a slot holds, so that a test can say that nothing changed.

#include "rom/romtest.h"
#include "shell/session.h"
#include "support/noise.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantorel::test {

/// Everything in a record, for comparing; what stands in a list of numbers is separated by blanks.
inline std::string fieldsof(const Component& component) {
    std::string text = shown(component.pcName);
    const auto field = [&text](const std::string& value) { text += "|" + value; };
    for (const int32_t number : {component.iStart, component.iROMTag, component.iSize, component.iFixedStart,
                                 component.iFixedEnd, component.iRelocs()})
        field(std::to_string(number));
    for (const int32_t reloc : component.ipRelocs)
        text += " " + std::to_string(reloc);
    for (const Text* words :
         {&component.pcHash, &component.pcType, &component.pcLibName, &component.pcLibString})
        field(shown(*words));
    field(hex32(component.iCRC32));
    field(component.pcExtract ? std::to_string(component.pcExtract->size()) + " bytes with CRC " +
                                    hex32(crc32of(*component.pcExtract))
                              : "no extract");
    return text;
}

struct SlotState {
    Bytes image;
    int32_t used;
    uint32_t base;
    std::vector<std::string> components;
    friend bool operator==(const SlotState&, const SlotState&) = default;
};

inline SlotState stateof(int32_t rom) {
    const KickstartRom& slot = slotat(rom);
    SlotState state{slot.pcROM, slot.iUsed, slot.iROMBase, {}};
    for (const Component& component : slot.psComponents)
        state.components.push_back(fieldsof(component));
    return state;
}

/// Checks that `run` leaves slot `rom` as it is, and gives what it prints at verbosity 1.
inline std::string expectunchanged(int32_t rom, const Action& run) {
    const SlotState before = stateof(rom);
    const std::string console = at(1, run);
    EXPECT_TRUE(stateof(rom) == before) << "changed, and said: " << console;
    return console;
}

/// `size` bytes at random.
inline Bytes noisebytes(int32_t size, uint32_t seed) {
    Noise noise(seed);
    Bytes bytes(static_cast<size_t>(size));
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(noise());
    return bytes;
}

/// Where a component lies, both in bytes.
struct Extent {
    int32_t start;
    int32_t size;
};

/// A component without a tag at `place`, named after its start.
inline Component componenton(const Extent& place) {
    Component component;
    component.pcName = "c" + std::to_string(place.start);
    component.pcHash = component.pcName;
    component.pcType = cTypeData;
    component.iStart = component.iFixedStart = place.start;
    component.iSize = place.size;
    component.iFixedEnd = static_cast<int32_t>(component.iEnd());
    return component;
}

/// A new slot of `size` bytes 0xEE for CPU address `base`, with these components on them.
inline int32_t slotwith(int32_t size, const std::vector<Extent>& places = {}, uint32_t base = 0) {
    int32_t rom = -1;
    silently([&] { rom = newrom(size, 0xEE); });
    slotat(rom).iROMBase = base;
    for (const Extent& place : places)
        slotat(rom).psComponents.push_back(componenton(place));
    return rom;
}

/// A record as files give them, ready to be placed.
inline Component recordof(Bytes extract, std::vector<int32_t> relocs = {}) {
    Component record;
    record.pcName = "new";
    record.pcHash = "newhash";
    record.pcType = cTypeLibrary;
    record.iSize = static_cast<int32_t>(extract.size());
    record.pcExtract = std::move(extract);
    record.ipRelocs = std::move(relocs);
    return record;
}

/// `bytes` with `address` added to the long at each of `relocs`, one byte after the other.
inline Bytes raised(Bytes bytes, const std::vector<int32_t>& relocs, uint32_t address) {
    for (const int32_t reloc : relocs) {
        uint32_t carry = 0;
        for (int i = 3; i >= 0; --i) {
            uint8_t& byte = bytes.at(static_cast<size_t>(reloc + i));
            const uint32_t sum = byte + ((address >> (8 * (3 - i))) & 0xFF) + carry;
            byte = static_cast<uint8_t>(sum);
            carry = sum >> 8;
        }
    }
    return bytes;
}

inline Bytes bytesat(int32_t rom, int32_t start, int32_t size) {
    const View bytes = part(slotat(rom).pcROM, start, size);
    return {bytes.begin(), bytes.end()};
}

} // namespace vantorel::test
