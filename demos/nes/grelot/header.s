; Board 1 with a battery: four program banks of 16 KB, four character banks of 8 KB.
    .segment "HEADER"
    .byte "NES", $1A, 4, 4, $12, $00
    .res 8, 0
