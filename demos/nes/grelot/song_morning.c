#include "common/sound.h"

#pragma rodata-name("BANK0")

#include "morning.inc"
