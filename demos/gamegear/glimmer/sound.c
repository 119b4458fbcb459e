#include "sound.h"

#include "tune.h"

__sfr __at 0x06 panPort;
__sfr __at 0x7F psgPort;

// Bits of the panning port, for the right side; the left side's are four bits higher.
#define PAN_LEAD   0x01
#define PAN_BASS   0x02
#define PAN_EFFECT 0x04
#define PAN_NOISE  0x08
#define LEFT(bits) ((u8)((bits) << 4))

#define SILENT 15

#include "title.inc"
#include "match.inc"
#include "end.inc"

static const TUNE* const tunes[4] = {0, &titleTune, &matchTune, &endTune};

typedef struct {
    u16 period;     // 0: noise
    s8 slide;       // added to the period each frame
    u8 attenuation; // at the beginning
    u8 frames;
} EFFECT;

static const EFFECT effects[] = {
    {200, -4,  2, 8 }, // EFFECT_HIT
    {300, -14, 0, 14}, // EFFECT_STRIKE
    {0,   0,   8, 5 }, // EFFECT_EDGE
    {150, 12,  1, 28}, // EFFECT_POINT
    {120, -2,  4, 5 }, // EFFECT_CHOOSE
};

static u8 music;
static u8 frames;
static u16 period;
static s8 slide;
static u8 attenuation;
static u8 isNoise;
static u8 effectPan;
static u8 swing;

void SoundMusic(u8 number) {
    music = number;
    TuneStart(tunes[number]);
}

// A third of the screen each: left, both, right.
static u8 PanOf(u8 x, u8 bits) {
    if (x < 54)
        return LEFT(bits);
    if (x >= 106)
        return bits;
    return LEFT(bits) | bits;
}

void SoundEffect(u8 number, u8 x) {
    const EFFECT* effect = &effects[number];
    period = effect->period;
    slide = effect->slide;
    attenuation = effect->attenuation;
    frames = effect->frames;
    isNoise = period == 0;
    effectPan = PanOf(x, PAN_EFFECT | PAN_NOISE);
    psgPort = 0xDF;
    psgPort = 0xFF;
    if (isNoise)
        psgPort = 0xE4;
}

static void EffectStep(void) {
    if (frames == 0)
        return;
    if (--frames == 0) {
        psgPort = 0xDF;
        psgPort = 0xFF;
        return;
    }
    if (isNoise) {
        psgPort = 0xF0 | attenuation;
    } else {
        psgPort = (u8)(0xC0 | (period & 15));
        psgPort = (u8)(period >> 4);
        psgPort = 0xD0 | attenuation;
        period += slide;
    }
    if ((frames & 1) && attenuation < SILENT)
        ++attenuation;
}

void SoundStep(void) {
    TuneStep();
    EffectStep();
    // Out of a match the melody wanders from side to side.
    u8 pan = effectPan;
    ++swing;
    if (music == MUSIC_MATCH)
        pan |= LEFT(PAN_LEAD) | PAN_LEAD | LEFT(PAN_BASS) | PAN_BASS;
    else
        pan |= (swing & 0x40 ? LEFT(PAN_LEAD) : PAN_LEAD) | LEFT(PAN_BASS) | PAN_BASS;
    panPort = pan;
}
