// What people have written down for a walk: hints in a component's hash file and in "misshints.ini".

#include "missassembler/hints.h"

#include "missassembler/walktest.h"

#include <regex>

namespace vantorel::test {
namespace {

// A walk over a component of 256 bytes, image offsets 64 to 319, takes hints.
class HintsTest : public WalkTest {
protected:
    void SetUp() override {
        WalkTest::SetUp();
        makecomponent(Bytes(256, 0x11));
    }

    // Runs `take` on a new walk and gives what it prints; what was marked is in `marked`.
    std::string take(void (*hints)(Walk&), int32_t level) {
        silently(freemissassembler);
        Walk walk = startwalk(0, 1);
        const std::string console = at(level, [&] { hints(walk); });
        marked.clear();
        for (int32_t offset = 0; offset < 256; ++offset)
            if (walk.marks[static_cast<size_t>(offset)] == Walk::Entry) marked.push_back(offset);
        return withoutlookups(console);
    }

    // Less what the hash library tells of the search for a file.
    static std::string withoutlookups(const std::string& console) {
        static const std::regex lines("(Finding .* from|Checking \\d+|found /).*\n");
        return std::regex_replace(console, lines, "");
    }

    std::string component(const std::string& lines, int32_t level = 0) {
        hashfile("[Missassembler]\n" + lines);
        return take(addcomponenthints, level);
    }

    std::string rom(const std::string& lines, int32_t level = 0) {
        romhints("[0x1234abcd]\n" + lines);
        return take(addromhints, level);
    }

