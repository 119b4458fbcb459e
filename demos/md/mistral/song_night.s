; Dusk and night: a slow tune in A minor. Phrases of a bar each, then the streams that call them.

    .module song_night
    .include "common/sound.inc"
    .globl nightLead, nightBass, nightPluck, nightPad, nightDrums, nightChordLow, nightChordHigh, nightHats

    .area _CODE
nightBassAm:
    length 6
    .db A2
    length 2
    .db A2
    length 4
    .db E3, A3
    back
nightPluckAm:
    length 2
    .db A4, C5, E5, A5, C6, A5, E5, C5
    back
nightPadAm:
    length 16
    .db C4
    back
nightChordLowAm:
    length 4
    .db E4, E4, E4, E4
    back
nightChordHighAm:
    length 4
    .db A4, A4, A4, A4
    back
nightBassF:
    length 6
    .db F2
    length 2
    .db F2
    length 4
    .db C3, F3
    back
nightPluckF:
    length 2
    .db A4, C5, F5, A5, C6, A5, F5, C5
    back
nightPadF:
    length 16
    .db C4
    back
nightChordLowF:
    length 4
    .db F4, F4, F4, F4
    back
nightChordHighF:
    length 4
    .db A4, A4, A4, A4
    back
nightBassC:
    length 6
    .db C2
    length 2
    .db C2
    length 4
    .db G2, C3
    back
nightPluckC:
    length 2
    .db C5, E5, G5, C6, E6, C6, G5, E5
    back
nightPadC:
    length 16
    .db C4
    back
nightChordLowC:
    length 4
    .db E4, E4, E4, E4
    back
nightChordHighC:
    length 4
    .db G4, G4, G4, G4
    back
nightBassG:
    length 6
    .db G2
    length 2
    .db G2
    length 4
    .db D3, G3
    back
nightPluckG:
    length 2
    .db B4, D5, G5, B5, D6, B5, G5, D5
    back
nightPadG:
    length 16
    .db D4
    back
nightChordLowG:
    length 4
    .db G4, G4, G4, G4
    back
nightChordHighG:
    length 4
    .db B4, B4, B4, B4
    back
nightBassDm:
    length 6
    .db D2
    length 2
    .db D2
    length 4
    .db A2, D3
    back
nightPluckDm:
    length 2
    .db A4, D5, F5, A5, D6, A5, F5, D5
    back
nightPadDm:
    length 16
    .db D4
    back
nightChordLowDm:
    length 4
    .db F4, F4, F4, F4
    back
nightChordHighDm:
    length 4
    .db A4, A4, A4, A4
    back
nightBassE:
    length 6
    .db E2
    length 2
    .db E2
    length 4
    .db B2, E3
    back
nightPluckE:
    length 2
    .db B4, E5, Gs5, B5, E6, B5, Gs5, E5
    back
nightPadE:
    length 16
    .db E4
    back
nightChordLowE:
    length 4
    .db Gs4, Gs4, Gs4, Gs4
    back
nightChordHighE:
    length 4
    .db B4, B4, B4, B4
    back
nightLead:
    voice 1
    level 0
nightLeadLoop:
    length 6
    .db E5
    length 2
    .db D5
    length 8
    .db C5
    length 6
    .db A4
    length 2
    .db C5
    length 8
    .db F5
    length 6
    .db E5
    length 2
    .db G5
    length 8
    .db C6
    length 6
    .db B5
    length 2
    .db A5
    length 8
    .db G5
    length 4
    .db A5, E5, C6
    length 2
    .db B5, A5
    length 6
    .db A5
    length 2
    .db G5
    length 8
    .db F5
    length 4
    .db D5, F5, A5
    length 2
    .db G5, F5
    length 12
    .db E5
    length 2
    .db 0x60, Gs5
    again nightLeadLoop
nightBass:
    voice 0
    level 2
nightBassLoop:
    phrase nightBassAm
    phrase nightBassF
    phrase nightBassC
    phrase nightBassG
    phrase nightBassAm
    phrase nightBassF
    phrase nightBassDm
    phrase nightBassE
    again nightBassLoop
nightPluck:
    voice 4
    level 12
    pan 0x80
nightPluckLoop:
    phrase nightPluckAm
    phrase nightPluckF
    phrase nightPluckC
    phrase nightPluckG
    phrase nightPluckAm
    phrase nightPluckF
    phrase nightPluckDm
    phrase nightPluckE
    again nightPluckLoop
nightPad:
    voice 3
    level 6
    pan 0x40
nightPadLoop:
    phrase nightPadAm
    phrase nightPadF
    phrase nightPadC
    phrase nightPadG
    phrase nightPadAm
    phrase nightPadF
    phrase nightPadDm
    phrase nightPadE
    again nightPadLoop
nightChordLow:
    voice 2
    level 3
nightChordLowLoop:
    phrase nightChordLowAm
    phrase nightChordLowF
    phrase nightChordLowC
    phrase nightChordLowG
    phrase nightChordLowAm
    phrase nightChordLowF
    phrase nightChordLowDm
    phrase nightChordLowE
    again nightChordLowLoop
nightChordHigh:
    voice 2
    level 3
nightChordHighLoop:
    phrase nightChordHighAm
    phrase nightChordHighF
    phrase nightChordHighC
    phrase nightChordHighG
    phrase nightChordHighAm
    phrase nightChordHighF
    phrase nightChordHighDm
    phrase nightChordHighE
    again nightChordHighLoop
nightDrums:
nightDrumsLoop:
    length 8
    .db 0
    length 6
    .db 1
    length 2
    .db 0
    again nightDrumsLoop
nightHats:
    voice 0
    level 6
nightHatsLoop:
    length 4
    .db 4
    length 2
    .db 4, 4
    again nightHatsLoop
