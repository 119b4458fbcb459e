#include "common/sound.h"

#pragma rodata-name("BANK1")

#include "noon.inc"
