| Sprites: all sizes, the flips, which lies on top, how many a line shows, masking, and the collision and
| overflow flags, each read right after the lines that may set it.
    .include "testcard/testcard.inc"

    .equ kDigits, kOwn                      | 16 cells, each with its number on a ground
    .equ kArrow, kOwn+16                    | 4 cells without any symmetry
    .equ kBricks, kOwn+20                   | 16 cells of one colour, three times
    .equ kFewest, 14
    .equ kMost, 21
    .equ kCollisionTop, 104
    .equ kLimitTop, 136

    .text
    .globl SpritesOpen
SpritesOpen:
    movem.l d2-d4, -(sp)
    vdpRegister 18, 0
    move.w #kPlaneA+2, d0
    move.w #kHigh+kYellow+kFont-32, d1
    jsr PutTitle
    lea fontDigits, a0
    move.w #kDigits*32, d0
    moveq #10, d1
    moveq #9, d2
    moveq #1, d3
    moveq #0, d4
    jsr MakeGlyphs
    lea fontLetters, a0
    move.w #(kDigits+10)*32, d0
    moveq #6, d1
    jsr MakeGlyphs
    lea arrow, a0
    move.w #kArrow*32, d0
    moveq #4, d1
    moveq #3, d2
    moveq #6, d3
    jsr MakeGlyphs
    vramWrite kBricks*32
    lea brickColours, a0
    moveq #2, d2
1:  move.l (a0)+, d0
    moveq #127, d1
2:  move.l d0, (a6)
    dbra d1, 2b
    dbra d2, 1b
    text kPlaneA, 1, 1, kGray, "B WIDTH   UP, DOWN COUNT"
    text kPlaneA, 2, 1, kCyan, "SIZES"
    text kPlaneA, 2, 14, kCyan, "FLIPS"
    text kPlaneA, 6, 14, 0, " -  X  Y  XY"
    text kPlaneA, 7, 14, kCyan, "ORDER   PLANE"
    text kPlaneA, 11, 22, 0, "LO HI"
    text kPlaneA, 12, 14, kCyan, "COLLISION"
    text kPlaneA, 16, 1, kCyan, "LINE LIMIT      OVERFLOW"
    text kPlaneA, 19, 1, kCyan, "DOTS IN A LINE"
    text kPlaneA, 22, 1, kCyan, "MASK: LOWER HALF GONE"
    text kPlaneA, 25, 1, kCyan, "FIRST IN LINE: NO MASK"
    block kPlaneA, 9, 22, 5, 1, kHigh+kSolid+4
    move.w #18, count
    clr.w narrow
    bsr PutWidth
    movem.l (sp)+, d2-d4
    rts

PutWidth:
    move.w #0x8C81, d0
    lea wide, a0
    tst.w narrow
    beq 1f
    move.w #0x8C00, d0
    lea slim, a0
1:  move.w d0, 4(a6)
    textAt kPlaneA, 0, 20, 0
    rts

    .globl SpritesFrame
SpritesFrame:
    movem.l d2-d7, -(sp)
    move.w padPressed, d0
    moveq #0, d1
    moveq #0, d2
    btst #kUp, d0
    beq 1f
    moveq #1, d1
1:  btst #kDown, d0
    beq 2f
    moveq #-1, d1
2:  btst #kB, d0
    beq 3f
    moveq #1, d2
3:  tst.b touched
    bne 4f
    move.w pageFrame, d0
    cmpi.w #120, d0
    bne 5f
    moveq #1, d2
5:  andi.w #15, d0
    bne 4f
    moveq #1, d1
4:  add.w count, d1
    cmpi.w #kFewest, d1
    bhs 6f
    moveq #kMost, d1
6:  cmpi.w #kMost, d1
    bls 7f
    moveq #kFewest, d1
7:  move.w d1, count
    tst.w d2
    beq 8f
    eor.w d2, narrow
    jsr Darken
    bsr PutWidth
    jsr WaitBottom
    vdpRegister 1, 0x74
8:  jsr PutSprites                          | those made a frame ago
    moveq #0, d0
    move.w count, d0
    moveq #2, d1
    jsr MakeDecimal
    textAt kPlaneA, 16, 13, 0
    move.w flags, d2
    bsr PutFlags
    bsr MakeSprites
    moveq #0, d2
    move.w #kCollisionTop-2, d0
    bsr WaitLine
    move.w 4(a6), d0
    move.w #kCollisionTop+12, d0
    bsr WaitLine
    move.w 4(a6), d2
    andi.w #0x20, d2
    move.w #kLimitTop-2, d0
    bsr WaitLine
    move.w 4(a6), d0
    move.w #kLimitTop+9, d0
    bsr WaitLine
    move.w 4(a6), d0
    andi.w #0x40, d0
    or.w d0, d2
    move.w d2, flags
    movem.l (sp)+, d2-d7
    rts

WaitLine:
1:  cmp.b 8(a6), d0
    bne 1b
    rts

PutFlags:
    lea no, a0
    btst #5, d2
    beq 1f
    lea yes, a0
