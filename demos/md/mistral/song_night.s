; Dusk and night.

    .module song_night
    .include "common/sound.inc"
    .globl nightStep, nightLead, nightBass, nightPluck, nightPad, nightDrums, nightChordLow, nightChordHigh, nightHats

    .area _CODE
    .include "night.inc"
