| Power-on, interrupts and the pads.
    .include "testcard/testcard.inc"
    .text

    .globl start
start:
    move.w #0x2700, sr
    lea 0x00FFFE00, sp
    lea kVdp, a6
    | A console with the licence check shows nothing until the four letters are written.
    move.b kVersion, d0
    andi.b #15, d0
    beq 1f
    move.l 0x100, 0xA14000
1:  tst.w 4(a6)
    lea bssStart, a0
    lea bssEnd, a1
2:  clr.l (a0)+
    cmpa.l a1, a0
    blo 2b
    jsr HoldZ80
    | The pads' TH lines are outputs and rest high.
    move.b #0x40, 0xA10009
    move.b #0x40, 0xA1000B
    move.b #0x40, 0xA10003
    move.b #0x40, 0xA10005
    move.w #0x4EF9, hintJump
    move.l #Ignored, hintJump+2
    jsr SoundOff
    jmp Main

| The 68000 keeps the Z80's bus, so that it alone speaks to the FM chip. The line that resets the Z80 resets
| that chip too, which wants it low for a while.
    .globl HoldZ80
HoldZ80:
    move.w #0x100, kZ80Bus
    move.w #0, kZ80Reset
    moveq #60, d0
1:  dbra d0, 1b
    move.w #0x100, kZ80Reset
2:  btst #0, kZ80Bus
    bne 2b
    rts

| An error of the program leaves a red screen.
    .globl Fault
Fault:
    move.w #0x2700, sr
    lea kVdp, a6
    vdpRegister 1, 0x04
    vdpRegister 7, 0x00
    cramWrite 0
    move.w #0x00E, (a6)
1:  bra 1b

    .globl FrameInterrupt
FrameInterrupt:
    addq.w #1, frameCount
    .globl Ignored
Ignored:
    rte

| Waits until the picture of this frame is done.
    .globl WaitFrame
WaitFrame:
    move.w frameCount, d0
1:  cmp.w frameCount, d0
    beq 1b
    rts

| Reads both pads. In padHeld the buttons are in the order of kUp to kStart, then Z, Y, X and Mode.
    .globl ReadPads
ReadPads:
    movem.l d2-d4/a2-a3, -(sp)
    lea 0xA10003, a0
    lea padHeld, a1
    lea padPressed, a2
    lea padKind, a3
    moveq #1, d4
1:  jsr ReadPad
    move.w (a1), d1
    not.w d1
    and.w d0, d1
    move.w d1, (a2)+
    move.w d0, (a1)+
    move.w d2, (a3)+
    addq.l #2, a0
    dbra d4, 1b
    movem.l (sp)+, d2-d4/a2-a3
    rts

| One pad at a0: its buttons to d0, its kind (0, 3 or 6 buttons) to d2. A pad counts the rises of
| TH: one with six buttons identifies itself at the third fall and returns the other four after the third rise. An
| empty port has no zeros in the bits of left and right while TH is low.
ReadPad:
    moveq #0x40, d3
    move.b d3, (a0)
    nop
    nop
    moveq #0, d0
    move.b (a0), d0
    andi.w #0x3F, d0
    clr.b (a0)
    nop
    nop
    move.b (a0), d1
    moveq #0, d2
    btst #2, d1
    bne 3f
    btst #3, d1
    bne 3f
    moveq #3, d2
    andi.w #0x30, d1
    add.w d1, d1
    add.w d1, d1
    or.w d1, d0
    move.b d3, (a0)
    nop
    nop
    clr.b (a0)
    nop
    nop
    move.b d3, (a0)
    nop
    nop
    clr.b (a0)
    nop
    nop
    move.b (a0), d1
    andi.b #15, d1
    bne 2f
    moveq #6, d2
    move.b d3, (a0)
    nop
    nop
    move.b (a0), d1
    andi.w #15, d1
    lsl.w #8, d1
    or.w d1, d0
    clr.b (a0)
    nop
    nop
    bra 4f
2:  ori.w #0x0F00, d0
4:  move.b d3, (a0)
    not.w d0
    andi.w #0x0FFF, d0
    rts
3:  moveq #0, d0
    move.b d3, (a0)
    rts

    .section .bss
    .globl frameCount, padHeld, padPressed, padKind, hintJump
hintJump: .space 6
frameCount: .space 2
padHeld: .space 4
padPressed: .space 4
padKind: .space 4
