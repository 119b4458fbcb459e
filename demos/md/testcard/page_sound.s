| The sounds, one at a time, with the name lit. The 68000 plays them all and keeps the Z80's bus.
    .include "testcard/testcard.inc"

    .equ kItems, 36
    .equ kItemsPerColumn, 18
    .equ kItemBytes, 24
    .equ kFrames, 30                        | of a sound, while they follow each other by themselves

    .text
    .globl SoundOpen
SoundOpen:
    movem.l d2-d3, -(sp)
    text kPlaneA, 23, 2, kGray, "A NEXT   B AGAIN   C NEXT PAGE"
    moveq #0, d2
1:  move.w d2, d0
    move.w #kHigh+kGray+kFont-32, d1
    bsr PutName
    addq.w #1, d2
    cmpi.w #kItems, d2
    blo 1b
    movem.l (sp)+, d2-d3
    rts

| The name of sound d0 with what makes cells d1.
PutName:
    move.w d2, -(sp)
    lea items, a0
    move.w d0, d2
    mulu #kItemBytes, d2
    adda.w d2, a0
    moveq #2, d2
    cmpi.w #kItemsPerColumn, d0
    blo 1f
    subi.w #kItemsPerColumn, d0
    addi.w #20, d2
1:  lsl.w #7, d0
    add.w d2, d0
    add.w d2, d0
    addi.w #kPlaneA+4*kPitch, d0
    move.w (sp)+, d2
    jmp PutText

    .globl SoundFrame
SoundFrame:
    movem.l d2-d7/a2-a3, -(sp)
    move.w padPressed, d0
    btst #kA, d0
    bne 2f
    btst #kB, d0
    bne 1f
    cmpi.w #1, pageFrame
    beq 1f
    tst.b touched
    bne 4f
    moveq #0, d0
    move.w pageFrame, d0
    divu #kFrames, d0
    swap d0
    tst.w d0
    bne 4f
    | The next.
2:  move.w item, d0
    move.w #kHigh+kGray+kFont-32, d1
    bsr PutName
    addq.w #1, item
    cmpi.w #kItems, item
    blo 1f
    clr.w item
1:  move.w item, d0
    move.w #kHigh+kYellow+kFont-32, d1
    bsr PutName
    jsr SoundOff
    move.w item, d0
    mulu #kItemBytes, d0
    lea items+16, a0
    adda.w d0, a0
    move.w 4(a0), d2
    movea.l (a0), a0
    jsr (a0)
4:  movem.l (sp)+, d2-d7/a2-a3
    rts

| What plays a sound has its parameter in d2.
PlayChannel:
    move.w d2, d4
    moveq #4, d5
    move.w #0xC0, d6
    bsr Voice
    lea scale, a0
    move.w d2, d3
    add.w d3, d3
    move.w 0(a0, d3.w), d3
    bra KeyOn

PlayAlgorithm:
    moveq #0, d4
    move.w d2, d5
    move.w #0xC0, d6
    bsr Voice
    move.w scale, d3
    bra KeyOn

PlaySide:
    moveq #0, d4
    moveq #4, d5
    move.w d2, d6
    bsr Voice
    move.w scale, d3
    bra KeyOn

| Vibrato shakes the pitch, tremolo the operators that let it.
PlayLfo:
    moveq #0, d4
    moveq #7, d5
    move.w d2, d6
    bsr Voice
    moveq #0, d7
    moveq #0x22, d0
    moveq #0x0B, d1
    jsr FmWrite
    moveq #0x60, d3
1:  move.w d3, d0
    move.w #0x80, d1
    jsr FmWrite
    addq.w #4, d3
    cmpi.w #0x70, d3
    blo 1b
    move.w scale, d3
    bra KeyOn

| Each operator of channel 3 has a pitch of its own.
PlaySpecial:
    moveq #2, d4
    moveq #7, d5
    move.w #0xC0, d6
    bsr Voice
    moveq #0, d7
    lea special, a2
    moveq #6, d3
