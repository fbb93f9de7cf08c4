#include "output/saveprofile.h"

#include "base/bytes.h"
#include "base/files.h"
#include "base/message.h"
#include "base/settings.h"
#include "output/burnlayouts.h"
#include "output/profile.h"
#include "rom/layout.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace vantorel {

namespace {

// The images of the profile, from the lowest address range to the highest; none with a message when there
// are none, or more than a file may hold.
std::optional<Bytes> assemble() {
    int64_t total = 0;
    for (size_t position = 0; position < iProfileSlots; ++position)
        total += profilesize(position);
    if (total > iFileSizeMax) {
        message(kResult, "ERROR: The ROMs of the profile are too large together (%ld bytes)\n",
                static_cast<long>(total));
        return std::nullopt;
    }
    Bytes buffer;
    buffer.reserve(static_cast<size_t>(total));
    message(kProgress, "Adding ROMs to buffer\n");
    for (size_t position = iProfileSlots; position-- > 0;) {
        const KickstartRom* slot = profilerom(position);
        if (slot == nullptr) continue;
        message(kProgress, "Adding ROM profile[%d]=ROM %d to buffer\n", static_cast<int32_t>(position),
                isProfileROM[position]);
        buffer.insert(buffer.end(), slot->pcROM.begin(), slot->pcROM.end());
    }
    message(kTrace, "Buffer is now %dk\n", static_cast<int32_t>(buffer.size() / 1024));
    if (!buffer.empty()) return buffer;
    message(kResult, "Nothing to write, bailing out\n");
    return std::nullopt;
}

// What is to become of the buffer on its way to the files.
struct Burn {
    Bytes buffer;
    bool byteswap;
    int64_t chunk; // bytes of the buffer for each set of files; 0: all

    void dropoptions() {
        if (byteswap || chunk != 0) message(kResult, "WARNING: Removing Byteswap/512k filesize\n");
        byteswap = false;
        chunk = 0;
    }

    void becomedisk(Bytes disk) {
        buffer = std::move(disk);
        dropoptions();
    }
};

// Repeats an image that leaves room on its chips. Returns what numbers the files of the first chips, empty
// when no others are needed.
std::string fitchips(Burn& burn) {
    if (burn.chunk == 0) return "";
    const auto chunks = std::ssize(burn.buffer) / burn.chunk;
    if (chunks >= 2) {
        message(kProgress, "Will need %d chunks for each chip\n", static_cast<int32_t>(chunks));
        return ".0";
    }
    message(kResult, "Only one chunk for each file required\n");
    while (std::ssize(burn.buffer) < burn.chunk) {
        const size_t length = burn.buffer.size();
        message(kResult, "Increasing overburn buffer size from %dk to %dk\n",
                static_cast<int32_t>(length / 1024), static_cast<int32_t>(2 * length / 1024));
        burn.buffer.resize(2 * length);
        std::copy_n(burn.buffer.begin(), length, burn.buffer.begin() + static_cast<std::ptrdiff_t>(length));
    }
    return "";
}

// An output file of the profile, and its path for what is said of it.
class ProfileFile {
public:
    explicit ProfileFile(const std::string& name) : path(savepath(name)), file(path) {
        if (!file.isopen()) reportnotopened(path);
    }

    [[nodiscard]] bool isopen() const { return file.isopen(); }

    void tell(const char* what) const {
        message(kProgress, "%s [%d]:%s\n", what, file.descriptor(), path.c_str());
    }

    // Both return false, with an error line, when not all of it could be written.

    bool writeall(View bytes) {
        file.write(bytes);
        return finish();
    }

    // Every second word of `bytes`, beginning at its byte `start`. Piece by piece: fresh memory for all of it
    // would take longer than the work.
    bool writewords(View bytes, size_t start) {
        std::array<uint8_t, 32768> words;
        while (!bytes.empty()) {
            const View piece = bytes.first(std::min(bytes.size(), 2 * words.size()));
            file.write(View(words).first(takewords(piece, start, words)));
            bytes = bytes.subspan(piece.size());
        }
        return finish();
    }

private:
    bool finish() {
        const bool good = file.close();
        if (!good) reportnotwritten(path);
        return good;
    }

