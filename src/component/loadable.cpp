#include "component/loadable.h"

#include "base/message.h"
#include "component/extract.h"
#include "component/hunk.h"
#include "component/selection.h"
#include "hash/crc32.h"

#include <algorithm>
#include <span>
#include <vector>

namespace vantorel {

namespace {

// Fills a file of known size from its start.
class FileFiller {
public:
    explicit FileFiller(size_t size) : file(size) {}

    void addlong(uint32_t value) { setlong(take(4), value); }
    void addword(uint32_t value) { setword(take(2), value); }
    void addlongs(std::span<const int32_t> values) {
        uint8_t* place = take(4 * values.size());
        for (const int32_t value : values) {
            setlong(place, static_cast<uint32_t>(value));
            place += 4;
        }
    }
    void addbytes(View bytes) { std::ranges::copy(bytes, take(bytes.size())); }

    [[nodiscard]] size_t length() const { return used; }
    [[nodiscard]] Bytes finished() { return std::move(file); }

private:
    uint8_t* take(size_t size) {
        used += size;
        return file.data() + used - size;
    }

    Bytes file;
    size_t used = 0;
};

constexpr size_t iHeaderLength = 32;

// A group of HUNK_DREL32 counts its relocs in a word.
constexpr size_t iShortGroupMost = 65535;

// Bytes of the block for `relocs` relocs behind `before` bytes, with what rounds the file up to whole longs.
size_t blocklength(const Component& component, size_t relocs, size_t before) {
    if (relocs == 0) return 0;
    const size_t shortgroups = (relocs + iShortGroupMost - 1) / iShortGroupMost;
    const size_t length = component.iSize < iShortRelocLimit ? 4 + 2 * (relocs + 2 * shortgroups + 1)
                                                             : 4 * (1 + relocs + 2 + 1);
    return length + ((before + length) & 2);
}

void addheader(FileFiller& file, const Component& component) {
    const uint32_t longs = static_cast<uint32_t>(component.iSize) / 4;
    file.addlong(Hunk::iHeader);
    file.addlong(0); // no resident library names
    file.addlong(1); // one hunk in the table,
    file.addlong(0); // the first
    file.addlong(0); // and the last
    file.addlong(longs);
    file.addlong(component.pcType == cTypeLibrary ? Hunk::iCode : Hunk::iData);
    file.addlong(longs);
}

void addshortrelocs(FileFiller& file, std::span<const int32_t> relocs) {
    file.addlong(Hunk::iDrel32);
    while (!relocs.empty()) {
        const auto group = relocs.first(std::min(relocs.size(), iShortGroupMost));
        file.addword(static_cast<uint32_t>(group.size()));
        file.addword(0); // the target hunk
        for (const int32_t reloc : group)
            file.addword(static_cast<uint32_t>(reloc));
        relocs = relocs.subspan(group.size());
    }
    file.addword(0); // no further group
}

void addlongrelocs(FileFiller& file, std::span<const int32_t> relocs) {
    file.addlong(Hunk::iReloc32);
    file.addlong(static_cast<uint32_t>(relocs.size()));
    file.addlong(0); // the target hunk
    file.addlongs(relocs);
    file.addlong(0); // no further group
}

void addrelocblock(FileFiller& file, const Component& component, std::span<const int32_t> relocs) {
    if (relocs.empty()) return;
    if (component.iSize < iShortRelocLimit)
        addshortrelocs(file, relocs);
    else
        addlongrelocs(file, relocs);
    if ((file.length() & 2) != 0) file.addword(0);
}

} // namespace

bool haslibraryform(const Component& component) {
    return component.pcType == cTypeLibrary || component.pcType == cTypeData;
}

Bytes loadablelibraryform(const Component& component) {
    View extract;
    if (component.pcExtract) extract = *component.pcExtract;
    extract = extract.first(std::min(extract.size(), static_cast<size_t>(std::max(component.iSize, 0))));
    const std::vector<int32_t> relocs = relocsinside(component);
    const size_t before = iHeaderLength + extract.size();
    FileFiller file(before + blocklength(component, relocs.size(), before) + 4);
    addheader(file, component);
    file.addbytes(extract);
    addrelocblock(file, component, relocs);
    file.addlong(Hunk::iEnd);
    return file.finished();
}

bool readyforfile(int32_t rom, int32_t component) {
    if (!requirefit(*findslot(rom), component)) return false;
    return !haslibraryform(*findrecord(rom, component)) || requireextract(rom, component);
}

Bytes componentfile(const KickstartRom& slot, const Component& component) {
    if (haslibraryform(component)) return loadablelibraryform(component);
    message(kProgress, "Saving RAW %d bytes\n", component.iSize);
    const View bytes = part(slot.pcROM, component.iStart, component.iSize);
    return {bytes.begin(), bytes.end()};
}

int32_t loadedlib2loadablelib(int32_t rom, int32_t component, Bytes& buffer, uint32_t& crc) {
    if (!requireselectable(rom)) return 0;
    const Component* record = findrecord(rom, component);
    if (record == nullptr) {
        message(kResult, "Component out of range\n");
        return 0;
    }
    if (!readyforfile(rom, component)) return 0;
    buffer = componentfile(*findslot(rom), *record);
    if (haslibraryform(*record)) crc = crc32buf(buffer);
    return static_cast<int32_t>(buffer.size());
}

} // namespace vantorel
