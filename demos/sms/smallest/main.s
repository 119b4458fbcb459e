    .module main
    .area _HEADER (ABS)
    .org 0
    di
loop:
    jr loop
    .area _CODE
    .area _DATA
