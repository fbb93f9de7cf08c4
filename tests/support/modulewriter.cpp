#include "support/modulewriter.h"

#include "support/checksums.h"

#include <array>
#include <stdexcept>

namespace vantorel::test {

namespace {

constexpr int32_t iRomTagSize = 26;
constexpr int32_t iAutoInitSize = 16;
constexpr int32_t iFunctionSize = 8;
constexpr int32_t iPointerSize = 6; ///< an instruction with an absolute address

constexpr uint16_t iRts = 0x4E75;
constexpr uint16_t iMoveq = 0x7000;
constexpr uint16_t iJsrAbsolute = 0x4EB9;
constexpr uint16_t iLeaAbsolute = 0x41F9;

/// Instructions of one word. None begins with 0x00, 0x4A or 0xFC: so code makes neither a ROMTAG's match word
/// nor, on even places, a long that could be taken for an address.
constexpr std::array<uint16_t, 12> iOpcodes = {
    0x4E71, // NOP
    0x2200, // MOVE.L D0,D1
    0x2401, // MOVE.L D1,D2
    0xD081, // ADD.L D1,D0
    0x9282, // SUB.L D2,D1
    0xC081, // AND.L D1,D0
    0x8280, // OR.L D0,D1
    0xB580, // EOR.L D2,D0
    0x5280, // ADDQ.L #1,D0
    0xE388, // LSL.L #1,D0
    0x4840, // SWAP D0
    0x4680  // NOT.L D0
};

constexpr int32_t even(int32_t value) { return (value + 1) & ~1; }
int32_t textsize(std::string_view text) { return even(static_cast<int32_t>(text.size()) + 1); }

int32_t vectorsize(const ModuleSpec& spec) {
    switch (spec.init) {
    case Init::Manual:
        return 0;
    case Init::Auto32:
        return 4 * (spec.functions + 1);
    case Init::Auto16:
        return 2 * (spec.functions + 2);
    }
    return 0;
}

int32_t pointercount(const ModuleSpec& spec) {
    return spec.calls + static_cast<int32_t>(spec.pointers.size());
}

uint32_t seedof(const ModuleSpec& spec) {
    const View name = textbytes(spec.name);
    const uint32_t seed = spec.seed != 0 ? spec.seed : crc32of(name);
    return seed != 0 ? seed : 1;
}

} // namespace

ModuleLayout layoutof(const ModuleSpec& spec) {
    ModuleLayout layout;
    const bool isauto = spec.init != Init::Manual;
    layout.name = spec.tag + iRomTagSize;
    layout.idstring = layout.name + textsize(spec.name);
    layout.autoinit = layout.idstring + textsize(spec.idstring);
    layout.vectors = layout.autoinit + (isauto ? iAutoInitSize : 0);
    layout.initstruct = layout.vectors + vectorsize(spec);
    layout.code = layout.initstruct + (isauto ? even(static_cast<int32_t>(spec.initstruct.size())) : 0);
    layout.filler = layout.code + iFunctionSize * (1 + spec.functions);
    layout.minimum = wholelong(layout.filler + iPointerSize * pointercount(spec));
    return layout;
}

ModuleWriter::ModuleWriter(const ModuleSpec& module, Resolve resolver)
    : spec(module), layout(layoutof(module)), resolve(std::move(resolver)), state(seedof(module)) {}

void ModuleWriter::writemodule() {
    if (spec.tag < 0 || spec.tag % 2 != 0) throw std::logic_error(spec.name + ": no place for a ROMTAG");
    if (spec.tag == iUsualTag) {
        word(iMoveq | 0xFF);
        word(iRts);
    }
    while (at() < spec.tag)
        word(at() + 2 == spec.tag ? iRts : instruction());
    romtag();
    text(spec.name);
    text(spec.idstring);
    if (spec.init != Init::Manual) autoinit();
    code();
    filler(spec.size);
}

void ModuleWriter::writecode() { filler(spec.size); }

void ModuleWriter::pointer(const Pointer& target) {
    relocs.push_back(at());
    appendlong(bytes, resolve(target));
}

void ModuleWriter::text(std::string_view characters) {
    bytes.insert(bytes.end(), characters.begin(), characters.end());
    bytes.resize(bytes.size() + (characters.size() % 2 == 0 ? 2 : 1));
}

void ModuleWriter::romtag() {
    const bool isauto = spec.init != Init::Manual;
    word(0x4AFC);
    own(spec.badmatch ? spec.tag + 2 : spec.tag);
    own(spec.endskip == iNone ? spec.size : spec.endskip);
    bytes.push_back(static_cast<uint8_t>(isauto ? spec.flags | iAutoInit : spec.flags & ~iAutoInit));
    bytes.push_back(spec.version);
    bytes.push_back(spec.type);
    bytes.push_back(static_cast<uint8_t>(spec.priority));
    own(layout.name);
    own(layout.idstring);
    own(isauto ? layout.autoinit : layout.code);
}

void ModuleWriter::autoinit() {
    appendlong(bytes, spec.datasize);
    own(layout.vectors);
    spec.initstruct.empty() ? appendlong(bytes, 0) : own(layout.initstruct);
    spec.initfunction ? own(layout.code) : appendlong(bytes, 0);
    vectors();
    bytes.insert(bytes.end(), spec.initstruct.begin(), spec.initstruct.end());
    if (bytes.size() % 2 != 0) bytes.push_back(0);
}

void ModuleWriter::vectors() {
    if (spec.init == Init::Auto32) {
        for (int32_t k = 0; k < spec.functions; ++k)
            own(function(k));
        appendlong(bytes, 0xFFFFFFFF);
        return;
    }
    word(0xFFFF);
    for (int32_t k = 0; k < spec.functions; ++k)
        word(static_cast<uint32_t>(function(k) - layout.vectors));
    word(0xFFFF);
}

int32_t ModuleWriter::function(int32_t number) const { return layout.code + iFunctionSize * (1 + number); }

void ModuleWriter::code() {
    for (int32_t k = 0; k <= spec.functions; ++k) {
        word(iMoveq | (static_cast<uint32_t>(k) & 0x7F));
        word(instruction());
        word(iMoveq | 0x200 | (random() & 0xFF));
        word(iRts);
    }
}

void ModuleWriter::filler(int32_t end) {
    // The pointers stand at equal distances, so that large modules have them beyond 64K too.
    const int32_t count = pointercount(spec);
    const int32_t distance = even((end - at() - iPointerSize * count) / (count + 1));
    const int32_t first = at();
    for (int32_t k = 0; k < count; ++k) {
        const int32_t place = first + (k + 1) * distance + k * iPointerSize;
        const int32_t last = end - iPointerSize * (count - k);
        while (at() < place && at() + 2 <= last)
            word(instruction());
        word(k < spec.calls ? iJsrAbsolute : iLeaAbsolute);
        if (k < spec.calls)
            own(function(spec.functions > 0 ? k % spec.functions : -1));
        else
            pointer(spec.pointers[static_cast<size_t>(k - spec.calls)]);
    }
    while (at() + 2 <= end) {
        const bool islast = at() + 4 > end;
        word(islast ? iRts : instruction());
    }
    while (at() < end)
        bytes.push_back(0xAA);
}

uint32_t ModuleWriter::instruction() {
    const uint32_t choice = random();
    // Numbers in the code make one module's bytes unlike another's.
    return choice % 8 == 0 ? iMoveq | (random() & 0xFF) : iOpcodes[choice % iOpcodes.size()];
}

uint32_t ModuleWriter::random() {
    // Marsaglia's xorshift: the same everywhere, unlike the distributions of the standard library.
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state >> 8;
}

} // namespace vantorel::test
