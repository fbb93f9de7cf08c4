| kernel.library: lists, memory, the making of libraries, and the start of every other module of the ROM.
|
| There is one task and there are no interrupts, so nothing needs to be locked. Functions are called through
| the base in a6 and may change d0, d1, a0 and a1; everything else they leave as it was.

        .include "structures.i"

        .set    version, 1
        .set    revision, 4

        .set    memory_start, 0x00001000 | below are the exception vectors and some room to spare
        .set    memory_end, 0x00070000   | above is the stack

| The kernel's base, behind the part that every library has
        .set    kb_romstart, lib_size
        .set    kb_romend, kb_romstart+4
        .set    kb_memfree, kb_romend+4
        .set    kb_memend, kb_memfree+4
        .set    kb_alerttext, kb_memend+4
        .set    kb_libraries, kb_alerttext+4
        .set    kb_devices, kb_libraries+lh_size
        .set    kb_resources, kb_devices+lh_size
        .set    kb_size, kb_resources+lh_size

| What the start of the modules is queued in: a node, and the tag it stands for
        .set    tn_tag, ln_size
        .set    tn_size, tn_tag+4

| Numbers for Alert
        .set    alert_nomemory, 0
        .set    alert_nomodule, 1
        .set    alert_norequest, 2
        .set    alert_idle, 3
        .set    alert_count, 4

        .text
| A module that is run as if it were a program does nothing.
        moveq   #-1,%d0
        rts

tag:    .word   0x4afc
        .long   tag
        .long   end
        .byte   0                       | the ROM's start routine calls this one itself
        .byte   version
        .byte   nt_library
        .byte   126
        .long   name
        .long   idstring
        .long   init

name:   .asciz  "kernel.library"
idstring:
        .ascii  "kernel 1.4 (21.11.2026)\r\n\0"
        .balign 2,0

| Vectors as words: distances from the table's first word, between two words of -1.
vectors:
        .word   -1
        .word   open-vectors
        .word   close-vectors
        .word   expunge-vectors
        .word   reserved-vectors
        .word   newlist-vectors
        .word   addhead-vectors
        .word   addtail-vectors
        .word   remove-vectors
        .word   remhead-vectors
        .word   remtail-vectors
        .word   enqueue-vectors
        .word   findname-vectors
        .word   copybytes-vectors
        .word   fillbytes-vectors
        .word   lengthof-vectors
        .word   compare-vectors
        .word   allocate-vectors
        .word   makefunctions-vectors
        .word   initstruct-vectors
        .word   makelibrary-vectors
        .word   findtag-vectors
        .word   inittag-vectors
        .word   addlibrary-vectors
        .word   adddevice-vectors
        .word   addresource-vectors
        .word   openlibrary-vectors
        .word   closelibrary-vectors
        .word   openresource-vectors
        .word   opendevice-vectors
        .word   closedevice-vectors
        .word   doio-vectors
        .word   putmsg-vectors
        .word   getmsg-vectors
        .word   replymsg-vectors
        .word   alert-vectors
        .word   -1
vectorsend:

| Six bytes for each, and the base above them a multiple of 4
        .set    vector_bytes, ((vectorsend-vectors-4)/2*6+3)/4*4

| ---------------------------------------------------------------------------------------------------------
| Start

| Makes the kernel's own base and starts the other modules. Does not return.
|   in   a0 start of the ROM, a1 its end
init:   lea     (memory_start+vector_bytes).w,%a6
        movem.l %a0-%a1,-(%sp)

        | Nothing below is of use to anybody, so the base may lie on what was there before.
        movea.l %a6,%a0
        moveq   #0,%d1
        move.l  #kb_size,%d0
        jsr     (fillbytes).l

        movem.l (%sp)+,%a0-%a1
        move.l  %a0,kb_romstart(%a6)
        move.l  %a1,kb_romend(%a6)
        lea     (memory_start+vector_bytes+kb_size+7).w,%a0
        move.l  %a0,%d0
        andi.w  #0xfff8,%d0
        move.l  %d0,kb_memfree(%a6)
        move.l  #memory_end,kb_memend(%a6)

        lea     kb_libraries(%a6),%a0
        bsr.w   newlist
        lea     kb_devices(%a6),%a0
        bsr.w   newlist
        lea     kb_resources(%a6),%a0
        bsr.w   newlist

        movea.l %a6,%a0
        lea     (vectors).l,%a1
        bsr.w   makefunctions
        move.w  #vector_bytes,lib_negsize(%a6)
        move.w  #kb_size,lib_possize(%a6)
        move.b  #libf_changed+libf_sumused,lib_flags(%a6)
        move.w  #version,lib_version(%a6)
        move.w  #revision,lib_revision(%a6)
        move.l  #idstring,lib_idstring(%a6)
        move.l  #name,ln_name(%a6)
        addq.w  #1,lib_opencnt(%a6)     | nobody opens the kernel, yet it is never idle
        move.l  %a6,(kernelbase).w

        movea.l %a6,%a1
        jsr     (addlibrary).l
        bsr.s   startmodules

        moveq   #alert_idle,%d0
        bsr.w   alert
