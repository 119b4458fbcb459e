| Sky, shore, sea and clouds: their tiles and maps, the bands of scroll, what the wind carries, and the
| lights. Plane B is low and plane A high everywhere, empty cells too, so nothing is shaded but by sprites.

    .include "common/md.inc"
    .include "mistral/mistral.inc"
    .global WorldLoad, WorldMove, MapTitle, MapFlight, WindDraw, LightDraw, Sine, Random, random, wind, gust

    .equ kBands, 16
    .equ kPetals, 30

    .text
WorldLoad:
    movem.l d2-d5/a2-a3,-(sp)
    lea loads,a2
    moveq #4,d5
1:
    move.l (a2)+,a0
    move.l (a2)+,a1
    move.w (a2)+,d0
    jbsr TilesLoad
    dbra d5,1b
    lea artPlanes,a0
    moveq #12,d0
    moveq #0,d1
    move.w #kSpriteTile,d2
    jbsr DrawingsLoad
    lea artFigures,a0
    moveq #11,d0
    jbsr DrawingsLoad
    lea artLights,a0
    moveq #13,d0
    jbsr DrawingsLoad
    | Plane B: the sky down to row 16, then the sea, four times its width.
    vramWrite kPlaneB
    lea skyMap,a0
    move.w #17*64-1,d1
2:
    move.w (a0)+,d0
    jbsr CellPut
    dbra d1,2b
    lea seaMap,a0
    move.w #kSeaTile-kSkyTile+kPalette1,d2
    moveq #10,d4
    jbsr RowsPut
    | The leaves and petals are anywhere.
    lea petals,a2
    moveq #kPetals-1,d5
3:
    jbsr Random
    and.w #0x1FF,d0
    move.w d0,(a2)+
    clr.w (a2)+
    jbsr Random
    and.w #0x7F,d0
    add.w #30,d0
    move.w d0,(a2)+
    clr.w (a2)+
    dbra d5,3b
    movem.l (sp)+,d2-d5/a2-a3
    rts

| d0 = cell of the sky's map.
CellPut:
    tst.w d0
    beq.s 1f
    add.w #kSkyTile-1,d0
1:
    move.w d0,kVdpData
    rts

| a0 = map of 16 columns, d4 = rows - 1, d2 = palette and distance of its tiles to the sky's.
RowsPut:
    moveq #3,d3
1:
    moveq #15,d1
2:
    move.w (a0)+,d0
    beq.s 3f
    add.w d2,d0
    add.w #kSkyTile-1,d0
    bra.s 4f
3:
    move.w d2,d0
    and.w #kHigh,d0
4:
    move.w d0,kVdpData
    dbra d1,2b
    lea -32(a0),a0
    dbra d3,1b
    lea 32(a0),a0
    dbra d4,RowsPut
    rts

| Plane A with the title's letters, or with clouds; the swell at the foot of both.
MapTitle:
    movem.l d2-d5,-(sp)
    move.w #kPlaneA,d0
    move.w #kHigh,d1
    jbsr MapClear
    lea logoMap,a0
    moveq #5,d5
    move.l #0x40000003+((kPlaneA-0xC000)+(5*64+4)*2)*0x10000,d4
1:
    move.l d4,kVdpControl
    moveq #31,d1
2:
    move.w (a0)+,d0
    beq.s 3f
    add.w #kPalette2+kLogoTile-1,d0
3:
    add.w #kHigh,d0
    move.w d0,kVdpData
    dbra d1,2b
    add.l #128*0x10000,d4
    dbra d5,1b
    bra.s MapSwell

MapFlight:
    movem.l d2-d5,-(sp)
    move.w #kPlaneA,d0
    move.w #kHigh,d1
    jbsr MapClear
    lea cloudsMap,a0
    vramWrite kPlaneA+2*128
    move.w #13*64-1,d1
1:
    move.w (a0)+,d0
    beq.s 2f
    add.w #kPalette2+kCloudTile-1,d0
