#include "rom/layout.h"

#include "rom/header.h"

#include <algorithm>
#include <cstring>

namespace vantorel {

void swapbytes(std::span<uint8_t> data) {
    uint8_t* bytes = data.data();
    for (size_t words = data.size() / 2; words > 0; --words, bytes += 2) {
        // As a word, so that the compiler can take many at once.
        uint16_t word = 0;
        std::memcpy(&word, bytes, sizeof word);
        word = static_cast<uint16_t>(word << 8 | word >> 8);
        std::memcpy(bytes, &word, sizeof word);
    }
}

Bytes byteswapped(View data) {
    Bytes swapped(data.begin(), data.end());
    swapbytes(swapped);
    return swapped;
}

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

void interleavewords(View high, View low, uint8_t* to) {
    for (size_t i = 0; i + 1 < high.size(); i += 2, to += 4) {
        std::memcpy(to, high.data() + i, 2);
        std::memcpy(to + 2, low.data() + i, 2);
    }
}

bool isdoubled(View data) {
    const size_t half = data.size() / 2;
    return data.size() % 2 == 0 && std::ranges::equal(data.first(half), data.last(half));
}

void deinterleaveCD32(Bytes& data) {
    constexpr size_t quarter = iSize1M / 4;
    const Bytes bytes(data.begin(), data.begin() + iSize1M);
    const View file = bytes;
    interleavewords(file.first(quarter), file.subspan(2 * quarter, quarter), data.data());
    interleavewords(file.subspan(quarter, quarter), file.last(quarter), data.data() + 2 * quarter);
}

} // namespace vantorel
