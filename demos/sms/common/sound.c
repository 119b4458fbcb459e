#include "common/sound.h"

#include "common/sms.h"

__sfr __at(0x3E) portMemoryControl;
__sfr __at(0x7F) portPsg;
__sfr __at(0xF0) portFmAddress;
__sfr __at(0xF1) portFmData;
__sfr __at(0xF2) portFmControl;

#define IO_CHIP_OFF 0x04 // in port 0x3E
#define FM_KEY 0x10      // in registers 0x20 on
#define FM_RHYTHM 0x20   // in register 0x0E

typedef struct {
    const uint8_t *next;
    const uint8_t *start; // 0: ended
    uint8_t steps;        // left of this note
    uint8_t attenuation;  // PSG
    uint8_t age;          // frames since the note began
    uint8_t block;        // YM2413 register 0x20 + n without the key
} Track;

uint8_t soundHasFm;

static Track tracks[kTracks];
static uint8_t playing;
static uint8_t framesPerStep, framesLeft;
static const uint16_t *effect;
static uint8_t effectOnNoise;

// PSG periods of C2 to B2: 3,579,545 / 32 / frequency. Each octave up halves them.
static const uint16_t kPeriods[12] = {1710, 1614, 1524, 1438, 1357, 1281, 1209, 1141, 1077, 1017, 960, 906};

// YM2413 F-numbers of an octave, with the octave as block.
static const uint16_t kFNumbers[12] = {172, 183, 194, 205, 217, 230, 244, 258, 274, 290, 307, 326};

// How a note fades on the PSG: attenuation at its start, frames to a step, attenuation at its end.
static const uint8_t kFade[3][3] = {{2, 7, 8}, {4, 9, 9}, {6, 4, 15}};

static void FmWrite(uint8_t number, uint8_t value)
{
    uint8_t wait;
    portFmAddress = number;
    __asm__("nop\nnop\nnop");
    portFmData = value;
    for (wait = 8; wait; --wait) { // 84 clocks of the chip
    }
}

static void PsgPeriod(uint8_t channel, uint16_t period)
{
    portPsg = 0x80 | (uint8_t)(channel << 5) | ((uint8_t)period & 15);
    portPsg = (uint8_t)(period >> 4);
}

static void PsgVolume(uint8_t channel, uint8_t attenuation)
{
    portPsg = 0x90 | (uint8_t)(channel << 5) | attenuation;
}

static void Silence(void)
{
    uint8_t i;
    for (i = 0; i < 4; ++i)
        PsgVolume(i, 15);
    if (!soundHasFm)
        return;
    FmWrite(0x0E, FM_RHYTHM);
    for (i = 0; i < 3; ++i)
        FmWrite(0x20 + i, tracks[i].block);
}

// The FM unit answers at its control port only while the I/O chip is off.
static uint8_t FmAnswers(uint8_t value)
{
    portFmControl = value;
    return (portFmControl & 3) == value;
}

void SoundInit(void)
{
    portMemoryControl = memoryControl | IO_CHIP_OFF;
    soundHasFm = FmAnswers(1) && FmAnswers(0) && FmAnswers(3);
    portMemoryControl = memoryControl;
    if (soundHasFm) {
        // The rhythm channels' pitches as the chip's manual gives them.
        FmWrite(0x16, 0x20);
        FmWrite(0x17, 0x50);
        FmWrite(0x18, 0xC0);
        FmWrite(0x26, 0x05);
        FmWrite(0x27, 0x05);
        FmWrite(0x28, 0x01);
        FmWrite(0x36, 0x02);
        FmWrite(0x37, 0x54);
        FmWrite(0x38, 0x55);
    }
    Silence();
}

void SoundPlay(const Song *song)
{
    uint8_t i;
    Silence();
    playing = song != 0;
    if (!playing)
        return;
    framesPerStep = song->framesPerStep;
    framesLeft = 1;
    for (i = 0; i < kTracks; ++i) {
        tracks[i].start = tracks[i].next = song->tracks[i];
        tracks[i].steps = 1;
        tracks[i].attenuation = 15;
        if (soundHasFm && i < 3)
            FmWrite(0x30 + i, song->voices[i]);
    }
}

void SoundEffect(const uint16_t *newEffect)
{
    effect = newEffect;
}

void SoundPause(uint8_t on)
{
    if (on)
        Silence();
}

static void PlayDrum(uint8_t bits)
{
    Track *track = &tracks[kDrums];
    if (soundHasFm) {
        FmWrite(0x0E, FM_RHYTHM);
        if (bits)
            FmWrite(0x0E, FM_RHYTHM | bits);
        return;
    }
    if (!bits)
        return;
    // White noise: low for the drum, middling for the snare, high for the hi-hat.
    portPsg = bits & kBassDrum ? 0xE6 : bits & kSnare ? 0xE5 : 0xE4;
    track->attenuation = bits & kBassDrum ? 5 : bits & kSnare ? 6 : 10;
    track->age = 0;
}

static void PlayNote(uint8_t channel, uint8_t note)
{
    Track *track = &tracks[channel];
    uint8_t octave = 2;
    uint16_t period;
    if (soundHasFm)
        FmWrite(0x20 + channel, track->block);
    if (!note) {
        track->attenuation = 15;
        return;
    }
    --note;
    while (note >= 12) {
        note -= 12;
        ++octave;
    }
    if (soundHasFm) {
        period = kFNumbers[note];
        track->block = (uint8_t)(octave << 1) | (uint8_t)(period >> 8);
        FmWrite(0x10 + channel, (uint8_t)period);
        FmWrite(0x20 + channel, track->block | FM_KEY);
        return;
    }
    period = kPeriods[note] >> (octave - 2);
    while (period > 1023) // below what the chip can play: an octave up
        period >>= 1;
    if (channel != kHarmony || !effect)
        PsgPeriod(channel, period);
    track->attenuation = kFade[channel][0];
    track->age = 0;
}

static void StepTrack(uint8_t channel)
{
    Track *track = &tracks[channel];
    uint8_t note;
    if (!track->start || --track->steps)
        return;
    note = *track->next;
    if (note == kTrackLoop) {
        track->next = track->start;
        note = *track->next;
    }
    if (note == kTrackEnd) {
        track->start = 0;
        note = R;
        track->steps = 1;
    } else {
        track->steps = track->next[1];
        track->next += 2;
    }
    if (channel == kDrums)
        PlayDrum(note);
    else
        PlayNote(channel, note);
}

static void Fade(void)
{
    uint8_t i;
    Track *track = tracks;
    for (i = 0; i < 3; ++i, ++track) {
        if (++track->age >= kFade[i][1] && track->attenuation < kFade[i][2]) {
            track->age = 0;
            ++track->attenuation;
        }
        if (i != kHarmony || !effect)
            PsgVolume(i, track->attenuation);
    }
    if (track->attenuation < 15 && (++track->age & 1))
        ++track->attenuation;
    if (!effect || !effectOnNoise)
        PsgVolume(3, track->attenuation);
}

static void EffectTick(void)
{
    uint16_t word;
    if (!effect)
        return;
    word = *effect++;
    if (!word) {
        effect = 0;
        PsgVolume(2, 15);
        PsgVolume(3, 15);
        return;
    }
    effectOnNoise = (word & NOISE) != 0;
    if (effectOnNoise) {
        portPsg = 0xE0 | ((uint8_t)(word >> 4) & 7);
        PsgVolume(3, (uint8_t)word & 15);
    } else {
        PsgPeriod(2, word >> 4);
        PsgVolume(2, (uint8_t)word & 15);
    }
}

void SoundTick(void)
{
    uint8_t i;
    EffectTick();
    if (!playing)
        return;
    if (--framesLeft == 0) {
        framesLeft = framesPerStep;
        for (i = 0; i < kTracks; ++i)
            StepTrack(i);
    }
    if (!soundHasFm)
        Fade();
}
