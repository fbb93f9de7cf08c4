| tables.library: what is quicker looked up than computed, and the small sums around it: sines, checksums,
| dates, numbers as text, bits in reverse.
|
| Functions may change d0, d1, a0 and a1; everything else they leave as it was.

        .include "structures.i"

        .set    version, 2
        .set    revision, 1

        .set    tb_kernel, lib_size+2   | the base, behind the part that every library has
        .set    tb_size, tb_kernel+4

        .text
tag:    .word   0x4afc
        .long   tag
        .long   end
        .byte   rtf_autoinit+rtf_coldstart
        .byte   version
        .byte   nt_library
        .byte   40
        .long   name
        .long   idstring
        .long   autoinit

autoinit:
        .long   tb_size
        .long   vectors
        .long   values
        .long   init

vectors:
        .long   open
        .long   close
        .long   expunge
        .long   reserved
        .long   sine
        .long   cosine
        .long   squareroot
        .long   divide
        .long   crc32
        .long   isleap
        .long   monthdays
        .long   weekday
        .long   monthname
        .long   dayname
        .long   lettername
        .long   formathex
        .long   formatdecimal
        .long   formatroman
        .long   formatdate
        .long   parsedecimal
        .long   reversebits
        .long   reversebytes
        .long   -1

values: .word   init_byte, ln_type
        .byte   nt_library, 0
        .word   init_long, ln_name
        .long   name
        .word   init_byte, lib_flags
        .byte   libf_changed+libf_sumused, 0
        .word   init_word, lib_version, version
        .word   init_word, lib_revision, revision
        .word   init_long, lib_idstring
        .long   idstring
        .word   0

name:   .asciz  "tables.library"
idstring:
        .ascii  "tables 2.1 (21.11.2026)\r\n\0"
        .balign 2,0

| ---------------------------------------------------------------------------------------------------------
| The library itself

|   in   d0 base, a6 kernel's base; out  d0 base
init:   movea.l %d0,%a0
        move.l  %a6,tb_kernel(%a0)
        rts

open:   addq.w  #1,lib_opencnt(%a6)
        move.l  %a6,%d0
        rts

close:  subq.w  #1,lib_opencnt(%a6)
expunge:
reserved:
        moveq   #0,%d0                  | what stands in a ROM cannot be thrown out
        rts

| ---------------------------------------------------------------------------------------------------------
| Sums

|   in   d0 degrees, a word; out  d0 cosine times 32767
cosine: ext.l   %d0
        addi.l  #90,%d0
        bra.s   turn

|   in   d0 degrees, a word; out  d0 sine times 32767
sine:   ext.l   %d0
turn:   divs.w  #360,%d0
        swap    %d0                     | the remainder, with the sign of the angle
        tst.w   %d0
        bpl.s   1f
        addi.w  #360,%d0
1:      moveq   #0,%d1
        cmpi.w  #180,%d0
        bcs.s   2f
        subi.w  #180,%d0
        moveq   #1,%d1                  | the lower half turn mirrors the upper one
2:      cmpi.w  #90,%d0
        bls.s   3f
        neg.w   %d0
        addi.w  #180,%d0
3:      add.w   %d0,%d0
        lea     (sines).l,%a0
        move.w  (%a0,%d0.w),%d0
        ext.l   %d0
        tst.w   %d1
        beq.s   4f
        neg.l   %d0
4:      rts

|   in   d0 unsigned long; out  d0 its square root, rounded down
squareroot:
        movem.l %d2-%d3,-(%sp)
        moveq   #0,%d1                  | the root so far
        move.l  #0x40000000,%d2         | the power of 4 that is tried
1:      move.l  %d1,%d3
        add.l   %d2,%d3
        lsr.l   #1,%d1
        cmp.l   %d3,%d0
        bcs.s   2f
        sub.l   %d3,%d0
        add.l   %d2,%d1
2:      lsr.l   #2,%d2
        bne.s   1b
        move.l  %d1,%d0
        movem.l (%sp)+,%d2-%d3
        rts

| The processor's own division gives up when the quotient has more than 16 bits; this one takes two steps.
|   in   d0 unsigned long, d1 unsigned word, not 0; out  d0 quotient, d1 remainder
divide: move.l  %d2,-(%sp)
        moveq   #0,%d2
        swap    %d0
        move.w  %d0,%d2
        divu.w  %d1,%d2
        move.w  %d2,%d0
        swap    %d0
        move.w  %d0,%d2
        divu.w  %d1,%d2
        move.w  %d2,%d0
        clr.w   %d2
        swap    %d2
        move.l  %d2,%d1
        move.l  (%sp)+,%d2
        rts

