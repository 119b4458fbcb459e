#include "tune.h"

#define VOICES 3
#define SILENT 15

__sfr __at 0x7F psgPort;

// Clock 3,579,545 / 32 / frequency for C3 to B3; an octave up halves it.
static const u16 periods[12] = {855, 807, 762, 719, 679, 641, 605, 571, 539, 508, 480, 453};
// Semitones above C of the letters A to G.
static const u8 semitones[7] = {9, 11, 0, 2, 4, 5, 7};

static const TUNE* current;
static const char* position[VOICES];
static const char* drumPosition;
static u8 attenuation[VOICES];
static u8 decayCount[VOICES];
static u8 drumAttenuation;
static u8 stepCount;

static void SetAttenuation(u8 channel, u8 value) {
    psgPort = (u8)(0x90 | (channel << 5) | value);
}

static void SetPeriod(u8 channel, u16 period) {
    psgPort = (u8)(0x80 | (channel << 5) | (period & 15));
    psgPort = (u8)(period >> 4);
}

static u16 PeriodOf(char letter, char octave) {
    u8 semitone = 0;
    if (letter >= 'a') {
        letter -= 'a' - 'A';
        semitone = 1;
    }
    semitone += semitones[letter - 'A'];
    const u16 period = periods[semitone];
    if (octave == '2')
        return period << 1;
    return period >> (octave - '3');
}

void TuneStart(const TUNE* tune) {
    current = tune;
    stepCount = 0;
    drumAttenuation = SILENT;
    for (u8 voice = 0; voice < VOICES; ++voice) {
        attenuation[voice] = SILENT;
        position[voice] = tune ? tune->voices[voice] : 0;
        SetAttenuation(voice, SILENT);
    }
    drumPosition = tune ? tune->drums : 0;
    SetAttenuation(VOICES, SILENT);
}

static void NextNote(u8 voice) {
    const char* next = position[voice];
    if (*next == '\0')
        next = current->voices[voice];
    position[voice] = next + 2;
    if (*next == '-')
        return;
    if (*next == '.') {
        attenuation[voice] = SILENT;
        return;
    }
    SetPeriod(voice, PeriodOf(next[0], next[1]));
    attenuation[voice] = current->attenuation[voice];
    decayCount[voice] = 0;
}

static void NextDrum(void) {
    if (*drumPosition == '\0')
        drumPosition = current->drums;
    switch (*drumPosition++) {
    case 'k':
        psgPort = 0xE2; // periodic, slow: a thump
        drumAttenuation = 3;
        break;
    case 's':
        psgPort = 0xE5;
        drumAttenuation = 6;
        break;
    case 'h':
        psgPort = 0xE4;
        drumAttenuation = 10;
        break;
    default: break;
    }
}

static void Decay(u8 voice) {
    if (attenuation[voice] < SILENT && ++decayCount[voice] >= current->decay[voice]) {
        decayCount[voice] = 0;
        ++attenuation[voice];
    }
    SetAttenuation(voice, attenuation[voice]);
}

void TuneStep(void) {
    if (!current)
        return;
    const u8 stepBegins = stepCount == 0;
    if (++stepCount >= current->stepFrames)
        stepCount = 0;
    for (u8 voice = 0; voice < VOICES; ++voice) {
        if (!position[voice])
            continue;
        if (stepBegins)
            NextNote(voice);
        Decay(voice);
    }
    if (drumPosition) {
        if (stepBegins)
            NextDrum();
        SetAttenuation(VOICES, drumAttenuation);
        if (drumAttenuation < SILENT)
            ++drumAttenuation;
    }
}
