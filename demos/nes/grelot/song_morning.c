#include "common/sound.h"

// clang-format off
#pragma rodata-name("BANK0")

static const u8 kMelody[] = {
    G4, 2, C5, 2, E5, 2, D5, 1, C5, 1, D5, 2, G4, 2, G4, 4, A4, 2, D5, 2, F5, 2, E5, 1, D5, 1, E5, 2, C5, 2, C5, 4,
    G5, 2, E5, 2, G5, 2, F5, 1, E5, 1, F5, 2, D5, 2, D5, 4, E5, 2, D5, 1, C5, 1, B4, 2, D5, 2, C5, 6, R, 2,
    kTrackLoop
};
static const u8 kHarmony[] = {
    C4, 2, E4, 2, G4, 2, E4, 2, B3, 2, D4, 2, G4, 2, D4, 2, D4, 2, F4, 2, A4, 2, F4, 2, C4, 2, E4, 2, G4, 2, E4, 2,
    C4, 2, E4, 2, G4, 2, E4, 2, D4, 2, F4, 2, A4, 2, F4, 2, G3, 2, B3, 2, D4, 2, F4, 2, C4, 2, E4, 2, C4, 4,
    kTrackLoop
};
static const u8 kBass[] = {
    C3, 8, G2, 8, D3, 8, C3, 8,
    C3, 8, D3, 8, G2, 8, C3, 8,
    kTrackLoop
};
static const u8 kDrums[] = {
    kKick, 2, kHat, 2, kHat, 2, kHat, 2,
    kTrackLoop
};

const SONG kMorning = {{kMelody, kHarmony, kBass, kDrums}, 9, {0x80, 0x40}};
// clang-format on