    std::vector<int32_t> marked;
};

using Offsets = std::vector<int32_t>;

// ------------------------------------------------------------------------------- a component's hash file

TEST_F(HintsTest, AnEntryPoint) {
    EXPECT_EQ(component("ENTRYPOINT=16\n"), "MissHint:ENTRYPOINT=16\nAdd entrypoint=16\n");
    EXPECT_EQ(marked, Offsets{16});
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, AnEntryPointWithALabel) {
    EXPECT_EQ(component("ENTRYPOINT=16,Reset task\n"),
              "MissHint:ENTRYPOINT=16,Reset task\nAdd entrypoint=16\n");
    EXPECT_EQ(marked, Offsets{16});
    EXPECT_EQ(records(), Lines{"16 - 1 Reset task"});
}

TEST_F(HintsTest, ALabelTextMayHoldCommas) {
    static_cast<void>(component("ENTRYPOINT=16,first, second\nLABEL=20,W,2,;a, b,, c\n"));
    EXPECT_EQ(records(), (Lines{"16 - 1 first, second", "20 W 2 ;a, b,, c"}));
}

TEST_F(HintsTest, AnEntryPointWithAnEmptyLabel) {
    EXPECT_EQ(component("ENTRYPOINT=18,\n"), "MissHint:ENTRYPOINT=18,\nAdd entrypoint=18\n");
    EXPECT_EQ(marked, Offsets{18});
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, LabelsOfEveryType) {
    EXPECT_EQ(component("LABEL=4,A,2,;pointers\nLABEL=12,B,1,;kind\nLABEL=16,L,3,;sizes\n"
                        "LABEL=28,T,1,title\nLABEL=60,W,4,;words\nLABEL=80,0,1,Restart\n"),
              "MissHint:LABEL=4,A,2,;pointers\n4 (A,2) ;pointers\n"
              "MissHint:LABEL=12,B,1,;kind\n12 (B,1) ;kind\n"
              "MissHint:LABEL=16,L,3,;sizes\n16 (L,3) ;sizes\n"
              "MissHint:LABEL=28,T,1,title\n28 (T,1) title\n"
              "MissHint:LABEL=60,W,4,;words\n60 (W,4) ;words\n"
              "MissHint:LABEL=80,0,1,Restart\n80 (0,1) Restart\n");
    EXPECT_EQ(records(), (Lines{"4 A 2 ;pointers", "12 B 1 ;kind", "16 L 3 ;sizes", "28 T 1 title",
                                "60 W 4 ;words", "80 - 1 Restart"}));
    EXPECT_EQ(marked, Offsets{});
}

TEST_F(HintsTest, ALabelWithoutAText) {
    EXPECT_EQ(component("LABEL=4,A,2\nLABEL=8,0,1\n"), "MissHint:LABEL=4,A,2\n4 (A,2) (no commnet)\n"
                                                       "MissHint:LABEL=8,0,1\n8 (0,1) (no commnet)\n");
    EXPECT_EQ(records(), (Lines{"4 A 2 ", "8 - 1 "}));
}

TEST_F(HintsTest, LabelsWithMissingPartsHaveNoText) {
    const std::string console = component("LABEL=4,W\nLABEL=8\nLABEL=\nENTRYPOINT=12\n");
    EXPECT_EQ(countof(console, " (no commnet)\n"), 3);
    EXPECT_TRUE(has(console, "MissHint:LABEL=4,W\n4 (W,"));
    EXPECT_EQ(marked, Offsets{12});
    for (const MissLabel& record : psLabels)
        EXPECT_EQ(record.pcLabel, "");
}

TEST_F(HintsTest, HintsAtTheComponentsEnds) {
    static_cast<void>(component("ENTRYPOINT=0,first\nENTRYPOINT=255,last\nLABEL=255,B,1,;end\n"));
    EXPECT_EQ(marked, (Offsets{0, 255}));
    EXPECT_EQ(records(), (Lines{"0 - 1 first", "255 - 1 last", "255 B 1 ;end"}));
}

TEST_F(HintsTest, HintsOutsideTheComponentAreShownAndLeftOut) {
    EXPECT_EQ(component("ENTRYPOINT=-1,before\nENTRYPOINT=256,behind\nLABEL=256,L,1,;behind\n"
                        "LABEL=-4,L,1,;before\n"),
              "MissHint:ENTRYPOINT=-1,before\nAdd entrypoint=-1\n"
              "MissHint:ENTRYPOINT=256,behind\nAdd entrypoint=256\n"
              "MissHint:LABEL=256,L,1,;behind\n256 (L,1) ;behind\n"
              "MissHint:LABEL=-4,L,1,;before\n-4 (L,1) ;before\n");
    EXPECT_EQ(marked, Offsets{});
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, EveryLineOfTheSectionIsShown) {
    EXPECT_EQ(component("Author=me\n\nENTRYPOINT 4\n[Other]\nENTRYPOINT=8\n"),
              "MissHint:Author=me\nMissHint:\nMissHint:ENTRYPOINT 4\n");
    EXPECT_EQ(marked, Offsets{});
}

TEST_F(HintsTest, WhatIsToldOfAHashFileWithHints) {
    const std::string lines = "ENTRYPOINT=16\nENTRYPOINT=18\n";
    EXPECT_EQ(component(lines, 6), "INI file opened OK, check for missassembler hints\n"
                                   "Section:Missassembler\n"
                                   "Section has 2 lines\n"
                                   "MissHint:ENTRYPOINT=16\nAdd entrypoint=16\n"
                                   "MissHint:ENTRYPOINT=18\nAdd entrypoint=18\n");
    EXPECT_EQ(component(lines, 5), "MissHint:ENTRYPOINT=16\nAdd entrypoint=16\n"
                                   "MissHint:ENTRYPOINT=18\nAdd entrypoint=18\n");
}

TEST_F(HintsTest, AHashFileWithoutHints) {
    hashfile("[RELOC32]\nRELOC=4\n");
    EXPECT_EQ(take(addcomponenthints, 6), "INI file opened OK, check for missassembler hints\n"
                                          "No official missasembler hints in component INI file\n");
    EXPECT_EQ(take(addcomponenthints, 5), "");
}

TEST_F(HintsTest, AComponentWithoutAHashFile) {
    const std::string expected = "No INI file for the component, no official missasembler hints\n";
    componentat(0, 1).pcHash = "0x5eed0002.missing";
    EXPECT_EQ(take(addcomponenthints, 6), expected);
    EXPECT_EQ(take(addcomponenthints, 5), "");
    componentat(0, 1).pcHash.reset();
    EXPECT_EQ(take(addcomponenthints, 6), expected);
}

// ---------------------------------------------------------------------------------------- misshints.ini

TEST_F(HintsTest, AnEntryPointOfTheRom) {
    // 16253056 is 0xF80080, byte 64 of the component.
    EXPECT_EQ(rom("ENTRYPOINT=0xf80050\nENTRYPOINT=16253056\n"),
              " HINT 0xf80050 : 00f80050\nChecking entrypoint hint (80)\n"
              " HINT 16253056 : 00f80080\nChecking entrypoint hint (128)\n");
    EXPECT_EQ(marked, (Offsets{16, 64}));
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, EntryPointsAtTheBounds) {
    // The component is 0xF80040 to 0xF8013F; the last long in it begins at 0xF8013C.
    static_cast<void>(rom("ENTRYPOINT=0xf8003f\nENTRYPOINT=0xf80040\nENTRYPOINT=0xf8013c\n"
                          "ENTRYPOINT=0xf8013d\nENTRYPOINT=0\nENTRYPOINT=0xffffffff\n"));
    EXPECT_EQ(marked, (Offsets{0, 252}));
}

TEST_F(HintsTest, TracesOfEntryPointsOfTheRom) {
    const std::string lines = "ENTRYPOINT=0xf80050\nENTRYPOINT=0xf8003e\n";
    const std::string first = " HINT 0xf80050 : 00f80050\nChecking entrypoint hint (80)\n";
    const std::string added = "Adding ROM hint entrypoint 0xf80050 (80) at component offset 16\n";
    const std::string second = " HINT 0xf8003e : 00f8003e\nChecking entrypoint hint (62)\n";
    EXPECT_EQ(rom(lines, 5), first + second);
    EXPECT_EQ(rom(lines, 6), first + added + second);
    EXPECT_EQ(rom(lines, 8), first + added + second);
    EXPECT_EQ(rom(lines, 9), "Section Line:ENTRYPOINT=0xf80050\n" + first + added +
                                 "Section Line:ENTRYPOINT=0xf8003e\n" + second +
                                 "Entrypoint hint (62) not in component\n");
}

TEST_F(HintsTest, LinesThatAreNoHintsArePassedOver) {
    EXPECT_EQ(rom("\nLABEL=4,A,1,x\nENTRYPOINT 0xf80050\n[0x99999999]\nENTRYPOINT=0xf80060\n"), "");
    EXPECT_EQ(marked, Offsets{});
}

// Writes longs at an image offset.
void setimage(int32_t offset, std::initializer_list<uint32_t> values) {
    setlongs(slotat(0).pcROM, offset, values);
}

TEST_F(HintsTest, AJumpTable) {
    setimage(0x90, {0xF80040, 0xF80050, 0xF8013C, 0xF8013E, 0xF80060});
    EXPECT_EQ(rom("JUMPTABLE=0xf80090\n"), " HINT 0xf80090 : 00f80090\nChecking jumptable hint (144)\n"
                                           "JUMPTABLE Entrypoint=64 RELOC=80\n"
                                           "JUMPTABLE Entrypoint=80 RELOC=84\n"
                                           "JUMPTABLE Entrypoint=316 RELOC=88\n");
    EXPECT_EQ(marked, (Offsets{0, 16, 252}));
    EXPECT_EQ(records(), (Lines{"80 - 1 JUMPTABLE", "80 A 1 ;JUMPTABLE Entry", "84 A 1 ;JUMPTABLE Entry",
                                "88 A 1 ;JUMPTABLE Entry"}));
}

TEST_F(HintsTest, TheJumpTablesOffsetIsComparedWithTheImagesRange) {
    // The component is on image offsets 64 to 319, so its own offsets 64 to 255 are in that range.
    const auto labelled = [this](const std::string& address) {
        static_cast<void>(rom("JUMPTABLE=" + address + "\n"));
        return records();
    };
    EXPECT_EQ(labelled("0xf80040"), Lines{});                   // 0
    EXPECT_EQ(labelled("0xf8007f"), Lines{});                   // 63
    EXPECT_EQ(labelled("0xf80080"), Lines{"64 - 1 JUMPTABLE"}); // 64
    EXPECT_EQ(labelled("0xf8013f"), Lines{"255 - 1 JUMPTABLE"});
    EXPECT_EQ(labelled("0xf80140"), Lines{}); // 256: in the range, but behind the component
}

TEST_F(HintsTest, AJumpTableAboveTheImagesRange) {
    // Component 0 of a second image is on its first 256 bytes: offsets 0 to 252.
    slotat(0).psComponents[1].iStart = 0;
    static_cast<void>(rom("JUMPTABLE=0xf800fc\n"));
    EXPECT_EQ(records(), Lines{"252 - 1 JUMPTABLE"});
    static_cast<void>(rom("JUMPTABLE=0xf800fd\n"));
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, AJumpTableOutsideTheComponent) {
    setimage(0, {0xF80050, 0xF80052, 0xF80000});
    EXPECT_EQ(rom("JUMPTABLE=16252928\n"), " HINT 16252928 : 00f80000\nChecking jumptable hint (0)\n"
                                           "JUMPTABLE Entrypoint=80 RELOC=-64\n"
                                           "JUMPTABLE Entrypoint=82 RELOC=-60\n");
    EXPECT_EQ(marked, (Offsets{16, 18}));
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, AJumpTableThatTheImageEnds) {
    setimage(376, {0xF80050, 0xF80052}); // the last eight bytes of 384
    EXPECT_EQ(countof(rom("JUMPTABLE=0xf80178\n"), "JUMPTABLE Entrypoint="), 2);
    EXPECT_EQ(marked, (Offsets{16, 18}));
}

TEST_F(HintsTest, JumpTablesOutsideTheImage) {
    EXPECT_EQ(rom("JUMPTABLE=0x00f7fffc\nJUMPTABLE=0xf80180\n"),
              " HINT 0x00f7fffc : 00f7fffc\nChecking jumptable hint (-4)\n"
              " HINT 0xf80180 : 00f80180\nChecking jumptable hint (384)\n");
    EXPECT_EQ(records(), Lines{});
}

TEST_F(HintsTest, AFirstTargetOutsideEndsAJumpTable) {
    setimage(0xC0, {0xF80000, 0xF80050});
    EXPECT_EQ(rom("JUMPTABLE=0xf800c0\n"), " HINT 0xf800c0 : 00f800c0\nChecking jumptable hint (192)\n");
    EXPECT_EQ(records(), Lines{"128 - 1 JUMPTABLE"});
    EXPECT_EQ(marked, Offsets{});
}

TEST_F(HintsTest, NoHintsForTheRom) {
    romhints("[0x99999999]\nENTRYPOINT=0xf80050\n");
    EXPECT_EQ(take(addromhints, 0), "No misassembler hints for ROM with CRC32 0x1234abcd\n");
    EXPECT_EQ(marked, Offsets{});
}

TEST_F(HintsTest, NoHintFile) {
    index();
    EXPECT_EQ(take(addromhints, 6), "No entrypoint ROM  missasembler hints file (misshints.ini)\n");
    EXPECT_EQ(take(addromhints, 5), "");
}

TEST_F(HintsTest, JumpTablesThatOverlapEnd) {
    // A component of nothing but pointers into itself, and tables from each of them on.
    slotat(0).pcROM.assign(4096, 0);
    componentat(0, 1).iStart = 0;
    componentat(0, 1).iSize = 4096;
    std::string lines;
    for (uint32_t offset = 0; offset < 4096; offset += 4) {
        setimage(static_cast<int32_t>(offset), {kBase});
        lines += "JUMPTABLE=" + std::to_string(kBase + offset) + "\n";
    }
    romhints("[0x1234abcd]\n" + lines);
    Walk walk = startwalk(0, 1);
    const std::string console = at(1, [&] { addromhints(walk); });
    EXPECT_EQ(countof(console, "ERROR: Component 1 has more vectors than bytes\n"), 1);
    EXPECT_EQ(countof(console, "JUMPTABLE Entrypoint=0 "), 4096);
}

} // namespace
} // namespace vantorel::test