1:      stop    #0x2700
        bra.s   1b

| Starts every module that wants it at a cold start, those of high priority first.
startmodules:
        movem.l %a2-%a3,-(%sp)
        lea     -lh_size(%sp),%sp
        movea.l %sp,%a0
        bsr.w   newlist

        movea.l kb_romstart(%a6),%a2
1:      movea.l %a2,%a0
        bsr.w   nexttag
        tst.l   %d0
        beq.s   3f
        movea.l %d0,%a3
        movea.l rt_endskip(%a3),%a2
        cmpa.l  %a3,%a2
        bhi.s   2f
        lea     rt_size(%a3),%a2        | a tag that would send the scan backwards
2:      btst    #rtw_coldstart,rt_flags(%a3)
        beq.s   1b
        moveq   #tn_size,%d0
        bsr.w   allocate
        tst.l   %d0
        beq.s   nomemory
        movea.l %d0,%a1
        move.l  %a3,tn_tag(%a1)
        move.b  rt_pri(%a3),ln_pri(%a1)
        move.l  rt_name(%a3),ln_name(%a1)
        movea.l %sp,%a0
        bsr.w   enqueue
        bra.s   1b

3:      movea.l %sp,%a0
        bsr.w   remhead
        tst.l   %d0
        beq.s   4f
        movea.l %d0,%a0
        movea.l tn_tag(%a0),%a1
        bsr.w   inittag
        tst.l   %d0
        bne.s   3b
        moveq   #alert_nomodule,%d0
        bsr.w   alert
        bra.s   3b
4:      lea     lh_size(%sp),%sp
        movem.l (%sp)+,%a2-%a3
        rts

nomemory:
        moveq   #alert_nomemory,%d0
        bsr.w   alert
1:      stop    #0x2700
        bra.s   1b

| ---------------------------------------------------------------------------------------------------------
| The four vectors that every library has

|   in   a6 base; out  d0 base
open:   addq.w  #1,lib_opencnt(%a6)
        move.l  %a6,%d0
        rts

close:  subq.w  #1,lib_opencnt(%a6)
expunge:
reserved:
        moveq   #0,%d0
        rts

| ---------------------------------------------------------------------------------------------------------
| Lists

| Makes a list empty.
|   in   a0 list
newlist:
        move.l  %a0,lh_tailpred(%a0)
        addq.l  #lh_tail,%a0
        clr.l   (%a0)
        move.l  %a0,-(%a0)
        rts

|   in   a0 list, a1 node
addhead:
        move.l  (%a0),%d0
        move.l  %a1,(%a0)
        movem.l %d0/%a0,(%a1)           | successor and predecessor at one go
        movea.l %d0,%a0
        move.l  %a1,ln_pred(%a0)
        rts

|   in   a0 list, a1 node
addtail:
        addq.l  #lh_tail,%a0
        move.l  ln_pred(%a0),%d0
        move.l  %a1,ln_pred(%a0)
        exg     %d0,%a0
        movem.l %d0/%a0,(%a1)
        move.l  %a1,(%a0)
        rts

|   in   a1 node
remove: movea.l ln_succ(%a1),%a0
        movea.l ln_pred(%a1),%a1
        move.l  %a0,ln_succ(%a1)
        move.l  %a1,ln_pred(%a0)
        rts

|   in   a0 list; out  d0 node or 0
remhead:
        movea.l lh_head(%a0),%a1
        tst.l   ln_succ(%a1)
        beq.s   1f
        move.l  %a1,-(%sp)
        bsr.s   remove
        move.l  (%sp)+,%d0
        rts
1:      moveq   #0,%d0
        rts

