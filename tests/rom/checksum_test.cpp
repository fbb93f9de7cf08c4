// The Kickstart checksum, and which images are valid.

#include "rom/checksum.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

using ChecksumTest = RomTest;

TEST_F(ChecksumTest, OfAGoodImageIsWhatItStores) {
    for (const int32_t size : {262144, 524288, 1048576}) {
        const BuiltRom rom = standardrom(size);
        EXPECT_EQ(cChecksumData(rom.image), longat(rom.image, size - 24));
        EXPECT_EQ(carrysum(rom.image), 0xFFFFFFFFu);
    }
}

TEST_F(ChecksumTest, OfZeroesIsAllOnes) {
    EXPECT_EQ(cChecksumData(Bytes(262144, 0)), 0xFFFFFFFFu);
    EXPECT_EQ(cChecksumData(Bytes(24, 0)), 0xFFFFFFFFu);
    EXPECT_EQ(cChecksumData(Bytes{}), 0xFFFFFFFFu);
}

TEST_F(ChecksumTest, DoesNotDependOnTheStoredOne) {
    Bytes image = standardrom(262144).image;
    const uint32_t sum = cChecksumData(image);
    ASSERT_TRUE(putlong(image, 262144 - 24, 0x12345678));
    EXPECT_EQ(cChecksumData(image), sum);
}

TEST_F(ChecksumTest, CarriesAroundTheEnd) {
    // 0xFFFFFFFF + 2 = 1 and a carry: 2, of which the complement is 0xFFFFFFFD.
    Bytes data;
    for (const uint32_t value : {0u, 0xFFFFFFFFu, 2u, 0u, 0u, 0u})
        appendlong(data, value);
    EXPECT_EQ(cChecksumData(data), 0xFFFFFFFDu);
}

TEST_F(ChecksumTest, MakesTheSumAllOnesWhereverItIsStored) {
    Bytes image(4096);
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<uint8_t>(i * 31 + i / 7);
    ASSERT_TRUE(putlong(image, 4096 - 24, cChecksumData(image)));
    EXPECT_EQ(carrysum(image), 0xFFFFFFFFu);
}

TEST_F(ChecksumTest, MissingBytesOfTheLastLongAreZeroes) {
    // The sum goes on while the offset is below size - 1: of a single byte too many nothing is seen.
    Bytes data(24, 0);
    data.push_back(0xFF);
    EXPECT_EQ(cChecksumData(data), 0xFFFFFFFFu) << "25 bytes";
    data.push_back(0xEE);
    EXPECT_EQ(cChecksumData(data), ~0xFFEE0000u) << "26 bytes";
    data.push_back(0xDD);
    EXPECT_EQ(cChecksumData(data), ~0xFFEEDD00u) << "27 bytes";
}

TEST_F(ChecksumTest, TellsBothValues) {
    Bytes data(28, 0);
    data[3] = 1;
    ASSERT_TRUE(putlong(data, 4, 0xCAFEBABE));
    const Action run = [&] { static_cast<void>(cChecksumData(data)); };
    EXPECT_EQ(maskpointers(at(2, run)),
              "cChecksumData function Calculated=fffffffe Stored=cafebabe Size=28 @*\n");
    expectthresholds([] {}, run, {{1, "cChecksumData function Calculated=fffffffe"}});
}

TEST_F(ChecksumTest, OfASlotCoversItsWholeImage) {
    const BuiltRom rom = standardrom(262144);
    silently([] { newrom(524288, 0); });
    silently([&] { loadromdata(0, rom.image); });
    Bytes whole = rom.image;
    whole.resize(524288, 0);
    EXPECT_EQ(cChecksum(0), kickstartsum(whole));
}

TEST_F(ChecksumTest, OfNoSlotIsRefused) {
    uint32_t sum = 1;
    EXPECT_EQ(at(1, [&] { sum = cChecksum(0); }), "ERROR, No current ROM\n");
    EXPECT_EQ(sum, 0u);
}

TEST_F(ChecksumTest, ImagesOfTheThreeSizesAreValid) {
    EXPECT_TRUE(validrom(standardrom(262144).image));
    EXPECT_TRUE(validrom(standardrom(524288).image));
    EXPECT_TRUE(validrom(joined(standardrom(524288).image, standardrom(524288, 0xE00000).image)));
}

TEST_F(ChecksumTest, OtherSizesAreNotValid) {
    for (const int32_t size : {24, 28, 4096, 131072, 262140, 262148, 393216, 524284, 1048572, 2097152}) {
        const Bytes image =
            RomBuilder(size, 0xF80000).noheader().fill(0x11).nosize().novectors().build().image;
        ASSERT_EQ(carrysum(image), 0xFFFFFFFFu);
        EXPECT_FALSE(validrom(image)) << size;
    }
    for (size_t size = 0; size < 24; ++size)
        EXPECT_FALSE(validrom(Bytes(size, 0x11))) << size;
}

TEST_F(ChecksumTest, TheFirstByteMustBe0x11) {
    Bytes image = standardrom(262144).image;
    image[0] = 0x12;
    ASSERT_TRUE(putlong(image, 262144 - 24, kickstartsum(image)));
    EXPECT_FALSE(validrom(image));
}

TEST_F(ChecksumTest, OneFlippedBitMakesAnImageInvalid) {
    Bytes image = standardrom(524288).image;
    image[300000] ^= 0x10;
    EXPECT_FALSE(validrom(image));
}

TEST_F(ChecksumTest, OneMegabyteNeedsTheChecksumOfEachHalf) {
    const Bytes good = standardrom(524288).image;
    Bytes bad = good;
    bad[1000] ^= 1;
    EXPECT_TRUE(validrom(joined(good, good)));
    EXPECT_FALSE(validrom(joined(good, bad)));
    EXPECT_FALSE(validrom(joined(bad, good)));
    EXPECT_FALSE(validrom(standardrom(1048576).image)) << "one checksum over the whole is not enough";
}

TEST_F(ChecksumTest, TheSecondHalfOfOneMegabyteMayBeginWithAnything) {
    Bytes upper = standardrom(524288).image;
    upper[0] = 0x99;
    ASSERT_TRUE(putlong(upper, 524288 - 24, kickstartsum(upper)));
    EXPECT_TRUE(validrom(joined(standardrom(524288).image, upper)));
}

TEST_F(ChecksumTest, TheSecondHalfIsLookedAtOnlyBehindAValidFirst) {
    const Bytes good = standardrom(524288).image;
    Bytes bad = good;
    bad[1000] ^= 1;
    const auto sums = [](const Bytes& image) {
        return countof(at(2, [&] { static_cast<void>(validrom(image)); }), "cChecksumData function");
    };
    EXPECT_EQ(sums(joined(good, bad)), 2);
    EXPECT_EQ(sums(joined(bad, good)), 1);
}

} // namespace
} // namespace vantorel::test
