#include "sega8/game_gear.h"
