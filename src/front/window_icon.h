// The window's icon: a television with a shaded screen, like the program's name.
#pragma once

#include <cstdint>
#include <vector>

inline constexpr int kWindowIconSize = 32; // pixels a side

// 0xAARRGGBB, rows from the top.
[[nodiscard]] std::vector<uint32_t> WindowIcon();
