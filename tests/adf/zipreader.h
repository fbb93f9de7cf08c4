#pragma once
// Reads a zip archive of stored entries front to back, and takes nothing on trust.

#include "base/bytes.h"
#include "support/checksums.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantorel::test {

struct ZipEntry {
    std::string name;
    uint16_t date = 0;
    uint16_t time = 0;
    uint32_t crc = 0;
    Bytes data{};
};

/// Walks the central directory and the local entries beside it. Each member that reads throws
/// std::runtime_error at the first thing that is not as it must be.
class ZipReader {
public:
    explicit ZipReader(View bytes) : file(bytes) {}

    std::vector<ZipEntry> read() {
        const auto end = static_cast<int64_t>(file.size()) - 22;
        demand(number(end, 4) == 0x06054B50, "the end's signature");
        demand(number(end + 4, 4) == 0 && number(end + 20, 2) == 0, "a single disk and no comment");
        const int64_t count = number(end + 8, 2);
        demand(number(end + 10, 2) == count, "one count of its entries");
        const int64_t directory = central = number(end + 16, 4);
        std::vector<ZipEntry> entries;
        while (std::ssize(entries) < count)
            entries.push_back(entry());
        demand(local == directory, "entries up to the central directory");
        demand(central == end && number(end + 12, 4) == end - directory, "a central directory up to the end");
        return entries;
    }

private:
    static void demand(bool holds, const char* what) {
        if (!holds) throw std::runtime_error(std::string("an archive without ") + what);
    }

    /// The little-endian number of `size` bytes.
    [[nodiscard]] int64_t number(int64_t offset, int64_t size) const {
        int64_t value = 0;
        const std::string bytes = text(offset, size);
        for (size_t i = bytes.size(); i-- > 0;)
            value = value << 8 | static_cast<uint8_t>(bytes[i]);
        return value;
    }

    [[nodiscard]] std::string text(int64_t offset, int64_t size) const {
        demand(isinside(file, offset, size), "its last bytes");
        const View bytes = part(file, offset, size);
        return {bytes.begin(), bytes.end()};
    }

    /// The next entry of the central directory, with the local one.
    ZipEntry entry() {
        demand(number(central, 4) == 0x02014B50, "the signature of a central entry");
        demand(number(local, 4) == 0x04034B50, "the signature of a local entry");
        // Versions, flags and method; extra field, comment, disk and attributes.
        demand(number(central + 4, 8) == 0 && number(local + 4, 6) == 0, "zeros before the times");
        demand(number(central + 30, 8) == 0 && number(central + 38, 4) == 0, "zeros before the offset");
        demand(text(central + 12, 20) == text(local + 10, 20), "headers that say the same twice");
        demand(number(central + 42, 4) == local, "the offset of an entry");
        ZipEntry entry = {.name = text(local + 30, number(local + 26, 2)),
                          .date = static_cast<uint16_t>(number(local + 12, 2)),
                          .time = static_cast<uint16_t>(number(local + 10, 2)),
                          .crc = static_cast<uint32_t>(number(local + 14, 4)),
                          .data = contents()};
        const auto length = static_cast<int64_t>(entry.name.size());
        demand(text(central + 46, length) == entry.name, "names that say the same twice");
        demand(crc32of(entry.data) == entry.crc, "the CRC32 of an entry");
        central += 46 + length;
        local += 30 + length + std::ssize(entry.data);
        return entry;
    }

    [[nodiscard]] Bytes contents() const {
        const int64_t size = number(local + 22, 4);
        demand(number(local + 18, 4) == size, "one size of an entry");
        const int64_t offset = local + 30 + number(local + 26, 2);
        demand(isinside(file, offset, size), "the end of an entry");
        const View bytes = part(file, offset, size);
        return {bytes.begin(), bytes.end()};
    }

    View file;
    int64_t local = 0;   ///< the next local header
    int64_t central = 0; ///< the next entry of the central directory
};

/// Every entry of the archive in the order of its central directory. Throws std::runtime_error when anything
/// in it is not as it must be, or lies where nothing belongs.
[[nodiscard]] inline std::vector<ZipEntry> readzip(View file) { return ZipReader(file).read(); }

} // namespace vantorel::test
