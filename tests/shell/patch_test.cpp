// Bytes of an image overwritten.

#include "component/extract.h"
#include "component/slotstate.h"
#include "shell/find.h"

#include <algorithm>

namespace vantorel::test {
namespace {

constexpr const char* cUnused = "Warning, patching unused space\n";
constexpr const char* cOutside = "ERROR, Can't patch, out of bounds\n";
constexpr const char* cNotHex =
    "ERROR, I can only patch hex values (e.g. 0x2844) hint:alias variables are hex\n";

// Slot 0: 256 bytes 0xEE at 0xF80000; component 0 on 16 to 31 has no relocs, component 1 on 32 to 63 has one.
void makeslot() {
    slotwith(256, {{16, 16}, {32, 32}}, 0xF80000);
    componentat(0, 1).ipRelocs = {8};
    for (const int32_t number : {0, 1})
        silently([&] { createextract(0, number); });
}

class PatchTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        makeslot();
    }

    // Checks that the patch writes just `bytes` at `place`, and gives what it says at verbosity 1.
    static std::string patched(const std::string& where, const std::string& what, int32_t place,
                               const Bytes& bytes) {
        Bytes image = slotat(0).pcROM;
        std::ranges::copy(bytes, image.begin() + place);
        const std::string console = at(1, [&] { patch(0, where, what); });
        EXPECT_EQ(slotat(0).pcROM, image) << where << " " << what;
        return console;
    }
};

TEST_F(PatchTest, PositionsAreDecimalOrHexadecimal) {
    EXPECT_EQ(patched("100", "0x2844", 100, {0x28, 0x44}), cUnused);
    EXPECT_EQ(patched("0x64", "0xaBcDeF", 100, {0xAB, 0xCD, 0xEF}), cUnused);
    EXPECT_EQ(patched("0x00000064", "0x01", 100, {1}), cUnused);
    EXPECT_EQ(patched("0x000000640", "0x02", 100, {2}), cUnused) << "eight digits at most";
    EXPECT_EQ(patched("0", "0x11", 0, {0x11}), cUnused);
    EXPECT_EQ(patched("0x", "0x12", 0, {0x12}), cUnused);
    EXPECT_EQ(patched("255", "0x13", 255, {0x13}), cUnused);
}

TEST_F(PatchTest, WhatLiesBehindTheImageIsAnAddress) {
    EXPECT_EQ(patched("0xF80080", "0x11", 128, {0x11}), cUnused);
    EXPECT_EQ(patched("16252928", "0x12", 0, {0x12}), cUnused);
    EXPECT_EQ(patched("0xF800FF", "0x13", 255, {0x13}), cUnused);
    slotat(0).iROMBase = 100;
    EXPECT_EQ(patched("256", "0x14", 156, {0x14}), cUnused) << "the image's end itself is one";
}

TEST_F(PatchTest, OutsideTheImageNothingIsPatched) {
    for (const char* where : {"0xF80100", "0xF7FFFF", "256", "2147483647", "0x7FFFFFFF"})
        EXPECT_EQ(expectunchanged(0, [&] { patch(0, where, "0x11"); }), cOutside) << where;
}

TEST_F(PatchTest, PositionsFromHalfTheRangeOnAreNegative) {
    for (const char* where : {"0x80000000", "0xFFFFFFFF", "0x80000010"})
        EXPECT_EQ(expectunchanged(0, [&] { patch(0, where, "0x11"); }), cOutside) << where;
    slotat(0).iROMBase = 0x80000000;
    EXPECT_EQ(expectunchanged(0, [] { patch(0, "0x80000010", "0x11"); }), cOutside) << "no address either";
    // 256 less 0x80000000 is negative too.
    EXPECT_EQ(expectunchanged(0, [] { patch(0, "256", "0x11"); }), cOutside);
}

TEST_F(PatchTest, TextsThatAreNoNumbersAreNowhere) {
    for (const char* where : {"abc", "-1", "+5", "12a", " 12", "0X10", "x10", "$10", "1.5"})
        EXPECT_EQ(expectunchanged(0, [&] { patch(0, where, "0x11"); }), cOutside) << where;
}

TEST_F(PatchTest, TheComponentHitIsNamed) {
    EXPECT_EQ(patched("16", "0x11", 16, {0x11}), "Patch position is in component number 0 (c16)\n");
    EXPECT_EQ(patched("31", "0x11", 31, {0x11}), "Patch position is in component number 0 (c16)\n");
    EXPECT_EQ(patched("32", "0x11", 32, {0x11}), "Patch position is in component number 1 (c32)\n");
    EXPECT_EQ(patched("0xF8003F", "0x11", 63, {0x11}), "Patch position is in component number 1 (c32)\n");
    EXPECT_EQ(patched("15", "0x11", 15, {0x11}), cUnused);
    EXPECT_EQ(patched("64", "0x11", 64, {0x11}), cUnused);
    EXPECT_EQ(patched("10", "0x11111111111111", 10, Bytes(7, 0x11)), cUnused)
        << "the first byte decides, whatever the others run into";
}

