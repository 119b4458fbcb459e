; By day: a farandole in D. Phrases of a bar each, then the streams that call them.

    .module song_day
    .include "common/sound.inc"
    .globl dayLead, dayBass, dayPluck, dayPad, dayDrums, dayChordLow, dayChordHigh, dayHats

    .area _CODE
dayBassD:
    length 3
    .db D2
    length 1
    .db D3
    length 2
    .db A2, D3
    length 3
    .db D2
    length 1
    .db A2
    length 2
    .db D3, A2
    back
dayPluckD:
    length 2
    .db 0x60, A4, Fs5, D5, 0x60, A4, Fs5, D5
    back
dayPadD:
    length 16
    .db D4
    back
dayChordLowD:
    length 2
    .db 0x60, Fs4, 0x60, Fs4, 0x60, Fs4, 0x60, Fs4
    back
dayChordHighD:
    length 2
    .db 0x60, A4, 0x60, A4, 0x60, A4, 0x60, A4
    back
dayBassA:
    length 3
    .db A2
    length 1
    .db A3
    length 2
    .db E3, A3
    length 3
    .db A2
    length 1
    .db E3
    length 2
    .db A3, E3
    back
dayPluckA:
    length 2
    .db 0x60, A4, E5, Cs5, 0x60, A4, E5, Cs5
    back
dayPadA:
    length 16
    .db Cs4
    back
dayChordLowA:
    length 2
    .db 0x60, E4, 0x60, E4, 0x60, E4, 0x60, E4
    back
dayChordHighA:
    length 2
    .db 0x60, A4, 0x60, A4, 0x60, A4, 0x60, A4
    back
dayBassBm:
    length 3
    .db B2
    length 1
    .db B3
    length 2
    .db Fs3, B3
    length 3
    .db B2
    length 1
    .db Fs3
    length 2
    .db B3, Fs3
    back
dayPluckBm:
    length 2
    .db 0x60, B4, Fs5, D5, 0x60, B4, Fs5, D5
    back
dayPadBm:
    length 16
    .db D4
    back
dayChordLowBm:
    length 2
    .db 0x60, Fs4, 0x60, Fs4, 0x60, Fs4, 0x60, Fs4
    back
dayChordHighBm:
    length 2
    .db 0x60, B4, 0x60, B4, 0x60, B4, 0x60, B4
    back
dayBassG:
    length 3
    .db G2
    length 1
    .db G3
    length 2
    .db D3, G3
    length 3
    .db G2
    length 1
    .db D3
    length 2
    .db G3, D3
    back
dayPluckG:
    length 2
    .db 0x60, G4, D5, B4, 0x60, G4, D5, B4
    back
dayPadG:
    length 16
    .db D4
    back
dayChordLowG:
    length 2
    .db 0x60, G4, 0x60, G4, 0x60, G4, 0x60, G4
    back
dayChordHighG:
    length 2
    .db 0x60, B4, 0x60, B4, 0x60, B4, 0x60, B4
    back
dayBassEm:
    length 3
    .db E2
    length 1
    .db E3
    length 2
    .db B2, E3
    length 3
    .db E2
    length 1
    .db B2
    length 2
    .db E3, B2
    back
dayPluckEm:
    length 2
    .db 0x60, G4, E5, B4, 0x60, G4, E5, B4
    back
dayPadEm:
    length 16
    .db E4
    back
dayChordLowEm:
    length 2
    .db 0x60, G4, 0x60, G4, 0x60, G4, 0x60, G4
    back
dayChordHighEm:
    length 2
    .db 0x60, B4, 0x60, B4, 0x60, B4, 0x60, B4
    back
dayLead:
    voice 1
    level 0
