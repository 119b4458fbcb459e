; The Z80's program: eleven streams of notes for FM, PSG and drums. Linked first. The songs bring `songs`,
; `effects`, `voices`, `envelopes` and `drums`; their format is told in sound.inc.
;
; Timer B of the FM chip is the clock of the music: 16.8 ms a tick on every console. Timer A is the
; clock of the drums, 8.9 kHz: every write to the chip first looks whether it has run off. Nothing here
; reads the cartridge, so the other processor may fetch pictures from there at any time.

    .module driver
    .include "common/sound.inc"
    .globl songs, effects, voices, envelopes, drums

    .area _CODE
start:
    di
    ld sp, #0x1FF0
    ld hl, #working
    ld de, #working + 1
    ld bc, #workingEnd - working - 1
    ld (hl), #0
    ldir
    ld hl, #setup               ; both chips to silence, timers on
1$:
    ld b, (hl)
    inc hl
    ld c, (hl)
    inc hl
    ld a, b
    or a
    jr z, 2$
    call FmWrite0
    jr 1$
2$:
    ld c, #0xC0                 ; all channels on both sides
    ld b, #0xB4
3$:
    call FmWrite0
    call FmWrite1
    inc b
    ld a, b
    cp #0xB7
    jr nz, 3$
    call Quiet

loop:
    call Pump
    ld a, (MAIL_SONG)
    or a
    call nz, SongStart
    ld a, (MAIL_EFFECT)
    or a
    call nz, EffectStart
    ld a, (FM_ADDRESS0)
    and #2
    jr z, loop
    ld bc, #0x272F              ; forgets timer B's mark
    call FmWrite0
    call Tick
    jr loop

setup:
    .db 0x22, 0x00
    .db 0x24, 0xFE, 0x25, 0x02  ; timer A: 1024 - 1018 samples
    .db 0x26, 200               ; timer B: 56 times 16 samples
    .db 0x27, 0x3F
    .db 0x2B, 0x80              ; the drums take channel 6
    .db 0x2A, 0x80
    .db 0

; The next value of a drum when it is due. Keeps all but A and the flags.
Pump:
    ld a, (FM_ADDRESS0)
    rrca
    ret nc
    push hl
    call Ready
    ld a, #0x27
    ld (FM_ADDRESS0), a
    ld a, #0x1F                 ; forgets timer A's mark
    ld (FM_DATA0), a
    ld hl, (drumAt)
    ld a, h
    or a
    jr z, 2$
    call Ready
    ld a, #0x2A
    ld (FM_ADDRESS0), a
    ld a, (hl)
    inc hl
    or a
    jr nz, 1$
    ld h, a                     ; a zero ends the drum: rests at the middle
    ld l, a
    ld a, #0x80
1$:
    ld (FM_DATA0), a
    ld (drumAt), hl
2$:
    pop hl
    ret

Ready:
    ld a, (FM_ADDRESS0)
    rlca
    jr c, Ready
    ret

; B = register, C = value. Keep all but A.
FmWrite0:
    call Pump
    call Ready
    ld a, b
    ld (FM_ADDRESS0), a
    ld a, c
    ld (FM_DATA0), a
    ret
FmWrite1:
    call Pump
    call Ready
    ld a, b
    ld (FM_ADDRESS1), a
    ld a, c
    ld (FM_DATA1), a
    ret

; The same for the register of IX's channel: B is that of the first channel.
FmWrite:
    push bc
    ld a, CHANNEL_CHIP(ix)
    and #3
    add a, b
    ld b, a
    bit 2, CHANNEL_CHIP(ix)
    jr nz, 1$
    call FmWrite0
    pop bc
    ret
1$:
    call FmWrite1
    pop bc
    ret

; All notes end.
Quiet:
    ld bc, #0x2800
1$:
    call FmWrite0
    inc c
    ld a, c
    cp #3
    jr z, 1$
    cp #7
    jr nz, 1$
    ld a, #0x9F
2$:
    ld (PSG), a
    add a, #0x20
    jr nc, 2$
    ret

; The channels whose chip part is FM, drums, PSG tone and noise; then the number in the chip.
parts:
    .db PART_FM, 0, PART_FM, 1, PART_FM, 2, PART_FM, 4, PART_FM, 5
    .db PART_DRUM, 0
    .db PART_TONE, 0x80, PART_TONE, 0xA0, PART_TONE, 0xC0
    .db PART_NOISE, 0xE0, PART_NOISE, 0xE0

