| The data block that stands first in a ROM of 512K.

        .set    rom_mark, 0x1114
        .set    rom_size, 512*1024
        .set    rom_colour, 0x0888      | grey

        .include "romheader.i"
