#include "gui/bitmap.h"

#include <climits>
#include <memory>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#include <stb/stb_image.h>

namespace {

// Whether the chunks' lengths stay within the file: the decoder asks for as much memory as they promise before it
// reads them.
bool HasWholeChunks(std::span<const uint8_t> png) {
    constexpr size_t kSignature = 8;
    constexpr size_t kAroundData = 12; // length, type and checksum
    if (png.size() < kSignature) {
        return false;
    }
    for (std::span<const uint8_t> rest = png.subspan(kSignature); rest.size() >= kAroundData;) {
        const size_t length =
            size_t{rest[0]} << 24 | size_t{rest[1]} << 16 | size_t{rest[2]} << 8 | rest[3];
        if (length > rest.size() - kAroundData) {
            return false;
        }
        rest = rest.subspan(length + kAroundData);
    }
    return true;
}

} // namespace

bool LoadEmbeddedImage(std::span<const uint8_t> png, std::vector<uint32_t>& pixels, uint32_t& width,
                       uint32_t& height) {
    constexpr int kMostPixels = 1 << 24; // more than any screen, and no more memory than that takes
    pixels.clear();
    width = height = 0;
    if (png.size() > INT_MAX || !HasWholeChunks(png)) {
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
