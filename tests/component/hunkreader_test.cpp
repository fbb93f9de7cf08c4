// What the blocks of hunk files become: type, extract and messages. Their relocs have a file of their own.

#include "component/hunkread.h"

namespace vantorel::test {
namespace {

class HunkReaderTest : public RomTest {};

const Bytes codebytes = longs({0x4E714E75, 0x11111111});
const Bytes databytes = longs({0x22222222});

HunkBuilder header(const std::vector<uint32_t>& sizes) {
    HunkBuilder builder;
    builder.header({.sizes = sizes});
    return builder;
}

void expecttexts(View file, const std::vector<Shown>& texts) {
    expectthresholds([] {}, [&] { readonly(file); }, texts);
}

TEST_F(HunkReaderTest, NothingAtAllIsAnUnknownComponentOfNoBytes) {
    const HunkRead read = readhunks({});
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.console, "Populating component 0 relocs\n");
    EXPECT_EQ(read.component.pcType, "Unknown");
    EXPECT_EQ(read.component.iSize, 0);
    EXPECT_EQ(read.component.iCRC32, 0u);
    EXPECT_TRUE(read.component.ipRelocs.empty());
    EXPECT_EQ(read.component.pcExtract, Bytes{});
}

TEST_F(HunkReaderTest, AHeaderAloneIsAnUnknownComponentToo) {
    EXPECT_EQ(taken(header({2}).bytes()).pcType, "Unknown");
    EXPECT_EQ(taken(header({2}).bytes()).iSize, 0) << "what is appended counts, not what the header promises";
}

TEST_F(HunkReaderTest, ACodeHunkMakesALibrary) {
    const Bytes file = header({2}).code(codebytes).end().bytes();
    const Component component = taken(file);
    EXPECT_EQ(component.pcType, "Library");
    EXPECT_EQ(component.iSize, 8);
    EXPECT_EQ(component.pcExtract, codebytes);
    EXPECT_EQ(component.iCRC32, crc32of(file)) << "of the file, not of the extract";
    EXPECT_TRUE(component.ipRelocs.empty());
    EXPECT_EQ(component.pcName, "former") << "names are the caller's";
}

TEST_F(HunkReaderTest, ADataHunkAloneMakesData) {
    const Component component = taken(header({1}).data(databytes).end().bytes());
    EXPECT_EQ(component.pcType, "Data");
    EXPECT_EQ(component.pcExtract, databytes);
}

TEST_F(HunkReaderTest, CodeAndDataAreOneLibraryInTheOrderOfTheFile) {
    const Component codefirst = taken(header({2, 1}).code(codebytes).end().data(databytes).end().bytes());
    EXPECT_EQ(codefirst.pcType, "Library");
    EXPECT_EQ(codefirst.pcExtract, joined(codebytes, databytes));
    EXPECT_EQ(codefirst.iSize, 12);
    const Component datafirst = taken(header({1, 2}).data(databytes).end().code(codebytes).end().bytes());
    EXPECT_EQ(datafirst.pcType, "Library") << "code always makes a library";
    EXPECT_EQ(datafirst.pcExtract, joined(databytes, codebytes));
}

TEST_F(HunkReaderTest, HunksOfNoBytesCount) {
    const Component component =
        taken(header({0, 1, 0}).code({}).end().data(databytes).end().data({}).end().bytes());
    EXPECT_EQ(component.pcType, "Library");
    EXPECT_EQ(component.pcExtract, databytes);
}

TEST_F(HunkReaderTest, HunksNeedNoEndBetweenThem) {
    EXPECT_EQ(taken(header({2, 1}).code(codebytes).data(databytes).bytes()).pcExtract,
              joined(codebytes, databytes));
}

TEST_F(HunkReaderTest, HunksNeedNoHeaderWhileNothingIsRelocated) {
    const Component component = taken(HunkBuilder().data(databytes).end().bytes());
    EXPECT_EQ(component.pcType, "Data");
    EXPECT_EQ(component.pcExtract, databytes);
}

TEST_F(HunkReaderTest, MemoryFlagsChangeNoSize) {
    for (const uint32_t flags : {0x40000000u, 0x80000000u, 0xC0000000u}) {
        const HunkRead read = readhunks(HunkBuilder()
                                            .header({.sizes = {2 | flags, 1 | flags}})
                                            .code(codebytes)
                                            .end()
                                            .data(databytes)
                                            .reloc32({{.target = 1, .offsets = {0}}})
                                            .end()
                                            .bytes(),
                                        6);
        EXPECT_EQ(read.component.pcExtract, joined(codebytes, longs({0x2222222A})))
            << "8 bytes of code before";
        EXPECT_EQ(read.component.ipRelocs, std::vector<int32_t>{8});
        EXPECT_TRUE(has(read.console,
                        " Hunk 0 size=8 bytes\n Hunk 1 size=4 bytes\nTotal extract size will be "
                        "12 bytes\n"));
        EXPECT_TRUE(has(read.console, " Code Start=36 Size=8\n"));
    }
}

TEST_F(HunkReaderTest, BssIsReportedAndTakesNoBytes) {
    const HunkRead read =
        readhunks(header({2, 5, 1}).code(codebytes).end().bss(5).end().data(databytes).end().bytes(), 2);
    EXPECT_EQ(read.component.pcExtract, joined(codebytes, databytes));
    EXPECT_EQ(read.component.iSize, 12);
    EXPECT_EQ(read.console, "ERROR: HUNK_BSS [000003eb]\n"
                            "ERROR: Library will need to allocate 20 bytes during load, not appropriate for "
                            "Kickstart module (IGNORNING)\n"
                            "Populating component 0 relocs\n");
    EXPECT_EQ(taken(header({5}).bss(5).end().bytes()).pcType, "Unknown") << "it makes no type either";
}

TEST_F(HunkReaderTest, SymbolsAndDebugInformationArePassedOver) {
    const HunkRead read = readhunks(header({2})
                                        .code(codebytes)
                                        .symbols({{"_main", 4}, {"abcd", 0xABCD1234}})
                                        .debug(longs({1010, 1001, 999}))
                                        .end()
                                        .bytes(),
                                    6);
    EXPECT_EQ(read.component.pcExtract, codebytes);
    EXPECT_TRUE(has(read.console, "abcd1234"));
    EXPECT_TRUE(has(read.console, "HUNK_DEBUG [000003f1]\n"));
    EXPECT_TRUE(has(read.console, " Skip 3 words\n"));
    EXPECT_TRUE(has(read.console, "HUNK_END [000003f2]\n"));
}

TEST_F(HunkReaderTest, SymbolsPrintAnEmptyLineAtEveryLevel) {
    const Bytes file = header({2}).code(codebytes).symbols({{"_main", 4}}).symbols({}).end().bytes();
    EXPECT_EQ(readhunks(file, 0).console, "\n\n");
    EXPECT_EQ(readhunks(file, 1).console, "\n\nPopulating component 0 relocs\n");
}

TEST_F(HunkReaderTest, ASecondHeaderStartsTheExtractAgain) {
    const Component component =
        taken(header({2}).code(codebytes).end().header({.sizes = {1}}).data(databytes).end().bytes());
    EXPECT_EQ(component.pcExtract, databytes);
    EXPECT_EQ(component.iSize, 4);
    EXPECT_EQ(component.pcType, "Library") << "the first code hunk made it one";
}

TEST_F(HunkReaderTest, LibraryNamesAreReportedAndTakenForTheTable) {
    // The long behind the count of names is read as the size of the table, whatever stands there.
    const Bytes file = HunkBuilder().header({.sizes = {2}, .names = 3}).code(codebytes).end().bytes();
    const HunkRead read = readhunks(file, 2);
    EXPECT_EQ(read.component.pcExtract, codebytes);
    EXPECT_EQ(read.console, "ERROR: libraries to open, leninlongwords=3\nPopulating component 0 relocs\n");
    // One name of one long, "abcd": its end and the true table are taken for first and last hunk, and what is
    // read as an id after them is none.
    const Bytes named = longs({1011, 1, 0x61626364, 0, 1, 0, 0, 2, 1001, 2, 3, 4, 1010});
    EXPECT_EQ(taken(named).pcType, "Data");
    EXPECT_EQ(taken(named).pcExtract, named);
}

TEST_F(HunkReaderTest, ATableOfNoEntriesGoesOnWithoutIt) {
    const Bytes file = HunkBuilder().header({.sizes = {2}, .table = 0}).code(codebytes).end().bytes();
    const HunkRead read = readhunks(file, 2);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.component.pcExtract, codebytes);
    EXPECT_EQ(read.console, "ERROR: No hunk table\nPopulating component 0 relocs\n");
}

