| Offsets into the structures that the modules share, the kernel's vectors, and the few hardware registers
| they touch. Equates only: including this file adds no byte to a module.

| A node of a list, and what may hang in one
        .set    ln_succ, 0
        .set    ln_pred, 4
        .set    ln_type, 8              | byte
        .set    ln_pri, 9               | signed byte
        .set    ln_name, 10
        .set    ln_size, 14

        .set    nt_device, 3
        .set    nt_message, 5
        .set    nt_replymsg, 7
        .set    nt_resource, 8
        .set    nt_library, 9

| The head of a list
        .set    lh_head, 0
        .set    lh_tail, 4              | always 0
        .set    lh_tailpred, 8
        .set    lh_type, 12
        .set    lh_size, 14

| The resident tag of a module
        .set    rt_matchword, 0
        .set    rt_matchtag, 2
        .set    rt_endskip, 6
        .set    rt_flags, 10            | byte
        .set    rt_version, 11          | byte
        .set    rt_type, 12             | byte
        .set    rt_pri, 13              | signed byte
        .set    rt_name, 14
        .set    rt_idstring, 18
        .set    rt_init, 22
        .set    rt_size, 26

        .set    rtw_coldstart, 0        | bit numbers of rt_flags
        .set    rtw_autoinit, 7
        .set    rtf_coldstart, 0x01
        .set    rtf_autoinit, 0x80

| A library's base; devices and resources begin alike
        .set    lib_flags, 14           | byte
        .set    lib_negsize, 16         | word: bytes below the base
        .set    lib_possize, 18         | word: bytes from the base up
        .set    lib_version, 20
        .set    lib_revision, 22
        .set    lib_idstring, 24
        .set    lib_sum, 28
        .set    lib_opencnt, 32         | word
        .set    lib_size, 34

        .set    libf_changed, 0x02
        .set    libf_sumused, 0x04
        .set    lib_open, -6            | the vectors that every library has
        .set    lib_close, -12
        .set    lib_expunge, -18
        .set    dev_beginio, -30        | and the two more of every device
        .set    dev_abortio, -36

| A message port, of which the kernel uses nothing but the list
        .set    mp_msglist, 20
        .set    mp_size, 34

| An i/o request: a message with a device behind it
        .set    mn_replyport, 14
        .set    mn_length, 18
        .set    io_device, 20
        .set    io_unit, 24
        .set    io_command, 28          | word
        .set    io_flags, 30            | byte
        .set    io_error, 31            | signed byte
        .set    io_actual, 32
        .set    io_length, 36
        .set    io_data, 40
        .set    io_offset, 44
        .set    io_size, 48

        .set    iob_quick, 0            | bit number of io_flags
        .set    ioerr_openfail, -1
        .set    ioerr_nocmd, -3
        .set    ioerr_badlength, -4

| Init tables: one command byte, the destination in 24 bits, the value
        .set    init_long, 0xc000
        .set    init_word, 0xd000
        .set    init_byte, 0xe000

| Vectors of kernel.library. Its base is kept at address 4.
        .set    kernelbase, 4
        .set    kv_newlist, -30
        .set    kv_addhead, -36
        .set    kv_addtail, -42
        .set    kv_remove, -48
        .set    kv_remhead, -54
        .set    kv_remtail, -60
        .set    kv_enqueue, -66
        .set    kv_findname, -72
        .set    kv_copybytes, -78
        .set    kv_fillbytes, -84
        .set    kv_lengthof, -90
        .set    kv_compare, -96
        .set    kv_allocate, -102
        .set    kv_makefunctions, -108
        .set    kv_initstruct, -114
        .set    kv_makelibrary, -120
        .set    kv_findtag, -126
        .set    kv_inittag, -132
        .set    kv_addlibrary, -138
        .set    kv_adddevice, -144
        .set    kv_addresource, -150
        .set    kv_openlibrary, -156
        .set    kv_closelibrary, -162
        .set    kv_openresource, -168
        .set    kv_opendevice, -174
        .set    kv_closedevice, -180
        .set    kv_doio, -186
        .set    kv_putmsg, -192
        .set    kv_getmsg, -198
        .set    kv_replymsg, -204
        .set    kv_alert, -210

| Hardware
        .set    ciaa_pra, 0xbfe001      | bit 0 ROM overlay, bit 1 power LED (0: bright)
        .set    ciaa_ddra, 0xbfe201
        .set    ciaa_todlow, 0xbfe801   | counts the mains' cycles
        .set    ciaa_todmid, 0xbfe901
        .set    ciaa_todhigh, 0xbfea01  | reading it stops the other two until the low one is read
        .set    custom, 0xdff000
        .set    dmacon, 0x096
        .set    intena, 0x09a
        .set    intreq, 0x09c
        .set    color00, 0x180
