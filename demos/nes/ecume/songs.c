// A barcarolle for the title and a livelier one for the sea, both of our own.
#include "common/sound.h"

// clang-format off
// A bar of six: a broken chord, and its bass.
#define WAVES(a, b, c) a, 1, b, 1, c, 1, b, 1, c, 1, b, 1
#define ROCK(a, b)     a, 3, b, 3

static const u8 kDuskMelody[] = {
    D5, 3, B4, 2, D5, 1, G5, 4, Fs5, 1, E5, 1, D5, 3, B4, 2, G4, 1, A4, 6,
    C5, 3, A4, 2, C5, 1, Fs5, 4, E5, 1, D5, 1, B4, 3, C5, 2, A4, 1, G4, 6,
    E5, 3, G5, 2, E5, 1, D5, 4, B4, 2, C5, 3, E5, 2, C5, 1, B4, 6,
    A4, 3, C5, 2, E5, 1, D5, 3, G5, 3, Fs5, 2, E5, 1, D5, 2, A4, 1, G4, 5, R, 1,
    kTrackLoop
};
static const u8 kDuskHarmony[] = {
    WAVES(G3, B3, D4), WAVES(G3, C4, E4), WAVES(G3, B3, D4), WAVES(Fs3, A3, D4),
    WAVES(A3, C4, E4), WAVES(A3, C4, D4), WAVES(Fs3, C4, D4), WAVES(G3, B3, D4),
    WAVES(G3, C4, E4), WAVES(G3, B3, D4), WAVES(A3, C4, E4), WAVES(G3, B3, E4),
    WAVES(A3, C4, E4), WAVES(G3, B3, D4), WAVES(Fs3, A3, D4), WAVES(G3, B3, D4),
    kTrackLoop
};
static const u8 kDuskBass[] = {
    ROCK(G3, D3), ROCK(C3, E3), ROCK(G3, D3), ROCK(D3, A2),
    ROCK(A2, E3), ROCK(D3, Fs3), ROCK(D3, Fs3), ROCK(G3, D3),
    ROCK(C3, E3), ROCK(G3, B2), ROCK(A2, E3), ROCK(E3, B2),
    ROCK(A2, C3), ROCK(B2, G3), ROCK(D3, D3), ROCK(G2, R),
    kTrackLoop
};
static const u8 kDuskDrums[] = {
    kKick, 2, kHat, 1, kHat, 2, kHat, 1,
    kTrackLoop
};

const SONG kSongDusk = {{kDuskMelody, kDuskHarmony, kDuskBass, kDuskDrums}, 9, {0x80, 0x40}};

#define RUN(a, b, c) a, 1, b, 1, c, 1, b, 1, a, 1, b, 1, c, 1, b, 1
#define HOP(a, b)    a, 2, R, 1, a, 1, b, 2, a, 2

static const u8 kSeaMelody[] = {
    G5, 2, E5, 1, G5, 1, C6, 3, B5, 1, A5, 2, F5, 1, A5, 1, G5, 4, E5, 2, F5, 1, G5, 1, A5, 2, G5, 2, F5, 1, E5, 1, D5, 2, D5, 2, R, 2,
    G5, 2, E5, 1, G5, 1, C6, 3, D6, 1, E6, 2, C6, 1, A5, 1, G5, 4, A5, 2, B5, 1, C6, 1, B5, 2, G5, 2, C6, 6, R, 2,
    A5, 2, A5, 1, B5, 1, C6, 2, A5, 2, G5, 2, E5, 1, G5, 1, E5, 4, F5, 2, F5, 1, G5, 1, A5, 2, F5, 2, E5, 1, F5, 1, E5, 1, D5, 1, C5, 2, G4, 2,
    A5, 2, A5, 1, B5, 1, C6, 2, E6, 2, D6, 2, B5, 1, G5, 1, D5, 4, E5, 1, F5, 1, G5, 1, A5, 1, B5, 1, C6, 1, D6, 1, B5, 1, C6, 6, R, 2,
    kTrackLoop
};
static const u8 kSeaHarmony[] = {
    RUN(C4, E4, G4), RUN(C4, E4, G4), RUN(C4, F4, A4), RUN(C4, E4, G4),
    RUN(C4, E4, A4), RUN(C4, F4, A4), RUN(B3, D4, G4), RUN(B3, D4, G4),
    kTrackLoop
};
static const u8 kSeaBass[] = {
    HOP(C3, G3), HOP(C3, E3), HOP(F3, C3), HOP(C3, G3),
    HOP(A3, E3), HOP(F3, A3), HOP(G3, D3), HOP(G3, B3),
    kTrackLoop
};
static const u8 kSeaDrums[] = {
    kKick | kHat, 1, kHat, 1, kHat, 1, kKick, 1, kSnare, 2, kHat, 2, kKick | kHat, 1, kHat, 1, kKick, 1, kHat, 1, kSnare, 2, kHat, 1, kSnare, 1,
    kTrackLoop
};

const SONG kSongSea = {{kSeaMelody, kSeaHarmony, kSeaBass, kSeaDrums}, 7, {0x40, 0x80}};
// clang-format on