| The checksum that names ROM images, four bits at a time.
|   in   a0 bytes, d0 their number, d1 0 or the checksum of what stands before; out  d0 checksum
crc32:  movem.l %d2-%d3/%a2,-(%sp)
        lea     (nibbles).l,%a2
        not.l   %d1
        tst.l   %d0
        beq.s   2f
1:      move.b  (%a0)+,%d2
        eor.b   %d2,%d1
        bsr.s   nibble
        bsr.s   nibble
        subq.l  #1,%d0
        bne.s   1b
2:      not.l   %d1
        move.l  %d1,%d0
        movem.l (%sp)+,%d2-%d3/%a2
        rts

nibble: moveq   #15,%d2
        and.w   %d1,%d2
        add.w   %d2,%d2
        add.w   %d2,%d2
        lsr.l   #4,%d1
        move.l  (%a2,%d2.w),%d3
        eor.l   %d3,%d1
        rts

| An adapter may lead the data lines of an EPROM the wrong way round.
|   in   d0 byte; out  d0 the same with bit 0 where bit 7 was, and so on
reversebits:
        andi.l  #0xff,%d0
        lea     (reversed).l,%a0
        move.b  (%a0,%d0.w),%d0
        rts

|   in   a0 bytes to reverse the bits of, d0 their number
reversebytes:
        move.l  %d0,%d1
        movea.l %a0,%a1
1:      tst.l   %d1
        beq.s   2f
        move.b  (%a1),%d0
        bsr.s   reversebits
        move.b  %d0,(%a1)+
        subq.l  #1,%d1
        bra.s   1b
2:      rts

| ---------------------------------------------------------------------------------------------------------
| Dates

|   in   d0 year; out  d0 -1 when it is a leap year, else 0
isleap: movem.l %d2-%d3,-(%sp)
        move.l  %d0,%d2
        moveq   #0,%d3
        andi.w  #3,%d0
        bne.s   1f
        moveq   #-1,%d3
        move.l  %d2,%d0
        moveq   #100,%d1
        bsr.w   divide
        tst.w   %d1
        bne.s   1f
        andi.w  #3,%d0                  | of the whole centuries only every fourth
        beq.s   1f
        moveq   #0,%d3
1:      move.l  %d3,%d0
        movem.l (%sp)+,%d2-%d3
        rts

|   in   d0 year, d1 month, 1 to 12; out  d0 its days
monthdays:
        move.l  %d2,-(%sp)
        moveq   #0,%d2
        lea     daysofmonths(%pc),%a0
        move.b  -1(%a0,%d1.w),%d2
        cmpi.w  #2,%d1
        bne.s   1f
        jsr     (isleap).l
        sub.l   %d0,%d2
1:      move.l  %d2,%d0
        move.l  (%sp)+,%d2
        rts

| January and February are counted as the last months of the year before, so that a leap day comes last.
|   in   d0 year, d1 month, d2 day; out  d0 0 for a Sunday to 6 for a Saturday
weekday:
        movem.l %d2-%d4,-(%sp)
        lea     shifts(%pc),%a0
        moveq   #0,%d3
        move.b  -1(%a0,%d1.w),%d3
        add.w   %d2,%d3
        cmpi.w  #3,%d1
        bcc.s   1f
        subq.l  #1,%d0
1:      move.l  %d0,%d4
        add.l   %d0,%d3
        lsr.l   #2,%d0
        add.l   %d0,%d3                 | a leap year every 4 years,
        move.l  %d4,%d0
        moveq   #100,%d1
        bsr.w   divide
        sub.l   %d0,%d3                 | but none every 100,
        lsr.l   #2,%d0
        add.l   %d0,%d3                 | yet one every 400
        move.l  %d3,%d0
        moveq   #7,%d1
        bsr.w   divide
        move.l  %d1,%d0
        movem.l (%sp)+,%d2-%d4
        rts

|   in   d0 month, 1 to 12; out  d0 its name
monthname:
        subq.l  #1,%d0
        moveq   #12,%d1
        lea     (monthnames).l,%a0
        bra.s   pick

|   in   d0 day, 0 to 6; out  d0 its name
dayname:
        moveq   #7,%d1
        lea     (daynames).l,%a0
        bra.s   pick

| For spelling a hash over the telephone.
|   in   d0 capital letter; out  d0 its name
lettername:
        subi.l  #'A',%d0
        moveq   #26,%d1
        lea     (letternames).l,%a0

