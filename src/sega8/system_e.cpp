#include "sega8/system_e.h"
