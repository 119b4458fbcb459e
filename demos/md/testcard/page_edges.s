| The edges of the picture in both widths and, on a 50 Hz console, both heights: a white line in the very
| first and last rows and columns, a yellow one eight dots further in, the border's colour outside.
    .include "testcard/testcard.inc"

    .equ kTop, kOwn
    .equ kSide, kOwn+1
    .equ kCorner, kOwn+2
    .equ kGrid, kOwn+3

    .text
    .globl EdgesOpen
EdgesOpen:
    clr.w narrow
    clr.w tall
    bra Draw

    .globl EdgesFrame
EdgesFrame:
    movem.l d2-d3, -(sp)
    move.w padPressed, d0
    moveq #0, d2
    moveq #0, d3
    btst #kB, d0
    beq 1f
    moveq #1, d2
1:  andi.w #3, d0
    beq 2f
    moveq #1, d3
2:  tst.b touched
    bne 3f
    move.w pageFrame, d0
    cmpi.w #120, d0
    bne 4f
    moveq #1, d2
4:  cmpi.w #60, d0
    beq 5f
    cmpi.w #180, d0
    bne 3f
5:  moveq #1, d3
3:  btst #6, kVersion                       | 240 lines need 50 Hz
    bne 6f
    moveq #0, d3
6:  move.w d2, d0
    or.w d3, d0
    beq 7f
    eor.w d2, narrow
    eor.w d3, tall
    bsr Draw
    jsr WaitBottom
    move.w #0x8174, d0
    tst.w tall
    beq 8f
    move.w #0x817C, d0
8:  move.w d0, 4(a6)
7:  movem.l (sp)+, d2-d3
    rts

Draw:
    movem.l d2-d7/a2, -(sp)
    jsr ResetPicture
    vdpRegister 18, 0
    vdpRegister 7, 11
    moveq #40, d6                           | d6 the columns, d7 the rows
    moveq #28, d7
    tst.w narrow
    beq 1f
    vdpRegister 12, 0
    moveq #32, d6
1:  tst.w tall
    beq 2f
    moveq #30, d7
2:  move.w #kTop*32, d0
    lea edges, a0
    moveq #3, d1
    moveq #0, d2
    moveq #1, d3
    moveq #0, d4
    jsr MakeGlyphs
    lea grid, a0
    moveq #7, d0
10: move.l (a0)+, (a6)
    dbra d0, 10b
    | The grid lies in plane B over all of it, the circle amid it.
    move.w #kPlaneB, d0
    move.w #kGrid, d1
    move.w d6, d2
    move.w d7, d3
    jsr PutBlock
    jsr PutCircle
    move.w #kPlaneA, d0
    moveq #0, d1
    move.w d6, d4
    move.w d7, d5
    bsr Frame
    move.w #kPlaneA+kPitch+2, d0
    move.w #kYellow, d1
    move.w d6, d4
    subq.w #2, d4
    move.w d7, d5
    subq.w #2, d5
    bsr Frame
    bsr Middle
    movem.l (sp)+, d2-d7/a2
    rts

| The middle, 16 cells wide; d5 is the address of its cells: the title, the size, bars of full
| colour and a ramp of gray.
Middle:
    move.w d6, d5
    andi.w #0xFE, d5
    addi.w #kPlaneA-16+7*kPitch, d5
    move.w d5, d0
    subq.w #2, d0
    move.w #kHigh+kYellow+kFont-32, d1
    jsr PutTitle
    moveq #0, d0
    move.w d6, d0
    bsr Dots
    move.w d5, d0
    addi.w #2*kPitch, d0
    jsr PutText
    move.w d5, d0
    addi.w #2*kPitch+8, d0
    lea by, a0
    jsr PutText
    moveq #0, d0
    move.w d7, d0
    bsr Dots
    move.w d5, d0
    addi.w #2*kPitch+12, d0
    jsr PutText
    lea width, a0
    move.w d5, d0
    addi.w #3*kPitch, d0
    jsr PutText
    lea onlyFifty, a0
    btst #6, kVersion
    beq 3f
    lea fifty, a0
3:  move.w d5, d0
    addi.w #4*kPitch, d0
    jsr PutText
    lea bars, a2
    moveq #7, d4
    addi.w #6*kPitch, d5
4:  move.w d5, d0
    move.w (a2)+, d1
    moveq #2, d2
    moveq #4, d3
    jsr PutBlock
    addq.w #4, d5
    dbra d4, 4b
    cramWrite 33
    moveq #7, d0
    moveq #0, d1
5:  move.w d1, (a6)
    addi.w #0x222, d1
    dbra d0, 5b
    moveq #7, d4
    addi.w #4*kPitch-32, d5
    move.w #kCyan+kSolid+1, d1
7:  move.w d5, d0
    moveq #2, d2
    moveq #2, d3
    jsr PutBlock
    addq.w #1, d1
    addq.w #4, d5
    dbra d4, 7b
    rts

| d0 cells in dots as text; d1 is set for letters.
Dots:
    lsl.w #3, d0
    moveq #3, d1
    jsr MakeDecimal
    move.w #kHigh+kFont-32, d1
    rts

| A frame of d4 x d5 cells from address d0 on; d1 the palette.
Frame:
    movem.l d2-d7, -(sp)
    move.w d0, d6
    move.w d1, d7
    subq.w #2, d4
    subq.w #2, d5
    | The top and the bottom.
    addi.w #kCorner, d1
    move.w #kTop, d2
    add.w d7, d2
    bsr 1f
    move.w d5, d3
    addq.w #1, d3
    lsl.w #7, d3
    move.w d6, d0
    add.w d3, d0
    ori.w #kFlipY, d1
    ori.w #kFlipY, d2
    bsr 1f
    | The sides.
    move.w d6, d0
    addi.w #kPitch, d0
    move.w #kSide, d1
    add.w d7, d1
    moveq #1, d2
    move.w d5, d3
    jsr PutBlock
    move.w d6, d0
    addi.w #kPitch+2, d0
    add.w d4, d0
    add.w d4, d0
    ori.w #kFlipX, d1
    jsr PutBlock
    movem.l (sp)+, d2-d7
    rts
1:  jsr VramAt
    move.w d1, (a6)
    move.w d4, d3
    subq.w #1, d3
2:  move.w d2, (a6)
    dbra d3, 2b
    move.w d1, d3
    ori.w #kFlipX, d3
    move.w d3, (a6)
    rts

    .section .rodata
    .balign 2
bars:
    .word kSolid+1, kSolid+6, kSolid+8, kSolid+7, kSolid+10, kSolid+4, kSolid+9, kHigh+kSolid+0
edges:
    .byte 0xFF, 0, 0, 0, 0, 0, 0, 0
    .byte 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80
    .byte 0xFF, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80
    .globl grid
    .balign 4
grid:
    .long 0x33333333, 0x30000000, 0x30000000, 0x30000000, 0x30000000, 0x30000000, 0x30000000, 0x30000000
by: .asciz "X"
width: .asciz "B: WIDTH"
fifty: .asciz "UP, DOWN: HEIGHT"
onlyFifty: .asciz "HEIGHT: 50 HZ ONLY"

    .section .bss
    .balign 2
narrow: .space 2
tall: .space 2
