; The tiles: 1 KB a bank for the background, which are letters, sky, sea floor, four steps of the water and a
; free one, then 4 KB for the figures.

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
