// ROMTAGs: what counts as one, how it is read, and what is told of it.

#include "rom/romtag.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

// The fields of a ROMTAG as they stand in an image.
struct TagFields {
    uint32_t self = 0;
    uint32_t endskip = 0;
    uint8_t flags = 0;
    uint8_t version = 40;
    uint8_t type = 9;
    int8_t priority = -120;
    uint32_t name = 0;
    uint32_t idstring = 0;
    uint32_t init = 0;
};

void puttag(Bytes& image, int32_t offset, const TagFields& tag) {
    Bytes bytes;
    appendword(bytes, 0x4AFC);
    appendlong(bytes, tag.self);
    appendlong(bytes, tag.endskip);
    bytes.insert(bytes.end(), {tag.flags, tag.version, tag.type, static_cast<uint8_t>(tag.priority)});
    appendlong(bytes, tag.name);
    appendlong(bytes, tag.idstring);
    appendlong(bytes, tag.init);
    std::ranges::copy(bytes, image.begin() + offset);
}

void puttext(Bytes& image, int32_t offset, std::string_view text) {
    std::ranges::copy(text, image.begin() + offset);
}

class RomTagTest : public RomTest {
protected:
    // An image of 1024 zeroes with a whole tag at 100.
    static constexpr int32_t kTag = 100;
    RomTagTest() {
        puttext(image, 200, "exec.library");
        puttext(image, 220, "exec 40.10\r\n");
        write();
    }

    void write() { puttag(image, kTag, fields); }

    std::optional<RomTagInfo> find(uint32_t base = 0) {
        romBase = base;
        return findromtag(image, 0, static_cast<int32_t>(image.size()), romBase);
    }

    std::string trace(int32_t level = 6, uint32_t base = 0) {
        return maskpointers(at(level, [&] { static_cast<void>(find(base)); }));
    }

    Bytes image = Bytes(1024, 0);
    TagFields fields{.self = kBase + kTag,
                     .endskip = kBase + 600,
                     .flags = 1,
                     .name = kBase + 200,
                     .idstring = kBase + 220,
                     .init = kBase + 0x120};
    uint32_t romBase = 0;
};

TEST_F(RomTagTest, ATagIsReadWhole) {
    const auto tag = find();
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->iOffset, 100u);
    EXPECT_EQ(tag->iEndSkip, 500);
    EXPECT_EQ(tag->cFlags, 1);
    EXPECT_EQ(tag->cName, "exec.library");
    EXPECT_EQ(tag->cIdString, "exec 40.10");
}

TEST_F(RomTagTest, TheFirstTagSetsABaseOfZero) {
    find();
    EXPECT_EQ(romBase, kBase);
}

TEST_F(RomTagTest, AGivenBaseStays) {
    EXPECT_TRUE(find(kBase));
    EXPECT_EQ(romBase, kBase);
    EXPECT_EQ(at(0, [&] { EXPECT_FALSE(find(0xFC0000)); }), "");
    EXPECT_EQ(romBase, 0xFC0000u);
}

TEST_F(RomTagTest, AnotherBaseIsWarnedAboutAndPassedOver) {
    // 0xF80000 is 16252928.
    EXPECT_EQ(at(1, [&] { EXPECT_FALSE(find(0xFC0000)); }),
              "Warning: possible ROMBase mismatch using 00fc0000 but detected potential 00f80000 use rombase "
              "16252928 to force\n");
    expectthresholds([] {}, [&] { static_cast<void>(find(0xFC0000)); },
                     {{0, "Warning: possible ROMBase mismatch"}});
}

TEST_F(RomTagTest, TheSearchGoesOnBehindATagOfAnotherBase) {
    puttag(image, 40, {.self = 0xE00000 + 40});
    std::optional<RomTagInfo> tag;
    EXPECT_EQ(countof(at(1, [&] { tag = find(kBase); }), "\n"), 1);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->iOffset, 100u);
}

TEST_F(RomTagTest, AMatchTagBesideItselfIsSkippedSilently) {
    for (const uint32_t self :
         {kBase + kTag + 2, kBase + kTag + 0x800, 0x01000000u + kTag, 0xFFF80000u + kTag}) {
        fields.self = self;
        write();
        EXPECT_EQ(at(5, [&] { EXPECT_FALSE(find()); }), "") << self;
        EXPECT_EQ(romBase, 0u);
    }
}

TEST_F(RomTagTest, EveryBaseOfWhole4KBelow16MCounts) {
    for (const uint32_t base : {0x1000u, 0x200000u, 0x7FF000u, 0xFFF000u}) {
        fields.self = base + kTag;
        write();
        ASSERT_TRUE(find()) << base;
        EXPECT_EQ(romBase, base);
    }
}

