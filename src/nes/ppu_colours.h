// The colours of the picture unit, from a model of the composite signal that it makes.
//
// A colour number is six bits: hue in the low four, luminance in the upper two. The emphasis bits (red,
// green, blue from the lowest) stand above it. The chip switches between two levels in twelve half
// clocks to a cycle of the colour carrier; hue is which six of them are high. Levels, decoder matrix
// and gains are this model's own, kept on purpose; the phases of hues and emphasis bits are published
// (NTSC video).
#pragma once

#include "nes/ppu.h"

#include <array>
#include <cstdint>

// Pixels, 0xAARRGGBB with alpha 255, by colour number plus emphasis x 64.
[[nodiscard]] std::array<uint32_t, kPpuColours> PpuBuildColourTable();
