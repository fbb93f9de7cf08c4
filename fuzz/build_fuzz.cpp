// ROM-building sessions from hostile hands: ROMs made, filled, edited, saved and loaded again, as if their
// commands were typed. Between the commands and after them what must be true of the state is checked.
//
// The input is a list of commands, each a byte that chooses it and more bytes for its arguments, so that most
// of them make sense. The byte ">" begins a line of free text that ends with a line feed. The files lie in a
// folder of their own, in which sessions have to stay: free text with a "/" in it is passed over, also when
// it comes out of an alias.

#include "base/settings.h"
#include "buildchecks.h"
#include "buildground.h"
#include "input.h"
#include "rom/header.h"
#include "rom/layout.h"
#include "shell/commands.h"
#include "shell/substitute.h"
#include "support/freshstate.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vantorel::test {
namespace {

constexpr int kCommandsMost = 32;
constexpr size_t kLineMost = 510;

/// The slots that were only ever added to and deleted from.
std::array<bool, iRomSlots> isbuilt;

void forgetbuilt() { isbuilt = {}; }

void forgetcurrent() {
    if (findslot(iCurrentROM) != nullptr) isbuilt[static_cast<size_t>(iCurrentROM)] = false;
}

template <size_t size>
std::string oneof(Input& input, const std::array<const char*, size>& words) {
    return words[static_cast<size_t>(input.byte()) % size];
}

void run(const std::string& line) { script(line.c_str()); }

constexpr std::array<const char*, 20> cFiles = {
    "small",     "moved",       "kick",         "lib",          "big",      "two",        "broken",
    "raw",       "archive",     "ADF:/lib",     "ADF:/two",     "ADF:/raw", "ADF:/small", "saved",
    "saved.bin", "saved.0.bin", "saved.hi.bin", "saved.lo.bin", "part",     "missing"};
constexpr std::array<const char*, 14> cParts = {
    "exec.library", "timer.device", "table",   "first",         "second", "*",    "exec*",
    "t*",           "romheader",    "vectors", "kickity-split", "lib",    "part", "Unallocated"};
constexpr std::array<const char*, 3> cNames = {"saved", "part", "\"\""};

std::string filename(Input& input) { return oneof(input, cFiles); }

const Component* somecomponent(int32_t which) {
    const KickstartRom* slot = findslot(iCurrentROM);
    if (slot == nullptr || slot->psComponents.empty()) return nullptr;
    return &slot->psComponents[static_cast<size_t>(which) % slot->psComponents.size()];
}

/// A number at which something begins or ends.
int64_t landmark(Input& input) {
    const KickstartRom* slot = findslot(iCurrentROM);
    const Component* component = somecomponent(input.byte());
    switch (input.byte() % 8) {
    case 0:
        return input.word();
    case 1:
        return slot != nullptr ? slot->iSize() : 0;
    case 2:
        return slot != nullptr ? slot->iROMBase : 0;
    case 3:
        return component != nullptr ? component->iStart : 0;
    case 4:
        return component != nullptr ? component->iEnd() : 0;
    case 5:
        return component != nullptr ? component->iSize : 0;
    case 6:
        return component != nullptr ? component->iROMTag : -1;
    default:
        return input.byte() % 2 != 0 ? 0x7FFFFFFF : 0xFFFFFFFF;
    }
}

/// Small, or near a landmark; in decimal or hexadecimal.
std::string number(Input& input) {
    const int32_t byte = input.byte();
    if (byte < 128) return std::to_string(byte * 2);
    int64_t value = landmark(input);
    if ((byte & 1) != 0) value += input.byte() - 128;
    if ((byte & 2) != 0) return formatted("0x%x", static_cast<uint32_t>(value));
    return std::to_string(value);
}

/// The number of a component; seldom one that is none.
std::string componentnumber(Input& input) { return std::to_string(input.byte() % 12); }

std::string slotnumber(Input& input) { return std::to_string(input.byte() % 6 - 1); }

std::string hextext(View bytes) {
    std::string text = "0x";
    for (const uint8_t byte : bytes)
        text += formatted("%02x", byte);
    return text;
}

/// One to sixteen bytes: of the input, or of the current image.
Bytes somebytes(Input& input) {
    const int64_t count = input.byte() % 16 + 1;
    const int32_t at = input.word();
    const KickstartRom* slot = findslot(iCurrentROM);
    const bool isofimage = slot != nullptr && isinside(slot->pcROM, at, count);
    const View bytes = isofimage ? part(slot->pcROM, at, count) : input.bytes(static_cast<size_t>(count));
    return {bytes.begin(), bytes.end()};
}

// What the commands do, each with arguments from the input.

void donewrom(Input& input) {
    constexpr std::array<const char*, 11> sizes = {"0",  "23", "24",  "100", "4k",    "8k",
                                                   "8k", "8k", "33k", "70k", "262164"};
    const std::string size = oneof(input, sizes);
    run("newrom " + size + " " + std::to_string(input.byte()));
    if (findslot(iCurrentROM) != nullptr) isbuilt[static_cast<size_t>(iCurrentROM)] = true;
}

void dorombase(Input& input) {
    constexpr std::array<const char*, 5> bases = {"xF8", "xFC", "x20", "0xE00000", "0xFFFFFFF0"};
    const bool isword = input.byte() % 2 == 0;
    run("rombase " + (isword ? oneof(input, bases) : number(input)));
}

void doaddfile(Input& input) { run("add " + filename(input)); }

void doaddpart(Input& input) {
    const std::string file = filename(input);
    run("add " + file + " " + oneof(input, cParts));
}

void doaddblock(Input& input) {
    const std::string bytes = number(input);
    run("add " + bytes + " " + std::to_string(input.byte()));
}

void doaddvirtual(Input& input) {
    constexpr std::array<const char*, 4> words = {"kickity-split", "checksum", "size", "vectors"};
    run("add " + oneof(input, words));
}

void dodelete(Input& input) { run("delete " + componentnumber(input)); }

void doeditcomponent(Input& input) {
    constexpr std::array<const char*, 5> actions = {"start=", "end=", "addreloc ", "deletereloc ",
                                                    "addrelocs "};
    forgetcurrent();
    const std::string component = componentnumber(input);
    const std::string action = oneof(input, actions);
    run("editcomponent " + component + " " + action + number(input));
}

void dochecksum(Input& /*input*/) { run("checksum"); }

void dopatch(Input& input) {
    const std::string where = number(input);
    run("patch " + where + " " + hextext(somebytes(input)));
}

/// The first offset that `find` has to find; none when it has to find none.
std::optional<int64_t> firstplace(View image, View pattern, uint32_t start, uint32_t end) {
    const int64_t length = std::ssize(pattern);
    for (int64_t at = start; at < int64_t{end} - start - length && isinside(image, at, length); ++at)
        if (std::ranges::equal(part(image, at, length), pattern)) return at;
    return std::nullopt;
}

void dofind(Input& input) {
    const auto start = static_cast<uint32_t>(input.byte() % 2 == 0 ? 0 : landmark(input));
    const auto end = static_cast<uint32_t>(landmark(input));
    const Bytes pattern = somebytes(input);
    if (pattern.empty()) return;
    const KickstartRom* slot = findslot(iCurrentROM);
    const auto place = slot != nullptr ? firstplace(slot->pcROM, pattern, start, end) : std::nullopt;
    alias("FIND", "nothing");
    run(formatted("find 0x%x 0x%x ", start, end) + hextext(pattern));
    const auto name = std::ranges::find(pcAliasname, "FIND");
    const std::string found = pcAliasvalue[static_cast<size_t>(name - pcAliasname.begin())];
    expect(found == (place ? hexlong(static_cast<uint32_t>(*place)) : "nothing"), "the first place is found");
}

/// The commands that save components or their hash files, or name them.
void dosavecomponent(Input& input) {
    constexpr std::array<const char*, 3> commands = {"savecomponent", "savecomponenthash",
                                                     "canonisecomponent"};
    std::string line = oneof(input, commands);
    const int32_t form = input.byte() % 4;
    if (form > 0) line += " " + (form == 1 ? oneof(input, cParts) : componentnumber(input));
    if (form > 2) line += " " + oneof(input, cNames);
    run(line);
}

void dosaverom(Input& input) {
    constexpr std::array<const char*, 2> commands = {"saverom", "saveromhash"};
    const std::string command = oneof(input, commands);
    run(command + " " + oneof(input, cNames));
}

void dosaveprofile(Input& input) {
    constexpr std::array<const char*, 7> types = {"single",        "dual",  "cd32", "superkick.file",
                                                  "superkick.adf", "a1000", ""};
    constexpr std::array<const char*, 4> options = {"", "byteswap", "512", "512 byteswap"};
    std::string profile = "romprofile " + oneof(input, types);
    for (int32_t slots = input.byte() % 5; slots > 0; --slots)
        profile += " " + slotnumber(input);
    run(profile);
    run("saveprofile saved " + oneof(input, options));
}

void doanalyserom(Input& /*input*/) {
    forgetcurrent();
    run("analyserom");
}

void doloadrom(Input& input) {
    const int32_t form = input.byte() % 8;
    std::string line = "loadrom " + filename(input);
    if (form == 1) line += " " + filename(input);
    if (form < 2) forgetbuilt();
    if (form == 0) line += " " + slotnumber(input);
    run(line);
}

/// A ROM saved and loaded again is the same, unless its hash file tells of something else.
void doreload(Input& /*input*/) {
    const KickstartRom* slot = findslot(iCurrentROM);
    if (slot == nullptr || iMaxRom == iRomSlots || slot->iSize() > iSize256K) return;
    const int32_t rom = iCurrentROM;
    run("reset hashes");
    run("saverom saved");
    run(cSaveDir.empty() ? "loadrom saved" : "loadrom \"" + cSaveDir + "saved\"");
    const Bytes& loaded = findslot(iCurrentROM)->pcROM;
    expect(loaded == findslot(rom)->pcROM || loaded == byteswapped(findslot(rom)->pcROM),
           "a saved ROM is loaded as it was");
    run("loadhashes");
}

void dorom(Input& input) { run("rom " + slotnumber(input)); }

void doromname(Input& input) { run("romname " + oneof(input, cParts)); }

void dolist(Input& input) {
    constexpr std::array<const char*, 4> commands = {"rom", "roms", "modules", "alias FIND"};
    run(oneof(input, commands));
}

void dologlevel(Input& input) { run("loglevel " + std::to_string(input.byte() % 11)); }

void doreset(Input& input) {
    constexpr std::array<const char*, 6> words = {"reset roms",         "reset aliases", "reset hashes",
                                                  "reset roms aliases", "loadhashes",    "reset auditfiles"};
    const std::string line = oneof(input, words);
    run(line);
    if (iMaxRom == 0) forgetbuilt();
}

void dosavedir(Input& input) {
    constexpr std::array<const char*, 3> folders = {"out", ".", "\"Vantorel Hashes\""};
    run("savedir " + oneof(input, folders));
}

constexpr std::array<void (*)(Input&), 30> cActions = {
    donewrom,        dorombase,    doaddfile,     doaddfile,    doaddpart,  doaddpart,
    doaddblock,      doaddvirtual, doaddvirtual,  dodelete,     dodelete,   doeditcomponent,
    doeditcomponent, dochecksum,   dopatch,       dopatch,      dofind,     dosavecomponent,
    dosavecomponent, dosaverom,    dosaveprofile, doanalyserom, doloadrom,  doloadrom,
    doreload,        dorom,        doromname,     dolist,       dologlevel, doreset};

/// Whether a line stays in the folder and makes nothing large. What its aliases stand for counts.
bool issafe(const std::string& line) {
    const std::string text = parsealias(line.c_str());
    if (text.find_first_of(std::string_view("/\0", 2)) != text.npos || text.find("..") != text.npos)
        return false;
    return text.find("newrom") == text.npos || text.size() <= 20;
}

/// Whether a name that a save command may take from the state leads out of the folder.
bool haspathname() {
    const auto ispath = [](const Text& text) { return text && text->find('/') != std::string::npos; };
    for (int32_t rom = 0; rom < iMaxRom; ++rom) {
        const KickstartRom& slot = *findslot(rom);
        if (ispath(slot.pcTitle)) return true;
        for (const Component& component : slot.psComponents)
            if (ispath(component.pcHash)) return true;
    }
    return false;
}

void dofreetext(Input& input) {
    std::string line;
    while (!input.isempty()) {
        const auto character = static_cast<char>(input.byte());
        if (character == '\n') break;
        line += character;
    }
    if (line.size() > kLineMost || !issafe(line)) return;
    forgetbuilt();
    run(line);
}

} // namespace

void exercise(View data) {
    static const BuildGround ground;
    ground.restore();
    logfile("/dev/null"); // a line may have sent the output to a file
    freshstate();
    forgetbuilt();
    run("loadhashes");
    run("loadadf disk");
    Input input(data);
    for (int commands = 0; !input.isempty() && commands < kCommandsMost && !haspathname(); ++commands) {
        const int32_t choice = input.byte();
        if (choice == '>')
            dofreetext(input);
        else if (choice == '=')
            dosavedir(input);
        else
            cActions[static_cast<size_t>(choice) % cActions.size()](input);
    }
    for (int32_t rom = 0; rom < iMaxRom; ++rom)
        if (isbuilt[static_cast<size_t>(rom)]) checkbuilt(rom);
    checkeverything();
    freshstate();
}

} // namespace vantorel::test
