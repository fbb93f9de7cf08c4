// The stops that a library's own structures give the one-pass listing.

#include "missassembler/structurelabels.h"

#include "missassembler/onepass.h"
#include "missassembler/walktest.h"

namespace vantorel::test {
namespace {

// Image offsets in component 1, which is listed from 0xF80100.
constexpr int32_t iTableAt = 0x140;
constexpr int32_t iOwnVectorsAt = 0x160;
constexpr uint32_t iOwnVectors = kBase + iOwnVectorsAt;

class StructureLabels : public FreshTest {
protected:
    void SetUp() override { prepare(); }

    static void prepare() {
        makeground(Bytes(0xC0));
        openbounds();
    }

    // Every address counts, and widens the bounds of a component at 0xF80100 to 0xF801C0.
    static void openbounds() {
        iMissMinLimit = 0;
        iMissMaxLimit = 0xFFFFFFFF;
        iMissMin = 0xF80100;
        iMissMax = 0xF801C0;
    }

    static std::string add(int32_t level = 1) {
        return at(level, [] { addstructurelabels(0, 1); });
    }

    // The stops in their order, each as address, blank and text.
    static Lines placed() {
        Lines lines;
        for (const StopLabel& label : sLabels)
            lines.push_back(hex32(label.iLabel).substr(4) + " " + label.cLabel);
        return lines;
    }

