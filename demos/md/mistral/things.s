| Everything that flies besides the plane, and the list of sprites.
|
| The routines of a kind get their thing in a5 and may change d0 to d4 and a0 to a4; those that draw get
| the next sprite in a6 and its number in d6, and keep these.

    .include "common/md.inc"
    .include "mistral/mistral.inc"
    .global ThingsClear, ThingsMove, ThingsSpawn, ThingsBlow, ThingAdd, SpritesBuild, SpriteAdd, things

    .text
ThingsClear:
    lea things,a0
    move.w #kThings*kThingSize/2-1,d0
1:
    clr.w (a0)+
    dbra d0,1b
    move.w #60,spawnWait
    clr.w flock
    rts

| d0 = x, d1 = y, d2 = kind. Returns it in a0; equal when there is no room. Keeps d3 and what is above.
ThingAdd:
    lea things,a0
    swap d3
    move.w #kThings-1,d3
1:
    tst.w (a0)
    beq.s 2f
    lea kThingSize(a0),a0
    dbra d3,1b
    swap d3
    moveq #0,d0
    rts
2:
    swap d3
    move.w d2,oKind(a0)
    move.w d0,oX(a0)
    clr.w oX+2(a0)
    move.w d1,oY(a0)
    clr.w oY+2(a0)
    clr.l oVx(a0)
    clr.l oTime(a0)
    move.w d1,oBase(a0)
    clr.w oFlash(a0)
    moveq #1,d0
    rts

ThingsMove:
    movem.l d2-d7/a2-a5,-(sp)
    | The shots by themselves, so that no foe looks at everything.
    lea things,a5
    lea shots,a0
    moveq #kThings-1,d7
5:
    cmp.w #kThingShot,oKind(a5)
    bne.s 6f
    move.l a5,(a0)+
6:
    lea kThingSize(a5),a5
    dbra d7,5b
    clr.l (a0)
    lea things,a5
    moveq #kThings-1,d7
1:
    move.w oKind(a5),d0
    beq.s 4f
    move.w oVx(a5),d1
    ext.l d1
    lsl.l #8,d1
    add.l d1,oX(a5)
    move.w oVy(a5),d1
    ext.l d1
    lsl.l #8,d1
    add.l d1,oY(a5)
    tst.w oFlash(a5)
    beq.s 2f
    subq.w #1,oFlash(a5)
2:
    add.w d0,d0
    lea moves,a0
    move.w (a0,d0.w),d0
    jsr (a0,d0.w)
    cmp.w #-40,oX(a5)
    bgt.s 4f
    clr.w oKind(a5)
4:
    lea kThingSize(a5),a5
    dbra d7,1b
    movem.l (sp)+,d2-d7/a2-a5
    rts
moves:
    .word 0, ShotMove-moves, Fade-moves, Fade-moves, LanternMove-moves, HeartMove-moves, BoltMove-moves
    .word DolphinMove-moves, GullMove-moves, BalloonMove-moves, StormMove-moves

ShotMove:
    cmp.w #320,oX(a5)
    bcc Gone
Fade:
    subq.w #1,oTime(a5)
    bpl.s 1f
Gone:
    clr.w oKind(a5)
1:
    rts

| d0 = a quarter of the wind, to the left.
Drift:
    move.w wind,d0
    asr.w #1,d0
    neg.w d0
    move.w d0,oVx(a5)
| Swings about its height: d1 = shift of the swing's size.
Swing:
    addq.w #1,oTime(a5)
    move.w oTime(a5),d0
    add.w d0,d0
    add.w oX(a5),d0
    jbsr Sine
    asr.w d1,d0
    add.w oBase(a5),d0
    move.w d0,oY(a5)
    rts

LanternMove:
    moveq #4,d1
    bsr Drift
    bsr Touches
    beq.s 1f
    clr.w oKind(a5)
    moveq #kEffectLantern,d0
    jbsr EffectPlay
    addq.w #1,lanterns
    cmp.w #3,lanterns           | three lanterns are a gust
    bcs.s 2f
    clr.w lanterns
    cmp.w #8,charge
    bcc.s 2f
    addq.w #1,charge
2:
    move.l #0x50,d0
    jbra ScoreAdd
1:
    rts

HeartMove:
    moveq #3,d1
    bsr Drift
    bsr Touches
    beq.s 1f
    clr.w oKind(a5)
    moveq #kEffectHeart,d0
    jbsr EffectPlay
    cmp.w #5,lives
    bcc.s 2f
    addq.w #1,lives
2:
    move.l #0x100,d0
    jbra ScoreAdd
1:
    rts

BoltMove:
    cmp.w #186,oY(a5)
    bge Gone
    bsr Touches
    beq.s 1f
    jbsr PlaneHurt
    beq.s 1f
    clr.w oKind(a5)
