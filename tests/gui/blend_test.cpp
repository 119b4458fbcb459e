// Blending and mixing have quick ways for what is common; here they meet the rules that they stand for, written plainly.
#include "gui/bitmap.h"
#include "gui/blend.h"
#include "gui/surface.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

namespace {

uint32_t PlainBlend(uint32_t destination, uint32_t source) {
    const uint32_t sourceAlpha = source >> 24;
    const uint32_t destinationAlpha = destination >> 24;
    if (destinationAlpha == 0) {
        return source;
    }
    if (sourceAlpha == 0) {
        return destination;
    }
    const uint32_t alpha = (255 - sourceAlpha) * destinationAlpha / 255 + sourceAlpha;
    const uint32_t weight = sourceAlpha * 255 / alpha;
    uint32_t blended = alpha << 24;
    for (const uint32_t shift : {0u, 8u, 16u}) {
        const uint32_t from = source >> shift & 0xFF;
        const uint32_t over = destination >> shift & 0xFF;
        blended |= (from * weight + over * (255 - weight)) >> 8 << shift;
    }
    return blended;
}

// Colours of any alpha, with as many clear and opaque ones.
std::vector<uint32_t> RandomColours(size_t count) {
    std::mt19937 random(20);
    std::vector<uint32_t> colours(count);
    for (uint32_t& colour : colours) {
        const auto drawn = static_cast<uint32_t>(random());
        const uint32_t kind = static_cast<uint32_t>(random()) % 3;
        colour = kind == 0 ? drawn : kind == 1 ? drawn & 0x00FFFFFF : drawn | 0xFF000000;
    }
    return colours;
}

} // namespace

TEST(Blend, IsTheRuleForAnyTwoColours) {
    const std::vector<uint32_t> colours = RandomColours(1500);
    size_t wrong = 0;
    for (const uint32_t below : colours) {
        for (const uint32_t above : colours) {
            wrong += BlendPixel(below, above) != PlainBlend(below, above) ? 1u : 0u;
        }
    }
    EXPECT_EQ(wrong, 0u);
}

TEST(Blend, ARunIsTheRuleForEachOfItsPixels) {
    const std::vector<uint32_t> colours = RandomColours(600);
    for (const uint32_t above : colours) {
        std::vector<uint32_t> row = colours;
        BlendRun(row.data(), static_cast<int32_t>(row.size()), above);
        for (size_t i = 0; i < row.size(); ++i) {
            ASSERT_EQ(row[i], PlainBlend(colours[i], above)) << std::hex << above << " " << i;
        }
    }
}

// An opaque bitmap of 2 by 2 pixels on 3 by 3: the middle one is the mean of all four, those at the sides of two.
TEST(Blend, StretchedPixelsAreTheMeanOfTheirNeighbours) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.height = bitmap.pixelWidth = bitmap.pixelHeight = 2;
    bitmap.pixels = {0xFF102030, 0xFF3040F0, 0xFF905000, 0xFFB070FF};
    CGhostSurface surface;
    ASSERT_TRUE(surface.Create({0, 0, 2, 2}, 1.5));
    surface.BlitScaled(bitmap, {0, 0, 2, 2});
    ASSERT_EQ(surface.PixelWidth(), 3);
    // The means of the bytes: of 10 and 30, of 10, 30, 90 and B0, and so on; halves go up.
    constexpr std::array<uint32_t, 9> kExpected = {0xFF102030, 0xFF203090, 0xFF3040F0,
                                                   0xFF503818, 0xFF604888, 0xFF7058F8,
                                                   0xFF905000, 0xFFA06080, 0xFFB070FF};
    for (size_t i = 0; i < kExpected.size(); ++i) {
        EXPECT_EQ(surface.Pixels()[i], kExpected[i]) << i;
    }
}

// Mixed pixels of a bitmap that is clear in one corner take the colour of the others, and a part of their alpha.
TEST(Blend, AClearNeighbourAddsNoColour) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.height = bitmap.pixelWidth = bitmap.pixelHeight = 2;
    bitmap.pixels = {0x00FF00FF, 0xFF304050, 0xFF304050, 0xFF304050};
    CGhostSurface surface;
    ASSERT_TRUE(surface.Create({0, 0, 2, 2}, 1.5));
    surface.BlitScaled(bitmap, {0, 0, 2, 2});
    EXPECT_EQ(surface.Pixels()[4], 0xBF304050u); // three quarters of 255
    EXPECT_EQ(surface.Pixels()[1], 0x80304050u); // a half, upwards
}
