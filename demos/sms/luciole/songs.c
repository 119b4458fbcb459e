// The music and the effects of the game.
#include "luciole/luciole.h"

// A bar of the bass: root, fifth, octave. A bar of the harmony: a chord, broken.
#define BASS(root, fifth, octave) root, 2, root, 1, fifth, 1, octave, 2, fifth, 2
#define ARPEGGIO(a, b, c, d) a, 1, b, 1, c, 1, d, 1, c, 1, b, 1, c, 1, b, 1
#define BEAT kBassDrum, 2, kHiHat, 1, kHiHat, 1, kSnare, 2, kHiHat, 2
#define FILL kBassDrum, 2, kHiHat, 1, kBassDrum, 1, kSnare, 1, kSnare, 1, kTom | kSnare, 1, kSnare, 1

static const uint8_t kNightMelody[] = {
    D5, 2, F5, 1, A5, 1, G5, 1, F5, 1, E5, 2,
    D5, 2, F5, 1, D5, 1, As4, 3, R, 1,
    C5, 2, F5, 1, A5, 1, C6, 2, A5, 2,
    G5, 3, F5, 1, E5, 4,
    D5, 2, F5, 1, A5, 1, D6, 2, C6, 2,
    As5, 2, A5, 1, G5, 1, F5, 2, D5, 2,
    G5, 2, A5, 1, As5, 1, A5, 1, G5, 1, F5, 1, E5, 1,
    A5, 2, E5, 2, Cs5, 2, A4, 2,
    F5, 3, G5, 1, A5, 4,
    G5, 3, E5, 1, C5, 4,
    As5, 2, A5, 1, G5, 1, D5, 2, G5, 2,
    F5, 3, E5, 1, D5, 4,
    D5, 2, F5, 2, As5, 2, D6, 2,
    C6, 3, A5, 1, F5, 4,
    G5, 2, F5, 2, E5, 2, G5, 2,
    A5, 6, Cs5, 2,
    kTrackLoop,
};
static const uint8_t kNightBass[] = {
    BASS(D3, A3, D4), BASS(As2, F3, As3), BASS(F3, C4, F4), BASS(C3, G3, C4),
    BASS(D3, A3, D4), BASS(As2, F3, As3), BASS(G3, D4, G4), BASS(A2, E3, A3),
    BASS(F3, C4, F4), BASS(C3, G3, C4), BASS(G3, D4, G4), BASS(D3, A3, D4),
    BASS(As2, F3, As3), BASS(F3, C4, F4), BASS(G3, D4, G4), BASS(A2, E3, A3),
    kTrackLoop,
};
static const uint8_t kNightHarmony[] = {
    ARPEGGIO(D4, F4, A4, D5), ARPEGGIO(D4, F4, As4, D5), ARPEGGIO(C4, F4, A4, C5), ARPEGGIO(C4, E4, G4, C5),
    ARPEGGIO(D4, F4, A4, D5), ARPEGGIO(D4, F4, As4, D5), ARPEGGIO(D4, G4, As4, D5), ARPEGGIO(Cs4, E4, A4, Cs5),
    ARPEGGIO(C4, F4, A4, C5), ARPEGGIO(C4, E4, G4, C5), ARPEGGIO(D4, G4, As4, D5), ARPEGGIO(D4, F4, A4, D5),
    ARPEGGIO(D4, F4, As4, D5), ARPEGGIO(C4, F4, A4, C5), ARPEGGIO(D4, G4, As4, D5), ARPEGGIO(Cs4, E4, A4, Cs5),
    kTrackLoop,
};
static const uint8_t kNightDrums[] = {BEAT, BEAT, BEAT, FILL, kTrackLoop};

const Song kSongNight = {{kNightMelody, kNightBass, kNightHarmony, kNightDrums}, 11, {0x41, 0xD2, 0xC4}};

