#include "hash/library.h"

#include "base/directory.h"
#include "base/message.h"
#include "base/text.h"

#include <utility>

namespace vantorel {

std::vector<std::string> pcVanHashDir;
std::vector<HashFileEntry> psVanHashFile;
std::array<int32_t, 256> iIndexSize{};
std::array<int32_t, 256> iIndexPos{};

namespace {

/// The value of each character as a hexadecimal digit; 0 for what is none.
constexpr std::array<uint8_t, 256> cLut = [] {
    std::array<uint8_t, 256> table{};
    for (size_t digit = 0; digit < 10; ++digit)
        table['0' + digit] = static_cast<uint8_t>(digit);
    for (size_t digit = 10; digit < 16; ++digit) {
        table['A' + digit - 10] = static_cast<uint8_t>(digit);
        table['a' + digit - 10] = static_cast<uint8_t>(digit);
    }
    return table;
}();

/// The bucket of a name: for "0x" and a CRC32 its top byte, else 0.
size_t bucketof(std::string_view name) {
    if (!name.starts_with("0x")) return 0;
    const auto digit = [&](size_t at) -> size_t {
        return at < name.size() ? cLut[static_cast<uint8_t>(name[at])] : 0;
    };
    return 16 * digit(2) + digit(3);
}

/// Scans directory `index`: its files and its subdirectories go to the ends of the lists.
void addhashes(size_t index) {
    // The list that holds the path grows.
    const std::string path = pcVanHashDir[index];
    scandirectory(
        index, path, [](std::string found) { pcVanHashDir.push_back(std::move(found)); },
        [index](const char* name) {
            psVanHashFile.push_back({static_cast<uint32_t>(index), name});
        });
}

void countbuckets() {
    for (const auto& file : psVanHashFile)
        ++iIndexSize[bucketof(file.cName)];
    int32_t position = 0;
    for (size_t bucket = 0; bucket < iIndexPos.size(); ++bucket) {
        iIndexPos[bucket] = position;
        position += iIndexSize[bucket];
    }
}

/// A counting sort, which keeps the order of the scan within a bucket. All memory is had before the tables
/// are filled: they only count for a list in order.
void sortbybucket() {
    std::vector<HashFileEntry> sorted(psVanHashFile.size());
    countbuckets();
    std::array<int32_t, 256> place = iIndexPos;
    for (auto& file : psVanHashFile) {
        int32_t& position = place[bucketof(file.cName)];
        sorted[static_cast<size_t>(position++)] = std::move(file);
    }
    psVanHashFile = std::move(sorted);
}

/// The first file of the bucket of `name` whose own name begins with it; null when there is none.
const HashFileEntry* lookup(std::string_view name) {
    // The bucket tables outlive the list.
    if (psVanHashFile.empty()) return nullptr;
    const bool istraced = isshown(kTrace);
    const size_t bucket = bucketof(name);
    const int32_t end = iIndexPos[bucket] + iIndexSize[bucket];
    for (int32_t position = iIndexPos[bucket]; position < end; ++position) {
        const auto& file = psVanHashFile[static_cast<size_t>(position)];
        if (istraced) message(kTrace, "Checking %d %s\n", position, file.cName.c_str());
        if (startswithnocase(file.cName, name)) return &file;
    }
    return nullptr;
}

} // namespace

void loadhashes(const std::string& path) {
    // `path` may be one of the texts that go.
    std::string root = path;
    // Should memory run out on the way, what is there then has no buckets.
    iIndexSize.fill(0);
    freehashes();
    pcVanHashDir.push_back(std::move(root));
    // Breadth first: each scan may lengthen the list.
    for (size_t index = 0; index < pcVanHashDir.size(); ++index)
        addhashes(index);
    sortbybucket();
}

void freehashes() {
    message(kTrace, "Freeing all hash file memory\n");
    if (pcVanHashDir.empty()) return;
    message(kTrace, "Freeing %d hash dirs\n", static_cast<int>(pcVanHashDir.size()));
    pcVanHashDir = {};
    message(kTrace, "Freeing %d hash files\n", static_cast<int>(psVanHashFile.size()));
    psVanHashFile = {};
}

const std::string& findhashfile(const char* name) {
    static std::string cFile;
    // The name may be the former result.
    const Text wanted = name ? Text(name) : std::nullopt;
    cFile.clear();
    if (!wanted) return cFile;
    message(kTrace, "Finding %s from %d entries\n", wanted->c_str(), static_cast<int>(psVanHashFile.size()));
    if (const HashFileEntry* file = lookup(*wanted)) {
        cFile = hashfilepath(*file);
        message(kTrace, "found %s returning...\n", cFile.c_str());
    }
    return cFile;
}

std::string hashfilepath(const HashFileEntry& file) {
    return joinpath(pcVanHashDir[file.iDirectory], file.cName);
}

} // namespace vantorel
