#include "library/sha256.h"
