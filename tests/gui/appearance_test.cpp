// What a painted window looks like: bitmaps at densities that do not divide, the ring of the focus.
#include "gui/bitmap.h"
#include "gui/control.h"
#include "gui/surface.h"
#include "gui/theme.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr uint32_t kFace = 0xFF102030;
constexpr uint32_t kEdge = 0xFFFF0000;

uint32_t PixelAt(CGhostSurface& surface, int32_t x, int32_t y) {
    return surface.Pixels()[y * surface.Stride() + x];
}

} // namespace

// 25 units at density 1.5 are 37.5 pixels: 38 in the bitmap, and 37 or 38 on the screen, depending on the
// place.
TEST(Surface, BitmapKeepsItsLastRowAndColumnWhereverItIs) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.height = 25;
    bitmap.density = 1.5;
    bitmap.pixelWidth = bitmap.pixelHeight = 38;
    for (int32_t y = 0; y < 38; ++y) {
        for (int32_t x = 0; x < 38; ++x) {
            bitmap.pixels.push_back(x == 37 || y == 37 ? kEdge : kFace);
        }
    }
    for (const int32_t place : {0, 1, 15, 75}) {
        CGhostSurface surface;
        ASSERT_TRUE(surface.Create({place, place, 25, 25}, 1.5));
        surface.Blit(bitmap, {0, 0, 25, 25}, 0, 0);
        const auto red = [&](int32_t x, int32_t y) { return PixelAt(surface, x, y) >> 16 & 0xFF; };
        EXPECT_GT(red(4, surface.PixelHeight() - 1), 0xF0u) << place;
        EXPECT_GT(red(surface.PixelWidth() - 1, 4), 0xF0u) << place;
        EXPECT_EQ(PixelAt(surface, 0, 0), kFace) << place;
    }
}

// A line of one pixel across a bitmap that loses a pixel on its way is still there, if only in part: no
// row is left out.
TEST(Surface, BitmapLosesNoLineWhereItIsAPixelSmaller) {
    for (int32_t line = 0; line < 38; ++line) {
        GUI_BITMAP bitmap;
        bitmap.width = bitmap.height = 25;
        bitmap.density = 1.5;
        bitmap.pixelWidth = bitmap.pixelHeight = 38;
        for (int32_t i = 0; i < 38 * 38; ++i) {
            bitmap.pixels.push_back(i / 38 == line ? kEdge : kFace);
        }
        CGhostSurface surface;
        ASSERT_TRUE(surface.Create({75, 75, 25, 25}, 1.5));
        ASSERT_EQ(surface.PixelHeight(), 37);
        surface.Blit(bitmap, {0, 0, 25, 25}, 0, 0);
        uint32_t brightest = 0;
        for (int32_t y = 0; y < 37; ++y) {
            brightest = std::max(brightest, PixelAt(surface, 5, y) >> 16 & 0xFF);
        }
        EXPECT_GT(brightest, 0x70u) << line;
    }
}

// A bitmap of the screen's own density is copied pixel by pixel.
TEST(Surface, BitmapIsCopiedAsItIsAtWholeDensities) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.height = 4;
    bitmap.density = 2.0;
    bitmap.pixelWidth = bitmap.pixelHeight = 8;
    for (uint32_t i = 0; i < 64; ++i) {
        bitmap.pixels.push_back(0xFF000000 | i * 0x030201);
    }
    CGhostSurface surface;
    ASSERT_TRUE(surface.Create({3, 3, 4, 4}, 2.0));
    surface.Blit(bitmap, {0, 0, 4, 4}, 0, 0);
    for (int32_t i = 0; i < 64; ++i) {
        EXPECT_EQ(PixelAt(surface, i % 8, i / 8), bitmap.pixels[static_cast<size_t>(i)]) << i;
    }
}

TEST(FocusRing, IsRoundTwoUnitsThickAndHasALineWithin) {
    CGhostTheme::Get().ParseTheme(
        "<?xml version=\"1.0\"?><theme><textbox name=\"FOCUS\">"
        "<color name=\"text\" val=\"FFFFB347\"/>"
        "<color name=\"textoutline\" val=\"FF0B0E1F\"/></textbox></theme>");
    for (const int32_t density : {1, 2, 3}) {
        CGhostSurface surface;
        ASSERT_TRUE(surface.Create({0, 0, 40, 20}, density));
        PaintFocusRing(surface, {0, 0, 40, 20});
        const int32_t middle = 20 * density;
        const int32_t down = surface.PixelHeight() - 1;
        for (int32_t y = 0; y < 2 * density; ++y) {
            EXPECT_EQ(PixelAt(surface, middle, y), 0xFFFFB347) << density << " " << y;
            EXPECT_EQ(PixelAt(surface, middle, down - y), 0xFFFFB347) << density << " " << y;
        }
        EXPECT_EQ(PixelAt(surface, middle, 2 * density), 0xFF0B0E1F) << density;
        EXPECT_EQ(PixelAt(surface, middle, 3 * density), 0u) << density;
        // The corners are cut, and all alike.
        const int32_t in = 19 * density / 10; // 1.9 units, where the diagonal crosses the ring
        const uint32_t corner = PixelAt(surface, in, in);
        EXPECT_EQ(PixelAt(surface, 0, 0) >> 24, 0u) << density;
        EXPECT_EQ(PixelAt(surface, 40 * density - 1 - in, down - in), corner) << density;
        EXPECT_GT(corner >> 24, 0x80u) << density;
    }
    CGhostTheme::Get().ParseTheme("");
}
