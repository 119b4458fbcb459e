// Music and drums on the first sound chip, effects on the second.
#pragma once

#include "types.h"

#define MUSIC_NONE  0
#define MUSIC_TITLE 1
#define MUSIC_PLAY  2
#define MUSIC_OVER  3

#define EFFECT_SHOT  0
#define EFFECT_BLAST 1
#define EFFECT_CRASH 2
#define EFFECT_COIN  3
#define EFFECT_LIFE  4

void SoundMusic(u8 music);
void SoundEffect(u8 effect);
// Once a frame.
void SoundStep(void);
