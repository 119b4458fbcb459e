; From reset to main, the vblank NMI, and the few things that C is too slow for.
;
; A program defines `frameHook`, called in the NMI after all transfers, and `interruptRequest`, the target of
; the IRQ vector.

    .include "common/nes.inc"

    .import _main, frameHook, interruptRequest
    .importzp sp
    .export __STARTUP__ : absolute = 1

    .segment "VECTORS"
    .addr blanking, reset, interruptRequest

    .zeropage
_ppuControl: .res 1     ; written to the registers in every vblank
_ppuMask:    .res 1
_scrollX:    .res 1
_scrollY:    .res 1
_frameCount: .res 1     ; NMIs
_pad:        .res 1     ; held buttons: A B Select Start Up Down Left Right from the top
_padPressed: .res 1     ; newly pressed
_vramUsed:   .res 1     ; bytes in vramBuffer
_oamUsed:    .res 1     ; bytes in oam
ready:       .res 1     ; 1: the frame is prepared for transfer
held:        .res 1

    .segment "OAM"
_oam: .res 256

    .bss
; Entries: address high, address low, count, then `count` bytes; bit 7 of the first byte: down a column.
_vramBuffer: .res 192

    .segment "STARTUP"
reset:
    sei
    cld
    ldx #$40
    stx FRAME_MODE
    ldx #$FF
    txs
    inx
    stx PPU_CONTROL
    stx PPU_MASK
    stx SAMPLE_MODE
    stx SOUND_ON
    bit PPU_STATUS
@first:
    bit PPU_STATUS
    bpl @first
    txa
@clear:
    sta $00,x
    sta $0100,x
    sta $0300,x
    sta $0400,x
    sta $0500,x
    sta $0600,x
    sta $0700,x
    inx
    bne @clear
    jsr hideSprites
@second:
    bit PPU_STATUS
    bpl @second
    lda #<$0800
    sta sp
    lda #>$0800
    sta sp + 1
    jsr _main
@end:
    jmp @end

    .code
hideSprites:
    ldx #0
    stx _oamUsed
    lda #$F0
@next:
    sta _oam,x
    inx
    bne @next
    rts

blanking:
    pha
    txa
    pha
    tya
    pha
    inc _frameCount
    lda ready
    beq @scroll
    lda #0
    sta OAM_ADDRESS
    lda #>_oam
    sta OAM_DMA
    jsr sendBuffer
    lda #0
    sta ready
@scroll:
    bit PPU_STATUS
    lda #0
    sta PPU_ADDRESS
    sta PPU_ADDRESS
    lda _ppuControl
    sta PPU_CONTROL
    lda _scrollX
    sta PPU_SCROLL
    lda _scrollY
    sta PPU_SCROLL
    lda _ppuMask
    sta PPU_MASK
    jsr frameHook
    pla
    tay
    pla
    tax
    pla
    rti

sendBuffer:
    ldx #0
@entry:
    cpx _vramUsed
    bcs @done
    lda _ppuControl
    and #$FB
    ldy _vramBuffer,x
    bpl @across
    ora #4
@across:
    sta PPU_CONTROL
    tya
    and #$3F
    sta PPU_ADDRESS
    lda _vramBuffer + 1,x
    sta PPU_ADDRESS
    ldy _vramBuffer + 2,x
    inx
    inx
    inx
@byte:
    lda _vramBuffer,x
    sta PPU_DATA
    inx
    dey
    bne @byte
    beq @entry
@done:
    lda #0
    sta _vramUsed
    rts

; void Frame(void): hands the prepared frame to the NMI, waits for it, and begins the
; next one with an empty list of sprites and the pad read.
    .export _Frame
_Frame:
    ldx _oamUsed
    lda #$F0
@hide:
    cpx #0
    beq @full
    sta _oam,x
    inx
    inx
    inx
    inx
    jmp @hide
@full:
    lda #1
    sta ready
@wait:
    lda ready
    bne @wait
    sta _oamUsed
    ; fall through

readPad:
    lda #1
    sta PAD_1
    sta held
    lsr a
    sta PAD_1
@button:
    lda PAD_1
    lsr a
    rol held
    bcc @button
    lda _pad
    eor #$FF
    and held
    sta _padPressed
    lda held
    sta _pad
    rts

; void ScreenOff(void): from here on the program can write to VRAM itself.
    .export _ScreenOff
_ScreenOff:
    lda _ppuMask
    and #$E1
    sta _ppuMask
    lda #0
    sta _vramUsed
    jsr hideSprites
    lda _ppuControl
    bpl @off        ; the NMI is still off
    jsr _Frame
@off:
    lda _ppuControl
    and #$7F
    sta PPU_CONTROL
    rts

; void ScreenOn(void)
    .export _ScreenOn
_ScreenOn:
    lda _ppuControl
    ora #$80
    sta _ppuControl
    bit PPU_STATUS
    sta PPU_CONTROL
    jsr _Frame
    lda _ppuMask
    ora #$1E
    sta _ppuMask
    rts
