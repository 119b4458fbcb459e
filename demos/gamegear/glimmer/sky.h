// The evening: a gradient over 144 lines in twelve-bit colours, and the landscape's colours with it.
//
// The line interrupt takes one entry of `skyTable` every three lines. Moods fade into each other.
#pragma once

#include "types.h"

#define SKY_MOODS 4

// At once, with the display off or in the blank time.
void SkySet(u8 mood);
// Fades there over some seconds.
void SkyFadeTo(u8 mood);
// Once a frame in the blank time: sends what the last step made.
void SkySend(void);
// Once a frame, outside the blank time if need be.
void SkyStep(void);
