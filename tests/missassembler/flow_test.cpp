// Paths through code: what leads on, where to, and what is told of it.

#include "missassembler/flow.h"

#include "base/text.h"
#include "missassembler/walktest.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace vantorel::test {
namespace {

constexpr uint32_t cNop = 0x4E71;
constexpr uint32_t cRts = 0x4E75;
constexpr uint32_t cJsrRegister = 0x4E90;
constexpr uint32_t cJmpRegister = 0x4ED0;

class FlowTest : public WalkTest {
protected:
    // Follows `entries` through a component of `bytes` and gives the marks.
    std::string follow(const Bytes& bytes, const std::vector<int32_t>& entries = {0}, int32_t level = 0) {
        silently([] { freeroms(); });
        silently(freemissassembler);
        makecomponent(bytes);
        Walk walk = startwalk(0, 1);
        for (const int32_t entry : entries)
            EXPECT_TRUE(markentry(walk, entry));
        console = at(level, [&] { followentries(walk); });
        return marksof(walk);
    }

    std::string console;
};

// ------------------------------------------------------------------------------------- kinds of texts

TEST_F(FlowTest, KindsAreToldByTheBeginningOfTheText) {
    for (const char* text : {"RTS", "RTE", "RTR", "RTN", "RTSX"}) {
        ASSERT_NE(flowkind(text), nullptr) << text;
        EXPECT_TRUE(flowkind(text)->isend) << text;
        EXPECT_EQ(flowkind(text)->iTarget, 0) << text;
    }
    for (const char* text : {"JMP F80000", "BRA F80000"}) {
        ASSERT_NE(flowkind(text), nullptr) << text;
        EXPECT_TRUE(flowkind(text)->isend) << text;
        EXPECT_EQ(flowkind(text)->iTarget, 4) << text;
    }
    for (const char* text : {"BSR F80000", "JSR F80000", "BEQ F80000"}) {
        ASSERT_NE(flowkind(text), nullptr) << text;
        EXPECT_FALSE(flowkind(text)->isend) << text;
        EXPECT_EQ(flowkind(text)->iTarget, 4) << text;
    }
}

TEST_F(FlowTest, EverythingElseJustLeadsOn) {
    for (const char* text : {"", "R", "RT", "RTD #$4", "rts", "jmp F80000", "bra F80000", "beq F80000", "NOP",
                             "JMPF80000", "BRAF80000", "BSRF80000", "BCHG D0,D1", "BSET D0,D1", "BTST D0,D1",
                             "DIVU D0,D1", "ROR #1,D0", " RTS", "(unknown 0"})
        EXPECT_EQ(flowkind(text), nullptr) << text;
}

// --------------------------------------------------------------------------------------- ends of paths

TEST_F(FlowTest, ReturnsEndAPath) {
    for (const uint32_t end : {0x4E70U, 0x4E73U, 0x4E75U, 0x4E77U})
        EXPECT_EQ(follow(words({cNop, end, cNop, cNop})), "CCCC....") << end;
}

TEST_F(FlowTest, AReturnThatAlsoDeallocatesDoesNot) {
    EXPECT_EQ(follow(words({0x4E74, 0x0004, cNop, cRts, cNop})), "CCCCCCCC..");
}

TEST_F(FlowTest, SmallLettersAreNoneOfTheMnemonics) {
    EXPECT_EQ(follow(words({0xFFF0, 0xFFF1, 0x00F8, 0x004C, cRts, cNop, cNop})), "CCCCCCCCCC....");
}

TEST_F(FlowTest, UnknownWordsLeadOn) { EXPECT_EQ(follow(words({0xA000, 0x1234, cRts, cNop})), "CCCCCC.."); }

TEST_F(FlowTest, TheComponentsEndEndsAPath) {
    EXPECT_EQ(follow(words({cNop, cNop, cNop})), "CCCCCC");
    EXPECT_EQ(follow(words({cNop, 0x4EB9})), "CCCC");
    Bytes odd = words({cNop, 0x4E74, 0x0000});
    odd.pop_back();
    EXPECT_EQ(follow(odd), "CCCCC");
    EXPECT_EQ(follow(Bytes{0x4E}), "C");
}

TEST_F(FlowTest, NoEntryNoCode) { EXPECT_EQ(follow(words({cNop, cRts}), {}), "...."); }

// --------------------------------------------------------------------------------- jumps and branches

TEST_F(FlowTest, AJumpEndsAPathAndItsTargetBeginsOne) {
    EXPECT_EQ(follow(words({0x4EF9, 0x00F8, 0x0048, cNop, cRts})), "CCCCCC..CC"); // JMP F80048
    EXPECT_EQ(follow(words({0x4EFA, 0x0006, cNop, cNop, cRts})), "CCCC....CC");   // JMP F80048(PC)
    EXPECT_EQ(follow(words({0x6006, cNop, cNop, cNop, cRts})), "CC......CC");     // BRA F80048
    EXPECT_EQ(follow(words({0x6000, 0x0006, cNop, cNop, cRts})), "CCCC....CC");   // BRA F80048
}

TEST_F(FlowTest, ASubroutineIsFollowedAndThePathGoesOn) {
    EXPECT_EQ(follow(words({0x4EB9, 0x00F8, 0x004A, cRts, cNop, cRts})), "CCCCCCCC..CC"); // JSR F8004A
    EXPECT_EQ(follow(words({0x4EBA, 0x0008, cNop, cRts, cNop, cRts})), "CCCCCCCC..CC");   // JSR F8004A(PC)
    EXPECT_EQ(follow(words({0x6108, cNop, cNop, cRts, cNop, cRts})), "CCCCCCCC..CC");     // BSR F8004A
}

TEST_F(FlowTest, EveryConditionalBranch) {
    for (uint32_t condition = 2; condition < 16; ++condition)
        EXPECT_EQ(follow(words({0x6006 | condition << 8, cNop, cRts, cNop, cRts})), "CCCCCC..CC")
            << condition;
}

TEST_F(FlowTest, EveryDecrementWithARelativeTarget) {
    for (uint32_t condition = 0; condition < 16; ++condition) {
        const Bytes bytes = words({0x50C8 | condition << 8, 0x0006, cRts, cNop, cRts});
        EXPECT_EQ(follow(bytes), "CCCCCC..CC") << condition;
        EXPECT_EQ(records(), Lines{});
    }
}

TEST_F(FlowTest, EveryDecrementWithoutOne) {
    for (uint32_t condition = 0; condition < 16; ++condition) {
        const Bytes bytes = words({cNop, 0x50F8 | condition << 8, 0x0046, cRts, cNop});
        EXPECT_EQ(follow(bytes), "CCCCCCCC..") << condition;
        EXPECT_EQ(records(), Lines{"2 - 1 ; Complex relative branch"}) << condition;
    }
}

TEST_F(FlowTest, AJumpThroughARegister) {
    EXPECT_EQ(follow(words({cNop, cJmpRegister, cNop, cNop})), "CCCC....");
    EXPECT_EQ(records(), Lines{"2 - 1 ; Complex relative branch or jump"});
    EXPECT_EQ(iMissLabelCnt, 1);
}

TEST_F(FlowTest, ASubroutineThroughARegister) {
    EXPECT_EQ(follow(words({cNop, cJsrRegister, cRts, cNop})), "CCCCCC..");
    EXPECT_EQ(records(), Lines{"2 - 1 ; Complex relative branch or jump"});
}

TEST_F(FlowTest, TargetsAtTheComponentsEnds) {
    EXPECT_EQ(follow(words({cRts, cNop, 0x60FA}), {4}), "CC..CC");
    EXPECT_EQ(follow(words({0x6002, cNop, cRts})), "CC..CC");
}

TEST_F(FlowTest, TargetsOutsideTheComponentAreLeftOut) {
    EXPECT_EQ(follow(words({0x66FC, 0x6602, 0x4EB9, 0x00F8, 0x003F, 0x4EB9, 0x00F0, 0x0000, cRts, cNop})),
              "CCCCCCCCCCCCCCCCCC..");
    EXPECT_EQ(follow(words({0x6604, cRts, cRts})), "CCCC.."); // the first byte behind it
    EXPECT_EQ(records(), Lines{});
}

TEST_F(FlowTest, OddTargetsAreNoInstructions) {
    EXPECT_EQ(follow(words({0x6605, cRts, cNop, cNop})), "CCCC...E");
    EXPECT_EQ(follow(words({0x66FF, cRts})), "CCCC"); // its own second byte
}

TEST_F(FlowTest, AnEntryInsideAnEarlierInstructionIsCleared) {
    // JSR 4ED00000: from its second word on it would read as JMP (A0).
    EXPECT_EQ(follow(words({0x4EB9, cJmpRegister, 0x0000, cRts, cNop}), {0, 2}), "CCCCCCCC..");
    EXPECT_EQ(records(), Lines{});
}

TEST_F(FlowTest, AnEntryInsideALaterInstructionIsFollowedFirst) {
    EXPECT_EQ(follow(words({0x4EF9, cJmpRegister, 0x00F8, 0x0004, cNop}), {2, 4}), "..CCCCCCCC");
    // BRA to 6, and from there to 2, where a JSR covers the second BRA.
    EXPECT_EQ(follow(words({0x6004, 0x4EB9, cJmpRegister, 0x60FA, cRts, cNop})), "CCCCCCCCCC..");
}

TEST_F(FlowTest, ATargetThatIsCodeAlreadyIsNotFollowedAgain) {
    EXPECT_EQ(follow(words({cNop, cJsrRegister, 0x60FA, cNop})), "CCCCCC..");
    EXPECT_EQ(iMissLabelCnt, 1);
    // Into the middle of an instruction that was decoded: not followed either.
    EXPECT_EQ(follow(words({0x4EB9, cJmpRegister, 0x0000, 0x60FA, cNop})), "CCCCCCCC..");
    EXPECT_EQ(records(), Lines{});
}

// ------------------------------------------------------------------------------------ paths that join

TEST_F(FlowTest, APathDoesNotEndWhereAnotherHasBeen) {
    // BNE to the second JSR; from there to the end is walked twice.
    const Bytes bytes = words({0x6602, cJsrRegister, cJsrRegister, cRts});
    EXPECT_EQ(follow(bytes, {0, 4}), "CCCCCCCC");
    EXPECT_EQ(iMissLabelCnt, 2); // byte 4 is code before the sweep comes to it
    EXPECT_EQ(follow(words({cJsrRegister, cJsrRegister, 0x66FA, cRts}), {2}), "CCCCCCCC");
    // From 2: a comment at 2, and 0 becomes an entry. From 0: comments at 0 and again at 2.
    EXPECT_EQ(iMissLabelCnt, 3);
}

TEST_F(FlowTest, TheNumberOfLabelsTellsEveryWalk) {
    makecomponent(words({cJsrRegister, cJsrRegister, 0x66FA, cRts}));
    hashfile("[Missassembler]\nENTRYPOINT=2,Start\n");
    EXPECT_TRUE(has(walked(2), "There are 4 labels\n"));
}

TEST_F(FlowTest, LongChainsOfBackwardBranchesEnd) {
    // Each unit branches to the one before it and has a comment, so the path from unit n adds a comment for
    // itself and for each one behind it.
    constexpr int32_t units = 20000;
    Bytes bytes;
    for (int32_t unit = 0; unit < units; ++unit)
        for (const uint32_t word : {0x66FAU, cJsrRegister})
            appendword(bytes, word);
    EXPECT_EQ(follow(bytes, {4 * (units - 1)}), std::string(static_cast<size_t>(4) * units, 'C'));
    EXPECT_EQ(iMissLabelCnt, units / 2 * (units + 1));
}

// --------------------------------------------------------------------------------------------- traces

TEST_F(FlowTest, TracesShowSweepsFromTheLowestEntryUp) {
    // At 8 two subroutines are called, at 0 and at 16: that at 16 is still in the first sweep.
    const Bytes bytes = words({cRts, cNop, cNop, cNop, 0x61F6, 0x6104, cRts, cNop, cRts});
    const std::string expected = "Entrypoint 0xf80048\n"
                                 "Mnemonic -> BSR F80040\nJSR/BSR! f80040\n"
                                 "Mnemonic -> BSR F80050\nJSR/BSR! f80050\n"
                                 "Mnemonic -> RTS\n"
                                 "Entrypoint 0xf80050\nMnemonic -> RTS\n"
                                 "Entrypoint 0xf80040\nMnemonic -> RTS\n";
    EXPECT_EQ(follow(bytes, {8}, 6), "CC......CCCCCC..CC");
    EXPECT_EQ(console, expected);
    EXPECT_EQ(follow(bytes, {8}, 5), "CC......CCCCCC..CC");
    EXPECT_EQ(console, "");
}

TEST_F(FlowTest, TracesNameEveryKindOfTarget) {
    static_cast<void>(follow(words({0x66FE, 0x56C8, 0xFFFE, 0x51C8, 0xFFFE, 0x60FE}), {0}, 6));
    EXPECT_EQ(console, "Entrypoint 0xf80040\n"
                       "Mnemonic -> BNE F80040\nJSR/BSR! f80040\n"
                       "Mnemonic -> DBNE D0,$F80042(PC)\nDBxx f80042\n"
                       "Mnemonic -> DBF D0,$F80046(PC)\nDBF/DBT! f80046\n"
                       "Mnemonic -> BRA F8004A\nJUMP! f8004a\n");
}

TEST_F(FlowTest, TracedTargetsAreSixCharactersWide) {
    silently([] { freeroms(); });
    makecomponent(words({0x60FE}));
    slotat(0).iROMBase = 0xC0; // so that the component is at 0x100
    Walk walk = startwalk(0, 1);
    EXPECT_TRUE(markentry(walk, 0));
    EXPECT_EQ(at(6, [&] { followentries(walk); }),
              "Entrypoint 0x000100\nMnemonic -> BRA 100\nJUMP!    100\n");
}

// --------------------------------------------------------- against every path walked again to its end

// The flow as it is told, word for word: sweep after sweep, each path walked to its own end.
class PlainFlow {
public:
    PlainFlow(int32_t size, const std::vector<int32_t>& entries) : marks(static_cast<size_t>(size), '.') {
        for (const int32_t entry : entries)
            mark(entry) = 'E';
    }

