| font.data: a font of 8 by 8 dots, for the few characters that the toy ROM shows. What it has no picture of
| is shown as a box.

        .text
        .ascii  "FONT"
        .word   8, 8                    | dots across and down
        .byte   ' ', 'Z'                | the first and the last character of the table
        .byte   7, 0                    | the line that letters stand on
        .long   name
        .long   box                     | for characters that the table leaves out
        .long   glyphs
        .long   picturesend-pictures    | bytes of all pictures: a number, no address

| The picture of each character
glyphs:
        .long   space, box, box, box, box, box, box, box
        .long   box, box, box, box, box, dash, stop, box
        .long   digit0, digit1, digit2, digit3, digit4, digit5, digit6, digit7
        .long   digit8, digit9, box, box, box, box, box, box
        .long   box, lettera, box, box, box, lettere, box, box
        .long   box, box, box, letterk, letterl, letterm, lettern, lettero
        .long   box, box, letterr, box, lettert, box, letterv, box
        .long   box, lettery, box

name:   .ascii  "font 1.0 (21.11.2026)\r\n\0"
        .asciz  "Eight dots wide and high, drawn for the toy ROM of Vantorel"

        .balign 4,0
pictures:
lettera:
        .byte   0b00111000
        .byte   0b01000100
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b11111110
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b00000000
lettere:
        .byte   0b11111110
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b11111000
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b11111110
        .byte   0b00000000
letterk:
        .byte   0b10000110
        .byte   0b10011000
        .byte   0b11100000
        .byte   0b10100000
        .byte   0b10011000
        .byte   0b10000110
        .byte   0b10000010
        .byte   0b00000000
letterl:
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b10000000
        .byte   0b11111110
        .byte   0b00000000
letterm:
        .byte   0b10000010
        .byte   0b11000110
        .byte   0b10101010
        .byte   0b10010010
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b00000000
lettern:
        .byte   0b10000010
        .byte   0b11000010
        .byte   0b10100010
        .byte   0b10010010
        .byte   0b10001010
        .byte   0b10000110
        .byte   0b10000010
        .byte   0b00000000
lettero:
        .byte   0b00111000
        .byte   0b01000100
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b01000100
        .byte   0b00111000
        .byte   0b00000000
letterr:
        .byte   0b11111100
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b11111100
        .byte   0b10010000
        .byte   0b10001100
        .byte   0b10000010
        .byte   0b00000000
lettert:
        .byte   0b11111110
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00000000
letterv:
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b01000100
        .byte   0b01000100
        .byte   0b00101000
        .byte   0b00101000
        .byte   0b00010000
        .byte   0b00000000
lettery:
        .byte   0b10000010
        .byte   0b01000100
        .byte   0b00101000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00000000
digit0:
        .byte   0b00111000
        .byte   0b01001100
        .byte   0b10010100
        .byte   0b10010010
        .byte   0b01010010
        .byte   0b01100100
        .byte   0b00111000
        .byte   0b00000000
digit1:
        .byte   0b00010000
        .byte   0b00110000
        .byte   0b01010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b00010000
        .byte   0b01111100
        .byte   0b00000000
digit2:
        .byte   0b01111000
        .byte   0b10000100
        .byte   0b00000100
        .byte   0b00011000
        .byte   0b01100000
        .byte   0b10000000
        .byte   0b11111100
        .byte   0b00000000
digit3:
        .byte   0b11111000
        .byte   0b00000100
        .byte   0b00000100
        .byte   0b00111000
        .byte   0b00000100
        .byte   0b00000100
        .byte   0b11111000
        .byte   0b00000000
digit4:
        .byte   0b00001100
        .byte   0b00010100
        .byte   0b00100100
        .byte   0b01000100
        .byte   0b11111110
        .byte   0b00000100
        .byte   0b00000100
        .byte   0b00000000
digit5:
        .byte   0b11111100
        .byte   0b10000000
        .byte   0b11111000
        .byte   0b00000100
        .byte   0b00000100
        .byte   0b10000100
        .byte   0b01111000
        .byte   0b00000000
digit6:
        .byte   0b00111000
        .byte   0b01000000
        .byte   0b10000000
        .byte   0b11111000
        .byte   0b10000100
        .byte   0b10000100
        .byte   0b01111000
        .byte   0b00000000
digit7:
        .byte   0b11111100
        .byte   0b00000100
        .byte   0b00001000
        .byte   0b00010000
        .byte   0b00100000
        .byte   0b00100000
        .byte   0b00100000
        .byte   0b00000000
digit8:
        .byte   0b01111000
        .byte   0b10000100
        .byte   0b10000100
        .byte   0b01111000
        .byte   0b10000100
        .byte   0b10000100
        .byte   0b01111000
        .byte   0b00000000
digit9:
        .byte   0b01111000
        .byte   0b10000100
        .byte   0b10000100
        .byte   0b01111100
        .byte   0b00000100
        .byte   0b00001000
        .byte   0b01110000
        .byte   0b00000000
space:
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
stop:
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00110000
        .byte   0b00110000
        .byte   0b00000000
dash:
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b01111100
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
        .byte   0b00000000
box:
        .byte   0b11111110
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b10000010
        .byte   0b11111110
        .byte   0b00000000
picturesend:

        .balign 4,0
