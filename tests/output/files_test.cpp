// What the files of a profile are called and how they hang together, worked out by hand.

#include "output/burntest.h"

namespace vantorel::test {

namespace {

constexpr size_t iChip = 524288;

/// The names of the files, in order.
std::vector<std::string> namesof(const TempDir& folder) {
    std::vector<std::string> names;
    for (const auto& [name, bytes] : filesof(folder))
        names.push_back(name);
    return names;
}

using Names = std::vector<std::string>;

Bytes slice(const Bytes& bytes, size_t from, size_t size) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return {first, first + static_cast<std::ptrdiff_t>(size)};
}

class ProfileFiles : public BurnTest {
protected:
    /// A profile of one ROM of `size` bytes, which it returns.
    static Bytes one(int32_t type, size_t size) {
        const Bytes image = noisebytes(size, 1);
        profileof(type, {image, std::nullopt, std::nullopt, std::nullopt});
        return image;
    }
};

} // namespace

TEST_F(ProfileFiles, A512KRomFillsOneChip) {
    const Bytes image = one(1, iChip);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder), Names{"rom.bin"});
    EXPECT_EQ(folder.bytes("rom.bin"), image);
    EXPECT_EQ(console, "Only one chunk for each file required\n");
}

TEST_F(ProfileFiles, A256KRomIsRepeatedUntilTheChipIsFull) {
    const Bytes image = one(1, iChip / 2);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder), Names{"rom.bin"});
    EXPECT_EQ(folder.bytes("rom.bin"), joined(image, image));
    EXPECT_EQ(console, "Only one chunk for each file required\n"
                       "Increasing overburn buffer size from 256k to 512k\n");
}

TEST_F(ProfileFiles, A1MRomFillsTwoChips) {
    const Bytes image = one(1, 2 * iChip);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder), (Names{"rom.0.bin", "rom.1.bin"}));
    EXPECT_EQ(folder.bytes("rom.0.bin"), slice(image, 0, iChip));
    EXPECT_EQ(folder.bytes("rom.1.bin"), slice(image, iChip, iChip));
    EXPECT_EQ(console, "");
}

TEST_F(ProfileFiles, ARestFillsTheLastFileOnly) {
    const Bytes image = one(1, 2 * iChip + 12);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder), (Names{"rom.0.bin", "rom.1.bin", "rom.2.bin"}));
    EXPECT_EQ(folder.bytes("rom.2.bin"), slice(image, 2 * iChip, 12));
}

TEST_F(ProfileFiles, BehindNineComesTheNextCharacter) {
    const Bytes image = one(1, 12 * iChip);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder),
              (Names{"rom.0.bin", "rom.1.bin", "rom.2.bin", "rom.3.bin", "rom.4.bin", "rom.5.bin",
                     "rom.6.bin", "rom.7.bin", "rom.8.bin", "rom.9.bin", "rom.:.bin", "rom.;.bin"}));
    EXPECT_EQ(folder.bytes("rom.;.bin"), slice(image, 11 * iChip, iChip));
}

TEST_F(ProfileFiles, BetweenOneChipAndTwoOnlyTheLastChunkSurvives) {
    const Bytes image = one(1, iChip + iChip / 2);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder), Names{"rom.bin"});
    EXPECT_EQ(folder.bytes("rom.bin"), slice(image, iChip, iChip / 2));
}

TEST_F(ProfileFiles, ARepeatedImageCanOvershootTheChipToo) {
    // 384K twice is 768K: the first 512K are overwritten by the rest.
    const Bytes image = one(1, 3 * iChip / 4);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), slice(image, iChip / 4, iChip / 2));
    EXPECT_EQ(console, "Only one chunk for each file required\n"
                       "Increasing overburn buffer size from 384k to 768k\n");
}

