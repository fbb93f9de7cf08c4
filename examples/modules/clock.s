| clock.resource: the time of day, from the counter of the mains' cycles in the first CIA. Seconds are counted
| from the beginning of 1978 and last until 2114.
|
| Functions may change d0, d1, a0 and a1.

        .include "structures.i"

        .set    version, 1
        .set    revision, 0

| The base, behind the part that every library has
        .set    cb_kernel, lib_size+2
        .set    cb_offset, cb_kernel+4  | long: seconds to add to what has been counted
        .set    cb_rate, cb_offset+4    | word: cycles a second
        .set    cb_size, cb_rate+4

| A date, all words
        .set    dt_year, 0
        .set    dt_month, 2             | 1 to 12
        .set    dt_day, 4               | 1 to 31
        .set    dt_hour, 6
        .set    dt_minute, 8
        .set    dt_second, 10
        .set    dt_weekday, 12          | 0: Sunday
        .set    dt_size, 14

        .set    firstyear, 1978         | its first day was a Sunday
        .set    mains, 50

        .text
| A tag need not stand first: this function comes before it.
readticks:
        moveq   #0,%d0
        move.b  (ciaa_todhigh).l,%d0    | this one first: it holds the other two
        lsl.l   #8,%d0
        move.b  (ciaa_todmid).l,%d0
        lsl.l   #8,%d0
        move.b  (ciaa_todlow).l,%d0
        rts
        .balign 4,0

tag:    .word   0x4afc
        .long   tag
        .long   end
        .byte   rtf_autoinit+rtf_coldstart
        .byte   version
        .byte   nt_resource
        .byte   -20
        .long   name
        .long   idstring
        .long   autoinit

name:   .asciz  "clock.resource"
idstring:
        .ascii  "clock 1.0 (21.11.2026)\r\n\0"
        .balign 2,0

autoinit:
        .long   cb_size
        .long   vectors
        .long   values
        .long   init

| Vectors as words: distances from the table's first word, between two words of -1. The first stands above.
vectors:
        .word   -1
        .word   readticks-vectors
        .word   seconds-vectors
        .word   setseconds-vectors
        .word   setrate-vectors
        .word   now-vectors
        .word   setnow-vectors
        .word   todate-vectors
        .word   fromdate-vectors
        .word   -1

values: .word   init_byte, ln_type
        .byte   nt_resource, 0
        .word   init_long, ln_name
        .long   name
        .word   init_byte, lib_flags
        .byte   libf_changed+libf_sumused, 0
        .word   init_word+0x0100, lib_version, version, revision | two words at one go
        .word   init_long, lib_idstring
        .long   idstring
        .word   init_word, cb_rate, mains
        .word   0

| Until somebody sets it the clock begins with the day these modules were made.
|   in   d0 base, a6 kernel's base; out  d0 base
init:   movem.l %a2/%a6,-(%sp)
        movea.l %d0,%a2
        move.l  %a6,cb_kernel(%a2)
        movea.l %a2,%a6
        lea     (birthday).l,%a0
        jsr     (setnow).l
        move.l  %a2,%d0
        movem.l (%sp)+,%a2/%a6
        rts

|   out  d0 seconds
seconds:
        bsr.w   readticks
        move.w  cb_rate(%a6),%d1
        jsr     (divide).l
        add.l   cb_offset(%a6),%d0
        rts

|   in   d0 seconds
setseconds:
        move.l  %d0,-(%sp)
        clr.l   cb_offset(%a6)
        bsr.s   seconds
        move.l  (%sp)+,%d1
        sub.l   %d0,%d1
        move.l  %d1,cb_offset(%a6)
        rts

| The time goes on from what it is, at the new rate.
|   in   d0 cycles a second, 50 or 60
setrate:
        move.l  %d0,-(%sp)
        bsr.s   seconds
        move.l  (%sp)+,%d1
        move.w  %d1,cb_rate(%a6)
        bra.s   setseconds

|   in   a0 date to fill in
now:    move.l  %a0,-(%sp)
        bsr.s   seconds
        movea.l (%sp)+,%a0
        bra.s   todate

