| Interlace. In the double resolution a cell is 8 x 16 dots, in which two lines of letters have room. The two
| other modes show the same with cells of 8 x 8.
    .include "testcard/testcard.inc"

| Tiles of 64 bytes: the font with every row twice, then the page's own; in the other modes tiles of 32.
    .equ kTallFont, 0x100
    .equ kTallOwn, 0x180
    .equ kSmallOwn, 0x310
    .equ kPairs, 0x190

    .text
    .globl InterlaceOpen
InterlaceOpen:
    clr.w mode
    bra Draw

    .globl InterlaceFrame
InterlaceFrame:
    move.w padPressed, d0
    andi.w #0x13, d0                        | up, down and B
    bne 1f
    tst.b touched
    bne 2f
    move.w pageFrame, d0
    beq 2f
    move.w d0, d1
    ext.l d1
    divu #60, d1
    swap d1
    tst.w d1
    bne 2f
1:  addq.w #1, mode
    cmpi.w #3, mode
    blo 3f
    clr.w mode
3:  bsr Draw
    jsr WaitBottom
    vdpRegister 1, 0x74
2:  rts

Draw:
    movem.l d2-d7/a2-a3, -(sp)
    jsr ResetPicture
    lea font, a0
    move.w #kTallFont*64, d0
    moveq #64, d1
    moveq #0, d2
    moveq #1, d3
    moveq #1, d4
    jsr MakeGlyphs
    lea tallTiles, a0
    move.w #kTallOwn*64, d0
    moveq #12, d1
    moveq #0, d4
    jsr MakeGlyphs
    lea smallTiles, a0
    move.w #kSmallOwn*32, d0
    moveq #6, d1
    jsr MakeGlyphs
    move.w mode, d7
    move.w d7, d0
    lsl.w #3, d0
    lea modes, a3
    adda.w d0, a3
    move.w (a3)+, 4(a6)
    move.w (a3)+, d6                        | d6 what makes a letter's cell
    move.w (a3)+, d5                        | d5 the page's first tile
    move.w #kWindow+2, d0
    move.w #kHigh+kYellow, d1
    add.w d6, d1
    jsr PutTitle
    lea names, a2
    move.w d7, d0
    lsl.w #5, d0
    adda.w d0, a2
    movea.l a2, a0
    move.w #kWindow+kPitch+2, d0
    move.w #kHigh+kCyan, d1
    add.w d6, d1
    jsr PutText
    bsr Blocks
    | Text: two lines to a cell, or every line by itself.
    lea lines, a0
    move.w #kPlaneA+15*kPitch+4, d4
    cmpi.w #2, d7
    beq 2f
1:  tst.b (a0)
    beq 3f
    move.w d4, d0
    move.w #kHigh, d1
    add.w d6, d1
    jsr PutText
    addi.w #kPitch, d4
    bra 1b
2:  bsr Pairs
3:  movem.l (sp)+, d2-d7/a2-a3
    rts

| Six blocks of a pattern each, six cells wide.
Blocks:
    move.w #kPlaneA+4*kPitch+4, d4
    move.w d5, d1
    moveq #5, d7
1:  move.w d4, d0
    moveq #5, d2
    moveq #8, d3
    jsr PutBlock
    addi.w #12, d4
    addq.w #1, d1
    dbra d7, 1b
    lea captions, a0
    move.w #kPlaneA+13*kPitch+4, d0
    move.w #kHigh+kCyan, d1
    add.w d6, d1
    jsr PutText
    move.w mode, d7
    rts

| The lines at a0 by twos: each pair of letters becomes a tile.
Pairs:
    move.w #kPairs*64, d5
    move.w #kHigh+kPairs, d6
1:  tst.b (a0)
    beq 6f
    lea lineLength(a0), a1                  | the lower line
    move.w #lineLength-2, d7
2:  move.w d5, d0
    jsr VramAt
    bsr 5f
    exg a0, a1
    bsr 5f
    exg a0, a1
    move.w d4, d0
    jsr VramAt
    move.w d6, (a6)
    addi.w #64, d5
    addq.w #1, d6
    addq.w #2, d4
    dbra d7, 2b
    lea lineLength+1(a0), a0                | past both ends
    addi.w #kPitch-(lineLength-1)*2, d4
    bra 1b
    | Eight rows of the letter at a0.
5:  moveq #0, d0
    move.b (a0)+, d0
    subi.w #32, d0
    lsl.w #3, d0
    movem.l d1/a1, -(sp)
    lea font, a1
    adda.w d0, a1
    moveq #7, d2
7:  move.b (a1)+, d1
    moveq #0, d0
    moveq #7, d3
8:  lsl.l #4, d0
    add.b d1, d1
    bcc 9f
    addq.b #1, d0
9:  dbra d3, 8b
    move.l d0, (a6)
    dbra d2, 7b
    movem.l (sp)+, d1/a1
    rts
6:  rts

    .section .rodata
    .balign 4
| Register 12, what makes a letter's cell, the first own tile.
modes:
    .word 0x8C81, kFont-32, kSmallOwn, 0
    .word 0x8C83, kFont-32, kSmallOwn, 0
    .word 0x8C87, kTallFont-32, kTallOwn, 0
| Lines of one dot, of two, of four; a chequer of one dot; a slope; a frame.
smallTiles:
    .byte 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00
    .byte 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0xFF, 0x00, 0x00
    .byte 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00
    .byte 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55
    .byte 0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01
    .byte 0xFF, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80
tallTiles:
    .byte 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00
    .byte 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00
    .byte 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0xFF, 0x00, 0x00
    .byte 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0xFF, 0x00, 0x00
    .byte 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00
    .byte 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00
    .byte 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55
    .byte 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55
    .byte 0x80, 0x80, 0x40, 0x40, 0x20, 0x20, 0x10, 0x10
    .byte 0x08, 0x08, 0x04, 0x04, 0x02, 0x02, 0x01, 0x01
    .byte 0xFF, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80
    .byte 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80
captions: .asciz "1 DOT 2     4     BOARD SLOPE GRID"
    .macro name string
9:  .asciz "\string"
    .space 32-(.-9b)
    .endm
names:
    name "NORMAL       (B: NEXT)"
    name "INTERLACE    (B: NEXT)"
    name "DOUBLE       (B: NEXT)"
    .equ lineLength, 37
lines:
    .asciz "IN DOUBLE RESOLUTION EACH CELL HOLDS"
    .asciz "TWO LINES OF THESE LETTERS, ONE UPON"
    .asciz "THE OTHER; THEY ARE HALF AS TALL AND"
    .asciz "THE SCREEN SHOWS 56 ROWS OF THEM.   "
    .asciz "THIN LINES FLICKER, SINCE EACH FIELD"
    .asciz "SHOWS EVERY OTHER LINE ONLY.        "
    .asciz "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXY"
    .asciz "THE END OF THE TEXT: LINE NUMBER 8  "
    .byte 0

    .section .bss
mode: .space 2
