; The letters, eight rows of eight bits each.

    .module font
    .globl font

    .area _CODE
font:
_font::
    .include "font.inc"