    void sweepall() {
        for (bool isfound = true; isfound;) {
            isfound = false;
            for (int32_t offset = 0; offset < std::ssize(marks); offset += 2) {
                if (mark(offset) != 'E') continue;
                isfound = true;
                path(offset);
            }
        }
    }

    std::string marks;
    std::vector<std::pair<int32_t, std::string>> comments; // in order of adding

private:
    char& mark(int64_t offset) { return marks.at(static_cast<size_t>(offset)); }

    void path(int32_t offset) {
        while (offset < std::ssize(marks)) {
            MissText text;
            const int32_t length = missassembleA(0, cWalkStart + offset, text, sMnemonic);
            for (int32_t at = offset; at < offset + length && at < std::ssize(marks); ++at)
                mark(at) = 'C';
            if (!leadson(offset, text.data())) return;
            offset += length;
        }
    }

    bool leadson(int32_t offset, const std::string& text) {
        const std::string three = text.substr(0, 3);
        if (three == "RTN" || three == "RTS" || three == "RTE" || three == "RTR") return false;
        const bool isrelative = has(text, "(PC)");
        if (text.substr(0, 2) == "DB") {
            const size_t place = text[3] == ' ' ? 8 : 9; // DBF and DBT
            if (isrelative)
                target(text.substr(place));
            else
                comments.emplace_back(offset, "; Complex relative branch");
            return true;
        }
        if (text[0] != 'B' && text[0] != 'J') return true;
        if (has(text, "(") && !isrelative)
            comments.emplace_back(offset, "; Complex relative branch or jump");
        else
            target(text.substr(4));
        return three != "JMP" && three != "BRA";
    }