TEST_F(HunkReaderTest, OnlyTheHunksFromFirstToLastHaveSizes) {
    const Bytes file = HunkBuilder()
                           .header({.sizes = {2, 1}, .table = 9, .first = 3, .last = 4})
                           .code(codebytes)
                           .end()
                           .data(databytes)
                           .end()
                           .bytes();
    const HunkRead read = readhunks(file, 6);
    EXPECT_EQ(read.component.pcExtract, joined(codebytes, databytes));
    EXPECT_TRUE(
        has(read.console, " 9 hunks in the hunk table\n Hunk 3 size=8 bytes\n Hunk 4 size=4 bytes\n"));
}

TEST_F(HunkReaderTest, WhatIsNoHunkFileIsDataAsItStands) {
    for (const uint32_t id :
         {0u,    1u,    998u,  999u,  1000u, 1005u, 1006u, 1007u, 1012u, 1013u,       1014u,
          1016u, 1017u, 1018u, 1019u, 1020u, 1021u, 1022u, 1257u, 1260u, 0x400003E9u, 0xFFFFFFFEu}) {
        Bytes file = longs({id, 1011, 7});
        file.push_back(0x99);
        const Component component = taken(file);
        EXPECT_EQ(component.pcType, "Data") << id;
        EXPECT_EQ(component.pcExtract, file);
        EXPECT_EQ(component.iSize, 13);
        EXPECT_EQ(component.iCRC32, crc32of(file));
        EXPECT_TRUE(component.ipRelocs.empty());
    }
}

TEST_F(HunkReaderTest, RawDataIsNamedWithItsPlace) {
    EXPECT_EQ(readhunks(longs({1000, 5}), 2).console,
              "Unexpected hunk HUNK_NAME 000003e8 at 0 of 8\nPopulating component 0 relocs\n");
    EXPECT_EQ(readhunks(longs({1010, 1010, 0x4E714E75, 0}), 2).console,
              "Unexpected hunk UNKNOWN HUNK 4e714e75 at 8 of 16\nPopulating component 0 relocs\n");
    EXPECT_EQ(readhunks(longs({0xDEADBEEF}), 1).console, "Populating component 0 relocs\n");
}

TEST_F(HunkReaderTest, AnUnlistedBlockInsideAHunkFileMakesTheWholeFileRaw) {
    const Bytes file = header({2}).code(codebytes).block({1020, 0}).end().bytes();
    const Component component = taken(file);
    EXPECT_EQ(component.pcType, "Data") << "the code hunk before no longer counts";
    EXPECT_EQ(component.pcExtract, file);
}

TEST_F(HunkReaderTest, RawDataIsTakenFromTheOffsetGiven) {
    const Bytes buffer = longs({1, 2, 3, 4, 5});
    for (const int32_t offset : {0, 1, 4, 8}) {
        const HunkRead read = readpart(buffer, offset, 12);
        EXPECT_EQ(read.result, 0) << offset;
        EXPECT_EQ(read.component.pcExtract, Bytes(buffer.begin() + offset, buffer.begin() + offset + 12));
        EXPECT_EQ(read.component.iCRC32, crc32of(part(buffer, 0, 12))) << "of the bytes looked at";
    }
    for (const int32_t offset : {9, 20, 1000, 2147483647, -1})
        expectrefused(readpart(buffer, offset, 12));
}

TEST_F(HunkReaderTest, TheOffsetMeansNothingToAHunkFile) {
    const Bytes file = header({2}).code(codebytes).end().bytes();
    const HunkRead read = readpart(file, 1000, static_cast<int32_t>(file.size()));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.component.pcExtract, codebytes);
}

TEST_F(HunkReaderTest, BytesBehindTheLengthAreNotLookedAt) {
    const Bytes file = header({2}).code(codebytes).end().bytes();
    const Bytes more = joined(file, longs({0xDEADBEEF, 1, 2}));
    const HunkRead read = readpart(more, 0, static_cast<int32_t>(file.size()));
    EXPECT_EQ(read.component.pcExtract, codebytes);
    EXPECT_EQ(read.component.iCRC32, crc32of(file));
}