|   in   a0 table of d1 texts, d0 number; out  d0 the text
pick:   cmp.l   %d1,%d0
        bcc.s   1f
        add.w   %d0,%d0
        add.w   %d0,%d0
        move.l  (%a0,%d0.w),%d0
        rts
1:      move.l  #unknown,%d0
        rts

| ---------------------------------------------------------------------------------------------------------
| Numbers as text. Each of these ends what it writes with a 0 and returns its place, so that more can follow.

|   in   d0 number, d1 digits, a0 buffer; out  d0 behind the last digit
formathex:
        movem.l %d2-%d3,-(%sp)
        movea.l %a0,%a1
        adda.w  %d1,%a1
        clr.b   (%a1)
        move.l  %a1,%d3
        lea     hexdigits(%pc),%a0
        bra.s   2f
1:      moveq   #15,%d2
        and.w   %d0,%d2
        move.b  (%a0,%d2.w),-(%a1)
        lsr.l   #4,%d0
2:      dbra    %d1,1b
        move.l  %d3,%d0
        movem.l (%sp)+,%d2-%d3
        rts

|   in   d0 unsigned long, a0 buffer; out  d0 behind the last digit
formatdecimal:
        move.l  %d2,-(%sp)
        moveq   #0,%d2
1:      moveq   #10,%d1
        jsr     (divide).l
        addi.b  #'0',%d1
        move.b  %d1,-(%sp)              | the last digit comes first
        addq.w  #1,%d2
        tst.l   %d0
        bne.s   1b
2:      move.b  (%sp)+,(%a0)+
        subq.w  #1,%d2
        bne.s   2b
        clr.b   (%a0)
        move.l  %a0,%d0
        move.l  (%sp)+,%d2
        rts

|   in   d0 1 to 3999, a0 buffer; out  d0 behind the last letter
formatroman:
        movem.l %a2-%a3,-(%sp)
        lea     romanvalues(%pc),%a1
        lea     (romantexts).l,%a2
1:      move.w  (%a1)+,%d1
        beq.s   4f
        movea.l (%a2)+,%a3
2:      cmp.w   %d1,%d0
        bcs.s   1b
        sub.w   %d1,%d0
        move.l  %a3,-(%sp)
3:      move.b  (%a3)+,(%a0)+
        bne.s   3b
        subq.l  #1,%a0
        movea.l (%sp)+,%a3
        bra.s   2b
4:      clr.b   (%a0)
        move.l  %a0,%d0
        movem.l (%sp)+,%a2-%a3
        rts

|   in   d0 year, d1 month, d2 day, a0 buffer; out  d0 behind the text
formatdate:
        movem.l %d2-%d4/%a2,-(%sp)
        move.l  %d0,%d3
        move.l  %d1,%d4
        movea.l %a0,%a2

        move.l  %d3,%d0
        bsr.w   weekday
        bsr.w   dayname
        bsr.s   append
        move.b  #',',(%a2)+
        move.b  #' ',(%a2)+
        move.l  %d2,%d0
        movea.l %a2,%a0
        jsr     (formatdecimal).l
        movea.l %d0,%a2
        move.b  #' ',(%a2)+
        move.l  %d4,%d0
        jsr     (monthname).l
        bsr.s   append
        move.b  #' ',(%a2)+
        move.l  %d3,%d0
        movea.l %a2,%a0
        jsr     (formatdecimal).l
        movem.l (%sp)+,%d2-%d4/%a2
        rts

|   in   d0 text, a2 buffer; out  a2 behind its last character
append: movea.l %d0,%a0
1:      move.b  (%a0)+,(%a2)+
        bne.s   1b
        subq.l  #1,%a2
        rts

|   in   a0 text; out  d0 the number it begins with, d1 digits it has
parsedecimal:
        movem.l %d2-%d3,-(%sp)
        moveq   #0,%d0
        moveq   #0,%d1
        moveq   #0,%d2
1:      move.b  (%a0)+,%d2
        subi.b  #'0',%d2
        cmpi.b  #10,%d2
        bcc.s   2f
        move.l  %d0,%d3                 | times 10: 8 and 2 of it
        lsl.l   #3,%d0
        add.l   %d3,%d0
        add.l   %d3,%d0
        add.l   %d2,%d0
        addq.l  #1,%d1
        bra.s   1b
2:      movem.l (%sp)+,%d2-%d3
        rts

| ---------------------------------------------------------------------------------------------------------
| Tables

        .balign 4,0
nibbles:
        .long   0x00000000, 0x1db71064, 0x3b6e20c8, 0x26d930ac
        .long   0x76dc4190, 0x6b6b51f4, 0x4db26158, 0x5005713c
        .long   0xedb88320, 0xf00f9344, 0xd6d6a3e8, 0xcb61b38c
        .long   0x9b64c2b0, 0x86d3d2d4, 0xa00ae278, 0xbdbdf21c

