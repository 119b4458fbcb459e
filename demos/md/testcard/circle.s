| The circle in the middle of the page of edges, round on a screen of 4:3 in both widths.
    .include "testcard/testcard.inc"

| Its picture is of 24 x 22 cells, the centre in the midst of them.
    .equ kWidth, 24
    .equ kHeight, 22
    .equ kTiles, kOwn+8
    .equ kRadius, 87
    .equ kRadiusWide, 95                    | 35/32 of the height, as dots of 40 cells are narrow
    .equ kRadiusNarrow, 76                  | 7/8, as those of 32 are wide

    .text
| Draws the circle into the grid of plane B of d6 x d7 cells, and takes its tiles from kTiles on.
    .globl PutCircle
PutCircle:
    movem.l d2-d7/a2, -(sp)
    lea picture, a0
    move.w #kWidth*kHeight-1, d0
1:  lea grid, a1
    moveq #7, d1
2:  move.l (a1)+, (a0)+
    dbra d1, 2b
    dbra d0, 1b
    move.w #kRadiusWide, d2                 | d2 the half width, and x from it on
    cmpi.w #40, d6
    beq 3f
    move.w #kRadiusNarrow, d2
3:  bsr Outline
    move.w #kTiles*32, d0
    jsr VramAt
    lea picture, a0
    move.w #kWidth*kHeight*8-1, d0
4:  move.l (a0)+, (a6)
    dbra d0, 4b
    | The cells.
    subi.w #kWidth, d6
    subi.w #kHeight, d7
    lsr.w #1, d7
    lsl.w #7, d7
    addi.w #kPlaneB, d7
    add.w d6, d7
    move.w #kTiles, d1
    moveq #kHeight-1, d2
5:  move.w d7, d0
    jsr VramAt
    moveq #kWidth-1, d3
6:  move.w d1, (a6)
    addq.w #1, d1
    dbra d3, 6b
    addi.w #kPitch, d7
    dbra d2, 5b
    movem.l (sp)+, d2-d7/a2
    rts

| From the right end upwards and downwards: in each line the dots whose distance is just within.
Outline:
    movem.l d6-d7, -(sp)
    move.w d2, d4
    mulu #kRadius, d4
    mulu d4, d4                             | d4 what (x * height)^2 + (y * width)^2 may reach
    move.w d2, d5                           | d5 the half width
    moveq #0, d3                            | d3 the line
1:  move.w d3, d6
    mulu d5, d6
    mulu d6, d6
    move.w d2, d7
    mulu #kRadius, d7
    mulu d7, d7
    add.l d6, d7
    cmp.l d4, d7
    bls 2f
    bsr Plot
    subq.w #1, d2
    bpl 1b
    bra 3f
2:  bsr Plot
    addq.w #1, d3
    cmpi.w #kRadius, d3
    bls 1b
3:  movem.l (sp)+, d6-d7
    rts

| The four dots at d2, d3 from the centre.
Plot:
    movem.l d2-d5, -(sp)
    move.w d2, d4
    not.w d4
    move.w d3, d5
    not.w d5
    bsr 1f
    exg d2, d4
    bsr 1f
    exg d3, d5
    bsr 1f
    exg d2, d4
    bsr 1f
    movem.l (sp)+, d2-d5
    rts
1:  move.w d3, d0
    addi.w #kHeight*4, d0
    move.w d0, d1
    lsr.w #3, d0
    mulu #kWidth*32, d0
    andi.w #7, d1
    lsl.w #2, d1
    add.w d1, d0
    lea picture, a0
    adda.l d0, a0
    move.w d2, d0
    addi.w #kWidth*4, d0
    move.w d0, d1
    andi.w #0xFFF8, d1
    lsl.w #2, d1
    adda.w d1, a0
    move.w d0, d1
    andi.w #7, d1
    lsr.w #1, d1
    adda.w d1, a0
    btst #0, d0
    beq 2f
    andi.b #0xF0, (a0)
    ori.b #0x02, (a0)
    rts
2:  andi.b #0x0F, (a0)
    ori.b #0x20, (a0)
    rts

    .section .bss
    .balign 4
picture: .space kWidth*kHeight*32
