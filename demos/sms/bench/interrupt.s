; A line interrupt in the last line of every row of tiles gives the next row its own scroll.

    .module interrupt
    .include "common/sms.inc"

    .area _CODE
_Interrupt::
    push af
    push hl
    in a, (VDP_CONTROL)
    rlca
    jr c, 1$
    ld hl, (rowNext)
    ld a, (hl)
    out (VDP_CONTROL), a
    inc hl
    ld a, #VDP_REGISTER + 8
    out (VDP_CONTROL), a
    ld (rowNext), hl
    pop hl
    pop af
    ei
    ret
1$: ld hl, #_rowScroll
    ld a, (hl)
    out (VDP_CONTROL), a
    inc hl
    ld a, #VDP_REGISTER + 8
    out (VDP_CONTROL), a
    ld (rowNext), hl
    ld hl, #_frameCount
    inc (hl)
    pop hl
    pop af
    ei
    ret

    .area _DATA
rowNext:
    .ds 2
_frameCount::
    .ds 1
_rowScroll::
    .ds 26
