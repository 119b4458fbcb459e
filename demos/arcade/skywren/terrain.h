// The ground of the play: rock with grass on it, made column by column as it comes into view.
#pragma once

#include "types.h"

// How far the play has scrolled, in dots.
extern u16 distance;

// Begins a new course; flat for the first screen.
void TerrainBegin(void);
// Scrolls by some dots, 0 to 7, and draws what comes into view in the picture being made.
void TerrainScroll(u8 dots);
// The line of the ground at a place of the screen.
u8 GroundAt(u8 x);
