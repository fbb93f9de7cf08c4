#pragma once
// Byte buffers and the 68000's byte order (most significant byte first).

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace vantorel {

using Bytes = std::vector<uint8_t>;
using View = std::span<const uint8_t>;

/// The bytes of `text`, which live as long as it does.
[[nodiscard]] inline View textbytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

/// The big-endian long in the four bytes at `p`.
[[nodiscard]] inline uint32_t iUINT32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 |
           static_cast<uint32_t>(p[2]) << 8 | static_cast<uint32_t>(p[3]);
}

/// The big-endian word in the two bytes at `p`.
[[nodiscard]] inline uint16_t iUINT16(const uint8_t* p) { return static_cast<uint16_t>(p[0] << 8 | p[1]); }

/// Stores `value` big-endian in the four bytes at `p`.
inline void setlong(uint8_t* p, uint32_t value) {
    // In one piece: in a loop, g++ makes far slower code of four single bytes.
    if constexpr (std::endian::native == std::endian::little) value = __builtin_bswap32(value);
    std::memcpy(p, &value, sizeof value);
}

/// Stores the low 16 bits of `value` big-endian in the two bytes at `p`.
inline void setword(uint8_t* p, uint32_t value) {
    p[0] = static_cast<uint8_t>(value >> 8);
    p[1] = static_cast<uint8_t>(value);
}

/// `value` as four bytes, most significant first, in one buffer that the next call overwrites.
const std::array<uint8_t, 4>& sUINT32(uint32_t value);

/// The low 16 bits of `value` as two bytes, most significant first, in one buffer that the next call
/// overwrites.
const std::array<uint8_t, 2>& sUINT16(uint32_t value);

/// Whether [offset, offset + size) lies inside `data`. Offsets and sizes in bytes; negative ones never do.
[[nodiscard]] inline bool isinside(View data, int64_t offset, int64_t size) {
    const auto length = static_cast<int64_t>(data.size());
    return offset >= 0 && size >= 0 && offset <= length && size <= length - offset;
}

/// `size` bytes of `data` from `offset`; only for ranges that `isinside` admits.
[[nodiscard]] inline View part(View data, int64_t offset, int64_t size) {
    return data.subspan(static_cast<size_t>(offset), static_cast<size_t>(size));
}

/// The big-endian long at byte `offset` of `data`; none when any of its four bytes lies outside.
[[nodiscard]] inline std::optional<uint32_t> longat(View data, int64_t offset) {
    if (!isinside(data, offset, 4)) return std::nullopt;
    return iUINT32(data.data() + offset);
}

/// The big-endian word at byte `offset` of `data`; none when any of its two bytes lies outside.
[[nodiscard]] inline std::optional<uint16_t> wordat(View data, int64_t offset) {
    if (!isinside(data, offset, 2)) return std::nullopt;
    return iUINT16(data.data() + offset);
}

/// Stores `value` big-endian at byte `offset` of `data`. False, and nothing stored, when it does not fit
/// inside.
[[nodiscard]] bool putlong(std::span<uint8_t> data, int64_t offset, uint32_t value);

/// Appends `value` big-endian.
void appendlong(Bytes& data, uint32_t value);

/// Appends the low 16 bits of `value` big-endian.
void appendword(Bytes& data, uint32_t value);

} // namespace vantorel
