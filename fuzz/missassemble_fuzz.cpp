// Mnemonic tables, hints and code from hostile hands: whatever they hold, every instruction decodes to a text
// that fits, and searches and both listings end.
//
// The input's first byte chooses how the rest is read; then three texts follow, each behind a word with its
// length, and after them the component and the image.
//   bit 0     everything that is narrated at the highest level is formatted as well
//   bits 1-2  the base of the image
//   texts     the mnemonic table, the ROM's hints (their section is called 0x00000000) and the hash file of
//             the component
//   words     the image offsets at which the component begins, at which it ends, and of its ROMTAG
//   byte      how many relocs follow as words
//   bytes     the image, at most `kImageMost` of them

#include "base/message.h"
#include "hash/library.h"
#include "input.h"
#include "missassembler/decode.h"
#include "missassembler/findopcode.h"
#include "missassembler/missassemblecomponent.h"
#include "missassembler/missassemblelibrary.h"
#include "missassembler/start.h"
#include "rom/store.h"
#include "support/freshstate.h"
#include "support/tempdir.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vantorel::test {
namespace {

enum Mode : int32_t { kNarrated = 1, kBases = 3 << 1 };

constexpr std::array<uint32_t, 4> kBase = {0xF80000, 0, 0xFFFFFC00, 0x00FC0000};
constexpr size_t kImageMost = 1024;
// The traced way of decoding is slow.
constexpr int32_t kTracedMost = 64;

constexpr const char* kHash = "component";

void require(bool holds) {
    if (!holds) std::abort();
}

/// The folder in which the listing is written, for the life of the process.
struct Ground {
    TempDir folder;

    Ground() { require(chdir(folder.path().c_str()) == 0); }
};

std::string_view textof(Input& input) {
    const View bytes = input.bytes(static_cast<size_t>(input.word()));
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Slot 0: the component between two others that leave it some room.
void makerom(Input& input, uint32_t base) {
    Component component;
    component.pcName = component.pcLibString = "fuzzed";
    component.pcHash = kHash;
    component.iStart = input.word();
    component.iSize = input.word() - component.iStart;
    component.iROMTag = static_cast<int16_t>(input.word());
    for (int32_t relocs = input.byte(); relocs > 0; --relocs)
        component.ipRelocs.push_back(input.word());
    Component before;
    before.iSize = component.iStart / 2;
    Component after;
    after.iStart = static_cast<int32_t>(component.iEnd()) + 16;
    const View image = input.bytes(kImageMost);
    KickstartRom& slot = psKickstartRoms[static_cast<size_t>(newrom(0, 0))];
    slot.pcROM.assign(image.begin(), image.end());
    slot.iUsed = slot.iSize();
    slot.iROMBase = base;
    slot.psComponents = {before, component, after};
}

/// The instruction at image offset `offset`. `length` gets its length.
std::string decoded(int32_t offset, int32_t& length) {
    MissText text;
    text.fill('!');
    length = missassembleA(0, offset, text, sMnemonic);
    require(length >= 2 && std::memchr(text.data(), '\0', text.size()) != nullptr);
    return text.data();
}

/// Traces show every pass, so that the text is made in another way; it is the same text.
void requiresametraced(int32_t offset, const std::string& text, int32_t length) {
    const int32_t level = iLogLevel;
    iLogLevel = 10;
    int32_t tracedlength = 0;
    const std::string traced = decoded(offset, tracedlength);
    require(traced == text && tracedlength == length);
    iLogLevel = level;
}

void decodeall() {
    iLogLevel = 1;
    for (int32_t offset = 0; offset < psKickstartRoms[0].iSize(); ++offset) {
        int32_t length = 0;
        const std::string text = decoded(offset, length);
        if (offset < kTracedMost) requiresametraced(offset, text, length);
    }
}

/// What is spelt as the instruction in the middle is found, there or before.
void search() {
    const int32_t middle = psKickstartRoms[0].iSize() / 2;
    int32_t length = 0;
    const std::string text = decoded(middle, length);
    const auto end = static_cast<uint32_t>(middle) + 1;
    require(findopcode(0, end % 2 ^ 1U, end, text) == 0);
    static_cast<void>(findopcode(0, 0, 0xFFFFFFFF, "no such instruction"));
}

/// The last line of a whole listing counts every byte.
void walk(const TempDir& folder) {
    missassembleLibrary(0, 1);
    const std::string text = folder.text("missassembler.tmp");
    const size_t last = text.rfind("Scanned ");
    if (last == std::string::npos) return;
    int32_t size = 0;
    int32_t code = 0;
    int32_t data = 0;
    require(std::sscanf(text.c_str() + last, "Scanned %d bytes, %d code %d data", &size, &code, &data) == 3);
    require(size >= psKickstartRoms[0].psComponents[1].iSize && code + data >= size);
}

} // namespace

void exercise(View bytes) {
    static const Ground ground;
    Input input(bytes);
    freshstate();
    const int32_t mode = input.byte();
    ground.folder.file("library/missassemble.ini", textof(input));
    ground.folder.file("library/misshints.ini", textof(input));
    ground.folder.file(std::string("library/") + kHash, textof(input));
    loadhashes(ground.folder.file("library"));
    makerom(input, kBase[static_cast<size_t>((mode & kBases) >> 1)]);
    if (initmissassembler() == 0 && sMnemonic.names().iMnemonicCnt() != 0 && psKickstartRoms[0].iSize() > 0) {
        decodeall();
        search();
    }
    iLogLevel = (mode & kNarrated) != 0 ? 10 : 2;
    walk(ground.folder);
    missassembleComponent(0, 1);
}

} // namespace vantorel::test