|   in   a0 list; out  d0 node or 0
remtail:
        movea.l lh_tailpred(%a0),%a1
        tst.l   ln_pred(%a1)
        beq.s   1f
        move.l  %a1,-(%sp)
        bsr.s   remove
        move.l  (%sp)+,%d0
        rts
1:      moveq   #0,%d0
        rts

| Puts a node behind all of the same or a higher priority.
|   in   a0 list, a1 node
enqueue:
        move.b  ln_pri(%a1),%d1
        movea.l lh_head(%a0),%a0
1:      move.l  ln_succ(%a0),%d0
        beq.s   2f
        cmp.b   ln_pri(%a0),%d1
        bgt.s   2f
        movea.l %d0,%a0
        bra.s   1b
        | a0 is the node, or the list's tail, to stand behind the new one.
2:      move.l  %a0,ln_succ(%a1)
        move.l  ln_pred(%a0),%d0
        move.l  %d0,ln_pred(%a1)
        move.l  %a1,ln_pred(%a0)
        movea.l %d0,%a0
        move.l  %a1,ln_succ(%a0)
        rts

|   in   a0 list, a1 name; out  d0 node or 0
findname:
        movem.l %a2-%a3,-(%sp)
        movea.l lh_head(%a0),%a2
        movea.l %a1,%a3
1:      tst.l   ln_succ(%a2)
        beq.s   2f
        movea.l ln_name(%a2),%a0
        movea.l %a3,%a1
        bsr.w   compare
        tst.l   %d0
        beq.s   3f
        movea.l ln_succ(%a2),%a2
        bra.s   1b
2:      suba.l  %a2,%a2
3:      move.l  %a2,%d0
        movem.l (%sp)+,%a2-%a3
        rts

| ---------------------------------------------------------------------------------------------------------
| Bytes and texts

| Copies bytes; the two places may overlap.
|   in   a0 from, a1 to, d0 bytes
copybytes:
        tst.l   %d0
        beq.s   4f
        cmpa.l  %a0,%a1
        bhi.s   2f
1:      move.b  (%a0)+,(%a1)+
        subq.l  #1,%d0
        bne.s   1b
        rts
2:      adda.l  %d0,%a0
        adda.l  %d0,%a1
3:      move.b  -(%a0),-(%a1)
        subq.l  #1,%d0
        bne.s   3b
4:      rts

|   in   a0 to, d0 bytes, d1 value
fillbytes:
        tst.l   %d0
        beq.s   2f
1:      move.b  %d1,(%a0)+
        subq.l  #1,%d0
        bne.s   1b
2:      rts

|   in   a0 text; out  d0 its characters, the final 0 not among them
lengthof:
        movea.l %a0,%a1
1:      tst.b   (%a1)+
        bne.s   1b
        move.l  %a1,%d0
        sub.l   %a0,%d0
        subq.l  #1,%d0
        rts

| Compares two texts.
|   in   a0, a1 texts; out  d0 0 when equal, less or more than 0 as the first stands before or behind
compare:
        moveq   #0,%d0
        moveq   #0,%d1
1:      move.b  (%a0)+,%d0
        move.b  (%a1)+,%d1
        sub.l   %d1,%d0
        bne.s   2f
        tst.b   %d1
        bne.s   1b
2:      rts

| ---------------------------------------------------------------------------------------------------------
| Memory. It is handed out and never taken back: modules in a ROM stay.

|   in   d0 bytes; out  d0 memory, all 0 and at a multiple of 8, or 0 when there is not enough
allocate:
        move.l  %d2,-(%sp)
        addq.l  #7,%d0
        andi.w  #0xfff8,%d0
        move.l  kb_memfree(%a6),%d2
        move.l  kb_memend(%a6),%d1
        sub.l   %d2,%d1
        cmp.l   %d0,%d1
        bcs.s   1f
        add.l   %d0,kb_memfree(%a6)
        movea.l %d2,%a0
        moveq   #0,%d1
        bsr.s   fillbytes
        move.l  %d2,%d0
        bra.s   2f
1:      moveq   #0,%d0
2:      move.l  (%sp)+,%d2
        rts

| ---------------------------------------------------------------------------------------------------------
| Libraries

| Counts the vectors of a table of either kind.
|   in   a0 table; out  d0 bytes they take below a base
vectorsize:
        moveq   #0,%d0
        moveq   #-1,%d1
        cmp.w   (%a0),%d1
        beq.s   2f
