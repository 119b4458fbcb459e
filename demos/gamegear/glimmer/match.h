// One match: two keepers send a firefly back and forth across the lake; who misses it loses a point.
//
// It depends on nothing but the two pads and its seed, so two consoles that step it with the same pads
// stay in the same state.
#pragma once

#include "types.h"

#define MATCH_RUNNING   0
#define MATCH_LEFT_WON  1
#define MATCH_RIGHT_WON 2
#define POINTS_TO_WIN   5

void MatchBegin(u16 seed);
// One frame with both pads (PAD_ bits).
u8 MatchStep(u8 left, u8 right);
// The pad of a keeper played by the console; `level` 0 to 2.
u8 MatchThinkLeft(u8 level);
u8 MatchThinkRight(u8 level);
// Points of both together.
u8 MatchPoints(void);
// Adds the sprites. `own` marks one side: 0 none, 1 left, 2 right.
void MatchDraw(u8 own);
// Puts the lamps of the score where they changed; in the blank time.
void MatchDrawScore(void);
