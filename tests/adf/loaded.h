#pragma once
// Disks loaded the way a user loads them, and what came of it.

#include "adf/disk.h"
#include "base/bytes.h"
#include "base/message.h"
#include "support/capture.h"
#include "support/diskbuilder.h"
#include "support/tempdir.h"

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::test {

using Lines = std::vector<std::string>;

/// The verbosity for as long as the object lives.
class AtLevel {
public:
    explicit AtLevel(int32_t level) : former(iLogLevel) { iLogLevel = level; }
    ~AtLevel() { iLogLevel = former; }
    AtLevel(const AtLevel&) = delete;
    AtLevel& operator=(const AtLevel&) = delete;

private:
    int32_t former;
};

inline Lines linesof(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// Every path that `adflist` gives, up to the first empty one, as the command prints them.
inline Lines listing() {
    Lines paths;
    for (int32_t n = 0; !adflist(n).empty(); n++)
        paths.push_back(adflist(n));
    return paths;
}

struct Loaded {
    std::string volume;
    std::string console;
    Lines paths;
};

/// `image` from a file, through `loadadf`.
inline Loaded load(View image) {
    const TempDir directory;
    const std::string path = directory.file("disk.adf", image);
    Loaded loaded;
    loaded.console = captured([&] { loaded.volume = loadadf(path); });
    loaded.paths = listing();
    return loaded;
}

inline Loaded load(const DiskBuilder& disk) { return load(disk.image()); }

struct Saved {
    int result = -1;
    std::string console;
    Bytes bytes;
    bool exists = false;
};

/// The file `name` of the loaded disk, through `adfsavefile`.
inline Saved save(const std::string& name) {
    const TempDir directory;
    Saved saved;
    saved.console = captured([&] { saved.result = adfsavefile(name, directory.file("out")); });
    saved.exists = directory.exists("out");
    if (saved.exists) saved.bytes = directory.bytes("out");
    return saved;
}

/// `size` bytes in which no two blocks are alike.
inline Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; i++)
        bytes[i] = static_cast<uint8_t>(i * 7 + i / 251 + i / 65521);
    return bytes;
}

inline Bytes bytesof(std::string_view text) { return {text.begin(), text.end()}; }

/// `count` names that share one slot of a hash table, beginning with `first`.
inline Lines chained(const std::string& first, size_t count) {
    Lines names{first};
    for (int i = 0; names.size() < count; i++) {
        const std::string name = first + std::to_string(i);
        if (DiskBuilder::slotof(name) == DiskBuilder::slotof(first)) names.push_back(name);
    }
    return names;
}

inline std::string nameof(FileSystem system) { return system == FileSystem::Ofs ? "OFS" : "FFS"; }

/// Bytes of a file in each of its data blocks.
inline size_t payloadof(FileSystem system) { return system == FileSystem::Ofs ? 488 : 512; }

} // namespace vantorel::test
