; What a page does during the picture: nothing, the colours, or the split.

    .include "common/nes.inc"

    .export frameHook, interruptRequest
    .export _hook, _statusSeen, _splitScroll

TEXT_COLOUR = $30
BLACK       = $0F
SHOW        = $1E
BLOCK_LINES = 48        ; 5456 cycles
FIRST_LINE  = 40

    .zeropage
_hook:        .res 1    ; 0 none, 1 colours, 2 split
_statusSeen:  .res 1    ; PPUSTATUS at the start of vblank
_splitScroll: .res 1
third:        .res 1
at:           .res 1
blocks:       .res 1

    .code
interruptRequest:
    rti

frameHook:
    lda PPU_STATUS
    sta _statusSeen
    lda _hook
    beq @none
    cmp #1
    beq @colours
    jsr waitForHit
    lda _splitScroll
    sta PPU_SCROLL
    sta PPU_SCROLL
@none:
    rts
@colours:
    jmp colours

; Returns 3 to 10 cycles after the sprite 0 hit of this frame, plus 6 for the return.
waitForHit:
    bit PPU_STATUS
    bvs waitForHit
@next:
    bit PPU_STATUS
    bvc @next
    rts

; The colours. `now` counts cycles since the end of the line before a block. A delay changes X.

.macro spend cycles
    .local loop, rounds, rest
    .if (cycles) < 0
        .error "too late"
    .endif
    .if (cycles) > 1281
        ldx #0
        .assert >* = >(* + 2), lderror, "a delay crosses a page"
loop:   dex
        bne loop
        spend (cycles) - 1281
    .elseif (cycles) >= 12
        rounds .set ((cycles) - 1) / 5
        rest .set (cycles) - 1 - rounds * 5
        .if rest = 1
            rounds .set rounds - 1
            rest .set 6
        .endif
        ldx #rounds
        .assert >* = >(* + 2), lderror, "a delay crosses a page"
:       dex
        bne :-
        idle rest
    .else
        idle cycles
    .endif
.endmacro

.macro idle cycles
    .if (cycles) & 1
        bit third
        .repeat ((cycles) - 3) / 2
            nop
        .endrepeat
    .else
        .repeat (cycles) / 2
            nop
        .endrepeat
    .endif
.endmacro

; Waits until `early` cycles before the end of line `line` of a block; line 0 is the one before it.
.macro until line, early
    spend (line) * 341 / 3 - (early) - now
    now .set (line) * 341 / 3 - (early)
.endmacro

    .segment "TIMED"
; Five groups of three colours for each of four rows of brightness.
hues:
    .repeat 4, BRIGHTNESS
        .repeat 12, HUE
            .byte BRIGHTNESS * 16 + HUE + 1
        .endrepeat
        .byte BRIGHTNESS * 16, BRIGHTNESS * 16 + $0D, TEXT_COLOUR
    .endrepeat

; VRAM addresses at which the picture continues after each block's blank lines.
rows:
    .repeat 4, BLOCK
        .byte <($2000 + (FIRST_LINE + 8 + BLOCK * BLOCK_LINES) * 4)
    .endrepeat
rowPages:
    .repeat 4, BLOCK
        .byte >($2000 + (FIRST_LINE + 8 + BLOCK * BLOCK_LINES) * 4)
    .endrepeat

colours:
    ; The letters above the colours are white in every palette.
    lda #$3F
    sta PPU_ADDRESS
    lda #0
    sta PPU_ADDRESS
    ldx #32
@white:
    ldy #TEXT_COLOUR
    txa
    and #3
    bne @store
    ldy #BLACK
@store:
    sty PPU_DATA
    dex
    bne @white
    ldx #0
    stx PPU_ADDRESS
    stx PPU_ADDRESS
    lda _ppuControl
    sta PPU_CONTROL
    stx PPU_SCROLL
    stx PPU_SCROLL
    stx at
    stx blocks
    jsr waitForHit
    ; The hit is on line 24 at dot 203; the first block counts from dot 262 of line 39. Of the 1,725
    ; cycles in between about 14 are gone, and a few more or less, as the last read fell.
    spend 1711
block:
    now .set 0
    lda #0
    sta PPU_MASK
    lda #$3F
    sta PPU_ADDRESS
    lda #0
    sta PPU_ADDRESS
    now .set now + 18
    ; Colours change after the end of a line. In between the VRAM address points to a black entry, which the
    ; screen shows meanwhile.
    .repeat 5, GROUP
        ldy at
        lda hues + 2,y
        sta third
        inc at
        inc at
        inc at
        now .set now + 25
        until GROUP + 1, 12
        ldx hues,y
        lda hues + 1,y
        tay
        lda #BLACK
        sta PPU_DATA
        stx PPU_DATA
        sty PPU_DATA
        lda third
        sta PPU_DATA
        now .set now + 31
    .endrepeat
    ldy blocks
    lda rowPages,y
    sta PPU_ADDRESS
    now .set now + 11
    until 8, 6
    lda rows,y
    ldx #SHOW
    sta PPU_ADDRESS
    stx PPU_MASK
    now .set now + 14
    .repeat 7, EMPHASIS
        until 13 + EMPHASIS * 5, 0
        lda #SHOW | (EMPHASIS + 1) << 5
        sta PPU_MASK
        now .set now + 6
    .endrepeat
    inc blocks
    lda blocks
    cmp #4
    beq @done
    now .set now + 12
    until BLOCK_LINES, 3
    jmp block
@done:
    until BLOCK_LINES, 0
    lda #SHOW
    sta PPU_MASK
    rts
