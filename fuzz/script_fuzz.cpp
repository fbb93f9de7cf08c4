// Command lines from hostile hands: each line of the input is run as if it were typed.
//
// The lines work in a folder of their own that holds a ROM, a disk image, a hash library and files to audit.
// A "/" would lead out of it, so lines that come to hold one are passed over; the alias F holds the one path
// that the disk image needs.

#include "base/message.h"
#include "base/settings.h"
#include "input.h"
#include "rom/checksum.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/commands.h"
#include "shell/substitute.h"
#include "support/diskbuilder.h"
#include "support/freshstate.h"
#include "support/hashbuilder.h"
#include "support/rombuilder.h"
#include "support/tempdir.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vantorel::test {
namespace {

constexpr size_t kLineMost = 510;
constexpr size_t kLinesMost = 24; // aliases that hold each other grow twofold with every line

/// The folder in which the lines work, for the life of the process.
struct Ground {
    TempDir folder;

    Ground() {
        const BuiltRom rom = standardrom(iSize256K, 0xFC0000);
        DiskBuilder disk(FileSystem::Ofs, "Fuzz");
        disk.addfile("rom", Bytes(rom.image.begin(), rom.image.begin() + 2048));
        folder.file("rom", rom.image);
        folder.file("disk", disk.image());
        folder.file("audited/a", std::string_view("a"));
        HashBuilder(folder.file("Vantorel Hashes")).add(rom);
        if (chdir(folder.path().c_str()) != 0) std::abort();
    }
};

/// Whether a line stays in the folder, what its aliases stand for included.
bool issafe(std::string_view line) {
    if (line.find('\0') != line.npos) return false;
    constexpr std::string_view ondisk = "ADF:/rom";
    std::string text = parsealias(std::string(line).c_str());
    for (size_t place = text.find(ondisk); place != text.npos; place = text.find(ondisk, place))
        text.erase(place, ondisk.size());
    return text.find('/') == text.npos && text.find("..") == text.npos;
}

/// Lines that would make ROMs of gigabytes show nothing but how slow memory is.
bool istoolarge(std::string_view line) { return line.find("newrom") != line.npos && line.size() > 20; }

void runscript(std::string_view input) {
    static const Ground ground;
    logfile("/dev/null"); // a line may have sent the output to a file
    freshstate();
    cSaveDir.clear();
    iDiotMode = 0;
    alias("F", "/rom");
    script("loadhashes \"Vantorel Hashes\"");
    for (size_t lines = 0; !input.empty() && lines < kLinesMost; ++lines) {
        const std::string_view line = input.substr(0, input.find('\n'));
        input.remove_prefix(std::min(input.size(), line.size() + 1));
        if (line.size() <= kLineMost && issafe(line) && !istoolarge(line)) script(std::string(line).c_str());
    }
}

} // namespace

void exercise(View bytes) { runscript({reinterpret_cast<const char*>(bytes.data()), bytes.size()}); }

} // namespace vantorel::test
