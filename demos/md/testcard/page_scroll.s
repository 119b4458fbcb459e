| Scrolling: the whole plane, by rows of eight lines, by lines, by pairs of columns, and by lines and columns
| at once, in all six sizes that the planes can have. Plane A bears the numbers of its cells, so that it is
| seen where it repeats.
    .include "testcard/testcard.inc"

    .equ kSizes, 6
    .equ kModes, 5

    .text
    .globl ScrollOpen
ScrollOpen:
    clr.w size
    clr.w mode
    jsr NewSize
    text kWindow, 1, 1, kCyan+kOnGround, "SIZE (UP, DOWN)"
    text kWindow, 1, 25, kCyan+kOnGround, "(B)"
    bra PutNames

PutNames:
    move.w size, d0
    lsl.w #3, d0
    lea sizeNames, a0
    adda.w d0, a0
    textAt kWindow, 1, 17, kOnGround
    move.w mode, d0
    lsl.w #4, d0
    lea modeNames, a0
    adda.w d0, a0
    textAt kWindow, 1, 29, kOnGround
    rts

| Draws both planes anew for their size.
NewSize:
    movem.l d2-d7, -(sp)
    move.w size, d0
    add.w d0, d0
    add.w d0, d0
    lea sizes, a0
    adda.w d0, a0
    moveq #0, d6
    move.b (a0)+, d6                        | d6 the width
    moveq #0, d7
    move.b (a0)+, d7                        | d7 the height
    move.w (a0), 4(a6)
    vramWrite kPlaneA
    moveq #0, d5
1:  moveq #0, d4
2:  bsr NumberCell
    move.w d0, (a6)
    addq.w #1, d4
    cmp.w d6, d4
    blo 2b
    addq.w #1, d5
    cmp.w d7, d5
    blo 1b
    | Plane B: bands of colour of eight cells.
    vramWrite kPlaneB
    moveq #0, d5
11: moveq #0, d4
12: move.w d4, d0
    lsr.w #3, d0
    move.w d5, d1
    lsr.w #3, d1
    eor.w d1, d0
    move.w #kSolid+11, d1
    btst #0, d0
    beq 13f
    move.w #kSolid+13, d1
    btst #1, d0
    beq 13f
    move.w #kSolid+12, d1
13: move.w d1, (a6)
    addq.w #1, d4
    cmp.w d6, d4
    blo 12b
    addq.w #1, d5
    cmp.w d7, d5
    blo 11b
    movem.l (sp)+, d2-d7
    rts

| The cell of column d4 and row d5 to d0. In every fourth row there are, by fours, the two digits of the column
| (hexadecimal) and in another colour those of the row; in the others a dot in every fourth column.
NumberCell:
    move.w d4, d1
    andi.w #3, d1
    move.w d5, d0
    andi.w #3, d0
    beq 1f
    moveq #0, d0
    tst.w d1
    bne 4f
    move.w #kFont+14, d0
    bra 4f
1:  move.w #kHigh, d2
    move.w d4, d0
    andi.w #0xFC, d0
    btst #1, d1
    beq 2f
    move.w #kHigh+kCyan, d2
    move.w d5, d0
2:  btst #0, d1
    bne 3f
    lsr.w #4, d0
3:  andi.w #15, d0
    cmpi.w #10, d0
    blo 5f
    addq.w #7, d0
5:  add.w d2, d0
    addi.w #kFont+16, d0
4:  rts

    .globl ScrollFrame
ScrollFrame:
    movem.l d2-d5/a2, -(sp)
    move.w padPressed, d0
    moveq #0, d2
    moveq #0, d3
    btst #kUp, d0
    beq 1f
    moveq #-1, d2
1:  btst #kDown, d0
    beq 2f
    moveq #1, d2
2:  btst #kB, d0
    beq 3f
    moveq #1, d3
3:  tst.b touched
    bne 4f
    moveq #0, d0
    move.w pageFrame, d0
    cmpi.w #160, d0
    beq 9f
    divu #40, d0
    swap d0
    tst.w d0
    bne 4f
    moveq #1, d3
    bra 4f
9:  moveq #1, d2
    moveq #1, d3
4:  move.w d2, d0
    or.w d3, d0
    beq 7f
    add.w mode, d3
    cmpi.w #kModes, d3
    blo 5f
    moveq #0, d3
5:  move.w d3, mode
    add.w size, d2
    bpl 6f
    moveq #kSizes-1, d2
6:  cmpi.w #kSizes, d2
    blo 8f
    moveq #0, d2
8:  cmp.w size, d2
    beq 10f
    move.w d2, size
    vdpRegister 1, 0x34
    bsr NewSize
    vdpRegister 1, 0x74
10: bsr PutNames
7:  lea sine, a2
    bsr PutColumns
    bsr PutLines
    move.w mode, d0
    lea modeBits, a0
    move.w #0x8B00, d1
    move.b 0(a0, d0.w), d1
    move.w d1, 4(a6)
    movem.l (sp)+, d2-d5/a2
    rts

| All 240 lines of the table: plane A sways, plane B moves steadily the other way. Whole planes use line 0,
| rows of eight every eighth.
PutLines:
    vramWrite kHScroll
    move.w pageFrame, d2
    move.w d2, d3
    neg.w d3
    move.w d2, d5
    add.w d5, d5
    move.w #239, d4
1:  move.w d5, d0
    andi.w #255, d0
    move.b 0(a2, d0.w), d0
    ext.w d0
    asr.w #3, d0
    move.w d0, (a6)
    move.w d3, (a6)
    addq.w #2, d5
    dbra d4, 1b
    rts

| Twenty pairs of columns, or the first pair alone for all.
PutColumns:
    vsramWrite 0
    move.w pageFrame, d2
    move.w d2, d5
    add.w d5, d5
    moveq #19, d4
1:  move.w d5, d0
    andi.w #255, d0
    move.b 0(a2, d0.w), d0
    ext.w d0
    asr.w #3, d0
    move.w d0, (a6)
    asr.w #1, d0
    add.w d2, d0
    move.w d0, (a6)
    addi.w #12, d5
    dbra d4, 1b
    rts

    .section .rodata
    .balign 4
| Width, height and register 16.
sizes:
    .byte 32, 32
    .word 0x9000
    .byte 64, 32
    .word 0x9001
    .byte 128, 32
    .word 0x9003
    .byte 32, 64
    .word 0x9010
    .byte 64, 64
    .word 0x9011
    .byte 32, 128
    .word 0x9030
sizeNames:
    .asciz "32X32  ", "64X32  ", "128X32 ", "32X64  ", "64X64  ", "32X128 "
| Sixteen bytes each.
modeNames:
    .asciz "WHOLE     "
    .space 5
    .asciz "ROWS      "
    .space 5
    .asciz "LINES     "
    .space 5
    .asciz "COLUMNS   "
    .space 5
    .asciz "LINES+COL."
    .space 5
| Register 11.
modeBits: .byte 0, 2, 3, 4, 7
    .balign 2

    .section .bss
size: .space 2
mode: .space 2
