// The scalers that ScalePicture calls, and what they share. Sizes are not zero here.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

constexpr uint32_t kOpaque = 0xFF000000;

struct SourcePicture {
    const uint32_t* pixels;
    uint32_t width;
    uint32_t height;
};

// The coordinate inside the picture for a `position` that may lie outside: the nearest one.
inline uint32_t ClampedCoordinate(int64_t position, uint32_t size) {
    return static_cast<uint32_t>(std::clamp<int64_t>(position, 0, int64_t{size} - 1));
}

// The arithmetic for any processor, and for vectors of 32 bytes, which the processor must then have.
// The results are the same.
enum class VectorForm : uint8_t { kPlain, kWide };
[[nodiscard]] bool HasWideVectors();

void ScaleEdge2x(const SourcePicture& source, uint32_t* target, VectorForm form);
void ScaleEdge4x(const SourcePicture& source, uint32_t* target, VectorForm form);
void ScaleSoft4x(const SourcePicture& source, uint32_t* target, VectorForm form);