; IX = channel A, HL = its stream, C = 1 when every tick is a step.
ChannelStart:
    push bc
    push hl
    call ChannelFind
    pop hl
    pop bc
    ld CHANNEL_AT(ix), l
    ld CHANNEL_AT+1(ix), h
    ld CHANNEL_WAIT(ix), #1
    ld CHANNEL_LENGTH(ix), #1
    ld CHANNEL_NOTE(ix), #0xFF
    ld CHANNEL_LEVEL(ix), #0
    ld CHANNEL_MOVE(ix), #0
    ld CHANNEL_SHIFT(ix), #0
    ld CHANNEL_FINE(ix), #0
    ld CHANNEL_PAN(ix), #0xC0
    ld CHANNEL_STEADY(ix), c
    ld CHANNEL_ON(ix), #1
    ret

; IX = channel A; its part and number in the chip are filled in. Changes DE, HL.
ChannelFind:
    ld ix, #channels
    ld de, #CHANNEL_SIZE
    ld l, a
    or a
    jr z, 2$
    ld b, a
1$:
    add ix, de
    djnz 1$
2$:
    ld h, #0
    add hl, hl
    ld de, #parts
    add hl, de
    ld a, (hl)
    ld CHANNEL_PART(ix), a
    inc hl
    ld a, (hl)
    ld CHANNEL_CHIP(ix), a
    ret

; The streams of the song in the mail: FM 1 to 4, drums, PSG 1 and 2, noise.
songChannels:
    .db 0, 1, 2, 3, 5, 6, 7, 9
SongStart:
    dec a
    push af
    xor a
    ld (MAIL_SONG), a
    call Quiet
    pop af
    ld l, a
    ld h, #0
    add hl, hl
    ld de, #songs
    add hl, de
    ld a, (hl)
    inc hl
    ld h, (hl)
    ld l, a
    ld a, (hl)
    ld (speed), a
    ld a, #1
    ld (songTick), a
    inc hl
    ld de, #songChannels
    ld b, #8
1$:
    push bc
    push de
    ld a, (de)
    ld e, (hl)
    inc hl
    ld d, (hl)
    inc hl
    push hl
    ex de, hl
    ld c, #0
    call ChannelStart
    pop hl
    pop de
    inc de
    pop bc
    djnz 1$
    ret

; The effect in the mail: pairs of channel and stream up to 0xFF.
EffectStart:
    dec a
    ld l, a
    xor a
    ld (MAIL_EFFECT), a
    ld h, a
    add hl, hl
    ld de, #effects
    add hl, de
    ld a, (hl)
    inc hl
    ld h, (hl)
    ld l, a
1$:
    ld a, (hl)
    inc a
    ret z
    dec a
    inc hl
    ld e, (hl)
    inc hl
    ld d, (hl)
    inc hl
    push hl
    ex de, hl
    ld c, #1
    call ChannelStart
    pop hl
    jr 1$

; One tick of all channels.
Tick:
    ld hl, #songTick
    dec (hl)
    ld a, #0
    jr nz, 1$
    ld a, (speed)
    ld (hl), a
    ld a, #1
1$:
    ld (isStep), a
    ld ix, #channels
    ld b, #CHANNELS
2$:
    push bc
    ld a, CHANNEL_ON(ix)
    or a
    call nz, ChannelTick
    call Pump
    ld de, #CHANNEL_SIZE
    add ix, de
    pop bc
    djnz 2$
    ret

ChannelTick:
    ld a, (isStep)
    or CHANNEL_STEADY(ix)
    jr z, 1$
    dec CHANNEL_WAIT(ix)
    jp z, Events
1$:
    ; An FM key goes up a tick before the next event, so that the note is struck anew.
    ld a, CHANNEL_PART(ix)
    cp #PART_TONE
    jr nc, 2$
    or a
    ret nz
    ld a, CHANNEL_WAIT(ix)
    dec a
    jr nz, 2$
    ld a, (songTick)
    dec a
    or CHANNEL_STEADY(ix)
    call z, KeyOff
2$:
    ld a, CHANNEL_MOVE(ix)
    or a
    call nz, Slide
    ld a, CHANNEL_PART(ix)
    cp #PART_TONE
    jp nc, EnvelopeStep
    ret

; Reads a channel's stream up to the next note or rest.
Events:
    ld l, CHANNEL_AT(ix)
    ld h, CHANNEL_AT+1(ix)
next:
    ld a, (hl)
    inc hl
    cp #0x60
    jp c, Note
    jp z, Rest
    cp #0xC0
    jr nc, command
    and #0x3F
    inc a
    ld CHANNEL_LENGTH(ix), a
    jr next
command:
    and #0x0F
    push hl
    ld e, a
    ld d, #0
    ld hl, #commands
    add hl, de
    add hl, de
    ld e, (hl)
    inc hl
    ld d, (hl)
    pop hl
    push de
    ld a, (hl)                  ; the first byte of the operand
    ret
