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
#include <cstring>
#include <optional>
#include <span>

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
};

void arrange(Burn& burn) {
    switch (isROMType) {
    case RomType::iCD32:
        interleaveCD32(burn.buffer);
        break;
    case RomType::iSuperkickFile:
        burn.dropoptions();
        break;
    case RomType::iSuperkickADF:
        burn.buffer = superkickdisk();
        burn.dropoptions();
        break;
    case RomType::iA1000:
        burn.buffer = a1000disk();
        burn.dropoptions();
        break;
    default:
        break;
    }
}

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

// Copies every second word of `from`, beginning at its byte `start`, to `to`, which has room for half of it.
// The last may be cut short. Returns the number of bytes.
size_t takewords(View from, size_t start, std::span<uint8_t> to) {
    const size_t whole = from.size() / 4;
    for (size_t i = 0; i < whole; ++i)
        std::memcpy(to.data() + 2 * i, from.data() + 4 * i + start, 2);
    size_t count = 2 * whole;
    const size_t rest = 4 * whole + start;
    for (size_t at = rest; at < std::min(rest + 2, from.size()); ++at)
        to[count++] = from[at];
    return count;
}

// An output file of the profile, and its path for what is said of it.
class ProfileFile {
public:
    explicit ProfileFile(const std::string& name) : path(savepath(name)), file(path) {
        if (!file.isopen()) reportnotopened(path);
    }

    [[nodiscard]] bool isopen() const { return file.isopen(); }

    void tell(const char* what) const {
        message(kProgress, "%s [%d]:%s\n", what, file.number(), path.c_str());
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

bool writesingle(View bytes, const std::string& name, const char* what) {
    ProfileFile file(name);
    if (!file.isopen()) return false;
    file.tell(what);
    return file.writeall(bytes);
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

// The suffix counts on as a character code, also past the end of a text.
bool writechunk(View bytes, const std::string& name, const char* suffix, bool isfirst) {
    switch (isROMType) {
    case RomType::iDual:
        return writedual(bytes, name, suffix, isfirst);
    case RomType::iSuperkickADF:
    case RomType::iA1000:
        return writesingle(bytes, name + ".adf", "Single file");
    default:
        return writesingle(bytes, name + suffix + ".bin", "Single-Chunk");
    }
}

void announcefiles() {
    switch (isROMType) {
    case RomType::iDual:
        message(kProgress, "Dual rom, separating into HI/LO\n");
        break;
    case RomType::iSuperkickADF:
    case RomType::iA1000:
        message(kProgress, "ADF, no HI/LO separation or 512k chunks\n");
        break;
    default:
        message(kProgress, "Single rom, no HI/LO separation\n");
        break;
    }
}

// Without a number in their names all chunks go to the same files, and the last one stays.
bool writechunks(const Burn& burn, const std::string& name, std::string suffix) {
    View rest = burn.buffer;
    announcefiles();
    for (bool isfirst = true; isfirst || !rest.empty(); isfirst = false) {
        const size_t count =
            burn.chunk != 0 ? std::min(rest.size(), static_cast<size_t>(burn.chunk)) : rest.size();
        if (!writechunk(rest.first(count), name, suffix.c_str(), isfirst)) return false;
        rest = rest.subspan(count);
        if (!suffix.empty()) ++suffix.back();
    }
    return true;
}

} // namespace

int saveprofile(bool byteswap, int32_t savesize, const std::string& name) {
    auto images = assemble();
    if (!images) return 1;
    const int64_t chips = isROMType == RomType::iDual ? 2 : 1;
    Burn burn{std::move(*images), byteswap, int64_t{savesize} * 1024 * chips};
    arrange(burn);
    if (burn.byteswap) {
        message(kResult, "Buffer needs to be byteswapped\n");
        swapbytes(burn.buffer);
    }
    const std::string suffix = fitchips(burn);
    return writechunks(burn, name, suffix) ? 0 : 1;
}

} // namespace vantorel