1:      cmp.l   (%a0)+,%d1
        beq.s   4f
        addq.l  #6,%d0
        bra.s   1b
2:      addq.l  #2,%a0
3:      cmp.w   (%a0)+,%d1
        beq.s   4f
        addq.l  #6,%d0
        bra.s   3b
4:      rts

| Writes the jumps below a base.
|   in   a0 base, a1 table: longs are addresses, words behind a first of -1 distances from there
|   out  d0 bytes written
makefunctions:
        movem.l %d2/%a2-%a3,-(%sp)
        moveq   #0,%d0
        moveq   #-1,%d2
        movea.l %a1,%a2
        cmp.w   (%a1),%d2
        beq.s   2f
1:      move.l  (%a1)+,%d1
        cmp.l   %d1,%d2
        beq.s   4f
        move.l  %d1,-(%a0)
        move.w  #0x4ef9,-(%a0)          | jmp to an absolute address
        addq.l  #6,%d0
        bra.s   1b
2:      addq.l  #2,%a1
3:      move.w  (%a1)+,%d1
        cmp.w   %d1,%d2
        beq.s   4f
        lea     (%a2,%d1.w),%a3
        move.l  %a3,-(%a0)
        move.w  #0x4ef9,-(%a0)
        addq.l  #6,%d0
        bra.s   3b
4:      movem.l (%sp)+,%d2/%a2-%a3
        rts

| Fills a structure from an init table. Bits 7 and 6 of each command byte tell where values go (0: on from
| the last, 1: one value, repeated, 2: an offset byte follows, 3: three offset bytes follow), bits 5 and 4 what
| they are (0: longs, 1: words, 2: bytes), and the others their count less one. A command of 0 ends the table.
|   in   a0 structure, a1 table
initstruct:
        movem.l %d2-%d5/%a2,-(%sp)
        movea.l %a0,%a2
initnext:
        moveq   #0,%d1
        move.b  (%a1)+,%d1
        beq.w   initdone
        moveq   #15,%d2
        and.w   %d1,%d2
        moveq   #0,%d5                  | 1: the value repeats
        tst.b   %d1
        bmi.s   1f
        btst    #6,%d1
        beq.s   4f
        moveq   #1,%d5
        bra.s   4f
1:      moveq   #0,%d0
        btst    #6,%d1
        bne.s   2f
        move.b  (%a1)+,%d0
        bra.s   3f
2:      move.l  -1(%a1),%d0             | the command byte is even, so this long is too
        andi.l  #0x00ffffff,%d0
        addq.l  #3,%a1
3:      lea     (%a2,%d0.l),%a0

4:      btst    #5,%d1
        bne.s   initbytes
        move.l  %a1,%d0
        addq.l  #1,%d0
        bclr    #0,%d0
        movea.l %d0,%a1
        btst    #4,%d1
        bne.s   initwords

        moveq   #4,%d3
        bsr.s   initstep
1:      move.l  (%a1),(%a0)+
        adda.w  %d4,%a1
        dbra    %d2,1b
        bra.s   initalign
initwords:
        moveq   #2,%d3
        bsr.s   initstep
1:      move.w  (%a1),(%a0)+
        adda.w  %d4,%a1
        dbra    %d2,1b
        bra.s   initalign
initbytes:
        moveq   #1,%d3
        bsr.s   initstep
1:      move.b  (%a1),(%a0)+
        adda.w  %d4,%a1
        dbra    %d2,1b

initalign:
        tst.w   %d4
        bne.s   1f
        adda.w  %d3,%a1                 | a repeated value has not been passed yet
1:      move.l  %a1,%d0
        addq.l  #1,%d0
        bclr    #0,%d0
        movea.l %d0,%a1
        bra.w   initnext
initdone:
        movem.l (%sp)+,%d2-%d5/%a2
        rts

| What the source moves on by after each value of d3 bytes, in d4.
initstep:
        move.w  %d3,%d4
        tst.w   %d5
        beq.s   1f
        moveq   #0,%d4
1:      rts

