| The letters, eight rows of eight bits each.

    .global glyphs

    .section .rodata
glyphs:
    .include "font.inc"
