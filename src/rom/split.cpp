#include "rom/split.h"

#include "base/files.h"
#include "base/message.h"
#include "rom/checksum.h"
#include "rom/layout.h"
#include "rom/map.h"
#include "rom/store.h"

#include <array>

namespace vantorel {

namespace {

std::optional<FileContents> readdump(const std::string& path) {
    message(kTrace, "Opening %s\n", path.c_str());
    // Two of them have to make an image.
    if (const InputFile file(path); file.size() > iFileSizeMax / 2) {
        message(kResult, "ERROR: %s is too large to be merged (%ld bytes)\n", path.c_str(),
                static_cast<long>(file.size()));
        return std::nullopt;
    }
    auto contents = readfile(path);
    if (!contents) message(kResult, "ERROR: Can't open %s\n", path.c_str());
    return contents;
}

// The two dumps, of equal size.
struct Pair {
    Bytes first;
    Bytes second;
};

// Reads both dumps; none, and a message, when they cannot make an image.
std::optional<Pair> readpair(const std::string& path1, const std::string& path2) {
    auto first = readdump(path1);
    if (!first) return std::nullopt;
    if (first->iExpected == 0) {
        message(kResult, "ERROR: %s is zero bytes long\n", path2.c_str());
        return std::nullopt;
    }
    auto second = readdump(path2);
    if (!second) return std::nullopt;
    if (!first->iscomplete() || !second->iscomplete() || first->bytes.size() != second->bytes.size()) {
        message(kResult, "ERROR: Incomplete read or files are different sizes, can't merge them\n");
        return std::nullopt;
    }
    message(kProgress, "OK: Two files of %d bytes read, attempting merge\n",
            static_cast<int32_t>(first->bytes.size()));
    return Pair{std::move(first->bytes), std::move(second->bytes)};
}

// One way to lay the words of both dumps into an image.
struct WordOrder {
    const char* announcement;
    bool secondfirst;
    bool swapped;
};

constexpr auto cWordOrders = std::to_array<WordOrder>({
    {"Lets try Lo+Hi, not byteswapped\n", false, false},
    {"Checksum invalid... we should discard this and try Lo+Hi, byteswapped\n", false, true},
    {"Checksum invalid... we should discard this and try Hi+Lo\n", true, false},
    {"Checksum invalid... we should discard this and try Hi+Lo, byteswapped\n", true, true},
});

Bytes mergewords(const Pair& dumps, const WordOrder& order) {
    const Bytes& high = order.secondfirst ? dumps.second : dumps.first;
    const Bytes& low = order.secondfirst ? dumps.first : dumps.second;
    Bytes image(2 * high.size());
    interleavewords(high, low, image.data());
    if (order.swapped) swapbytes(image);
    return image;
}

Bytes merge(const Pair& dumps) {
    for (const WordOrder& order : cWordOrders) {
        message(kProgress, "%s", order.announcement);
        Bytes image = mergewords(dumps, order);
        if (validrom(image)) {
            message(kProgress, "Appears to be a ROM and the checksum is valid... we will keep this loaded\n");
            return image;
        }
    }
    message(kProgress,
            "Does not appear to be a ROM or the checksum is invalid... we will simply concatenate the two "
            "chunks of data\n");
    Bytes image = dumps.first;
    image.insert(image.end(), dumps.second.begin(), dumps.second.end());
    return image;
}

} // namespace

int loadsplitrom(const std::string& path1, const std::string& path2, int32_t rom) {
    auto dumps = readpair(path1, path2);
    if (!dumps) return 1;
    if (isdoubled(dumps->first) && isdoubled(dumps->second)) {
        message(kResult, "Data is overburnt... reducing data sizes\n");
        dumps->first.resize(dumps->first.size() / 2);
        dumps->second.resize(dumps->second.size() / 2);
    }
    const Bytes image = merge(*dumps);
    if (image.size() == iSize1M && validrom(image)) {
        loadromdata(rom, part(image, 0, iSize512K));
        iCurrentROM = newrom(0, 0);
        loadromdata(iCurrentROM, part(image, iSize512K, iSize512K));
    } else {
        loadromdata(rom, image);
    }
    return 0;
}

} // namespace vantorel
