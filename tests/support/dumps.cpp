#include "support/dumps.h"

#include <algorithm>
#include <stdexcept>

namespace vantorel::test {

namespace {

void appendpart(Bytes& bytes, View image, size_t offset, size_t size) {
    const View piece = image.subspan(offset, size);
    bytes.insert(bytes.end(), piece.begin(), piece.end());
}

/// Every second word of `image`, beginning with the first or the second.
Bytes words(View image, size_t from) {
    Bytes half;
    half.reserve(image.size() / 2);
    for (size_t i = from; i < image.size(); i += 4)
        appendpart(half, image, i, 2);
    return half;
}

void requiremultiple(View image, size_t unit) {
    if (image.size() % unit != 0)
        throw std::logic_error("the image's length does not suit this kind of dump");
}

} // namespace

Bytes byteswapped(View bytes) {
    Bytes swapped(bytes.begin(), bytes.end());
    for (size_t i = 0; i + 1 < swapped.size(); i += 2)
        std::swap(swapped[i], swapped[i + 1]);
    return swapped;
}

ChipPair splitpair(View image, WordOrder order) {
    requiremultiple(image, 4);
    ChipPair pair{words(image, 0), words(image, 2)};
    const bool isswapped = order == WordOrder::LoHiSwapped || order == WordOrder::HiLoSwapped;
    if (isswapped) pair = {byteswapped(pair.first), byteswapped(pair.second)};
    const bool ishilo = order == WordOrder::HiLo || order == WordOrder::HiLoSwapped;
    if (ishilo) std::swap(pair.first, pair.second);
    return pair;
}

Bytes overburnt(View bytes, int times) {
    Bytes repeated;
    for (int i = 0; i < times; ++i)
        repeated.insert(repeated.end(), bytes.begin(), bytes.end());
    return repeated;
}

Bytes cd32interleaved(View image) {
    requiremultiple(image, 8);
    const size_t half = image.size() / 2;
    return cd32interleaved(image.first(half), image.subspan(half));
}

Bytes cd32interleaved(View lower, View upper) {
    requiremultiple(lower, 4);
    requiremultiple(upper, 4);
    return joined(joined(words(lower, 0), words(upper, 0)), joined(words(lower, 2), words(upper, 2)));
}

Bytes container(const std::vector<Part>& parts, int32_t size, uint8_t fill) {
    Bytes file(static_cast<size_t>(size), fill);
    for (const Part& piece : parts) {
        const size_t end = static_cast<size_t>(piece.offset) + piece.bytes.size();
        if (size != 0 && end > file.size()) throw std::logic_error("a part does not fit the container");
        if (end > file.size()) file.resize(end, fill);
        std::ranges::copy(piece.bytes, file.begin() + piece.offset);
    }
    return file;
}

Bytes joined(View first, View second) {
    Bytes both(first.begin(), first.end());
    both.insert(both.end(), second.begin(), second.end());
    return both;
}

} // namespace vantorel::test
