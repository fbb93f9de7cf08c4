// Tables and bytes at random. What is decoded with traces, what is decoded without, and what a plain second
// decoder makes of it must be the same.

#include "missassembler/misstest.h"
#include "missassembler/plaindecoder.h"
#include "support/noise.h"

#include <algorithm>
#include <array>
#include <map>

namespace vantorel::test {
namespace {

// The sections that there may be: field and letter of each.
constexpr std::array<const char*, 8> sSectionNames = {"s82", "s04", "eA6", "eD3", "x03", "d44", "r00", "sF1"};

class TableMaker {
public:
    explicit TableMaker(uint32_t seed) : noise(seed) {}

    PlainTable table() {
        PlainTable made;
        for (uint32_t i = 0, count = noise() % 5; i < count; ++i)
            made.lines.emplace_back(pattern(), words());
        if (noise() % 8 != 0) made.lines.emplace_back(std::string(16, '?'), words());
        for (const char* name : sSectionNames)
            if (noise() % 4 != 0) made.sections[name] = items();
        return made;
    }

    // Bytes with many zeros and ones, so that lists are empty and extension words are full.
    Bytes image() {
        Bytes bytes(30 + noise() % 30);
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(noise() % 3 == 0 ? oneof<uint8_t>({0, 0, 1, 0x30, 0xFF}) : noise());
        return bytes;
    }

    uint32_t base() { return oneof<uint32_t>({0, 0xF80000, 0x12F80000, 0xFFFFFFF0}); }

private:
    template <typename Value>
    Value oneof(const std::vector<Value>& values) {
        return values[noise() % values.size()];
    }

    std::string pattern() {
        std::string bits(16, '?');
        for (uint32_t i = noise() % 4; i > 0; --i)
            bits[noise() % 16] = "01x"[noise() % 3];
        return bits;
    }

    std::map<int, std::string> items() {
        std::map<int, std::string> made;
        const bool isloop = noise() % 8 == 0;
        for (int key = 0; key < 64; ++key)
            if (noise() % 8 != 0) made[key] = isloop ? words() : value();
        return made;
    }

    // Mostly short, so that not every text runs into the cut.
    std::string value() {
        switch (noise() % 8) {
        case 0:
            return words();
        case 1:
            return "-(A" + std::to_string(key() % 8) + ")";
        case 2:
            return oneof<std::string>({"B", "W", "L", "b", "w", "l"});
        case 3:
            return piece() + fixed();
        default:
            return noise() % 2 == 0 ? fixed() : operand();
        }
    }

    std::string words() {
        std::string made = noise() % 2 == 0 ? "OP " : "";
        for (uint32_t i = noise() % 7; i > 0; --i)
            made += piece();
        if (noise() % 6 == 0) made.insert(noise() % (made.size() + 1), std::string(noise() % 250, 'x'));
        return made;
    }

    std::string piece() {
        switch (noise() % 9) {
        case 0:
        case 1:
            return fixed();
        case 2:
            return std::string("%") + digit() + digit();
        case 3:
        case 4:
            return "%(" + name() + (noise() % 4 == 0 ? fixed() : ")");
        case 5:
            return part();
        case 6:
            return oneof<std::string>(
                {"%%2(PC)", "%%2(pc)", "%88(pc)", "%XD(PC,%XR)", "%%R,%(eA6)", ",%%4(PC)"});
        default:
            return operand();
        }
    }

    std::string operand() {
        return oneof<std::string>({"%XR", "%XD", "%XQ", "%%%", "%%0", "%%1", "%%1", "%%2", "%%2", "%%4",
                                   "%%C", "%%c", "%%R", "%%R", "%%r", "%%r", "%%z"});
    }

    // Halves of codes and markers, which make whole ones beside each other or beside what is fetched.
    std::string part() {
        return oneof<std::string>({"%",       "%%", "%X",   "%(",  "%(s",     "%(d4",    "%(d44",
                                   "(P",      "C)", "(p",   "c)",  "(P%%RC)", "(%%rPC)", "(p%%Rc)",
                                   "%%R%%%1", "%4", "%(eA", "44)", "4)",      ")"});
    }

    std::string fixed() {
        return oneof<std::string>({" ",    ",",    "$", "#", "0", "00", "00A", "F", "7",  "8",  "fe",
                                   "(PC)", "(pc)", "(", ")", "-", "A0", "x",   ";", "#$", " 0", ",$00"});
    }

    std::string name() {
        if (noise() % 8 != 0) return sSectionNames[noise() % sSectionNames.size()];
        return std::string(1, "sedx"[noise() % 4]) + digit() + digit();
    }

