; The drums for the DAC, 8.9 kHz, unsigned with 0x80 in the middle; a zero ends one.

    .module drums
    .globl drums

    .area _CODE
drums:
    .dw kick, snare, tom
    .include "kick.inc"
    .include "snare.inc"
    .include "tom.inc"
