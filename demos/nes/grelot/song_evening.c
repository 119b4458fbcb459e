#include "common/sound.h"

#pragma rodata-name("BANK2")

#include "evening.inc"
