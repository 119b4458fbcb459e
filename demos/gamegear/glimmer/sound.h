// Music on the first two channels, effects on the third and the noise, each heard from its side.
#pragma once

#include "types.h"

#define MUSIC_NONE  0
#define MUSIC_TITLE 1
#define MUSIC_MATCH 2
#define MUSIC_END   3

#define EFFECT_HIT    0
#define EFFECT_STRIKE 1
#define EFFECT_EDGE   2
#define EFFECT_POINT  3
#define EFFECT_CHOOSE 4

void SoundMusic(u8 music);
// `x` is the place on the screen in dots that the sound comes from.
void SoundEffect(u8 effect, u8 x);
// Once a frame.
void SoundStep(void);
