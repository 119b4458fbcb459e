| Text, numbers, blocks, tiles, sprites and the state in which every page begins.
    .include "testcard/testcard.inc"

    .equ kAllSprites, 80
    .text

| Sets the VDP to write VRAM at address d0; keeps all other registers.
    .globl VramAt
VramAt:
    move.l d1, -(sp)
    moveq #0, d1
    move.w d0, d1
    lsl.l #2, d1
    lsr.w #2, d1
    swap d1
    ori.l #0x40000000, d1
    move.l d1, 4(a6)
    move.l (sp)+, d1
    rts

| The text at a0 into the cells from address d0, d1 being what makes a cell of a letter.
    .globl PutText
PutText:
    jsr VramAt
1:  moveq #0, d0
    move.b (a0)+, d0
    beq 2f
    add.w d1, d0
    move.w d0, (a6)
    bra 1b
2:  rts

| Fills d2 x d3 cells from address d0 with d1.
    .globl PutBlock
PutBlock:
    movem.l d2-d4, -(sp)
    subq.w #1, d2
    subq.w #1, d3
1:  jsr VramAt
    move.w d2, d4
2:  move.w d1, (a6)
    dbra d4, 2b
    addi.w #kPitch, d0
    dbra d3, 1b
    movem.l (sp)+, d2-d4
    rts

| The digits of d0 as text of d1 places at numberText, blanks in front.
    .globl MakeDecimal
MakeDecimal:
    movem.l d2-d3/a2, -(sp)
    lea numberText, a0
    lea tens, a2
    moveq #10, d2
    sub.w d1, d2
    lsl.w #2, d2
    adda.w d2, a2
    moveq #0x20, d2
1:  move.l (a2)+, d1
    beq 4f
    moveq #0x30, d3
2:  cmp.l d1, d0
    blo 3f
    sub.l d1, d0
    addq.b #1, d3
    bra 2b
3:  cmpi.b #0x30, d3
    bne 5f
    cmpi.l #1, d1
    beq 5f
    move.b d2, (a0)+
    bra 1b
5:  move.b d3, (a0)+
    moveq #0x30, d2
    bra 1b
4:  clr.b (a0)
    lea numberText, a0
    movem.l (sp)+, d2-d3/a2
    rts

| d0 as two hexadecimal digits at numberText.
    .globl MakeHex
MakeHex:
    lea numberText, a0
    move.w d0, d1
    lsr.w #4, d1
    bsr 1f
    move.w d0, d1
    bsr 1f
    clr.b (a0)
    lea numberText, a0
    rts
1:  andi.w #15, d1
    addi.b #0x30, d1
    cmpi.b #0x39, d1
    bls 2f
    addq.b #7, d1
2:  move.b d1, (a0)+
    rts

| Makes d1 tiles from VRAM address d0 on of the signs at a0, eight bytes each; d2 is the colour of the
| ground, d3 that of the ink. With d4 of 1 every row is written twice.
    .globl MakeGlyphs
MakeGlyphs:
    movem.l d2-d7/a2, -(sp)
    jsr VramAt
    | First the four dots of each half of a byte.
    lea halves, a2
    moveq #0, d7
1:  move.w d7, d5
    moveq #3, d6
2:  lsl.w #4, d0
    btst #3, d5
    beq 3f
    or.b d3, d0
    bra 4f
3:  or.b d2, d0
4:  add.w d5, d5
    dbra d6, 2b
    move.w d0, (a2)+
    addq.w #1, d7
    cmpi.w #16, d7
    blo 1b
    lea halves, a2
    lsl.w #3, d1
    subq.w #1, d1
5:  moveq #0, d5
    move.b (a0)+, d5
    move.w d5, d7
    lsr.w #4, d7
    add.w d7, d7
    move.w 0(a2, d7.w), d6
    swap d6
    andi.w #15, d5
    add.w d5, d5
    move.w 0(a2, d5.w), d6
    move.l d6, (a6)
    tst.w d4
    beq 6f
    move.l d6, (a6)
6:  dbra d1, 5b
    movem.l (sp)+, d2-d7/a2
    rts

| The 64 colours of a0 to CRAM.
    .globl PutPalette
PutPalette:
    cramWrite 0
    moveq #31, d0
1:  move.l (a0)+, (a6)
    dbra d0, 1b
    rts

| Forgets all sprites.
    .globl NoSprites
NoSprites:
    clr.w spriteCount
    rts

| Adds a sprite to the list: d0 row and d1 column of the picture, d2 size as the VDP wants it (width - 1 in
| bits 2 and 3, height - 1 in bits 0 and 1), d3 cell word.
    .globl AddSprite
AddSprite:
    movem.l d0-d2/a0, -(sp)
    addi.w #128, d0
    addi.w #128, d1
    bra 1f
| The same with the VDP's own row and column.
    .globl AddRawSprite
