| The pad in port 1, with three buttons or six.

    .include "common/md.inc"
    .global PadRead, padHeld, padPressed

    .text
| Once a frame. A pad of six buttons counts the rises of TH and forgets them after 1.5 ms; at the third
| low level its four directions read 0, which none can press, and at the next high level it shows Z, Y,
| X and Mode.
PadRead:
    move.l d2,-(sp)
    lea kPadData1,a0
    move.b #0x40,(a0)
    jbsr Settle
    move.b (a0),d0
    and.w #0x3F,d0              | C B right left down up
    move.b #0,(a0)
    jbsr Settle
    move.b (a0),d1
    and.w #0x30,d1              | start A
    lsl.w #2,d1
    or.w d1,d0
    move.b #0x40,(a0)
    jbsr Settle
    move.b #0,(a0)
    jbsr Settle
    move.b #0x40,(a0)
    jbsr Settle
    move.b #0,(a0)
    jbsr Settle
    move.b (a0),d1
    move.b #0x40,(a0)
    jbsr Settle
    move.b (a0),d2
    move.b #0,(a0)
    jbsr Settle
    move.b #0x40,(a0)
    or.w #0x0F00,d0
    and.b #0x0F,d1
    bne.s 1f
    and.w #0x0F,d2              | mode X Y Z
    lsl.w #8,d2
    and.w #0x00FF,d0
    or.w d2,d0
1:
    eor.w #0x0FFF,d0
    move.w padHeld,d1
    move.w d0,padHeld
    not.w d1
    and.w d0,d1
    move.w d1,padPressed
    move.l (sp)+,d2
    rts

| The lines of a pad need a microsecond.
Settle:
    nop
    nop
    rts

    .bss
    .balign 2
padHeld:    .space 2
padPressed: .space 2
