#include "host/session.h"
