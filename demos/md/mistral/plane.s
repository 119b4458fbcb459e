| The plane: its flight, its roll, its guns and gusts, and the pilot who flies it when nobody does.

    .include "common/md.inc"
    .include "mistral/mistral.inc"
    .global PlaneReset, PlaneMove, PlaneShow, PlaneDraw, PlaneLight, PlaneHurt, Pilot
    .global planeX, planeY, planeSafe

    .equ kRollFrames, 32
    .equ kSafeFrames, 120
    .equ kGustFrames, 50

    .text
PlaneReset:
    move.l #40*0x10000,planeX
    move.l #90*0x10000,planeY
    clr.l planeVx
    clr.w planeRoll
    clr.w planeGun
    move.w #60,planeSafe
    rts

| d0 = wish -1, 0, 1; d1 = speed of now, 8.8. Returns the next speed in d1: it leans on the wish and
| comes to rest.
Lean:
    muls #0x50,d0
    move.w d1,d2
    asr.w #3,d2
    sub.w d2,d1
    add.w d0,d1
    rts

PlaneMove:
    move.w buttons,d3
    moveq #0,d0
    btst #kLeft,d3
    beq.s 1f
    subq.w #1,d0
1:
    btst #kRight,d3
    beq.s 2f
    addq.w #1,d0
2:
    move.w planeVx,d1
    bsr.s Lean
    move.w d1,planeVx
    ext.l d1
    lsl.l #8,d1
    add.l planeX,d1
    cmp.l #6*0x10000,d1
    bge.s 3f
    move.l #6*0x10000,d1
3:
    cmp.l #270*0x10000,d1
    ble.s 4f
    move.l #270*0x10000,d1
4:
    move.l d1,planeX
    moveq #0,d0
    btst #kUp,d3
    beq.s 5f
    subq.w #1,d0
5:
    btst #kDown,d3
    beq.s 6f
    addq.w #1,d0
6:
    move.w d0,planeBank
    move.w planeVy,d1
    bsr.s Lean
    move.w d1,planeVy
    ext.l d1
    lsl.l #8,d1
    add.l planeY,d1
    cmp.l #18*0x10000,d1
    bge.s 7f
    move.l #18*0x10000,d1
7:
    cmp.l #172*0x10000,d1
    ble.s 8f
    move.l #172*0x10000,d1
8:
    move.l d1,planeY

    tst.w planeSafe
    beq.s 9f
    subq.w #1,planeSafe
9:
    tst.w planeRoll
    beq.s 10f
    subq.w #1,planeRoll
    bra.s 11f
10:
    btst #kZ,pressed            | bit 8 of the word is bit 0 of its high byte
    beq.s 11f
    move.w #kRollFrames,planeRoll
    moveq #kEffectRoll,d0
    jbsr EffectPlay
11:
    bsr.s Trail
    tst.w planeGun
    beq.s 12f
    subq.w #1,planeGun
    bra.s 13f
12:
    move.w buttons,d0
    and.w #0x50,d0              | A, B
    beq.s 13f
    bsr Fire
13:
    btst #kC,pressed+1
    beq.s 14f
    tst.w charge
    ble.s 14f
    bsr Gust
14:
    rts

| A puff of smoke every fourth frame; over the water the float draws foam.
Trail:
    move.w age,d0
    and.w #3,d0
    bne.s 2f
    move.w smoke,d3
    cmp.w #166,planeY
    bcs.s 1f
    moveq #0,d3
1:
    cmp.w #2,d3
    beq.s 2f
    moveq #kThingPuff,d2
    move.w planeX,d0
    subq.w #6,d0
    move.w planeY,d1
    addq.w #8,d1
    cmp.w #166,d1
    bcs.s 3f
    addq.w #8,d1
3:
    jbsr ThingAdd
    beq.s 2f
    move.w d3,oBase(a0)
    move.w #24,oTime(a0)
    move.w #-0x180,oVx(a0)
2:
    rts

Fire:
    move.w #9,planeGun
    moveq #kThingShot,d2
    move.w planeX,d0
    add.w #28,d0
    move.w planeY,d1
    addq.w #7,d1
    jbsr ThingAdd
    beq.s 1f
    move.w #0x680,oVx(a0)
    move.w #60,oTime(a0)
    moveq #kEffectShot,d0
    jbra EffectPlay
1:
    rts

| Everything that flies against us is hit twice and thrown back.
Gust:
    subq.w #1,charge
    move.w #kGustFrames,gust
    jbsr ThingsBlow
    jbsr BarShow
    moveq #kEffectGust,d0
    jbra EffectPlay

| Something touched the plane; a roll slips by, and so does a plane hit a moment ago. Not equal when it
| hurt.
PlaneHurt:
    move.w planeRoll,d0
    or.w planeSafe,d0
    bne.s 1f
    tst.w lives
    ble.s 1f
    subq.w #1,lives
    move.w #kSafeFrames,planeSafe
    moveq #kThingBurst,d2
    move.w planeX,d0
    move.w planeY,d1
    subq.w #4,d1
    jbsr ThingAdd
    beq.s 2f
    move.w #24,oTime(a0)
2:
    jbsr BarShow
    moveq #kEffectHurt,d0
    jbsr EffectPlay
    moveq #1,d0
    rts
1:
    moveq #0,d0
    rts