1:  moveq #0, d0
    moveq #0, d1
    move.b (a2)+, d0
    move.b (a2)+, d1
    jsr FmWrite
    dbra d3, 1b
    move.w scale, d3
    bra KeyOn

| Of operator 4 alone; its level goes up and down by itself.
PlayShape:
    moveq #0, d4
    moveq #7, d5
    move.w #0xC0, d6
    bsr Voice
    moveq #0, d7
    lea shape, a2
    moveq #7, d3
1:  moveq #0, d0
    moveq #0, d1
    move.b (a2)+, d0
    move.b (a2)+, d1
    jsr FmWrite
    dbra d3, 1b
    move.w #0x9C, d0
    move.w d2, d1
    jsr FmWrite
    move.w #0x1C3B, d3                      | an octave below
    bra KeyOn

| The voice of algorithm d5 on channel d4, 0 to 5, with register 0xB4 from d6. d7 is left as the part of the
| chip.
Voice:
    movem.l d2-d4, -(sp)
    moveq #0, d7
    cmpi.w #3, d4
    blo 1f
    subq.w #3, d4
    moveq #2, d7
1:  lea voice, a2
    moveq #6*4-1, d3
2:  moveq #0, d0
    moveq #0, d1
    move.b (a2)+, d0
    add.w d4, d0
    move.b (a2)+, d1
    jsr FmWrite
    dbra d3, 2b
    | The carriers' levels.
    lea carriers, a2
    move.w d5, d0
    add.w d0, d0
    adda.w d0, a2
    move.b (a2)+, d2
    move.b (a2), d3
    move.w #0x40, d0
    add.w d4, d0
3:  lsr.b #1, d2
    bcc 4f
    moveq #0, d1
    move.b d3, d1
    jsr FmWrite
4:  addq.w #4, d0
    tst.b d2
    bne 3b
    move.w #0xB0, d0
    add.w d4, d0
    move.w d5, d1
    ori.w #0x28, d1                         | with feedback
    jsr FmWrite
    move.w #0xB4, d0
    add.w d4, d0
    move.w d6, d1
    jsr FmWrite
    movem.l (sp)+, d2-d4
    rts

| Key on of channel d4 with the block and number d3.
KeyOn:
    moveq #0, d7
    move.w d4, d5
    cmpi.w #3, d4
    blo 1f
    subq.w #3, d4
    addq.w #1, d5
    moveq #2, d7
1:  move.w #0xA4, d0
    add.w d4, d0
    move.w d3, d1
    lsr.w #8, d1
    jsr FmWrite
    move.w #0xA0, d0
    add.w d4, d0
    move.w d3, d1
    jsr FmWrite
    moveq #0, d7
    moveq #0x28, d0
    move.w d5, d1
    ori.w #0xF0, d1
    bra FmWrite

| Register d0 of part d7 (0 or 2) with d1, when the chip is free; keeps d0 and d1.
FmWrite:
    lea kFm, a0
    bsr 1f
    move.b d0, 0(a0, d7.w)
    bsr 1f
    move.b d1, 1(a0, d7.w)
    rts
1:  nop
    btst #7, (a0)
    bne 1b
    rts

| A drum by the DAC, a byte in each line: a falling tone, then noise, both dying away.
PlaySample:
    move.w #0x2700, sr
    moveq #0, d7
    moveq #0x2B, d0
    move.w #0x80, d1
    jsr FmWrite
    move.w #0xB6, d0
    move.w #0xC0, d1
    moveq #2, d7
    jsr FmWrite
    moveq #0, d7
    lea sine, a2
    lea 8(a6), a3
    move.w #840, d6                         | d6 the step, d5 the phase, d3 the level
    moveq #0, d5
    move.w #127*16, d3
    move.w #0xACE1, d2                      | d2 the noise
    moveq #0, d4
1:  add.w d6, d5
    move.w d4, d0
    andi.w #3, d0
    bne 2f
    subq.w #1, d6
