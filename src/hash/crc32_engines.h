#pragma once
// The ways to compute the CRC-32, from a table anywhere to carry-less multiplication where the processor has
// it.
//
// The polynomials are kept reflected, as the bits of a message are: the top bit of a word is the coefficient
// of x^0. Folding follows Gopal, Ozturk, Guilford, Wolrich, Feghali, Dixon and Karakoyunlu, "Fast CRC
// Computation for Generic Polynomials Using PCLMULQDQ Instruction" (Intel white paper, 2009).

#include "base/bytes.h"

#include <array>
#include <cstdint>
#include <span>

namespace vantorel {

/// The generator polynomial of ISO 3309 and IEEE 802.3, reflected, without its x^32.
inline constexpr uint32_t iPolynomialCRC32 = 0xEDB88320;

/// `value` times x, modulo the generator.
constexpr uint32_t timesx(uint32_t value) { return (value >> 1) ^ ((value & 1) != 0 ? iPolynomialCRC32 : 0); }

/// x to the power of `exponent`, modulo the generator.
constexpr uint32_t powerofx(int exponent) {
    uint32_t value = 0x80000000;
    for (int i = 0; i < exponent; ++i)
        value = timesx(value);
    return value;
}

/// For each byte, what eight steps of the register make of it.
constexpr std::array<uint32_t, 256> crctable() {
    std::array<uint32_t, 256> table{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        table[byte] = byte;
        for (int bit = 0; bit < 8; ++bit)
            table[byte] = timesx(table[byte]);
    }
    return table;
}

inline constexpr std::array<uint32_t, 256> _crc_32_tab = crctable();

/// The register after one more byte.
constexpr uint32_t crcstep(uint8_t byte, uint32_t crc) {
    return (crc >> 8) ^ _crc_32_tab[(crc ^ byte) & 0xFF];
}

/// A way to compute the CRC register after all of `data`.
struct CrcEngine {
    const char* cName;
    uint32_t (*update)(View data, uint32_t crc);
};

/// Sixteen bytes a step by table look-up; runs anywhere.
[[nodiscard]] uint32_t updatebytables(View data, uint32_t crc);

#if defined(__x86_64__)
/// Four times 128 bits a step; needs PCLMULQDQ.
[[nodiscard]] uint32_t updatebyfolding(View data, uint32_t crc);

/// Four times 512 bits a step; needs VPCLMULQDQ and AVX-512F.
[[nodiscard]] uint32_t updatebywidefolding(View data, uint32_t crc);
#endif

/// The engines that this processor can run, the fastest first.
[[nodiscard]] std::span<const CrcEngine> crcengines();

} // namespace vantorel
