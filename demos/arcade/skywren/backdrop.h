// The landscape on the lower chip: a scene in each of its banks, moving in bands.
#pragma once

#include "types.h"

#define SCENE_DUSK  0
#define SCENE_NIGHT 1

// Draws both scenes; with the displays off.
void BackdropBuild(void);
// At once.
void BackdropShow(u8 scene);
// Dims, changes and brightens again over half a second.
void BackdropChange(u8 scene);
// Once a frame in the blank time; `distance` is how far the play has scrolled, in dots.
void BackdropStep(u16 distance);
