| The window at all four sides, in corners, nowhere and everywhere, over planes that move.
    .include "testcard/testcard.inc"

    .equ kModes, 8

    .text
    .globl WindowOpen
WindowOpen:
    movem.l d2-d4, -(sp)
    vdpRegister 18, 0
    jsr MakeTitleSprites
    jsr PutSprites
    | The window: a light frame of stripes and its name in every third row.
    move.w #kOwn*32, d0
    jsr VramAt
    lea stripes, a0
    moveq #15, d0
1:  move.l (a0)+, (a6)
    dbra d0, 1b
    block kWindow, 0, 0, 40, 30, kOwn
    moveq #2, d3
2:  move.w d3, d0
    lsl.w #7, d0
    addi.w #kWindow+2, d0
    lea windowText, a0
    move.w #kHigh+kYellow+kOpaque-32, d1
    jsr PutText
    addq.w #3, d3
    cmpi.w #30, d3
    blo 2b
    | Plane A holds letters on a clear ground, plane B a board.
    moveq #0, d3
3:  move.w d3, d0
    mulu #kPitch, d0
    addi.w #kPlaneA, d0
    lea planeText, a0
    move.w #kCyan+kFont-32, d1
    jsr PutText
    addq.w #2, d3
    cmpi.w #32, d3
    blo 3b
    move.w #kPlaneB, d0
    jsr VramAt
    move.w #64*32-1, d1
    moveq #0, d2
4:  move.w d1, d0
    move.w d1, d2
    lsr.w #6, d2
    eor.w d2, d0
    lsr.w #1, d0
    move.w #kSolid+3, d2
    btst #0, d0
    beq 5f
    move.w #kOwn+1, d2
5:  move.w d2, (a6)
    dbra d1, 4b
    move.w #1, mode
    movem.l (sp)+, d2-d4
    rts

| The title is made of sprites of four cells, since no plane is at rest.
MakeTitleSprites:
    movem.l d2-d7/a2, -(sp)
    movea.l pageTitle, a2
    move.w #(kOwn+16)*32, d5
    move.w #kHigh+kYellow+kOwn+16, d6
    moveq #24, d7
1:  moveq #3, d4
2:  moveq #0, d0
    move.b (a2), d0
    beq 3f
    addq.l #1, a2
    subi.w #32, d0
3:  lea font, a0
    lsl.w #3, d0
    adda.w d0, a0
    move.l d4, -(sp)
    move.w d5, d0
    moveq #1, d1
    moveq #11, d2
    moveq #1, d3
    moveq #0, d4
    jsr MakeGlyphs
    move.l (sp)+, d4
    addi.w #32, d5
    dbra d4, 2b
    moveq #8, d0
    move.w d7, d1
    moveq #12, d2
    move.w d6, d3
    jsr AddSprite
    addi.w #32, d7
    addq.w #4, d6
    tst.b (a2)
    bne 1b
    movem.l (sp)+, d2-d7/a2
    rts

| Up and down change the window; by itself it changes each half second.
    .globl WindowFrame
WindowFrame:
    movem.l d2-d4, -(sp)
    move.w padPressed, d0
    moveq #0, d1
    btst #kUp, d0
    beq 1f
    moveq #-1, d1
1:  btst #kDown, d0
    beq 2f
    moveq #1, d1
2:  tst.b touched
    bne 3f
    move.w pageFrame, d0
    andi.w #31, d0
    bne 3f
    moveq #1, d1
3:  add.w mode, d1
    andi.w #kModes-1, d1
    move.w d1, mode
    lsl.w #2, d1
    lea modes, a0
    adda.w d1, a0
    move.w (a0)+, 4(a6)
    move.w (a0), 4(a6)
    | The planes: one each way.
    move.w pageFrame, d0
    vramWrite kHScroll
    move.w d0, (a6)
    move.w d0, d1
    neg.w d1
    move.w d1, (a6)
    vsramWrite 0
    move.w d0, d1
    lsr.w #1, d1
    move.w d1, (a6)
    move.w d0, (a6)
    movem.l (sp)+, d2-d4
    rts

    .section .rodata
    .balign 4
| Registers 17 and 18: nowhere, top, bottom, left, right, two corners, everywhere.
modes:
    .word 0x9100, 0x9200
    .word 0x9100, 0x9208
    .word 0x9100, 0x9294
    .word 0x9108, 0x9200
    .word 0x918C, 0x9200
    .word 0x9106, 0x9206
    .word 0x918E, 0x9296
    .word 0x9100, 0x921F
stripes:
    .long 0x22222222, 0x2BBBBBBB, 0x2BBBBBBB, 0x2BBBBBBB, 0x2BBBBBBB, 0x2BBBBBBB, 0x2BBBBBBB, 0x2BBBBBBB
    .long 0xDDDDDDDD, 0xDDDDDDDD, 0xDDDDDDDD, 0xDDDDDDDD, 0xDDDDDDDD, 0xDDDDDDDD, 0xDDDDDDDD, 0xDDDDDDDD
windowText: .asciz " THE WINDOW    UP AND DOWN CHANGE IT  "
planeText: .asciz "PLANE A   PLANE A   PLANE A   PLANE A   PLANE A   PLANE A       "

    .section .bss
mode: .space 2