TEST_F(PatchTest, OfOverlappingComponentsTheFirstIsNamed) {
    slotat(0).psComponents.insert(slotat(0).psComponents.begin(), componenton({0, 100}));
    EXPECT_EQ(patched("40", "0x11", 40, {0x11}), "Patch position is in component number 0 (c0)\n");
}

TEST_F(PatchTest, BlankAndEmptyComponentsAreNotHit) {
    slotat(0).psComponents.insert(slotat(0).psComponents.begin(), Component{});
    slotat(0).psComponents.push_back(componenton({100, 0}));
    EXPECT_EQ(patched("0", "0x11", 0, {0x11}), cUnused);
    EXPECT_EQ(patched("100", "0x11", 100, {0x11}), cUnused);
    EXPECT_EQ(patched("16", "0x11", 16, {0x11}), "Patch position is in component number 1 (c16)\n");
}

TEST_F(PatchTest, AComponentWithoutANameIsShownAsNull) {
    componentat(0, 0).pcName.reset();
    EXPECT_EQ(patched("16", "0x11", 16, {0x11}), "Patch position is in component number 0 ((null))\n");
}

TEST_F(PatchTest, WhatIsNotHexadecimalIsRefusedAfterTheComponentIsNamed) {
    for (const char* what : {"2844", "0X2844", "x", "", "28 44"}) {
        EXPECT_EQ(expectunchanged(0, [&] { patch(0, "40", what); }),
                  "Patch position is in component number 1 (c32)\n" + std::string(cNotHex));
        EXPECT_EQ(expectunchanged(0, [&] { patch(0, "100", what); }), cNotHex) << "and without a warning";
    }
}

TEST_F(PatchTest, BytesBehindTheImageAreNotWritten) {
    EXPECT_EQ(patched("254", "0x11223344", 254, {0x11, 0x22}), cUnused);
    EXPECT_EQ(slotat(0).iSize(), 256);
    EXPECT_EQ(patched("0xF800FF", "0x55" + std::string(1000, '6'), 255, {0x55}), cUnused);
}

TEST_F(PatchTest, ALastDigitWithoutAPartnerCountsLessFortyEight) {
    // 0x3 and the NUL: 3 * 16 - 48 = 0. 0xF: 240 - 48 = 192. 0x1: 16 - 48 = -32, cut to 0xE0.
    EXPECT_EQ(patched("100", "0x12343", 100, {0x12, 0x34, 0x00}), cUnused);
    EXPECT_EQ(patched("100", "0xF", 100, {0xC0}), cUnused);
    EXPECT_EQ(patched("100", "0x1", 100, {0xE0}), cUnused);
}

TEST_F(PatchTest, OtherCharactersAreWorthWhatTheDigitRuleGives) {
    // 'G' is 16, 'g' is 16, '@' is 16, '`' (before 'a') is 41, '!' is -15.
    EXPECT_EQ(patched("100", "0x0G0g0@0`", 100, {16, 16, 16, 41}), cUnused);
    EXPECT_EQ(patched("100", "0x!!", 100, {0x01}), cUnused) << "-15 * 16 - 15 = -255";
}

TEST_F(PatchTest, NoDigitsPatchNothing) {
    EXPECT_EQ(expectunchanged(0, [] { patch(0, "100", "0x"); }), cUnused);
}

TEST_F(PatchTest, TheExtractOfAComponentWithRelocsIsRefreshed) {
    patched("34", "0x4711", 34, {0x47, 0x11});
    const Bytes& extract = *componentat(0, 1).pcExtract;
    EXPECT_EQ(extract[2], 0x47);
    EXPECT_EQ(raised(extract, {8}, 0xF80020), bytesat(0, 32, 32));
    EXPECT_EQ(componentat(0, 0).pcExtract, Bytes(16, 0xEE));
}

TEST_F(PatchTest, TheExtractOfAComponentWithoutRelocsStaysOld) {
    patched("18", "0x4711", 18, {0x47, 0x11});
    EXPECT_EQ(componentat(0, 0).pcExtract, Bytes(16, 0xEE));
}

TEST_F(PatchTest, APatchedRelocIsMadeRelativeToo) {
    patched("40", "0x00F80030", 40, {0x00, 0xF8, 0x00, 0x30});
    EXPECT_EQ(longat(*componentat(0, 1).pcExtract, 8), 0x10u);
}