2:
    add.w #kHigh,d0
    move.w d0,kVdpData
    dbra d1,1b
MapSwell:
    lea swellMap,a0
    vramWrite kPlaneA+24*128
    move.w #kHigh+kPalette1+kSwellTile-kSkyTile,d2
    moveq #3,d4
    jbsr RowsPut
    lea -32(a0),a0              | the last row once more, for the heave
    moveq #0,d4
    jbsr RowsPut
    movem.l (sp)+,d2-d5
    rts

| d0 = angle, 256 to a turn. Returns -127 to 127 in d0. Changes a0.
Sine:
    and.w #0xFF,d0
    lea sines,a0
    move.b (a0,d0.w),d0
    ext.w d0
    rts

| The same without a call, for the loops of lines: a0 = sines.
.macro sine angle
    and.w #0xFF,\angle
    move.b (a0,\angle\().w),\angle
    ext.w \angle
.endm

Random:
    move.w random,d0
    mulu #25173,d0
    add.w #13849,d0
    move.w d0,random
    rol.w #7,d0
    rts

| The wind swells and falls; each band moves by its share of it.
WorldMove:
    movem.l d2-d7/a2-a4,-(sp)
    move.w age,d0
    lsr.w #1,d0
    jbsr Sine
    asr.w #1,d0
    add.w #0x140,d0
    move.w hoursFlown,d1
    cmp.w #8,d1
    bcs.s 1f
    moveq #8,d1
1:
    lsl.w #4,d1
    add.w d1,d0
    tst.w gust
    beq.s 2f
    subq.w #1,gust
    move.w gust,d1
    lsl.w #4,d1
    add.w d1,d0
2:
    move.w d0,wind
    lea bandSpeeds,a0
    lea bands,a1
    moveq #kBands-1,d2
3:
    move.w (a0)+,d1
    muls wind,d1
    add.l d1,(a1)+
    dbra d2,3b

    | Plane B: still sky, shore, and the sea in bands that waver.
    lea lineTable,a1
    move.w #97-1,d7
4:
    clr.w 2(a1)
    addq.l #4,a1
    dbra d7,4b
    move.w bands,d0
    neg.w d0
    moveq #39-1,d7
5:
    move.w d0,2(a1)
    addq.l #4,a1
    dbra d7,5b
    lea bands+4,a2
    lea seaLines,a3
    move.w age,d4
    add.w d4,d4
    lea sines,a0
    moveq #11-1,d6
6:
    move.w (a2),d5
    addq.l #4,a2
    move.w (a3)+,d7
7:
    move.w d4,d0
    add.w #11,d4
    sine d0
    asr.w #6,d0
    sub.w d5,d0
    move.w d0,2(a1)
    addq.l #4,a1
    dbra d7,7b
    dbra d6,6b

    | Plane A.
    lea lineTable,a1
    tst.w mode
    beq WorldTitle
    move.w #64-1,d7
    move.w bands+12*4,d0
    bsr LinesPut
    moveq #32-1,d7
    move.w bands+13*4,d0
    bsr LinesPut
    moveq #24-1,d7
    move.w bands+14*4,d0
    bsr LinesPut
    moveq #0,d0
    moveq #64-1,d7
    bsr LinesPut
SwellLines:
    moveq #40-1,d7
    move.w age,d4
    lsl.w #1,d4
    move.w bands+15*4,d5
8:
    move.w d4,d0
    addq.w #7,d4
    sine d0
    asr.w #5,d0
    sub.w d5,d0
    move.w d0,(a1)
    addq.l #4,a1
    dbra d7,8b

    | A gust shakes the whole picture's clouds.
    tst.w gust
    beq.s 10f
    lea lineTable+64,a1
    move.w gust,d4
    lsl.w #3,d4
    move.w #120-1,d7
9:
    move.w d4,d0
    add.w #9,d4
    sine d0
    muls gust,d0
    asr.l #8,d0
    asr.l #2,d0
    add.w d0,(a1)
    addq.l #4,a1
    dbra d7,9b