TEST_F(HunkReaderTest, WhereNoIdStandsTheCountCountsItself) {
    // Three words behind the id, the count one of them: the last of the block is the next id.
    const HunkBuilder three = header({2}).block({0xFFFFFFFF, 3, 1, 2, 1010}).code(codebytes).end();
    EXPECT_EQ(readhunks(three.bytes(), 2).console, "Unexpected hunk UNKNOWN HUNK ffffffff, skipping 3 words\n"
                                                   "Populating component 0 relocs\n");
    EXPECT_EQ(taken(three.bytes()).pcExtract, codebytes);
    // A count of 1 skips itself alone.
    EXPECT_EQ(taken(header({2}).block({0xFFFFFFFF, 1}).code(codebytes).end().bytes()).pcExtract, codebytes);
    // A count of 0 skips nothing, so that it is the next id, which is none.
    const Bytes none = header({2}).block({0xFFFFFFFF, 0}).code(codebytes).end().bytes();
    EXPECT_EQ(taken(none).pcExtract, none);
}

TEST_F(HunkReaderTest, HeaderMessagesHaveTheirThresholds) {
    expecttexts(header({2}).code(codebytes).end().bytes(), {{5, "HUNK_HEADER [000003f3]\n"},
                                                            {5, " No libraries to open (OK)\n"},
                                                            {5, " 1 hunk in the hunk table\n"},
                                                            {5, " Hunk 0 size=8 bytes\n"},
                                                            {5, "Total extract size will be 8 bytes\n"}});
    expecttexts(header({2, 1}).bytes(),
                {{5, " 2 hunks in the hunk table\n"}, {5, " Hunk 0 size=8 bytes\n Hunk 1 size=4 bytes\n"}});
    expecttexts(HunkBuilder().header({.sizes = {2}, .names = 3}).bytes(),
                {{1, "ERROR: libraries to open, leninlongwords=3\n"}});
    expecttexts(HunkBuilder().header({.sizes = {2}, .table = 0}).bytes(), {{1, "ERROR: No hunk table\n"}});
}

TEST_F(HunkReaderTest, HunkMessagesHaveTheirThresholds) {
    // The header of two hunks is 28 bytes, the code block 16, HUNK_END 4: the data stand at 28 + 20 + 8.
    expecttexts(header({2, 1}).code(codebytes).end().data(databytes).debug(databytes).end().bytes(),
                {{5, "HUNK_CODE [000003e9]\n"},
                 {5, " Skip 2 words\n"},
                 {5, " Code Start=36 Size=8\n"},
                 {5, "HUNK_END [000003f2]\n"},
                 {5, "HUNK_DATA [000003ea]\n"},
                 {5, " Data Start=56 Size=4\n"},
                 {5, "HUNK_DEBUG [000003f1]\n"},
                 {5, " Skip 1 words\n"},
                 {0, "Populating component 0 relocs\n"}});
    expecttexts(
        header({1}).bss(1).end().bytes(),
        {{1, "ERROR: HUNK_BSS [000003eb]\n"},
         {1, "ERROR: Library will need to allocate 4 bytes during load, not appropriate for Kickstart "
             "module (IGNORNING)\n"}});
    expecttexts(header({2}).code(codebytes).symbols({{"abcd", 0xABCD1234}}).end().bytes(),
                {{5, "HUNK_SYMBOL [000003f0]\n"}, {5, "abcd1234"}, {-1, "\n"}});
}

TEST_F(HunkReaderTest, RefusalsAndRawDataHaveTheirThresholds) {
    expecttexts(longs({1011, 0}), {{0, "ERROR: Truncated hunk file at 0 of 8\n"}});
    expecttexts(longs({5}), {{1, "Unexpected hunk UNKNOWN HUNK 00000005 at 0 of 4\n"}});
    expecttexts(longs({0xFFFFFFFF, 1}), {{1, "Unexpected hunk UNKNOWN HUNK ffffffff, skipping 1 words\n"}});
}

} // namespace
} // namespace vantorel::test
