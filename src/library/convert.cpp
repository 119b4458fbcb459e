#include "library/convert.h"
