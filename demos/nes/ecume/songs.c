// A barcarolle for the title and a livelier one for the sea, both of our own.
#include "common/sound.h"

#include "dusk.inc"
#include "sea.inc"
