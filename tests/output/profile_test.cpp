#include "output/profile.h"

#include "output/burntest.h"

namespace vantorel::test {

namespace {

class Profile : public BurnTest {};

constexpr std::array<int32_t, 4> cNoSlots = {-1, -1, -1, -1};

} // namespace

TEST_F(Profile, NoneIsChosenAtTheStart) {
    EXPECT_EQ(isROMType, 0);
    EXPECT_EQ(isProfileROM, cNoSlots);
}

TEST_F(Profile, NothingOfItIsChecked) {
    silently([] { romprofile(99, -7, 1000, 2147483647, 0); });
    EXPECT_EQ(isROMType, 99);
    EXPECT_EQ(isProfileROM, (std::array<int32_t, 4>{-7, 1000, 2147483647, 0}));
}

TEST_F(Profile, APositionIsInUseWhenItsSlotExists) {
    slotof({1, 2, 3});
    slotof({});
    romprofile(1, 0, 1, 2, -1);
    EXPECT_EQ(profilerom(0), &slotat(0));
    EXPECT_EQ(profilerom(1), &slotat(1));
    EXPECT_EQ(profilerom(2), nullptr);
    EXPECT_EQ(profilerom(3), nullptr);
    EXPECT_EQ(profilesize(0), 3);
    EXPECT_EQ(profilesize(1), 0);
    EXPECT_EQ(profilesize(2), 0);
}

TEST_F(Profile, RomsMayChangeBetweenChoosingAndSaving) {
    slotof({1, 2, 3, 4});
    romprofile(1, 0, -1, -1, -1);
    slotat(0).pcROM = {5, 6, 7, 8};
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{5, 6, 7, 8}));
}

TEST_F(Profile, ARomMadeAfterChoosingCounts) {
    romprofile(1, 0, -1, -1, -1);
    EXPECT_EQ(save(false, 0), 1);
    slotof({5, 6, 7, 8});
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(folder.bytes("rom.bin"), (Bytes{5, 6, 7, 8}));
}

TEST_F(Profile, SavingLeavesItForTheNextTime) {
    profileof(2, {Bytes{1, 2, 3, 4}, std::nullopt, std::nullopt, std::nullopt});
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(save(true, 512), 0);
        EXPECT_EQ(folder.bytes("rom.hi.bin").size(), 524288U);
        EXPECT_EQ(folder.bytes("rom.lo.bin")[0], 4);
    }
    EXPECT_EQ(isROMType, 2);
    EXPECT_EQ(slotat(0).pcROM, (Bytes{1, 2, 3, 4}));
}

TEST_F(Profile, ItOutlivesTheRomsWhoseSlotsThenAreNotInUse) {
    profileof(5, noiseimages({262144, 16, 524288, 16}));
    silently([] { freeroms(); });
    EXPECT_EQ(isROMType, 5);
    EXPECT_EQ(isProfileROM, (std::array<int32_t, 4>{0, 1, 2, 3}));
    EXPECT_EQ(save(false, 0), 1);
    EXPECT_EQ(console, "Nothing to write, bailing out\n");
    // Of new ROMs, fewer than before, those whose slots exist are burnt.
    slotof(noisebytes(262144, 9));
    EXPECT_EQ(save(false, 0), 0);
    EXPECT_EQ(console, "ERROR: Kickstart 2+ missing - this will NOT be a valid Superkick ADF\n"
                       "ERROR: Kickstart 2+ Bonus code missing - this will NOT be a valid Superkick ADF\n"
                       "ERROR: Kickstart 1.3 Bonus code missing - this will NOT be a valid Superkick ADF\n");
}

TEST_F(Profile, AnUnknownTypeIsSavedLikeASingleFile) {
    for (const int32_t type : {0, 7, -1}) {
        silently([&] { profileof(type, {Bytes{1, 2, 3, 4}, std::nullopt, std::nullopt, std::nullopt}); });
        EXPECT_EQ(save(false, 512), 0);
        EXPECT_EQ(folder.bytes("rom.bin").size(), 524288U);
    }
}

} // namespace vantorel::test
