// Image data packed with the LZMA SDK: five property bytes, then a raw stream with no length and no
// need for an end marker.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

inline constexpr size_t kLzmaPropertyBytes = 5;

// Level 2, 4 MiB dictionary, lc 3, lp 0, pb 2, fb 32, one thread. Empty on failure.
[[nodiscard]] std::vector<uint8_t> PackImage(std::span<const uint8_t> image);

// Unpacks exactly `image.size()` bytes. False when the properties are none, the stream is damaged or
// it ends early; what came out until then stands in `image`, the rest is zero.
bool UnpackImage(std::span<const uint8_t> packed, std::span<uint8_t> image);
