// The commands on ROMs.

#include "analysis/analysecomponent.h"
#include "base/message.h"
#include "rom/analyse.h"
#include "rom/listing.h"
#include "rom/load.h"
#include "rom/rombase.h"
#include "rom/split.h"
#include "rom/store.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/numbers.h"

#include <array>
#include <limits>
#include <optional>
#include <string>

namespace vantorel::command {

namespace {

struct BaseWord {
    const char* word;
    const char* base;
};

constexpr auto cBaseWords =
    std::to_array<BaseWord>({{"x20", "0x00200000"}, {"xF8", "0x00F80000"}, {"xFC", "0x00FC0000"}});

} // namespace

void rombase() {
    if (!require(1, "ERROR, please specify the new ROMBase\n")) return;
    for (const BaseWord& row : cBaseWords)
        if (isword(1, row.word)) {
            vantorel::rombase(iCurrentROM, row.base);
            return;
        }
    if (offsetargument(1)) vantorel::rombase(iCurrentROM, argument(1));
}

void romname() {
    if (require(1, "ERROR, please specify the ROM name\n")) vantorel::romname(iCurrentROM, argument(1));
}

namespace {

// A size in bytes, "k" and "m" behind it meaning 1024 and 1048576. None when it is negative or does not fit.
std::optional<int32_t> bytesize(std::string text) {
    int64_t multiplier = 1;
    if (text.ends_with('k')) multiplier = 1024;
    if (text.ends_with('m')) multiplier = 1048576;
    if (multiplier != 1) text.pop_back();
    const auto count = decimalinrange(text.c_str());
    if (!count || *count < 0 || *count * multiplier > std::numeric_limits<int32_t>::max())
        return std::nullopt;
    return static_cast<int32_t>(*count * multiplier);
}

} // namespace

void newrom() {
    if (!require(1, "ERROR, please specify ROM size, e.g. newrom 512k\n")) return;
    const auto size = bytesize(argument(1));
    if (!size) return refusenumber(argument(1));
    const auto fill = numberargument(2);
    if (!fill) return;
    message(kProgress, "Creating a new ROM of %d bytes (%dk)\n", *size, *size / 1024);
    iCurrentROM = vantorel::newrom(*size, static_cast<uint8_t>(*fill));
}

namespace {

void loadintonewslot() {
    iCurrentROM = vantorel::newrom(0, 0);
    vantorel::loadrom(argument(1), iCurrentROM);
}

void loadpairintonewslot() {
    iCurrentROM = vantorel::newrom(0, 0);
    vantorel::loadsplitrom(argument(1), argument(2), iCurrentROM);
}

// The slot that argument `n` names; none, and an error line, when there is none.
std::optional<int32_t> existingslot(int32_t n) {
    const auto slot = numberargument(n);
    if (!slot || findslot(*slot) != nullptr) return slot;
    message(kResult, "No such ROM\n");
    return std::nullopt;
}

// `loadrom` always succeeds by its result, so this form leaves the current ROM as it was.
void loadintoslot() {
    const auto slot = existingslot(2);
    if (slot && vantorel::loadrom(argument(1), *slot) != 0) iCurrentROM = *slot;
}

// Only a merge that failed makes the slot current; scripts rely on it.
void loadpairintoslot() {
    const auto slot = existingslot(3);
    if (slot && vantorel::loadsplitrom(argument(1), argument(2), *slot) != 0) iCurrentROM = *slot;
}

} // namespace

void loadrom() {
    if (!require(1, "ERROR, please specify the file to load from\n")) return;
    message(kTrace, "Load ROM: %s\n", argument(1));
    if (!isgiven(2)) return loadintonewslot();
    if (isnumber(2)) return loadintoslot();
    if (!isgiven(3)) return loadpairintonewslot();
    if (isnumber(3)) return loadpairintoslot();
    message(kResult, "ERROR: No ROM at that slot, or slot out of range\n");
}

void analyserom() {
    if (const auto slot = slotargument(1)) vantorel::analyserom(*slot);
}

void analyseromoffsets() {
    if (const auto slot = slotargument(1)) vantorel::analyseromoffsets(*slot);
}

void modules() {
    if (const auto slot = slotargument(1)) vantorel::modules(*slot);
}

void rom() {
    if (!isgiven(1)) {
        vantorel::rom(iCurrentROM);
        return;
    }
    const auto slot = numberargument(1);
    if (!slot) return;
    if (isnumber(1)) vantorel::rom(*slot);
    iCurrentROM = *slot;
}

void roms() { vantorel::roms(iCurrentROM); }

} // namespace vantorel::command
