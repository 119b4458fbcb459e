#include "sound.h"

#include "tune.h"

__sfr __at 0x7B secondPsgPort;

#define SILENT 15
#define NOISE  3

#include "title.inc"
#include "play.inc"
#include "over.inc"

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
