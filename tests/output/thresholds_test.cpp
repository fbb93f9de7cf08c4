// Every line of saving and burning at its threshold.

#include "output/burntest.h"
#include "output/saverom.h"

namespace vantorel::test {

namespace {

constexpr Threshold kNone = kAlways;

/// A profile, what is asked of it, and what must appear.
struct Spoken {
    int32_t type;
    Sizes sizes;
    bool byteswap;
    int32_t savesize;
    std::vector<Shown> texts;
};

const Sizes cNothing = {iAbsent, iAbsent, iAbsent, iAbsent};
const Sizes cSmall = {1024, iAbsent, iAbsent, iAbsent};
const Sizes cLarge = {4 * 524288, iAbsent, iAbsent, iAbsent};
const Sizes cMisfits = {4, 109568, 4, 4096};

const std::vector<Spoken> cSpoken = {
    {1,
     cSmall,
     true,
     512,
     {{kProgress, "Adding ROMs to buffer\n"},
      {kProgress, "Adding ROM profile[0]=ROM 0 to buffer\n"},
      {kTrace, "Buffer is now 1k\n"},
      {kResult, "Buffer needs to be byteswapped\n"},
      {kResult, "Only one chunk for each file required\n"},
      {kResult, "Increasing overburn buffer size from 1k to 2k\n"},
      {kProgress, "Single rom, no HI/LO separation\n"},
      {kProgress, "Single-Chunk ["}}},
    {1, cNothing, false, 0, {{kResult, "Nothing to write, bailing out\n"}}},
    {2,
     cLarge,
     false,
     512,
     {{kProgress, "Will need 2 chunks for each chip\n"},
      {kProgress, "Dual rom, separating into HI/LO\n"},
      {kProgress, "Multi-Chunk-0 ["},
      {kProgress, "Multi-Chunk-1 ["},
      {kProgress, "Multi-Chunk0 ["},
      {kProgress, "Multi-Chunk1 ["}}},
    {3,
     cLarge,
     false,
     0,
     {{kProgress, "CD32 Buffer is 2048k, interleaving for single rom\n"},
      {kResult, "ERROR: First two ROMs MUST be exactly 512k"},
      {kResult, "ERROR: WARNING: Untested code, 2nd 1Mb interleave"}}},
    {4, cSmall, true, 0, {{kResult, "WARNING: Removing Byteswap/512k filesize\n"}}},
    {5,
     cMisfits,
     true,
     0,
     {{kProgress, "ROM 0 [0] Size 4 0x40000=262144\n"},
      {kProgress, "ROM 1 [1] Size 109568 0x40000=262144\n"},
      {kProgress, "ROM 2 [2] Size 4 0x40000=262144\n"},
      {kProgress, "ROM 3 [3] Size 4096 0x40000=262144\n"},
      {kResult, "ERROR: Kickstart 1.3 ROM wrong size"},
      {kResult, "ERROR: Kickstart 2+ ROM wrong size"},
      {kResult, "ERROR: Kickstart 2+ ROM too large"},
      {kResult, "WARNING: Removing Byteswap/512k filesize\n"},
      {kProgress, "ADF, no HI/LO separation or 512k chunks\n"},
      {kProgress, "Single file ["}}},
    {5,
     {iAbsent, 4, iAbsent, iAbsent},
     false,
     0,
     {{kResult, "ERROR: Kickstart 1.3 missing"},
      {kResult, "ERROR: Kickstart 2+ missing"},
      {kResult, "ERROR: Kickstart 2+ Bonus code missing"}}},
    {5, {iAbsent, iAbsent, iAbsent, 4}, false, 0, {{kResult, "ERROR: Kickstart 1.3 Bonus code missing"}}},
    {6,
     cSmall,
     false,
     512,
     {{kNone, "ROM 0 [0] Size 1024 0x40000=262144\n"},
      {kResult, "ERROR: Kickstart 1.3/1.4 ROM wrong size"},
      {kResult, "WARNING: Removing Byteswap/512k filesize\n"}}},
    {6, {iAbsent, 4, iAbsent, iAbsent}, false, 0, {{kResult, "ERROR: Kickstart missing"}}},
};

class BurnThresholds : public BurnTest, public ::testing::WithParamInterface<Spoken> {};

std::string spokenname(const ::testing::TestParamInfo<Spoken>& info) {
    return "Row" + std::to_string(info.index) + "Type" + std::to_string(info.param.type);
}

} // namespace

TEST_P(BurnThresholds, AreKept) {
    const Spoken& row = GetParam();
    expectthresholds([&] { profileof(row.type, noiseimages(row.sizes)); },
                     [&] { saveprofile(row.byteswap, row.savesize, "rom"); }, row.texts);
}

INSTANTIATE_TEST_SUITE_P(Profiles, BurnThresholds, ::testing::ValuesIn(cSpoken), spokenname);

TEST_F(BurnTest, ChoosingAProfileTellsAboveLevelOne) {
    expectthresholds(
        [] {}, [] { romprofile(3, 0, -1, 7, 19); },
        {{kProgress, "ROM Profile = 3\nROM 0xF8 = 0\nROM 0xE0 = -1\nROM 0xB0 = 7\nROM 0xA0 = 19\n"}});
}

TEST_F(BurnTest, FilesThatFailAreToldOfAboveLevelZero) {
    std::filesystem::create_directory(folder.file("rom.bin"));
    std::filesystem::create_symlink("/dev/full", folder.file("full"));
    const auto prepare = [] { profileof(1, noiseimages(cSmall)); };
    expectthresholds(prepare, [] { saveprofile(false, 0, "rom"); },
                     {{kResult, "ERROR: failed to open output file rom.bin\n"}});
    expectthresholds(prepare, [] { saverom(0, "rom.bin"); },
                     {{kResult, "ERROR: failed to open output file rom.bin\n"}});
    expectthresholds(prepare, [] { saverom(0, "full"); },
                     {{kResult, "ERROR: failed to write output file full\n"}});
    expectthresholds(prepare, [] { saverom(1, "rom"); }, {{kResult, "ERROR: no such ROM [1]\n"}});
}

} // namespace vantorel::test
