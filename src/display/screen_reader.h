// The pixels of the back buffer, for pictures of the whole window.
#pragma once

#include <cstdint>
#include <vector>

// Reads what has been drawn since the last swap: rows from the top down, 0xFFRRGGBB. Empty for a size
// of 0.
[[nodiscard]] std::vector<uint32_t> ReadScreen(uint32_t width, uint32_t height);
