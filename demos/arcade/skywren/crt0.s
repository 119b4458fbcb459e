; Vectors, start and the interrupt handler.
;
; Only the second VDP interrupts. Its line interrupt, every eight lines, sets the first VDP's next
; horizontal scroll: each band of the landscape moves at its own speed.
    .module crt0
    .globl _main
    .globl _frameCount, _bankLatch, _flipReady, _playScroll, _bands, _bandPointer
    .globl l__INITIALIZER, s__INITIALIZER, s__INITIALIZED

LOWER_CONTROL = 0xBB
UPPER_CONTROL = 0xBF
BANK_LATCH    = 0xF7
UPPER_BANK    = 0x40
SCROLL_X      = 0x88
RAM           = 0xC000
RAM_BYTES     = 0x3FF0
STACK         = 0xFFF0

; The order of the areas: code and constants in ROM, then the variables.
    .area _CODE
    .area _HOME
    .area _INITIALIZER
    .area _GSINIT
    .area _GSFINAL
    .area _DATA
    .area _INITIALIZED
    .area _BSEG
    .area _BSS
    .area _HEAP

    .area _CODE
    di
    jp start
    .ds 0x38 - 4
interrupt:
    push af
    in a, (UPPER_CONTROL)
    or a
    jp m, frameInterrupt
    push hl
    ld hl, (_bandPointer)
    ld a, (hl)
    out (LOWER_CONTROL), a
    ld a, #SCROLL_X
    out (LOWER_CONTROL), a
    inc hl
    ld (_bandPointer), hl
    pop hl
    pop af
    ei
    reti

frameInterrupt:
    push hl
    ld hl, #_bands
    ld a, (hl)
    out (LOWER_CONTROL), a
    ld a, #SCROLL_X
    out (LOWER_CONTROL), a
    inc hl
    ld (_bandPointer), hl
    ld hl, #_frameCount
    inc (hl)
; A picture made in the hidden bank is shown with the scroll that belongs to it.
    ld hl, #_flipReady
    ld a, (hl)
    or a
    jr z, frameDone
    ld (hl), #0
    ld a, (_bankLatch)
    xor #UPPER_BANK
    ld (_bankLatch), a
    out (BANK_LATCH), a
    ld a, (_playScroll)
    out (UPPER_CONTROL), a
    ld a, #SCROLL_X
    out (UPPER_CONTROL), a
frameDone:
    pop hl
    pop af
    ei
    reti

start:
    im 1
    ld sp, #STACK
    ld hl, #RAM
    ld de, #RAM + 1
    ld bc, #RAM_BYTES - 1
    ld (hl), #0
    ldir
    ld bc, #l__INITIALIZER
    ld a, b
    or c
    jr z, run
    ld hl, #s__INITIALIZER
    ld de, #s__INITIALIZED
    ldir
run:
    call _main
halted:
    jr halted
