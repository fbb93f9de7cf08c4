// The codes that take bytes from behind the opcode word: what they show, and how long they make an
// instruction.

#include "missassembler/operands.h"

#include "missassembler/misstest.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace vantorel::test {
namespace {

class OperandsTest : public FreshTest {
protected:
    // What `instruction`, a template for every opcode word, makes of an instruction whose opcode word is
    // 0x4E71.
    static Decoded operand(const std::string& instruction, const Bytes& behind,
                           const std::string& sections = "") {
        Bytes image = {0x4E, 0x71};
        image.insert(image.end(), behind.begin(), behind.end());
        return decoded(onetemplate(instruction, sections), image);
    }
};

// The longest text of a piece over all that its word, and for a displacement its extension word, can be.
size_t longestwritten(Piece::Kind kind) {
    size_t most = 0;
    std::array<char, 64> text;
    for (uint32_t word = 0; word <= 0xFFFF; ++word) {
        const std::array<uint32_t, 2> values = {word, word};
        const char* const end = writepiece(text.data(), {.kind = kind, .value = 0, .extension = 1}, values);
        most = std::max(most, static_cast<size_t>(end - text.data()));
    }
    return most;
}

TEST(Pieces, TheRoomForAPieceIsWhatItsLongestTextTakes) {
    for (const Piece::Kind kind : {Piece::Byte, Piece::Word, Piece::Long, Piece::Extension, Piece::Index,
                                   Piece::Displacement, Piece::ToControl, Piece::FromControl})
        EXPECT_EQ(longest(kind), longestwritten(kind)) << kind;
    EXPECT_EQ(longest(Piece::Literal), 0U);
}

TEST(Pieces, TheRoomForARegisterListIsOneMoreThanTheLongestTakes) {
    for (const Piece::Kind kind : {Piece::Registers, Piece::RegistersTurned}) {
        EXPECT_EQ(longestwritten(kind), 35U) << kind;
        EXPECT_EQ(longest(kind), 36U) << "the slash before the first";
    }
}

TEST_F(OperandsTest, BytesWordsAndLongsInTheirOrder) {
    const Bytes bytes = {0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F, 0x70};
    EXPECT_EQ(operand("%%1", bytes), (Decoded{"1A", 3})) << "one byte, not a word";
    EXPECT_EQ(operand("%%2", bytes), (Decoded{"1A2B", 4}));
    EXPECT_EQ(operand("%%4", bytes), (Decoded{"1A2B3C4D", 6}));
    EXPECT_EQ(operand("%%1;%%2;%%4", bytes), (Decoded{"1A;2B3C;4D5E6F70", 9}));
    EXPECT_EQ(operand("%%4.%%1.%%2", bytes), (Decoded{"1A2B3C4D.5E.6F70", 9}));
}

TEST_F(OperandsTest, AnImmediateIsALongUntilASizeSaysOtherwise) {
    const Bytes bytes = {0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F, 0x70, 0x81};
    EXPECT_EQ(operand("%%%", bytes), (Decoded{"1A2B3C4D", 6}));
    for (const std::string size : {"B", "b", "W", "w", "Byte", "W;"})
        EXPECT_EQ(operand("%(s04)%%%", bytes, "[s04]\n4=" + size + "\n"), (Decoded{size + "1A2B", 4}));
    for (const std::string size : {"L", "l", "Q", "", ".W", "long"})
        EXPECT_EQ(operand("%(s04)%%%", bytes, "[s04]\n4=" + size + "\n"), (Decoded{size + "1A2B3C4D", 6}));
}

TEST_F(OperandsTest, ASizeHoldsUntilTheNext) {
    const Bytes bytes = {0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F, 0x70, 0x81};
    const std::string sections = "[s04]\n4=B\n[s44]\n14=X\n[s84]\n7=L\n[t04]\n4=W\n";
    EXPECT_EQ(operand("%(s04)%(s44);%%%", bytes, sections), (Decoded{"BX;1A2B", 4}))
        << "a letter that is no size changes nothing";
    EXPECT_EQ(operand("%(s04)%%%,%(s84)%%%", bytes, sections), (Decoded{"B1A2B,L3C4D5E6F", 8}));
    EXPECT_EQ(operand("%(t04)%%%", bytes, sections), (Decoded{"W1A2B3C4D", 6})) << "no size table";
    EXPECT_EQ(operand("%%%,%(s04)", bytes, sections), (Decoded{"1A2B3C4D,B", 6}))
        << "the size comes too late";
}

TEST_F(OperandsTest, ASizeBehindTheImmediateCountsWhenTheImmediateIsLookedUp) {
    const Bytes bytes = {0x1A, 0x2B, 0x3C, 0x4D};
    EXPECT_EQ(operand("%(e04).%(s04)", bytes, "[s04]\n4=B\n[e04]\n4=#$%%%\n"), (Decoded{"#$1A2B.B", 4}))
        << "looked up in the first pass, fetched in the second";
}

TEST_F(OperandsTest, AnIndexRegisterIsInTheTopFourBits) {
    EXPECT_EQ(operand("%XR", {0x98, 0x12}), (Decoded{"[X:9812]A1", 4}));
    EXPECT_EQ(operand("%XR", {0x7F, 0xFF}), (Decoded{"[X:7FFF]D7", 4}));
    EXPECT_EQ(operand("%XR", {0xF0, 0x00}), (Decoded{"[X:F000]A7", 4}));
    EXPECT_EQ(operand("%XR", {0x00, 0x0A}), (Decoded{"[X:000A]D0", 4}));
}

TEST_F(OperandsTest, ABriefDisplacementIsTheLowByte) {
    EXPECT_EQ(operand("%XD", {0x98, 0x12}), (Decoded{"[X:9812]0012", 4}));
    EXPECT_EQ(operand("%XD", {0x70, 0xF0}), (Decoded{"[X:70F0]00F0", 4}));
    EXPECT_EQ(operand("%XD", {0xFE, 0x30}), (Decoded{"[X:FE30]0030", 4})) << "bits 5 and 4 are no size here";
}

TEST_F(OperandsTest, AFullDisplacementHasItsOwnWords) {
    const Bytes bytes = {0, 0, 0x1A, 0x2B, 0x3C, 0x4D};
    const auto full = [&bytes](uint32_t extension) {
        Bytes behind = bytes;
        setword(behind.data(), extension);
        return operand("%XD", behind);
    };
    EXPECT_EQ(full(0x0100), (Decoded{"[X:0100]?", 4}));
    EXPECT_EQ(full(0x81CF), (Decoded{"[X:81CF]?", 4}));
    EXPECT_EQ(full(0x0110), (Decoded{"[X:0110]?", 4}));
    EXPECT_EQ(full(0x0120), (Decoded{"[X:0120]1A2B", 6}));
    EXPECT_EQ(full(0x0FEF), (Decoded{"[X:0FEF]1A2B", 6}));
    EXPECT_EQ(full(0x0130), (Decoded{"[X:0130]1A2B3C4D", 8}));
    EXPECT_EQ(full(0xFFFF), (Decoded{"[X:FFFF]1A2B3C4D", 8}));
}

TEST_F(OperandsTest, AnExtensionWordIsTakenOnceAndItsDisplacementEachTime) {
    const Bytes bytes = {0x91, 0x20, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F};
    EXPECT_EQ(operand("%XD(A0,%XR)", bytes), (Decoded{"[X:9120]1A2B(A0,[X:9120]A1)", 6}));
    EXPECT_EQ(operand("%XR,%XD", bytes), (Decoded{"[X:9120]A1,[X:9120]1A2B", 6}));
    EXPECT_EQ(operand("%XD,%XD,%XR", bytes), (Decoded{"[X:9120]1A2B,[X:9120]3C4D,[X:9120]A1", 8}));
    EXPECT_EQ(operand("%%2:%XR:%%2:%XD", {0x1A, 0x2B, 0x81, 0x20, 0x3C, 0x4D, 0x5E, 0x6F}),
              (Decoded{"1A2B:[X:8120]A0:3C4D:[X:8120]5E6F", 10}));
    EXPECT_EQ(operand("%XR,%(e04)", bytes, "[e04]\n4=%XD;%%2\n"),
              (Decoded{"[X:9120]A1,[X:9120]1A2B;3C4D", 8}))
        << "in a later pass too";
}

TEST_F(OperandsTest, AnyOtherLetterShowsTheExtensionWordAlone) {
    const Bytes bytes = {0x91, 0x20, 0x1A, 0x2B};
    for (const std::string code : {"%XX", "%Xr", "%Xd", "%X ", "%X%", "%X0"})
        EXPECT_EQ(operand(code, bytes), (Decoded{"[X:9120]", 4})) << code;
    EXPECT_EQ(operand("%XZ%%2", bytes), (Decoded{"[X:9120]1A2B", 6}));
    EXPECT_EQ(operand("%xA", bytes), (Decoded{"0", 2})) << "a small x is a field that begins outside";
}

struct Control {
    uint32_t number;
    std::string name;
};

const std::vector<Control> sControls = {
    {0x000, "SFC (68010+)"}, {0x001, "DFC (68010+)"},  {0x002, "CACR (68020+)"}, {0x800, "USP (68010+)"},
    {0x801, "VBR (68010+)"}, {0x802, "CAAR (68020+)"}, {0x803, "MSP (68020+)"},  {0x804, "ISP (68020+)"},
    {0x003, "(unknown)"},    {0x7FF, "(unknown)"},     {0x805, "(unknown)"},     {0xFFF, "(unknown)"},
};

TEST_F(OperandsTest, ControlRegistersHaveNamesInBothDirections) {
    for (const Control& control : sControls)
        for (uint32_t number = 0; number < 16; ++number) {
            const std::string general = (number < 8 ? "D" : "A") + std::to_string(number % 8);
            Bytes behind(2);
            setword(behind.data(), number << 12 | control.number);
            ASSERT_EQ(operand("MOVEC %%C", behind), (Decoded{"MOVEC " + general + "," + control.name, 4}));
            ASSERT_EQ(operand("MOVEC %%c", behind), (Decoded{"MOVEC " + control.name + "," + general, 4}));
        }
}

// A register list as a person would write it: runs of three and more as ranges.
std::string listof(const std::vector<bool>& registers) {
    std::string list;
    const auto name = [](size_t number) { return (number < 8 ? "D" : "A") + std::to_string(number % 8); };
    for (size_t first = 0; first < 16;) {
        size_t behind = first;
        while (behind < 16 && behind / 8 == first / 8 && registers[behind])
            ++behind;
        if (behind - first > 2) list += "/" + name(first) + "-" + name(behind - 1);
        for (size_t i = first; behind - first <= 2 && i < behind; ++i)
            list += "/" + name(i);
        first = std::max(behind, first + 1);
    }
    return list.empty() ? list : list.substr(1);
}

std::string listof(uint32_t mask, bool isturned) {
    std::vector<bool> registers;
    for (uint32_t number = 0; number < 16; ++number)
        registers.push_back((mask >> (isturned ? 15 - number : number) & 1U) != 0);
    return listof(registers);
}

TEST_F(OperandsTest, RegisterListsOfEveryShape) {
    const auto list = [](uint32_t mask) {
        Bytes behind(2);
        setword(behind.data(), mask);
        return operand("%%R", behind);
    };
    EXPECT_EQ(list(0x430F), (Decoded{"D0-D3/A0/A1/A6", 4}));
    EXPECT_EQ(list(0x0000), (Decoded{"", 4}));
    EXPECT_EQ(list(0x0001), (Decoded{"D0", 4}));
    EXPECT_EQ(list(0x0003), (Decoded{"D0/D1", 4})) << "two are no run";
    EXPECT_EQ(list(0x0007), (Decoded{"D0-D2", 4}));
    EXPECT_EQ(list(0x00FF), (Decoded{"D0-D7", 4}));
    EXPECT_EQ(list(0xFF00), (Decoded{"A0-A7", 4}));
    EXPECT_EQ(list(0xFFFF), (Decoded{"D0-D7/A0-A7", 4}));
    EXPECT_EQ(list(0x01C0), (Decoded{"D6/D7/A0", 4})) << "no run from one kind into the other";
    EXPECT_EQ(list(0x00E0), (Decoded{"D5-D7", 4}));
    EXPECT_EQ(list(0xE077), (Decoded{"D0-D2/D4-D6/A5-A7", 4}));
    EXPECT_EQ(list(0xDBDB), (Decoded{"D0/D1/D3/D4/D6/D7/A0/A1/A3/A4/A6/A7", 4})) << "the longest";
    EXPECT_EQ(list(0x8080), (Decoded{"D7/A7", 4}));
}

TEST_F(OperandsTest, EveryRegisterListInBothOrders) {
    constexpr int32_t iMasks = 65536;
    Bytes image(size_t{iMasks} * 4, 0);
    for (int32_t mask = 0; mask < iMasks; ++mask)
        setword(image.data() + mask * 4 + 2, static_cast<uint32_t>(mask));
    const int32_t rom = romof(image, 0);
    const std::string section = "[e04]\n0=-(A7)\n";
    InstructionTable plain = tableof(onetemplate("%%R", section));
    InstructionTable turned = tableof(onetemplate("%%R,%(e04)", section));
    for (int32_t mask = 0; mask < iMasks; ++mask) {
        const auto bits = static_cast<uint32_t>(mask);
        ASSERT_EQ(decodedat(rom, mask * 4, plain), (Decoded{listof(bits, false), 4})) << mask;
        ASSERT_EQ(decodedat(rom, mask * 4, turned), (Decoded{listof(bits, true) + ",-(A7)", 4})) << mask;
    }
}

TEST_F(OperandsTest, AMaskIsTurnedBitByBit) {
    for (uint32_t bit = 0; bit < 16; ++bit)
        EXPECT_EQ(turnedmask(1U << bit), 0x8000U >> bit);
    EXPECT_EQ(turnedmask(0x1234), 0x2C48U);
    EXPECT_EQ(turnedmask(0xFFFF), 0xFFFFU);
}

TEST_F(OperandsTest, TheMaskStandsBeforeWhatIsLookedUp) {
    const Bytes bytes = {0x00, 0x03, 0x1A, 0x2B};
    const std::string sections = "[e04]\n4=($%%2)\n";
    EXPECT_EQ(operand("MOVEM %%R,%(e04)", bytes, sections), (Decoded{"MOVEM D0/D1,($1A2B)", 6}));
    EXPECT_EQ(operand("MOVEM %(e04),%%R", bytes, sections), (Decoded{"MOVEM ($1A2B),D0/D1", 6}));
    EXPECT_EQ(operand("%%2,%%R", {0x1A, 0x2B, 0x00, 0x03}), (Decoded{"1A2B,D0/D1", 6}));
}

TEST_F(OperandsTest, ATextThatBeginsWithAMinusTurnsTheMask) {
    const Bytes bytes = {0x80, 0x01, 0x1A, 0x2B};
    EXPECT_EQ(operand("%%R,%(e04)", bytes, "[e04]\n4=-x\n"), (Decoded{"D0/A7,-x", 4}));
    EXPECT_EQ(operand("%%R,%(e04)", {0x00, 0x03}, "[e04]\n4=-x\n"), (Decoded{"A6/A7,-x", 4}));
    EXPECT_EQ(operand("%(e04),%%R", {0x00, 0x03}, "[e04]\n4=-x\n"), (Decoded{"-x,A6/A7", 4}));
    EXPECT_EQ(operand("%%R,%(e04)", {0x00, 0x03}, "[e04]\n4=x-\n"), (Decoded{"D0/D1,x-", 4}));
    EXPECT_EQ(operand("%%R,-x", {0x00, 0x03}), (Decoded{"D0/D1,-x", 4})) << "not looked up";
    EXPECT_EQ(operand("%%R,%(e04)", {0x00, 0x03}, "[e04]\n4=%(f04)\n[f04]\n4=-x\n"), (Decoded{"D0/D1,-x", 4}))
        << "the list is written in the pass that looks the minus up, before it";
}

TEST_F(OperandsTest, AListIsThatOfTheLastMask) {
    EXPECT_EQ(operand("%%r;", {0xFF, 0xFF}), (Decoded{";", 2})) << "no mask, no registers";
    EXPECT_EQ(operand("%%C;%%r", {0x00, 0x03}), (Decoded{"D0,(unknown);D0/D1", 4}));
    EXPECT_EQ(operand("%%c;%%r", {0x80, 0x01}), (Decoded{"DFC (68010+),A0;D0/A7", 4}));
    EXPECT_EQ(operand("%%R;%%R", {0x00, 0x01, 0x00, 0x02}), (Decoded{"D1;D1", 6}))
        << "both are written in the second pass";
    EXPECT_EQ(operand("%%C%%r%%R", {0x00, 0x03, 0x00, 0x04}), (Decoded{"D0,(unknown)D0/D1D2", 6}));
}

TEST_F(OperandsTest, MoreOperandsThanAnInstructionHas) {
    Bytes behind;
    std::string codes;
    std::string expected;
    for (int i = 0; i < 40; ++i) {
        behind.push_back(static_cast<uint8_t>(0xA0 + i));
        codes += "%%1";
        expected += hex32(0xA0 + static_cast<uint32_t>(i)).substr(8);
        std::ranges::transform(expected, expected.begin(), [](char c) {
            return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        });
        ASSERT_EQ(operand(codes, behind), (Decoded{expected, i + 3}));
    }
}

TEST_F(OperandsTest, BytesBehindTheEndOfTheImageAreZero) {
    EXPECT_EQ(operand("%%1", {}), (Decoded{"00", 3}));
    EXPECT_EQ(operand("%%2", {}), (Decoded{"0000", 4}));
    EXPECT_EQ(operand("%%2", {0x1A}), (Decoded{"1A00", 4}));
    EXPECT_EQ(operand("%%4", {0x1A, 0x2B, 0x3C}), (Decoded{"1A2B3C00", 6}));
    EXPECT_EQ(operand("%%4%%4", {0x1A}), (Decoded{"1A00000000000000", 10}));
    EXPECT_EQ(operand("%XD", {0x01}), (Decoded{"[X:0100]?", 4}));
    EXPECT_EQ(operand("%XD", {0x01, 0x30, 0x1A, 0x2B}), (Decoded{"[X:0130]1A2B0000", 8}));
    EXPECT_EQ(operand("%%R", {0x01}), (Decoded{"A0", 4}));
    EXPECT_EQ(operand("%%C", {0xF8}), (Decoded{"A7,USP (68010+)", 4}));
}

TEST_F(OperandsTest, AnOpcodeWordAtTheLastByteEndsWithZero) {
    const std::string table = onetemplate("%%0 %%2");
    EXPECT_EQ(decoded(table, {0x4E}), (Decoded{"4e00 0", 4}));
    EXPECT_EQ(decoded(table, {0x00, 0x4E, 0x71, 0x5C}, 0, 3), (Decoded{"5c00 0", 4}));
}

TEST_F(OperandsTest, AnInstructionMayBeginAtAnOddOffset) {
    const std::string table = onetemplate("%%0,%%2(PC)");
    EXPECT_EQ(decoded(table, {0x99, 0x4E, 0x71, 0x00, 0x10, 0x99}, 0xF80000, 1),
              (Decoded{"4e71,F80013(PC)", 4}));
}

class OperandBounds : public FreshTest {
protected:
    // The bounds, begun in the middle of all addresses, after an instruction.
    static std::pair<uint32_t, uint32_t> boundsof(const std::string& instruction, const Bytes& image,
                                                  const std::string& sections = "", uint32_t base = 0) {
        iMissMin = iMissMax = 0x00800000;
        iMissMinLimit = 0x10;
        iMissMaxLimit = 0xF0000000;
        static_cast<void>(decoded(onetemplate(instruction, sections), image, base));
        return {iMissMin, iMissMax};
    }