1:
    rts

| Falls back, and is gone with a splash.
DolphinMove:
    add.w #0x0C,oVy(a5)
    cmp.w #184,oY(a5)
    blt.s 1f
    tst.w oVy(a5)
    bmi.s 1f
    clr.w oKind(a5)
    move.w oX(a5),d4
    moveq #3,d3
2:
    moveq #kThingPuff,d2
    move.w d4,d0
    addq.w #8,d4
    move.w #184,d1
    bsr ThingAdd
    beq.s 1f
    clr.w oBase(a0)
    move.w #22,oTime(a0)
    move.w #-0x100,oVy(a0)
    move.w d3,d0
    lsl.w #7,d0
    sub.w #0xC0,d0
    move.w d0,oVx(a0)
    dbra d3,2b
1:
    rts

GullMove:
    moveq #3,d1
    bsr Swing
    bra.s FoeMove

BalloonMove:
    moveq #4,d1
    bsr Swing
    bra.s FoeMove

| Comes in, stays, throws bolts, and drives off.
StormMove:
    moveq #2,d1
    bsr Swing
    move.w oTime(a5),d0
    move.w #-0x0C0,oVx(a5)
    cmp.w #480,d0
    bcc.s 2f
    cmp.w #232,oX(a5)
    bge.s 2f
    clr.w oVx(a5)
2:
    and.w #63,d0
    bne.s FoeMove
    moveq #kThingBolt,d2
    move.w oX(a5),d0
    add.w #12,d0
    move.w oY(a5),d1
    add.w #18,d1
    bsr ThingAdd
    beq.s FoeMove
    move.w #-0x200,oVx(a0)
    move.w planeY,d1
    sub.w oY(a5),d1
    lsl.w #1,d1
    move.w d1,oVy(a0)

| All foes: shots hit them, and they hit the plane.
FoeMove:
    cmp.w #312,oX(a5)
    bge.s 9f
    bsr ThingMiddle
    lea shots,a2
1:
    move.l (a2)+,d0
    beq.s 5f
    move.l d0,a4
    cmp.w #kThingShot,oKind(a4) | it may have hit another
    bne.s 1b
    move.w oX(a4),d0
    addq.w #8,d0
    sub.w d2,d0
    bpl.s 2f
    neg.w d0
2:
    sub.w #6,d0
    cmp.w 6(a1),d0
    bge.s 1b
    move.w oY(a4),d0
    addq.w #4,d0
    sub.w d3,d0
    bpl.s 4f
    neg.w d0
4:
    subq.w #3,d0
    cmp.w 8(a1),d0
    bge.s 1b
    clr.w oKind(a4)
    move.w #5,oFlash(a5)
    subq.w #1,oHits(a5)
    ble FoeDie
    bra.s 1b
5:
    bsr Touches
    beq.s 9f
    jbsr PlaneHurt
    beq.s 9f
    bra FoeDie
9:
    rts

FoeDie:
    move.w oKind(a5),d4
    bsr ThingMiddle
    move.w d2,d0
    sub.w #16,d0
    move.w d3,d1
    sub.w #16,d1
    move.w #kThingBurst,oKind(a5)
    move.w d0,oX(a5)
    move.w d1,oY(a5)
    move.w #24,oTime(a5)
    move.w #-0x80,oVx(a5)
    clr.w oVy(a5)
    cmp.w #kThingGull,d4
    beq.s 2f
    | A balloon leaves a lantern; so does a storm, or a heart.
    addq.w #8,d0
    addq.w #8,d1
    moveq #kThingLantern,d2
    cmp.w #kThingStorm,d4
    bne.s 1f
    btst #0,age+1
    bne.s 1f
    moveq #kThingHeart,d2
1:
    bsr ThingAdd
2:
    moveq #kEffectBurst,d0
    jbsr EffectPlay
    sub.w #kFoeFirst,d4
    lsl.w #2,d4
    lea prizes,a0
    move.l (a0,d4.w),d0
    jbra ScoreAdd

| The middle of a5 in d2, d3; a1 = its shape.
ThingMiddle:
    move.w oKind(a5),d0
    mulu #10,d0
    lea shapes,a1
    add.w d0,a1
    move.w oX(a5),d2
    add.w 2(a1),d2
    move.w oY(a5),d3
    add.w 4(a1),d3
    rts

| Not equal when a5 touches the plane.
Touches:
    tst.w mode
    beq.s 3f
    cmp.w #3,mode
    beq.s 3f
    bsr.s ThingMiddle
    move.w planeX,d0
    add.w #15,d0
    sub.w d2,d0
    bpl.s 1f
    neg.w d0
