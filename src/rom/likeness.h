#pragma once
// How much of two pieces of images is the same, but for where they run.

#include "base/bytes.h"

#include <cstdint>

namespace vantorel {

/// How many of `size` bytes are the same in `mine` from offset `mystart` and in `theirs` from `theirstart`. A
/// long that is larger in `mine` by just `difference` counts whole, even where it reaches beyond `size`, any
/// other byte for itself, one outside either not at all. Calls `onlong` with the place of each such long in
/// turn, in bytes from the start.
template <class OnLong>
[[nodiscard]] int32_t countlike(View mine, int64_t mystart, View theirs, int64_t theirstart, int64_t size,
                                uint32_t difference, OnLong onlong) {
    int32_t count = 0;
    for (int64_t at = 0; at < size;) {
        const auto a = longat(mine, mystart + at);
        const auto b = longat(theirs, theirstart + at);
        if (a && b && *a - *b == difference) {
            onlong(static_cast<int32_t>(at));
            count += 4;
            at += 4;
            continue;
        }
        if (isinside(mine, mystart + at, 1) && isinside(theirs, theirstart + at, 1) &&
            mine[static_cast<size_t>(mystart + at)] == theirs[static_cast<size_t>(theirstart + at)])
            ++count;
        ++at;
    }
    return count;
}

} // namespace vantorel
