// What the ROMTAGs of a component tell a walk.

#include "missassembler/entrypoints.h"

#include "missassembler/walktest.h"

namespace vantorel::test {
namespace {

constexpr uint32_t cFar = 0xF00000; // an address below the image

uint32_t addressof(int32_t offset) { return cWalkAddress + static_cast<uint32_t>(offset); }

// Where a tag's pointers lead.
struct TagPointers {
    uint32_t name = 0;
    uint32_t idstring = 0;
    uint32_t init = 0;
};

// A tag of RTW_MATCHWORD to RT_INIT at component offset `place`.
void settag(Bytes& bytes, int32_t place, uint8_t flags, const TagPointers& pointers) {
    setwords(bytes, place, {0x4AFC});
    setlongs(bytes, place + 2, {addressof(place), addressof(64)});
    setbytes(bytes, place + 10, Bytes{flags, 40, 9, 0xFB});
    setlongs(bytes, place + 14, {pointers.name, pointers.idstring, pointers.init});
}

// The records that every tag gets at its own fields.
Lines fieldrecords(int32_t place, const std::string& flags) {
    const auto line = [place](int32_t field, const std::string& rest) {
        return std::to_string(place + field) + " " + rest;
    };
    return {line(0, "W 1 ;RT_MATCHWORD"),      line(2, "A 1 ;RT_MATCHTAG"), line(6, "A 1 ;RT_ENDSKIP"),
            line(10, "B 1 ;RT_FLAGS" + flags), line(11, "B 1 ;RT_VERSION"), line(12, "B 1 ;RT_TYPE"),
            line(13, "B 1 ;RT_PRI"),           line(14, "A 1 ;RT_NAME"),    line(18, "A 1 ;RT_IDSTRING"),
            line(22, "A 1 ;RT_INIT")};
}

class EntryPointsTest : public WalkTest {
protected:
    // A component of 256 bytes 0x11 in which nothing is found.
    Bytes bytes = Bytes(256, 0x11);

    // A tag at 0 with RTF_AUTOINIT whose table, at 64, leads to `vectors` and `init`.
    void setautoinit(uint32_t vectors, uint32_t init = 0) {
        settag(bytes, 0, iAutoInit, {.name = cFar, .idstring = cFar, .init = addressof(64)});
        setlongs(bytes, 64, {0x40, vectors, 0, init});
    }

    // Looks for tags in the component; what was found is in `count`, `marks` and the records.
    std::string find(int32_t level = 0) {
        freshslot();
        Walk walk = startwalk(0, 1);
        const std::string console = at(level, [&] { count = addromtagentries(walk); });
        marks = marksof(walk);
        entries.clear();
        for (int32_t offset = 0; offset < std::ssize(marks); ++offset)
            if (marks[static_cast<size_t>(offset)] != '.') entries.push_back(offset);
        return console;
    }

    void freshslot() const {
        freshstate();
        installtable(cWalkTable);
        makecomponent(bytes);
    }

