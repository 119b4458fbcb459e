; The title.

    .module song_title
    .include "common/sound.inc"
    .globl titleStep, titleLead, titleBass, titlePluck, titlePad, titleDrums, titleChordLow, titleChordHigh, titleHats

    .area _CODE
    .include "title.inc"
