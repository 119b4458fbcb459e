// The landscape behind everything: stars, moon, mountains, lake.
#pragma once

#include "types.h"

// Fills the picture; the display must be off.
void SceneryDraw(u8 withMoon);
