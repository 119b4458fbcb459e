; Characters: the letters, then shapes from 0x40.

    .include "common/drawing.inc"

    .segment "CHARS"
    .include "common/font.inc"

; Plain colours 1, 2 and 3.
    drawing
    .repeat 8
        row "111111112222222233333333"
    .endrepeat
    cells

; 0x43: a grid, the lines of its edge, a mark for sprite zero, and a ball for the sprites.
    drawing
    row "22222222...11...........3333333."
    row "2..........11..........33111133."
    row "2..........11.........331122113."
    row "2.......11111111..3333.311222213"
    row "2.......11111111..3333.311222213"
    row "2..........11..........331122113"
    row "2..........11...........33111133"
    row "2..........11............333333."
    cells

; 0x47: the letter F, to see how it is turned.
    drawing
    row "1111111."
    row "1333331."
    row "131111.."
    row "133331.."
    row "131111.."
    row "131....."
    row "111....."
    row "........"
    cells

; 0x48: slanted stripes, four dots of each.
    drawing
    row "11113333"
    row "31111333"
    row "33111133"
    row "33311113"
    row "33331111"
    row "13333111"
    row "11333311"
    row "11133331"
    cells
    .res $2000 - $49 * 16
