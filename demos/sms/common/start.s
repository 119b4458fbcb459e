; The first 256 bytes: reset, interrupt and pause vectors. Linked first.
; The program brings `_main` (C) and `_Interrupt` (assembly, saves what it uses, ends with EI, RET).

    .module start
    .include "common/sms.inc"
    .globl _main, _Interrupt

    .area _CODE
vectors:
    di
    im 1
    ld sp, #STACK_TOP
    jr start
    .ds 0x38 - (. - vectors)
    jp _Interrupt
    .ds 0x66 - (. - vectors)
pause:
    push af
    ld a, #1
    ld (_pausePressed), a
    pop af
    retn

start:
    ; The console keeps the value of port 0x3E in the first byte of the work RAM.
    ld a, (0xC000)
    ld hl, #0xC000              ; clear up to just below the stack
    ld de, #0xC001
    ld (hl), #0
    ld bc, #STACK_TOP - 0xC000 - 1
    ldir
    ld (_memoryControl), a
    call _main
stop:
    jr stop

    ; The order of the areas in memory.
    .area _HOME
    .area _INITIALIZER
    .area _GSINIT
    .area _GSFINAL
    .area _DATA
_pausePressed::
    .ds 1
_memoryControl::
    .ds 1
    .area _INITIALIZED
    .area _BSEG
    .area _BSS
    .area _HEAP
