// A ringing bell: it swings, sounds and lets notes rise.
#include "grelot/grelot.h"

enum { kSparks = 6, kFramesOfRing = 34 };

u8 ringing;

static u8 ringAge;
static u8 sparkX[kSparks], sparkY[kSparks], sparkLeft[kSparks], sparkColours[kSparks];
static u8 nextSpark;

static const u8 kX[kBells] = {124, 60, 188, 124};
static const u8 kY[kBells] = {62, 94, 94, 126};
static const EFFECT kTones[kBells] = {
    {213, 0, 12, 30, 0, 0}, // C5, an octave above in sound of the other pulse
    {169, 0, 12, 30, 0, 0}, // E5
    {142, 0, 12, 30, 0, 0}, // G5
    {106, 0, 12, 30, 0, 0}, // C6
};

static void Send(u8 bell) {
    sparkX[nextSpark] = kX[bell] - 8 + (Random() & 15);
    sparkY[nextSpark] = kY[bell];
    sparkLeft[nextSpark] = 40;
    sparkColours[nextSpark] = bell;
    nextSpark = nextSpark + 1 == kSparks ? 0 : nextSpark + 1;
}

void Ring(u8 bell, u8 aloud) {
    ringing = bell;
    ringAge = 0;
    Send(bell);
    if (aloud != 0) {
        SoundEffect(&kTones[bell]);
    }
}

static void DrawSparks(void) {
    static u8 i, x, tile;
    for (i = 0; i != kSparks; ++i) {
        if (sparkLeft[i] == 0) {
            continue;
        }
        --sparkLeft[i];
        --sparkY[i];
        x = sparkX[i] + (sparkLeft[i] & 8 ? 1 : 0);
        tile = sparkLeft[i] < 8 ? kFigureSpark : i & 1;
        SPRITE(x, sparkY[i], tile, sparkColours[i]);
    }
}

// Stars that twinkle.
static void DrawStars(void) {
    static const u8 kPlaces[16] = {24,  60, 60,  44, 96, 52,  152, 44,
                                   200, 56, 232, 80, 20, 150, 236, 160};
    static u8 i, tile;
    for (i = 0; i != 16; i += 2) {
        tile = (u8)(frameCount + i * 16) < 24 ? kFigureSpark : kFigureStar;
        SPRITE(kPlaces[i], kPlaces[i + 1], tile, 1);
    }
}

void RingFrame(void) {
    bells = 0;
    if (ringing != kNoBell) {
        if ((ringAge & 8) == 0) {
            bells = ringing + 1;
        }
        if (++ringAge == 12) {
            Send(ringing);
        }
        if (ringAge == kFramesOfRing) {
            ringing = kNoBell;
        }
    }
    DrawSparks();
    DrawStars();
}
