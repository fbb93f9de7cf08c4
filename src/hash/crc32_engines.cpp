#include "hash/crc32_engines.h"

#include <vector>

namespace vantorel {

namespace {

constexpr size_t iSlices = 16;
using SliceTables = std::array<std::array<uint32_t, 256>, iSlices>;

/// Table n carries a byte over n more bytes that are zero.
constexpr SliceTables slicetables() {
    SliceTables tables{};
    tables[0] = _crc_32_tab;
    for (size_t n = 1; n < iSlices; ++n)
        for (size_t byte = 0; byte < 256; ++byte)
            tables[n][byte] = crcstep(0, tables[n - 1][byte]);
    return tables;
}

constexpr SliceTables slices = slicetables();

/// The register over the sixteen bytes at `p`, all of them looked up independently of each other.
uint32_t step(const uint8_t* p, uint32_t crc) {
    uint32_t next = 0;
    for (size_t i = 0; i < 4; ++i)
        next ^= slices[15 - i][p[i] ^ ((crc >> (8 * i)) & 0xFF)];
    for (size_t i = 4; i < iSlices; ++i)
        next ^= slices[15 - i][p[i]];
    return next;
}

std::vector<CrcEngine> usableengines() {
    std::vector<CrcEngine> engines;
#if defined(__x86_64__)
    const bool isfolding = __builtin_cpu_supports("pclmul") != 0;
    const bool iswide = __builtin_cpu_supports("vpclmulqdq") != 0 && __builtin_cpu_supports("avx512f") != 0;
    if (isfolding && iswide) engines.push_back({"wide folding", updatebywidefolding});
    if (isfolding) engines.push_back({"folding", updatebyfolding});
#endif
    engines.push_back({"tables", updatebytables});
    return engines;
}

} // namespace

uint32_t updatebytables(View data, uint32_t crc) {
    const uint8_t* p = data.data();
    size_t rest = data.size();
    for (; rest >= iSlices; rest -= iSlices, p += iSlices)
        crc = step(p, crc);
    for (; rest > 0; --rest, ++p)
        crc = crcstep(*p, crc);
    return crc;
}

std::span<const CrcEngine> crcengines() {
    static const std::vector<CrcEngine> engines = usableengines();
    return engines;
}

} // namespace vantorel
