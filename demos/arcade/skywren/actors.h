// The bird, its shots, its enemies and theirs.
#pragma once

#include "types.h"

#define FIRST_LIVES 3

extern u8 lives;
extern u16 score; // in tens
extern u8 night;  // how often the scene has changed; enemies grow bolder with it

// What ActorsStep answers.
#define ACTORS_PLAYING 0
#define ACTORS_LOST    1 // the bird has fallen and the burst is over

// A new life: the sky is empty again.
void ActorsBegin(void);
// One frame with the controls (CONTROL_ bits).
u8 ActorsStep(u8 controls);
// The controls of a player who shows the game.
u8 ActorsThink(void);
void ActorsDraw(void);
