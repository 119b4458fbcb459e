| All 512 colours at once. The chart is 16 bands of 32 colours, eight lines each. Before every line an
| interrupt writes up to five colours: while one band is shown, the places in CRAM that it does not use are
| filled for the next one. Two bands want more places than there are, so the five columns on the right use
| the same places in all bands; those are written while the beam is still left of them.
    .include "testcard/testcard.inc"

    .equ kChartColumn, 4
    .equ kFirstRow, 5
    .equ kSecondRow, 16
    .equ kLineBytes, 32

    .text
    .globl ColoursOpen
ColoursOpen:
    movem.l d2-d7/a2-a4, -(sp)
    | Of a line that has nothing to do, every write is that of the colour of the letters.
    lea lineTable, a0
    move.w #255, d0
1:  .rept 5
    move.l #0xC0020000, (a0)+
    move.w #0xEEE, (a0)+
    .endr
    addq.l #kLineBytes-30, a0
    dbra d0, 1b
    moveq #0, d4                            | d4 the band
2:  move.w d4, d5                           | d5 its row of cells
    addq.w #kFirstRow, d5
    cmpi.w #8, d4
    blo 3f
    addq.w #kSecondRow-kFirstRow-8, d5
3:  lea placesEven, a2
    btst #0, d4
    beq 4f
    lea placesOdd, a2
4:  move.w d5, d0
    lsl.w #7, d0
    addi.w #kPlaneA+kChartColumn*2, d0
    jsr VramAt
    moveq #0, d6                            | d6 the column
5:  jsr PutColour
    addq.w #1, d6
    cmpi.w #32, d6
    blo 5b
    addq.w #1, d4
    cmpi.w #16, d4
    blo 2b
    bsr Labels
    move.l #ColoursLine, hintJump+2
    vdpRegister 10, 0
    vdpRegister 0, 0x14
    movem.l (sp)+, d2-d7/a2-a4
    rts

| One field: its cell, and its write in the table.
PutColour:
    moveq #0, d0
    move.b (a2)+, d0
    move.w d0, d1
    andi.w #0x30, d1
    lsl.w #8, d1
    add.w d1, d1
    move.w d0, d2
    andi.w #15, d2
    addi.w #kSolid, d2
    add.w d1, d2
    move.w d2, (a6)
    | Red across, green down, blue from field to field.
    move.w d6, d1
    andi.w #7, d1
    add.w d1, d1
    move.w d4, d2
    andi.w #7, d2
    lsl.w #5, d2
    or.w d2, d1
    move.w d6, d2
    lsr.w #3, d2
    btst #3, d4
    beq 1f
    addq.w #4, d2
1:  lsl.w #8, d2
    add.w d2, d2
    or.w d2, d1
    | The line and the place within it.
    move.w d5, d2
    lsl.w #3, d2
    move.w d6, d3
    cmpi.w #27, d6
    bhs 2f
    lsr.w #2, d3
    subq.w #7, d2
    add.w d3, d2
    move.w d6, d3
    andi.w #3, d3
    bra 3f
2:  subi.w #27, d3
3:  lsl.w #5, d2
    add.w d3, d3
    add.w d3, d2
    add.w d3, d2
    add.w d3, d2
    lea lineTable, a0
    adda.w d2, a0
    add.w d0, d0
    ori.w #0xC000, d0
    move.w d0, (a0)+
    clr.w (a0)+
    move.w d1, (a0)
    rts

Labels:
    | All palettes but the first colour of the first are the chart's.
    block kWindow, 0, 0, 40, 2, 0
    move.w #kWindow+2, d0
    move.w #kHigh+kFont-32, d1
    jsr PutTitle
    text kPlaneA, 3, 4, 0, "BLUE 0  BLUE 1  BLUE 2  BLUE 3"
    text kPlaneA, 4, 4, 0, "0 RED 7 0 RED 7 0 RED 7 0 RED 7"
    text kPlaneA, 14, 4, 0, "BLUE 4  BLUE 5  BLUE 6  BLUE 7"
    text kPlaneA, 15, 4, 0, "0 RED 7 0 RED 7 0 RED 7 0 RED 7"
    text kPlaneA, 26, 2, 0, "RED TO THE RIGHT, GREEN 0 TO 7 DOWN"
    moveq #0, d2
1:  move.w d2, d0
    lsl.w #7, d0
    addi.w #kPlaneA+kFirstRow*kPitch+4, d0
    bsr 2f
    addi.w #(kSecondRow-kFirstRow)*kPitch, d0
    bsr 2f
    addq.w #1, d2
    cmpi.w #8, d2
    blo 1b
    rts
2:  move.w d2, d1
    addi.w #kHigh+kFont+16, d1
    jsr VramAt
    move.w d1, (a6)
    addi.w #34*2, d0
    jsr VramAt
    move.w d1, (a6)
    subi.w #34*2, d0
    rts

| Before each line: V already tells the coming one.
ColoursLine:
    movem.l d0/a0-a1, -(sp)
    lea kVdp, a1
    moveq #0, d0
    move.b 8(a1), d0
    lsl.w #5, d0
    lea lineTable, a0
    adda.w d0, a0
    .rept 5
    move.l (a0)+, 4(a1)
    move.w (a0)+, (a1)
    .endr
    movem.l (sp)+, d0/a0-a1
    rte

    .globl ColoursFrame
ColoursFrame:
    rts

    .section .rodata
| The places of a band's 32 columns in CRAM. Place 1 is the letters', 0 of a palette shows nothing.
placesEven:
    .byte 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
    .byte 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29
    .byte 30, 31, 61, 62, 63
placesOdd:
    .byte 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47
    .byte 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60
    .byte 30, 31, 61, 62, 63

    .section .bss
lineTable: .space 256*kLineBytes
