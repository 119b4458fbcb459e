; Characters: the letters, then shapes from 0x40.

    .segment "CHARS"
    .include "font.inc"
    .include "shapes.inc"
    .res $2000 - $49 * 16
