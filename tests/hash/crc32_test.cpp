#include "hash/crc32.h"
#include "hash/crc32_engines.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string_view>
#include <sys/stat.h>

// The expected values that are no properties were computed with Python's zlib.crc32.

namespace vantorel::test {

namespace {

Bytes bytesof(std::string_view text) { return {text.begin(), text.end()}; }

/// (i * 7 + 3) & 255 for each i.
Bytes counted(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + 3);
    return bytes;
}

/// Bytes without a period, from a linear congruence.
Bytes scattered(size_t size) {
    Bytes bytes(size);
    uint32_t state = 0x12345678;
    for (auto& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(state >> 24);
    }
    return bytes;
}

uint32_t bytewise(View data, uint32_t crc) {
    for (const uint8_t byte : data)
        crc = updateCRC32(byte, crc);
    return crc;
}

} // namespace

TEST(Crc32, TheTableIsThatOfThePolynomial) {
    EXPECT_EQ(_crc_32_tab[0], 0U);
    EXPECT_EQ(_crc_32_tab[1], 0x77073096U);
    EXPECT_EQ(_crc_32_tab[128], 0xEDB88320U);
    EXPECT_EQ(_crc_32_tab[255], 0x2D02EF8DU);
}

TEST(Crc32, OfNoBytesIsZero) { EXPECT_EQ(crc32buf({}), 0U); }

TEST(Crc32, OfTheNineDigitsIsTheCheckValue) { EXPECT_EQ(crc32buf(bytesof("123456789")), 0xCBF43926U); }

TEST(Crc32, OfKnownBytes) {
    EXPECT_EQ(crc32buf(bytesof("a")), 0xE8B7BE43U);
    EXPECT_EQ(crc32buf(bytesof("Kickstart")), 0xF45C3997U);
    EXPECT_EQ(crc32buf(Bytes(32, 0)), 0x190A55ADU);
    EXPECT_EQ(crc32buf(Bytes(32, 0xFF)), 0xFF6CAB0BU);
    EXPECT_EQ(crc32buf(counted(1000003)), 0x095D6E8AU);
}

TEST(Crc32, OfBytesWhoseCrcIsZero) { EXPECT_EQ(crc32buf(Bytes{0x9D, 0x0A, 0xD9, 0x6D}), 0U); }

TEST(Crc32, ByteAfterByteGivesTheSameAsTheBuffer) {
    EXPECT_EQ(~bytewise(bytesof("123456789"), 0xFFFFFFFF), 0xCBF43926U);
    EXPECT_EQ(updateCRC32(uint8_t{1}, 0), 0x77073096U) << "the byte is the first argument";
}

TEST(Crc32, ARegisterGoesOnFromPieceToPiece) {
    const Bytes data = counted(2000);
    const uint32_t whole = updateCRC32(View(data), 0xFFFFFFFF);
    for (const size_t cut : {0U, 1U, 15U, 63U, 64U, 255U, 256U, 1000U, 2000U}) {
        const uint32_t first = updateCRC32(View(data).first(cut), 0xFFFFFFFF);
        EXPECT_EQ(updateCRC32(View(data).subspan(cut), first), whole) << cut;
    }
}

TEST(Crc32Engines, EndWithTheOneThatRunsAnywhere) {
    ASSERT_FALSE(crcengines().empty());
    EXPECT_EQ(crcengines().back().update, updatebytables);
}

TEST(Crc32Engines, AgreeWithTheTableAtEveryLengthAndAlignment) {
    const Bytes data = scattered(64 + 1100);
    for (size_t start = 0; start < 64; ++start) {
        uint32_t expected = 0xFFFFFFFF;
        for (size_t length = 0; length <= 1100; ++length) {
            for (const auto& engine : crcengines())
                ASSERT_EQ(engine.update(View(data).subspan(start, length), 0xFFFFFFFF), expected)
                    << engine.cName << ", " << length << " bytes from " << start;
            if (length < 1100) expected = updateCRC32(data[start + length], expected);
        }
    }
}

TEST(Crc32Engines, AgreeFromEveryRegister) {
    const Bytes data = scattered(777);
    for (const uint32_t crc : {0U, 1U, 0x80000000U, 0xDEBB20E3U, 0xFFFFFFFEU})
        for (const auto& engine : crcengines())
            EXPECT_EQ(engine.update(data, crc), bytewise(data, crc)) << engine.cName;
}

TEST(Crc32Engines, AgreeOnLargeBuffers) {
    const Bytes data = counted(1000003);
    for (const auto& engine : crcengines())
        EXPECT_EQ(~engine.update(data, 0xFFFFFFFF), 0x095D6E8AU) << engine.cName;
}

TEST(Crc32Engines, FindEverySingleBit) {
    Bytes data(300, 0);
    const uint32_t clean = bytewise(data, 0);
    for (size_t bit = 0; bit < 8 * data.size(); ++bit) {
        data[bit / 8] = static_cast<uint8_t>(1U << (bit % 8));
        for (const auto& engine : crcengines())
            ASSERT_NE(engine.update(data, 0), clean) << engine.cName << ", bit " << bit;
        data[bit / 8] = 0;
    }
}

TEST(Crc32File, OfAWholeFile) {
    const TempDir directory;
    EXPECT_EQ(crc32file(directory.file("digits", "123456789")), 0xCBF43926U);
    EXPECT_EQ(crc32file(directory.file("large", counted(1000003))), 0x095D6E8AU);
}

TEST(Crc32File, OfAnEmptyFileIsZero) {
    const TempDir directory;
    EXPECT_EQ(crc32file(directory.file("empty", "")), 0U);
}

TEST(Crc32File, AroundTheSizeOfAPiece) {
    const TempDir directory;
    constexpr size_t piece = 0x20000;
    EXPECT_EQ(crc32file(directory.file("below", Bytes(piece - 1))), 0x56DB002BU);
    EXPECT_EQ(crc32file(directory.file("exact", Bytes(piece))), 0x7EE8CDCDU);
    EXPECT_EQ(crc32file(directory.file("above", Bytes(piece + 1))), 0x37A9B94DU);
}

TEST(Crc32File, WhatCannotBeOpenedIsZero) {
    const TempDir directory;
    EXPECT_EQ(crc32file(directory.file("missing")), 0U);
    EXPECT_EQ(crc32file(directory.path()), 0U);
    EXPECT_EQ(crc32file(""), 0U);
}

TEST(Crc32File, APipeDoesNotWait) {
    const TempDir directory;
    ASSERT_EQ(::mkfifo(directory.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(crc32file(directory.file("pipe")), 0U);
}

TEST(Crc32File, AFileMayBeLargerThanWhatIsReadWhole) {
    const TempDir directory;
    const std::string path = directory.file("huge", "");
    std::filesystem::resize_file(path, static_cast<uintmax_t>(iFileSizeMax) + 2);
    EXPECT_EQ(crc32file(path), 0xC64E0E30U);
}

TEST(Crc32File, AFileThatEndsEarlyIsZero) {
    InputFile file("/sys/kernel/mm/transparent_hugepage/enabled");
    if (!file.isopen() || file.size() == 0) GTEST_SKIP() << "no such file here";
    EXPECT_EQ(crc32rest(file), std::nullopt);
    EXPECT_EQ(crc32file("/sys/kernel/mm/transparent_hugepage/enabled"), 0U);
}

} // namespace vantorel::test