TEST_F(RomTagTest, ABaseOfZeroCountsWhileNoneIsKnown) {
    fields.self = kTag;
    fields.endskip = 160;
    fields.name = 200;
    write();
    const auto tag = find();
    ASSERT_TRUE(tag);
    EXPECT_EQ(romBase, 0u);
    EXPECT_EQ(tag->iEndSkip, 60);
    EXPECT_EQ(tag->cName, "exec.library");
}

TEST_F(RomTagTest, OnlyTagsInTheRangeAreFound) {
    EXPECT_TRUE(findromtag(image, 100, 101, romBase));
    EXPECT_FALSE(findromtag(image, 101, 1024, romBase));
    EXPECT_FALSE(findromtag(image, 0, 100, romBase));
    EXPECT_FALSE(findromtag(image, 100, 100, romBase));
}

TEST_F(RomTagTest, ATagOnAnOddOffsetCounts) {
    Bytes odd(256, 0);
    puttag(odd, 33, {.self = kBase + 33});
    EXPECT_TRUE(findromtag(odd, 0, 256, romBase));
}

TEST_F(RomTagTest, ATagNeedsIts26BytesInTheImage) {
    const View view = image;
    for (size_t size = 100; size < 126; ++size) {
        uint32_t base = 0;
        EXPECT_FALSE(findromtag(view.first(size), 0, 1024, base)) << size;
    }
    uint32_t base = 0;
    EXPECT_TRUE(findromtag(view.first(126), 0, 1024, base));
}

TEST_F(RomTagTest, NoBytesHaveNoTag) {
    EXPECT_FALSE(findromtag(View{}, 0, 100, romBase));
    EXPECT_FALSE(findromtag(View{}, -100, 100, romBase));
}

TEST_F(RomTagTest, AnEndSkipBeforeTheTagIsNegative) {
    fields.endskip = kBase + 20;
    write();
    EXPECT_EQ(find()->iEndSkip, -80);
}

TEST_F(RomTagTest, ANullNameIsABadPointer) {
    fields.name = 0;
    write();
    EXPECT_EQ(find()->cName, "(bad pointer)");
}

TEST_F(RomTagTest, TheOddNamePointerMeansOffset320) {
    puttext(image, 320, "strange.library");
    fields.name = 0x00460140;
    write();
    EXPECT_EQ(find()->cName, "strange.library");
}

TEST_F(RomTagTest, TheOddPointerIsNoneInTheIdString) {
    puttext(image, 320, "strange.library");
    fields.idstring = 0x00460140;
    write();
    EXPECT_EQ(find()->cIdString, "");
}

TEST_F(RomTagTest, TextsEndAtNulLineFeedOrCarriageReturn) {
    for (const char end : {'\0', '\n', '\r'}) {
        image[204] = static_cast<uint8_t>(end);
        image[225] = static_cast<uint8_t>(end);
        EXPECT_EQ(find()->cName, "exec");
        EXPECT_EQ(find()->cIdString, "exec ");
    }
}

TEST_F(RomTagTest, TextsHave128CharactersAtMost) {
    puttext(image, 400, std::string(200, 'x'));
    fields.name = fields.idstring = kBase + 400;
    write();
    const auto tag = find();
    EXPECT_EQ(tag->cName, std::string(128, 'x'));
    EXPECT_EQ(tag->cIdString, std::string(128, 'x'));
}

TEST_F(RomTagTest, ATextEndsWithTheImage) {
    puttext(image, 1020, "tail");
    fields.name = kBase + 1020;
    write();
    EXPECT_EQ(find()->cName, "tail");
}

TEST_F(RomTagTest, TextPointersOutsideTheImageAreEmptyTexts) {
    for (const uint32_t pointer : {kBase + 1024, kBase - 1, 0xFFFFFFFFu, 1u, 0x7FFFFFFFu}) {
        fields.name = fields.idstring = pointer;
        write();
        const auto tag = find();
        EXPECT_EQ(tag->cName, "") << pointer;
        EXPECT_EQ(tag->cIdString, "") << pointer;
    }
}

TEST_F(RomTagTest, ANullIdStringIsNoTextInTheImage) {
    fields.idstring = 0;
    write();
    EXPECT_EQ(find()->cIdString, "");
}

// The tag runs at 0xF80064, which is 16253028; its end-skip is 500 bytes on.
TEST_F(RomTagTest, AManualTagIsNarrated) {
    EXPECT_EQ(trace(), "FINDINGROMTAG from 0 to 1024 in * ROMBase=00000000\n"
                       "Found TAG at 100\n"
                       "16253028 - 100 = 00f80000\n"
                       "Endskip=500 Flags: 01 COLDSTART  Version: 40 Type: 9 Priority: -120\n"
                       "Libname pointer=00f800c8 \n"
                       "Name=[exec.library] String=[exec 40.10]\n"
                       "Manual init address=00000120\n");
}

