#include "host/machine_list.h"
