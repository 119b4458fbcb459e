| From power-on to `Main`: the licence register, the pads, the video processor, the RAM. The program
| brings `Main` and `LineInterrupt`; `FrameInterrupt` counts frames in `frameCount`.

    .include "common/md.inc"
    .global start, Fault, Nothing, FrameInterrupt, frameCount

    .text
start:
    move.w #0x2700,sr
    move.b kVersion,d0
    and.b #0x0F,d0
    beq.s 1f
    move.l #0x53454741,kTmss    | "SEGA": the video processor answers only after it
1:
    tst.w kVdpControl           | drops a half-written command after a warm reset
    lea bssStart,a0
    lea bssEnd,a1
    moveq #0,d0
2:
    cmp.l a1,a0
    bcc.s 3f
    move.l d0,(a0)+
    bra.s 2b
3:
    move.b #0x40,kPadControl1   | TH of port 1 is an output
    move.b #0x40,kPadData1
    move.b #0x40,kPadControl1+2
    move.b #0x40,kPadData1+2
    jbsr VdpInit
    jbra Main

FrameInterrupt:
    addq.w #1,frameCount
Nothing:
    rte

| No program of ours gets here: a red screen says so.
Fault:
    move.l #0xC0000000,kVdpControl
    move.w #0x00E,kVdpData
    bra.s Fault

    .bss
    .balign 4
frameCount: .space 2
