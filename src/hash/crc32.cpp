#include "hash/crc32.h"

#include "hash/crc32_engines.h"

#include <algorithm>

namespace vantorel {

namespace {

constexpr uint32_t iAllOnes = 0xFFFFFFFF;

/// Pieces of this many bytes are still in the cache when the CRC is computed of what was just read.
constexpr int64_t iPiece = 0x20000;

} // namespace

uint32_t updateCRC32(uint8_t byte, uint32_t crc) { return crcstep(byte, crc); }

uint32_t updateCRC32(View data, uint32_t crc) {
    static const CrcEngine fastest = crcengines().front();
    return fastest.update(data, crc);
}

uint32_t crc32buf(View data) { return ~updateCRC32(data, iAllOnes); }

std::optional<uint32_t> crc32rest(InputFile& file) {
    // Kept from call to call: an audit comes here for every file.
    static Bytes buffer(static_cast<size_t>(iPiece));
    uint32_t crc = iAllOnes;
    for (int64_t rest = std::max<int64_t>(file.size(), 0); rest > 0;) {
        const std::span<uint8_t> piece(buffer.data(), static_cast<size_t>(std::min(rest, iPiece)));
        if (file.read(piece) != piece.size()) return std::nullopt;
        crc = updateCRC32(piece, crc);
        rest -= static_cast<int64_t>(piece.size());
    }
    return ~crc;
}

uint32_t crc32file(const std::string& path) {
    InputFile file(path);
    if (!file.isopen()) return 0;
    return crc32rest(file).value_or(0);
}

} // namespace vantorel