    // A ROMTAG whose AUTOINIT table lies in the component at `iTableAt`.
    static void putowntable(const AutoInitSpec& table) {
        puttag({.init = kBase + iTableAt, .flags = iAutoInit});
        putautoinit(iTableAt, table);
    }
};

const Lines cOwnTable = {"f80140 XF80140 AUTOINIT:\n dataSize:", "f80144 X vectors:",
                         "f80148 X InitStruct():", "f8014c X LibraryInit():"};

TEST_F(StructureLabels, AComponentWithoutATagGetsNone) {
    puttag({.endskip = 0xF80110, .name = 0xF80112, .idstring = 0xF80114, .init = 0xF80116});
    for (const int32_t tag : {0, -1, -2, INT32_MIN}) {
        componentat(0, 1).iROMTag = tag;
        EXPECT_EQ(add(10), "") << tag;
        EXPECT_EQ(placed(), Lines()) << tag;
    }
    EXPECT_EQ(iMissMin, 0xF80100U);
}

TEST_F(StructureLabels, ATagThatDoesNotLieInTheImageGetsNone) {
    for (const int32_t tag : {0x1E7, 0x1FE, 0x200, 0x7FFFFFFF}) {
        componentat(0, 1).iROMTag = tag;
        static_cast<void>(add());
        EXPECT_EQ(placed(), Lines()) << tag;
    }
}

TEST_F(StructureLabels, ATagMayBeTheLastOfTheImage) {
    componentat(0, 1).iROMTag = 0x1E6; // and 26 bytes
    putlongat(0x1E6 + 22, 0xF80104);
    EXPECT_EQ(add(), "");
    EXPECT_EQ(placed(), Lines({"f80104 lINIT:\n"}));
}

TEST_F(StructureLabels, ATagNamesFourPlaces) {
    puttag({.endskip = 0xF80110, .name = 0xF80112, .idstring = 0xF80114, .init = 0xF80116});
    EXPECT_EQ(add(), "");
    EXPECT_EQ(placed(),
              Lines({"f80110 lENDSKIP:\n", "f80112 sNAME:\n", "f80114 sIDSTRING:\n", "f80116 lINIT:\n"}));
}

TEST_F(StructureLabels, OnlyBit7OfTheFlagsIsAutoInit) {
    puttag({.init = 0xF80116, .flags = 0x7F});
    EXPECT_EQ(add(), "");
    EXPECT_EQ(placed(), Lines({"f80116 lINIT:\n"}));
    freestoplabels();
    puttag({.init = kBase + iTableAt, .flags = 0xFF});
    putautoinit(iTableAt, {});
    EXPECT_EQ(add(), "AutoInit flag set but no autoinit call\n");
    EXPECT_EQ(placed(), cOwnTable);
}

TEST_F(StructureLabels, AtOneAddressTheyComeInTheOrderOfTheTag) {
    puttag({.endskip = 0xF80120, .name = 0xF80120, .idstring = 0xF80120, .init = 0xF80120});
    static_cast<void>(add());
    EXPECT_EQ(placed(),
              Lines({"f80120 lENDSKIP:\n", "f80120 sNAME:\n", "f80120 sIDSTRING:\n", "f80120 lINIT:\n"}));
}

TEST_F(StructureLabels, TheFirstByteOfTheComponentIsNotBelowIt) {
    puttag({.endskip = 0xF80100, .name = 0xF800FF, .idstring = 0xF80101});
    static_cast<void>(add());
    EXPECT_EQ(placed(), Lines({"f80100 lENDSKIP:\n", "f80101 sIDSTRING:\n"}));
}

TEST_F(StructureLabels, WhatIsBelowTheComponentIsShownToTheBoundsOnly) {
    iMissMinLimit = 0xF80080;
    for (const TagSpec& tag : {TagSpec{.endskip = 0xF80091}, TagSpec{.name = 0xF80090},
                               TagSpec{.idstring = 0xF8008F}, TagSpec{.init = 0xF8008E}}) {
        puttag(tag);
        const uint32_t lowest = tag.endskip + tag.name + tag.idstring + tag.init;
        EXPECT_EQ(add(6), "") << "no line of a stop that is none";
        EXPECT_EQ(placed(), Lines());
        EXPECT_EQ(iMissMin, lowest);
    }
}

TEST_F(StructureLabels, WhatIsPastTheComponentStays) {
    iMissMaxLimit = 0xF801D0;
    puttag({.endskip = 0xF801D0, .name = 0xF801D1, .idstring = 0xF90000, .init = 0xFFFFFFFF});
    static_cast<void>(add());
    EXPECT_EQ(placed(),
              Lines({"f801d0 lENDSKIP:\n", "f801d1 sNAME:\n", "f90000 sIDSTRING:\n", "ffffff lINIT:\n"}));
    EXPECT_EQ(iMissMax, 0xF801D0U);
}

TEST_F(StructureLabels, AnAutoInitTableWithoutInitStructIsAllThereIs) {
    putowntable({.vectors = iOwnVectors, .init = 0xF80104});
    EXPECT_EQ(add(), "AutoInit flag set but no autoinit call\n");
    EXPECT_EQ(placed(), cOwnTable);
}

TEST_F(StructureLabels, TheAddressOfTheTableHasAtLeastSixDigits) {
    slotat(0).iROMBase = 0;
    puttag({.init = 0x140, .flags = iAutoInit});
    static_cast<void>(add());
    ASSERT_EQ(sLabels.size(), 4U);
    EXPECT_EQ(sLabels.begin()->cLabel, "X000140 AUTOINIT:\n dataSize:");
}

TEST_F(StructureLabels, LongVectorsGetOneStop) {
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102, .init = 0xF80104});
    putlongat(iOwnVectorsAt, 0xF8ABCD);
    EXPECT_EQ(add(), "\nVECTORS[00f80160]\n\nFIRST VECTOR[00f8]\n");
    EXPECT_EQ(placed(), Lines({"f80102 iINIT InitStruct():\n", "f80104 lLibraryInit():\n"}) + cOwnTable +
                            Lines({"f80160 XINIT Vectors: \n"}));
}

TEST_F(StructureLabels, OnlyAFirstWordOfFFFFMakesWordVectors) {
    for (const char* first : {"FFFE 0010 FFFF", "FF00 0010 FFFF", "0000 FFFF FFFF"}) {
        freestoplabels();
        putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102});
        putbytes(iOwnVectorsAt, hexed(first));
        static_cast<void>(add());
        EXPECT_EQ(placed().back(), "f80160 XINIT Vectors: \n") << first;
    }
}

TEST_F(StructureLabels, ALibraryInitOf0GetsNone) {
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102, .init = 0});
    iMissMin = 0xF80100;
    static_cast<void>(add());
    EXPECT_EQ(placed(),
              Lines({"f80102 iINIT InitStruct():\n"}) + cOwnTable + Lines({"f80160 XINIT Vectors: \n"}));
    EXPECT_EQ(iMissMin, 0U) << "of the tag's three empty pointers";
}

TEST_F(StructureLabels, ALibraryInitOf0IsNotShownToTheBounds) {
    puttag({.endskip = 0xF80110,
            .name = 0xF80110,
            .idstring = 0xF80110,
            .init = kBase + iTableAt,
            .flags = iAutoInit});
    putautoinit(iTableAt, {.vectors = iOwnVectors, .initstruct = 0xF80102});
    static_cast<void>(add());
    EXPECT_EQ(iMissMin, 0xF80100U);
}

