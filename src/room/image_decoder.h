// Decodes the images of the room's furniture: JPEG and PNG.
#pragma once

#include <cstddef>
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

// The most scans of a JPEG file; programs that make them write 10 to 15. Each is decoded over the whole image, so a
// small file with thousands would take minutes.
inline constexpr size_t kMostJpegScans = 64;

// The sides that the file's header states; false if it is no image that would be decoded. Any thread.
[[nodiscard]] bool RoomImageSize(std::span<const uint8_t> file, uint32_t& width, uint32_t& height);

// An empty image if the bytes are damaged, of another format, or too large. Any thread.
[[nodiscard]] ROOM_IMAGE DecodeRoomImage(std::span<const uint8_t> file);