2:  move.w d5, d0
    lsr.w #8, d0
    move.b 0(a2, d0.w), d1
    bsr Byte
    addq.w #1, d4
    subq.w #1, d3
    bne 1b
    move.w #127*16, d3
3:  lsr.w #1, d2
    bcc 4f
    eori.w #0xB400, d2
4:  move.b d2, d1
    bsr Byte
    subq.w #1, d3
    bne 3b
    moveq #0x2B, d0
    moveq #0, d1
    jsr FmWrite
    move.w #0x2300, sr
    rts
| The sample d1 at level d3, when the next line comes.
Byte:
    ext.w d1
    move.w d3, d0
    lsr.w #4, d0
    muls d0, d1
    asr.w #7, d1
    addi.w #128, d1
    move.b (a3), d0
5:  cmp.b (a3), d0
    beq 5b
    moveq #0x2A, d0
    bra FmWrite

PlayTone:
    lea tones, a0
    move.w d2, d0
    add.w d0, d0
    move.w 0(a0, d0.w), d1
    lsl.w #5, d2
    move.w d1, d0
    andi.w #15, d0
    ori.w #0x80, d0
    or.w d2, d0
    move.b d0, kPsg
    lsr.w #4, d1
    move.b d1, kPsg
    ori.w #0x92, d2
    move.b d2, kPsg
    rts

| Noise, in the last kind at the pitch of tone 3, which is silent.
PlayNoise:
    move.b #0xC0, kPsg
    move.b #0x08, kPsg
    move.b d2, kPsg
    move.b #0xF4, kPsg
    rts

| Silence, and all registers that the sounds do not set.
    .globl SoundOff
SoundOff:
    movem.l d2-d3/d7/a2, -(sp)
    moveq #0, d7
    lea silence, a2
    moveq #(silenceEnd-silence)/2-1, d3
1:  moveq #0, d0
    moveq #0, d1
    move.b (a2)+, d0
    move.b (a2)+, d1
    jsr FmWrite
    dbra d3, 1b
    | The operators of both parts: loudness none, release at once, no shape.
2:  moveq #0x40, d3
3:  move.w d3, d0
    moveq #0x7F, d1
    jsr FmWrite
    move.w d3, d0
    addi.w #0x40, d0
    move.w #0xFF, d1
    jsr FmWrite
    move.w d3, d0
    addi.w #0x50, d0
    moveq #0, d1
    jsr FmWrite
    addq.w #1, d3
    move.w d3, d0
    andi.w #3, d0
    cmpi.w #3, d0
    bne 4f
    addq.w #1, d3
4:  cmpi.w #0x50, d3
    blo 3b
    addq.w #2, d7
    cmpi.w #4, d7
    blo 2b
    move.b #0x9F, kPsg
    move.b #0xBF, kPsg
    move.b #0xDF, kPsg
    move.b #0xFF, kPsg
    movem.l (sp)+, d2-d3/d7/a2
    rts

    .section .rodata
    .balign 4
| Name, what plays it and with which parameter.
items:
    .macro sound play, parameter, string
