| A text and nothing else: a data block without a single address.

        .text
        .ascii  "Vantorel toy ROM\r\n"
        .ascii  "\r\n"
        .ascii  "If you can read this in a hex dump of your EPROMs, both are in the right sockets\r\n"
        .ascii  "and no address line is stuck. If every pair of letters is swapped, swap the bytes;\r\n"
        .ascii  "if every other pair is missing, you are looking at one EPROM of two.\r\n"
        .ascii  "\r\n"
        .ascii  "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz\r\n"
        .ascii  "The lines below tell single data lines apart.\r\n"
        .ascii  "@A@B@D@H@P@`@ @\r\n"
        .ascii  "UUUUUUUU********UUUUUUUU********\r\n"
        .byte   0
        .balign 4,0
