; The lists of songs and effects, the voices, and the sounds of the game itself.

    .module songs
    .include "common/sound.inc"
    .globl songs, effects, voices, envelopes
    .globl titleStep, titleLead, titleBass, titlePluck, titlePad, titleDrums, titleChordLow, titleChordHigh, titleHats
    .globl dayStep, dayLead, dayBass, dayPluck, dayPad, dayDrums, dayChordLow, dayChordHigh, dayHats
    .globl nightStep, nightLead, nightBass, nightPluck, nightPad, nightDrums, nightChordLow, nightChordHigh, nightHats

    .area _CODE
; A song: ticks of a step, then FM 1 to 4, drums, PSG 1 and 2, noise.
songs:
    .dw titleSong, daySong, nightSong, overSong
titleSong:
    .db titleStep
    .dw titleLead, titleBass, titlePluck, titlePad, titleDrums, titleChordLow, titleChordHigh, titleHats
daySong:
    .db dayStep
    .dw dayLead, dayBass, dayPluck, dayPad, dayDrums, dayChordLow, dayChordHigh, dayHats
nightSong:
    .db nightStep
    .dw nightLead, nightBass, nightPluck, nightPad, nightDrums, nightChordLow, nightChordHigh, nightHats
overSong:
    .db overStep
    .dw overLead, overBass, overPluck, overPad, overDrums, silence, silence, silence

silence:
    finish
    .include "over.inc"

; Operators in the chip's order 1, 3, 2, 4: connection, multiples, levels, attacks, decays, second
; decays, sustain and release.
voices:
    ; 0 bass
    .db 0x2C
    .db 0x01, 0x02, 0x01, 0x01,  0x1C, 0x2A, 0x08, 0x12,  0x1F, 0x1F, 0x1F, 0x1F
    .db 0x0C, 0x0E, 0x08, 0x08,  0x04, 0x04, 0x03, 0x03,  0x28, 0x38, 0x38, 0x38
    ; 1 pipe
    .db 0x1C
    .db 0x72, 0x34, 0x31, 0x72,  0x2A, 0x38, 0x0C, 0x1C,  0x19, 0x19, 0x15, 0x15
    .db 0x06, 0x06, 0x03, 0x03,  0x00, 0x00, 0x00, 0x00,  0x17, 0x17, 0x19, 0x19
    ; 2 mandolin
    .db 0x24
    .db 0x33, 0x75, 0x31, 0x71,  0x1E, 0x28, 0x0C, 0x12,  0x1F, 0x1F, 0x1F, 0x1F
    .db 0x10, 0x12, 0x0C, 0x0C,  0x06, 0x06, 0x07, 0x07,  0x46, 0x46, 0x46, 0x46
    ; 3 strings
    .db 0x14
    .db 0x31, 0x71, 0x01, 0x72,  0x26, 0x2A, 0x12, 0x1A,  0x0E, 0x0E, 0x0B, 0x0B
    .db 0x02, 0x02, 0x01, 0x01,  0x00, 0x00, 0x00, 0x00,  0x16, 0x16, 0x15, 0x15
    ; 4 bells
    .db 0x04
    .db 0x77, 0x3B, 0x32, 0x71,  0x26, 0x30, 0x0E, 0x12,  0x1F, 0x1F, 0x1F, 0x1F
    .db 0x0B, 0x0D, 0x0A, 0x09,  0x05, 0x05, 0x05, 0x05,  0x35, 0x35, 0x35, 0x35
    ; 5 a bright tone for effects
    .db 0x34
    .db 0x02, 0x03, 0x01, 0x02,  0x18, 0x20, 0x0E, 0x14,  0x1F, 0x1F, 0x1F, 0x1F
    .db 0x0A, 0x0A, 0x0C, 0x0C,  0x02, 0x02, 0x08, 0x08,  0x27, 0x27, 0x39, 0x39
    ; 6 a rumble
    .db 0x2C
    .db 0x03, 0x05, 0x00, 0x01,  0x12, 0x18, 0x10, 0x16,  0x1F, 0x1F, 0x1F, 0x1F
    .db 0x0A, 0x0C, 0x0E, 0x0F,  0x06, 0x06, 0x0A, 0x0A,  0x37, 0x37, 0x38, 0x38

; 0 hat, 1 a short chord, 2 a long one, 3 a breath, 4 a burst, 5 a chirp.
envelopes:
    .dw hat, stab, chord, breath, burst, chirp
hat:
    .db 3, 6, 9, 12, 15, 0xFF
stab:
    .db 2, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 0xFF
chord:
    .db 8, 6, 5, 4, 3, 3, 3, 4, 4, 5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10, 10, 11, 11, 12, 12, 13, 15, 0xFF
breath:
    .db 8, 8, 7, 7, 6, 6, 5, 5, 5, 4, 4, 4, 3, 3, 3, 4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7, 7, 7, 8, 8, 8, 8, 0xFF
burst:
    .db 0, 0, 1, 1, 2, 3, 3, 4, 5, 5, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 0xFF
chirp:
    .db 0, 1, 2, 3, 4, 6, 8, 10, 12, 15, 0xFF

; Pairs of channel and stream: 4 FM 5, 8 PSG 3, 10 noise.
effects:
    .dw effectShot, effectBurst, effectLantern, effectHurt, effectGust, effectRoll, effectStart, effectHeart
effectShot:
    .db 8
    .dw shotTone
    .db 0xFF
effectBurst:
    .db 4
    .dw burstTone
    .db 10
    .dw burstNoise
    .db 0xFF
effectLantern:
    .db 4
    .dw lanternTone
    .db 0xFF
effectHurt:
    .db 4
    .dw hurtTone
    .db 10
    .dw burstNoise
    .db 0xFF
effectGust:
    .db 4
    .dw gustTone
    .db 10
    .dw gustNoise
    .db 0xFF
effectRoll:
    .db 10
    .dw rollNoise
    .db 0xFF
effectStart:
    .db 4
    .dw startTone
    .db 8
    .dw startChirp
    .db 0xFF
effectHeart:
    .db 4
    .dw heartTone
    .db 0xFF

    .include "effects.inc"
