#include "gui/bitmap.h"

#include <climits>
#include <memory>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#include <stb/stb_image.h>

bool LoadEmbeddedImage(std::span<const uint8_t> png, std::vector<uint32_t>& pixels, uint32_t& width,
                       uint32_t& height) {
    constexpr int kMostPixels = 1 << 24; // more than any screen, and no more memory than that takes
    pixels.clear();
    width = height = 0;
    if (png.size() > INT_MAX) {
        return false;
    }
    const int size = static_cast<int>(png.size());
    int columns = 0;
    int rows = 0;
    int channels = 0;
    if (stbi_info_from_memory(png.data(), size, &columns, &rows, &channels) == 0 || columns <= 0 ||
        rows <= 0 || columns > kMostPixels / rows) {
        return false;
    }
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> decoded(
        stbi_load_from_memory(png.data(), size, &columns, &rows, &channels, 4), stbi_image_free);
    if (decoded == nullptr) {
        return false;
    }
    width = static_cast<uint32_t>(columns);
    height = static_cast<uint32_t>(rows);
    pixels.resize(size_t{width} * height);
    for (size_t i = 0; i < pixels.size(); ++i) {
        const stbi_uc* const rgba = decoded.get() + i * 4;
        pixels[i] =
            uint32_t{rgba[3]} << 24 | uint32_t{rgba[0]} << 16 | uint32_t{rgba[1]} << 8 | rgba[2];
    }
    return true;
}
