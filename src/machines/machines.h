// The machines that are built into the program: what constructs each of the rows of
// `facts/machine_facts.h`.
#pragma once

#include "host/machine_list.h"

[[nodiscard]] const MACHINE_LIST& BuiltInMachines();
