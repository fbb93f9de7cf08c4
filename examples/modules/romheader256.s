| The data block that stands first in a ROM of 256K. A 512K image made of two halves has it in the middle too.

        .set    rom_mark, 0x1111
        .set    rom_size, 256*1024
        .set    rom_colour, 0x0444      | dark grey

        .include "romheader.i"
