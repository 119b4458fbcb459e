#include "audio/sound.h"
