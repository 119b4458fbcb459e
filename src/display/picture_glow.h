// The light that a picture's bright parts spread over their surroundings, for the CRT filter: a blurred copy of the
// picture, coarse, as the eye sees no more of it.
//
// Units: a cell is kGlowCell dots each way. Its word is 0xFFRRGGBB of linear light, not of sRGB; 255 is white.
// Any thread.
#pragma once

#include <cstdint>
#include <vector>

inline constexpr uint32_t kGlowCell = 8; // dots

struct PICTURE_GLOW {
    uint32_t width = 0; // in cells; those at the right and below may reach over the picture
    uint32_t height = 0;
    std::vector<uint32_t> cells;
};

// The cells' mean light, each mixed with its neighbours by the weights 1 4 6 4 1 in both directions.
[[nodiscard]] PICTURE_GLOW GlowOfPicture(const uint32_t* pixels, uint32_t width, uint32_t height);
