| The game's road: title, a flight by hand or by itself, its end, title. Twenty seconds make an hour of
| the day; each hour brings more of everything.

    .include "common/md.inc"
    .include "mistral/mistral.inc"
    .global Main, LineInterrupt, ScoreAdd, BarShow, EffectPlay
    .global mode, hour, age, lives, charge, buttons, pressed, hoursFlown, smoke

    .equ kModeTitle, 0
    .equ kModeFlight, 1
    .equ kModeDemo, 2
    .equ kModeOver, 3
    .equ kTitleFrames, 480
    .equ kDemoFrames, 2400
    .equ kHourFrames, 1300

    .text
LineInterrupt:
    rte

Main:
    lea z80Program,a0
    jbsr SoundInit
    jbsr WorldLoad
    jbsr BarLoad
    move.w #1000,random
    lea best,a0
    move.l #0x00010000,(a0)
    jbsr TitleOpen
    jbsr VdpOn
    move.w #0x2000,sr
1:
    jbsr FrameWait
    addq.w #1,age
    jbsr PadRead
    move.w padHeld,buttons
    move.w padPressed,pressed
    jbsr Extras
    move.w mode,d0
    add.w d0,d0
    lea modes,a0
    move.w (a0,d0.w),d0
    jsr (a0,d0.w)
    jbsr PaletteStep
    jbsr WorldMove
    jbsr SpritesBuild
    bra 1b
modes:
    .word Title-modes, Flight-modes, Demo-modes, Over-modes

| d0 = effect; silent while the game plays itself.
EffectPlay:
    cmp.w #kModeDemo,mode
    beq.s 1f
    jbra SoundEffect
1:
    rts

| X turns the hour, Y the smoke, Mode takes the bar away; Z is the pilot's.
Extras:
    move.w pressed,d0
    btst #kX,d0
    beq.s 1f
    jbsr HourNext
1:
    move.w pressed,d0
    btst #kY,d0
    beq.s 2f
    addq.w #1,smoke
    cmp.w #3,smoke
    bne.s 2f
    clr.w smoke
2:
    move.w pressed,d0
    btst #kMode,d0
    beq.s 3f
    eor.w #1,barHidden
    jbsr BarPlace
3:
    rts

HourNext:
    addq.w #1,hour
    and.w #3,hour
HourShow:
    move.w hour,d0
    lsl.w #7,d0
    lea hours,a0
    add.w d0,a0
    jbra PaletteGo

TitleOpen:
    clr.w mode
    clr.w age
    clr.w hour
    jbsr HourShow
    jbsr ThingsClear
    jbsr MapTitle
    lea textStart,a0
    move.w #kPlaneA+(16*64+14)*2,d0
    move.w #kHigh+kPalette2+kFontTile,d1
    jbsr TextPut
    lea textButtons,a0
    move.w #kPlaneA+(18*64+7)*2,d0
    move.w #kHigh+kPalette2+kFontTile,d1
    jbsr TextPut
    lea textSix,a0
    move.w #kPlaneA+(20*64+4)*2,d0
    move.w #kHigh+kPalette2+kFontTile,d1
    jbsr TextPut
    jbsr BarPlace
    jbsr BarShow
    moveq #0,d0
    jbra SoundSong

Title:
    move.w pressed,d0
    and.w #0x00F0,d0            | start, A, B, C
    bne.s 1f
    cmp.w #kTitleFrames,age
    bcc.s 2f
    | The invitation blinks.
    move.w age,d0
    and.w #0x1F,d0
    bne.s 3f
    lea textStart,a0
    btst #5,age+1
    beq.s 4f
    lea textNothing,a0
4:
    move.w #kPlaneA+(16*64+14)*2,d0
    move.w #kHigh+kPalette2+kFontTile,d1
    jbsr TextPut
3:
    jbsr ThingsMove
    jbra PlaneShow
1:
    moveq #kEffectStart,d0
    jbsr SoundEffect
    moveq #kModeFlight,d0
    bra.s FlightOpen
2:
    moveq #kModeDemo,d0
FlightOpen:
    move.w d0,mode
    clr.w age
    clr.l score
    clr.w hoursFlown
    clr.w hourAge
    move.b #1,songNow
    move.w #3,lives
    move.w #2,charge
    cmp.w #kModeDemo,mode
    bne.s 1f
    move.w #5,lives
1:
    jbsr ThingsClear
    jbsr MapFlight
    jbsr PlaneReset
    jbsr BarPlace
    jbsr BarShow
    moveq #1,d0
    jbra SoundSong

Demo:
    move.w pressed,d0
    and.w #0x00F0,d0
    bne TitleOpen
    cmp.w #kDemoFrames,age
    bcc TitleOpen
    jbsr Pilot
Flight:
    jbsr PlaneMove
    jbsr ThingsMove
    jbsr ThingsSpawn
    | The hours pass.
    addq.w #1,hourAge
    cmp.w #kModeDemo,mode       | a demonstration shows more of the day
    bne.s 6f
    addq.w #1,hourAge
6:
    cmp.w #kHourFrames,hourAge
    bcs.s 1f
    clr.w hourAge
    addq.w #1,hoursFlown
    jbsr HourNext
    moveq #1,d0                 | tunes of the day and of the evening
    btst #0,hour+1
    bne.s 2f
    tst.w hour
    beq.s 3f
