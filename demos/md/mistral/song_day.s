; By day.

    .module song_day
    .include "common/sound.inc"
    .globl dayStep, dayLead, dayBass, dayPluck, dayPad, dayDrums, dayChordLow, dayChordHigh, dayHats

    .area _CODE
    .include "day.inc"
