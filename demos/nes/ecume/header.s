; Board 4, pages side by side, two program banks of 16 KB, two character banks of 8 KB.
    .segment "HEADER"
    .byte "NES", $1A, 2, 2, $41, $00
    .res 8, 0