    int32_t count = -1;
    std::string marks;
    std::vector<int32_t> entries;
};

TEST_F(EntryPointsTest, NoTagNoEntry) {
    EXPECT_EQ(find(9), "");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(records(), Lines{});
    EXPECT_EQ(entries, std::vector<int32_t>{});
}

TEST_F(EntryPointsTest, ATagWithoutAutoInit) {
    settag(bytes, 0, iColdStart, {addressof(32), addressof(40), addressof(48)});
    EXPECT_EQ(find(6).substr(0, 11), "ROMTAG @ 0\n");
    EXPECT_EQ(records(), fieldrecords(0, " COLDSTART") +
                             Lines({"32 T 1 RT_NAME", "40 T 1 RT_IDSTRING", "48 - 1 RT_INIT"}));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(entries, std::vector<int32_t>{48});
}

TEST_F(EntryPointsTest, EveryCombinationOfFlags) {
    for (int flags = 0; flags < 256; ++flags) {
        settag(bytes, 0, static_cast<uint8_t>(flags), {cFar, cFar, cFar});
        static_cast<void>(find());
        std::string names;
        const auto name = [&names, flags](int bit, const char* text) {
            if ((flags >> bit & 1) != 0) names += std::string(names.empty() ? "" : "|") + text;
        };
        name(0, "COLDSTART");
        name(1, "SINGLETASK");
        name(2, "AFTERDOS");
        name(7, "AUTOINIT");
        EXPECT_EQ(recordat(10), "B ;RT_FLAGS" + (names.empty() ? "" : " " + names)) << flags;
    }
}

TEST_F(EntryPointsTest, EveryTagOfTheComponent) {
    settag(bytes, 4, 0, {cFar, cFar, addressof(80)});
    settag(bytes, 40, iAfterDos, {cFar, cFar, addressof(90)});
    EXPECT_EQ(countof(find(6), "ROMTAG @ 40\n"), 1);
    EXPECT_EQ(records(), fieldrecords(4, "") + fieldrecords(40, " AFTERDOS") +
                             Lines({"80 - 1 RT_INIT", "90 - 1 RT_INIT"}));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(entries, (std::vector<int32_t>{80, 90}));
}

TEST_F(EntryPointsTest, MatchWordsThatAreNoTags) {
    setwords(bytes, 0, {0x4AFC});
    setlongs(bytes, 2, {kBase});   // counts from the image, not from the component
    setwords(bytes, 21, {0x4AFC}); // at an odd place
    setlongs(bytes, 23, {addressof(21)});
    setwords(bytes, 32, {0x4AFC});
    setlongs(bytes, 34, {addressof(34)}); // points beside itself
    EXPECT_EQ(find(6), "");
    EXPECT_EQ(records(), Lines{});
}

TEST_F(EntryPointsTest, PointersOutsideTheComponent) {
    settag(bytes, 0, 0, {addressof(-1), addressof(256), cFar});
    static_cast<void>(find());
    EXPECT_EQ(records(), fieldrecords(0, ""));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(entries, std::vector<int32_t>{});
}

TEST_F(EntryPointsTest, PointersAtTheEndsOfTheComponent) {
    settag(bytes, 2, 0, {addressof(0), addressof(255), addressof(254)});
    static_cast<void>(find());
    EXPECT_EQ(records(), Lines({"0 T 1 RT_NAME"}) + fieldrecords(2, "") +
                             Lines({"254 - 1 RT_INIT", "255 T 1 RT_IDSTRING"}));
    EXPECT_EQ(entries, std::vector<int32_t>{254});
}

TEST_F(EntryPointsTest, ATagThatTheComponentsEndCutsOff) {
    for (int32_t length = 6; length <= 26; ++length) {
        bytes.assign(64, 0x11);
        Bytes tag(26);
        setwords(tag, 0, {0x4AFC});
        const int32_t place = 64 - length + length % 2;
        setlongs(tag, 2, {addressof(place), addressof(64)});
        setlongs(tag, 22, {addressof(20)});
        tag.resize(static_cast<size_t>(64 - place));
        setbytes(bytes, place, tag);
        static_cast<void>(find());
        const Lines fields = fieldrecords(place, "");
        Lines expected;
        for (const std::string& line : fields)
            if (std::stoi(line) < 64) expected.push_back(line);
        const bool hasinit = place + 26 <= 64;
        if (hasinit) expected.insert(expected.begin(), "20 - 1 RT_INIT");
        EXPECT_EQ(records(), expected) << length;
        EXPECT_EQ(count, hasinit ? 1 : 0) << length;
    }
}

TEST_F(EntryPointsTest, TracesOfATagWithoutAutoInit) {
    settag(bytes, 0, 0, {cFar, cFar, addressof(48)});
    const std::string console = find(6);
    EXPECT_TRUE(has(console, "No AUTOINIT flag set, RTC_INIT:00f80070 ROM offset 112\n")) << console;
    EXPECT_EQ(find(5), "");
}

// ------------------------------------------------------------------------------------------- AUTOINIT

TEST_F(EntryPointsTest, AnAutoInitTable) {
    setautoinit(addressof(96), addressof(200));
    setlongs(bytes, 96, {0xFFFFFFFF});
    setwords(bytes, 96, {0x1111, 0x1111}); // one vector that leads nowhere
    setlongs(bytes, 100, {0xFFFFFFFF});
    static_cast<void>(find());
    EXPECT_EQ(records(), fieldrecords(0, " AUTOINIT") +
                             Lines({"64 - 1 RT_INIT", "64 - 1 AUTOINIT", "68 A 1 ;Vector table address",
                                    "72 A 1 ;Init Struct {} address", "76 A 1 ;Library init() address",
                                    "96 - 1 Vector Table", "96 L 1 ; Start of 32 bit vector table",
                                    "96 A 1 ; 0x11111111 Library vector 0 open()",
                                    "100 L 1 ; End of 32 bit vector table", "200 - 1 Library init()"}));
    EXPECT_EQ(entries, std::vector<int32_t>{200});
    EXPECT_EQ(count, 1);
}

TEST_F(EntryPointsTest, WordsRelativeToTheTable) {
    setautoinit(addressof(128));
    setwords(bytes, 128, {0xFFFF, 0x0010, 0xFFF0, 0x0012, 0x0014, 0x0016, 0xFFFF, 0x0018, 0xFFFF});
    static_cast<void>(find());
    const Lines expected = {"112 - 1 Library vector 1 close()",
                            "128 - 1 Vector Table",
                            "128 W 1 ; Start of 16 bit vector table",
                            "130 W 1 ; 0xF800D0 Library vector 0 open()",
                            "132 W 1 ; 0xF800B0 Library vector 1 close()",
                            "134 W 1 ; 0xF800D2 Library vector 2 expunge()",
                            "136 W 1 ; 0xF800D4 Library vector 3 reserved()",
                            "138 W 1 ; 0xF800D6 Library vector 4",
                            "140 W 1 ; End of 16 bit vector table",
                            "144 - 1 Library vector 0 open()",
                            "146 - 1 Library vector 2 expunge()",
                            "148 - 1 Library vector 3 reserved()",
                            "150 - 1 Library vector 4"};
    const Lines all = records();
    EXPECT_EQ(Lines(all.end() - std::ssize(expected), all.end()), expected);
    EXPECT_EQ(entries, (std::vector<int32_t>{112, 144, 146, 148, 150}));
    EXPECT_EQ(count, 5);
}

TEST_F(EntryPointsTest, LongsThatAreAddresses) {
    setautoinit(addressof(128));
    setlongs(bytes, 128,
             {addressof(160), addressof(162), addressof(164), addressof(166), addressof(100), 0xFFFFFFFF});
    static_cast<void>(find());
    const Lines expected = {"100 - 1 Library vector 4",
                            "128 - 1 Vector Table",
                            "128 L 1 ; Start of 32 bit vector table",
                            "128 A 1 ; 0xF800E0 Library vector 0 open()",
                            "132 A 1 ; 0xF800E2 Library vector 1 close()",
                            "136 A 1 ; 0xF800E4 Library vector 2 expunge()",
                            "140 A 1 ; 0xF800E6 Library vector 3 reserved()",
                            "144 A 1 ; 0xF800A4 Library vector 4",
                            "148 L 1 ; End of 32 bit vector table",
                            "160 - 1 Library vector 0 open()",
                            "162 - 1 Library vector 1 close()",
                            "164 - 1 Library vector 2 expunge()",
                            "166 - 1 Library vector 3 reserved()"};
    const Lines all = records();
    EXPECT_EQ(Lines(all.end() - std::ssize(expected), all.end()), expected);
    EXPECT_EQ(entries, (std::vector<int32_t>{100, 160, 162, 164, 166}));
    EXPECT_EQ(count, 5);
}

TEST_F(EntryPointsTest, EmptyVectorTables) {
    setautoinit(addressof(128));
    setwords(bytes, 128, {0xFFFF, 0xFFFF});
    static_cast<void>(find());
    EXPECT_EQ(recordat(128, "; Start"), "W ; Start of 16 bit vector table");
    EXPECT_EQ(recordat(130), "W ; End of 16 bit vector table");
    EXPECT_EQ(count, 0);
}

TEST_F(EntryPointsTest, AFunctionNamedTwiceCountsTwice) {
    setautoinit(addressof(128), addressof(160));
    setwords(bytes, 128, {0xFFFF, 0x0020, 0x0020, 0xFFFF});
    static_cast<void>(find());
    EXPECT_EQ(count, 3);
    EXPECT_EQ(entries, std::vector<int32_t>{160});
}

TEST_F(EntryPointsTest, VectorsThatLeadOutOfTheComponent) {
    setautoinit(addressof(128), cFar);
    setwords(bytes, 128, {0xFFFF, 0x0080, 0xFF7F, 0x007E, 0xFFFF});
    static_cast<void>(find());
    EXPECT_EQ(recordat(130), "W ; 0xF80140 Library vector 0 open()");
    EXPECT_EQ(recordat(132), "W ; 0xF8003F Library vector 1 close()");
    EXPECT_EQ(recordat(254), "- Library vector 2 expunge()");
    EXPECT_EQ(recordat(76), "A ;Library init() address");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(entries, std::vector<int32_t>{254});
    for (const MissLabel& record : psLabels)
        EXPECT_NE(record.pcLabel, "Library init()");
}

TEST_F(EntryPointsTest, VectorTablesWithoutAnEndMark) {
    for (const bool isword : {true, false}) {
        bytes.assign(256, 0x00);
        setautoinit(addressof(240));
        if (isword) setwords(bytes, 240, {0xFFFF});
        static_cast<void>(find());
        const std::string form = isword ? "16" : "32";
        EXPECT_EQ(recordat(240, "; Start"),
                  std::string(isword ? "W" : "L") + " ; Start of " + form + " bit vector table");
        for (const MissLabel& record : psLabels)
            EXPECT_FALSE(record.pcLabel.starts_with("; End"));
        EXPECT_EQ(recordat(isword ? 254 : 252),
                  isword ? "W ; 0xF80130 Library vector 6" : "A ; 0x000000 Library vector 3 reserved()");
        EXPECT_EQ(count, isword ? 7 : 0);
    }
}

TEST_F(EntryPointsTest, AVectorTableThatTheEndCutsThroughAnEntry) {
    setautoinit(addressof(250));
    setlongs(bytes, 250, {addressof(200)});
    setwords(bytes, 254, {0xFFFF}); // half an end mark
    static_cast<void>(find());
    EXPECT_EQ(recordat(254), "");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(entries, std::vector<int32_t>{200});
}

TEST_F(EntryPointsTest, AnAutoInitTableOutsideTheComponent) {
    settag(bytes, 0, iAutoInit, {cFar, cFar, addressof(256)});
    static_cast<void>(find());
    EXPECT_EQ(records(), fieldrecords(0, " AUTOINIT"));
    EXPECT_EQ(count, 0);
}

TEST_F(EntryPointsTest, AnAutoInitTableThatTheEndCutsOff) {
    settag(bytes, 0, iAutoInit, {cFar, cFar, addressof(244)});
    setlongs(bytes, 244, {0x40, cFar, 0}); // no long for LibraryInit
    static_cast<void>(find());
    EXPECT_EQ(recordat(244, "AUTOINIT"), "- AUTOINIT");
    EXPECT_EQ(recordat(248), "A ;Vector table address");
    EXPECT_EQ(recordat(252), "A ;Init Struct {} address");
    EXPECT_EQ(count, 0);
}

TEST_F(EntryPointsTest, TracesOfAnAutoInitTable) {
    setautoinit(addressof(128));
    setwords(bytes, 128, {0xFFFF, 0xFFFF});
    const std::string console = find(6);
    EXPECT_TRUE(has(console, "AUTOINIT flag set structure position=64\n")) << console;
    EXPECT_TRUE(has(console, "Size of library data area - includes standard and user?:00000040\n"))
        << console;
    EXPECT_TRUE(has(console, "Vector table address:128\n")) << console;
    EXPECT_FALSE(has(console, "No AUTOINIT"));
    EXPECT_FALSE(has(find(9), "Firstvector"));
    EXPECT_TRUE(has(find(10), "Firstvector ffff\n"));
    EXPECT_EQ(find(5), "");
}

TEST_F(EntryPointsTest, TablesThatLieOverOneAnotherEnd) {
    // 64 tags, and a table of 1024 words that all of them share.
    bytes.assign(4096, 0x00);
    for (int32_t tag = 0; tag < 64; ++tag)
        settag(bytes, 26 * tag, iAutoInit, {cFar, cFar, addressof(1800)});
    setlongs(bytes, 1800, {0, addressof(2000), 0, 0});
    setwords(bytes, 2000, {0xFFFF});
    const std::string console = find(1);
    EXPECT_EQ(console, "ERROR: Component 1 has more vectors than bytes\n");
    EXPECT_EQ(count, 4096);
    EXPECT_EQ(find(0), "");
}

} // namespace
} // namespace vantorel::test
