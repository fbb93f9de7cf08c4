// Images and hash files from hostile hands: whatever they hold, loading, mapping, analysing and listing must
// end.
//
// The input's first byte chooses the road, two more say how long the hash file is that comes next, and the
// rest is the image. The hash file is stored under the CRC32 of what it is looked up for, so that it is
// always found.
//   road & 3  0: `loadromdata`; 1: `loadrom` of a file; 2: `loadsplitrom` of its two halves;
//             3: the rest patches a sound image, whose checksum is repaired then
//   bit 2     other ROMs are loaded too, so that the analysis has something to compare with
//   bit 3     everything that is narrated at the highest level is formatted as well
//   bit 4     the image is made a whole 512K one, 0x11 and a valid checksum included

#include "base/message.h"
#include "hash/crc32.h"
#include "hash/library.h"
#include "input.h"
#include "rom/analyse.h"
#include "rom/checksum.h"
#include "rom/listing.h"
#include "rom/load.h"
#include "rom/map.h"
#include "rom/split.h"
#include "rom/store.h"
#include "support/checksums.h"
#include "support/freshstate.h"
#include "support/hashbuilder.h"
#include "support/rombuilder.h"
#include "support/tempdir.h"

#include <cstdio>
#include <optional>
#include <string>

namespace vantorel::test {
namespace {

enum Road : int32_t { kData, kFile, kSplit, kPatched, kRoads = 3, kOthers = 4, kNarrated = 8, kWhole = 16 };

/// Small, since every input is compared with it.
BuiltRom smallrom(uint32_t base) {
    return RomBuilder(8192, base)
        .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
        .gap(64)
        .module({.name = "timer.device", .idstring = "timer 40.1\r\n", .size = 1024, .init = Init::Auto16})
        .build();
}

/// The library folder with the component files of the sound ROM, and where the input's own files go.
struct Ground {
    TempDir folder;
    BuiltRom sound = smallrom(0xF80000);
    BuiltRom moved = smallrom(0xE00000);
    HashBuilder hashes{folder.file("library")};

    Ground() { hashes.add(sound); }
};

Ground& ground() {
    static Ground instance;
    return instance;
}

/// The hash file of the input, gone again with the object.
class Described {
public:
    Described(View data, View text) : path(ground().folder.file("library/" + hexlong(crc32buf(data)))) {
        static_cast<void>(writefile(path, text));
    }
    ~Described() { std::remove(path.c_str()); }
    Described(const Described&) = delete;
    Described& operator=(const Described&) = delete;

private:
    std::string path;
};

Bytes patched(Input input) {
    Bytes image = ground().sound.image;
    while (!input.isempty()) {
        const auto offset = static_cast<size_t>(input.word()) % image.size();
        const View bytes = input.bytes(static_cast<size_t>(input.byte() % 32));
        const size_t count = std::min(bytes.size(), image.size() - offset);
        std::ranges::copy(bytes.first(count), image.begin() + static_cast<ptrdiff_t>(offset));
    }
    return image;
}

void repairchecksum(Bytes& image) {
    static_cast<void>(
        putlong(image, static_cast<int64_t>(image.size()) - iChecksumFromEnd, kickstartsum(image)));
}

Bytes imageof(int32_t road, Input input) {
    if ((road & kRoads) == kPatched) {
        Bytes image = patched(input);
        repairchecksum(image);
        return image;
    }
    Bytes image(input.rest().begin(), input.rest().end());
    if ((road & kWhole) == 0) return image;
    image.resize(iSize512K, 0xFF);
    image[0] = 0x11;
    repairchecksum(image);
    return image;
}

void loadsplit(int32_t slot, View data) {
    const size_t half = data.size() / 2;
    const std::string high = ground().folder.file("high", data.first(half));
    const std::string low = ground().folder.file("low", data.subspan(half, half));
    loadsplitrom(high, low, slot);
}

void load(int32_t road, View data) {
    const int32_t slot = newrom(0, 0);
    switch (road & kRoads) {
    case kFile:
        loadrom(ground().folder.file("image", data), slot);
        break;
    case kSplit:
        loadsplit(slot, data);
        break;
    default:
        loadromdata(slot, data);
        break;
    }
}

} // namespace

void exercise(View data) {
    Input input(data);
    freshstate();
    const int32_t road = input.byte();
    const auto textlength = static_cast<size_t>(input.word());
    const View text = input.bytes(textlength);
    const Bytes image = imageof(road, input);
    if ((road & kNarrated) != 0) iLogLevel = 10;
    const Described described(image, text);
    loadhashes(ground().hashes.path());
    if ((road & kOthers) != 0)
        for (const BuiltRom* other : {&ground().sound, &ground().moved})
            loadromdata(newrom(0, 0), other->image);
    load(road, image);
    const int32_t first = (road & kOthers) != 0 ? 2 : 0;
    for (int32_t slot = first; slot < iMaxRom; ++slot) {
        rom(slot);
        analyserom(slot);
        rom(slot);
        modules(slot);
    }
    roms(0);
}

} // namespace vantorel::test
