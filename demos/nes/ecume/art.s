; The tiles: background banks of 1 KB (letters, sky, sea floor, four steps of the water, a free one), then 4 KB
; for the sprites.

    .segment "CHARS"
    .include "font.inc"
start:
    .include "sky.inc"

    .include "floor.inc"
    .include "common/quarters.inc"
    .include "life.inc"
    .res start + $800 - *

    .include "water.inc"
    .res $400

    .include "figures.inc"
