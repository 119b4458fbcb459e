; Board 0, pages side by side, two program banks of 16 KB, one character bank of 8 KB.
    .segment "HEADER"
    .byte "NES", $1A, 2, 1, $01, $00
    .res 8, 0
