#pragma once
// The ground of the tests of the one-pass listing: an image of 512 bytes with three components.
//
//     0x000-0x080  component 0, where a ROMTAG and an AUTOINIT table are put when a test wants them: their
//                  stops are below the component that is listed, and so left out
//     0x100-       component 1, the one that is listed
//     0x1C0-0x1E0  component 2

#include "component/slotstate.h"
#include "missassembler/labels.h"
#include "missassembler/missassemblecomponent.h"
#include "missassembler/misstest.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantorel::test {

/// What the components and the structures lie at in the image.
inline constexpr int32_t iTagAt = 0x20;
inline constexpr int32_t iAutoInitAt = 0x40;
inline constexpr int32_t iVectorsAt = 0x58;
inline constexpr int32_t iListedAt = 0x100;

/// A few instructions; all other words are unknown.
inline constexpr const char* cGroundTable = "[mnemonics]\n"
                                            "0100111001110001=NOP\n"     // 4E71
                                            "0100111001110101=RTS\n"     // 4E75
                                            "0100111010111001=JSR %%4\n" // 4EB9 and a long
                                            "01100000????????"
                                            "=BRA %88(pc)\n"                   // 60 and a byte
                                            "0010001111111001=MOVE %%4,%%4\n"  // 23F9 and two longs
                                            "0000000000000001=WORDS %%2%%2\n"  // 0001 and two words
                                            "0000000000000010=WIDE   %%4\n"    // 0002 and a long
                                            "0000000000000011=BYTE %%1\n"      // 0003 and a byte
                                            "0000000000000100=FOUR %%2%%2\n"   // 0004 and two words
                                            "0000000000000101=ONE %%2\n"       // 0005 and a word
                                            "0000000000000110=EIGHT %%2,%%4\n" // 0006, a word and a long
                                            "\n";

/// The bytes that pairs of hexadecimal digits spell; blanks are passed over.
inline Bytes hexed(std::string_view digits) {
    std::string plain;
    for (const char c : digits)
        if (c != ' ') plain += c;
    Bytes bytes;
    for (size_t i = 0; i + 1 < plain.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(plain.substr(i, 2), nullptr, 16)));
    return bytes;
}

/// The bytes of a text, without a NUL.
inline Bytes spelt(std::string_view text) { return {text.begin(), text.end()}; }

inline void putbytes(int32_t offset, const Bytes& bytes) {
    std::ranges::copy(bytes, slotat(0).pcROM.begin() + offset);
}

inline void putlongat(int32_t offset, uint32_t value) {
    if (!putlong(slotat(0).pcROM, offset, value)) throw std::logic_error("outside the image");
}

/// The pointers of a ROMTAG, CPU addresses. Left 0 they are below everything.
struct TagSpec {
    uint32_t endskip = 0;
    uint32_t name = 0;
    uint32_t idstring = 0;
    uint32_t init = 0;
    uint8_t flags = 0;
};

/// Writes a ROMTAG at `iTagAt` and makes it that of component 1.
inline void puttag(const TagSpec& tag) {
    putbytes(iTagAt, hexed("4AFC"));
    putlongat(iTagAt + 2, slotat(0).iROMBase + iTagAt);
    putlongat(iTagAt + 6, tag.endskip);
    slotat(0).pcROM.at(iTagAt + 10) = tag.flags;
    putlongat(iTagAt + 14, tag.name);
    putlongat(iTagAt + 18, tag.idstring);
    putlongat(iTagAt + 22, tag.init);
    componentat(0, 1).iROMTag = iTagAt;
}

/// The pointers of an AUTOINIT table, CPU addresses.
struct AutoInitSpec {
    uint32_t vectors = kBase + iVectorsAt;
    uint32_t initstruct = 0;
    uint32_t init = 0;
};

/// Writes an AUTOINIT table at image offset `offset`.
inline void putautoinit(int32_t offset, const AutoInitSpec& table) {
    putlongat(offset, 0x44);
    putlongat(offset + 4, table.vectors);
    putlongat(offset + 8, table.initstruct);
    putlongat(offset + 12, table.init);
}

/// Gives component 1 a ROMTAG with AUTOINIT set and the table at `iAutoInitAt`.
inline void putautotag(const AutoInitSpec& table) {
    puttag({.init = kBase + iAutoInitAt, .flags = iAutoInit});
    putautoinit(iAutoInitAt, table);
}

/// Slot 0, the only one, with `bytes` as component 1, and the table loaded.
inline void makeground(const Bytes& bytes, uint32_t base = kBase) {
    installtable(cGroundTable);
    silently(freeroms);
    romof(Bytes(0x200), base);
    const auto size = static_cast<int32_t>(bytes.size());
    for (const Extent& place : {Extent{0, 0x80}, Extent{iListedAt, size}, Extent{0x1C0, 0x20}})
        slotat(0).psComponents.push_back(componenton(place));
    putbytes(iListedAt, bytes);
}

/// What listing component `component` of slot 0 prints.
inline std::string listed(int32_t level = 1, int32_t component = 1) {
    return at(level, [component] { missassembleComponent(0, component); });
}

/// The same behind the line of the bounds.
inline std::string listedlines(int32_t level = 1, int32_t component = 1) {
    const std::string console = listed(level, component);
    const size_t bounds = console.find("Current allocation ");
    if (bounds == std::string::npos) return "no bounds: " + console;
    return console.substr(console.find('\n', bounds) + 1);
}

inline constexpr const char* cNote =
    "NOTE: it's likely that the boundary is actually greater than this, as this address is referred to by "
    "the "
    "code,\nbut END is the first byte NOT part of the component, so keep adding a dozen or so until "
    "RTS/RTN?\n";

/// The lines that end a listing of component 1 whose end, but not its start, is found beyond its bounds.
inline std::string boundary(const std::string& bounds, int32_t end) {
    return "Component boundary (at least) " + bounds + "\neditcomponent 1 END=" + std::to_string(end) + "\n" +
           cNote;
}

/// The fixture: nothing there yet, since each test says what is listed.
class OnePass : public FreshTest {};

} // namespace vantorel::test
