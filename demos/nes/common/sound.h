// Music and effects on all five channels.
//
// A track is pairs of a value and its length in steps; kTrackLoop restarts it. The first two tracks are pulses,
// the third is the triangle, one octave lower than written, the fourth is drums, a mask.
#ifndef SOUND_H
#define SOUND_H

#include "common/nes.h"

// clang-format off
enum {
    R,
    C2, Cs2, D2, Ds2, E2, F2, Fs2, G2, Gs2, A2, As2, B2,
    C3, Cs3, D3, Ds3, E3, F3, Fs3, G3, Gs3, A3, As3, B3,
    C4, Cs4, D4, Ds4, E4, F4, Fs4, G4, Gs4, A4, As4, B4,
    C5, Cs5, D5, Ds5, E5, F5, Fs5, G5, Gs5, A5, As5, B5,
    C6, Cs6, D6, Ds6, E6, F6, Fs6, G6, Gs6, A6, As6, B6
};
// clang-format on

enum { kKick = 1, kSnare = 2, kHat = 4, kTrackLoop = 0xFF };

typedef struct {
    const u8* tracks[4];
    u8 stepFrames;
    u8 duties[2]; // 0x00, 0x40, 0x80 or 0xC0
} SONG;

typedef struct {
    u16 period; // of the second pulse; 0 leaves it alone
    s16 slide;  // added every frame
    u8 volume;
    u8 frames;
    u8 noise; // initial volume; 0: channel unchanged
    u8 noiseRate;
} EFFECT;

void SoundInit(void);
void SoundPlay(const SONG* song); // null for silence
void SoundEffect(const EFFECT* effect);
void SoundTick(void); // once a frame
u16 NotePeriod(u8 note);

#endif