AddRawSprite:
    movem.l d0-d2/a0, -(sp)
1:  lea spriteList, a0
    move.w spriteCount, -(sp)
    addq.w #1, spriteCount
    lsl.w #8, d2
    or.w spriteCount, d2
    lsl.w (sp)
    lsl.w (sp)
    lsl.w (sp)
    adda.w (sp)+, a0
    move.w d0, (a0)+
    move.w d2, (a0)+
    move.w d3, (a0)+
    move.w d1, (a0)+
    movem.l (sp)+, d0-d2/a0
    rts

| The list to VRAM. It always has all its places, the rest of them above the picture: so it ends by its length
| in both widths, and no sprite is scanned twice.
    .globl PutSprites
PutSprites:
    vramWrite kSprites
    lea spriteList, a0
    move.w spriteCount, d1
    beq 2f
    move.w d1, d0
    add.w d0, d0
    subq.w #1, d0
1:  move.l (a0)+, (a6)
    dbra d0, 1b
2:  addq.w #1, d1
    cmpi.w #kAllSprites, d1
    bhi 3f
    move.w #0, (a6)
    move.w d1, (a6)
    move.l #1, (a6)
    bra 2b
3:  rts

| Puts the VDP into the state in which every page begins: everything clear but the font and the plain
| tiles, the planes 64 x 32 cells at rest, the window two rows at the top, the picture off.
    .globl ResetPicture
ResetPicture:
    movem.l d2-d4, -(sp)
    jsr Darken
    jsr ResetRegisters
    | A fill clears all of VRAM.
    move.w #0x8F01, 4(a6)
    move.l #0x94FF93FF, 4(a6)
    move.w #0x9780, 4(a6)
    move.l #0x40000080, 4(a6)
    move.w #0, (a6)
1:  move.w 4(a6), d0
    btst #1, d0
    bne 1b
    move.w #0x8F02, 4(a6)
    vsramWrite 0
    moveq #39, d0
2:  move.w #0, (a6)
    dbra d0, 2b
    lea palette, a0
    jsr PutPalette
    lea font, a0
    move.w #kFont*32, d0
    moveq #64, d1
    moveq #0, d2
    moveq #1, d3
    moveq #0, d4
    jsr MakeGlyphs
    lea font, a0
    move.w #kOpaque*32, d0
    moveq #64, d1
    moveq #11, d2
    jsr MakeGlyphs
    vramWrite kSolid*32
    moveq #0, d0
    moveq #15, d1
3:  moveq #7, d2
4:  move.l d0, (a6)
    dbra d2, 4b
    addi.l #0x11111111, d0
    dbra d1, 3b
    jsr NoSprites
    jsr PutSprites
    movem.l (sp)+, d2-d4
    rts

| Turns the picture off and waits for line 20, which comes once in every frame: a change of the width is
| then made in the midst of a dark picture and not between two.
    .globl Darken
Darken:
    vdpRegister 1, 0x34
1:  cmpi.b #20, 8(a6)
    bne 1b
    rts

| Waits for the last lines: no page begins in the midst of a picture.
    .globl WaitBottom
WaitBottom:
    cmpi.b #220, 8(a6)
    bne WaitBottom
    rts

    .globl ResetRegisters
ResetRegisters:
    lea registers, a0
    moveq #18, d1
    move.w #0x8000, d0
1:  move.b (a0)+, d0
    move.w d0, 4(a6)
    addi.w #0x100, d0
    dbra d1, 1b
    move.l #Ignored, hintJump+2
    rts

    .section .rodata
    .balign 4
tens:
    .long 1000000000, 100000000, 10000000, 1000000, 100000, 10000, 1000, 100, 10, 1, 0

registers:
    .byte 0x04                              | no line interrupt
    .byte 0x34                              | picture off, frame interrupt and DMA on
    .byte kPlaneA>>10, kWindow>>10, kPlaneB>>13, kSprites>>9
    .byte 0, 0, 0, 0                        | backdrop 0
    .byte 0xFF
    .byte 0                                 | whole planes scroll
    .byte 0x81                              | 40 cells
    .byte kHScroll>>10
    .byte 0, 2                              | steps of a word
    .byte 0x01                              | 64 x 32
    .byte 0, 2                              | two rows of window
    .balign 2

| The same colours four times, but for that of the letters.
    .globl palette
palette:
    .macro colours letters
    .word 0x000, \letters, 0x888, 0x444, 0x00E, 0x08E, 0x0EE, 0x0C0
    .word 0xEE0, 0xE40, 0xC0C, 0x400, 0x006, 0x040, 0x666, 0xAAA
    .endm
    colours 0xEEE
    colours 0x0EE
    colours 0xEE0
    colours 0x888

    .section .bss
    .globl spriteCount, numberText
spriteCount: .space 2
spriteList: .space kAllSprites*8
halves: .space 16*2
numberText: .space 16
