// Pictures as PNG files held wholly in memory, over a PNG library.
//
// Pixels are 0xFFRRGGBB, rows from the top, without gaps. Any thread. Any bytes end in a result.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

struct PNG_PICTURE {
    uint32_t width = 0; // in pixels
    uint32_t height = 0;
    std::vector<uint32_t> pixels; // width x height
};

// A PNG of 24 bits a pixel; the same picture makes the same bytes. Empty for a picture without pixels.
[[nodiscard]] std::vector<uint8_t> EncodePng(const PNG_PICTURE& picture);

// A text beside the picture: UTF-8 under a keyword of 1 to 79 letters, such as "Title".
struct PNG_TEXT {
    std::string keyword;
    std::string text;
};

// The same with texts in front of the pixels: a tEXt chunk for ASCII, an iTXt chunk for any other. Empty also for a
// keyword that PNG does not allow.
[[nodiscard]] std::vector<uint8_t> EncodePng(const PNG_PICTURE& picture,
                                             const std::vector<PNG_TEXT>& texts);

// False, with the picture empty, for bytes that are no whole PNG, and for one with a side over
// `longestSide`, which is refused before its pixels are allocated. What is transparent is drawn over black.
[[nodiscard]] bool DecodePng(std::span<const uint8_t> file, uint32_t longestSide,
                             PNG_PICTURE& picture);