TEST_F(StructureLabels, WordVectorsGetAStopEachAndOneForTheirFunction) {
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102, .init = 0xF80104});
    putbytes(iOwnVectorsAt, hexed("FFFF 0010 0020 0030 0038 0040 0048 FFFF 0050"));
    EXPECT_EQ(add(), "\nVECTORS[00f80160]\n\nFIRST VECTOR[ffff]\n");
    EXPECT_EQ(placed(),
              Lines({"f80102 iINIT InitStruct():\n", "f80104 lLibraryInit():\n"}) + cOwnTable +
                  Lines({"f80160 xINIT Vector table start", "f80162 xINIT 0xF80170 LVO Open()",
                         "f80164 xINIT 0xF80180 LVO Close()", "f80166 xINIT 0xF80190 LVO Expunge()",
                         "f80168 xINIT 0xF80198 LVO Reserved()", "f8016a xINIT 0xF801A0 LVO Function4()",
                         "f8016c xINIT 0xF801A8 LVO Function5()", "f8016e xINIT Vector table end",
                         "f80170 lLibrary Vector Open():\n", "f80180 lLibrary Vector Close():\n",
                         "f80190 lLibrary Vector Expunge():\n", "f80198 lLibrary Vector Reserved():\n",
                         "f801a0 lLibrary Vector Function4():\n", "f801a8 lLibrary Vector Function5():\n"}));
}

// The stops at or behind the vector table.
Lines vectorlines(const Lines& all) {
    Lines lines;
    for (const std::string& line : all)
        if (line >= "f80160") lines.push_back(line);
    return lines;
}

TEST_F(StructureLabels, TheDistanceOfAFunctionHasNoSign) {
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102});
    putbytes(iOwnVectorsAt, hexed("FFFF FFF0 8000 FFFF"));
    static_cast<void>(add());
    EXPECT_EQ(vectorlines(placed()),
              Lines({"f80160 xINIT Vector table start", "f80162 xINIT 0xF90150 LVO Open()",
                     "f80164 xINIT 0xF88160 LVO Close()", "f80166 xINIT Vector table end",
                     "f88160 lLibrary Vector Close():\n", "f90150 lLibrary Vector Open():\n"}));
}

TEST_F(StructureLabels, AFunctionInItsOwnTableComesBeforeTheWord) {
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102});
    putbytes(iOwnVectorsAt, hexed("FFFF 0002 0000 FFFF"));
    static_cast<void>(add());
    EXPECT_EQ(vectorlines(placed()),
              Lines({"f80160 xINIT Vector table start", "f80160 lLibrary Vector Close():\n",
                     "f80162 lLibrary Vector Open():\n", "f80162 xINIT 0xF80162 LVO Open()",
                     "f80164 xINIT 0xF80160 LVO Close()", "f80166 xINIT Vector table end"}));
}

TEST_F(StructureLabels, WordVectorsMayBeEmpty) {
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102});
    putbytes(iOwnVectorsAt, hexed("FFFF FFFF"));
    static_cast<void>(add());
    EXPECT_EQ(vectorlines(placed()),
              Lines({"f80160 xINIT Vector table start", "f80162 xINIT Vector table end"}));
}

TEST_F(StructureLabels, WordVectorsWithoutAnEndMarkEndWithTheImage) {
    putowntable({.vectors = 0xF801F8, .initstruct = 0xF80102});
    putbytes(0x1F8, hexed("FFFF 1000 2000 3000"));
    EXPECT_EQ(add(), "\nVECTORS[00f801f8]\n\nFIRST VECTOR[ffff]\n");
    EXPECT_EQ(vectorlines(placed()),
              Lines({"f801f8 xINIT Vector table start", "f801fa xINIT 0xF811F8 LVO Open()",
                     "f801fc xINIT 0xF821F8 LVO Close()", "f801fe xINIT 0xF831F8 LVO Expunge()",
                     "f811f8 lLibrary Vector Open():\n", "f821f8 lLibrary Vector Close():\n",
                     "f831f8 lLibrary Vector Expunge():\n"}));
}

TEST_F(StructureLabels, WordVectorsMayBeginWithTheLastWordOfTheImage) {
    putowntable({.vectors = 0xF801FE, .initstruct = 0xF80102});
    putbytes(0x1FE, hexed("FFFF"));
    static_cast<void>(add());
    EXPECT_EQ(vectorlines(placed()), Lines({"f801fe xINIT Vector table start"}));
}

