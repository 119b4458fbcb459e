; The drawings of the game, a character a dot: '.' is transparent, 1 to f are colours. They lie in the
; first of the switched banks, at 0x8000, where the processor reads them while its writes go to the
; video memory under the same addresses.
    .module art_bank
    .globl _wrenText, _kiteText, _crowText, _balloonText, _blastText, _shotsText, _groundText
    .globl _gullText, _cloudText

    .area _BANK0 (ABS)
    .org 0x8000
    .include "birds.inc"
    .include "ground.inc"
    .include "landscape.inc"
