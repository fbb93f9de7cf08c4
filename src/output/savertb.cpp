#include "output/savertb.h"

#include "base/files.h"
#include "base/message.h"
#include "base/settings.h"
#include "component/extract.h"
#include "component/relocs.h"
#include "hash/crc32.h"
#include "hash/hashfile.h"
#include "hash/ini.h"
#include "rom/header.h"
#include "rom/store.h"
#include "shell/numbers.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace vantorel {

namespace {

constexpr int32_t iByteMost = 255;
constexpr int32_t iWordMost = 65535;
constexpr const char* cBcplSection = "BCPL";

bool iseven(size_t streamsize) { return (iRtbHeader + streamsize) % 2 == 0; }

void addentry(Bytes& stream, int32_t distance, bool islast) {
    // The list of places has never been sorted; what goes back is cut to a byte.
    if (distance < 0) distance &= iByteMost;
    const bool isshort = distance <= iByteMost && !(islast && iseven(stream.size()));
    if (isshort) return stream.push_back(static_cast<uint8_t>(distance));
    stream.push_back(0);
    if (!iseven(stream.size())) stream.push_back(0);
    appendword(stream, static_cast<uint32_t>(distance));
}

} // namespace

Bytes rtbstream(std::span<const int32_t> entries) {
    std::vector<int32_t> places(entries.begin(), entries.end());
    // A distance of 0 would be read as the beginning of a word.
    places.erase(std::unique(places.begin(), places.end()), places.end());
    Bytes stream;
    int32_t previous = 0;
    for (const int32_t& place : places) {
        const int32_t distance = place - previous;
        message(kDetail, "RELOC=%d\n", place);
        if (distance > iWordMost) message(kDetail, "LONG (>64k) RELOC=%d\n", distance);
        addentry(stream, distance, &place == &places.back());
        previous = place;
    }
    return stream;
}

namespace {

// What is to go into the file, as counted before it is gathered.
struct Count {
    int32_t total = 0;
    bool haskickity = false;
    bool hasmarker = false;
};

// A component whose places go into the file.
struct Source {
    int32_t number = 0;
    const Component& component;
    std::vector<int32_t> relocs; // those inside it
};

// Gathers the places of a ROM.
class Gatherer {
public:
    explicit Gatherer(int32_t itsrom) : slot(*findslot(itsrom)) {}

    void gather();

    std::vector<int32_t> entries; // image offsets
    std::vector<uint32_t> bcpl;   // image offsets

private:
    void findsources();
    [[nodiscard]] Count count() const;
    [[nodiscard]] bool hasmarker(uint32_t lastend) const;
    void addrelocs(const Source& source);
    void addbcpl(const Component& component);
    void addsection(const IniFile& ini, int32_t section, int32_t start);

