#include "library/game_file.h"
