#include "audio/band_splitter.h"
