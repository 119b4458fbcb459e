// A small generator of pseudo-random bytes: the same seed gives the same sequence on every console.
#pragma once

#include "types.h"

void RandomSeed(u16 seed);
u8 Random(void);
