#include "gui/ring.h"

#include "gui/surface.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

struct PIXEL_SIZE {
    int32_t width;
    int32_t height;
};

// Coverage of a corner pixel by the ring, 0 to 255; `radius` is the outer one. (x, y) from the corner,
// `pixels` across the radius.
uint8_t CornerCoverage(int32_t x, int32_t y, PIXEL_SIZE pixels, int32_t radius, int32_t thickness) {
    constexpr int32_t kSamples = 4; // each way
    int32_t inside = 0;
    for (int32_t i = 0; i < kSamples * kSamples; ++i) {
        const int32_t column = i % kSamples;
        const int32_t row = i / kSamples;
        const double right = (x + (column + 0.5) / kSamples) * radius / pixels.width;
        const double down = (y + (row + 0.5) / kSamples) * radius / pixels.height;
        const double distance = std::hypot(radius - right, radius - down);
        inside += distance <= radius && distance > radius - thickness ? 1 : 0;
    }
    return static_cast<uint8_t>(inside * 255 / (kSamples * kSamples));
}

// The coverage of the pixels of a corner of `radius` units, and where they are.
struct CORNER_MASK {
    int32_t left = 0;
    int32_t top = 0;
    PIXEL_SIZE pixels{0, 0};
    std::vector<uint8_t> coverage;
};

CORNER_MASK CornerMask(const CGhostSurface& surface, const GUI_RECT& corner, int32_t thickness,
                       bool atRight, bool atBottom) {
    CORNER_MASK mask;
    mask.left = surface.PixelX(corner.x);
    mask.top = surface.PixelY(corner.y);
    mask.pixels = {surface.PixelX(corner.Right()) - mask.left,
                   surface.PixelY(corner.Bottom()) - mask.top};
    const PIXEL_SIZE pixels = mask.pixels;
    for (int32_t y = 0; y < pixels.height; ++y) {
        for (int32_t x = 0; x < pixels.width; ++x) {
            mask.coverage.push_back(CornerCoverage(atRight ? pixels.width - 1 - x : x,
                                                   atBottom ? pixels.height - 1 - y : y, pixels,
                                                   corner.width, thickness));
        }
    }
    return mask;
}

// Calls `paint` with the mask of each corner of `radius` units.
template <typename Paint>
void ForCorners(const CGhostSurface& surface, const GUI_RECT& rect, int32_t radius,
                int32_t thickness, Paint paint) {
    for (const bool atRight : {false, true}) {
        for (const bool atBottom : {false, true}) {
            paint(CornerMask(surface,
                             {atRight ? rect.Right() - radius : rect.x,
                              atBottom ? rect.Bottom() - radius : rect.y, radius, radius},
                             thickness, atRight, atBottom));
        }
    }
}

} // namespace

void CutCorners(CGhostSurface& surface, const GUI_RECT& rect, int32_t corner) {
    const int32_t radius = std::min({corner, rect.width / 2, rect.height / 2});
    ForCorners(surface, rect, radius, radius, [&](const CORNER_MASK& mask) {
        surface.KeepMask(mask.left, mask.top, mask.coverage.data(), mask.pixels.width,
                         mask.pixels.height);
    });
}

void PaintRing(CGhostSurface& surface, const GUI_RECT& rect, int32_t thickness, int32_t corner,
               uint32_t colour) {
    const int32_t radius = std::min({corner, rect.width / 2, rect.height / 2});
    if (radius < thickness || colour == 0) {
        return;
    }
    const int32_t across = rect.width - 2 * radius;
    const int32_t down = rect.height - 2 * radius;
    surface.FillRect({rect.x + radius, rect.y, across, thickness}, colour);
    surface.FillRect({rect.x + radius, rect.Bottom() - thickness, across, thickness}, colour);
    surface.FillRect({rect.x, rect.y + radius, thickness, down}, colour);
    surface.FillRect({rect.Right() - thickness, rect.y + radius, thickness, down}, colour);
    ForCorners(surface, rect, radius, thickness, [&](const CORNER_MASK& mask) {
        surface.StampMask(mask.left, mask.top, mask.coverage.data(), mask.pixels.width,
                          mask.pixels.height, mask.pixels.width, colour);
    });
}
