// Decodes the images of the room's furniture: JPEG and PNG.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

struct ROOM_IMAGE {
    uint32_t width = 0; // 0 without an image
    uint32_t height = 0;
    std::vector<uint32_t> pixels; // blue lowest, green, red, alpha; top row first
};

// The longest side of an image that is decoded.
inline constexpr uint32_t kLongestImageSide = 4096;

// An empty image if the bytes are damaged, of another format, or too large. Any thread.
[[nodiscard]] ROOM_IMAGE DecodeRoomImage(std::span<const uint8_t> file);
