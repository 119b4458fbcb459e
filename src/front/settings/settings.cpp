#include "front/settings/settings.h"
