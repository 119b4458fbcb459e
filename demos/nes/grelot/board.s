; The board's registers, written one bit at a time, five in all, the lowest first.

    .include "common/nes.inc"

    .export frameHook, interruptRequest
    .export _BoardInit, _BoardControl, _BoardProgram, _bells, _programBank

CONTROL = $8000
CHARS_0 = $A000
CHARS_1 = $C000
PROGRAM = $E000

FIGURES = 5             ; the bank of the sprites, in 4 KB

    .bss
_bells:       .res 1    ; the background's bank, for the next vblank
_programBank: .res 1    ; at 0x8000

    .macro fiveBits register
        .repeat 5, INDEX
            sta register
            .if INDEX < 4
                lsr a
            .endif
        .endrepeat
    .endmacro

    .segment "STARTUP"
; void BoardInit(void)
_BoardInit:
    lda #$80
    sta CONTROL
    lda #FIGURES
    fiveBits CHARS_1
    lda #0
    jsr _BoardProgram
    lda #2
    ; fall through

; __fastcall__ void BoardControl(u8 mirroring): 0 and 1 one page, 2 side by side, 3 one below the other.
_BoardControl:
    and #3
    ora #$1C            ; the last program bank is fixed, characters in halves
    fiveBits CONTROL
    rts

; __fastcall__ void BoardProgram(u8 bank)
_BoardProgram:
    sta _programBank
    fiveBits PROGRAM    ; bit 4 clear: the memory at 0x6000 is open
    rts

    .code
frameHook:
    lda _bells
    fiveBits CHARS_0
    rts

interruptRequest:
    rti
