; The title: the farandole remembered, at half its pace. Phrases of a bar each, then the streams that call them.

    .module song_title
    .include "common/sound.inc"
    .globl titleLead, titleBass, titlePluck, titlePad, titleDrums, titleChordLow, titleChordHigh, titleHats

    .area _CODE
titleBassD:
    length 8
    .db D2
    length 4
    .db A2, D3
    back
titlePluckD:
    length 2
    .db A4, Fs5, D5, A5, Fs5, D6, A5, Fs5
    back
titlePadD:
    length 16
    .db D4
    back
titleChordLowD:
    length 4
    .db Fs4, Fs4, Fs4, Fs4
    back
titleChordHighD:
    length 4
    .db A4, A4, A4, A4
    back
titleBassG:
    length 8
    .db G2
    length 4
    .db D3, G3
    back
titlePluckG:
    length 2
    .db G4, D5, B4, G5, D5, B5, G5, D5
    back
titlePadG:
    length 16
    .db D4
    back
titleChordLowG:
    length 4
    .db G4, G4, G4, G4
    back
titleChordHighG:
    length 4
    .db B4, B4, B4, B4
    back
titleBassA:
    length 8
    .db A2
    length 4
    .db E3, A3
    back
titlePluckA:
    length 2
    .db A4, E5, Cs5, A5, E5, Cs6, A5, E5
    back
titlePadA:
    length 16
    .db Cs4
    back
titleChordLowA:
    length 4
    .db E4, E4, E4, E4
    back
titleChordHighA:
    length 4
    .db A4, A4, A4, A4
    back
titleBassBm:
    length 8
    .db B2
    length 4
    .db Fs3, B3
    back
titlePluckBm:
    length 2
    .db B4, Fs5, D5, B5, Fs5, D6, B5, Fs5
    back
titlePadBm:
    length 16
    .db D4
    back
titleChordLowBm:
    length 4
    .db Fs4, Fs4, Fs4, Fs4
    back
titleChordHighBm:
    length 4
    .db B4, B4, B4, B4
    back
titleBassEm:
    length 8
    .db E2
    length 4
    .db B2, E3
    back
titlePluckEm:
    length 2
    .db G4, E5, B4, G5, E5, B5, G5, E5
    back
titlePadEm:
    length 16
    .db E4
    back
titleChordLowEm:
    length 4
    .db G4, G4, G4, G4
    back
titleChordHighEm:
    length 4
    .db B4, B4, B4, B4
    back
titleLead:
    voice 1
    level 0
titleLeadLoop:
    length 8
    .db Fs5
    length 4
    .db A5, D6
    length 12
    .db B5
    length 4
    .db 0x60
    length 8
    .db A5
    length 4
    .db Fs5, D5
    length 12
    .db E5
    length 4
    .db 0x60
    length 8
    .db D5
    length 4
    .db Fs5, B5
    length 8
    .db A5
    length 4
    .db G5, Fs5
    .db G5, Fs5, E5, D5
    length 12
    .db Cs5
    length 4
    .db 0x60
    again titleLeadLoop
titleBass:
    voice 0
    level 2
titleBassLoop:
    phrase titleBassD
    phrase titleBassG
    phrase titleBassD
    phrase titleBassA
    phrase titleBassBm
    phrase titleBassG
    phrase titleBassEm
    phrase titleBassA
    again titleBassLoop
titlePluck:
    voice 4
    level 12
    pan 0x80
titlePluckLoop:
    phrase titlePluckD
    phrase titlePluckG
    phrase titlePluckD
    phrase titlePluckA
    phrase titlePluckBm
    phrase titlePluckG
    phrase titlePluckEm
    phrase titlePluckA
    again titlePluckLoop
titlePad:
    voice 3
    level 6
    pan 0x40
titlePadLoop:
    phrase titlePadD
    phrase titlePadG
    phrase titlePadD
    phrase titlePadA
    phrase titlePadBm
    phrase titlePadG
    phrase titlePadEm
    phrase titlePadA
    again titlePadLoop
titleChordLow:
    voice 2
    level 3
titleChordLowLoop:
    phrase titleChordLowD
    phrase titleChordLowG
    phrase titleChordLowD
    phrase titleChordLowA
    phrase titleChordLowBm
    phrase titleChordLowG
    phrase titleChordLowEm
    phrase titleChordLowA
    again titleChordLowLoop
titleChordHigh:
    voice 2
    level 3
titleChordHighLoop:
    phrase titleChordHighD
    phrase titleChordHighG
    phrase titleChordHighD
    phrase titleChordHighA
    phrase titleChordHighBm
    phrase titleChordHighG
    phrase titleChordHighEm
    phrase titleChordHighA
    again titleChordHighLoop
titleDrums:
titleDrumsLoop:
    length 16
    .db 2
    length 8
    .db 2, 2
    again titleDrumsLoop
titleHats:
    voice 3
    level 7
titleHatsLoop:
    length 8
    .db 6, 5
    again titleHatsLoop
