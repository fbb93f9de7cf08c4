// The slots: how they are handed out, titled, told about and freed.

#include "rom/romtest.h"

namespace vantorel::test {
namespace {

using StoreTest = RomTest;

TEST_F(StoreTest, NewRomIsFilledUnnamedAndWithoutComponents) {
    ASSERT_EQ(newrom(4096, 0xA5), 0);
    const KickstartRom& slot = slotat(0);
    EXPECT_EQ(slot.iSize(), 4096);
    EXPECT_EQ(slot.pcROM, Bytes(4096, 0xA5));
    EXPECT_EQ(slot.pcTitle, Text("Unnamed"));
    EXPECT_EQ(slot.pcText, std::nullopt);
    EXPECT_EQ(slot.iUsed, 0);
    EXPECT_EQ(slot.iROMBase, 0u);
    EXPECT_EQ(slot.iComponents(), 0);
    EXPECT_EQ(slot.cFill, 0xA5);
}

TEST_F(StoreTest, NewRomOfNoBytesIsARom) {
    EXPECT_EQ(newrom(0, 0), 0);
    EXPECT_EQ(iMaxRom, 1);
    EXPECT_EQ(slotat(0).iSize(), 0);
}

TEST_F(StoreTest, NewRomDoesNotBecomeCurrent) {
    newrom(16, 0);
    EXPECT_EQ(iCurrentROM, -1);
    iCurrentROM = 0;
    newrom(16, 0);
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(StoreTest, OnlyTheFirstRomTellsItsSize) {
    expectthresholds([] {}, [] { newrom(524288, 0); }, {{1, "First ROM 524288 bytes\n"}});
    expectthresholds([] { newrom(1, 0); }, [] { newrom(524288, 0); }, {});
    EXPECT_EQ(at(10, [] { newrom(524288, 0); }), "");
}

TEST_F(StoreTest, TwentyRomsKeepTheirContentsAndThe21stIsRefused) {
    for (int32_t rom = 0; rom < 20; ++rom)
        ASSERT_EQ(newrom(64 + rom, static_cast<uint8_t>(rom)), rom);
    int32_t result = 0;
    EXPECT_EQ(at(1, [&] { result = newrom(64, 0xFF); }), "Sorry, 20 ROMs maximum\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(iMaxRom, 20);
    for (int32_t rom = 0; rom < 20; ++rom)
        EXPECT_EQ(slotat(rom).pcROM, Bytes(static_cast<size_t>(64 + rom), static_cast<uint8_t>(rom)));
}

TEST_F(StoreTest, TheRefusalOfThe21stRomIsAResult) {
    const auto fill = [] {
        for (int rom = 0; rom < 20; ++rom)
            newrom(1, 0);
    };
    expectthresholds(fill, [] { newrom(1, 0); }, {{0, "Sorry, 20 ROMs maximum\n"}});
}

TEST_F(StoreTest, SlotsAreBoundedAtBothEnds) {
    newrom(16, 0);
    EXPECT_EQ(findslot(0), &slotat(0));
    EXPECT_EQ(findslot(1), nullptr);
    EXPECT_EQ(findslot(-1), nullptr);
    EXPECT_EQ(findslot(2147483647), nullptr);
    EXPECT_EQ(findslot(-2147483647 - 1), nullptr);
}

TEST_F(StoreTest, ARecordIsRequiredOfASlotAndAComponent) {
    newrom(16, 0);
    slotat(0).psComponents.resize(2);
    Component* record = nullptr;
    const auto told = [&](int32_t rom, int32_t component) {
        return at(1, [&] { record = requirerecord(rom, component); });
    };
    EXPECT_EQ(told(0, 1), "");
    EXPECT_EQ(record, &slotat(0).psComponents[1]);
    for (const int32_t component : {-1, 2}) {
        EXPECT_EQ(told(0, component), "ERROR: No such component\n");
        EXPECT_EQ(record, nullptr);
    }
    for (const int32_t rom : {-1, 1}) {
        EXPECT_EQ(told(rom, 0), "ERROR, No current ROM\n");
        EXPECT_EQ(record, nullptr);
    }
}

TEST_F(StoreTest, TheFirstOfSeveralComponentsIsFound) {
    KickstartRom slot;
    const auto ofsize = [](int32_t size) {
        return [size](const Component& component) { return component.iSize == size; };
    };
    EXPECT_EQ(findnumber(slot, ofsize(0)), -1);
    slot.psComponents.resize(4);
    slot.psComponents[1].iSize = slot.psComponents[3].iSize = 8;
    EXPECT_EQ(findnumber(slot, ofsize(0)), 0);
    EXPECT_EQ(findnumber(slot, ofsize(8)), 1);
    EXPECT_EQ(findnumber(slot, ofsize(9)), -1);
}

TEST_F(StoreTest, RomnameReplacesTheTitleAndSaysSo) {
    newrom(16, 0);
    int result = 1;
    EXPECT_EQ(at(1, [&] { result = romname(0, "Kick 3.1"); }), "ROMName set to Kick 3.1\n");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(slotat(0).pcTitle, Text("Kick 3.1"));
    expectthresholds([] { newrom(16, 0); }, [] { romname(0, ""); }, {{0, "ROMName set to \n"}});
}

TEST_F(StoreTest, RomnameOfNoSlotIsRefused) {
    newrom(16, 0);
    for (const int32_t rom : {-1, 1, 20, 2147483647}) {
        int result = 0;
        EXPECT_EQ(at(1, [&] { result = romname(rom, "Lost"); }), "ERROR, No current ROM\n");
        EXPECT_EQ(result, 1);
    }
    EXPECT_EQ(slotat(0).pcTitle, Text("Unnamed"));
    expectthresholds([] {}, [] { romname(0, "Lost"); }, {{0, "ERROR, No current ROM\n"}});
}

TEST_F(StoreTest, RomdataOfMinusOneIsTheNumberOfRoms) {
    RomData record;
    EXPECT_EQ(getromdata(-1, record), 0);
    newrom(16, 0);
    newrom(16, 0);
    EXPECT_EQ(getromdata(-1, record), 2);
}

TEST_F(StoreTest, RomdataFillsTheRecord) {
    newrom(16, 0);
    newrom(2048, 0);
    slotat(1).iROMBase = 0xF80000;
    slotat(1).psComponents.resize(3);
    slotat(1).pcTitle = "Kick";
    RomData record;
    EXPECT_EQ(getromdata(1, record), 1);
    EXPECT_EQ(record.iComponents, 3);
    EXPECT_EQ(record.iSize, 2048);
    EXPECT_EQ(record.iROMBase, 0xF80000u);
    EXPECT_EQ(record.cTitle, "Kick");
}

TEST_F(StoreTest, RomdataCutsTheTitleAt127Characters) {
    newrom(16, 0);
    RomData record;
    slotat(0).pcTitle = std::string(127, 'a');
    EXPECT_EQ(getromdata(0, record), 0);
    EXPECT_EQ(record.cTitle, std::string(127, 'a'));
    slotat(0).pcTitle = std::string(127, 'b') + "cd";
    EXPECT_EQ(getromdata(0, record), 0);
    EXPECT_EQ(record.cTitle, std::string(127, 'b'));
}

TEST_F(StoreTest, RomdataOfNoSlotIsMinusOneInSilence) {
    newrom(16, 0);
    RomData record;
    EXPECT_EQ(at(10,
                 [&] {
                     EXPECT_EQ(getromdata(1, record), -1);
                     EXPECT_EQ(getromdata(20, record), -1);
                     EXPECT_EQ(getromdata(-2, record), -1);
                 }),
              "");
}

// One component that has everything and a blank one.
void maketwocomponents() {
    newrom(64, 0);
    Component full;
    full.pcName = full.pcLibName = "exec.library";
    full.pcType = cTypeLibrary;
    full.pcHash = "0x00000001.exec";
    full.pcLibString = "exec 40.10 (15.7.93)";
    full.ipRelocs = {4};
    full.pcExtract = Bytes(8, 0);
    slotat(0).psComponents = {full, Component{}};
}

TEST_F(StoreTest, FreeingComponentsIsNarratedAtEveryLevel) {
    for (const int32_t level : {0, 1, 10}) {
        freshstate();
        silently(maketwocomponents);
        const std::string console = at(level, [] { freecomponents(0); });
        EXPECT_EQ(maskpointers(console), "Freeing psComponents [*]\n"
                                         "Freeing component 0\n"
                                         "Freeing name 0 [*]\n"
                                         "Freeing hash 0 [*]\n"
                                         "Freeing relocs 0 [*]\n"
                                         "Freeing extract 0 [*]\n"
                                         "Freeing libname 0 [*]\n"
                                         "Freeing libstring 0 [*]\n"
                                         "Freeing component 1\n"
                                         "Freeing name 1 [*]\n"
                                         "Freeing hash 1 [*]\n"
                                         "Freeing relocs 1 [*]\n"
                                         "Freeing extract 1 [*]\n"
                                         "Freeing libname 1 [*]\n"
                                         "Freeing libstring 1 [*]\n");
        EXPECT_EQ(countof(console, "(nil)"), 6) << "only what the blank component lacks is null";
        EXPECT_EQ(slotat(0).iComponents(), 0);
    }
}

TEST_F(StoreTest, FreeingNoComponentsShowsANullArray) {
    newrom(64, 0);
    EXPECT_EQ(at(0, [] { freecomponents(0); }), "Freeing psComponents [(nil)]\n");
}

TEST_F(StoreTest, FreeingTheComponentsOfNoSlotIsRefused) {
    for (const int32_t rom : {-1, 0, 20})
        EXPECT_EQ(at(1, [&] { freecomponents(rom); }), "ERROR, No current ROM\n");
}

TEST_F(StoreTest, DestroyingAComponentDoesNothing) {
    silently(maketwocomponents);
    EXPECT_EQ(at(10, [] { EXPECT_EQ(destroycomponent(componentat(0, 0)), 0); }), "");
    EXPECT_EQ(componentat(0, 0).pcName, Text("exec.library"));
    EXPECT_EQ(slotat(0).iComponents(), 2);
}

TEST_F(StoreTest, ASlotHandedOutAfterAllWereFreedIsLikeNew) {
    loaded(standardrom(262144).image);
    iCurrentROM = 0;
    silently(freeroms);
    EXPECT_EQ(iMaxRom, 0);
    EXPECT_EQ(iCurrentROM, -1);
    ASSERT_EQ(newrom(16, 0), 0);
    EXPECT_EQ(slotat(0).iCRC32, 0u);
    EXPECT_EQ(slotat(0).iUsed, 0);
    EXPECT_EQ(slotat(0).iComponents(), 0);
}

} // namespace
} // namespace vantorel::test
