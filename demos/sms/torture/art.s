; Shapes, a character a pixel: 16 x 16 each, drawn column by column so that they serve as sprites of every size.

    .module art
    .globl _artFlag, _artBall

    .area _CODE
    .include "shapes.inc"
