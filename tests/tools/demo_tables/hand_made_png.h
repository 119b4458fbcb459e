// PNG files made by hand, byte by byte, so that the numbers of their colours are known.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A picture with a palette of `colours` entries, which are all the same black: only numbers tell them
// apart. Each row is a text with a digit or a letter from a to z (10 to 35) for each pixel.
[[nodiscard]] std::vector<uint8_t> HandMadePng(const std::vector<std::string>& rows,
                                               unsigned colours = 64);
// One without a palette, all black.
[[nodiscard]] std::vector<uint8_t> PngWithoutPalette(unsigned width, unsigned height);
