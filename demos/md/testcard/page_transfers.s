| The speed of the five transfers, in bytes a line. While the page is opened, with the picture off, each is
| measured once; then, one each frame, in the midst of the picture.
|
| A transfer begins as line kFirstLine begins; when it is over, the rest of its line is counted in turns of a
| loop of known length, so that the time is known to a twentieth of a line.
    .include "testcard/testcard.inc"

    .equ kFirstLine, 30
    .equ kCyclesPerLine, 488
    .equ kCyclesPerTurn, 22
    .equ kRowBytes, 16
    .equ kSourceBytes, 8192
    .equ kTarget, 0x4000

    .text
    .globl TransfersOpen
TransfersOpen:
    movem.l d2-d4/a2-a3, -(sp)
    | The palette again and again: a transfer of it to CRAM is seen only by its dots.
    lea colours, a0
    move.w #kSourceBytes/128-1, d1
1:  lea palette, a1
    moveq #31, d0
2:  move.l (a1)+, (a0)+
    dbra d0, 2b
    dbra d1, 1b
    lea zeros, a0
    move.w #kSourceBytes/4-1, d0
3:  clr.l (a0)+
    dbra d0, 3b
    text kPlaneA, 4, 2, kCyan, "BYTES IN A LINE   PICTURE   BLANKED"
    text kPlaneA, 20, 2, kGray, "WITH THE PICTURE, LINES 30 TO 130;"
    text kPlaneA, 21, 2, kGray, "BLANKED, WITH THE PICTURE OFF"
    lea names, a2
    move.w #kPlaneA+6*kPitch+4, d2
    moveq #4, d3
4:  movea.l a2, a0
    move.w d2, d0
    move.w #kHigh+kFont-32, d1
    jsr PutText
    lea 16(a2), a2
    addi.w #2*kPitch, d2
    dbra d3, 4b
    lea blanked, a2
    moveq #0, d3
5:  bsr Measure
    movea.w #28*2, a3
    bsr PutSpeed
    lea kRowBytes(a2), a2
    addq.w #1, d3
    cmpi.w #5, d3
    blo 5b
    clr.w next
    clr.w last
    lea palette, a0
    jsr PutPalette
    movem.l (sp)+, d2-d4/a2-a3
    rts

    .globl TransfersFrame
TransfersFrame:
    movem.l d2-d4/a2-a3, -(sp)
    move.w next, d3
    | The number of the last measurement is written before the picture begins.
    moveq #0, d0
    move.w last, d0
    beq 1f
    movea.w #19*2, a3
    bsr PutSpeed
    addq.w #1, d3
    cmpi.w #5, d3
    blo 1f
    moveq #0, d3
1:  move.w d3, next
    lsl.w #4, d3
    lea pictured, a2
    adda.w d3, a2
    bsr Measure
    move.w d0, last
    movem.l (sp)+, d2-d4/a2-a3
    rts

| The speed d0, in tenths, in row d3 and the column of a3 bytes.
PutSpeed:
    divu #10, d0
    move.l d0, d4
    andi.l #0xFFFF, d0
    moveq #5, d1
    jsr MakeDecimal
    swap d4
    addi.b #0x30, d4
    move.b #0x2E, 5(a0)
    move.b d4, 6(a0)
    clr.b 7(a0)
    move.w d3, d0
    lsl.w #8, d0
    addi.w #kPlaneA+6*kPitch, d0
    add.w a3, d0
    move.w #kHigh+kYellow+kFont-32, d1
    jmp PutText

| Measures the transfer whose row is at a2; d0 is ten times its bytes in a line.
Measure:
    movem.l d2-d3/a2-a3, -(sp)
    lea 8(a6), a1
    move.w (a2)+, 4(a6)                     | the step of the address
    move.l (a2)+, command
    move.w (a2)+, d1                        | the units
    move.w #0x9300, d0
    move.b d1, d0
    move.w d0, 4(a6)
    lsr.w #8, d1
    ori.w #0x9400, d1
    move.w d1, 4(a6)
    move.l (a2)+, d1                        | the source
    tst.b 2(a2)
    bne 5f
    lsr.l #1, d1                            | in words of the 68000's side
5:  move.w #0x9500, d0
    move.b d1, d0
    move.w d0, 4(a6)
    lsr.l #8, d1
    move.w #0x9600, d0
    move.b d1, d0
    move.w d0, 4(a6)
    lsr.l #8, d1
    andi.b #0x7F, d1
    or.b 2(a2), d1                          | the kind
    move.w #0x9700, d0
    move.b d1, d0
    move.w d0, 4(a6)
    moveq #0, d2
    move.w (a2)+, d2                        | the bytes
    moveq #0, d3
    move.b 1(a2), d3                        | a fill wants a word of data
    | A transfer is begun by a word that comes from RAM.
    lea command, a3
    move.w (a3)+, 4(a6)
1:  cmpi.b #kFirstLine-1, (a1)
    bne 1b
2:  cmpi.b #kFirstLine, (a1)
    bne 2b
    move.w (a3), 4(a6)
    tst.w d3
    beq 3f
    move.w #0, (a6)
3:  move.w 4(a6), d0
    btst #1, d0
    bne 3b
    move.b (a1), d3
    moveq #0, d1
4:  addq.w #1, d1
    cmp.b (a1), d3
    beq 4b
    | Counted by eight cycles, the time fits a word.
    mulu #kCyclesPerTurn, d1
    subi.b #kFirstLine-1, d3
    moveq #0, d0
    move.b d3, d0
    mulu #kCyclesPerLine, d0
    sub.l d1, d0
    lsr.l #3, d0
    mulu #kCyclesPerLine*10/8, d2
    divu d0, d2
    moveq #0, d0
    move.w d2, d0
    vdpRegister 15, 2
    movem.l (sp)+, d2-d3/a2-a3
    rts

    .section .rodata
    .balign 4
| The step, the command, the units, the source, the bytes, the kind (0 from the 68000's side, 0x80 fill, 0xC0
| copy) and whether it wants data.
    .macro transfer step, command, units, source, bytes, kind, data
    .word 0x8F00+\step
    .long \command
    .word \units
    .long \source
    .word \bytes
    .byte \kind, \data
    .endm
pictured:
    transfer 2, 0x40000081, 900, colours, 1800, 0, 0
    transfer 2, 0xC0000080, 1792, colours, 3584, 0, 0
    transfer 2, 0x40000090, 1792, zeros, 3584, 0, 0
    transfer 1, 0x40000081, 1800, 0, 1800, 0x80, 1
    transfer 1, 0x000000C1, 900, 0x6000, 900, 0xC0, 0
blanked:
    transfer 2, 0x40000081, 4096, colours, 8192, 0, 0
    transfer 2, 0xC0000080, 4096, colours, 8192, 0, 0
    transfer 2, 0x40000090, 4096, zeros, 8192, 0, 0
    transfer 1, 0x40000081, 8192, 0, 8192, 0x80, 1
    transfer 1, 0x000000C1, 8192, 0x6000, 8192, 0xC0, 0
names:
    .macro name string
9:  .asciz "\string"
    .space 16-(.-9b)
    .endm
    name "68000 TO VRAM"
    name "68000 TO CRAM"
    name "68000 TO VSRAM"
    name "FILL OF VRAM"
    name "COPY IN VRAM"

    .section .bss
    .balign 4
command: .space 4
next: .space 2
last: .space 2
    .balign 4
colours: .space kSourceBytes
zeros: .space kSourceBytes
