; The picture in bands, each with its own scroll: an interrupt on the line before a band sets it.
;
; The counter is loaded with `height - 1` at the interrupt of the band before, so it interrupts on a band's last
; line but one, after its pixels. The new scroll is written during the last line, which has one colour in
; this picture, so a change of fine scroll in its middle is invisible.

    .include "common/nes.inc"

    .export frameHook, interruptRequest
    .export _bandScroll, _bandTable, _BoardInit, _WaterStep

BANK_SELECT = $8000
BANK_DATA   = $8001
COUNT_LATCH = $C000
COUNT_LOAD  = $C001
COUNT_OFF   = $E000
COUNT_ON    = $E001

BANDS = 5

    .zeropage
band: .res 1

    .bss
_bandScroll: .res BANDS     ; low byte of a band's scroll
_bandTable:  .res BANDS     ; its bit 8, as bit 0 of the control register
water:       .res 1

    .rodata
; Of the bands below the status panel; 0 ends the list.
heights: .byte 40, 40, 24, 56, 0
PANEL_HEIGHT = 32

banks: .byte 8, 10, 0, 1, 2, 3, 0, 1

    .code
; void BoardInit(void)
_BoardInit:
    ldx #7
@next:
    txa
    ora #$80        ; the 1 KB banks are the background's
    sta BANK_SELECT
    lda banks,x
    sta BANK_DATA
    dex
    bpl @next
    lda #0
    sta $A000       ; pages side by side
    sta COUNT_OFF
    cli
    rts

; __fastcall__ void WaterStep(u8 step): 0 to 3.
_WaterStep:
    and #3
    clc
    adc #3
    sta water
    rts

frameHook:
    sta COUNT_OFF
    lda #$85
    sta BANK_SELECT
    lda water
    bne @known
    lda #3
@known:
    sta BANK_DATA
    lda #PANEL_HEIGHT - 1
    sta COUNT_LATCH
    sta COUNT_LOAD
    lda #0
    sta band
    sta COUNT_ON
    rts

interruptRequest:
    pha
    txa
    pha
    ldx band
    sta COUNT_OFF
    lda heights,x
    beq @last
    sec
    sbc #1
    sta COUNT_LATCH
    sta COUNT_ON
@last:
    bit PPU_STATUS
    lda _bandScroll,x
    sta PPU_SCROLL
    sta PPU_SCROLL
    lda _ppuControl
    and #$FE
    ora _bandTable,x
    sta PPU_CONTROL
    inc band
    pla
    tax
    pla
    rti