9:  .asciz "\string"
    .space 16-(.-9b)
    .long \play
    .word \parameter, 0
    .endm
    sound PlayChannel, 0, "FM CHANNEL 1"
    sound PlayChannel, 1, "FM CHANNEL 2"
    sound PlayChannel, 2, "FM CHANNEL 3"
    sound PlayChannel, 3, "FM CHANNEL 4"
    sound PlayChannel, 4, "FM CHANNEL 5"
    sound PlayChannel, 5, "FM CHANNEL 6"
    sound PlayAlgorithm, 0, "ALGORITHM 0"
    sound PlayAlgorithm, 1, "ALGORITHM 1"
    sound PlayAlgorithm, 2, "ALGORITHM 2"
    sound PlayAlgorithm, 3, "ALGORITHM 3"
    sound PlayAlgorithm, 4, "ALGORITHM 4"
    sound PlayAlgorithm, 5, "ALGORITHM 5"
    sound PlayAlgorithm, 6, "ALGORITHM 6"
    sound PlayAlgorithm, 7, "ALGORITHM 7"
    sound PlaySide, 0x80, "FM LEFT"
    sound PlaySide, 0x40, "FM RIGHT"
    sound PlayLfo, 0xC6, "LFO VIBRATO"
    sound PlayLfo, 0xF0, "LFO TREMOLO"
    sound PlaySpecial, 0, "FM 3 SPECIAL"
    sound PlayShape, 8, "SSG 8 FALLS"
    sound PlayShape, 9, "SSG 9 FALL END"
    sound PlayShape, 0x0A, "SSG A TRIANGLE"
    sound PlayShape, 0x0B, "SSG B F. HOLD"
    sound PlayShape, 0x0C, "SSG C RISES"
    sound PlayShape, 0x0D, "SSG D R. HOLD"
    sound PlayShape, 0x0E, "SSG E TRIANGLE"
    sound PlayShape, 0x0F, "SSG F RISE END"
    sound PlaySample, 0, "FM 6 AS DAC"
    sound PlayTone, 0, "PSG TONE 1"
    sound PlayTone, 1, "PSG TONE 2"
    sound PlayTone, 2, "PSG TONE 3"
    sound PlayNoise, 0xE4, "NOISE HIGH"
    sound PlayNoise, 0xE5, "NOISE MIDDLE"
    sound PlayNoise, 0xE6, "NOISE LOW"
    sound PlayNoise, 0xE7, "NOISE BY TONE3"
    sound PlayNoise, 0xE2, "NOISE PERIODIC"
| Blocks and numbers: A, B, C, D, E and G.
scale:
    .word 0x243B, 0x24BF, 0x2508, 0x25A5, 0x2656, 0x2789
tones:
    .word 0x0FE, 0x0D6, 0x0A9
| Registers and values for channel 1, operator by operator in the chip's order: 1, 3, 2, 4.
voice:
    .byte 0x30, 0x01, 0x40, 0x22, 0x50, 0x1F, 0x60, 0x08, 0x70, 0x03, 0x80, 0x26
    .byte 0x34, 0x33, 0x44, 0x26, 0x54, 0x1F, 0x64, 0x0A, 0x74, 0x03, 0x84, 0x26
    .byte 0x38, 0x02, 0x48, 0x26, 0x58, 0x1F, 0x68, 0x08, 0x78, 0x03, 0x88, 0x26
    .byte 0x3C, 0x01, 0x4C, 0x26, 0x5C, 0x1F, 0x6C, 0x07, 0x7C, 0x03, 0x8C, 0x26
| For each algorithm, the carriers in the chip's order and their level.
carriers:
    .byte 0x8, 0x06, 0x8, 0x06, 0x8, 0x06, 0x8, 0x06, 0xC, 0x08, 0xE, 0x0C, 0xE, 0x0C, 0xF, 0x10
| Special mode and the pitches of operators 1, 2 and 3: a chord with operator 4.
special:
    .byte 0x27, 0x40, 0xAD, 0x25, 0xA9, 0x08, 0xAE, 0x26, 0xAA, 0x56, 0xAC, 0x2C
    .byte 0xA8, 0x3B
| Three operators silent; the fourth falls at a middling speed to the end.
shape:
    .byte 0x40, 0x7F, 0x44, 0x7F, 0x48, 0x7F, 0x4C, 0x0A, 0x3C, 0x01, 0x6C, 0x11, 0x7C, 0x11, 0x8C, 0xFF
| Key off of all channels, LFO, special mode and DAC off.
silence:
    .byte 0x28, 0, 0x28, 1, 0x28, 2, 0x28, 4, 0x28, 5, 0x28, 6, 0x22, 0, 0x27, 0, 0x2B, 0
silenceEnd:
    .balign 2

    .section .bss
item: .space 2