    std::string path;
    OutputFile file;
};

bool writewhole(View bytes, const std::string& name, const char* what) {
    ProfileFile file(name);
    if (!file.isopen()) return false;
    file.tell(what);
    return file.writeall(bytes);
}

// Each of these writes a chunk. The suffix counts on as a character code, also past the end of a text.

bool writesingle(View bytes, const std::string& name, const char* suffix, bool /*isfirst*/) {
    return writewhole(bytes, name + suffix + ".bin", "Single-Chunk");
}

bool writedual(View bytes, const std::string& name, const char* suffix, bool isfirst) {
    ProfileFile high(name + ".hi" + suffix + ".bin");
    if (!high.isopen()) return false;
    ProfileFile low(name + ".lo" + suffix + ".bin");
    if (!low.isopen()) return false;
    high.tell(isfirst ? "Multi-Chunk-0" : "Multi-Chunk0");
    low.tell(isfirst ? "Multi-Chunk-1" : "Multi-Chunk1");
    return high.writewords(bytes, 0) && low.writewords(bytes, 2);
}

bool writedisk(View bytes, const std::string& name, const char* /*suffix*/, bool /*isfirst*/) {
    return writewhole(bytes, name + ".adf", "Single file");
}

// The files that a chunk goes to.
struct FileKind {
    const char* announcement;
    int32_t chips; // that share a chunk
    bool (*write)(View bytes, const std::string& name, const char* suffix, bool isfirst);
};

constexpr FileKind cSingleFile = {"Single rom, no HI/LO separation\n", 1, writesingle};
constexpr FileKind cDualFiles = {"Dual rom, separating into HI/LO\n", 2, writedual};
constexpr FileKind cDiskFile = {"ADF, no HI/LO separation or 512k chunks\n", 1, writedisk};

struct BurnLayout {
    int32_t type;                // a `RomType`
    void (*arrange)(Burn& burn); // what its buffer becomes; null: stays as it is
    FileKind files;
};

constexpr auto cBurnLayouts = std::to_array<BurnLayout>({
    {RomType::iSingle, nullptr, cSingleFile},
    {RomType::iDual, nullptr, cDualFiles},
    {RomType::iCD32, [](Burn& burn) { interleaveCD32(burn.buffer); }, cSingleFile},
    {RomType::iSuperkickFile, [](Burn& burn) { burn.dropoptions(); }, cSingleFile},
    {RomType::iSuperkickADF, [](Burn& burn) { burn.becomedisk(superkickdisk()); }, cDiskFile},
    {RomType::iA1000, [](Burn& burn) { burn.becomedisk(a1000disk()); }, cDiskFile},
});

// That of the profile: like a single one when none was chosen or there is no such layout.
const BurnLayout& burnlayout() {
    const auto* found = std::ranges::find(cBurnLayouts, isROMType, &BurnLayout::type);
    return found != cBurnLayouts.end() ? *found : cBurnLayouts.front();
}

// Without a number in their names all chunks go to the same files, and the last one stays.
bool writechunks(const Burn& burn, const FileKind& files, const std::string& name, std::string suffix) {
    View rest = burn.buffer;
    message(kProgress, "%s", files.announcement);
    for (bool isfirst = true; isfirst || !rest.empty(); isfirst = false) {
        const size_t count =
            burn.chunk != 0 ? std::min(rest.size(), static_cast<size_t>(burn.chunk)) : rest.size();
        if (!files.write(rest.first(count), name, suffix.c_str(), isfirst)) return false;
        rest = rest.subspan(count);
        if (!suffix.empty()) ++suffix.back();
    }
    return true;
}

} // namespace

int saveprofile(bool byteswap, int32_t savesize, const std::string& name) {
    auto images = assemble();
    if (!images) return 1;
    const BurnLayout& layout = burnlayout();
    Burn burn{std::move(*images), byteswap, int64_t{savesize} * 1024 * layout.files.chips};
    if (layout.arrange != nullptr) layout.arrange(burn);
    if (burn.byteswap) {
        message(kResult, "Buffer needs to be byteswapped\n");
        swapbytes(burn.buffer);
    }
    const std::string suffix = fitchips(burn);
    return writechunks(burn, layout.files, name, suffix) ? 0 : 1;
}

} // namespace vantorel
