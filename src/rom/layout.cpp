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

bool isdoubled(View data) {
    const size_t half = data.size() / 2;
    return data.size() % 2 == 0 && std::ranges::equal(data.first(half), data.last(half));
}

void deinterleaveCD32(Bytes& data) {
    constexpr size_t quarter = iSize1M / 4;
    const Bytes file(data.begin(), data.begin() + iSize1M);
    for (size_t half = 0; half < 2; ++half) {
        const auto high = file.begin() + static_cast<std::ptrdiff_t>(half * quarter);
        const auto low = high + static_cast<std::ptrdiff_t>(2 * quarter);
        auto target = data.begin() + static_cast<std::ptrdiff_t>(half * 2 * quarter);
        for (std::ptrdiff_t word = 0; word < static_cast<std::ptrdiff_t>(quarter); word += 2) {
            target = std::copy_n(high + word, 2, target);
            target = std::copy_n(low + word, 2, target);
        }
    }
}

} // namespace vantorel
