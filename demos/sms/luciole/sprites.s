; The list of sprites that the next frame shows. In assembly because a busy night adds forty a frame.

    .module sprites

SPRITES = 64

; Two tables, each at the start of a page, above the other variables.
_spriteY == 0xD000
_spriteXAndTile == 0xD100

    .area _CODE

; void SpriteAdd(uint8_t tile, uint16_t xy): tile in A, x in D, y in E
_SpriteAdd::
    ld c, a
    ld a, (_spriteCount)
    cp #SPRITES
    ret nc
    ld l, a
    inc a
    ld (_spriteCount), a
    ld h, #>_spriteY
    dec e                       ; a sprite begins on the line after its y
    ld (hl), e
    inc h
    sla l
    ld (hl), d
    inc l
    ld (hl), c
    ret

; void Figure(int16_t x, uint16_t yAndTile): x in HL, y in D, tile in E. A half whose x is not from 0
; to 255 is left out.
_Figure::
    ld a, h
    or a
    call z, half
    ld bc, #8
    add hl, bc
    inc e
    inc e
    ld a, h
    or a
    ret nz
half:
    push hl
    push de
    ld a, e
    ld e, d
    ld d, l
    call _SpriteAdd
    pop de
    pop hl
    ret

    .area _DATA
_spriteCount::
    .ds 1
