; Eight dots into the four plane bytes of a tile's row.
    .module pack_row
    .globl _PackRow

    .area _CODE

; void PackRow(const u8 *colours, u8 *planes): hl, de.
_PackRow::
    push de
    call dot
    call dot
    call dot
    call dot
    call dot
    call dot
    call dot
    call dot
    pop hl
    ld (hl), b
    inc hl
    ld (hl), c
    inc hl
    ld (hl), d
    inc hl
    ld (hl), e
    ret

; The lowest four bits of a dot move into b, c, d and e from the right.
dot:
    ld a, (hl)
    inc hl
    rra
    rl b
    rra
    rl c
    rra
    rl d
    rra
    rl e
    ret