10:
    | The swell heaves in columns of 16 pixels, plane A alone.
    lea columnTable,a1
    move.w age,d4
    lsl.w #1,d4
    moveq #19,d7
    moveq #5,d5
    tst.w mode
    bne.s 11f
    moveq #0,d5                 | but for the title: it is to be read
11:
    move.w d4,d0
    add.w #21,d4
    jbsr Sine
    muls d5,d0
    asr.l #8,d0
    move.w d0,(a1)+
    clr.w (a1)+
    dbra d7,11b
    movem.l (sp)+,d2-d7/a2-a4
    rts

| The letters of the title blow in from the side and then sway.
WorldTitle:
    move.w #72,d3
    sub.w age,d3
    bpl.s 1f
    moveq #0,d3
1:
    move.w age,d4
    add.w d4,d4
    move.w #128-1,d7
2:
    move.w d4,d0
    addq.w #5,d4
    sine d0
    asr.w #5,d0
    move.w d3,d1
    muls d1,d1
    asr.l #4,d1
    cmp.w #320,d1
    bls.s 4f
    move.w #320,d1
4:
    sub.w d1,d0
    addq.w #4,d0
    move.w d0,(a1)
    addq.l #4,a1
    dbra d7,2b
    moveq #0,d0
    moveq #56-1,d7
    bsr.s LinesPut
    bra SwellLines

LinesPut:
    neg.w d0
1:
    move.w d0,(a1)
    addq.l #4,a1
    dbra d7,1b
    rts

| Petals and leaves in the wind: a6, d6 as SpriteAdd wants them. Their share of the wind grows with
| their number, so they lie in depths.
WindDraw:
    lea petals,a2
    moveq #kPetals-1,d7
1:
    move.w d7,d0
    mulu #24,d0
    add.w #0x100,d0
    muls wind,d0
    sub.l d0,(a2)
    cmp.w #-16,(a2)
    bgt.s 2f
    jbsr Random
    and.w #0x3F,d0
    add.w #320,d0
    move.w d0,(a2)
    jbsr Random
    and.w #0xFF,d0
    lsr.w #1,d0
    add.w #24,d0
    move.w d0,4(a2)
2:
    move.w d7,d0
    lsl.w #4,d0
    add.w age,d0
    add.w age,d0
    jbsr Sine
    asr.w #4,d0
    move.w d0,d1
    add.w 4(a2),d1
    move.w (a2),d0
    move.w age,d2
    lsr.w #2,d2
    add.w d7,d2
    and.w #3,d2
    move.w #kHigh+kPalette3,d3
    btst #0,d7
    beq.s 3f
    btst #1,d7
    beq.s 3f
    and.w #1,d2
    addq.w #kLeaf-kPetal,d2
    bra.s 4f
3:
    cmp.w #3,d2
    bne.s 4f
    moveq #1,d2
    or.w #kFlipY,d3
4:
    add.w #kPetal,d2
    jbsr SpriteAdd
    addq.l #8,a2
    dbra d7,1b
    rts

| The sprites behind all others: rays between the clouds by day, the reflection of the sun or the moon on the
| water, and the plane's shadow there.
LightDraw:
    moveq #5,d7
1:
    move.w d7,d0
    mulu #43,d0
    add.w age,d0
    and.w #0x3F,d0
    cmp.w #44,d0
    bcc.s 2f
    move.w d7,d1
    mulu #13,d1
    add.w #139,d1
    move.w d7,d0
    lsl.w #5,d0
    add.w age,d0
    add.w age,d0
    jbsr Sine
    muls d7,d0
    asr.w #5,d0
    add.w #224,d0
    moveq #kGlint,d2
    move.w #kPalette3,d3
    jbsr SpriteAdd
2:
    dbra d7,1b
    cmp.w #2,hour
    beq.s 5f
    cmp.w #3,mode
    beq.s 5f
    cmp.w #40,age               | not before the colours are there
    bcs.s 5f
    moveq #2,d7
