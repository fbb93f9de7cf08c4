#pragma once
// What the tests of component maps share.

#include "rom/romtest.h"

namespace vantorel::test {

using namespace std::string_literals;

class MapTest : public RomTest {
protected:
    // exec at 24, 1024 bytes long, its tag at 28.
    BuiltRom built =
        RomBuilder(8192, 0xF80000)
            .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
            .build();
    const BuiltModule& exec = built.modules[0];

    // Loads the ROM into a new slot with this hash file; what was said at `level`.
    std::string load(const std::string& hashfile, int32_t level = 1) {
        hashes.write(hex32(built.crc), hashfile);
        return loadknown(level);
    }

    std::string loadknown(int32_t level = 1) const {
        index();
        silently([] { newrom(0, 0); });
        return at(level, [&] { EXPECT_EQ(loadromdata(iMaxRom - 1, built.image), 0); });
    }

    // The same with this component map alone.
    std::string loadmap(const std::string& lines, int32_t level = 1) {
        return load("[Description]\nROMBase=0x00f80000\n[Components]\n" + lines, level);
    }

    // A map of exec alone, whose hash file has these lines behind its head.
    std::string loadrelocs(const std::string& lines, int32_t level = 1) {
        hashes.write("0x0badf00d", "[RELOC32]\n" + lines);
        return loadmap("exec.library=24,1024,Library:0x0badf00d\n", level);
    }
};

} // namespace vantorel::test