| On the title the plane flies for joy.
PlaneShow:
    move.w age,d0
    jbsr Sine
    add.w #140,d0
    move.w d0,planeX
    move.w age,d0
    add.w d0,d0
    add.w #64,d0
    jbsr Sine
    asr.w #2,d0
    move.w d0,planeBank
    neg.w planeBank
    add.w #130,d0
    move.w d0,planeY
    move.w age,d0
    and.w #0xFF,d0
    moveq #0,d1
    cmp.w #0xC0,d0
    bcs.s 1f
    cmp.w #0xC0+kRollFrames,d0
    bcc.s 1f
    move.w #0xC0+kRollFrames,d1
    sub.w d0,d1
1:
    move.w d1,planeRoll
    move.w planeX,d1
    bra Trail

PlaneDraw:
    cmp.w #3,mode
    beq.s 9f
    move.w planeSafe,d0
    and.w #4,d0
    bne.s 9f
    move.w #kHigh+kPalette3,d3
    move.w planeRoll,d0
    beq.s 2f
    lsr.w #3,d0                 | on edge, on its back, on edge, level
    move.w #kPlaneRoll,d2
    btst #0,d0
    bne.s 5f
    moveq #kPlaneLevel,d2
    cmp.w #2,d0
    bne.s 5f
    or.w #kFlipY,d3
    bra.s 5f
2:
    move.w planeBank,d0
    beq.s 4f
    moveq #kPlaneUp,d2
    tst.w d0
    bmi.s 5f
    moveq #kPlaneDown,d2
    bra.s 5f
4:
    moveq #kPlaneLevel,d2
    btst #1,age+1
    beq.s 5f
    moveq #kPlaneLevel2,d2
5:
    move.w planeX,d0
    move.w planeY,d1
    jbsr SpriteAdd
9:
    rts

| Its shadow on the sea, further behind the higher it flies; by night its lamp.
PlaneLight:
    cmp.w #3,mode
    beq.s 1f
    cmp.w #2,hour
    bne.s 2f
    move.w planeX,d0
    add.w #34,d0
    move.w planeY,d1
    subq.w #4,d1
    moveq #kGlow,d2
    move.w #kHigh+kPalette3,d3
    jbsr SpriteAdd
2:
    move.w planeY,d0
    neg.w d0
    add.w #190,d0
    lsr.w #3,d0
    neg.w d0
    add.w planeX,d0
    move.w planeY,d1
    lsr.w #3,d1
    add.w #166,d1
    moveq #kShade,d2
    move.w #kPalette3,d3
    jbra SpriteAdd
1:
    rts

| Presses the buttons: up or down to the nearest that is worth it, fire when a foe is ahead, out of the
| way of what is too near and of bolts above all.
Pilot:
    movem.l d2-d7/a2/a5,-(sp)
    sub.l a2,a2                 | the height to flee to, or 0
    lea things,a5
    moveq #kThings-1,d7
    move.w #400,d4              | the nearest yet
    moveq #0,d5                 | buttons
    move.w #90,d6               | the height to go to
    moveq #0,d3
1:
    move.w oKind(a5),d0
    cmp.w #kThingLantern,d0
    beq.s 2f
    cmp.w #kThingHeart,d0
    beq.s 2f
    cmp.w #kThingBolt,d0
    beq.s 12f
    cmp.w #kFoeFirst,d0
    bcs.s 3f
2:
    move.w oX(a5),d1
    sub.w planeX,d1
    cmp.w #20,d1
    blt.s 3f
    cmp.w d4,d1
    bge.s 3f
    move.w d1,d4
    move.w d0,d3
    move.w oY(a5),d6
3:
    lea kThingSize(a5),a5
    dbra d7,1b
    move.w a2,d0
    beq.s 14f
    move.w d0,d6
    bra.s 5f
12:
    move.w oX(a5),d1
    sub.w planeX,d1
    cmp.w #-8,d1
    blt.s 3b
    cmp.w #90,d1
    bge.s 3b
    move.w oY(a5),d1
    sub.w planeY,d1
    cmp.w #-24,d1
    blt.s 3b
    cmp.w #36,d1
    bge.s 3b
    move.w #30,a2
    cmp.w #4,d1
    bge.s 3b
    move.w #160,a2
    bra.s 3b
14:
    cmp.w #kFoeFirst,d3
    bcs.s 5f
    bset #kB,d5
    cmp.w #64,d4
    bge.s 5f
    move.w #150,d0              | too near: to the other half of the sky
    cmp.w #90,d6
    bge.s 4f
    move.w d0,d6
    bra.s 5f
4:
    move.w #40,d6
5:
    move.w planeY,d0
    addq.w #4,d0
    sub.w d6,d0
    cmp.w #5,d0
    blt.s 6f
    bset #kUp,d5
6:
    cmp.w #-5,d0
    bgt.s 7f
    bset #kDown,d5
7:
    move.w age,d0
    lsr.w #1,d0
    jbsr Sine
    add.w #150,d0
    asr.w #1,d0
    cmp.w planeX,d0
    blt.s 8f
    bset #kRight,d5
    bra.s 9f
8:
    bset #kLeft,d5
9:
    moveq #0,d0
    move.w age,d1
    and.w #0x1FF,d1
    cmp.w #0x1A0,d1
    bne.s 10f
    bset #kC,d0
10:
    cmp.w #0x0E0,d1
    bne.s 11f
    bset #kZ,d0
11:
    move.w d0,pressed
    move.w d5,buttons
    movem.l (sp)+,d2-d7/a2/a5
    rts

    .bss
    .balign 4
planeX:    .space 4             | 16.16 pixels
planeY:    .space 4
planeVx:   .space 2             | 8.8 pixels a frame
planeVy:   .space 2
planeBank: .space 2             | below 0 up, above down
planeRoll: .space 2             | frames left
planeSafe: .space 2
planeGun:  .space 2