TEST_F(StructureLabels, AVectorTableOutsideTheImageIsTakenForLongs) {
    for (const uint32_t table : {0xF80200U, 0xF801FFU, 0xF90000U}) {
        freestoplabels();
        putowntable({.vectors = table, .initstruct = 0xF80102});
        EXPECT_EQ(add(), "\nVECTORS[" + hex32(table).substr(2) + "]\n\nFIRST VECTOR[0000]\n");
        EXPECT_EQ(vectorlines(placed()), Lines({hex32(table).substr(4) + " XINIT Vectors: \n"}));
    }
}

TEST_F(StructureLabels, FunctionsCountWhereTheirTableIsBelowTheComponent) {
    puttag({.init = kBase + iAutoInitAt, .flags = iAutoInit});
    putautoinit(iAutoInitAt, {.initstruct = 0xF80050});
    putbytes(iVectorsAt, hexed("FFFF 00A8 0010 00B0 FFFF")); // at 0xF80058
    EXPECT_EQ(add(), "\nVECTORS[00f80058]\n\nFIRST VECTOR[ffff]\n");
    EXPECT_EQ(placed(), Lines({"f80100 lLibrary Vector Open():\n", "f80108 lLibrary Vector Expunge():\n"}));
}

TEST_F(StructureLabels, AnAutoInitTableMayBeCutOffByTheImagesEnd) {
    // Vectors and InitStruct are its last longs; LibraryInit would lie behind the image.
    puttag({.init = 0xF801F4, .flags = iAutoInit});
    putlongat(0x1F8, iOwnVectors);
    putlongat(0x1FC, 0xF80102);
    EXPECT_EQ(add(), "\nVECTORS[00f80160]\n\nFIRST VECTOR[0000]\n");
    EXPECT_EQ(placed(), Lines({"f80102 iINIT InitStruct():\n", "f80160 XINIT Vectors: \n",
                               "f801f4 XF801F4 AUTOINIT:\n dataSize:", "f801f8 X vectors:",
                               "f801fc X InitStruct():", "f80200 X LibraryInit():"}));
}

TEST_F(StructureLabels, AnAutoInitTableOutsideTheImageHasNoInitStruct) {
    puttag({.init = 0xF801F8, .flags = iAutoInit}); // InitStruct would be at 0x200
    EXPECT_EQ(add(), "AutoInit flag set but no autoinit call\n");
    EXPECT_EQ(sLabels.size(), 4U);
    freestoplabels();
    puttag({.init = 0xFFFFFFFC, .flags = iAutoInit}); // wraps: all but its first long are far below
    EXPECT_EQ(add(), "AutoInit flag set but no autoinit call\n");
    EXPECT_EQ(placed(), Lines({"fffffc XFFFFFFFC AUTOINIT:\n dataSize:"}));
}

TEST_F(StructureLabels, EachStopOfTheStructuresIsShownToTheBounds) {
    iMissMinLimit = 0xF80080;
    iMissMaxLimit = 0xF801FF;
    putowntable({.vectors = iOwnVectors, .initstruct = 0xF800F0, .init = 0xF800E0});
    putbytes(iOwnVectorsAt, hexed("FFFF 0070 FFFF"));
    static_cast<void>(add());
    EXPECT_EQ(iMissMin, 0xF800E0U) << "LibraryInit";
    EXPECT_EQ(iMissMax, 0xF801D0U) << "Open";
}

TEST_F(StructureLabels, LinesAndTheirThresholds) {
    const auto run = [] { addstructurelabels(0, 1); };
    expectthresholds(
        [] {
            prepare();
            putowntable({.vectors = iOwnVectors, .initstruct = 0xF80102});
        },
        run,
        {{0, "\nVECTORS[00f80160]\n"},
         {0, "\nFIRST VECTOR[0000]\n"},
         {5, "ADDLABEL @00f80140:XF80140 AUTOINIT:\n dataSize:\n"},
         {5, "ADDLABEL @00f80102:iINIT InitStruct():\n\n"}});
    expectthresholds(
        [] {
            prepare();
            putowntable({});
        },
        run, {{0, "AutoInit flag set but no autoinit call\n"}});
}

} // namespace
} // namespace vantorel::test
