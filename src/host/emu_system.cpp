#include "host/emu_system.h"
