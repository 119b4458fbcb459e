#include "host/machine_list.h"

#include "machine/emu_system.h"

#include <algorithm>

namespace {

MACHINE_LIST gMachines;

} // namespace

void EmuSetMachines(const MACHINE_LIST& list) {
    gMachines = list;
}

const MACHINE_LIST& EmuMachines() {
    return gMachines;
}

const MACHINE_ENTRY* EmuFindMachine(uint32_t system) {
    const auto found =
        std::find_if(gMachines.machines.begin(), gMachines.machines.end(),
                     [=](const MACHINE_ENTRY& entry) { return entry.system == system; });
    return found == gMachines.machines.end() ? nullptr : &*found;
}