dayLeadLoop:
    length 2
    .db D5, E5, Fs5, A5
    length 4
    .db Fs5
    length 2
    .db E5, D5
    .db E5, Fs5, E5, Cs5
    length 4
    .db A4, 0x60
    length 2
    .db B4, Cs5, D5, Fs5
    length 4
    .db D5
    length 2
    .db B4, D5
    length 4
    .db G5
    length 2
    .db Fs5, E5
    length 6
    .db D5
    length 2
    .db 0x60
    .db D5, E5, Fs5, A5
    length 4
    .db Fs5
    length 2
    .db A5, B5
    length 4
    .db Cs6
    length 2
    .db B5, A5
    length 4
    .db E5, A5
    length 2
    .db B5, A5, G5, Fs5, E5, Fs5, E5, Cs5
    length 12
    .db D5
    length 4
    .db 0x60
    .db B5
    length 2
    .db A5, G5
    length 4
    .db B5, D6
    .db A5
    length 2
    .db G5, Fs5
    length 8
    .db A5
    length 4
    .db G5
    length 2
    .db Fs5, E5
    length 4
    .db G5, B5
    length 2
    .db A5, B5, A5, G5
    length 8
    .db E5
    length 4
    .db Fs5
    length 2
    .db E5, D5
    length 4
    .db Fs5, B5
    .db B5
    length 2
    .db A5, G5
    length 4
    .db D5, G5
    length 2
    .db E5, Fs5, G5, A5, B5, Cs6, D6, E6
    length 8
    .db D6
    length 4
    .db A5, 0x60
    again dayLeadLoop
dayBass:
    voice 0
    level 2
dayBassLoop:
    phrase dayBassD
    phrase dayBassA
    phrase dayBassBm
    phrase dayBassG
    phrase dayBassD
    phrase dayBassA
    phrase dayBassG
    phrase dayBassD
    phrase dayBassG
    phrase dayBassD
    phrase dayBassEm
    phrase dayBassA
    phrase dayBassBm
    phrase dayBassG
    phrase dayBassEm
    phrase dayBassD
    again dayBassLoop
dayPluck:
    voice 2
    level 10
    pan 0x80
dayPluckLoop:
    phrase dayPluckD
    phrase dayPluckA
    phrase dayPluckBm
    phrase dayPluckG
    phrase dayPluckD
    phrase dayPluckA
    phrase dayPluckG
    phrase dayPluckD
    phrase dayPluckG
    phrase dayPluckD
    phrase dayPluckEm
    phrase dayPluckA
    phrase dayPluckBm
    phrase dayPluckG
    phrase dayPluckEm
    phrase dayPluckD
    again dayPluckLoop
dayPad:
    voice 3
    level 6
    pan 0x40
dayPadLoop:
    phrase dayPadD
    phrase dayPadA
    phrase dayPadBm
    phrase dayPadG
    phrase dayPadD
    phrase dayPadA
    phrase dayPadG
    phrase dayPadD
    phrase dayPadG
    phrase dayPadD
    phrase dayPadEm
    phrase dayPadA
    phrase dayPadBm
    phrase dayPadG
    phrase dayPadEm
    phrase dayPadD
    again dayPadLoop
dayChordLow:
    voice 1
    level 3
dayChordLowLoop:
    phrase dayChordLowD
    phrase dayChordLowA
    phrase dayChordLowBm
    phrase dayChordLowG
    phrase dayChordLowD
    phrase dayChordLowA
    phrase dayChordLowG
    phrase dayChordLowD
    phrase dayChordLowG
    phrase dayChordLowD
    phrase dayChordLowEm
    phrase dayChordLowA
    phrase dayChordLowBm
    phrase dayChordLowG
    phrase dayChordLowEm
    phrase dayChordLowD
    again dayChordLowLoop
dayChordHigh:
    voice 1
    level 3
dayChordHighLoop:
    phrase dayChordHighD
    phrase dayChordHighA
    phrase dayChordHighBm
    phrase dayChordHighG
    phrase dayChordHighD
    phrase dayChordHighA
    phrase dayChordHighG
    phrase dayChordHighD
    phrase dayChordHighG
    phrase dayChordHighD
    phrase dayChordHighEm
    phrase dayChordHighA
    phrase dayChordHighBm
    phrase dayChordHighG
    phrase dayChordHighEm
    phrase dayChordHighD
    again dayChordHighLoop
dayDrums:
dayDrumsLoop:
    times 3
dayDrumsBar:
    length 4
    .db 0, 1
    length 2
    .db 0, 0
    length 4
    .db 1
    until dayDrumsBar
    length 4
    .db 0, 1
    length 2
    .db 0, 1, 2
    length 1
    .db 2, 2
    again dayDrumsLoop
dayHats:
    voice 0
    level 3
dayHatsLoop:
    length 2
    .db 4
    length 1
    .db 4, 4
    again dayHatsLoop
