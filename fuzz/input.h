#pragma once
// What the fuzz targets share.

#include "base/bytes.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace vantorel::test {

/// Takes numbers and bytes off the front of a fuzzer's input; zeros and nothing when there is none left.
class Input {
public:
    explicit Input(View input) : left(input) {}

    [[nodiscard]] bool isempty() const { return left.empty(); }
    /// What has not been taken yet.
    [[nodiscard]] View rest() const { return left; }

    View bytes(size_t count) {
        const View taken = left.first(std::min(count, left.size()));
        left = left.subspan(taken.size());
        return taken;
    }
    int32_t byte() {
        const View taken = bytes(1);
        return taken.empty() ? 0 : taken[0];
    }
    int32_t word() {
        const int32_t high = byte();
        return high << 8 | byte();
    }

private:
    View left;
};

/// The fuzzer speaks on standard error; what the program says would only slow it down. False when it cannot
/// be silenced.
inline bool silence() { return std::freopen("/dev/null", "w", stdout) != nullptr; }

/// Each target has this function: does with an input what is to be tried, and aborts on what may not be.
void exercise(View bytes);

} // namespace vantorel::test
