// Components with any bounds in any images, analysed in every way: nothing but the relocs that were asked for
// changes, and what is printed is what the plain analyses print.
//
// The input:
//   byte   bits 0-1  the base of the first ROM, bits 2-3 that of the second
//          bit 4     the second image is the first one, relocated for its place
//          bit 5     image bytes stand for longs: below 0x80 an address of the ROM, else that byte
//          bit 6     both components of the deep analysis lie in the first ROM
//   byte   the minimum of a chunk; 0 and 255 are the ends of the range
//   two records for each ROM: words for start, end, fixed start, fixed end and ROMTAG, all signed, and a byte
//          that chooses the identity string
//   word   the length of the first image; the rest is the second one

#include "analysis/analysecomponent.h"
#include "analysis/deepanalyse.h"
#include "analysis/plainanalysis.h"
#include "analysis/plaincomponent.h"
#include "base/message.h"
#include "component/relocedit.h"
#include "input.h"
#include "support/capture.h"
#include "support/freshstate.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

namespace vantorel::test {
namespace {

enum Mode : int32_t { kSecondIsCopy = 1 << 4, kLongs = 1 << 5, kOneRom = 1 << 6 };

constexpr std::array<uint32_t, 4> kBases = {0xF80000, 0, 0x10001000, 0xFFFFFFC0};
constexpr size_t kImageMost = 512;
constexpr int32_t kRecords = 2; // in each ROM

void require(bool holds) {
    if (!holds) std::abort();
}

template <typename Run>
std::string at(int32_t level, Run run) {
    iLogLevel = level;
    std::string text = captured(run);
    iLogLevel = 1;
    return text;
}

int32_t signedword(Input& input) { return static_cast<int16_t>(input.word()); }

Component record(Input& input) {
    Component component;
    component.pcName = component.pcType = "fuzzed";
    component.iStart = signedword(input);
    component.iSize = signedword(input) - component.iStart;
    component.iFixedStart = signedword(input);
    component.iFixedEnd = signedword(input);
    component.iROMTag = signedword(input);
    constexpr std::array<const char*, 3> names = {"a", "b", ""};
    if (const auto name = static_cast<size_t>(input.byte() % 4); name < names.size())
        component.pcLibString = names.at(name);
    return component;
}

Bytes image(View bytes, uint32_t base, bool islongs) {
    bytes = bytes.first(std::min(bytes.size(), islongs ? kImageMost / 4 : kImageMost));
    if (!islongs) return {bytes.begin(), bytes.end()};
    Bytes spelt;
    for (const uint8_t byte : bytes)
        appendlong(spelt, byte < 0x80 ? base + 4U * byte : byte);
    return spelt;
}

/// The first image with every long that is one of its addresses moved to `base`.
Bytes relocated(const KickstartRom& first, uint32_t base) {
    Bytes copy = first.pcROM;
    for (size_t place = 0; place + 4 <= copy.size(); place += 2) {
        const uint32_t offset = iUINT32(&copy[place]) - first.iROMBase;
        if (offset > copy.size()) continue;
        setlong(&copy[place], base + offset);
        place += 2;
    }
    return copy;
}

KickstartRom& newslot(uint32_t base) {
    KickstartRom& slot = *findslot(newrom(0, 0));
    slot.iROMBase = base;
    return slot;
}

void makeroms(View bytes) {
    freshstate();
    Input input(bytes);
    const int32_t mode = input.byte();
    static_cast<void>(input.byte());
    KickstartRom& first = newslot(kBases.at(static_cast<size_t>(mode & 3)));
    KickstartRom& second = newslot(kBases.at(static_cast<size_t>(mode >> 2 & 3)));
    for (KickstartRom* slot : {&first, &second})
        for (int32_t count = 0; count < kRecords; ++count)
            slot->psComponents.push_back(record(input));
    const bool islongs = (mode & kLongs) != 0;
    first.pcROM = image(input.bytes(static_cast<size_t>(input.word())), first.iROMBase, islongs);
    second.pcROM = (mode & kSecondIsCopy) != 0 ? relocated(first, second.iROMBase)
                                               : image(input.rest(), second.iROMBase, islongs);
    first.iUsed = first.iSize();
    second.iUsed = second.iSize();
}

bool fits(const KickstartRom& slot, int64_t start, int64_t end) {
    return isinside(slot.pcROM, start, end - start);
}

void requireoneerror(const std::string& text) {
    require(text.starts_with("ERROR") && text.find('\n') == text.size() - 1);
}

void deeply(int32_t dstRom, int32_t dstComponent, int32_t least) {
    int result = -1;
    const std::string text = at(1, [&] { result = deepanalysecomponent(0, 0, dstRom, dstComponent, least); });
    const Component& source = *findrecord(0, 0);
    const Component& destination = *findrecord(dstRom, dstComponent);
    const bool isfit = fits(*findslot(0), source.iFixedStart, source.iFixedEnd) &&
                       fits(*findslot(dstRom), destination.iFixedStart, destination.iFixedEnd);
    require(result == (isfit ? 0 : 1));
    if (isfit)
        require(text == plaindeepanalysis(0, 0, dstRom, dstComponent, least));
    else
        requireoneerror(text.substr(text.find('\n') + 1));
}

std::vector<int32_t> addedonebyone(const std::vector<int32_t>& offsets) {
    iLogLevel = 0;
    for (const int32_t offset : offsets)
        addreloc(0, 0, offset);
    iLogLevel = 1;
    return findrecord(0, 0)->ipRelocs;
}

void quickly(View bytes) {
    const std::string text = at(2, [] { analysecomponent(0, 0, VerifiedRelocs::Tell); });
    const Component& component = *findrecord(0, 0);
    if (component.iROMTag < 0 || !fits(*findslot(0), component.iStart, component.iEnd()))
        return requireoneerror(text);
    const PlainComponent plain(0, 0);
    require(text == plain.text + plain.potential(component.iRelocs()) + plain.bcpl());
    const std::vector<int32_t> expected = addedonebyone(plain.verified);
    for (const int32_t level : {0, 1, 2}) {
        makeroms(bytes);
        static_cast<void>(at(level, [] { analysecomponent(0, 0, VerifiedRelocs::Add); }));
        require(findrecord(0, 0)->ipRelocs == expected);
    }
}

int32_t leastof(int32_t byte) {
    if (byte == 0) return 1;
    return byte == 255 ? std::numeric_limits<int32_t>::max() : byte;
}

} // namespace

void exercise(View bytes) {
    if (bytes.size() < 2) return;
    makeroms(bytes);
    const bool isonerom = (bytes[0] & kOneRom) != 0;
    deeply(isonerom ? 0 : 1, isonerom ? 1 : 0, leastof(bytes[1]));
    for (int32_t rom = -1; rom <= iMaxRom; ++rom)
        analyseromoffsets(rom);
    const Bytes before = findslot(0)->pcROM;
    quickly(bytes);
    require(findslot(0)->pcROM == before);
    freshstate();
}

} // namespace vantorel::test