TEST_F(ProfileFiles, DualChipsTakeTheWordsInTurn) {
    profileof(2, {Bytes{1, 2, 3, 4, 5, 6, 7, 8}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(namesof(folder), (Names{"rom.hi.bin", "rom.lo.bin"}));
    EXPECT_EQ(folder.bytes("rom.hi.bin"), (Bytes{1, 2, 5, 6}));
    EXPECT_EQ(folder.bytes("rom.lo.bin"), (Bytes{3, 4, 7, 8}));
}

TEST_F(ProfileFiles, DualByteswappedSwapsBeforeItSplits) {
    profileof(2, {Bytes{1, 2, 3, 4, 5, 6, 7, 8}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(true, 0), 0);
    EXPECT_EQ(folder.bytes("rom.hi.bin"), (Bytes{2, 1, 6, 5}));
    EXPECT_EQ(folder.bytes("rom.lo.bin"), (Bytes{4, 3, 8, 7}));
    EXPECT_EQ(console, "Buffer needs to be byteswapped\n");
}

TEST_F(ProfileFiles, A512KRomIsHalvedOnDualChips) {
    one(2, iChip);
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.hi.bin").size(), iChip / 2);
    EXPECT_EQ(folder.bytes("rom.lo.bin").size(), iChip / 2);
}

TEST_F(ProfileFiles, DualChipsOf512KAreFilledByARepeatedRom) {
    const Bytes image = one(2, iChip);
    EXPECT_EQ(save(false, 512), 0);
    const ChipPair once = splitpair(image);
    EXPECT_EQ(namesof(folder), (Names{"rom.hi.bin", "rom.lo.bin"}));
    EXPECT_EQ(folder.bytes("rom.hi.bin"), overburnt(once.first));
    EXPECT_EQ(folder.bytes("rom.lo.bin"), overburnt(once.second));
    EXPECT_EQ(console, "Only one chunk for each file required\n"
                       "Increasing overburn buffer size from 512k to 1024k\n");
}

TEST_F(ProfileFiles, DualChipsOf512KHold1MEach) {
    const Bytes image = one(2, 4 * iChip);
    EXPECT_EQ(save(false, 512), 0);
    EXPECT_EQ(namesof(folder), (Names{"rom.hi.0.bin", "rom.hi.1.bin", "rom.lo.0.bin", "rom.lo.1.bin"}));
    const ChipPair second = splitpair(slice(image, 2 * iChip, 2 * iChip));
    EXPECT_EQ(folder.bytes("rom.hi.1.bin"), second.first);
    EXPECT_EQ(folder.bytes("rom.lo.1.bin"), second.second);
}

TEST_F(ProfileFiles, TheLowestAddressRangeComesFirst) {
    profileof(1, {Bytes{0xF8, 1, 2, 3}, Bytes{0xE0, 1, 2, 3}, Bytes{0xB0, 1, 2, 3}, Bytes{0xA0, 1, 2, 3}});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{0xA0, 1, 2, 3, 0xB0, 1, 2, 3, 0xE0, 1, 2, 3, 0xF8, 1, 2, 3}));
}

TEST_F(ProfileFiles, OneRomCanStandAtSeveralPositions) {
    const int32_t rom = slotof({1, 2, 3, 4});
    romprofile(1, rom, rom, -1, rom);
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{1, 2, 3, 4, 1, 2, 3, 4, 1, 2, 3, 4}));
}

TEST_F(ProfileFiles, WhatIsNoWholeLongIsWrittenToo) {
    profileof(1, {Bytes{1, 2, 3, 4, 5, 6, 7}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(ProfileFiles, AnOddLastByteIsNotSwapped) {
    profileof(1, {Bytes{1, 2, 3, 4, 5, 6, 7}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(true, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{2, 1, 4, 3, 6, 5, 7}));
}

TEST_F(ProfileFiles, OnDualChipsAPartOfALongGoesWhereItsWordsGo) {
    profileof(2, {Bytes{1, 2, 3, 4, 5, 6, 7}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.hi.bin"), (Bytes{1, 2, 5, 6}));
    EXPECT_EQ(folder.bytes("rom.lo.bin"), (Bytes{3, 4, 7}));
}

TEST_F(ProfileFiles, OfOneByteTheLowChipIsEmpty) {
    profileof(2, {Bytes{1}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.hi.bin"), Bytes{1});
    EXPECT_EQ(folder.bytes("rom.lo.bin"), Bytes{});
}

TEST_F(ProfileFiles, ALongerFileOfBeforeIsTruncated) {
    folder.file("rom.bin", noisebytes(1000, 9));
    profileof(1, {Bytes{1, 2, 3, 4}, std::nullopt, std::nullopt, std::nullopt});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{1, 2, 3, 4}));
}

TEST_F(ProfileFiles, TheSaveDirectoryStandsBeforeEachName) {
    folder.folder("chips");
    one(2, 2 * iChip * 2);
    cSaveDir = "chips/";
    EXPECT_EQ(save(false, 512), 0);
    for (const char* name : {"rom.hi.0.bin", "rom.hi.1.bin", "rom.lo.0.bin", "rom.lo.1.bin"})
        EXPECT_TRUE(folder.exists(std::string("chips/") + name)) << name;
    EXPECT_EQ(filesof(folder).size(), 0U);
}

TEST_F(ProfileFiles, PathsAreCutAt1023Characters) {
    folder.folder("d");
    profileof(1, {Bytes{1, 2, 3, 4}, std::nullopt, std::nullopt, std::nullopt});
    // 1 + 1000 characters, 22 more, and the rest with its ".bin" is lost.
    const std::string name = "d" + std::string(1000, '/') + std::string(100, 'x');
    silently([&] { EXPECT_EQ(saveprofile(false, 0, name), 0); });
    EXPECT_EQ(folder.bytes("d/" + std::string(22, 'x')), (Bytes{1, 2, 3, 4}));
}

TEST_F(ProfileFiles, CutPathsOfTwoChipsAreOneFile) {
    folder.folder("d");
    profileof(2, {Bytes{1, 2, 3, 4}, std::nullopt, std::nullopt, std::nullopt});
    const std::string name = "d" + std::string(1000, '/') + std::string(2000, 'x');
    silently([&] { EXPECT_EQ(saveprofile(false, 0, name), 0); });
    EXPECT_TRUE(folder.exists("d/" + std::string(22, 'x')));
}

} // namespace vantorel::test
