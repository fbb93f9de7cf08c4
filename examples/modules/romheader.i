| The first bytes of a ROM and the code that the processor starts in, for both sizes of image. The file that
| includes this sets rom_mark (the first word), rom_size (bytes) and rom_colour (background while it starts).
|
| At reset the ROM also shows at address 0: the processor takes its stack pointer from the mark and the
| jump's opcode, which is nonsense, and its program counter from the jump's address.

        .include "structures.i"

        .set    stack_top, 0x00080000   | the end of the first 512K of RAM
        .set    settle, 0x00020000      | turns of the loop that lets the hardware come up

        .text
rom:
        .word   rom_mark
        jmp     (start).l
        .word   0x0000, 0xffff
        .word   1, 4                    | version and revision of the ROM
        .word   1, 4                    | and of its kernel
        .long   0xffffffff

title:  .ascii  "Vantorel toy ROM 1.4 (21.11.2026)\r\n\0"
        .ascii  "Copyright (c) 2026 the Vantorel developers\r\n"
        .ascii  "Free to copy, change and burn.\r\n\0"
        .balign 4,0

| Who wants to reboot comes here: all devices are reset as well.
reboot: reset

| The processor comes here, in supervisor mode, with everything but itself unknown.
start:  move.w  #0x2700,%sr
        move.l  #settle,%d0
1:      subq.l  #1,%d0
        bgt.s   1b

        | RAM must show at address 0 before anything is written there.
        move.b  #0x03,(ciaa_ddra).l
        move.b  #0x02,(ciaa_pra).l

        lea     (custom).l,%a4
        move.w  #0x7fff,%d0
        move.w  %d0,intena(%a4)
        move.w  %d0,intreq(%a4)
        move.w  %d0,dmacon(%a4)
        move.w  #rom_colour,color00(%a4)
        lea     (stack_top).l,%sp

        | Until somebody knows better every exception, from the bus error to the last trap, halts.
        lea     (stray).l,%a1
        movea.w #0x0008,%a0
        moveq   #(0x00c0-0x0008)/4-1,%d0
2:      move.l  %a1,(%a0)+
        dbra    %d0,2b

        bsr.s   findkernel
        tst.l   %d0
        beq.s   nokernel

        | The kernel is told where its ROM lies and does not come back.
        movea.l %d0,%a2
        movea.l rt_init(%a2),%a2
        lea     rom(%pc),%a0
        movea.l %a0,%a1
        adda.l  #rom_size,%a1
        jmp     (%a2)

| Looks for the kernel's tag: the match word, a pointer to itself, the right name.
|   out  d0 tag or 0
findkernel:
        lea     rom(%pc),%a0
        move.l  #rom_size/2-rt_size/2,%d0
        | The match word itself must not stand here, or a scan would stop at this very place.
        move.w  #0x4afb,%d1
        addq.w  #1,%d1
1:      cmp.w   (%a0)+,%d1
        beq.s   3f
2:      subq.l  #1,%d0
        bne.s   1b
        rts
3:      lea     -2(%a0),%a1
        cmpa.l  rt_matchtag(%a1),%a1
        bne.s   2b
        movea.l rt_name(%a1),%a2
        movea.l kernelname(%pc),%a3
4:      cmpm.b  (%a2)+,(%a3)+
        bne.s   2b
        tst.b   -1(%a2)
        bne.s   4b
        move.l  %a1,%d0
        rts

nokernel:
        move.w  #0x0f00,%d0             | red
        bra.s   halt
stray:  move.w  #0x0ff0,%d0             | yellow
halt:   move.w  %d0,(custom+color00).l
1:      stop    #0x2700
        bra.s   1b

        .balign 4,0
| Pointers for whoever looks at the ROM from outside, and one for the search above.
        .long   reboot
        .long   title
kernelname:
        .long   1f
1:      .asciz  "kernel.library"
        .balign 4,0
