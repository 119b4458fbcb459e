; A bass drum for the sample channel, made by a formula: a triangle wave that decays and falls from 206 Hz to
; about 60 Hz, at rate 12. Each bit follows it by one step: up if the wave is above the level, otherwise down.

    .export _kickAddress, _kickLength

KICK_BYTES = 16 * 16 + 1

    .segment "SAMPLE"
kick:
    phase .set 0
    speed .set 800
    level .set 0
    .repeat KICK_BYTES, INDEX
        bits .set 0
        size .set (KICK_BYTES - INDEX) * 56 / KICK_BYTES
        .repeat 8, BIT
            phase .set (phase + speed) & $FFFF
            .if phase < $4000
                wave .set phase * size / $4000
            .elseif phase < $C000
                wave .set ($8000 - phase) * size / $4000
            .else
                wave .set (phase - $10000) * size / $4000
            .endif
            .if wave > level
                bits .set bits | (1 << BIT)
                level .set level + 2
            .else
                level .set level - 2
            .endif
        .endrepeat
        speed .set speed - speed / 200
        .byte bits
    .endrepeat

    .rodata
_kickAddress: .byte <((kick - $C000) / 64)
_kickLength:  .byte (KICK_BYTES - 1) / 16