    using Bounds = std::pair<uint32_t, uint32_t>;
    static constexpr uint32_t iMiddle = 0x00800000;
};

TEST_F(OperandBounds, LongsReachThem) {
    for (const std::string code : {"%%4", "%%%", "%(s04)%%%"}) {
        const std::string section = "[s04]\n0=L\n";
        EXPECT_EQ(boundsof(code, {0, 0, 0x12, 0x34, 0x56, 0x78}, section), Bounds(iMiddle, 0x12345678))
            << code;
        EXPECT_EQ(boundsof(code, {0, 0, 0x00, 0x34, 0x56, 0x78}, section), Bounds(0x345678, iMiddle)) << code;
    }
    EXPECT_EQ(boundsof("%%4%%4", {0, 0, 0, 0x90, 0, 0, 0, 0x70, 0, 0}), Bounds(0x700000, 0x900000));
}

TEST_F(OperandBounds, NothingElseThatIsFetchedDoes) {
    const Bytes image = {0x01, 0x34, 0x41, 0x34, 0x01, 0x34, 0x56, 0x78};
    for (const std::string code : {"%%2", "%%1%%1", "%(s04)%%%", "%XD", "%XR", "%%R", "%%C", "%%c", "%%0"})
        EXPECT_EQ(boundsof(code, image, "[s04]\n0=W\n"), Bounds(iMiddle, iMiddle)) << code;
}

TEST_F(OperandBounds, TargetsReachThem) {
    EXPECT_EQ(boundsof("B %%2(pc)", {0, 0, 0x01, 0x00}), Bounds(0x102, iMiddle));
    EXPECT_EQ(boundsof("B %%2(PC)", {0, 0, 0x01, 0x00}), Bounds(0x102, iMiddle));
    EXPECT_EQ(boundsof("B %%2(PC)", {0, 0, 0x01, 0x00}, "", 0x00F80000), Bounds(iMiddle, 0xF80102));
    EXPECT_EQ(boundsof("B %%2(Pc)", {0, 0, 0x01, 0x00}), Bounds(iMiddle, iMiddle)) << "no marker";
    EXPECT_EQ(boundsof("B %%4(PC)", {0, 0, 0x00, 0x90, 0, 0}), Bounds(iMiddle, 0x900002))
        << "the long itself, then the target";
}

TEST_F(OperandBounds, TheLimitsThemselvesCount) {
    const auto address = [](uint32_t value) {
        Bytes image(6);
        setlong(image.data() + 2, value);
        return boundsof("%%4", image);
    };
    EXPECT_EQ(address(0x10), Bounds(0x10, iMiddle));
    EXPECT_EQ(address(0xF), Bounds(iMiddle, iMiddle));
    EXPECT_EQ(address(0xF0000000), Bounds(iMiddle, 0xF0000000));
    EXPECT_EQ(address(0xF0000001), Bounds(iMiddle, iMiddle));
}

TEST_F(OperandBounds, AnAddressThatRaisesTheUpperBoundLeavesTheLowerAlone) {
    const int32_t rom = romof({0, 0, 0, 0, 0x50, 0}, 0);
    InstructionTable table = tableof(onetemplate("%%4"));
    iMissMin = 0xFFFFFFFF;
    iMissMax = 0;
    iMissMinLimit = 0;
    iMissMaxLimit = 0xFFFFFFFF;
    static_cast<void>(decodedat(rom, 0, table));
    EXPECT_EQ(iMissMax, 0x5000U);
    EXPECT_EQ(iMissMin, 0xFFFFFFFFU);
    static_cast<void>(decodedat(rom, 0, table));
    EXPECT_EQ(iMissMin, 0x5000U) << "the second time it does not raise it";
}

} // namespace
} // namespace vantorel::test
