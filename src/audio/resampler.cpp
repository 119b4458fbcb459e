#include "audio/resampler.h"