2:
    moveq #2,d0
    cmp.w #3,hour
    bne.s 3f
    moveq #1,d0
3:
    cmp.b songNow,d0
    beq.s 1f
    move.b d0,songNow
    jbsr SoundSong
1:
    tst.w lives
    bgt.s 4f
    cmp.w #kModeDemo,mode
    beq TitleOpen
    move.w #kModeOver,mode
    clr.w age
    move.l score,d0
    cmp.l best,d0
    bls.s 5f
    move.l d0,best
5:
    lea textOver,a0
    move.w #kPlaneA+(15*64+14)*2,d0
    move.w #kHigh+kPalette2+kFontTile,d1
    jbsr TextPut
    lea evening,a0
    jbsr PaletteGo
    jbsr BarShow
    moveq #3,d0
    jbra SoundSong
4:
    rts

Over:
    jbsr ThingsMove
    cmp.w #60,age
    bcs.s 1f
    move.w pressed,d0
    and.w #0x00F0,d0
    bne TitleOpen
    cmp.w #400,age
    bcc TitleOpen
1:
    rts

| d0 = packed decimal points to add.
ScoreAdd:
    lea addend+4,a0
    move.l d0,addend
    lea score+4,a1
    moveq #3,d1
    move.w #0,ccr
1:
    abcd -(a0),-(a1)
    dbra d1,1b
    jbra BarShow

| The bar: its tiles, its position, its text.
BarLoad:
    move.w #kFontTile,d0
    moveq #0,d1
    moveq #0,d2
    jbsr FontLoad
    move.w #kBarTile,d0
    moveq #7,d1
    move.l #0x55555555,d2
    jbsr FontLoad
    lea ground,a0
    lea groundEnd,a1
    move.w #kGroundTile,d0
    jbsr TilesLoad
    move.w #kWindowMap,d0
    move.w #kHigh+kPalette2+kGroundTile,d1
    jbra MapClear

BarPlace:
    move.w #0x9202,d0           | two rows of window at the top
    tst.w barHidden
    beq.s 1f
    move.w #0x9200,d0
1:
    move.w d0,kVdpControl
    rts

BarShow:
    movem.l d3-d4/a2,-(sp)
    lea barText,a0
    lea line,a1
1:
    move.b (a0)+,(a1)+
    bne.s 1b
    lea line+1,a1
    move.l score,d0
    bsr.s Digits
    lea line+32,a1
    move.l best,d0
    bsr.s Digits
    lea line,a0
    move.w #kWindowMap+128,d0
    move.w #kHigh+kPalette2+kBarTile,d1
    jbsr TextPut
    vramWrite kWindowMap+128+9*2
    move.w #kHigh+kPalette2+kLifeTile,d1
    move.w lives,d0
    moveq #4,d3
    bsr.s Row
    vramWrite kWindowMap+128+16*2
    move.w #kHigh+kPalette2+kChargeTile,d1
    move.w charge,d0
    moveq #7,d3
    bsr.s Row
    movem.l (sp)+,d3-d4/a2
    rts

| d0 cells of d1, the rest of d3 + 1 empty.
Row:
    subq.w #1,d0
    bpl.s 1f
    move.w #kHigh+kPalette2+kBarTile,d1
1:
    move.w d1,kVdpData
    dbra d3,Row
    rts

| The low seven digits of d0 to a1.
Digits:
    moveq #6,d1
    lsl.l #4,d0
1:
    rol.l #4,d0
    move.w d0,d3
    and.w #15,d3
    add.w #'0',d3
    move.b d3,(a1)+
    dbra d1,1b
    rts

    .section .rodata
textStart:   .asciz "PRESS START"
textNothing: .asciz "           "
textButtons: .asciz "A B FIRE   C GUST OF WIND"
textSix:     .asciz "X HOUR  Y SMOKE  Z ROLL  MODE BAR"
textOver:    .asciz "BACK TO PORT"
barText:     .asciz " 0000000                  BEST  0000000 "
    .even
ground:                         | the bar's ground, a heart, a lantern
    .long 0x77777777, 0x77777777, 0x77777777, 0x77777777, 0x77777777, 0x77777777, 0x77777777, 0x77777777
    .long 0x7BB7BB77, 0xB8ABAAC7, 0xB8AAABC7, 0xBAAABBC7, 0x7BABBC77, 0x77BBC777, 0x777C7777, 0x55555555
    .long 0x77DCD777, 0x7DA9AD77, 0xDA989AD7, 0xC98E89C7, 0xDA989AD7, 0x7DA9AD77, 0x77DCD777, 0x55555555
groundEnd:
    .even
z80Program:
    .incbin "z80.bin"

    .bss
    .balign 4
score:      .space 4            | packed decimal
best:       .space 4
addend:     .space 4
mode:       .space 2
age:        .space 2            | frames in this mode
hour:       .space 2            | 0 noon, 1 dusk, 2 night, 3 dawn
hourAge:    .space 2
hoursFlown: .space 2
lives:      .space 2
charge:     .space 2            | gusts left
buttons:    .space 2
pressed:    .space 2
barHidden:  .space 2
smoke:      .space 2            | 0 white, 1 red, 2 none
songNow:    .space 2
line:       .space 44
