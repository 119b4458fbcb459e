// A PNG with a palette, as colour numbers. The colours themselves are only for editing the file: the demos set
// their own as they run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

constexpr unsigned kCell = 8; // pixels

struct INDEXED_PICTURE {
    std::filesystem::path file;
    unsigned width = 0; // pixels
    unsigned height = 0;
    std::vector<uint8_t> pixels;

    [[nodiscard]] uint8_t At(unsigned x, unsigned y) const { return pixels[size_t{y} * width + x]; }
};

// Refuses files without a palette and sizes that aren't whole cells. `error` names the file.
[[nodiscard]] bool LoadIndexedPicture(const std::filesystem::path& file, INDEXED_PICTURE& picture,
                                      std::string& error);

// Refuses a pixel whose colour isn't below `colours`. `error` names the file and the pixel.
[[nodiscard]] bool CheckColours(const INDEXED_PICTURE& picture, unsigned colours,
                                std::string& error);

// "FILE: pixel X, Y: MESSAGE"
[[nodiscard]] std::string PixelFault(const INDEXED_PICTURE& picture, unsigned x, unsigned y,
                                     const std::string& message);