// A waltz for the title.
#define WALTZ(a, b) R, 2, a, 2, b, 2
static const uint8_t kTitleMelody[] = {
    C5, 2, F5, 2, A5, 2, A5, 4, G5, 1, F5, 1, F5, 2, D5, 2, F5, 2, G5, 4, R, 2,
    C5, 2, F5, 2, C6, 2, D6, 3, C6, 1, A5, 2, As5, 2, A5, 2, G5, 2, F5, 5, R, 1,
    kTrackLoop,
};
static const uint8_t kTitleBass[] = {F3, 6, D3, 6, As2, 6, C3, 6, F3, 6, D3, 6, G3, 3, C3, 3, F3, 6, kTrackLoop};
static const uint8_t kTitleHarmony[] = {
    WALTZ(A4, C5), WALTZ(F4, A4), WALTZ(D4, F4), WALTZ(E4, G4),
    WALTZ(A4, C5), WALTZ(F4, A4), WALTZ(As4, E4), WALTZ(A4, C5), kTrackLoop,
};
static const uint8_t kTitleDrums[] = {kBassDrum, 2, kHiHat, 2, kHiHat, 2, kTrackLoop};

const Song kSongTitle = {{kTitleMelody, kTitleBass, kTitleHarmony, kTitleDrums}, 12, {0x41, 0xE3, 0xC3}};

static const uint8_t kDawnMelody[] = {F5, 1, A5, 1, C6, 1, F6, 3, E6, 1, D6, 1, C6, 1, D6, 1, E6, 1, F6, 5, kTrackEnd};
static const uint8_t kDawnBass[] = {F3, 3, A3, 3, C4, 3, C3, 2, F3, 5, kTrackEnd};
static const uint8_t kDawnHarmony[] = {A4, 3, C5, 3, E5, 3, G4, 2, A4, 1, C5, 1, F5, 3, kTrackEnd};
static const uint8_t kDawnDrums[] = {kBassDrum, 3, kSnare, 3, kBassDrum, 3, kSnare, 2, kCymbal | kBassDrum, 5, kTrackEnd};

const Song kSongDawn = {{kDawnMelody, kDawnBass, kDawnHarmony, kDawnDrums}, 9, {0x71, 0xE2, 0xC3}};

static const uint8_t kLostMelody[] = {A5, 2, F5, 2, E5, 2, Cs5, 2, D5, 6, kTrackEnd};
static const uint8_t kLostBass[] = {D3, 4, A2, 4, D3, 6, kTrackEnd};
static const uint8_t kLostHarmony[] = {F4, 4, G4, 4, F4, 6, kTrackEnd};
static const uint8_t kLostDrums[] = {kTrackEnd};

const Song kSongLost = {{kLostMelody, kLostBass, kLostHarmony, kLostDrums}, 12, {0x41, 0xE2, 0xC3}};

const uint16_t kSoundDew[] = {
    TONE(107, 2), TONE(107, 4), TONE(80, 3), TONE(80, 6), TONE(80, 9), 0,
};
const uint16_t kSoundLamp[] = {
    TONE(214, 1), TONE(214, 3), TONE(170, 1), TONE(170, 3), TONE(143, 1), TONE(143, 3), TONE(107, 1),
    TONE(107, 2), TONE(107, 4), TONE(107, 6), TONE(107, 8), TONE(107, 10), 0,
};
const uint16_t kSoundSpark[] = {TONE(60, 4), TONE(75, 5), TONE(95, 6), TONE(120, 8), TONE(150, 11), 0};
const uint16_t kSoundPoof[] = {
    NOISE | TONE(4, 3), NOISE | TONE(4, 4), NOISE | TONE(5, 5), NOISE | TONE(5, 7), NOISE | TONE(6, 9),
    NOISE | TONE(6, 12), 0,
};
const uint16_t kSoundHurt[] = {
    TONE(300, 0), TONE(340, 0), TONE(300, 1), TONE(400, 1), TONE(350, 2), TONE(480, 3), TONE(420, 4),
    TONE(600, 5), TONE(700, 8), TONE(800, 11), 0,
};
const uint16_t kSoundFlare[] = {
    TONE(400, 2), TONE(330, 1), TONE(270, 0), TONE(220, 0), TONE(180, 0), TONE(150, 0), TONE(120, 1),
    TONE(100, 2), TONE(80, 3), TONE(66, 5), TONE(54, 7), TONE(45, 10), 0,
};