1:  textAt kPlaneA, 12, 25, 0
    lea no, a0
    btst #6, d2
    beq 2f
    lea yes, a0
2:  textAt kPlaneA, 16, 26, 0
    rts

MakeSprites:
    jsr NoSprites
    lea steady, a0
1:  movem.w (a0)+, d0-d3
    tst.w d2
    bmi 3f
    tst.w d1
    bmi 2f
    jsr AddSprite
    bra 1b
2:  addi.w #128, d0                         | a column below 0 asks for the VDP's column 0
    moveq #0, d1
    jsr AddRawSprite
    bra 1b
    | Two that meet now and then.
3:  moveq #kCollisionTop+2, d0
    move.w #150, d1
    moveq #0, d2
    move.w #kSolid+6, d3
    jsr AddSprite
    lea sine, a0
    move.w pageFrame, d4
    add.w d4, d4
    andi.w #255, d4
    move.b 0(a0, d4.w), d1
    ext.w d1
    asr.w #2, d1
    addi.w #150, d1
    move.w #kSolid+4, d3
    jsr AddSprite
    | The row whose end the limit cuts off.
    move.w count, d4
    subq.w #1, d4
    move.w #kLimitTop, d0
    moveq #8, d1
    move.w #kDigits, d3
4:  jsr AddSprite
    addi.w #11, d1
    addq.w #1, d3
    cmpi.w #kDigits+10, d3
    bne 5f
    move.w #kDigits, d3
5:  dbra d4, 4b
    rts

    .section .rodata
    .balign 4
brickColours: .long 0x44444444, 0x77777777, 0x99999999
| Row, column, size, cell; a size below 0 ends the list.
steady:
    .macro sprite row, column, width, height, cell
    .word \row, \column, ((\width)-1)*4+(\height)-1, \cell
    .endm
    sprite 24, 8, 1, 1, kDigits
    sprite 24, 20, 2, 1, kDigits
    sprite 24, 40, 3, 1, kDigits
    sprite 24, 68, 4, 1, kDigits
    sprite 36, 8, 1, 2, kDigits
    sprite 36, 20, 2, 2, kDigits
    sprite 36, 40, 3, 2, kDigits
    sprite 36, 68, 4, 2, kDigits
    sprite 56, 8, 1, 3, kDigits
    sprite 56, 20, 2, 3, kDigits
    sprite 56, 40, 3, 3, kDigits
    sprite 56, 68, 4, 3, kDigits
    sprite 84, 8, 1, 4, kDigits
    sprite 84, 20, 2, 4, kDigits
    sprite 84, 40, 3, 4, kDigits
    sprite 84, 68, 4, 4, kDigits
    sprite 28, 112, 2, 2, kArrow
    sprite 28, 136, 2, 2, kArrow+kFlipX
    sprite 28, 160, 2, 2, kArrow+kFlipY
    sprite 28, 184, 2, 2, kArrow+kFlipX+kFlipY
    | The first of the list is on top.
    sprite 64, 112, 3, 3, kBricks
    sprite 68, 124, 3, 3, kBricks+16
    sprite 72, 136, 3, 3, kBricks+32
    sprite 68, 176, 2, 2, kBricks+16
    sprite 68, 200, 2, 2, kHigh+kBricks+16
    | Eleven of 32 dots: one line holds ten, or eight when it is 256 dots wide.
    sprite 160, 8, 4, 1, kDigits
    sprite 160, 31, 4, 1, kDigits+kYellow
    sprite 160, 54, 4, 1, kDigits
    sprite 160, 77, 4, 1, kDigits+kYellow
    sprite 160, 100, 4, 1, kDigits
    sprite 160, 123, 4, 1, kDigits+kYellow
    sprite 160, 146, 4, 1, kDigits
    sprite 160, 169, 4, 1, kDigits+kYellow
    sprite 160, 192, 4, 1, kDigits
    sprite 160, 215, 4, 1, kDigits+kYellow
    sprite 160, 238, 4, 1, kDigits
    | A sprite in the VDP's column 0 masks those after it in the list, if one elsewhere comes before it.
    sprite 184, 192, 2, 2, kBricks
    sprite 192, -1, 1, 1, kDigits
    sprite 184, 216, 2, 2, kBricks+32
    sprite 208, -1, 1, 1, kDigits
    sprite 200, 216, 2, 2, kBricks+32
    .word 0, 0, -1, 0
| Upper left, lower left, upper right, lower right.
arrow:
    .byte 0xFF, 0x80, 0xBF, 0xBF, 0xB0, 0xB0, 0xB0, 0xB0
    .byte 0xB0, 0xBF, 0xBF, 0xB0, 0xB0, 0xB0, 0x80, 0xFF
    .byte 0xFF, 0x01, 0xFD, 0xFD, 0x01, 0x01, 0x01, 0x01
    .byte 0x01, 0xC1, 0xC1, 0x01, 0x01, 0x07, 0x0F, 0xFF
wide: .asciz "40 CELLS"
slim: .asciz "32 CELLS"
yes: .asciz "YES"
no: .asciz "NO "

    .section .bss
count: .space 2
narrow: .space 2
flags: .space 2
