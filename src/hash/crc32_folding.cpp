#include "hash/crc32_engines.h"

#if defined(__x86_64__)

#include <immintrin.h>

#define VANTOREL_FOLDING __attribute__((target("pclmul,sse4.1"), always_inline)) inline
#define VANTOREL_WIDE __attribute__((target("pclmul,vpclmulqdq,avx512f"), always_inline)) inline

namespace vantorel {

namespace {

/// What carries the halves of a 16-byte block over `bits` bits: the first half is 64 bits further from the
/// end than the second. A carry-less product of two reflected quads comes out one place too high, hence the
/// power below.
struct Distance {
    int64_t iFirst;
    int64_t iSecond;

    explicit constexpr Distance(int bits) : iFirst(quad(bits + 64 - 1)), iSecond(quad(bits - 1)) {}

    /// A power of x as a reflected quad, whose low coefficients are in its upper half.
    static constexpr int64_t quad(int exponent) {
        return static_cast<int64_t>(static_cast<uint64_t>(powerofx(exponent)) << 32);
    }
};

constexpr Distance overOne(128);         // a block
constexpr Distance overFour(4 * 128);    // four blocks
constexpr Distance overSixteen(4 * 512); // sixteen blocks

// Blocks: 16 bytes each.

VANTOREL_FOLDING __m128i load(const uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

VANTOREL_FOLDING __m128i powers(const Distance& distance) {
    return _mm_set_epi64x(distance.iSecond, distance.iFirst);
}

/// `next`, and `block` carried forward onto it.
VANTOREL_FOLDING __m128i fold(__m128i block, __m128i by, __m128i next) {
    const __m128i first = _mm_clmulepi64_si128(block, by, 0x00);
    const __m128i second = _mm_clmulepi64_si128(block, by, 0x11);
    return _mm_xor_si128(_mm_xor_si128(first, second), next);
}

/// Folds the whole blocks of `data` into `block`, then leaves the block and the odd bytes to the tables: a
/// message and what it folds to leave the same register.
VANTOREL_FOLDING uint32_t finish(__m128i block, View data) {
    const __m128i by = powers(overOne);
    for (; data.size() >= 16; data = data.subspan(16))
        block = fold(block, by, load(data.data()));
    std::array<uint8_t, 16> bytes;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes.data()), block);
    return updatebytables(data, updatebytables(bytes, 0));
}

// Rows: four blocks, 64 bytes each, in one register.

VANTOREL_WIDE __m512i loadrow(const uint8_t* p) { return _mm512_loadu_si512(p); }

VANTOREL_WIDE __m512i rowpowers(const Distance& distance) {
    const int64_t first = distance.iFirst;
    const int64_t second = distance.iSecond;
    return _mm512_set_epi64(second, first, second, first, second, first, second, first);
}

VANTOREL_WIDE __m512i foldrow(__m512i row, __m512i by, __m512i next) {
    constexpr int xorofthree = 0x96;
    const __m512i first = _mm512_clmulepi64_epi128(row, by, 0x00);
    const __m512i second = _mm512_clmulepi64_epi128(row, by, 0x11);
    return _mm512_ternarylogic_epi64(first, second, next, xorofthree);
}

/// Folds the whole rows of `data` into `row`, then the row's own blocks into one, and finishes.
VANTOREL_WIDE uint32_t finishrow(__m512i row, View data) {
    const __m512i by = rowpowers(overFour);
    for (; data.size() >= 64; data = data.subspan(64))
        row = foldrow(row, by, loadrow(data.data()));
    std::array<uint8_t, 64> bytes;
    _mm512_storeu_si512(bytes.data(), row);
    const __m128i one = powers(overOne);
    __m128i block = load(bytes.data());
    for (size_t next = 16; next < bytes.size(); next += 16)
        block = fold(block, one, load(bytes.data() + next));
    return finish(block, data);
}

} // namespace

__attribute__((target("pclmul,sse4.1"))) uint32_t updatebyfolding(View data, uint32_t crc) {
    if (data.size() < 64) return updatebytables(data, crc);
    const uint8_t* p = data.data();
    __m128i a = _mm_xor_si128(load(p), _mm_cvtsi32_si128(static_cast<int32_t>(crc)));
    __m128i b = load(p + 16);
    __m128i c = load(p + 32);
    __m128i d = load(p + 48);
    const __m128i by = powers(overFour);
    // Four independent chains hide the multiplication's latency.
    for (data = data.subspan(64); data.size() >= 64; data = data.subspan(64)) {
        p = data.data();
        a = fold(a, by, load(p));
        b = fold(b, by, load(p + 16));
        c = fold(c, by, load(p + 32));
        d = fold(d, by, load(p + 48));
    }
    const __m128i one = powers(overOne);
    return finish(fold(fold(fold(a, one, b), one, c), one, d), data);
}

__attribute__((target("pclmul,vpclmulqdq,avx512f"))) uint32_t updatebywidefolding(View data, uint32_t crc) {
    if (data.size() < 256) return updatebyfolding(data, crc);
    const uint8_t* p = data.data();
    const __m128i start = _mm_cvtsi32_si128(static_cast<int32_t>(crc));
    __m512i a = _mm512_xor_si512(loadrow(p), _mm512_zextsi128_si512(start));
    __m512i b = loadrow(p + 64);
    __m512i c = loadrow(p + 128);
    __m512i d = loadrow(p + 192);
    const __m512i by = rowpowers(overSixteen);
    for (data = data.subspan(256); data.size() >= 256; data = data.subspan(256)) {
        p = data.data();
        a = foldrow(a, by, loadrow(p));
        b = foldrow(b, by, loadrow(p + 64));
        c = foldrow(c, by, loadrow(p + 128));
        d = foldrow(d, by, loadrow(p + 192));
    }
    const __m512i one = rowpowers(overFour);
    return finishrow(foldrow(foldrow(foldrow(a, one, b), one, c), one, d), data);
}

} // namespace vantorel

#endif