    void target(const std::string& digits) {
        const int64_t address = std::stoll(digits.substr(0, 6), nullptr, 16);
        const int64_t offset = address - cWalkAddress;
        if (offset < 0 || offset >= std::ssize(marks) || mark(offset) != '.') return;
        mark(offset) = 'E';
    }
};

// A component in which branches are dense, most targets lie inside, and few paths end.
Bytes tangle(Noise& noise) {
    static constexpr std::array<uint32_t, 16> opcodes = {0x4E71, 0x7001, 0x4E90, 0x4E91, 0x4E92, 0x6600,
                                                         0x6700, 0x6A00, 0x6000, 0x6100, 0x51C8, 0x57C8,
                                                         0x51F8, 0x4EBA, 0x4E90, 0x6B00};
    static constexpr std::array<uint32_t, 3> ends = {0x4E75, 0x4ED0, 0x4EFA};
    Bytes bytes;
    const size_t size = 20 + noise() % 600;
    while (bytes.size() < size) {
        uint32_t word = noise() % 32 == 0 ? ends[noise() % ends.size()] : opcodes[noise() % opcodes.size()];
        const bool isbranch = word >> 12 == 6;
        if (isbranch && noise() % 4 != 0) word |= noise() & (noise() % 16 == 0 ? 0xFF : 0xFE);
        appendword(bytes, noise() % 32 == 0 ? noise() : word);
        const bool hasword = (isbranch && (word & 0xFF) == 0) || word >> 12 == 5 || (word & 0xFFBF) == 0x4EBA;
        if (hasword) appendword(bytes, (noise() % 200 - 100) * 2);
    }
    bytes.resize(size);
    return bytes;
}

// The listing of a walked component without data formats, labels and relocs.
class PlainListing {
public:
    PlainListing(const Bytes& itsbytes, const PlainFlow& itsflow) : bytes(itsbytes), flow(itsflow) {
        for (const auto& [place, text] : flow.comments)
            comments[place] = text;
        while (offset < std::ssize(bytes))
            if (iscode())
                addcode();
            else
                addrow();
        lines += formatted("Scanned %d bytes, %d code %d data\n", offset, code, offset - code);
    }

