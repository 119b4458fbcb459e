// Our own games as entries of the library's databases, so that their images are known like any others.
#pragma once

#include "formats/game_file.h"
#include "front/demos.h"

#include <cstdint>
#include <vector>

inline constexpr uint16_t kDemoYear = 2026;

// The machine record with which a demo is played, and which its database entry has.
[[nodiscard]] MACHINE_RECORD DemoMachineRecord(uint16_t system);

// One entry a demo of the system; given to the library with SetBuiltInDatabase.
[[nodiscard]] std::vector<CGameFile> DemoDatabase(uint16_t system);