3:
    move.w d7,d0
    mulu #90,d0
    move.w age,d1
    lsr.w #1,d1
    add.w d1,d0
    jbsr Sine
    asr.w #3,d0
    move.w d7,d4
    mulu #58,d4
    add.w #170,d4
    add.w d0,d4
    moveq #24,d5
4:
    move.w d4,d0
    move.w d5,d1
    moveq #kBeam,d2
    move.w #kPalette3,d3
    jbsr SpriteAdd
    sub.w #15,d4
    add.w #32,d5
    cmp.w #120,d5
    bcs.s 4b
    dbra d7,3b
5:
    rts

    .section .rodata
loads:
    .long skyTiles, skyTilesEnd
    .word kSkyTile
    .long seaTiles, seaTilesEnd
    .word kSeaTile
    .long swellTiles, swellTilesEnd
    .word kSwellTile
    .long cloudsTiles, cloudsTilesEnd
    .word kCloudTile
    .long logoTiles, logoTilesEnd
    .word kLogoTile
| Pixels a frame in 256ths, at a wind of 1: shore, eleven of the sea, three of clouds, the swell.
bandSpeeds:
    .word 24, 32, 44, 58, 74, 92, 112, 136, 164, 196, 232, 272, 150, 92, 52, 420
| Lines of each band of the sea, less one; 88 in all.
seaLines:
    .word 3-1, 3-1, 4-1, 5-1, 6-1, 7-1, 8-1, 10-1, 12-1, 14-1, 16-1
sines:
    .byte 0, 3, 6, 9, 12, 16, 19, 22, 25, 28, 31, 34, 37, 40, 43, 46
    .byte 49, 51, 54, 57, 60, 63, 65, 68, 71, 73, 76, 78, 81, 83, 85, 88
    .byte 90, 92, 94, 96, 98, 100, 102, 104, 106, 107, 109, 111, 112, 113, 115, 116
    .byte 117, 118, 120, 121, 122, 122, 123, 124, 125, 125, 126, 126, 126, 127, 127, 127
    .byte 127, 127, 127, 127, 126, 126, 126, 125, 125, 124, 123, 122, 122, 121, 120, 118
    .byte 117, 116, 115, 113, 112, 111, 109, 107, 106, 104, 102, 100, 98, 96, 94, 92
    .byte 90, 88, 85, 83, 81, 78, 76, 73, 71, 68, 65, 63, 60, 57, 54, 51
    .byte 49, 46, 43, 40, 37, 34, 31, 28, 25, 22, 19, 16, 12, 9, 6, 3
    .byte 0, -3, -6, -9, -12, -16, -19, -22, -25, -28, -31, -34, -37, -40, -43, -46
    .byte -49, -51, -54, -57, -60, -63, -65, -68, -71, -73, -76, -78, -81, -83, -85, -88
    .byte -90, -92, -94, -96, -98, -100, -102, -104, -106, -107, -109, -111, -112, -113, -115, -116
    .byte -117, -118, -120, -121, -122, -122, -123, -124, -125, -125, -126, -126, -126, -127, -127, -127
    .byte -127, -127, -127, -127, -126, -126, -126, -125, -125, -124, -123, -122, -122, -121, -120, -118
    .byte -117, -116, -115, -113, -112, -111, -109, -107, -106, -104, -102, -100, -98, -96, -94, -92
    .byte -90, -88, -85, -83, -81, -78, -76, -73, -71, -68, -65, -63, -60, -57, -54, -51
    .byte -49, -46, -43, -40, -37, -34, -31, -28, -25, -22, -19, -16, -12, -9, -6, -3

    .bss
    .balign 4
bands:  .space kBands*4         | pixels gone by, 16.16
petals: .space kPetals*8        | x, y in 16.16
wind:   .space 2                | 8.8
gust:   .space 2                | frames left of one
random: .space 2
