// The machines that are built into the program: constructs the machine of each row of
// `facts/machine_facts.h`.
#pragma once

#include "host/machine_list.h"

[[nodiscard]] const MACHINE_LIST& BuiltInMachines();
