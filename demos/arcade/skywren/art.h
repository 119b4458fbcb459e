// Tiles of the upper chip and the drawings they come from.
#pragma once

#include "types.h"

// Background tiles, from 0.
#define TILE_BLANK      0
#define TILE_FONT       1  // 40 glyphs
#define TILE_LIFE       41 // a small bird
#define TILE_GRASS      42 // two kinds
#define TILE_ROCK       44 // two kinds
#define TILE_SLOPE_UP   46
#define TILE_SLOPE_DOWN 47
#define TILE_LOGO       48 // seven letters of four tiles

// Sprite tiles, counted from 0x2000: four each unless said.
#define SPRITE_BASE    256
#define SPRITE_WREN    0  // two frames
#define SPRITE_KITE    8  // two frames
#define SPRITE_CROW    16 // two frames
#define SPRITE_BALLOON 24
#define SPRITE_BLAST   28 // three frames
#define SPRITE_SHOT    40 // two, eight dots wide
#define SPRITE_BULLET  42 // two, eight dots wide

// The lower chip's first tiles are its sprites.
#define LOWER_GULL 0 // two frames
#define LOWER_FREE 2

// Drawings in the ROM bank at 0x8000, a character a dot.
extern const char wrenText[]; // 16 x 16 and 16 rows more for the second frame; so are those below
extern const char kiteText[];
extern const char crowText[];
extern const char balloonText[]; // 16 x 16
extern const char blastText[];   // 16 x 48
extern const char shotsText[];   // two of 8 x 16
extern const char groundText[];  // seven tiles in a row
extern const char gullText[];    // two tiles in a row
extern const char cloudText[];   // 32 x 16

// All tiles of the upper chip, the gulls of the lower one, and the colours of the upper one.
void ArtLoad(void);
