// The music and the effects of the game.
#include "luciole/luciole.h"

#include "night.inc"
#include "title.inc"
#include "dawn.inc"
#include "lost.inc"

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
