| The video processor: its registers, loads of tiles and drawings, text, palette fades and the
| transfer of a frame's tables from their copies in RAM.

    .include "common/md.inc"
    .global VdpInit, VdpOn, VdpOff, TilesLoad, DrawingsLoad, FontLoad, TextPut, MapClear, FrameWait
    .global PaletteGo, PaletteStep, spriteTable, lineTable, columnTable, palette, drawings

    .text
registers:
    .byte 0x04                  | 0: colours of 9 bits, no line interrupt
    .byte 0x34                  | 1: screen off, frame interrupt, DMA, 224 lines
    .byte kPlaneA>>10
    .byte kWindowMap>>10
    .byte kPlaneB>>13
    .byte kSpriteMap>>9
    .byte 0, 0, 0, 0
    .byte 0xFF                  | 10: line interrupt far away
    .byte 0x07                  | 11: a scroll a line, and one a pair of columns
    .byte 0x89                  | 12: 40 cells, shadow and highlight
    .byte kLineMap>>10
    .byte 0
    .byte 2                     | 15: steps of a word
    .byte 0x01                  | 16: planes of 64 by 32 cells
    .byte 0, 0                  | 17, 18: no window
    .even

VdpInit:
    lea registers,a0
    move.w #0x8000,d0
1:
    move.b (a0)+,d0
    move.w d0,kVdpControl
    add.w #0x100,d0
    cmp.w #0x9300,d0
    bne.s 1b
    vramWrite 0
    lea kVdpData,a0
    moveq #0,d0
    move.w #0x3FFF,d1
2:
    move.l d0,(a0)
    dbra d1,2b
    cramWrite
    moveq #31,d1
3:
    move.l d0,(a0)
    dbra d1,3b
    move.l #0x40000010,kVdpControl
    moveq #19,d1
4:
    move.l d0,(a0)
    dbra d1,4b
    | Silences the PSG, which wakes with a tone.
    move.b #0x9F,0xC00011
    move.b #0xBF,0xC00011
    move.b #0xDF,0xC00011
    move.b #0xFF,0xC00011
    rts

VdpOn:
    move.w #0x8174,kVdpControl
    rts

VdpOff:
    move.w #0x8134,kVdpControl
    rts

| a0 = words, d0 = address in video RAM, d1 = count of words. The last word of the command comes from
| the stack: the processor must not fetch it while the transfer begins.
Transfer:
    move.l #0x40000080,d2
TransferTo:
    lea kVdpControl,a1
    move.w #0x9300,d3
    move.b d1,d3
    move.w d3,(a1)
    lsr.w #8,d1
    move.w #0x9400,d3
    move.b d1,d3
    move.w d3,(a1)
    move.l a0,d3
    lsr.l #1,d3
    move.w #0x9500,d1
    move.b d3,d1
    move.w d1,(a1)
    lsr.l #8,d3
    move.w #0x9600,d1
    move.b d3,d1
    move.w d1,(a1)
    lsr.l #8,d3
    move.w #0x9700,d1
    and.w #0x7F,d3
    move.b d3,d1
    move.w d1,(a1)
    moveq #0,d1
    move.w d0,d1
    lsl.l #2,d1
    lsr.w #2,d1
    swap d1
    add.l d2,d1
    move.l d1,-(sp)
    move.w (sp)+,(a1)
    move.w (sp)+,(a1)
    rts

| a0 to a1 = tiles, d0 = number of the first.
TilesLoad:
    move.l a1,d1
    sub.l a0,d1
    lsr.l #1,d1
    lsl.w #5,d0
    bra.s Transfer

| a0 = drawings as the macro `drawing` makes them, d0 = how many, d1 = number of the first in the
| table, d2 = number of the first tile. Returns the next of both. A sprite's cells go down before they go
| right; the drawings are written in rows.
DrawingsLoad:
    movem.l d3-d7/a2-a4,-(sp)
    lea drawings,a2
    move.w d1,d3
    lsl.w #2,d3
    add.w d3,a2
    move.w d2,d3
    lsl.w #5,d3
    moveq #0,d4
    move.w d3,d4
    lsl.l #2,d4
    lsr.w #2,d4
    swap d4
    add.l #0x40000000,d4
    move.l d4,kVdpControl
    lea kVdpData,a3
    subq.w #1,d0
1:
    addq.w #1,d1
    move.w (a0)+,d3             | columns
    move.w (a0)+,d4             | rows
    move.w d2,(a2)+
    move.w d3,d5
    subq.w #1,d5
    lsl.w #2,d5
    add.w d4,d5
    subq.w #1,d5
    lsl.w #8,d5
    move.w d5,(a2)+
    move.w d3,d5
    mulu d4,d5
    add.w d5,d2
    lsl.w #3,d4
    move.w d3,d5
    lsl.w #2,d5                 | bytes of a row
    move.w d3,d6
2:
    move.l a0,a4
    move.w d4,d7
    subq.w #1,d7
