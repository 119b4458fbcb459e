// The list of machines that can be constructed. The host knows machines only through this list, which
// the program (or a test) installs once before the first session.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

class CEmuSystem;

struct MACHINE_ENTRY {
    uint32_t system; // system number: 1 Master System, 2 Game Gear, 4 Mega Drive, 5 NES, 6 arcade
    const char* folder; // of its games and saves, in the program's path notation; may be empty
    std::unique_ptr<CEmuSystem> (*construct)(uint32_t sessionKey);
};

struct MACHINE_LIST {
    std::span<const MACHINE_ENTRY> machines;
    void (*buildTables)(); // builds what chips share; called by every EmuSetHost; may be null
};

// The list must outlive every session.
void EmuSetMachines(const MACHINE_LIST& list);
[[nodiscard]] const MACHINE_LIST& EmuMachines();

// Null for an unknown number.
[[nodiscard]] const MACHINE_ENTRY* EmuFindMachine(uint32_t system);