    const KickstartRom& slot;
    std::vector<Source> sources;
    ComponentHashFiles hashfiles;
    bool iskickitydue = false;
};

// An error line for each component that does not lie in the image, and for each reloc outside its component.
void Gatherer::findsources() {
    for (int32_t number = 0; number < slot.iComponents(); ++number) {
        const Component& component = slot.component(number);
        if (component.isblank() || !requirefit(slot, number)) continue;
        tellrelocsoutside(component);
        sources.push_back({.number = number, .component = component, .relocs = relocsinside(component)});
    }
}

// Whether the image says that its components end at `lastend`, an image offset, as those for SuperKickstart
// disks do.
bool Gatherer::hasmarker(uint32_t lastend) const {
    const uint32_t marker = iUINT32(slot.pcROM.data() + slot.iSize() - iMarkerFromEnd);
    const uint32_t expected = slot.iROMBase + lastend;
    if (marker == expected)
        message(kChatty, "SuperKickstart ROM end recorded in ROM, appears to be correct (x%08x)\n", marker);
    else
        message(kChatty, "No SuperKickstart ROM end, ROM says 0x%08x, should be 0x%08x\n", marker, expected);
    return marker == expected;
}

Count Gatherer::count() const {
    message(kTrace, "Counting relocs, finding last reloc, checking for kickity-split and SK size\n");
    Count result;
    int64_t lastend = 0;
    for (const Source& source : sources) {
        message(kChatty, "Checking component %d\n", source.number);
        if (!source.relocs.empty()) {
            const auto mine = static_cast<int32_t>(source.relocs.size());
            result.total += mine;
            message(kChatty, "Has %d relocs, total=%d\n", mine, result.total);
            lastend = source.component.iEnd();
        } else if (source.component.pcType == cTypeKickitySplit) {
            ++result.total;
            message(kChatty, "Adding one for Kickity-Split\n");
            result.haskickity = true;
        }
    }
    result.hasmarker = hasmarker(static_cast<uint32_t>(lastend));
    if (result.hasmarker) ++result.total;
    return result;
}

void Gatherer::addrelocs(const Source& source) {
    const std::vector<int32_t>& mine = source.relocs;
    const int32_t number = source.number;
    message(kChatty, "Adding %d relocs from component %d\n", static_cast<int32_t>(mine.size()), number);
    for (size_t i = 0; i < mine.size(); ++i) {
        const int32_t place = source.component.iStart + mine[i];
        if (iskickitydue && place > iSplitPointer) {
            message(kChatty, "Inserting Kickity-Split reloc before component %d reloc %d\n", number,
                    static_cast<int32_t>(i));
            entries.push_back(iSplitPointer);
            iskickitydue = false;
        }
        entries.push_back(place);
    }
}

void Gatherer::addbcpl(const Component& component) {
    message(kTrace, "Checking %s for BCPL relocs\n", shown(component.pcHash));
    const auto ini = hashfiles.load(component.pcHash);
    const int32_t section = ini ? readinisection(*ini, cBcplSection) : -1;
    if (section >= 0) addsection(*ini, section, component.iStart);
}

void Gatherer::addsection(const IniFile& ini, int32_t section, int32_t start) {
    const IniLines lines = ini.lines(section);
    message(kTrace, "BCPL relocs found\n");
    message(kProgress, "BCPL Relocs=%d in section %d starts at line=%d\n", lines.size(), section,
            ini.firstline(section));
    for (const std::string_view text : lines) {
        // The number stands behind "RELOC=", whatever is there.
        const bool hasnumber = text.size() > cRelocKey.size();
        const int32_t place = hasnumber ? decimal(text.data() + cRelocKey.size()) : 0;
        message(kAlways, "BCPL Reloc=%d\n", place);
        bcpl.push_back(static_cast<uint32_t>(start) + static_cast<uint32_t>(place));
    }
}

void Gatherer::gather() {
    findsources();
    const Count expected = count();
    iskickitydue = expected.haskickity;
    for (const Source& source : sources) {
        addrelocs(source);
        addbcpl(source.component);
    }
    const int32_t marker = slot.iSize() - iMarkerFromEnd;
    if (expected.hasmarker) {
        message(kChatty, "Adding SuperKickstart, end of components marker 0x%08x\n",
                static_cast<uint32_t>(marker));
        entries.push_back(marker);
    }
    const auto added = static_cast<int32_t>(entries.size());
    if (added != expected.total)
        message(kAlways, "Reloc missmatch should have %d, but added %d\n", expected.total, added);
    else
        message(kAlways, "All relocs accounted for\n");
}

void appendbcpl(Bytes& bytes, std::span<const uint32_t> places) {
    if (places.empty()) return;
    message(kTrace, "Writing BCPL relocs\n");
    for (const uint32_t place : places)
        appendlong(bytes, place);
    appendlong(bytes, 0);
}

// What stands behind the stream, less the BCPL places: two longs before them and one behind them.
constexpr int32_t iEndLongs = 3 * 4;

// The whole file of slot `rom`, whose image is large enough. `counted` is how many bytes of it the user is
// told of: BCPL places have never been counted.
Bytes rtbfile(int32_t rom, int32_t& counted) {
    const KickstartRom& slot = *findslot(rom);
    Gatherer gatherer(rom);
    gatherer.gather();
    const View checksum = part(slot.pcROM, slot.iSize() - iChecksumFromEnd, 4);
    Bytes bytes(checksum.begin(), checksum.end());
    bytes.resize(iRtbHeader);
    const Bytes stream = rtbstream(gatherer.entries);
    bytes.insert(bytes.end(), stream.begin(), stream.end());
    counted = static_cast<int32_t>(bytes.size()) + iEndLongs;
    appendlong(bytes, 0);
    appendlong(bytes, 0xFFFFFFFF);
    appendbcpl(bytes, gatherer.bcpl);
    appendlong(bytes, 0);
    return bytes;
}

} // namespace

int savertb(int32_t rom, const std::string& name) {
    KickstartRom* slot = findslot(rom);
    if (slot == nullptr) return 1;
    if (slot->iSize() < iMarkerFromEnd) {
        message(kResult, "ERROR, ROM %d is too small for an RTB file (%d bytes)\n", rom, slot->iSize());
        return 1;
    }
    slot->iCRC32 = crc32buf(slot->pcROM);
    const std::string path = savepath((name.empty() ? identityname(*slot) : name) + ".RTB");
    OutputFile file(path);
    if (!file.isopen()) {
        reportnotopened(path);
        return 1;
    }
    int32_t counted = 0;
    file.write(rtbfile(rom, counted));
    if (!file.close()) {
        reportnotwritten(path);
        return 1;
    }
    message(kResult, "RTB written, %d bytes\n", counted);
    return 0;
}

} // namespace vantorel
