// The window's picture in task bars: a television whose screen is in the shade, hence the name.
#pragma once

#include <cstdint>
#include <vector>

inline constexpr int kWindowIconSize = 32; // pixels a side

// 0xAARRGGBB, rows from the top.
[[nodiscard]] std::vector<uint32_t> WindowIcon();
