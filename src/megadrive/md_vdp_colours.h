// The Mega Drive's 512 colours as pixels: plain, in shadow and highlighted.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr size_t kMdVdpColours = 512;

// Three tables of 512 pixels, 0xFFRRGGBB: shadow, normal, highlight. The index is red in bits 6 to 8,
// green in 3 to 5, blue in 0 to 2.
[[nodiscard]] std::array<uint32_t, 3 * kMdVdpColours> MdVdpBuildColourTables();
