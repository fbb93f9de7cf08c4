// The loadable library form, long by long.

#include "component/loadable.h"
#include "rom/romtest.h"
#include "support/hunkbuilder.h"

namespace vantorel::test {
namespace {

Component library(int32_t size, std::vector<int32_t> relocs) {
    Component component;
    component.pcType = cTypeLibrary;
    component.iSize = size;
    component.pcExtract = Bytes(static_cast<size_t>(size), 0x5A);
    component.ipRelocs = std::move(relocs);
    return component;
}

// The header of a code hunk of this many longs.
Bytes header(uint32_t size, uint32_t hunk = 1001) { return longs({1011, 0, 1, 0, 0, size, hunk, size}); }

TEST(LoadableLibraryForm, WithoutRelocsIsHeaderBytesAndEnd) {
    EXPECT_EQ(loadablelibraryform(library(8, {})), joined(joined(header(2), Bytes(8, 0x5A)), longs({1010})));
}

TEST(LoadableLibraryForm, OtherTypesAreDataHunks) {
    Component component = library(8, {});
    for (const char* type : {"Data", "Device", "library", "Library ", ""}) {
        component.pcType = type;
        EXPECT_EQ(loadablelibraryform(component),
                  joined(joined(header(2, 1002), Bytes(8, 0x5A)), longs({1010})));
    }
    component.pcType.reset();
    EXPECT_EQ(longat(loadablelibraryform(component), 24), 1002u);
}

TEST(LoadableLibraryForm, AnEvenNumberOfShortRelocsIsPadded) {
    // Words: count, hunk, two offsets, end: five, so that a sixth makes a whole long.
    const Bytes form = loadablelibraryform(library(8, {4, 0}));
    const Bytes block = joined(longs({1015}), Bytes{0, 2, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(form, joined(joined(joined(header(2), Bytes(8, 0x5A)), block), longs({1010})));
}

TEST(LoadableLibraryForm, AnOddNumberOfShortRelocsNeedsNoPadding) {
    const Bytes form = loadablelibraryform(library(8, {4}));
    const Bytes block = joined(longs({1015}), Bytes{0, 1, 0, 0, 0, 4, 0, 0});
    EXPECT_EQ(form, joined(joined(joined(header(2), Bytes(8, 0x5A)), block), longs({1010})));
}

TEST(LoadableLibraryForm, Below64KRelocsAreWords) {
    const Bytes form = loadablelibraryform(library(65532, {65528}));
    EXPECT_EQ(longat(form, 20), 16383u);
    EXPECT_EQ(longat(form, 28), 16383u);
    EXPECT_EQ(part(form, 32 + 65532, 16).size(), 16u);
    EXPECT_EQ(Bytes(form.begin() + 32 + 65532, form.end()),
              joined(joined(longs({1015}), Bytes{0, 1, 0, 0, 0xFF, 0xF8, 0, 0}), longs({1010})));
}

TEST(LoadableLibraryForm, From64KOnRelocsAreLongs) {
    const Bytes form = loadablelibraryform(library(65536, {8, 65532}));
    EXPECT_EQ(longat(form, 20), 16384u);
    EXPECT_EQ(Bytes(form.begin() + 32 + 65536, form.end()), longs({1004, 2, 0, 8, 65532, 0, 1010}));
}

TEST(LoadableLibraryForm, ASizeThatIsNoMultipleOfFourKeepsItsBytes) {
    const Bytes form = loadablelibraryform(library(7, {}));
    EXPECT_EQ(longat(form, 20), 1u);
    EXPECT_EQ(form.size(), 32u + 7 + 4);
    EXPECT_EQ(Bytes(form.end() - 4, form.end()), longs({1010}));
}

TEST(LoadableLibraryForm, ThePaddingTestIsBit1OfTheLength) {
    // 32 + 7 + 4 + 8 = 51 = 0x33 has the bit set; 32 + 5 + 4 + 8 = 49 = 0x31 does not.
    EXPECT_EQ(loadablelibraryform(library(7, {0})).size(), 51u + 2 + 4);
    EXPECT_EQ(loadablelibraryform(library(5, {0})).size(), 49u + 4);
}

TEST(LoadableLibraryForm, ALongExtractIsUsedUpToTheSize) {
    Component component = library(8, {});
    component.pcExtract->resize(100, 0x77);
    EXPECT_EQ(loadablelibraryform(component), loadablelibraryform(library(8, {})));
}

TEST(LoadableLibraryForm, OddRecordsAreSurvived) {
    Component component = library(8, {0});
    component.pcExtract.reset();
    EXPECT_GE(loadablelibraryform(component).size(), 36u);
    component = library(8, {});
    component.iSize = -4;
    EXPECT_GE(loadablelibraryform(component).size(), 36u);
    EXPECT_GE(loadablelibraryform(Component{}).size(), 36u);
}

TEST(LoadableLibraryForm, OfEveryModuleOfTheStandardRom) {
    const BuiltRom standard = standardrom();
    for (const BuiltModule& module : standard.modules) {
        Component component;
        component.pcType = module.type;
        component.iSize = module.size;
        component.ipRelocs = module.relocs;
        component.pcExtract = module.extract;
        EXPECT_EQ(loadablelibraryform(component), module.loadable) << module.name;
        EXPECT_EQ(crc32of(loadablelibraryform(component)), module.loadablecrc);
    }
}

} // namespace
} // namespace vantorel::test