|   in   a0 date
setnow: bsr.w   fromdate
        bra.s   setseconds

|   in   d0 seconds, a0 date to fill in
todate: movem.l %d2-%d4,-(%sp)
        moveq   #60,%d1
        bsr.w   divide
        move.w  %d1,dt_second(%a0)
        moveq   #60,%d1
        bsr.w   divide
        move.w  %d1,dt_minute(%a0)
        moveq   #24,%d1
        bsr.w   divide
        move.w  %d1,dt_hour(%a0)
        move.l  %d0,%d4                 | days, from 0 on
        moveq   #7,%d1
        bsr.w   divide
        move.w  %d1,dt_weekday(%a0)

        move.w  #firstyear,%d2
1:      bsr.w   yeardays
        cmp.l   %d0,%d4
        bcs.s   2f
        sub.l   %d0,%d4
        addq.w  #1,%d2
        bra.s   1b
2:      move.w  %d2,dt_year(%a0)

        moveq   #1,%d3
3:      jsr     (monthdays).l
        cmp.l   %d0,%d4
        bcs.s   4f
        sub.l   %d0,%d4
        addq.w  #1,%d3
        bra.s   3b
4:      move.w  %d3,dt_month(%a0)
        addq.w  #1,%d4
        move.w  %d4,dt_day(%a0)
        movem.l (%sp)+,%d2-%d4
        rts

| Its day of the week is not asked for.
|   in   a0 date; out  d0 seconds
fromdate:
        movem.l %d2-%d4,-(%sp)
        moveq   #0,%d4
        move.w  dt_day(%a0),%d4
        subq.l  #1,%d4
        move.w  #firstyear,%d2
1:      cmp.w   dt_year(%a0),%d2
        bcc.s   2f
        bsr.s   yeardays
        add.l   %d0,%d4
        addq.w  #1,%d2
        bra.s   1b
2:      moveq   #1,%d3
3:      cmp.w   dt_month(%a0),%d3
        bcc.s   4f
        bsr.s   monthdays
        add.l   %d0,%d4
        addq.w  #1,%d3
        bra.s   3b

| The product of days and seconds a day is longer than the processor's own multiplication gives.
4:      move.l  %d4,%d0                 | hours: 24 times the days, 16 and 8 of them
        lsl.l   #3,%d0
        move.l  %d0,%d1
        add.l   %d0,%d0
        add.l   %d1,%d0
        moveq   #0,%d1
        move.w  dt_hour(%a0),%d1
        add.l   %d1,%d0
        bsr.s   sixty
        move.w  dt_minute(%a0),%d1
        add.l   %d1,%d0
        bsr.s   sixty
        move.w  dt_second(%a0),%d1
        add.l   %d1,%d0
        movem.l (%sp)+,%d2-%d4
        rts

|   in   d0 number; out  d0 60 times as much, d1 0
sixty:  lsl.l   #2,%d0
        move.l  %d0,%d1
        lsl.l   #4,%d0
        sub.l   %d1,%d0
        moveq   #0,%d1
        rts

|   in   d2 year; out  d0 its days
yeardays:
        bsr.s   leapday
        addi.l  #365,%d0
        rts

|   in   d2 year, d3 month; out  d0 its days
monthdays:
        moveq   #0,%d0
        cmpi.w  #2,%d3
        bne.s   1f
        bsr.s   leapday
1:      moveq   #0,%d1
        lea     daysofmonths(%pc),%a1
        move.b  -1(%a1,%d3.w),%d1
        add.l   %d1,%d0
        rts

| 2100 is the only year in reach that 4 divides and that has no such day.
|   in   d2 year; out  d0 1 when it has a 29th of February, else 0
leapday:
        moveq   #3,%d0
        and.w   %d2,%d0
        bne.s   1f
        cmpi.w  #2100,%d2
        beq.s   1f
        moveq   #1,%d0
        rts
1:      moveq   #0,%d0
        rts

| In two steps, as the quotient may have more than 16 bits.
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

birthday:
        .word   2026, 11, 21, 12, 0, 0, 6
daysofmonths:
        .byte   31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31

        .balign 4,0
end:
