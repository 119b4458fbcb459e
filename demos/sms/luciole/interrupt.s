; The picture's bands: each scrolls by itself. The frame interrupt begins the list, every line interrupt
; takes its next entry.
;
; A scroll value written in a line holds from the next line on, and the handler writes in the line
; that asked for it: so the interrupt of line n moves line n + 1 and the rest.
; A line count written now is what the counter takes at the next interrupt.

    .module interrupt
    .include "common/sms.inc"

FIRST_LINE = 15                 ; under it: the panel, which doesn't move

    .area _CODE
_Interrupt::
    push af
    push hl
    in a, (VDP_CONTROL)
    rlca
    jr c, frame
    ld hl, (bandNext)
    ld a, (hl)
    out (VDP_CONTROL), a
    inc hl
    ld a, #VDP_REGISTER + 8
    out (VDP_CONTROL), a
    ld a, (hl)
    out (VDP_CONTROL), a
    inc hl
    ld a, #VDP_REGISTER + 10
    out (VDP_CONTROL), a
    ld (bandNext), hl
    pop hl
    pop af
    ei
    ret
frame:
    xor a
    out (VDP_CONTROL), a
    ld a, #VDP_REGISTER + 8
    out (VDP_CONTROL), a
    ld a, #FIRST_LINE
    out (VDP_CONTROL), a
    ld a, #VDP_REGISTER + 10
    out (VDP_CONTROL), a
    ld hl, #_bands
    ld (bandNext), hl
    ld hl, #_frameCount
    inc (hl)
    pop hl
    pop af
    ei
    ret

    .area _DATA
bandNext:
    .ds 2
_frameCount::
    .ds 1
; A pair a band: scroll, line count. More than the five that are used, so that a late line interrupt
; finds something harmless.
_bands::
    .ds 16
