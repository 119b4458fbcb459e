| Both pads' buttons as they are held, and what is plugged in.
    .include "testcard/testcard.inc"

    .text
    .globl PadsOpen
PadsOpen:
    text kPlaneA, 4, 4, kCyan, "PAD 1"
    text kPlaneA, 4, 23, kCyan, "PAD 2"
    text kPlaneA, 24, 4, kGray, "START WITH LEFT OR RIGHT, OR WITH"
    text kPlaneA, 25, 4, kGray, "A OR C, TURNS THE PAGE"
    rts

    .globl PadsFrame
PadsFrame:
    movem.l d2-d5/a2, -(sp)
    move.w padHeld, d2
    move.w padKind, d3
    move.w #kPlaneA+6*kPitch+8, d4
    bsr PutPad
    move.w padHeld+2, d2
    move.w padKind+2, d3
    move.w #kPlaneA+6*kPitch+46, d4
    bsr PutPad
    movem.l (sp)+, d2-d5/a2
    rts

| The buttons d2 of a pad with d3 buttons from address d4 on.
PutPad:
    lea nothing, a0
    tst.w d3
    beq 1f
    lea three, a0
    cmpi.w #3, d3
    beq 1f
    lea six, a0
1:  move.w d4, d0
    move.w #kHigh+kFont-32, d1
    jsr PutText
    addi.w #2*kPitch, d4
    lea names, a2
    moveq #0, d5
2:  move.w d4, d0
    jsr VramAt
    move.w #kSolid+3, d0
    move.w #kHigh+kGray+kFont-32, d1
    btst d5, d2
    beq 3f
    move.w #kSolid+7, d0
    move.w #kHigh+kYellow+kFont-32, d1
3:  move.w d0, (a6)
    move.w d0, (a6)
    movea.l a2, a0
    move.w d4, d0
    addq.w #6, d0
    jsr PutText
    addq.l #6, a2
    addi.w #kPitch, d4
    addq.w #1, d5
    cmpi.w #12, d5
    blo 2b
    | The bits as one number.
    addi.w #kPitch, d4
    move.w d2, d0
    lsr.w #8, d0
    jsr MakeHex
    move.w d4, d0
    move.w #kHigh+kFont-32, d1
    jsr PutText
    move.w d2, d0
    jsr MakeHex
    move.w d4, d0
    addq.w #4, d0
    move.w #kHigh+kFont-32, d1
    jmp PutText

    .section .rodata
nothing: .asciz "NOTHING      "
three: .asciz "THREE BUTTONS"
six: .asciz "SIX BUTTONS  "
| Six bytes each, in the order of the bits.
names:
    .ascii "UP   \0", "DOWN \0", "LEFT \0", "RIGHT\0", "B    \0", "C    \0"
    .ascii "A    \0", "START\0", "Z    \0", "Y    \0", "X    \0", "MODE \0"
    .balign 2
