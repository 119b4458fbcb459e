; Vectors, start and the interrupt handlers.
;
; The VDP's line interrupt changes colour 0, the sky, every three lines, for the many shades of the evening.
; Serial bytes of the link cable arrive by NMI.
    .module crt0
    .globl _main
    .globl _frameCount, _skyTable, _skyPointer
    .globl _linkQueue, _linkWritten, _linkBroken
    .globl l__INITIALIZER, s__INITIALIZER, s__INITIALIZED

VDP_DATA     = 0xBE
VDP_CONTROL  = 0xBF
LINK_RECEIVE = 0x04
LINK_STATUS  = 0x05
RAM          = 0xC000
RAM_BYTES    = 0x1FF0
STACK        = 0xDFF0

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
    jp videoInterrupt
    .ds 0x66 - 0x3B

; A byte has come, or the line is dead.
linkInterrupt:
    push af
    in a, (LINK_STATUS)
    bit 2, a
    jr nz, linkDead
    bit 1, a
    jr z, linkDone
    push hl
    push de
    ld hl, #_linkWritten
    ld a, (hl)
    inc (hl)
    and #7
    ld e, a
    ld d, #0
    ld hl, #_linkQueue
    add hl, de
    in a, (LINK_RECEIVE)
    ld (hl), a
    pop de
    pop hl
linkDone:
    pop af
    retn
linkDead:
    xor a
    out (LINK_STATUS), a
    inc a
    ld (_linkBroken), a
    pop af
    retn

; The colour must change while the beam is beside the screen: the exchanges with the stack only pass
; the time until then.
videoInterrupt:
    push af
    in a, (VDP_CONTROL)
    or a
    jp m, frameInterrupt
    push hl
    push bc
    ld hl, (_skyPointer)
    ld c, #VDP_DATA
    ex (sp), hl
    ex (sp), hl
    xor a
    out (VDP_CONTROL), a
    ld a, #0xC0
    out (VDP_CONTROL), a
    outi
    outi
    ld (_skyPointer), hl
    pop bc
    pop hl
    pop af
    ei
    reti

frameInterrupt:
    push hl
    push bc
    ld hl, #_skyTable
    ld c, #VDP_DATA
    xor a
    out (VDP_CONTROL), a
    ld a, #0xC0
    out (VDP_CONTROL), a
    outi
    outi
    ld (_skyPointer), hl
    ld hl, #_frameCount
    inc (hl)
    pop bc
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
