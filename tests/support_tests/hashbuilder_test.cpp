#include "support/hashbuilder.h"

#include "support/checksums.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

BuiltRom hashedrom() {
    RomBuilder rom(65536, 0xFC0000);
    rom.module({.name = "one.library", .idstring = "one 1.0 (1/1/93)\r\n", .size = 512, .calls = 0});
    return rom.data({.name = "font", .size = 64}).build();
}

TEST(HashBuilder, WritesARomHashFile) {
    const BuiltRom rom = hashedrom();
    const std::string one = rom.module("one.library").hash();
    const std::string font = rom.module("font").hash();
    const std::string sum = hex32(iUINT32(rom.image.data() + 65536 - 24));
    EXPECT_EQ(
        romhash(rom, {.title = "A title", .text = "A text"}),
        "[Description]\nTitle=A title\nText=A text\nRomBase=0x00fc0000\nFileType=Kickstart\n\n[Components]\n"
        "ROMHeader=0,24,ROMHeader:ROMHeader\n"
        "one.library=24,512,Library:" +
            one +
            "\n"
            "font=536,64,Data:" +
            font +
            "\n"
            "Checksum=65512,4,Checksum:" +
            sum +
            "\n"
            "Size=65516,4,Size:0x00010000\n"
            "Vectors=65520,16,Vectors:0x00180019001a001b001c001d001e001f\n");
}

TEST(HashBuilder, WritesAComponentHashFile) {
    EXPECT_EQ(componenthash(hashedrom().module("one.library")),
              "[Description]\nTitle=one 1.0 (1/1/93)\nText=one.library\nSize=512\nROMTAG=4\nRELOCS=5\n"
              "FileType=Loadable Library\n\n[Display]\nColour=0x555555\nIcon=153\n\n[RELOC32]\n"
              "RELOC=6         \nRELOC=10        \nRELOC=18        \nRELOC=22        \nRELOC=26        \n");
}

TEST(HashBuilder, NamesFilesAfterTheirCrcs) {
    TempDir dir;
    const BuiltRom rom = hashedrom();
    const HashBuilder hashes(dir.file("a/b"));
    EXPECT_EQ(hashes.add(rom), hex32(rom.crc));
    const BuiltModule& module = rom.module("one.library");
    EXPECT_EQ(module.hash(), hex32(crc32of(module.loadable)) + ".one_1.0_(1_1_93)");
    EXPECT_TRUE(dir.exists("a/b/" + hex32(rom.crc)));
    EXPECT_EQ(dir.text("a/b/" + module.hash()), componenthash(module));
    EXPECT_FALSE(dir.exists("a/b/" + rom.module("font").hash()));
}

TEST(HashBuilder, WritesAContainerHashFile) {
    TempDir dir;
    const Bytes file(16, 1);
    const std::string name = HashBuilder(dir.path())
                                 .container(file, {.title = "T",
                                                   .text = "",
                                                   .filetype = "SuperKickstart",
                                                   .format = "CD32Encoded",
                                                   .ranges = {{"Kickstart1", 0, 8}, {"Bonus1", 8, 8}}});
    EXPECT_EQ(name, hex32(crc32of(file)));
    EXPECT_EQ(dir.text(name), "[Description]\nTitle=T\nText=\nFormat=CD32Encoded\nFileType=SuperKickstart\n\n"
                              "[Components]\nKickstart1=0,8\nBonus1=8,8\n");
}

} // namespace
} // namespace vantorel::test
