; The bells: every bank of characters has the letters and four bells, and in each bank but the first
; another of them swings. So a ringing bell is just a bank switch.

; Free after letters, quarters and bells.
kFree = (256 - 64 - 16 - 64) * 16

    .segment "CHARS"
    .include "font.inc"
    .include "common/quarters.inc"
    .include "standing.inc"
    .include "standing.inc"
    .include "standing.inc"
    .include "standing.inc"
    .res kFree

    .include "font.inc"
    .include "common/quarters.inc"
    .include "swinging.inc"
    .include "standing.inc"
    .include "standing.inc"
    .include "standing.inc"
    .res kFree

    .include "font.inc"
    .include "common/quarters.inc"
    .include "standing.inc"
    .include "swinging.inc"
    .include "standing.inc"
    .include "standing.inc"
    .res kFree

    .include "font.inc"
    .include "common/quarters.inc"
    .include "standing.inc"
    .include "standing.inc"
    .include "swinging.inc"
    .include "standing.inc"
    .res kFree

    .include "font.inc"
    .include "common/quarters.inc"
    .include "standing.inc"
    .include "standing.inc"
    .include "standing.inc"
    .include "swinging.inc"
    .res kFree

; The bank of the sprites: two notes, a spark, a star.
figures:
    .include "figures.inc"
    .res figures + $3000 - *