TEST_F(RomTagTest, AnAutoInitTagTellsItsTable) {
    fields.flags = 0x87;
    fields.init = kBase + 300;
    write();
    ASSERT_TRUE(putlong(image, 300, 0x22));
    ASSERT_TRUE(putlong(image, 304, kBase + 340));
    ASSERT_TRUE(putlong(image, 308, kBase + 0x180));
    ASSERT_TRUE(putlong(image, 312, kBase + 0x190));
    ASSERT_TRUE(putlong(image, 340, 0xFFFF1234));
    const std::string text = trace();
    EXPECT_TRUE(has(text, "Flags: 87 COLDSTART SINGLETASK AFTERDOS AUTOINIT  Version: ")) << text;
    EXPECT_EQ(text.substr(text.find("Name=")), "Name=[exec.library] String=[exec 40.10]\n"
                                               "Autoinit DataSize     =00000022\n"
                                               "Autoinit VectorTable  =00000154\n"
                                               "Autoinit InitStructure=00000180\n"
                                               "Autoinit InitFunction =00000190\n"
                                               "First Vector=ffff1234\n");
}

TEST_F(RomTagTest, EachFlagHasItsWord) {
    const auto flagtext = [&](uint8_t flags) {
        fields.flags = flags;
        write();
        const std::string text = trace();
        const size_t start = text.find("Flags: ");
        return text.substr(start, text.find("Version") - start);
    };
    EXPECT_EQ(flagtext(0x00), "Flags: 00  ");
    EXPECT_EQ(flagtext(0x01), "Flags: 01 COLDSTART  ");
    EXPECT_EQ(flagtext(0x02), "Flags: 02 SINGLETASK  ");
    EXPECT_EQ(flagtext(0x04), "Flags: 04 AFTERDOS  ");
    EXPECT_EQ(flagtext(0x80), "Flags: 80 AUTOINIT  ");
    EXPECT_EQ(flagtext(0x78), "Flags: 78  ");
}

TEST_F(RomTagTest, InitPointersOutsideTheImageAreSurvived) {
    for (const uint8_t flags : {uint8_t{0}, uint8_t{0x80}})
        for (const uint32_t init : {0u, 1u, kBase + 1022, kBase + 1024, kBase - 4, 0xFFFFFFFFu}) {
            fields.flags = flags;
            fields.init = init;
            write();
            EXPECT_TRUE(has(trace(10), "Name=[exec.library] String=[exec 40.10]\n"));
        }
}

TEST_F(RomTagTest, TheNamePlaceIsTheRawestTrace) {
    EXPECT_TRUE(has(trace(10), "Libname pointer=00f800c8 \nPointer=* \nName=["));
    const Action run = [&] { static_cast<void>(find()); };
    expectthresholds([] {}, run, {{9, "Pointer="}});
}

TEST_F(RomTagTest, TracesHaveTheirThresholds) {
    const Action run = [&] { static_cast<void>(find()); };
    expectthresholds([] {}, run,
                     {{5, "FINDINGROMTAG from 0 to 1024 in "},
                      {5, "Found TAG at 100\n"},
                      {5, "16253028 - 100 = 00f80000\n"},
                      {5, "Endskip=500 "},
                      {5, "Flags: 01 "},
                      {5, "Version: 40 "},
                      {5, "Type: 9 "},
                      {5, "Priority: -120\n"},
                      {5, "Libname pointer="},
                      {5, "Name=[exec.library]"},
                      {5, "Manual init address="}});
    fields.flags = 0x80;
    write();
    expectthresholds([] {}, run,
                     {{5, "Autoinit DataSize     ="},
                      {5, "Autoinit VectorTable  ="},
                      {5, "Autoinit InitStructure="},
                      {5, "Autoinit InitFunction ="},
                      {5, "First Vector="}});
}

TEST_F(RomTagTest, AFalseMatchWordIsTracedButNotRead) {
    fields.self = kBase + kTag + 1;
    write();
    EXPECT_EQ(trace(), "FINDINGROMTAG from 0 to 1024 in * ROMBase=00000000\nFound TAG at 100\n");
}

TEST(RomTagFlags, EachBitWithANameIsNamed) {
    EXPECT_EQ(flagnames(0x00, ' '), "");
    EXPECT_EQ(flagnames(0x01, ' '), "COLDSTART ");
    EXPECT_EQ(flagnames(0x02, ' '), "SINGLETASK ");
    EXPECT_EQ(flagnames(0x04, '|'), "AFTERDOS|");
    EXPECT_EQ(flagnames(0x80, '|'), "AUTOINIT|");
    EXPECT_EQ(flagnames(0x78, '|'), "") << "bits without a name";
    EXPECT_EQ(flagnames(0xFF, '|'), "COLDSTART|SINGLETASK|AFTERDOS|AUTOINIT|");
}

} // namespace
} // namespace vantorel::test
