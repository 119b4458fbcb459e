#include "room/image_decoder.h"

#include <climits>
#include <memory>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#include <stb/stb_image.h>

ROOM_IMAGE DecodeRoomImage(std::span<const uint8_t> file) {
    constexpr int kLongest = kLongestImageSide;
    if (file.empty() || file.size() > INT_MAX) {
        return {};
    }
    const int size = static_cast<int>(file.size());
    int width = 0;
    int height = 0;
    int channels = 0;
    if (stbi_info_from_memory(file.data(), size, &width, &height, &channels) == 0 || width <= 0 ||
        height <= 0 || width > kLongest || height > kLongest) {
        return {};
    }
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> decoded(
        stbi_load_from_memory(file.data(), size, &width, &height, &channels, 4), stbi_image_free);
    if (decoded == nullptr) {
        return {};
    }
    ROOM_IMAGE image{static_cast<uint32_t>(width), static_cast<uint32_t>(height), {}};
    image.pixels.resize(size_t{image.width} * image.height);
    const stbi_uc* rgba = decoded.get();
    for (uint32_t& pixel : image.pixels) {
        pixel =
            uint32_t{rgba[3]} << 24 | uint32_t{rgba[0]} << 16 | uint32_t{rgba[1]} << 8 | rgba[2];
        rgba += 4;
    }
    return image;
}
