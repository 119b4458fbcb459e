#include "library/packing.h"