commands:
    .dw OnVoice, OnLevel, OnPan, OnCall, OnReturn, OnJump, OnEnd, OnShift, OnMove, OnFine, OnTimes, OnAgain
OnVoice:
    inc hl
    ld CHANNEL_VOICE(ix), a
    push hl
    ld a, CHANNEL_PART(ix)
    or a
    call z, VoiceLoad
    pop hl
    jr next
OnLevel:
    inc hl
    ld CHANNEL_LEVEL(ix), a
    push hl
    ld a, CHANNEL_PART(ix)
    or a
    call z, VoiceLoad
    pop hl
    jr next
OnPan:
    inc hl
    ld CHANNEL_PAN(ix), a
    ld c, a
    ld b, #0xB4
    call FmWrite
    jr next
OnCall:
    ld e, (hl)
    inc hl
    ld d, (hl)
    inc hl
    ld CHANNEL_BACK(ix), l
    ld CHANNEL_BACK+1(ix), h
    ex de, hl
    jr next
OnReturn:
    ld l, CHANNEL_BACK(ix)
    ld h, CHANNEL_BACK+1(ix)
    jp next
OnJump:
    ld e, (hl)
    inc hl
    ld d, (hl)
    ex de, hl
    jp next
OnEnd:
    ld CHANNEL_ON(ix), #0
    ld a, CHANNEL_PART(ix)
    or a
    jp z, KeyOff
    cp #PART_TONE
    ret c
    ld a, CHANNEL_CHIP(ix)
    or #0x1F
    ld (PSG), a
    ret
OnShift:
    inc hl
    ld CHANNEL_SHIFT(ix), a
    jp next
OnMove:
    inc hl
    ld CHANNEL_MOVE(ix), a
    jp next
OnFine:
    inc hl
    ld CHANNEL_FINE(ix), a
    jp next
OnTimes:
    inc hl
    ld CHANNEL_TIMES(ix), a
    jp next
OnAgain:
    ld e, (hl)
    inc hl
    ld d, (hl)
    inc hl
    dec CHANNEL_TIMES(ix)
    jp z, next
    ex de, hl
    jp next

Rest:
    call Wait
    ld CHANNEL_NOTE(ix), #0xFF
    ld a, CHANNEL_PART(ix)
    or a
    jp z, KeyOff
    cp #PART_TONE
    ret c
    jp PsgOff

; Saves the position in the stream.
Wait:
    ld CHANNEL_AT(ix), l
    ld CHANNEL_AT+1(ix), h
    ld a, CHANNEL_LENGTH(ix)
    ld CHANNEL_WAIT(ix), a
    ret

Note:
    ld c, a
    call Wait
    ld a, c
    ld e, CHANNEL_PART(ix)
    bit 0, e                    ; drums have no pitch
    jr nz, Drum
    bit 2, e
    jr nz, Noise
    add a, CHANNEL_SHIFT(ix)
    ld CHANNEL_NOTE(ix), a
    ld c, #0xFF                 ; C = octave, A = tone in it
1$:
    inc c
    sub #12
    jr nc, 1$
    add a, #12
    add a, a
    ld l, a
    ld h, #0
    bit 1, e
    jr nz, Tone
    ld de, #numbers
    add hl, de
    ld a, (hl)
    add a, CHANNEL_FINE(ix)
    ld CHANNEL_PITCH(ix), a
    inc hl
    ld a, c
    add a, a
    add a, a
    add a, a
    add a, (hl)
    ld CHANNEL_PITCH+1(ix), a
    call KeyOff
    call FmPitch
    ld a, CHANNEL_CHIP(ix)
    or #0xF0
    jr Key
KeyOff:
    ld a, CHANNEL_CHIP(ix)
Key:
    ld c, a
    ld b, #0x28
    jp FmWrite0

Drum:
    add a, a
    ld l, a
    ld h, #0
    ld de, #drums
    add hl, de
    ld e, (hl)
    inc hl
    ld d, (hl)
    ld (drumAt), de
    ret

; The note is the low three bits of the noise's register.
Noise:
    or #0xE0
    ld c, a
    call NoiseIsTaken
    jr nz, 1$
    ld a, c
    ld (PSG), a
1$:
    ld CHANNEL_ENVELOPE(ix), #0
    ld CHANNEL_NOTE(ix), #0
    jp EnvelopeStep

; Not zero when IX is the song's noise and an effect has the chip's.
NoiseIsTaken:
    ld a, CHANNEL_PART(ix)
    cp #PART_NOISE
    jr nz, 1$
    push ix
    pop de
    ld a, e
    cp #<(channels + CHANNEL_SIZE * 9)
    jr nz, 1$
    ld a, (channels + CHANNEL_SIZE * 10 + CHANNEL_ON)
    or a
    ret
1$:
    xor a
    ret

Tone:
    ld de, #periods
    add hl, de
    ld e, (hl)
    inc hl
    ld d, (hl)
    ld a, c                     ; the table is that of octave 2
    sub #2
    jr z, 2$
    ld b, a
1$:
    srl d
    rr e
    djnz 1$
2$:
    ld CHANNEL_PITCH(ix), e
    ld CHANNEL_PITCH+1(ix), d
    ld CHANNEL_ENVELOPE(ix), #0
    call PsgPitch
    jr EnvelopeStep

; The pitch goes up or down a little each tick.
Slide:
    ld e, a
    rla
    sbc a, a
    ld d, a
    ld l, CHANNEL_PITCH(ix)
    ld h, CHANNEL_PITCH+1(ix)
    add hl, de
    ld CHANNEL_PITCH(ix), l
    ld CHANNEL_PITCH+1(ix), h
    ld a, CHANNEL_PART(ix)
    or a
    jr z, FmPitch
    cp #PART_TONE
    ret nz
PsgPitch:
    ld e, CHANNEL_PITCH(ix)
    ld d, CHANNEL_PITCH+1(ix)
    ld a, e
    and #0x0F
    or CHANNEL_CHIP(ix)
    ld (PSG), a
    ld b, #4
1$:
    srl d
    rr e
    djnz 1$
    ld a, e
    and #0x3F
    ld (PSG), a
    ret

FmPitch:
    ld b, #0xA4
    ld c, CHANNEL_PITCH+1(ix)
    call FmWrite
    ld b, #0xA0
    ld c, CHANNEL_PITCH(ix)
    jp FmWrite

; The next step of a PSG voice's loudness: 0 to 15 from loud to silent, 0xFF stays.
EnvelopeStep:
    ld a, CHANNEL_NOTE(ix)
    inc a
    ret z
    call NoiseIsTaken
    ret nz
    ld l, CHANNEL_VOICE(ix)
    ld h, #0
    add hl, hl
    ld de, #envelopes
    add hl, de
    ld e, (hl)
    inc hl
    ld d, (hl)
    ld l, CHANNEL_ENVELOPE(ix)
    ld h, #0
    add hl, de
    ld a, (hl)
    inc a
    ret z
    dec a
    inc CHANNEL_ENVELOPE(ix)
    add a, CHANNEL_LEVEL(ix)
    cp #15
    jr c, PsgLevel
PsgOff:
    ld a, #15
PsgLevel:
    or CHANNEL_CHIP(ix)
    or #0x10
    ld (PSG), a
    ret

; The 25 registers of an FM voice; the level is added to those operators that are heard.
VoiceLoad:
    call KeyOff
    ld a, CHANNEL_VOICE(ix)
    ld hl, #voices
    ld de, #25
    or a
    jr z, 2$
    ld b, a
1$:
    add hl, de
    djnz 1$
2$:
    ld a, (hl)
    inc hl
    ld b, #0xB0
    ld c, a
    call FmWrite
    ld a, c
    and #7
    ld e, a
    ld d, #0
    push hl
    ld hl, #heard
    add hl, de
    ld e, (hl)                  ; bit 0 = operator of 0x40, bit 3 = that of 0x4C
    pop hl
    ld b, #0x30
3$:
    ld c, (hl)
    inc hl
    ld a, b
    and #0xF0
    cp #0x40
    jr nz, 4$
    rr e
    jr nc, 4$
    ld a, c
    add a, CHANNEL_LEVEL(ix)
    jp p, 5$
    ld a, #0x7F
5$:
    ld c, a
4$:
    call FmWrite
    ld a, b
    add a, #4
    ld b, a
    cp #0x90
    jr c, 3$
    ld b, #0xB4
    ld c, CHANNEL_PAN(ix)
    jp FmWrite

heard:
    .db 0x08, 0x08, 0x08, 0x08, 0x0C, 0x0E, 0x0E, 0x0F
numbers:
    .dw 644, 682, 723, 766, 811, 859, 910, 964, 1021, 1082, 1146, 1214
periods:
    .dw 1710, 1614, 1524, 1438, 1357, 1281, 1209, 1141, 1077, 1017, 960, 906

    .area _DATA
working:
drumAt:
    .ds 2
speed:
    .ds 1
songTick:
    .ds 1
isStep:
    .ds 1
channels:
    .ds CHANNEL_SIZE * CHANNELS
workingEnd:
