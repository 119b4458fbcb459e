#include "host/host_data.h"