    char digit() { return "0123456789ABCDEFabcdef8) G"[noise() % 26]; }

    uint32_t key() { return noise(); }

    Noise noise;
};

// What a decoder made of an instruction, and the bounds that it left.
struct Outcome {
    Decoded decoded;
    uint32_t lowest;
    uint32_t highest;
    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
        return stream << outcome.decoded << ", bounds " << outcome.lowest << " to " << outcome.highest;
    }
};

// In the middle of all addresses, so that every address shows.
void beginbounds() {
    iMissMin = iMissMax = 0x00800000;
    iMissMinLimit = 0;
    iMissMaxLimit = 0xFFFFFFFF;
}

std::vector<Outcome> decodeall(InstructionTable& table, int32_t verbosity) {
    std::vector<Outcome> all;
    static_cast<void>(at(verbosity, [&] {
        for (int32_t offset = 0; offset < slotat(0).iSize(); ++offset) {
            beginbounds();
            const Decoded text = decodedat(0, offset, table);
            all.push_back({text, iMissMin, iMissMax});
        }
    }));
    return all;
}

std::vector<Outcome> decodeplainly(const PlainTable& table) {
    const KickstartRom& slot = slotat(0);
    PlainDecoder decoder(table, slot.pcROM, slot.iROMBase);
    std::vector<Outcome> all;
    for (int32_t offset = 0; offset < slot.iSize(); ++offset) {
        Outcome outcome = {decoder.decode(offset), 0x00800000, 0x00800000};
        for (const uint32_t address : decoder.addresses()) {
            outcome.lowest = std::min(outcome.lowest, address);
            outcome.highest = std::max(outcome.highest, address);
        }
        all.push_back(outcome);
    }
    return all;
}

// How many instructions came to what the generator is to reach.
struct Reached {
    int total = 0;
    int byitself = 0; // expanded anew for each instruction
    int kept = 0;     // expanded once for its opcode word
    int cut = 0;      // as long as a text can be
    int endless = 0;  // a code left
    int unknown = 0;
    int targets = 0;
    int lists = 0;

    void count(const Outcome& outcome, const Expansion* expansion) {
        const std::string& text = outcome.decoded.text;
        ++total;
        ++(expansion == nullptr ? byitself : kept);
        if (text.size() == iMissTextMost) ++cut;
        if (has(text, "%")) ++endless;
        if (text == "(unknown 0") ++unknown;
        if (expansion != nullptr && expansion->hasmarker) ++targets;
        if (has(text, "D0/") || has(text, "D0-")) ++lists;
    }
};

class DecodeNoise : public FreshTest {
protected:
    // Checks one table on one image.
    static void check(uint32_t seed, Reached& reached) {
        TableMaker maker(seed);
        const PlainTable plain = maker.table();
        silently([] { freeroms(); });
        Bytes image = maker.image();
        romof(image, maker.base());
        InstructionTable table = tableof(plain.text());
        const std::vector<Outcome> expected = decodeplainly(plain);
        const std::vector<Outcome> untraced = decodeall(table, 1);
        const std::vector<Outcome> again = decodeall(table, 1);
        const std::vector<Outcome> traced = decodeall(table, 10);
        for (size_t i = 0; i < expected.size(); ++i) {
            const std::string place = "seed " + std::to_string(seed) + ", offset " + std::to_string(i) + "\n";
            ASSERT_EQ(untraced[i], traced[i]) << "with traces; " << place << plain.text();
            ASSERT_EQ(untraced[i], expected[i]) << place << plain.text();
            ASSERT_EQ(again[i], expected[i]) << "the second time; " << place << plain.text();
            const uint32_t low = i + 1 < image.size() ? image[i + 1] : 0U;
            reached.count(expected[i], table.expansion(static_cast<uint16_t>(image[i] * 256U + low)));
        }
    }
};

TEST_F(DecodeNoise, TracedUntracedAndPlainAgree) {
    Reached reached;
    for (uint32_t seed = 1; seed <= 2000 && !HasFatalFailure(); ++seed)
        check(seed, reached);
    if (HasFatalFailure()) return;
    EXPECT_GT(reached.byitself, 1000);
    EXPECT_GT(reached.kept, 50000);
    EXPECT_GT(reached.cut, 500);
    EXPECT_GT(reached.endless, 200);
    EXPECT_GT(reached.unknown, 3000);
    EXPECT_GT(reached.targets, 5000);
    EXPECT_GT(reached.lists, 1000);
}

} // namespace
} // namespace vantorel::test
