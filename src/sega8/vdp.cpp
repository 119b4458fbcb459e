#include "sega8/vdp.h"
