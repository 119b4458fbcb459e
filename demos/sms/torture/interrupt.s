; The interrupt handler of the torture card, and what it does on a line.

    .module interrupt
    .include "common/sms.inc"

    .area _CODE
_Interrupt::
    push af
    push hl
    in a, (VDP_CONTROL)
    ld l, a
    ld a, (_statusSeen)
    or l
    ld (_statusSeen), a
    bit 7, l
    jr nz, frame
    in a, (V_COUNTER)
    ld (_lineV), a
    ld hl, #lines
    inc (hl)
    ld hl, (_lineHandler)
    jp (hl)
frame:
    in a, (V_COUNTER)
    ld (_frameV), a
    ld a, (lines)
    ld (_lineCount), a
    xor a
    ld (lines), a
    ld hl, #_lineScroll
    ld (scrollNext), hl
    ld hl, #_frameCount
    inc (hl)
_LineIgnore::
leave:
    pop hl
    pop af
    ei
    ret

; The next scroll value, one a line.
_LineScroll::
    ld hl, (scrollNext)
    ld a, (hl)
    out (VDP_CONTROL), a
    ld a, #VDP_REGISTER + 8
    out (VDP_CONTROL), a
    inc l                       ; the table fills a page
    ld (scrollNext), hl
    jr leave

; Colours that change within a line. From here on every line takes its 228 clocks; the processor was
; halted, so the picture is steady.
BAR_LINES = 20
COLOUR_LINES = 40
BACKDROP = VDP_REGISTER + 7
COLOUR = 5                      ; the palette entry that is rewritten

    .macro backdrop_bars        ; 216 clocks
    out (c), e
    out (c), d
    out (c), h
    out (c), d
    out (c), l
    out (c), d
    out (c), b
    out (c), d
    out (c), a
    out (c), d
    out (c), b
    out (c), d
    out (c), l
    out (c), d
    out (c), h
    out (c), d
    out (c), e
    out (c), d
    .endm

    .macro colour_bar           ; 39 clocks
    out (c), l
    out (c), h
    out (VDP_DATA), a
    add a, e
    .endm

_LineBars::
    push bc
    push de
    ld a, #0xFF                 ; no second time
    out (VDP_CONTROL), a
    ld a, #VDP_REGISTER + 10
    out (VDP_CONTROL), a
    ld a, #0xA0                 ; display off: the backdrop fills the lines
    out (VDP_CONTROL), a
    ld a, #VDP_REGISTER + 1
    out (VDP_CONTROL), a
    ld c, #VDP_CONTROL
    ld d, #BACKDROP
    ld e, #1
    ld h, #2
    ld l, #3
    ld b, #4
    ld a, #6
    .rept BAR_LINES             ; upright
    backdrop_bars
    jr .+2
    .endm
    .rept BAR_LINES             ; four clocks, six pixels, later on every line
    backdrop_bars
    jr .+2
    nop
    .endm
    ld a, #0xE0
    out (VDP_CONTROL), a
    ld a, #VDP_REGISTER + 1
    out (VDP_CONTROL), a
    xor a
    out (VDP_CONTROL), a
    ld a, #BACKDROP
    out (VDP_CONTROL), a
    ; Sixteen lines and a half on.
    ld hl, #145
1$: dec hl                      ; 26 clocks
    ld a, h
    or l
    jp nz, 1$
    ld hl, #CRAM_WRITE + COLOUR
    ld e, #0x0B
    .rept COLOUR_LINES
    ld a, #0x03
    colour_bar
    colour_bar
    colour_bar
    colour_bar
    colour_bar
    jr .+2
    jp .+3
    nop
    .endm
    in a, (VDP_CONTROL)         ; the one that came meanwhile
    pop de
    pop bc
    jp leave

; A whole page, so that its place is counted in eight bits; above every variable.
_lineScroll == 0xD000

    .area _DATA
_lineHandler::
    .ds 2
_frameCount::
    .ds 1
_statusSeen::
    .ds 1
_lineCount::
    .ds 1
_lineV::
    .ds 1
_frameV::
    .ds 1
scrollNext:
    .ds 2
lines:
    .ds 1
