// Tiles of the game and where they lie.
#pragma once

#include "types.h"

#define TILE_BLANK      0
#define TILE_FONT       1  // 40 glyphs
#define TILE_LAMP_OFF   41 // a score lamp, dark and lit: left keeper, right keeper
#define TILE_LAMP_LEFT  42
#define TILE_LAMP_RIGHT 43
#define TILE_STAR       44 // bright, dim, small
#define TILE_MOON       48 // four by four
#define TILE_WAVE       64 // four kinds
#define TILE_LEFT       72 // the left keeper's lantern: three rows, then lit by a stroke
#define TILE_RIGHT      78
#define TILE_FIREFLY    84 // two frames, then three sparks
#define TILE_SPARK      86
#define TILE_BURST      89  // three frames
#define TILE_MARK       92  // the arrow under one's own lantern
#define TILE_LOGO       96  // seven letters of four tiles
#define TILE_RIDGE      128 // the mountains, SCREEN_COLUMNS wide and RIDGE_ROWS high

#define RIDGE_ROWS    6
#define RIDGE_TOP_ROW 9

// Colours of the background.
#define COLOUR_SKY       0
#define COLOUR_FAR       1
#define COLOUR_NEAR      2
#define COLOUR_SNOW      3
#define COLOUR_WAVE      4
#define COLOUR_STAR      5
#define COLOUR_DIM_STAR  6
#define COLOUR_MOON      7
#define COLOUR_CRATER    8
#define COLOUR_TEXT      9
#define COLOUR_FAR_SHADE 10
#define COLOUR_GOLD      11 // to 13, light to deep
#define COLOUR_LAMP_BLUE 14
#define COLOUR_FRAME     15

// Writes every tile. The display must be off.
void ArtLoad(void);
