#include "base/bytes.h"

namespace vantorel {

const std::array<uint8_t, 4>& sUINT32(uint32_t value) {
    static std::array<uint8_t, 4> bytes;
    setlong(bytes.data(), value);
    return bytes;
}

const std::array<uint8_t, 2>& sUINT16(uint32_t value) {
    static std::array<uint8_t, 2> bytes;
    setword(bytes.data(), value);
    return bytes;
}

bool putlong(std::span<uint8_t> data, int64_t offset, uint32_t value) {
    if (!isinside(data, offset, 4)) return false;
    setlong(data.data() + offset, value);
    return true;
}

void appendlong(Bytes& data, uint32_t value) {
    const auto& bytes = sUINT32(value);
    data.insert(data.end(), bytes.begin(), bytes.end());
}

void appendword(Bytes& data, uint32_t value) {
    const auto& bytes = sUINT16(value);
    data.insert(data.end(), bytes.begin(), bytes.end());
}

} // namespace vantorel