TEST_F(PatchTest, RelocsOutsideTheComponentAreLeftOutOfTheExtract) {
    componentat(0, 1).ipRelocs = {8, 30};
    EXPECT_EQ(patched("34", "0x47", 34, {0x47}), "Patch position is in component number 1 (c32)\n"
                                                 "ERROR: Reloc 30 is outside its component\n");
    EXPECT_EQ(componentat(0, 1).pcExtract->at(2), 0x47);
}

TEST_F(PatchTest, AComponentWithRelocsThatRunsOutOfTheImageIsRefused) {
    componentat(0, 1).iSize = 225;
    const std::string console = expectunchanged(0, [] { patch(0, "34", "0x47"); });
    EXPECT_TRUE(has(console, "ERROR")) << console;
    EXPECT_TRUE(console.starts_with("Patch position is in component number 1 (c32)\n"));
}

TEST_F(PatchTest, MissingSlotsAreRefused) {
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(expectunchanged(0, [&] { patch(rom, "0", "0x11"); }), "ERROR, No current ROM\n");
}

TEST_F(PatchTest, MessagesHaveTheirThresholds) {
    expectthresholds(makeslot, [] { patch(0, "0xF80028", "0x2a0F"); },
                     {{1, "Patching [0xF80028] with [0x2a0F]\n"
                          "Patching position 16252968 0x00f80028\n"
                          "Outside of bounds of ROM, subtracting ROMBASE\n"
                          "Patching position 40 0x00000028\n"},
                      {0, "Patch position is in component number 1 (c32)\n"},
                      {1, "Patching 000028 [2A]\nPatching 000029 [0F]\nChecking for affected relocs\n"},
                      {5, "There are 1 relocs\n"}});
    expectthresholds(makeslot, [] { patch(0, "abc", "0x2a"); },
                     {{1, "Patching [abc] with [0x2a]\nPatching position -1 0xffffffff\n"}, {0, cOutside}});
    expectthresholds(makeslot, [] { patch(0, "0", "0x2a"); }, {{0, cUnused}});
    expectthresholds(makeslot, [] { patch(0, "16", "2a"); },
                     {{0, "Patch position is in component number 0 (c16)\n"}, {0, cNotHex}});
}

TEST_F(PatchTest, AComponentWithoutRelocsIsNotChecked) {
    EXPECT_FALSE(has(at(2, [] { patch(0, "16", "0x11"); }), "Checking"));
}

class PatchCommand : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        makeslot();
        iCurrentROM = 0;
    }
};

TEST_F(PatchCommand, MissingArgumentsAreAskedFor) {
    EXPECT_EQ(printed("patch"), "ERROR, please specify where you want to patch\n");
    EXPECT_EQ(printed("patch \"\" 0x11"), "ERROR, please specify where you want to patch\n");
    EXPECT_EQ(printed("patch 0"), "ERROR, please specify what you want to patch\n");
    EXPECT_EQ(printedat(0, "patch") + printedat(0, "patch 0"), "");
}

TEST_F(PatchCommand, BothArgumentsAreHandedOnAsTyped) {
    EXPECT_EQ(printed("PATCH 0xF80010 0x2844 more"), "Patch position is in component number 0 (c16)\n");
    EXPECT_EQ(bytesat(0, 16, 3), (Bytes{0x28, 0x44, 0xEE}));
    EXPECT_EQ(printed("patch 16 2844"),
              "Patch position is in component number 0 (c16)\n" + std::string(cNotHex));
    EXPECT_EQ(printed("patch abc 0x11"), cOutside);
    EXPECT_EQ(printed("patch -1 0x11"), cOutside);
}

TEST_F(PatchCommand, ReferencesStandForPlaceAndBytes) {
    type("find 0 256 0xEEEE");
    type("alias bytes 0x1234");
    EXPECT_EQ(printed("patch $FIND $bytes"), cUnused);
    EXPECT_EQ(bytesat(0, 0, 2), (Bytes{0x12, 0x34}));
    EXPECT_EQ(printed("patch $ROMBASE 0x56"), cUnused);
    EXPECT_EQ(bytesat(0, 0, 2), (Bytes{0x56, 0x34}));
}

TEST_F(PatchCommand, APositionThatDoesNotFitIsRefused) {
    for (const char* line : {"patch 99999999999 0x11", "patch 2147483648 0x11"})
        EXPECT_TRUE(isoneerror(expectunchanged(0, [&] { std::fputs(printed(line).c_str(), stdout); })));
}

TEST_F(PatchCommand, WithoutACurrentRomNothingIsPatched) {
    type("rom 7");
    EXPECT_EQ(printed("patch 0 0x11"), "ERROR, No current ROM\n");
    type("reset roms");
    EXPECT_EQ(printed("patch 0 0x11"), "ERROR, No current ROM\n");
}

} // namespace
} // namespace vantorel::test
