// Which keys play a machine, and which lead through the program, for people to read: as they are bound now.
//
// Thread: main.
#pragma once

#include "screens/key_line.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// "Right Shift": as written on the key. Empty for an action without a key.
[[nodiscard]] std::wstring KeyOfAction(std::wstring_view action);

// The four directions: one word for the arrow keys, else the four keys. Those without a key are left out.
[[nodiscard]] std::vector<std::wstring> DirectionKeys(const std::wstring_view (&actions)[4]);

// Directions and buttons of a machine's first player; buttons without a key are left out.
[[nodiscard]] std::vector<KEY_WORDS> PlayKeys(uint16_t system);
