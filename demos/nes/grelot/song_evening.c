#include "common/sound.h"

// clang-format off
#pragma rodata-name("BANK2")

static const u8 kMelody[] = {
    A4, 4, E5, 2, D5, 4, C5, 2, B4, 4, D5, 2, C5, 6,
    A4, 4, C5, 2, F5, 4, E5, 2, D5, 4, B4, 2, E5, 6,
    E5, 4, G5, 2, F5, 4, A5, 2, G5, 4, E5, 2, C5, 6,
    D5, 4, F5, 2, E5, 2, D5, 2, C5, 2, B4, 3, Gs4, 3, A4, 6,
    kTrackLoop
};
static const u8 kHarmony[] = {
    R, 2, C4, 2, E4, 2, R, 2, C4, 2, E4, 2, R, 2, D4, 2, Gs4, 2, R, 2, C4, 2, E4, 2,
    R, 2, C4, 2, F4, 2, R, 2, C4, 2, A4, 2, R, 2, D4, 2, Gs4, 2, R, 2, B3, 2, E4, 2,
    kTrackLoop
};
static const u8 kBass[] = {
    A2, 6, A2, 6, E3, 6, A2, 6,
    F3, 6, F3, 6, B2, 6, E3, 6,
    kTrackLoop
};
static const u8 kDrums[] = {
    kKick, 2, kHat, 2, kHat, 2,
    kTrackLoop
};

const SONG kEvening = {{kMelody, kHarmony, kBass, kDrums}, 8, {0x80, 0x80}};
// clang-format on
