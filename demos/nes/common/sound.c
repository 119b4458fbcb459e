#include "common/sound.h"

// Periods of the lowest octave, C2 to B2: 1,789,773 Hz / 16 / frequency - 1. Every octave halves them.
static const u16 kPeriods[12] = {1709, 1613, 1522, 1437, 1356, 1280,
                                 1208, 1140, 1076, 1016, 959,  905};

// Address and length of the drum sample, in the units of its registers (sample.s).
extern const u8 kickAddress, kickLength;

static const SONG* song;
static const u8* at[4];
static u8 left[4];
static u8 stepLeft;
static u8 volumes[2], ages[2], highBytes[2];
static u8 noiseVolume;
static u8 effectLeft, effectVolume;
static u16 effectPeriod;
static s16 effectSlide;

u16 NotePeriod(u8 note) {
    static u8 octave;
    octave = 0;
    --note;
    while (note >= 12) {
        note -= 12;
        ++octave;
    }
    return ((kPeriods[note] + 1) >> octave) - 1;
}

void SoundInit(void) {
    APU(0x01) = 0x08;
    APU(0x05) = 0x08;
    APU(0x11) = 64; // samples go up and down from the middle
    APU(0x15) = 0x0F;
    APU(0x00) = 0x30;
    APU(0x04) = 0x30;
    APU(0x08) = 0x80;
    APU(0x0C) = 0x30;
    APU(0x0F) = 0x08;
    highBytes[0] = highBytes[1] = 0xFF;
}

void SoundPlay(const SONG* newSong) {
    static u8 i;
    song = newSong;
    APU(0x00) = 0x30;
    APU(0x04) = 0x30;
    APU(0x08) = 0x80;
    volumes[0] = volumes[1] = 0;
    stepLeft = 1;
    for (i = 0; i != 4; ++i) {
        left[i] = 1;
        at[i] = song == 0 ? 0 : song->tracks[i];
    }
}

void SoundEffect(const EFFECT* effect) {
    if (effect->period != 0) {
        effectPeriod = effect->period;
        effectSlide = effect->slide;
        effectVolume = effect->volume;
        effectLeft = effect->frames;
    }
    if (effect->noise != 0) {
        noiseVolume = effect->noise;
        APU(0x0E) = effect->noiseRate;
        APU(0x0F) = 0x08;
    }
}

// The high byte restarts the wave, which clicks, so it is only written when it differs.
static void PulsePeriod(u8 channel, u16 period) {
    static u8 offset;
    offset = channel << 2;
    APU(offset + 2) = (u8)period;
    if (highBytes[channel] != (u8)(period >> 8)) {
        highBytes[channel] = period >> 8;
        APU(offset + 3) = 0x08 | highBytes[channel];
    }
}

static void Drum(u8 mask) {
    if ((mask & kKick) != 0) {
        APU(0x10) = 0x0C;
        APU(0x12) = kickAddress;
        APU(0x13) = kickLength;
        APU(0x15) = 0x0F;
        APU(0x15) = 0x1F;
    }
    if ((mask & (kSnare | kHat)) != 0) {
        noiseVolume = (mask & kSnare) != 0 ? 12 : 5;
        APU(0x0E) = (mask & kSnare) != 0 ? 6 : 2;
        APU(0x0F) = 0x08;
    }
}

static void StartNote(u8 channel, u8 note) {
    static u16 period;
    if (channel == 3) {
        Drum(note);
        return;
    }
    if (note == R) {
        if (channel == 2) {
            APU(0x08) = 0x80;
        } else {
            volumes[channel] = 0;
        }
        return;
    }
    period = NotePeriod(note);
    if (channel == 2) {
        APU(0x08) = 0xFF;
        APU(0x0A) = (u8)period;
        APU(0x0B) = 0x08 | period >> 8;
        return;
    }
    volumes[channel] = channel == 0 ? 11 : 7;
    ages[channel] = 0;
    if (channel == 0 || effectLeft == 0) {
        PulsePeriod(channel, period);
    }
}

static void Step(void) {
    static u8 i;
    static u8 note;
    for (i = 0; i != 4; ++i) {
        if (at[i] == 0 || --left[i] != 0) {
            continue;
        }
        if (*at[i] == kTrackLoop) {
            at[i] = song->tracks[i];
        }
        note = *at[i];
        ++at[i];
        left[i] = *at[i];
        ++at[i];
        StartNote(i, note);
    }
}

// A note decays quickly at first, then slowly.
static void Fade(u8 channel) {
    ++ages[channel];
    if ((ages[channel] & 7) == 0 && volumes[channel] > 3) {
        --volumes[channel];
    }
}

void SoundTick(void) {
    if (song != 0) {
        if (--stepLeft == 0) {
            stepLeft = song->stepFrames;
            Step();
        }
        Fade(0);
        Fade(1);
        APU(0x00) = song->duties[0] | 0x30 | volumes[0];
    }
    if (effectLeft != 0) {
        --effectLeft;
        APU(0x04) = 0x80 | 0x30 | (effectLeft < effectVolume ? effectLeft : effectVolume);
        PulsePeriod(1, effectPeriod);
        effectPeriod += effectSlide;
    } else if (song != 0) {
        APU(0x04) = song->duties[1] | 0x30 | volumes[1];
    }
    APU(0x0C) = 0x30 | noiseVolume;
    if (noiseVolume != 0) {
        --noiseVolume;
    }
}