| Makes a library, a device or a resource: memory, vectors, values, and last its own init routine.
|   in   d0 bytes from the base up, a0 vectors, a1 init table or 0, a2 init routine or 0
|   out  d0 base or 0
makelibrary:
        movem.l %d2-%d3/%a2-%a5,-(%sp)
        move.l  %d0,%d2
        movea.l %a0,%a3
        movea.l %a1,%a4
        bsr.w   vectorsize
        move.l  %d0,%d3
        addq.l  #3,%d3                  | a base is a multiple of 4
        andi.w  #0xfffc,%d3
        move.l  %d3,%d0
        add.l   %d2,%d0
        bsr.w   allocate
        tst.l   %d0
        beq.s   2f
        movea.l %d0,%a5
        adda.l  %d3,%a5

        movea.l %a5,%a0
        movea.l %a3,%a1
        bsr.w   makefunctions
        move.w  %d3,lib_negsize(%a5)
        move.w  %d2,lib_possize(%a5)

        move.l  %a4,%d0
        beq.s   1f
        movea.l %a5,%a0
        movea.l %a4,%a1
        bsr.w   initstruct
1:      move.l  %a5,%d0
        move.l  %a2,%d1
        beq.s   2f
        suba.l  %a0,%a0                 | not loaded from a disk: no segment list
        jsr     (%a2)
2:      movem.l (%sp)+,%d2-%d3/%a2-%a5
        rts

| ---------------------------------------------------------------------------------------------------------
| Tags

| Looks on for a tag in the ROM.
|   in   a0 from; out  d0 tag or 0
nexttag:
        movea.l kb_romend(%a6),%a1
        | The match word itself must not stand here, or a scan would stop at this very place.
        move.w  #0x4afb,%d1
        addq.w  #1,%d1
1:      cmpa.l  %a1,%a0
        bcc.s   2f
        cmp.w   (%a0)+,%d1
        bne.s   1b
        move.l  %a0,%d0
        subq.l  #2,%d0
        cmp.l   (%a0),%d0
        bne.s   1b
        rts
2:      moveq   #0,%d0
        rts

|   in   a1 name; out  d0 tag or 0
findtag:
        movem.l %a2-%a3,-(%sp)
        movea.l %a1,%a3
        movea.l kb_romstart(%a6),%a0
1:      bsr.s   nexttag
        tst.l   %d0
        beq.s   2f
        movea.l %d0,%a2
        movea.l rt_name(%a2),%a0
        movea.l %a3,%a1
        bsr.w   compare
        lea     rt_size(%a2),%a0
        tst.l   %d0
        bne.s   1b
        move.l  %a2,%d0
2:      movem.l (%sp)+,%a2-%a3
        rts

| Starts a module.
|   in   a1 tag; out  d0 base, whatever its init routine returns, or 0
inittag:
        movem.l %a2-%a3,-(%sp)
        movea.l %a1,%a3
        movea.l rt_init(%a3),%a1
        btst    #rtw_autoinit,rt_flags(%a3)
        bne.s   1f
        moveq   #0,%d0
        suba.l  %a0,%a0
        jsr     (%a1)
        bra.s   5f

        | The table has the four arguments in the order of the registers.
1:      movem.l (%a1),%d0/%a0-%a2
        jsr     (makelibrary).l
        tst.l   %d0
        beq.s   5f
        move.l  %d0,-(%sp)
        movea.l %d0,%a1
        move.b  rt_type(%a3),%d1
        cmpi.b  #nt_device,%d1
        beq.s   2f
        cmpi.b  #nt_resource,%d1
        beq.s   3f
        bsr.s   addlibrary
        bra.s   4f
2:      bsr.s   adddevice
        bra.s   4f
3:      bsr.s   addresource
4:      move.l  (%sp)+,%d0
5:      movem.l (%sp)+,%a2-%a3
        rts

|   in   a1 base
addlibrary:
        lea     kb_libraries(%a6),%a0
        move.b  #nt_library,ln_type(%a1)
        bra.s   addmodule

|   in   a1 base
adddevice:
        lea     kb_devices(%a6),%a0
        move.b  #nt_device,ln_type(%a1)
        bra.s   addmodule

|   in   a1 base
addresource:
        lea     kb_resources(%a6),%a0
        move.b  #nt_resource,ln_type(%a1)
addmodule:
        jmp     (enqueue).l

| ---------------------------------------------------------------------------------------------------------
| Their use

|   in   a1 name, d0 least version; out  d0 base or 0
openlibrary:
        movem.l %d2/%a6,-(%sp)
        move.l  %d0,%d2
        lea     kb_libraries(%a6),%a0
        bsr.w   findname
        tst.l   %d0
        beq.s   1f
        movea.l %d0,%a6
        moveq   #0,%d0
        cmp.w   lib_version(%a6),%d2
        bhi.s   1f
        jsr     lib_open(%a6)
