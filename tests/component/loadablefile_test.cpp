// The loadable library form of components in ROMs, and its way back through the reader.

#include "component/hunkread.h"
#include "component/loadable.h"
#include "support/noise.h"

#include <numeric>
#include <optional>
#include <utility>

namespace vantorel::test {
namespace {

// What stands in buffer and CRC before, so that it can be seen whether they are left alone.
constexpr uint32_t iFormerCrc = 0x13579BDF;
const Bytes formerbuffer = {9, 8, 7};

struct Form {
    int32_t length = -1;
    std::string console;
    Bytes buffer = formerbuffer;
    uint32_t crc = iFormerCrc;
};

Form formof(int32_t rom, int32_t component, int32_t level = 1) {
    Form form;
    form.console =
        at(level, [&] { form.length = loadedlib2loadablelib(rom, component, form.buffer, form.crc); });
    return form;
}

void expectnothing(const Form& form, const std::string& console) {
    EXPECT_EQ(form.length, 0);
    EXPECT_EQ(form.console, console);
    EXPECT_EQ(form.buffer, formerbuffer);
    EXPECT_EQ(form.crc, iFormerCrc);
}

class LoadableFileTest : public RomTest {
protected:
    // A slot of 64 bytes at 0xF80000 with one library of 8 bytes at 32, whose first long is its own address.
    void SetUp() override {
        RomTest::SetUp();
        make();
    }

    static void make() {
        silently([] { newrom(64, 0xEE); });
        slotat(0).iROMBase = 0xF80000;
        const Bytes bytes = longs({0x00F80020, 0x4E714E75});
        std::ranges::copy(bytes, slotat(0).pcROM.begin() + 32);
        Component component;
        component.pcName = "some.library";
        component.pcType = cTypeLibrary;
        component.iStart = 32;
        component.iSize = 8;
        component.ipRelocs = {0};
        component.pcExtract = longs({0, 0x4E714E75});
        slotat(0).psComponents = {component};
    }

    static Component& library() { return componentat(0, 0); }

    // 32 bytes up to the contents, 8 of them, 4 + 2 * 4 of relocs, 4.
    const Bytes form = joined(
        longs({1011, 0, 1, 0, 0, 2, 1001, 2, 0, 0x4E714E75, 1015, 0x00010000, 0x00000000}), longs({1010}));
};

TEST_F(LoadableFileTest, LengthBytesAndCrcAreThoseOfTheForm) {
    const Form built = formof(0, 0);
    EXPECT_EQ(built.buffer, form);
    EXPECT_EQ(built.length, 56);
    EXPECT_EQ(built.crc, crc32of(form));
    EXPECT_EQ(built.console, "");
}

TEST_F(LoadableFileTest, OtherTypesAreTheirBytesOfTheImage) {
    for (const char* type : {"Unknown", "Kickity-Split", "Checksum", "library", ""}) {
        library().pcType = type;
        const Form raw = formof(0, 0, 2);
        EXPECT_EQ(raw.console, "Saving RAW 8 bytes\n");
        EXPECT_EQ(raw.length, 8);
        EXPECT_EQ(raw.buffer, longs({0x00F80020, 0x4E714E75})) << "not the extract";
        EXPECT_EQ(raw.crc, iFormerCrc) << "left alone";
    }
    library().pcType.reset();
    EXPECT_EQ(formof(0, 0).length, 8);
}

TEST_F(LoadableFileTest, MissingSlotsAndComponentsAreRefused) {
    for (const int32_t rom : {2, 20, 2147483647, -1})
        expectnothing(formof(rom, 0), "ROM out of range\n");
    expectnothing(formof(1, 0), "Component out of range\n"); // as many slots as there are
    for (const int32_t component : {1, -1, 2147483647})
        expectnothing(formof(0, component), "Component out of range\n");
}

TEST_F(LoadableFileTest, ComponentsOutsideTheirImageAreRefusedWithOneLine) {
    for (const char* type : {"Library", "Data", "Unknown"})
        for (const auto& [start, size] : std::vector<std::pair<int32_t, int32_t>>{
                 {60, 8}, {-4, 8}, {32, -8}, {0, 65}, {2147483640, 2147483640}}) {
            library().pcType = type;
            library().iStart = start;
            library().iSize = size;
            const Form refused = formof(0, 0);
            EXPECT_TRUE(refused.console.starts_with("ERROR")) << refused.console;
            EXPECT_EQ(countof(refused.console, "\n"), 1);
            expectnothing(refused, refused.console);
            EXPECT_EQ(library().pcExtract, longs({0, 0x4E714E75}));
        }
}

TEST_F(LoadableFileTest, AnAbsentOrShortExtractIsBuiltAnew) {
    for (const std::optional<Bytes>& extract : {std::optional<Bytes>(), std::optional(Bytes(7, 0x55))}) {
        library().pcExtract = extract;
        EXPECT_EQ(formof(0, 0).buffer, form);
        EXPECT_EQ(library().pcExtract, longs({0, 0x4E714E75}));
    }
}

TEST_F(LoadableFileTest, ALongOrStaleExtractIsUsedUpToTheSize) {
    library().pcExtract = longs({0, 0x4E714E75, 0x77777777});
    EXPECT_EQ(formof(0, 0).buffer, form);
    library().pcExtract = longs({5, 6});
    EXPECT_EQ(part(formof(0, 0).buffer, 32, 8).front(), 0);
    EXPECT_EQ(longat(formof(0, 0).buffer, 36), 6u) << "the image is not asked";
}

TEST_F(LoadableFileTest, RelocsOutsideTheComponentAreLeftOutWithALineEach) {
    library().ipRelocs = {-4, 0, 5, 8, 2147483647};
    const Form built = formof(0, 0);
    EXPECT_EQ(built.buffer, form) << "with the one reloc that lies inside";
    EXPECT_EQ(built.console, "ERROR: Reloc -4 is outside its component\n"
                             "ERROR: Reloc 5 is outside its component\n"
                             "ERROR: Reloc 8 is outside its component\n"
                             "ERROR: Reloc 2147483647 is outside its component\n");
}

TEST_F(LoadableFileTest, MessagesHaveTheirThresholds) {
    const Action makeraw = [] {
        make();
        library().pcType = cTypeUnknown;
    };
    const auto build = [](int32_t rom, int32_t component) {
        return [=] {
            Bytes buffer;
            uint32_t crc = 0;
            loadedlib2loadablelib(rom, component, buffer, crc);
        };
    };
    expectthresholds(makeraw, build(9, 0), {{0, "ROM out of range\n"}});
    expectthresholds(makeraw, build(0, 9), {{0, "Component out of range\n"}});
    expectthresholds(makeraw, build(0, 0), {{1, "Saving RAW 8 bytes\n"}});
}

// A component of any kind that the form can hold.
Component anycomponent(Noise& noise, int32_t size, uint32_t relocs) {
    Component component;
    component.pcType = noise() % 2 == 0 ? cTypeLibrary : cTypeData;
    component.iSize = size;
    component.pcExtract = Bytes(static_cast<size_t>(size));
    for (int32_t at = 0; at + 4 <= size; at += 4)
        setlong(component.pcExtract->data() + at, noise());
    component.ipRelocs.resize(static_cast<size_t>(std::max(size - 3, 0)));
    std::iota(component.ipRelocs.begin(), component.ipRelocs.end(), 0);
    const size_t count = std::min<size_t>(relocs, component.ipRelocs.size());
    for (size_t i = 0; i < count; ++i) // in any order
        std::swap(component.ipRelocs[i], component.ipRelocs[i + noise() % (component.ipRelocs.size() - i)]);
    component.ipRelocs.resize(count);
    return component;
}

void expectback(const Component& component) {
    const Bytes file = loadablelibraryform(component);
    EXPECT_EQ(file.size() % 4, 0u);
    const Component back = taken(file);
    EXPECT_EQ(back.pcType, component.pcType);
    EXPECT_EQ(back.iSize, component.iSize);
    EXPECT_EQ(back.pcExtract, component.pcExtract);
    std::vector<int32_t> relocs = component.ipRelocs;
    std::ranges::sort(relocs);
    EXPECT_EQ(back.ipRelocs, relocs);
    EXPECT_EQ(back.iCRC32, crc32of(file));
    if (::testing::Test::HasFailure())
        FAIL() << component.iSize << " bytes, " << component.iRelocs() << " relocs";
}

TEST(LoadableRoundTrip, ComponentsAroundEveryBoundaryComeBack) {
    Noise noise(7);
    for (const int32_t size : {0, 4, 8, 12, 16, 20, 65524, 65528, 65532, 65536, 65540, 70000})
        for (const uint32_t relocs : {0u, 1u, 2u, 3u, 4u, 5u, 1000u})
            expectback(anycomponent(noise, size, relocs));
}

TEST(LoadableRoundTrip, ComponentsOfAnySizeComeBack) {
    Noise noise(8);
    for (int round = 0; round < 120; ++round) {
        const auto size = static_cast<int32_t>(noise() % 17501) * 4;
        expectback(anycomponent(noise, size, noise() % (round % 10 == 0 ? 20000 : 50)));
    }
}

TEST(LoadableRoundTrip, EveryPlaceMayBeAReloc) {
    Noise noise(9);
    for (const int32_t size : {16, 65532})
        expectback(anycomponent(noise, size, 70000));
}

TEST(LoadableRoundTrip, MoreRelocsThanAGroupCanCountComeBack) {
    Noise noise(10);
    Component component = anycomponent(noise, 65532, 0);
    for (const size_t count : {65535u, 65536u, 131071u}) {
        component.ipRelocs.assign(count, 16);
        component.ipRelocs.back() = 4;
        expectback(component);
    }
}

TEST(LoadableRoundTrip, TheFormOfTheReadComponentIsTheFileItself) {
    Noise noise(11);
    for (const int32_t size : {8, 4096, 65532, 65536}) {
        Component component = anycomponent(noise, size, 20);
        std::ranges::sort(component.ipRelocs);
        const Bytes file = loadablelibraryform(component);
        EXPECT_EQ(loadablelibraryform(taken(file)), file) << size;
    }
}

TEST(LoadableRoundTrip, SizesOfNoWholeLongsKeepTheirBytesInTheFile) {
    Noise noise(12);
    for (int32_t size = 1; size < 30; ++size) {
        const Component component = anycomponent(noise, size, 0);
        const Bytes file = loadablelibraryform(component);
        EXPECT_EQ(longat(file, 20), static_cast<uint32_t>(size / 4));
        EXPECT_EQ(longat(file, 28), static_cast<uint32_t>(size / 4));
        const View bytes = part(file, 32, size);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), component.pcExtract);
        EXPECT_EQ(Bytes(file.begin() + 32 + size, file.end()), longs({1010}));
    }
}

} // namespace
} // namespace vantorel::test
