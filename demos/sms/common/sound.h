// Music for the PSG or, where one is fitted, the YM2413; effects for the PSG. One tick a frame.
//
// A song is four tracks of pairs: note, length in steps. It is the same data for both chips.
#pragma once

#include <stdint.h>

// Notes count semitones from C2 = 1; 0 is silence.
enum {
    R = 0,
    C2 = 1, Cs2, D2, Ds2, E2, F2, Fs2, G2, Gs2, A2, As2, B2,
    C3, Cs3, D3, Ds3, E3, F3, Fs3, G3, Gs3, A3, As3, B3,
    C4, Cs4, D4, Ds4, E4, F4, Fs4, G4, Gs4, A4, As4, B4,
    C5, Cs5, D5, Ds5, E5, F5, Fs5, G5, Gs5, A5, As5, B5,
    C6, Cs6, D6, Ds6, E6, F6, Fs6, G6, Gs6, A6, As6, B6
};

// In a drum track: the bits of the YM2413's rhythm register.
enum { kHiHat = 1, kCymbal = 2, kTom = 4, kSnare = 8, kBassDrum = 16 };

enum { kTrackEnd = 0xFE, kTrackLoop = 0xFF }; // in place of a note

enum { kMelody, kBass, kHarmony, kDrums, kTracks };

typedef struct {
    const uint8_t *tracks[kTracks];
    uint8_t framesPerStep;
    uint8_t voices[3]; // YM2413 voice << 4 | attenuation, for melody, bass and harmony
} Song;

// An effect is a word a frame: period << 4 | attenuation, ended by 0. With kNoise the period is the
// PSG's noise control.
#define NOISE 0x8000u
#define TONE(period, attenuation) ((period) << 4 | (attenuation))

extern uint8_t soundHasFm;

void SoundInit(void);
void SoundPlay(const Song *song); // 0: silence
void SoundEffect(const uint16_t *effect);
void SoundPause(uint8_t on);
void SoundTick(void);