1:
    sub.w #9,d0
    cmp.w 6(a1),d0
    bge.s 3f
    move.w planeY,d0
    add.w #12,d0
    sub.w d3,d0
    bpl.s 2f
    neg.w d0
2:
    subq.w #6,d0
    cmp.w 8(a1),d0
    bge.s 3f
    moveq #1,d0
    rts
3:
    moveq #0,d0
    rts

| A gust: two hits to all foes, bolts turn.
ThingsBlow:
    movem.l d2-d7/a2-a5,-(sp)
    lea things,a5
    moveq #kThings-1,d7
1:
    move.w oKind(a5),d0
    cmp.w #kThingBolt,d0
    bne.s 2f
    move.w #0x600,oVx(a5)
    move.w #-0x300,oVy(a5)
    bra.s 3f
2:
    cmp.w #kFoeFirst,d0
    bcs.s 3f
    cmp.w #320,oX(a5)
    bge.s 3f
    add.w #24,oX(a5)
    move.w #10,oFlash(a5)
    subq.w #2,oHits(a5)
    bgt.s 3f
    bsr FoeDie
3:
    lea kThingSize(a5),a5
    dbra d7,1b
    movem.l (sp)+,d2-d7/a2-a5
    rts

| A flock of gulls, a balloon, a storm or lanterns; sooner as the hours pass.
ThingsSpawn:
    movem.l d2-d5,-(sp)
    tst.w flock
    beq 1f
    move.w age,d0
    and.w #31,d0
    bne 1f
    subq.w #1,flock
    move.w flockKind,d2
    move.w flockY,d1
    move.w #330,d0
    bsr ThingAdd
    beq 1f
    move.w #1,oHits(a0)
    move.w #-0x1C0,d0
    move.w hoursFlown,d1
    cmp.w #6,d1
    bcs 9f
    moveq #6,d1
9:
    lsl.w #5,d1
    sub.w d1,d0
    move.w d0,oVx(a0)
1:
    subq.w #1,spawnWait
    bne 8f
    move.w hoursFlown,d0
    cmp.w #6,d0
    bcs 2f
    moveq #6,d0
2:
    lsl.w #3,d0
    neg.w d0
    add.w #84,d0
    move.w d0,spawnWait
    jbsr Random
    move.w d0,d4
    and.w #0x7F,d0
    add.w #30,d0
    move.w d0,d5                | its height
    lsr.w #8,d4
    and.w #15,d4
    cmp.w #6,d4
    bcs 3f
    cmp.w #9,d4
    bcs 5f
    cmp.w #12,d4
    bcs 6f
    cmp.w #14,d4
    bcs 4f
    | A dolphin leaps.
    moveq #kThingDolphin,d2
    move.w d5,d0
    add.w #80,d0
    move.w #183,d1
    bsr ThingAdd
    beq 8f
    move.w #-0x280,oVy(a0)
    move.w #0x60,oVx(a0)
    bra 8f
3:
    move.w #kThingGull,flockKind
    move.w #4,flock
    move.w d5,flockY
    bra 8f
4:
    move.w #kThingLantern,flockKind
    move.w #3,flock
    move.w d5,flockY
    bra 8f
5:
    moveq #kThingBalloon,d2
    move.w #330,d0
    move.w d5,d1
    lsr.w #1,d1
    add.w #30,d1
    bsr ThingAdd
    beq 8f
    move.w #4,oHits(a0)
    move.w #-0xE0,oVx(a0)
    bra 8f
6:
    | One storm at first, one more every second hour; else gulls.
    lea things,a0
    moveq #kThings-1,d0
    move.w hoursFlown,d1
    lsr.w #1,d1
7:
    cmp.w #kThingStorm,oKind(a0)
    bne 10f
    subq.w #1,d1
    bmi 3b
10:
    lea kThingSize(a0),a0
    dbra d0,7b
    moveq #kThingStorm,d2
    move.w #330,d0
    move.w d5,d1
    lsr.w #2,d1
    add.w #52,d1
    bsr ThingAdd
    beq 8f
    move.w #7,oHits(a0)
8:
    movem.l (sp)+,d2-d5
    rts

| Builds the sprite list anew: the first sprites are in front, the lights behind all others.
SpritesBuild:
    movem.l d2-d7/a2-a6,-(sp)
    lea spriteTable,a6
    moveq #0,d6
    jbsr PlaneDraw
    lea things,a5
    moveq #kThings-1,d7
1:
    move.w oKind(a5),d0
    beq.s 2f
    bsr ThingDraw
2:
    lea kThingSize(a5),a5
    dbra d7,1b
    jbsr WindDraw
    lea things,a5
    moveq #kThings-1,d7
3:
    move.w oKind(a5),d0
    cmp.w #kThingLantern,d0
    bne.s 4f
    moveq #kGlow,d2
    move.w #kHigh+kPalette3,d3
    move.w oX(a5),d0
    subq.w #8,d0
    move.w oY(a5),d1
    subq.w #8,d1
    bsr SpriteAdd
    bra.s 5f
4:
    cmp.w #kThingStorm,d0
    bne.s 5f
    moveq #kShade,d2
    move.w #kPalette3,d3
    move.w oX(a5),d0
    move.w #182,d1
    bsr SpriteAdd
5:
    lea kThingSize(a5),a5
    dbra d7,3b
    jbsr PlaneLight
    jbsr LightDraw
    tst.w d6
    bne.s 6f
    clr.l (a6)+                 | one sprite there must be: above the picture
    clr.l (a6)+
6:
    clr.b -5(a6)                | the last one ends the list
    movem.l (sp)+,d2-d7/a2-a6
    rts

| d0 = x, d1 = y, d2 = drawing, d3 = priority, palette and flips. Changes d0 to d2 and a0.
SpriteAdd:
    cmp.w #80,d6
    bcc.s 1f
    cmp.w #-32,d0
    ble.s 1f
    cmp.w #320,d0
    bge.s 1f
    cmp.w #-32,d1
    ble.s 1f
    cmp.w #224,d1
    bge.s 1f
    lea drawings,a0
    lsl.w #2,d2
    add.w d2,a0
    add.w #128,d1
    move.w d1,(a6)+
    addq.w #1,d6
    move.b 2(a0),(a6)+
    move.b d6,(a6)+
    move.w (a0),d1
    add.w d3,d1
    move.w d1,(a6)+
    add.w #128,d0
    move.w d0,(a6)+
1:
    rts

| d0 = kind.
ThingDraw:
    move.w d0,d2
    mulu #10,d2
    lea shapes,a0
    move.w (a0,d2.w),d2
    move.w #kHigh+kPalette3,d3
    add.w d0,d0
    lea looks,a0
    move.w (a0,d0.w),d0
    jsr (a0,d0.w)
    move.w oX(a5),d0
    move.w oY(a5),d1
    tst.w oFlash(a5)            | what was hit shakes
    beq SpriteAdd
    subq.w #2,d0
    btst #0,age+1
    beq SpriteAdd
    addq.w #4,d0
    bra SpriteAdd
looks:
    .word 0, Plain-looks, Puff-looks, Burst-looks, Lantern-looks, Plain-looks, Bolt-looks, Plain-looks
    .word Gull-looks, Plain-looks, Storm-looks
Puff:
    moveq #24,d0
    sub.w oTime(a5),d0
    lsr.w #3,d0
    cmp.w #3,d0
    bcs.s 1f
    moveq #2,d0
1:
    add.w d0,d2
    cmp.w #1,oBase(a5)
    bne.s Plain
    addq.w #3,d2
Plain:
    rts
Burst:
    moveq #24,d0
    sub.w oTime(a5),d0
    mulu #11,d0
    lsr.w #6,d0
    cmp.w #4,d0
    bcs.s 1f
    moveq #3,d0
1:
    add.w d0,d2
    rts
Lantern:
    btst #3,age+1
    beq.s 1f
    addq.w #1,d2
1:
    rts
Bolt:
    btst #2,age+1
    beq.s 1f
    or.w #kFlipX,d3
1:
    rts
Gull:
    move.w oTime(a5),d0
    lsr.w #3,d0
    and.w #3,d0
    cmp.w #3,d0
    bne.s 1f
    moveq #1,d0
1:
    add.w d0,d2
    rts
Storm:
    move.w oTime(a5),d0
    and.w #63,d0
    cmp.w #44,d0
    bcs.s 1f
    addq.w #1,d2
1:
    rts

    .section .rodata
| By kind: drawing, middle, half of what can be touched.
shapes:
    .word 0, 0, 0, 0, 0
    .word kShot, 8, 4, 6, 3
    .word kPuff, 4, 4, 0, 0
    .word kBurst, 16, 16, 0, 0
    .word kLantern, 8, 8, 8, 8
    .word kHeart, 8, 8, 8, 8
    .word kBolt, 4, 8, 2, 6
    .word kDolphin, 16, 8, 0, 0
    .word kGull, 12, 8, 8, 5
    .word kBalloon, 16, 14, 11, 12
    .word kStorm, 16, 12, 13, 9
| Packed decimal.
prizes:
    .long 0x100, 0x300, 0x500

    .bss
    .balign 2
things:    .space kThings*kThingSize
shots:     .space (kThings+1)*4 | addresses, up to a 0
spawnWait: .space 2
flock:     .space 2             | how many are still to come
flockKind: .space 2
flockY:    .space 2
lanterns:  .space 2
