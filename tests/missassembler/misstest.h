#pragma once
// The fixture for tests of the missassembler: tables made of texts, ROMs made of bytes, and what is decoded.

#include "missassembler/bounds.h"
#include "missassembler/decode.h"
#include "rom/romtest.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace vantorel::test {

/// The table that a "missassemble.ini" with this text makes.
inline InstructionTable tableof(std::string_view text) {
    return InstructionTable(MnemonicTable(parseini(std::vector<char>(text.begin(), text.end()))));
}

/// Makes the table of this text the one that listings and searches find loaded.
inline void installtable(std::string_view text) { sMnemonic = tableof(text); }

/// A new slot that holds `image` at CPU address `base`; gives its number.
inline int32_t romof(Bytes image, uint32_t base) {
    int32_t rom = -1;
    silently([&] { rom = newrom(0, 0); });
    KickstartRom& slot = slotat(rom);
    slot.pcROM = std::move(image);
    slot.iUsed = slot.iSize();
    slot.iROMBase = base;
    return rom;
}

/// An instruction as text, and how many bytes it takes.
struct Decoded {
    std::string text{};
    int32_t length = 0;
    friend bool operator==(const Decoded&, const Decoded&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Decoded& decoded) {
        return stream << '"' << decoded.text << "\", " << decoded.length << " bytes";
    }
};

/// The instruction at `offset` of slot `rom`, at the present verbosity.
inline Decoded decodedat(int32_t rom, int32_t offset, InstructionTable& table) {
    MissText text;
    text.fill('!');
    const int32_t length = missassembleA(rom, offset, text, table);
    return {text.data(), length};
}

/// A table in which every opcode word has this template. `sections` is what follows in the file.
inline std::string onetemplate(const std::string& instruction, const std::string& sections = "") {
    return "[mnemonics]\n" + std::string(16, '?') + "=" + instruction + "\n" + sections;
}

/// The instruction at `offset` of `image`, which becomes the only ROM, spelt as a "missassemble.ini" with the
/// text `table` says. It must be the same with traces and without.
inline Decoded decoded(std::string_view table, const Bytes& image, uint32_t base = kBase,
                       int32_t offset = 0) {
    silently([] { freeroms(); });
    const int32_t rom = romof(image, base);
    InstructionTable instructions = tableof(table);
    const Decoded plain = decodedat(rom, offset, instructions);
    Decoded traced;
    static_cast<void>(at(10, [&] { traced = decodedat(rom, offset, instructions); }));
    EXPECT_EQ(plain, traced) << "with traces";
    return plain;
}

} // namespace vantorel::test
