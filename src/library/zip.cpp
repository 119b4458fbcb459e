#include "library/zip.h"
