; The pond of the benchmark's program, a character a pixel.

    .module art
    .globl _artPond, _artFish

    .area _CODE
    .include "pond.inc"
    .include "fish.inc"
