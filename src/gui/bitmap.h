// GUI_BITMAP: an image of the theme. It has a size in units and, for dense screens, more pixels than
// units.
//
// Owner: whoever loaded it; the store keeps the theme's until the program ends.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

struct GUI_BITMAP {
    int32_t width = 0; // in units
    int32_t height = 0;
    double density = 1.0; // pixels to a unit
    int32_t pixelWidth = 0;
    int32_t pixelHeight = 0;
    std::vector<uint32_t> pixels; // ARGB, rows of pixelWidth
};

// Decodes a PNG into ARGB pixels. False, and both sizes 0, for anything else.
[[nodiscard]] bool LoadEmbeddedImage(std::span<const uint8_t> png, std::vector<uint32_t>& pixels,
                                     uint32_t& width, uint32_t& height);
