| pulse.device: blinks the power LED. A write sends bytes as pulses, a long one for each bit that is set and a
| short one for each that is not; a read tells how many pulses there were. A board without a picture can say
| with it how far it came.
|
| Everything is done before BeginIO returns. Functions may change d0, d1, a0 and a1.

        .include "structures.i"

        .set    version, 1
        .set    revision, 2

| The base, behind the part that every library has
        .set    pb_kernel, lib_size+2
        .set    pb_unit, pb_kernel+4    | long: pulses sent; its address is the unit that requests hold
        .set    pb_stopped, pb_unit+4   | byte: whether pulses are dropped
        .set    pb_dark, pb_stopped+1   | byte: whether the LED is dim between pulses
        .set    pb_size, pb_dark+3      | two bytes are left over

        .set    led, 1                  | its bit in ciaa_pra
        .set    short_turns, 0x4000
        .set    long_turns, 0xc000

        .text
| A module that is run as if it were a program does nothing.
        moveq   #-1,%d0
        rts

tag:    .word   0x4afc
        .long   tag
        .long   end
        .byte   rtf_autoinit+rtf_coldstart
        .byte   version
        .byte   nt_device
        .byte   10
        .long   name
        .long   idstring
        .long   autoinit

name:   .asciz  "pulse.device"
idstring:
        .ascii  "pulse 1.2 (21.11.2026)\r\n\0"
        .balign 2,0

autoinit:
        .long   pb_size
        .long   vectors
        .long   values
        .long   init

vectors:
        .long   open
        .long   close
        .long   expunge
        .long   null
        .long   beginio
        .long   abortio
        .long   -1

values: .word   init_byte, ln_type
        .byte   nt_device, 0
        .word   init_long, ln_name
        .long   name
        .word   init_byte, lib_flags
        .byte   libf_changed+libf_sumused, 0
        .word   init_word, lib_version, version
        .word   init_word, lib_revision, revision
        .word   init_long, lib_idstring
        .long   idstring
        .word   0

|   in   d0 base, a6 kernel's base; out  d0 base
init:   movea.l %d0,%a0
        move.l  %a6,pb_kernel(%a0)
        bset    #led,(ciaa_ddra).l      | the pin is an output
        rts

| There is one LED, so unit 0 is the only one.
|   in   d0 unit, a1 request, d1 flags
open:   tst.l   %d0
        bne.s   1f
        addq.w  #1,lib_opencnt(%a6)
        move.l  %a6,io_device(%a1)
        lea     pb_unit(%a6),%a0
        move.l  %a0,io_unit(%a1)
        clr.b   io_error(%a1)
        rts
1:      move.b  #ioerr_openfail,io_error(%a1)
        clr.l   io_device(%a1)
        rts

|   in   a1 request; out  d0 0: nothing to unload
close:  moveq   #-1,%d0
        move.l  %d0,io_device(%a1)      | whoever goes on using it shall notice
        move.l  %d0,io_unit(%a1)
        subq.w  #1,lib_opencnt(%a6)
expunge:
null:   moveq   #0,%d0
        rts

|   in   a1 request
beginio:
        movem.l %a2-%a3,-(%sp)
        movea.l %a1,%a3
        move.b  #nt_message,ln_type(%a3)
        clr.b   io_error(%a3)
        clr.l   io_actual(%a3)
        moveq   #0,%d0
        move.w  io_command(%a3),%d0
        cmpi.w  #(commandsend-commands)/4,%d0
        bcs.s   1f
        moveq   #0,%d0                  | beyond the table is as bad as the number 0
1:      add.w   %d0,%d0
        add.w   %d0,%d0
        lea     (commands).l,%a0
        movea.l (%a0,%d0.w),%a2
        jsr     (%a2)                   | each takes the request in a3

        btst    #iob_quick,io_flags(%a3)
        bne.s   2f
        move.l  %a6,-(%sp)
        movea.l pb_kernel(%a6),%a6
        movea.l %a3,%a1
        jsr     kv_replymsg(%a6)
        movea.l (%sp)+,%a6
2:      movem.l (%sp)+,%a2-%a3
        rts

| There is never a request under way that could be aborted.
|   in   a1 request; out  d0 error
abortio:
        moveq   #ioerr_nocmd,%d0
        rts

| ---------------------------------------------------------------------------------------------------------
| Commands. Each has the request in a3 and the base in a6.

        .balign 4,0
commands:
        .long   invalid
        .long   reset
        .long   read
        .long   write
        .long   nothing                 | update: there is no buffer
        .long   clear
        .long   stop
        .long   start
        .long   nothing                 | flush: there is no queue
        .long   single
        .long   setlight
commandsend:

invalid:
        move.b  #ioerr_nocmd,io_error(%a3)
nothing:
        rts

reset:  bsr.s   start
        sf      pb_dark(%a6)
        jsr     (rest).l
clear:  clr.l   pb_unit(%a6)
        rts

stop:   st      pb_stopped(%a6)
        rts

start:  sf      pb_stopped(%a6)
        rts

| Gives the count of pulses, a long.
read:   moveq   #4,%d0
        cmp.l   io_length(%a3),%d0
        bhi.s   1f
        movea.l io_data(%a3),%a0
        move.l  pb_unit(%a6),(%a0)
        move.l  %d0,io_actual(%a3)
        rts
1:      move.b  #ioerr_badlength,io_error(%a3)
        rts

| Sends bytes, the highest bit first. While the device is stopped they are dropped.
write:  movem.l %d2-%d4/%a2,-(%sp)
        movea.l io_data(%a3),%a2
        move.l  io_length(%a3),%d2
        moveq   #-1,%d0
        cmp.l   %d0,%d2                 | a length of -1: a text, to its final 0
        bne.s   1f
        move.l  %a6,-(%sp)
        movea.l pb_kernel(%a6),%a6
        movea.l %a2,%a0
        jsr     kv_lengthof(%a6)
        movea.l (%sp)+,%a6
        move.l  %d0,%d2
1:      move.l  %d2,io_actual(%a3)
2:      tst.l   %d2
        beq.s   5f
        subq.l  #1,%d2
        move.b  (%a2)+,%d3
        moveq   #8-1,%d4
3:      move.l  #short_turns,%d0
        add.b   %d3,%d3
        bcc.s   4f
        move.l  #long_turns,%d0
4:      bsr.s   pulse
        dbra    %d4,3b
        bra.s   2b
5:      movem.l (%sp)+,%d2-%d4/%a2
        rts

| Sends one pulse of io_length turns.
single: move.l  io_length(%a3),%d0
        bne.s   pulse
        move.b  #ioerr_badlength,io_error(%a3)
        rts

| Sets with io_offset whether the LED is bright (0) or dim between pulses.
setlight:
        tst.l   io_offset(%a3)
        sne     pb_dark(%a6)
        bra.s   rest

| ---------------------------------------------------------------------------------------------------------
| The LED. Its bit is 0 when it is bright.

|   in   d0 turns of the waiting loop
pulse:  tst.b   pb_stopped(%a6)
        bne.s   2f
        addq.l  #1,pb_unit(%a6)
        move.l  %d0,-(%sp)
        bchg    #led,(ciaa_pra).l
        bsr.s   wait
        jsr     (rest).l
        move.l  (%sp)+,%d0
        cmpi.l  #short_turns,%d0
        bls.s   1f
        move.l  #short_turns,%d0        | the pause is always a short one
1:      bsr.s   wait
2:      rts

wait:   subq.l  #1,%d0
        bne.s   wait
        rts

| Gives the LED the light it has between pulses.
rest:   tst.b   pb_dark(%a6)
        bne.s   1f
        bclr    #led,(ciaa_pra).l
        rts
1:      bset    #led,(ciaa_pra).l
        rts

        .balign 4,0
end:
