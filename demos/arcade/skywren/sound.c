#include "sound.h"

#include "tune.h"

__sfr __at 0x7B secondPsgPort;

#define SILENT 15
#define NOISE  3

static const TUNE titleTune = {
    {"D4--F4--A4--D5--C5--A4--F4------"
     "C4--E4--G4--C5--a4--G4--E4------"
     "a3--D4--F4--a4--A4--F4--D4------"
     "A4--G4--F4--E4--D4--------------", "D3--..D3A2--..A2D3--..D3A2--..A2"
     "C3--..C3G3--..G3C3--..C3G3--..G3"
     "a2--..a2F3--..F3a2--..a2F3--..F3"
     "A2--..A2E3--..E3D3--..D3A2--D3--", "A4..F4..D4..F4..A4..F4..D4..F4.."
     "G4..E4..C4..E4..G4..E4..C4..E4.."
     "F4..D4..a3..D4..F4..D4..a3..D4.."
     "E4..c4..A3..c4..F4..D4..A3......"},
    "k.h.s.h.k.h.s.hh",
    {4,                                       4,                                      9                                     },
    {4,                                       3,                                      2                                     },
    6
};

static const TUNE playTune = {
    {"D5--A4D5--F5E5--D5--C5--A4------"
     "F4--A4C5--D5C5--A4--G4--F4------"
     "G4--a4D5--G5F5--D5--a4--G4------"
     "A4--c5E5--G5F5E5D5C5a4A4--------", "D3D3..D3D3..D3..D3D3..D3C3..A2.."
     "F3F3..F3F3..F3..F3F3..F3E3..C3.."
     "G3G3..G3G3..G3..G3G3..G3F3..D3.."
     "A2A2..A2A2..A2..A2A2..E3A3..A2..", "A4F4D4F4A4F4D4F4A4F4D4F4A4F4D4F4"
     "C5A4F4A4C5A4F4A4C5A4F4A4C5A4F4A4"
     "a4G4D4G4a4G4D4G4a4G4D4G4a4G4D4G4"
     "A4E4c4E4A4E4c4E4G4E4c4E4G4E4c4E4"},
    "k.hhs.h.k.hks.hh",
    {4,                                       4,                                      10                                    },
    {4,                                       3,                                      1                                     },
    6
};

static const TUNE overTune = {
    {"A4--G4--F4--E4--D4--------------"
     "................................", "D3------A2------D3--------------"
     "................................", 0     },
    0,
    {3,                                       4,                                      SILENT},
    {6,                                       6,                                      1     },
    9
};

static const TUNE* const tunes[4] = {0, &titleTune, &playTune, &overTune};

typedef struct {
    u8 channel;
    u16 period; // of a tone; of the noise, its control value
    s8 slide;   // added to a tone's period each frame
    u8 attenuation;
    u8 frames;
} EFFECT;

static const EFFECT effects[] = {
    {0,     90,  14, 4, 8 }, // EFFECT_SHOT
    {NOISE, 5,   0,  3, 16}, // EFFECT_BLAST
    {NOISE, 6,   0,  1, 40}, // EFFECT_CRASH
    {1,     85,  -1, 1, 24}, // EFFECT_COIN
    {1,     200, -4, 2, 30}, // EFFECT_LIFE
};

typedef struct {
    u16 period;
    s8 slide;
    u8 attenuation;
    u8 frames;
    u8 fadeEvery; // frames for one step of attenuation
} PLAYING;

static PLAYING playing[4];

void SoundMusic(u8 music) {
    TuneStart(tunes[music]);
}

void SoundEffect(u8 number) {
    const EFFECT* effect = &effects[number];
    PLAYING* channel = &playing[effect->channel];
    channel->period = effect->period;
    channel->slide = effect->slide;
    channel->attenuation = effect->attenuation;
    channel->frames = effect->frames;
    channel->fadeEvery = effect->frames >= 24 ? 3 : 1;
    if (effect->channel == NOISE)
        secondPsgPort = (u8)(0xE0 | effect->period);
}

void SoundStep(void) {
    TuneStep();
    for (u8 number = 0; number < 4; ++number) {
        PLAYING* channel = &playing[number];
        const u8 select = (u8)(number << 5);
        u8 attenuation = SILENT;
        if (channel->frames != 0) {
            --channel->frames;
            attenuation = channel->attenuation;
            if (channel->frames % channel->fadeEvery == 0 && attenuation < SILENT)
                ++channel->attenuation;
            if (number != NOISE) {
                secondPsgPort = (u8)(0x80 | select | (channel->period & 15));
                secondPsgPort = (u8)(channel->period >> 4);
                channel->period += channel->slide;
            }
        }
        secondPsgPort = (u8)(0x90 | select | attenuation);
    }
}
