| The Z80's program is put into its RAM and left to itself; songs and effects are asked for in the last
| bytes of that RAM.

    .include "common/md.inc"
    .global SoundInit, SoundSong, SoundEffect

    .equ kMailSong,   kZ80Ram+0x1FF0    | number + 1
    .equ kMailEffect, kZ80Ram+0x1FF1    | number + 1

    .text
| a0 = 8 KiB for the Z80.
SoundInit:
    move.w #0x100,kZ80Bus
    move.w #0x100,kZ80Reset
1:
    btst #0,kZ80Bus
    bne.s 1b
    lea kZ80Ram,a1
    move.w #0x1FFF,d0
2:
    move.b (a0)+,(a1)+          | bytes only: this bus has eight lines
    dbra d0,2b
    clr.b kMailSong
    clr.b kMailEffect
    move.w #0,kZ80Reset         | resets the FM chip as well
    moveq #40,d0
3:
    dbra d0,3b
    move.w #0,kZ80Bus
    move.w #0x100,kZ80Reset
    rts

| d0 = number of a song.
SoundSong:
    addq.b #1,d0
    zTake
    move.b d0,kMailSong
    zGive
    rts

| d0 = number of an effect. The last of a frame wins.
SoundEffect:
    addq.b #1,d0
    zTake
    move.b d0,kMailEffect
    zGive
    rts
