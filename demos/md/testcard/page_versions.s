| What the console says of itself, and what is measured: the lines of a frame, the 68000's clocks in one and
| the Z80's. A frame is taken from line 100 to line 100, which comes once in every mode.
    .include "testcard/testcard.inc"

    .equ kLine, 100
    .equ kCyclesPerTurn, 26
    .equ kZ80CyclesPerTurn, 34

    .text
    .globl VersionsOpen
VersionsOpen:
    movem.l d2-d4, -(sp)
    lea 8(a6), a1
    | Lines.
    bsr NextFrame
    moveq #0, d2
    moveq #kLine+1, d0
1:  move.b (a1), d1
    cmp.b d1, d0
    beq 1b
    addq.w #1, d2
    move.b d1, d0
    cmpi.b #kLine+1, d0
    bne 1b
    move.w d2, lines
    | The 68000: every turn of the two loops takes 26 clocks.
    bsr NextFrame
    moveq #kLine, d0
    moveq #0, d2
2:  addq.l #1, d2
    cmp.b (a1), d0
    bne 2b
3:  addq.l #1, d2
    cmp.b (a1), d0
    beq 3b
    mulu #kCyclesPerTurn, d2
    move.l d2, cycles
    | The Z80 counts by itself for a frame.
    lea kZ80Ram, a0
    lea counter, a1
    moveq #counterEnd-counter-1, d0
4:  move.b (a1)+, (a0)+
    dbra d0, 4b
    lea 8(a6), a1
    move.w #0, kZ80Reset
    moveq #60, d0
5:  dbra d0, 5b
    bsr NextFrame
    move.w #0x100, kZ80Reset
    move.w #0, kZ80Bus
    bsr NextFrame
    move.w #0x100, kZ80Bus
6:  btst #0, kZ80Bus
    bne 6b
    moveq #0, d0
    move.b kZ80Ram+0x1001, d0
    lsl.w #8, d0
    move.b kZ80Ram+0x1000, d0
    mulu #kZ80CyclesPerTurn, d0
    move.l d0, z80Cycles
    jsr HoldZ80
    bsr PutAll
    movem.l (sp)+, d2-d4
    rts

| Waits for the beginning of the line after kLine.
NextFrame:
    cmpi.b #kLine, (a1)
    bne NextFrame
1:  cmpi.b #kLine, (a1)
    beq 1b
    rts

    .macro label row, string
    text kPlaneA, \row, 3, kCyan, "\string"
    .endm

    .macro number row, places
    moveq #\places, d1
    jsr MakeDecimal
    textAt kPlaneA, \row, 21, 0
    .endm

PutAll:
    label 4, "VERSION BYTE"
    moveq #0, d0
    move.b kVersion, d0
    jsr MakeHex
    textAt kPlaneA, 4, 21, 0
    label 6, "CONSOLE"
    lea domestic, a0
    btst #7, kVersion
    beq 1f
    lea overseas, a0
1:  textAt kPlaneA, 6, 21, 0
    label 8, "BY THE BYTE"
    lea sixty, a0
    btst #6, kVersion
    beq 2f
    lea fifty, a0
2:  textAt kPlaneA, 8, 21, 0
    label 10, "BY THE VDP"
    lea sixty, a0
    move.w 4(a6), d0
    btst #0, d0
    beq 3f
    lea fifty, a0
3:  textAt kPlaneA, 10, 21, 0
    label 12, "LICENCE CHECK"
    lea no, a0
    move.b kVersion, d0
    andi.b #15, d0
    beq 4f
    lea yes, a0
4:  textAt kPlaneA, 12, 21, 0
    label 14, "EXPANSION"
    lea no, a0
    btst #5, kVersion
    bne 5f
    lea yes, a0
5:  textAt kPlaneA, 14, 21, 0
    label 16, "LINES A FRAME"
    moveq #0, d0
    move.w lines, d0
    number 16, 6
    label 18, "68000 A FRAME"
    move.l cycles, d0
    number 18, 6
    label 20, "68000 A LINE"
    move.l cycles, d0
    divu lines, d0
    andi.l #0xFFFF, d0
    number 20, 6
    label 22, "68000 KHZ"
    | With 59.92 or 49.70 frames a second: half the clocks times a hundred frames, by 50000.
    move.l cycles, d0
    lsr.l #1, d0
    bsr Speed
    number 22, 6
    label 24, "Z80 KHZ"
    move.l z80Cycles, d0
    lsr.l #1, d0
    bsr Speed
    number 24, 6
    text kPlaneA, 26, 3, kGray, "KHZ BY 59.92 OR 49.70 FRAMES"
    rts

| Half a frame's clocks to thousands a second.
Speed:
    move.w #5992, d1
    cmpi.w #290, lines
    blo 1f
    move.w #4970, d1
1:  cmpi.l #0x10000, d0
    bhs 2f
    mulu d1, d0
    divu #50000, d0
    andi.l #0xFFFF, d0
    rts
    | A longer frame: by halves once more.
2:  lsr.l #1, d0
    mulu d1, d0
    divu #25000, d0
    andi.l #0xFFFF, d0
    rts

    .globl VersionsFrame
VersionsFrame:
    rts

    .section .rodata
| LD HL,0; turn: INC HL; LD (0x1000),HL; JR turn: 6 + 16 + 12 clocks.
counter:
    .byte 0x21, 0x00, 0x00, 0x23, 0x22, 0x00, 0x10, 0x18, 0xFA
counterEnd:
domestic: .asciz "JAPAN"
overseas: .asciz "OVERSEAS"
sixty: .asciz "60 HZ"
fifty: .asciz "50 HZ"
yes: .asciz "YES"
no: .asciz "NO"
    .balign 2

    .section .bss
    .balign 4
cycles: .space 4
z80Cycles: .space 4
lines: .space 2
