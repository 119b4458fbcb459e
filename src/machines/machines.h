// The machines that are built into the program.
#pragma once

#include "host/machine_list.h"

[[nodiscard]] const MACHINE_LIST& BuiltInMachines();
