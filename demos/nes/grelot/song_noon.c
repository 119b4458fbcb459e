#include "common/sound.h"

// clang-format off
#pragma rodata-name("BANK1")

static const u8 kMelody[] = {
    D5, 1, E5, 1, Fs5, 2, A5, 2, Fs5, 2, G5, 2, E5, 2, Cs5, 2, A4, 2, D5, 1, E5, 1, Fs5, 2, G5, 2, A5, 2, B5, 4, A5, 4,
    B5, 2, G5, 1, B5, 1, A5, 2, Fs5, 2, G5, 2, E5, 1, G5, 1, Fs5, 2, D5, 2, E5, 2, Cs5, 2, E5, 2, G5, 2, Fs5, 2, E5, 2, D5, 4,
    kTrackLoop
};
static const u8 kHarmony[] = {
    R, 1, A4, 1, R, 1, A4, 1, R, 1, A4, 1, R, 1, A4, 1, R, 1, G4, 1, R, 1, G4, 1, R, 1, G4, 1, R, 1, G4, 1,
    kTrackLoop
};
static const u8 kBass[] = {
    D3, 4, Fs3, 4, A2, 4, E3, 4, D3, 4, Fs3, 4, G3, 4, A3, 4,
    G3, 4, D3, 4, E3, 4, D3, 4, A2, 4, Cs3, 4, D3, 4, D3, 4,
    kTrackLoop
};
static const u8 kDrums[] = {
    kKick, 2, kHat, 1, kHat, 1, kSnare, 2, kHat, 2,
    kTrackLoop
};

const SONG kNoon = {{kMelody, kHarmony, kBass, kDrums}, 7, {0x40, 0x80}};
// clang-format on
