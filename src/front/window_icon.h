// The window's icon: the moon and its shadow.
#pragma once

#include <cstdint>
#include <vector>

inline constexpr int kWindowIconSize = 64; // pixels a side

// 0xAARRGGBB, rows from the top.
[[nodiscard]] std::vector<uint32_t> WindowIcon();