    std::string lines;

private:
    [[nodiscard]] bool iscode() const { return flow.marks[static_cast<size_t>(offset)] == 'C'; }

    [[nodiscard]] std::string address() const {
        return formatted("%06X", cWalkAddress + static_cast<uint32_t>(offset));
    }

    void addcode() {
        MissText text;
        const int32_t length = missassembleA(0, cWalkStart + offset, text, sMnemonic);
        std::string line = address() + " " + text.data();
        if (comments.contains(offset)) {
            line.resize(std::max<size_t>(line.size(), 7 + 24), ' ');
            line += " " + comments[offset];
        }
        lines += line + "\n";
        code += length;
        offset += length;
    }

    void addrow() {
        std::string row = address();
        std::string characters;
        for (; characters.size() < 16 && offset < std::ssize(bytes) && !iscode(); ++offset) {
            const uint8_t byte = bytes[static_cast<size_t>(offset)];
            row += formatted(" %02X", byte);
            characters += byte >= 32 && byte < 127 ? static_cast<char>(byte) : '.';
        }
        lines += hexrow(row, characters);
    }

    const Bytes& bytes;
    const PlainFlow& flow;
    std::map<int32_t, std::string> comments;
    int32_t offset = 0;
    int32_t code = 0;
};

TEST_F(FlowTest, TangledCodeIsWalkedAsIfEveryPathWereWalkedToItsEnd) {
    Noise noise(20240917);
    const InDirectory there(dir);
    int64_t joined = 0;
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        const Bytes bytes = tangle(noise);
        std::vector<int32_t> entries;
        for (uint32_t i = 0; i <= noise() % 6; ++i)
            entries.push_back(static_cast<int32_t>(noise() % bytes.size()));
        const std::string marks = follow(bytes, entries);
        PlainFlow plain(static_cast<int32_t>(bytes.size()), entries);
        plain.sweepall();
        EXPECT_EQ(marks, plain.marks) << round;
        EXPECT_EQ(iMissLabelCnt, std::ssize(plain.comments)) << round;
        joined += iMissLabelCnt - std::ssize(psLabels);

        Walk walk = startwalk(0, 1);
        std::ranges::transform(plain.marks, walk.marks.begin(),
                               [](char mark) { return mark == '.' ? '\0' : mark; });
        ListingFile listing;
        EXPECT_EQ(at(1, [&] { listwalk(walk, listing); }), PlainListing(bytes, plain).lines) << round;
    }
    EXPECT_GT(joined, 1000) << "hardly any paths join";
}

TEST_F(FlowTest, TracesDoNotChangeTheCount) {
    Noise noise(5);
    for (int round = 0; round < 40; ++round) {
        const Bytes bytes = tangle(noise);
        const std::string marks = follow(bytes, {0});
        const int32_t count = iMissLabelCnt;
        EXPECT_EQ(follow(bytes, {0}, 6), marks);
        EXPECT_EQ(iMissLabelCnt, count);
    }
}

} // namespace
} // namespace vantorel::test
