// The commands that write ROMs to files.

#include "base/message.h"
#include "hash/writer.h"
#include "output/profile.h"
#include "output/saveprofile.h"
#include "output/saverom.h"
#include "output/savertb.h"
#include "rom/store.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/tokens.h"

#include <array>
#include <cstring>
#include <optional>
#include <string>

namespace vantorel::command {

namespace {

struct ProfileWord {
    const char* word;
    int32_t type;
};

constexpr auto cProfileWords = std::to_array<ProfileWord>({
    {"single", RomType::iSingle},
    {"dual", RomType::iDual},
    {"cd32", RomType::iCD32},
    {"Superkick.File", RomType::iSuperkickFile},
    {"Superkick.ADF", RomType::iSuperkickADF},
    {"A1000", RomType::iA1000},
});

// The layout that argument 1 names, if it names one.
std::optional<int32_t> profiletype() {
    for (const ProfileWord& row : cProfileWords)
        if (isword(1, row.word)) return row.type;
    return std::nullopt;
}

// The slot number of argument `n`; none, and an error line, when it is neither a number nor "-1".
std::optional<int32_t> profileslot(int32_t n) {
    if (isnumber(n) || std::strcmp(argument(n), "-1") == 0) return numberargument(n);
    message(kResult, "Invalid profile type or ROM number %s\n", argument(n));
    return std::nullopt;
}

} // namespace

void romprofile() {
    if (!require(1, "ERROR, please specify the profile type [single|dual|CD32]\n")) return;
    const auto type = profiletype();
    int32_t next = type ? 2 : 1;
    std::array<int32_t, iProfileSlots> slots = iNoProfile;
    for (int32_t& slot : slots) {
        if (!isgiven(next)) break;
        const auto number = profileslot(next);
        if (!number) return;
        slot = *number;
        message(kTrace, "Add ROM number %s\n", argument(next));
        ++next;
    }
    message(kProgress, "Profile type %d\n", type.value_or(RomType::iSingle));
    vantorel::romprofile(type.value_or(RomType::iSingle), slots[0], slots[1], slots[2], slots[3]);
}

void saveprofile() {
    bool byteswap = false;
    int32_t savesize = 0;
    std::string name;
    for (int32_t n = 1; n < iTokenSlots && isgiven(n); ++n) {
        if (isword(n, "byteswap"))
            byteswap = true;
        else if (isword(n, "512"))
            savesize = 512;
        else
            name = argument(n);
    }
    if (name.empty()) {
        message(kResult, "ERROR, please specify the file to save to\n");
        return;
    }
    message(kProgress, "Save profile: %s byteswap=%d savesize=%d\n", name.c_str(), byteswap ? 1 : 0,
            savesize);
    vantorel::saveprofile(byteswap, savesize, name);
    message(kTrace, "saveprofile(%d,%d,%s)\n", byteswap ? 1 : 0, savesize, name.c_str());
}

void saverom() {
    if (!require(1, "ERROR, please specify the file to save to\n")) return;
    message(kTrace, "Save ROM: %s\n", argument(1));
    vantorel::saverom(iCurrentROM, argument(1));
}

void savertb() { vantorel::savertb(iCurrentROM, argument(1)); }

void saveromhash() { vantorel::saveromhash(iCurrentROM, argument(1)); }

} // namespace vantorel::command
