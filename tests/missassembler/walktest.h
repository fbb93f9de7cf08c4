#pragma once
// The fixture for walks over components: a component of given bytes in the middle of an image, and a small
// mnemonic table of its own.

#include "component/slotstate.h"
#include "missassembler/labels.h"
#include "missassembler/listing.h"
#include "missassembler/missassemblelibrary.h"
#include "missassembler/misstest.h"
#include "missassembler/walk.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::test {

/// A section of conditions that begins so.
inline std::string conditions(const std::string& firsttwo) {
    std::string section = firsttwo;
    int32_t number = 2;
    for (const char* name :
         {"HI", "LS", "CC", "CS", "NE", "EQ", "VC", "VS", "PL", "MI", "GE", "LT", "GT", "LE"})
        section += std::to_string(number++) + "=" + name + "\n";
    return section;
}

/// Every class of instruction that a walk tells apart. Some are no instructions of any processor.
inline const std::string cWalkTable = R"([mnemonics]
0100111001110001=NOP
0100111001110000=RTN
0100111001110011=RTE
0100111001110100=RTD #$%%2
0100111001110101=RTS
0100111001110111=RTR
0100111011111001=JMP %%4
0100111011111010=JMP %%2(PC)
0100111011010???=JMP (A%D3)
0100111010111001=JSR %%4
0100111010111010=JSR %%2(PC)
0100111010010???=JSR (A%D3)
0110????00000000=B%(b44) %%2(pc)
0110????????????=B%(b44) %88(pc)
0101????11001???=DB%(c44) D%D3,$%%2(PC)
0101????11111???=DB%(c44) D%D3,$%%2
0111???0????????=MOVEQ #$%88,D%43
1111111111110000=rts
1111111111110001=bra %%4
)" + conditions("[b44]\n0=RA\n1=SR\n") +
                                      conditions("[c44]\n0=T\n1=F\n");

/// The words one behind the other.
inline Bytes words(std::initializer_list<uint32_t> values) {
    Bytes bytes;
    for (const uint32_t value : values)
        appendword(bytes, value);
    return bytes;
}

inline void setbytes(Bytes& bytes, int32_t offset, View what) {
    ASSERT_TRUE(isinside(bytes, offset, std::ssize(what)));
    std::ranges::copy(what, bytes.begin() + offset);
}

inline void setwords(Bytes& bytes, int32_t offset, std::initializer_list<uint32_t> values) {
    setbytes(bytes, offset, words(values));
}

inline void setlongs(Bytes& bytes, int32_t offset, std::initializer_list<uint32_t> values) {
    for (const uint32_t value : values) {
        ASSERT_TRUE(putlong(bytes, offset, value));
        offset += 4;
    }
}

/// Records or printed lines, one after the other.
using Lines = std::vector<std::string>;

inline Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/// Where the component of a `WalkTest` lies.
inline constexpr int32_t cWalkStart = 64;
inline constexpr uint32_t cWalkAddress = kBase + cWalkStart;

/// Slot 0, an image for `kBase`: component 0 of 64 bytes, component 1 of `bytes`, component 2 of 64 bytes
/// again. What surrounds component 1 is 0xEE.
inline void makecomponent(const Bytes& bytes) {
    const auto size = static_cast<int32_t>(bytes.size());
    const int32_t end = cWalkStart + size;
    const int32_t rom = slotwith(end + 64, {{0, cWalkStart}, {cWalkStart, size}, {end, 64}}, kBase);
    setbytes(slotat(rom).pcROM, cWalkStart, bytes);
    slotat(rom).iCRC32 = 0x1234ABCD;
    componentat(rom, 1).pcLibString = "test 1.0 (1.1.24)";
}

/// A row of a dump: `bytes` are its address and bytes, `characters` begin in column 58.
inline std::string hexrow(const std::string& bytes, const std::string& characters) {
    return bytes + std::string(58 - bytes.size(), ' ') + characters + "\n";
}

/// The records of the walk, each as "position type repeat text"; "-" for no type.
inline Lines records() {
    Lines lines;
    for (const MissLabel& record : psLabels) {
        const char type = record.cType == MissType::cNone ? '-' : record.cType;
        lines.push_back(std::to_string(record.iPosition) + " " + type + " " + std::to_string(record.iRepeat) +
                        " " + record.pcLabel);
    }
    return lines;
}

/// The record at `position` whose text begins with `prefix`, as in `records`; empty when there is none.
inline std::string recordat(int32_t position, std::string_view prefix = "") {
    for (const MissLabel& record : psLabels)
        if (record.iPosition == position && record.pcLabel.starts_with(prefix))
            return std::string(1, record.cType == MissType::cNone ? '-' : record.cType) + " " +
                   record.pcLabel;
    return "";
}

/// The marks, a character for each byte; "." for what was not reached.
inline std::string marksof(const Walk& walk) {
    std::string text;
    for (const char mark : walk.marks)
        text += mark == Walk::NotReached ? '.' : mark;
    return text;
}

class WalkTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        installtable(cWalkTable);
    }

    /// Walks component 1 of slot 0 and gives the console at verbosity `level`.
    std::string walked(int32_t level = 1) const {
        const InDirectory there(dir);
        return at(level, [] { missassembleLibrary(0, 1); });
    }

    /// What the walk left in its file.
    [[nodiscard]] std::string listing() const { return dir.text(cListingFile); }

    /// Gives component 1 a hash file of this text.
    void hashfile(const std::string& text) const {
        static_cast<void>(hashes.write("0x5eed0001.test", text));
        componentat(0, 1).pcHash = "0x5eed0001.test";
        index();
    }

    /// Makes `text` the hints for ROMs.
    void romhints(const std::string& text) const {
        static_cast<void>(hashes.write("misshints.ini", text));
        index();
    }
};

} // namespace vantorel::test
