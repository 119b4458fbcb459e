#include "front/settings/bindings.h"
