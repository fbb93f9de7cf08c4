// Extracts written into the image, relocated for the place where they run.

#include "component/extract.h"
#include "component/placement.h"
#include "component/slotstate.h"

namespace vantorel::test {
namespace {

class CopyExtractTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        slotwith(64, {{32, 16}}, 0xF80000);
        componentat(0, 0).pcExtract = extract;
    }

    const Bytes extract = noisebytes(16, 3);
};

TEST_F(CopyExtractTest, WithoutRelocsItIsACopy) {
    silently([] { EXPECT_EQ(copyextracttorom(0, 0), 0); });
    EXPECT_EQ(bytesat(0, 32, 16), extract);
    EXPECT_EQ(bytesat(0, 0, 32), Bytes(32, 0xEE));
    EXPECT_EQ(bytesat(0, 48, 16), Bytes(16, 0xEE));
}

TEST_F(CopyExtractTest, RelocatedLongsAreRaisedByBaseAndStart) {
    componentat(0, 0).ipRelocs = {12, 1, 6};
    silently([] { EXPECT_EQ(copyextracttorom(0, 0), 0); });
    EXPECT_EQ(bytesat(0, 32, 16), raised(extract, {1, 6, 12}, 0xF80020));
    EXPECT_EQ(componentat(0, 0).pcExtract, extract);
}

TEST_F(CopyExtractTest, EachRelocIsReadFromTheExtract) {
    // Written one over the other, the second long still comes from the extract.
    componentat(0, 0).ipRelocs = {0, 2, 2};
    silently([] { copyextracttorom(0, 0); });
    const Bytes first = raised(extract, {0}, 0xF80020);
    const Bytes second = raised(extract, {2}, 0xF80020);
    EXPECT_EQ(bytesat(0, 32, 2), Bytes(first.begin(), first.begin() + 2));
    EXPECT_EQ(bytesat(0, 34, 14), Bytes(second.begin() + 2, second.end()));
}

TEST_F(CopyExtractTest, TheSumWrapsAtThirtyTwoBits) {
    slotat(0).iROMBase = 0xFFFFFFF0;
    componentat(0, 0).pcExtract = Bytes(16, 0);
    componentat(0, 0).ipRelocs = {4};
    silently([] { copyextracttorom(0, 0); });
    EXPECT_EQ(longat(slotat(0).pcROM, 36), 0x10u);
}

TEST_F(CopyExtractTest, ItUndoesCreateExtractWhateverTheBytes) {
    componentat(0, 0).ipRelocs = {0, 5, 12};
    silently([] { copyextracttorom(0, 0); });
    silently([] { createextract(0, 0); });
    EXPECT_EQ(componentat(0, 0).pcExtract, extract);
}

TEST_F(CopyExtractTest, ALongerExtractIsUsedUpToTheSize) {
    componentat(0, 0).pcExtract->resize(100, 0x55);
    silently([] { EXPECT_EQ(copyextracttorom(0, 0), 0); });
    EXPECT_EQ(bytesat(0, 32, 16), extract);
    EXPECT_EQ(bytesat(0, 48, 16), Bytes(16, 0xEE));
}

TEST_F(CopyExtractTest, ARelocOutsideIsLeftOutWithItsOwnLine) {
    componentat(0, 0).ipRelocs = {-1, 4, 13, 2147483647};
    EXPECT_EQ(at(1, [] { EXPECT_EQ(copyextracttorom(0, 0), 0); }),
              "ERROR: Reloc -1 is outside its component\n"
              "ERROR: Reloc 13 is outside its component\n"
              "ERROR: Reloc 2147483647 is outside its component\n");
    EXPECT_EQ(bytesat(0, 32, 16), raised(extract, {4}, 0xF80020));
}

TEST_F(CopyExtractTest, AComponentOutsideItsImageIsRefused) {
    for (const Extent& place : std::vector<Extent>{{-1, 16}, {49, 16}, {64, 1}, {0, 65}, {2147483640, 16}}) {
        componentat(0, 0).iStart = place.start;
        componentat(0, 0).iSize = place.size;
        componentat(0, 0).pcExtract = Bytes(100, 1);
        EXPECT_TRUE(isoneerror(expectunchanged(0, [] { EXPECT_EQ(copyextracttorom(0, 0), 1); })))
            << place.start;
    }
}

TEST_F(CopyExtractTest, WithoutAWholeExtractNothingIsCopied) {
    componentat(0, 0).pcExtract->pop_back();
    EXPECT_TRUE(isoneerror(expectunchanged(0, [] { EXPECT_EQ(copyextracttorom(0, 0), 1); })));
    componentat(0, 0).pcExtract.reset();
    EXPECT_TRUE(isoneerror(expectunchanged(0, [] { EXPECT_EQ(copyextracttorom(0, 0), 1); })));
}

TEST_F(CopyExtractTest, MissingSlotsAndComponentsAreRefused) {
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(copyextracttorom(rom, 0), 1); }),
                  "ERROR, No current ROM\n");
    for (const int32_t component : {-1, 1, 2147483647})
        EXPECT_EQ(expectunchanged(0, [&] { EXPECT_EQ(copyextracttorom(0, component), 1); }),
                  "ERROR: No such component\n");
}

TEST_F(CopyExtractTest, MessagesHaveTheirThresholds) {
    const Action prepare = [] {
        slotwith(64, {{8, 4}, {32, 16}}, 0xF80000);
        componentat(0, 1).pcExtract = Bytes(16, 0);
        componentat(0, 1).ipRelocs = {0, 8};
    };
    // 0xF80020 is 16252960 in decimal.
    expectthresholds(prepare, [] { copyextracttorom(0, 1); },
                     {{1, "Copying extract 0x"},
                      {1, " to ROM 0x"},
                      {1, "Patching ROM component 1 ROMBASE 0x00f80000 (2 relocs)\n"},
                      {5, "Patching 1 position:0\nReloc 1=0 (00f80020)\n"},
                      {5, "Patching 1 position:8\nReloc 1=8 (00f80020)\n"},
                      {5, "Patched\n"}});
}

TEST_F(CopyExtractTest, AnExtractThatIsThereIsNotBuiltAgain) {
    silently([] { EXPECT_TRUE(requireextract(0, 0)); });
    EXPECT_EQ(componentat(0, 0).pcExtract, extract);
    componentat(0, 0).pcExtract->push_back(1);
    silently([] { EXPECT_TRUE(requireextract(0, 0)); });
    EXPECT_EQ(componentat(0, 0).pcExtract->size(), 17u);
}

TEST_F(CopyExtractTest, AMissingOrShortExtractIsBuiltFromTheImage) {
    for (const auto& there : std::vector<std::optional<Bytes>>{std::nullopt, Bytes(15, 1), Bytes{}}) {
        componentat(0, 0).pcExtract = there;
        silently([] { EXPECT_TRUE(requireextract(0, 0)); });
        EXPECT_EQ(componentat(0, 0).pcExtract, Bytes(16, 0xEE));
    }
    componentat(0, 0).pcExtract.reset();
    componentat(0, 0).iStart = 60;
    EXPECT_TRUE(isoneerror(expectunchanged(0, [] { EXPECT_FALSE(requireextract(0, 0)); })));
}

} // namespace
} // namespace vantorel::test