| The sines of 0 to 90 degrees
sines:  .word   0, 572, 1144, 1715, 2286, 2856, 3425, 3993, 4560, 5126
        .word   5690, 6252, 6813, 7371, 7927, 8481, 9032, 9580, 10126, 10668
        .word   11207, 11743, 12275, 12803, 13328, 13848, 14364, 14876, 15383, 15886
        .word   16383, 16876, 17364, 17846, 18323, 18794, 19260, 19720, 20173, 20621
        .word   21062, 21497, 21925, 22347, 22762, 23170, 23571, 23964, 24351, 24730
        .word   25101, 25465, 25821, 26169, 26509, 26841, 27165, 27481, 27788, 28087
        .word   28377, 28659, 28932, 29196, 29451, 29697, 29934, 30162, 30381, 30591
        .word   30791, 30982, 31163, 31335, 31498, 31650, 31794, 31927, 32051, 32165
        .word   32269, 32364, 32448, 32523, 32587, 32642, 32687, 32722, 32747, 32762
        .word   32767

romanvalues:
        .word   1000, 900, 500, 400, 100, 90, 50, 40, 10, 9, 5, 4, 1, 0
romantexts:
        .long   1f, 2f, 3f, 4f, 5f, 6f, 7f, 8f, 9f, 10f, 11f, 12f, 13f
1:      .asciz  "M"
2:      .asciz  "CM"
3:      .asciz  "D"
4:      .asciz  "CD"
5:      .asciz  "C"
6:      .asciz  "XC"
7:      .asciz  "L"
8:      .asciz  "XL"
9:      .asciz  "X"
10:     .asciz  "IX"
11:     .asciz  "V"
12:     .asciz  "IV"
13:     .asciz  "I"

daysofmonths:
        .byte   31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31
| How many days of the week a month begins behind the last of February, the year counted from March
shifts: .byte   0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4
hexdigits:
        .ascii  "0123456789ABCDEF"

| Every byte with its bits in reverse: the two halves change places, each reversed by itself.
reversed:
        .irp    low, 0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15
        .irp    high, 0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15
        .byte   \high*16+\low
        .endr
        .endr

        .balign 4,0
monthnames:
        .long   1f, 2f, 3f, 4f, 5f, 6f, 7f, 8f, 9f, 10f, 11f, 12f
1:      .asciz  "January"
2:      .asciz  "February"
3:      .asciz  "March"
4:      .asciz  "April"
5:      .asciz  "May"
6:      .asciz  "June"
7:      .asciz  "July"
8:      .asciz  "August"
9:      .asciz  "September"
10:     .asciz  "October"
11:     .asciz  "November"
12:     .asciz  "December"

        .balign 4,0
daynames:
        .long   1f, 2f, 3f, 4f, 5f, 6f, 7f
1:      .asciz  "Sunday"
2:      .asciz  "Monday"
3:      .asciz  "Tuesday"
4:      .asciz  "Wednesday"
5:      .asciz  "Thursday"
6:      .asciz  "Friday"
7:      .asciz  "Saturday"

        .balign 4,0
letternames:
        .long   1f, 2f, 3f, 4f, 5f, 6f, 7f, 8f, 9f, 10f, 11f, 12f, 13f
        .long   14f, 15f, 16f, 17f, 18f, 19f, 20f, 21f, 22f, 23f, 24f, 25f, 26f
1:      .asciz  "Alfa"
2:      .asciz  "Bravo"
3:      .asciz  "Charlie"
4:      .asciz  "Delta"
5:      .asciz  "Echo"
6:      .asciz  "Foxtrot"
7:      .asciz  "Golf"
8:      .asciz  "Hotel"
9:      .asciz  "India"
10:     .asciz  "Juliett"
11:     .asciz  "Kilo"
12:     .asciz  "Lima"
13:     .asciz  "Mike"
14:     .asciz  "November"
15:     .asciz  "Oscar"
16:     .asciz  "Papa"
17:     .asciz  "Quebec"
18:     .asciz  "Romeo"
19:     .asciz  "Sierra"
20:     .asciz  "Tango"
21:     .asciz  "Uniform"
22:     .asciz  "Victor"
23:     .asciz  "Whiskey"
24:     .asciz  "X-ray"
25:     .asciz  "Yankee"
26:     .asciz  "Zulu"
unknown:
        .asciz  "?"

        .balign 4,0
end:
