// The PPU's colours, from a model of its composite signal.
//
// A colour number has six bits: hue in the low four, luminance in the upper two. The emphasis bits (red,
// green, blue from the lowest) are the three bits above it. The chip switches between two levels, with
// twelve half clocks in a cycle of the colour carrier; the hue selects which six of them are high.
// Sources: the phases of hues and emphasis bits are published (nesdev wiki, "NTSC video"); levels, decoder
// matrix and gains are settled here.
#pragma once

#include "nes/ppu.h"

#include <array>
#include <cstdint>

// Pixels, 0xAARRGGBB with alpha 255, by colour number plus emphasis x 64.
[[nodiscard]] std::array<uint32_t, kPpuColours> PpuBuildColourTable();
