| The pages and the way from one to the next.
    .include "testcard/testcard.inc"

    .equ kPages, 11
    .equ kFrames, 240                       | until the next page comes while no button was pressed

    .text
    .globl Main
Main:
    jsr Open
1:  jsr WaitFrame
    jsr ReadPads
    move.w padPressed, d0
    beq 2f
    move.b #1, touched
2:  jsr Turn
    tst.w d0
    beq 3f
    jsr Open
    bra 1b
3:  addq.w #1, pageFrame
    movea.l pageFrameCall, a0
    jsr (a0)
    bra 1b

| d0 is 1 when another page is to be opened.
Turn:
    move.w padPressed, d0
    btst #1, pageFlags                      | kTurnWithStart
    beq 1f
    move.w padHeld, d1
    btst #kStart, d1
    beq 5f
1:  btst #kRight, d0
    bne 3f
    btst #kC, d0
    bne 3f
    btst #kLeft, d0
    bne 4f
    btst #kA, d0
    beq 5f
    btst #0, pageFlags                      | kOwnA
    beq 4f
5:  moveq #0, d0
    tst.b touched
    bne 2f
    move.w frameCount, d1
    sub.w pageStart, d1
    cmpi.w #kFrames, d1
    blo 2f
3:  addq.w #1, page
    cmpi.w #kPages, page
    blo 6f
    clr.w page
    bra 6f
4:  subq.w #1, page
    bcc 6f
    move.w #kPages-1, page
6:  moveq #1, d0
2:  rts

| Shows the page of that number.
Open:
    move.w #0x2700, sr
    jsr SoundOff
    jsr ResetPicture
    lea pages, a0
    move.w page, d0
    lsl.w #4, d0
    adda.w d0, a0
    move.l (a0)+, -(sp)
    move.l (a0)+, pageFrameCall
    move.l (a0)+, pageTitle
    move.b 1(a0), pageFlags
    clr.w pageFrame
    block kWindow, 0, 0, 40, 2, kHigh+kOpaque
    move.w #kWindow+2, d0
    move.w #kHigh+kYellow+kOpaque-32, d1
    jsr PutTitle
    movea.l (sp)+, a0
    jsr (a0)
    jsr WaitBottom
    vdpRegister 1, 0x74
    move.w frameCount, pageStart
    move.w #0x2300, sr
    rts

| The page's number and title to the cells at address d0, cells being made with d1.
    .globl PutTitle
PutTitle:
    movem.l d2-d3, -(sp)
    move.w d0, d2
    move.w d1, d3
    moveq #0, d0
    move.w page, d0
    addq.w #1, d0
    moveq #2, d1
    jsr MakeDecimal
    move.w d2, d0
    move.w d3, d1
    jsr PutText
    movea.l pageTitle, a0
    addq.w #6, d2
    move.w d2, d0
    move.w d3, d1
    jsr PutText
    movem.l (sp)+, d2-d3
    rts

    .section .rodata
    .balign 4
| What prepares the page, what runs each frame, the title and the flags.
pages:
    .long ColoursOpen, ColoursFrame, titleColours, 0
    .long ShadowOpen, ShadowFrame, titleShadow, 0
    .long WindowOpen, WindowFrame, titleWindow, 0
    .long ScrollOpen, ScrollFrame, titleScroll, 0
    .long SpritesOpen, SpritesFrame, titleSprites, 0
    .long InterlaceOpen, InterlaceFrame, titleInterlace, 0
    .long EdgesOpen, EdgesFrame, titleEdges, 0
    .long TransfersOpen, TransfersFrame, titleTransfers, 0
    .long PadsOpen, PadsFrame, titlePads, kTurnWithStart<<16
    .long SoundOpen, SoundFrame, titleSound, kOwnA<<16
    .long VersionsOpen, VersionsFrame, titleVersions, 0
titleColours: .asciz "512 COLOURS"
titleShadow: .asciz "SHADOW AND HIGHLIGHT"
titleWindow: .asciz "WINDOW"
titleScroll: .asciz "SCROLL"
titleSprites: .asciz "SPRITES"
titleInterlace: .asciz "INTERLACE"
titleEdges: .asciz "EDGES AND WIDTHS"
titleTransfers: .asciz "TRANSFERS"
titlePads: .asciz "PADS"
titleSound: .asciz "SOUND"
titleVersions: .asciz "VERSIONS"

    .section .bss
    .globl page, pageFrame, pageTitle, touched
page: .space 2
pageFrame: .space 2
pageStart: .space 2
pageFrameCall: .space 4
pageTitle: .space 4
pageFlags: .space 1
touched: .space 1
