| Shadow and highlight. A row for each way in which the planes can lie, a column for each kind of sprite;
| under each field is what the sprite's square should look like: S in shadow, N normal, H highlighted.
| The ground around the sprite shows what the planes do by themselves.
    .include "testcard/testcard.inc"

    .equ kRows, 6
    .equ kFirstRow, 4

    .text
    .globl ShadowOpen
ShadowOpen:
    movem.l d2-d7/a2-a4, -(sp)
    moveq #0, d4                            | d4 the row
    lea rows, a3
1:  move.w d4, d5
    lsl.w #2, d5
    addq.w #kFirstRow, d5                   | d5 its first line of cells
    | The row's name.
    move.w d5, d0
    lsl.w #7, d0
    addi.w #kPlaneA, d0
    move.w #kHigh+kCyan+kOpaque-32, d1
    movea.l (a3), a0
    jsr PutText
    move.w d5, d0
    lsl.w #7, d0
    addi.w #kPlaneA+kPitch, d0
    movea.l 4(a3), a0
    jsr PutText
    movea.l 8(a3), a4                       | a4 the letters to expect
    moveq #0, d6                            | d6 the column
2:  bsr Field
    addq.w #1, d6
    cmpi.w #9, d6
    blo 2b
    lea 16(a3), a3
    addq.w #1, d4
    cmpi.w #kRows, d4
    blo 1b
    jsr PutSprites
    text kPlaneA, 2, 0, kYellow+kOnGround, "     -  LO  HI  14L 14H +L  +H  -L  -H  "
    text kWindow, 1, 1, kOnGround, "+ COLOUR 14, - COLOUR 15 OF PALETTE 3"
    cramWrite 7
    move.w #0x686, (a6)
    move.w #0x68A, (a6)
    vdpRegister 7, 7
    vdpRegister 12, 0x89
    movem.l (sp)+, d2-d7/a2-a4
    rts

| One field: planes, the letter and the sprite.
Field:
    move.w d5, d0
    lsl.w #7, d0
    move.w d6, d1
    lsl.w #3, d1
    add.w d1, d0
    addi.w #8, d0
    move.w d0, d7
    addi.w #kPlaneA, d0
    move.w 12(a3), d1
    moveq #3, d2
    moveq #3, d3
    jsr PutBlock
    move.w d7, d0
    addi.w #kPlaneB, d0
    move.w 14(a3), d1
    jsr PutBlock
    move.w d7, d0
    addi.w #kPlaneA+3*kPitch+2, d0
    jsr VramAt
    moveq #0, d0
    move.b (a4)+, d0
    addi.w #kHigh+kOpaque-32, d0
    move.w d0, (a6)
    move.w d6, d3
    add.w d3, d3
    lea kinds, a0
    move.w 0(a0, d3.w), d3
    beq 1f
    move.w d5, d0
    lsl.w #3, d0
    addq.w #4, d0
    move.w d6, d1
    lsl.w #5, d1
    addi.w #36, d1
    moveq #5, d2
    jsr AddBlockSprite
1:  rts

| A sprite of 16 x 16 dots of the colour in the low bits of d3, whose four tiles are made for it, at row d0 and
| column d1; the other bits are those of its cell.
AddBlockSprite:
    movem.l d0-d4, -(sp)
    move.w d3, d4
    andi.w #15, d4
    move.w d4, d0
    lsl.w #7, d0
    addi.w #kOwn*32, d0
    jsr VramAt
    move.w d4, d0
    mulu #0x1111, d0
    move.w d0, d1
    swap d0
    move.w d1, d0
    moveq #31, d1
1:  move.l d0, (a6)
    dbra d1, 1b
    movem.l (sp)+, d0-d4
    movem.l d3-d4, -(sp)
    move.w d3, d4
    andi.w #15, d4
    lsl.w #2, d4
    andi.w #0xE000, d3
    add.w d4, d3
    addi.w #kOwn, d3
    jsr AddSprite
    movem.l (sp)+, d3-d4
    rts

    .globl ShadowFrame
ShadowFrame:
    rts

    .section .rodata
    .balign 4
| Names, letters, cells of plane A and of plane B. Colours 8 and 5 are seen, tile 0 is clear.
rows:
    .long aLow, bLow, lettersLow
    .word kSolid+5, kSolid+9
    .long aHigh, bLow, lettersBehind
    .word kHigh+kSolid+5, kSolid+9
    .long aLow, bHigh, lettersBehind
    .word kSolid+5, kHigh+kSolid+9
    .long aHigh, bHigh, lettersBehind
    .word kHigh+kSolid+5, kHigh+kSolid+9
    .long aClear, bLow, lettersOver
    .word kHigh, kSolid+9
    .long aNone, bNone, lettersLow
    .word 0, 0
| The sprites: none; plain, low and high; colour 14 of palette 1; colours 14 and 15 of palette 3. The low
| bits are the colour.
kinds:
    .word 0, 0x2008, 0xA008, 0x200E, 0xA00E, 0x600E, 0xE00E, 0x600F, 0xE00F
| Nothing that is low lies over a plane that is high; such a sprite is not seen and changes nothing.
lettersLow: .ascii "SSNNNNNSS"
lettersBehind: .ascii "NNNNNNHNS"
lettersOver: .ascii "NNNNNHHSS"
aLow: .asciz "A LO"
aHigh: .asciz "A HI"
aClear: .asciz "AHI0"
aNone: .asciz "BACK"
bLow: .asciz "B LO"
bHigh: .asciz "B HI"
bNone: .asciz "DROP"