3:
    move.l (a4),(a3)
    add.w d5,a4
    dbra d7,3b
    addq.l #4,a0
    subq.w #1,d6
    bne.s 2b
    move.w d4,d7                | the first row is passed; the others follow
    subq.w #1,d7
    mulu d5,d7
    add.l d7,a0
    dbra d0,1b
    movem.l (sp)+,d3-d7/a2-a4
    rts

| d0 = number of the first of 64 tiles, d1 = colour of the ground, d2 = the eight pixels under each
| letter; ink is 14, its shade 15.
FontLoad:
    movem.l d2-d6/a2-a3,-(sp)
    move.l d2,a3
    lsl.w #5,d0
    moveq #0,d2
    move.w d0,d2
    lsl.l #2,d2
    lsr.w #2,d2
    swap d2
    add.l #0x40000000,d2
    move.l d2,kVdpControl
    lea glyphs,a2
    move.w #64*8-1,d6
    moveq #0,d3                 | the row above, moved right: where the shade falls
1:
    move.b (a2)+,d2
    moveq #7,d5
    moveq #0,d0
2:
    lsl.l #4,d0
    btst d5,d2
    beq.s 3f
    or.b #14,d0
    bra.s 5f
3:
    btst d5,d3
    beq.s 4f
    or.b #15,d0
    bra.s 5f
4:
    or.b d1,d0
5:
    dbra d5,2b
    move.b d2,d3
    lsr.b #1,d3
    move.w d6,d4
    and.w #7,d4
    bne.s 6f
    moveq #0,d3
    move.l a3,d0
6:
    move.l d0,kVdpData
    dbra d6,1b
    movem.l (sp)+,d2-d6/a2-a3
    rts

| a0 = text up to a zero, d0 = address in video RAM, d1 = cell of the space.
TextPut:
    moveq #0,d2
    move.w d0,d2
    lsl.l #2,d2
    lsr.w #2,d2
    swap d2
    add.l #0x40000000,d2
    move.l d2,kVdpControl
1:
    moveq #0,d2
    move.b (a0)+,d2
    beq.s 2f
    sub.w #32,d2
    add.w d1,d2
    move.w d2,kVdpData
    bra.s 1b
2:
    rts

| d0 = address of a map of 64 by 32 cells, d1 = cell to fill it with.
MapClear:
    moveq #0,d2
    move.w d0,d2
    lsl.l #2,d2
    lsr.w #2,d2
    swap d2
    add.l #0x40000000,d2
    move.l d2,kVdpControl
    move.w #64*32-1,d2
1:
    move.w d1,kVdpData
    dbra d2,1b
    rts

| Waits for the next blank and sends sprites, scrolls and colours there.
FrameWait:
    move.w frameCount,d0
1:
    cmp.w frameCount,d0
    beq.s 1b
    lea spriteTable,a0
    move.w #kSpriteMap,d0
    move.w #320,d1
    jbsr Transfer
    lea lineTable,a0
    move.w #kLineMap,d0
    move.w #448,d1
    jbsr Transfer
    lea columnTable,a0
    moveq #0,d0
    moveq #40,d1
    move.l #0x40000090,d2
    jbsr TransferTo
    lea palette,a0
    moveq #0,d0
    moveq #64,d1
    move.l #0xC0000080,d2
    jbra TransferTo

| a0 = the 64 colours to fade to.
PaletteGo:
    move.l a0,paletteGoal
    rts

| Every other frame, each component of each colour moves one step towards its target.
PaletteStep:
    btst #0,frameCount+1
    beq.s 9f
    tst.l paletteGoal
    beq.s 9f
    movem.l d2-d4/a2,-(sp)
    move.l paletteGoal,a0
    lea palette,a1
    moveq #63,d4
1:
    move.w (a0)+,d0
    move.w (a1),d1
    cmp.w d0,d1
    beq.s 6f
    move.w #0x00E,d2
    move.w #0x002,d3
2:
    move.w d0,a2
    and.w d2,d0
    move.w d1,-(sp)
    and.w d2,d1
    cmp.w d0,d1
    beq.s 4f
    bcs.s 3f
    move.w (sp)+,d1
    sub.w d3,d1
    bra.s 5f
3:
    move.w (sp)+,d1
    add.w d3,d1
    bra.s 5f
4:
    move.w (sp)+,d1
5:
    move.w a2,d0
    lsl.w #4,d3
    lsl.w #4,d2
    cmp.w #0xE000,d2
    bne.s 2b
    move.w d1,(a1)
6:
    addq.l #2,a1
    dbra d4,1b
    movem.l (sp)+,d2-d4/a2
9:
    rts

    .bss
    .balign 4
spriteTable: .space 640
lineTable:   .space 896         | plane A, plane B, a pair a line
columnTable: .space 80          | plane A, plane B, a pair every 16 pixels
palette:     .space 128
paletteGoal: .space 4
drawings:    .space 64*4        | tile, shape of a sprite
