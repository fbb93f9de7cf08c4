#include "support/rombuilder.h"

namespace vantorel::test {

namespace {

constexpr int32_t iSmallRom = 256 * 1024;

uint32_t usualbase(int32_t size) {
    if (size <= iSmallRom) return 0xFC0000;
    return size <= 2 * iSmallRom ? 0xF80000 : 0xF00000;
}

void addlower(RomBuilder& rom) {
    rom.module({.name = "exec.library",
                .idstring = "exec 40.10 (15.7.93)\r\n",
                .size = 12288,
                .tag = 170,
                .priority = 105,
                .calls = 24});
    rom.module({.name = "expansion.library",
                .idstring = "expansion 40.2 (3.3.93)\r\n",
                .size = 4096,
                .flags = iColdStart | iSingleTask,
                .priority = 110,
                .init = Init::Auto32,
                .functions = 12,
                .initstruct = libraryinit(),
                .pointers = {{.module = "exec.library", .offset = 512}}});
    rom.module({.name = "utility.library",
                .idstring = "utility 40.1 (8.2.93)\r\n",
                .size = 2852,
                .tag = 0,
                .priority = 103,
                .init = Init::Auto16,
                .functions = 20,
                .initstruct = libraryinit()});
    rom.data({.name = "font", .size = 1024});
}

void addlargest(RomBuilder& rom, int32_t size) {
    rom.module({.name = "graphics.library",
                .idstring = "graphics 40.24 (18.5.93)\r\n",
                .size = size > iSmallRom ? 90112 : 40960,
                .priority = 65,
                .init = Init::Auto32,
                .functions = 60,
                .initstruct = libraryinit(),
                .calls = 160,
                .pointers = {{.module = "exec.library", .offset = 4}, {.module = "font", .offset = 0}}});
    rom.gap(48);
    rom.module({.name = "keymap.library",
                .idstring = "keymap 40.4 (16.2.93)\r\n",
                .size = 3072,
                .tag = 6,
                .priority = 40,
                .init = Init::Auto16,
                .datasize = 0x22,
                .functions = 7});
}

void addupper(RomBuilder& rom, int32_t start) {
    rom.module({.name = "trackdisk.device",
                .idstring = "trackdisk 40.1 (9.2.93)\r\n",
                .size = 8192,
                .start = start,
                .type = 3,
                .priority = 20,
                .init = Init::Auto16,
                .initstruct = libraryinit(),
                .pointers = {{.module = "exec.library", .offset = 2048}}});
    rom.module({.name = "potgo.resource",
                .idstring = "potgo 37.4 (28.1.91)\r\n",
                .size = 0,
                .version = 37,
                .type = 8,
                .priority = 100,
                .calls = 2});
    rom.module({.name = "dos.library",
                .idstring = "dos 40.3 (1.4.93)\r\n",
                .size = 24576,
                .flags = 0,
                .priority = -120,
                .calls = 40,
                .pointers = {{.module = "utility.library", .offset = 60},
                             {.module = "trackdisk.device", .offset = 4}}});
}

} // namespace

RomBuilder standardbuilder(int32_t size, uint32_t base) {
    RomBuilder rom(size, base != 0 ? base : usualbase(size));
    if (size > iSmallRom) rom.split();
    addlower(rom);
    addlargest(rom, size);
    addupper(rom, size > iSmallRom ? iSplitOffset + iSplitSize : iNone);
    return rom;
}

BuiltRom standardrom(int32_t size, uint32_t base) { return standardbuilder(size, base).build(); }

} // namespace vantorel::test
