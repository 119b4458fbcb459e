; The VDP, the joypad and the font for C. In a register call a byte comes in A, a word in HL, a second
; byte in L (after a byte) and a second word in DE.

    .module vdp
    .include "common/sms.inc"
    .globl font

    .area _CODE

; void VdpRegister(uint8_t number, uint8_t value)
_VdpRegister::
    ld h, a
    ld a, l
    out (VDP_CONTROL), a
    ld a, h
    or #VDP_REGISTER
    out (VDP_CONTROL), a
    ret

; void VdpAddress(uint16_t address)
_VdpAddress::
    ld a, l
    out (VDP_CONTROL), a
    ld a, h
    out (VDP_CONTROL), a
    ret

; void VdpByte(uint8_t value)
_VdpByte::
    out (VDP_DATA), a
    ret

; void VdpWord(uint16_t value). The wait keeps two writes 29 clocks apart.
_VdpWord::
    ld a, l
    out (VDP_DATA), a
    push hl
    pop hl
    ld a, h
    out (VDP_DATA), a
    ret

; void VdpCopy(const void *source, uint16_t count). 30 clocks a byte, so that it is safe at any time.
_VdpCopy::
    ld b, e
    ld a, e
    or a
    jr z, 1$
    inc d
1$: ld c, #VDP_DATA
2$: outi
    nop
    jp nz, 2$
    dec d
    jr nz, 2$
    ret

; void VdpZeros(uint16_t count)
_VdpZeros::
1$: xor a
    out (VDP_DATA), a
    dec hl
    ld a, h
    or l
    jr nz, 1$
    ret

; void ArtTile(const char *text, uint16_t stride)
; Each character's four bits go into the four planes C, B, E, D by rotation.
_ArtTile::
    ld a, e
    sub #8
    ld e, a
    jr nc, 1$
    dec d
1$: ld (artSkip), de
    ld a, #8
    ld (artRows), a
2$: ld a, #8
    ld (artColumns), a
3$: ld a, (hl)
    inc hl
    sub #0x2E                   ; '.'
    jr z, 5$
    sub #2                      ; '0'
    cp #10
    jr c, 5$
    sub #7                      ; 'A'
5$: rra
    rl c
    rra
    rl b
    rra
    rl e
    rra
    rl d
    push hl
    ld hl, #artColumns
    dec (hl)
    pop hl
    jr nz, 3$
    ld a, c
    out (VDP_DATA), a
    push hl
    pop hl
    ld a, b
    out (VDP_DATA), a
    push hl
    pop hl
    ld a, e
    out (VDP_DATA), a
    push hl
    pop hl
    ld a, d
    out (VDP_DATA), a
    ld de, (artSkip)
    add hl, de
    push hl
    ld hl, #artRows
    dec (hl)
    pop hl
    jr nz, 2$
    ret

; void FontTiles(uint8_t count, uint8_t colours)
; A plane's byte is the glyph's row where only ink has the plane's bit, its complement where only
; paper has it.
_FontTiles::
    ld d, l                     ; paper in the high nibble, ink in the low one
    ld hl, #font
    ld b, a
1$: ld c, #8
2$: push bc
    ld b, #4
    ld e, d
3$: xor a
    bit 0, e                    ; ink
    jr z, 4$
    ld a, (hl)
4$: bit 4, e                    ; paper
    jr z, 5$
    ld c, a
    ld a, (hl)
    cpl
    or c
5$: out (VDP_DATA), a
    rrc e
    djnz 3$
    inc hl
    pop bc
    dec c
    jr nz, 2$
    djnz 1$
    ret

; uint8_t VdpStatus(void). Reading it clears its flags and the interrupts.
_VdpStatus::
    in a, (VDP_CONTROL)
    ret

; uint8_t PadRead(void)
_PadRead::
    in a, (PAD_A)
    cpl
    and #0x3F
    ret

    .area _DATA
artSkip:
    .ds 2
artRows:
    .ds 1
artColumns:
    .ds 1