1:      movem.l (%sp)+,%d2/%a6
        rts

|   in   a1 base or 0
closelibrary:
        move.l  %a1,%d0
        beq.s   1f
        move.l  %a6,-(%sp)
        movea.l %a1,%a6
        jsr     lib_close(%a6)
        movea.l (%sp)+,%a6
1:      rts

|   in   a1 name; out  d0 base or 0
openresource:
        lea     kb_resources(%a6),%a0
        bra.w   findname

|   in   a0 name, d0 unit, a1 request, d1 flags; out  d0 0 or the error that the request holds too
opendevice:
        movem.l %d2-%d3/%a2/%a6,-(%sp)
        move.l  %d0,%d2
        move.l  %d1,%d3
        movea.l %a1,%a2
        clr.b   io_error(%a2)
        movea.l %a0,%a1
        lea     kb_devices(%a6),%a0
        bsr.w   findname
        move.l  %d0,io_device(%a2)
        beq.s   1f
        movea.l %d0,%a6
        movea.l %a2,%a1
        move.l  %d2,%d0
        move.l  %d3,%d1
        jsr     lib_open(%a6)
        bra.s   2f
1:      move.b  #ioerr_openfail,io_error(%a2)
2:      move.b  io_error(%a2),%d0
        ext.w   %d0
        ext.l   %d0
        movem.l (%sp)+,%d2-%d3/%a2/%a6
        rts

|   in   a1 request
closedevice:
        move.l  io_device(%a1),%d0
        beq.s   1f
        move.l  %a6,-(%sp)
        movea.l %d0,%a6
        jsr     lib_close(%a6)
        movea.l (%sp)+,%a6
1:      rts

| Has a request done. Every device of this ROM is done with it when it returns.
|   in   a1 request; out  d0 error
doio:   movem.l %a2/%a6,-(%sp)
        movea.l %a1,%a2
        move.b  #1<<iob_quick,io_flags(%a2)
        move.l  io_device(%a2),%d0
        bne.s   1f
        moveq   #alert_norequest,%d0
        bsr.s   alert
        moveq   #ioerr_openfail,%d0
        bra.s   2f
1:      movea.l %d0,%a6
        jsr     dev_beginio(%a6)
        move.b  io_error(%a2),%d0
        ext.w   %d0
        ext.l   %d0
2:      movem.l (%sp)+,%a2/%a6
        rts

|   in   a0 port, a1 message
putmsg: move.b  #nt_message,ln_type(%a1)
        lea     mp_msglist(%a0),%a0
        bra.w   addtail

|   in   a0 port; out  d0 message or 0
getmsg: lea     mp_msglist(%a0),%a0
        bra.w   remhead

|   in   a1 message
replymsg:
        move.l  mn_replyport(%a1),%d0
        beq.s   1f
        movea.l %d0,%a0
        move.b  #nt_replymsg,ln_type(%a1)
        lea     mp_msglist(%a0),%a0
        bra.w   addtail
1:      rts

| Shows that something happened: by a colour, and by a text that a debugger finds through the base.
|   in   d0 number; out  d0 the text
alert:  moveq   #alert_count,%d1
        cmp.l   %d1,%d0
        bcs.s   1f
        move.l  %d1,%d0
1:      add.w   %d0,%d0
        lea     alertcolours(%pc),%a0
        move.w  (%a0,%d0.w),(custom+color00).l
        add.w   %d0,%d0
        lea     (alerttexts).l,%a0
        move.l  (%a0,%d0.w),%d0
        move.l  %d0,kb_alerttext(%a6)
        rts

        .balign 4,0
alerttexts:
        .long   textnomemory
        .long   textnomodule
        .long   textnorequest
        .long   textidle
        .long   textunknown

alertcolours:
        .word   0x0f80                  | orange
        .word   0x0f08                  | pink
        .word   0x080f                  | violet
        .word   0x0080                  | green
        .word   0x0f0f

textnomemory:
        .asciz  "There is no memory left to start the modules in"
textnomodule:
        .asciz  "A module could not be started"
textnorequest:
        .asciz  "A request without a device was to be done"
textidle:
        .asciz  "All modules have been started"
textunknown:
        .asciz  "Something happened that has no number"

        .balign 4,0
end:
