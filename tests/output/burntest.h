#pragma once
// The fixture for tests of burn profiles: ROMs made of noise, burnt into a folder of their own.

#include "base/message.h"
#include "base/settings.h"
#include "output/burnmodel.h"
#include "output/profile.h"
#include "output/saveprofile.h"
#include "rom/romtest.h"
#include "support/noise.h"

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

namespace vantorel::test {

/// `size` bytes of noise, the same for the same seed.
inline Bytes noisebytes(size_t size, uint32_t seed) {
    Noise noise(seed);
    Bytes bytes(size + 3);
    for (size_t i = 0; i < size; i += 4)
        setlong(bytes.data() + i, noise());
    bytes.resize(size);
    return bytes;
}

/// A position of a profile without a ROM.
inline constexpr int32_t iAbsent = -1;

/// The sizes of the ROMs at F8, E0, B0 and A0.
using Sizes = std::array<int32_t, 4>;

inline Images noiseimages(const Sizes& sizes) {
    Images images;
    for (uint32_t position = 0; position < 4; ++position)
        if (sizes[position] != iAbsent)
            images[position] = noisebytes(static_cast<size_t>(sizes[position]), position + 1);
    return images;
}

/// A new slot that holds `image`.
inline int32_t slotof(const Bytes& image) {
    const int32_t rom = newrom(0, 0);
    slotat(rom).pcROM = image;
    return rom;
}

/// Puts the images into slots of their own and makes them the profile.
inline void profileof(int32_t type, const Images& images) {
    std::array<int32_t, 4> slots{};
    for (size_t position = 0; position < 4; ++position)
        slots[position] = images[position] ? slotof(*images[position]) : -1;
    romprofile(type, slots[0], slots[1], slots[2], slots[3]);
}

/// Every file of a folder.
inline Files filesof(const TempDir& folder) {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        const std::string name = entry.path().filename();
        if (entry.is_regular_file()) files[name] = folder.bytes(name);
    }
    return files;
}

/// `text` with "#" for the numbers of open files.
inline std::string maskdescriptors(const std::string& text) {
    static const std::regex descriptor(R"(\[[0-9]+\]:)");
    return std::regex_replace(text, descriptor, "[#]:");
}

class BurnTest : public FreshTest {
protected:
    /// Burns the profile at verbosity `level` to files called "rom...". What it prints is in `console`.
    int save(bool byteswap, int32_t savesize, int32_t level = 1) {
        int result = -1;
        console = maskdescriptors(at(level, [&] { result = saveprofile(byteswap, savesize, "rom"); }));
        return result;
    }

    TempDir folder;
    InDirectory inside{folder};
    std::string console;
};

} // namespace vantorel::test
