// Every type of fill: pixel by pixel where a unit is a pixel, and without gaps where it is not.
#include "gui/bitmap.h"
#include "gui/styles.h"
#include "gui/surface.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace {

// A letter a pixel, far enough apart in blue to be known again after blending dims them.
constexpr uint32_t kLetterStep = 16;

GUI_BITMAP Letters(int32_t width, int32_t height) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.pixelWidth = width;
    bitmap.height = bitmap.pixelHeight = height;
    for (int32_t i = 0; i < width * height; ++i) {
        bitmap.pixels.push_back(0xFF000000 | static_cast<uint32_t>(i + 1) * kLetterStep);
    }
    return bitmap;
}

using Picture = std::vector<std::string>;

class FillsTest : public testing::Test {
protected:
    // What the fill paints into a target on a surface of 10 by 7.
    Picture Painted(GhostFill type, const GUI_RECT& target, GUI_EDGES margins = {}) {
        EXPECT_TRUE(surface.Create({0, 0, 10, 7}, 1.0));
        GhostTexture texture;
        texture.type = type;
        texture.colour1 = 0xFF000000 | kLetterStep;
        texture.rect = margins;
        texture.bitmap = &bitmap;
        PaintFill(surface, texture, target);
        return Rows();
    }
    Picture Rows() {
        Picture rows;
        for (int32_t y = 0; y < surface.PixelHeight(); ++y) {
            std::string row;
            for (int32_t x = 0; x < surface.PixelWidth(); ++x) {
                const uint32_t pixel = At(x, y);
                const uint32_t letter = ((pixel & 0xFF) + kLetterStep / 2) / kLetterStep;
                row += pixel == 0 ? '.' : static_cast<char>('a' + letter - 1);
            }
            rows.push_back(row);
        }
        return rows;
    }
    uint32_t At(int32_t x, int32_t y) { return surface.Pixels()[y * surface.Stride() + x]; }

    const GUI_BITMAP bitmap = Letters(4, 3); // abcd efgh ijkl
    CGhostSurface surface;
    const Picture nothing = Picture(7, "..........");
};

using Fills = FillsTest;

} // namespace

TEST_F(Fills, ColourFillsTheTargetAndNoMore) {
    EXPECT_EQ(Painted(GhostFill::kColour, {2, 1, 3, 2}),
              (Picture{"..........", "..aaa.....", "..aaa.....", "..........", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kColour, {-2, 5, 4, 9}),
              (Picture{"..........", "..........", "..........", "..........", "..........",
                       "aa........", "aa........"}))
        << "cut at the surface";
}

// A quarter of the way to the second colour in each of four lines; the first line is a step past the first.
TEST_F(Fills, GradientsEndAtTheSecondColour) {
    const std::array<uint32_t, 4> ramp = {0xFF201008, 0xFF402010, 0xFF603018, 0xFF804020};
    for (const bool across : {true, false}) {
        ASSERT_TRUE(surface.Create({0, 0, 10, 7}, 1.0));
        GhostTexture texture;
        texture.type = across ? GhostFill::kGradientHorizontal : GhostFill::kGradientVertical;
        texture.colour1 = 0xFF000000;
        texture.colour2 = 0xFF804020;
        PaintFill(surface, texture, {3, 2, 4, 4});
        for (int32_t i = 0; i < 16; ++i) {
            const int32_t x = i % 4;
            const int32_t y = i / 4;
            EXPECT_EQ(At(3 + x, 2 + y), ramp[static_cast<size_t>(across ? x : y)]) << x << y;
        }
        EXPECT_EQ(At(2, 3), 0u);
        EXPECT_EQ(At(7, 3), 0u);
        EXPECT_EQ(At(4, 1), 0u);
        EXPECT_EQ(At(4, 6), 0u);
    }
}

TEST_F(Fills, NothingIsPaintedWithoutATypeATargetOrABitmap) {
    EXPECT_EQ(Painted(GhostFill::kNone, {0, 0, 10, 7}), nothing);
    EXPECT_EQ(Painted(static_cast<GhostFill>(10), {0, 0, 10, 7}), nothing);
    EXPECT_EQ(Painted(static_cast<GhostFill>(13), {0, 0, 10, 7}), nothing);
    EXPECT_EQ(Painted(static_cast<GhostFill>(255), {0, 0, 10, 7}), nothing);
    for (const GhostFill type :
         {GhostFill::kColour, GhostFill::kGradientHorizontal, GhostFill::kGradientVertical,
          GhostFill::kBitmap, GhostFill::kBitmapFlipY, GhostFill::kBitmapFlipX,
          GhostFill::kBitmapSmartHorizontal, GhostFill::kBitmapSmartVertical,
          GhostFill::kBitmapStretch, GhostFill::kBitmapRepeatY, GhostFill::kBitmapRepeatXY}) {
        const int number = static_cast<int>(type);
        EXPECT_EQ(Painted(type, {2, 2, 0, 3}, {1, 1, 1, 1}), nothing) << number;
        EXPECT_EQ(Painted(type, {2, 2, 3, 0}, {1, 1, 1, 1}), nothing) << number;
        EXPECT_EQ(Painted(type, {2, 2, -3, 3}, {1, 1, 1, 1}), nothing) << number;
        if (type < GhostFill::kBitmap) {
            continue;
        }
        const GUI_BITMAP empty;
        for (const GUI_BITMAP* const missing : {&empty, static_cast<const GUI_BITMAP*>(nullptr)}) {
            ASSERT_TRUE(surface.Create({0, 0, 10, 7}, 1.0));
            GhostTexture texture;
            texture.type = type;
            texture.bitmap = missing;
            PaintFill(surface, texture, {0, 0, 10, 7});
            EXPECT_EQ(Rows(), nothing) << number;
        }
    }
}

// As wide and high as the target, from the bitmap's corner.
TEST_F(Fills, BitmapIsCopiedFromItsCorner) {
    EXPECT_EQ(Painted(GhostFill::kBitmap, {1, 1, 3, 2}),
              (Picture{"..........", ".abc......", ".efg......", "..........", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapFlipY, {1, 1, 3, 2}),
              (Picture{"..........", ".efg......", ".abc......", "..........", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapFlipX, {1, 1, 3, 2}),
              (Picture{"..........", ".cba......", ".gfe......", "..........", "..........",
                       "..........", ".........."}));
}

TEST_F(Fills, BitmapSmallerThanItsTargetIsNeverReadOutside) {
    EXPECT_EQ(Painted(GhostFill::kBitmap, {1, 1, 8, 6}),
              (Picture{"..........", ".abcd.....", ".efgh.....", ".ijkl.....", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapFlipY, {1, 1, 8, 6}),
              (Picture{"..........", ".ijkl.....", ".efgh.....", ".abcd.....", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapFlipX, {1, 1, 8, 6}),
              (Picture{"..........", ".dcba.....", ".hgfe.....", ".lkji.....", "..........",
                       "..........", ".........."}));
}

// The middle columns, b and c, again and again between the ends; rows are the bitmap's, whatever the
// target's height is.
TEST_F(Fills, SmartHorizontalKeepsItsEndsAndRepeatsTheMiddle) {
    const Picture wanted{"..........", ".abcbcbd..", ".efgfgfh..", ".ijkjkjl..",
                         "..........", "..........", ".........."};
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {1, 1, 7, 5}, {1, 9, 1, 9}), wanted);
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {1, 1, 7, 1}, {1, 9, 1, 9}), wanted);
}

TEST_F(Fills, SmartVerticalKeepsItsEndsAndRepeatsTheMiddle) {
    const Picture wanted{".abcd.....", ".efgh.....", ".efgh.....", ".efgh.....",
                         ".efgh.....", ".ijkl.....", ".........."};
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartVertical, {1, 0, 2, 6}, {9, 1, 9, 1}), wanted);
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartVertical, {1, 0, 9, 6}, {9, 1, 9, 1}), wanted);
}

// In a target too small for both ends the right or lower one lies over the other, and there is no middle.
TEST_F(Fills, SmartFillsPaintBothEndsInTooSmallATarget) {
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {4, 1, 3, 3}, {2, 0, 2, 0}),
              (Picture{"..........", "....acd...", "....egh...", "....ikl...", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {4, 1, 1, 3}, {2, 0, 2, 0}),
              (Picture{"..........", "...cdb....", "...ghf....", "...klj....", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartVertical, {0, 2, 4, 2}, {0, 1, 0, 2}),
              (Picture{"..........", "..........", "efgh......", "ijkl......", "..........",
                       "..........", ".........."}));
}

TEST_F(Fills, SmartFillsWithoutAMiddlePaintOnlyTheirEnds) {
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {0, 0, 8, 3}, {2, 0, 2, 0}),
              (Picture{"ab....cd..", "ef....gh..", "ij....kl..", "..........", "..........",
                       "..........", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {0, 0, 8, 3}, {99, 0, -5, 0}),
              (Picture{"abcd......", "efgh......", "ijkl......", "..........", "..........",
                       "..........", ".........."}))
        << "margins are cut to the bitmap";
}

// By the corner of each pixel: 4 columns over 6 are those of 0, 0.67, 1.33, 2, 2.67, 3.33, rounded down.
TEST_F(Fills, StretchTakesTheNearestPixel) {
    EXPECT_EQ(Painted(GhostFill::kBitmapStretch, {1, 0, 8, 6}),
              (Picture{".aabbccdd.", ".aabbccdd.", ".eeffgghh.", ".eeffgghh.", ".iijjkkll.",
                       ".iijjkkll.", ".........."}));
    EXPECT_EQ(Painted(GhostFill::kBitmapStretch, {0, 1, 6, 2}),
              (Picture{"..........", "aabccd....", "eefggh....", "..........", "..........",
                       "..........", ".........."}));
}

TEST_F(Fills, RepeatYGoesDownOneColumnOfTiles) {
    EXPECT_EQ(Painted(GhostFill::kBitmapRepeatY, {2, 1, 8, 5}),
              (Picture{"..........", "..abcd....", "..efgh....", "..ijkl....", "..abcd....",
                       "..efgh....", ".........."}));
}

TEST_F(Fills, RepeatXyCutsTheLastTiles) {
    EXPECT_EQ(Painted(GhostFill::kBitmapRepeatXY, {1, 1, 7, 4}),
              (Picture{"..........", ".abcdabc..", ".efghefg..", ".ijklijk..", ".abcdabc..",
                       "..........", ".........."}));
}

// ---- At densities that do not divide.

namespace {

constexpr std::array kDensities = {1.0667, 1.125, 1.5, 2.0, 3.0};
constexpr uint32_t kHalf = 0x80; // an alpha that grows where paint lies over paint

GUI_BITMAP HalfTransparent(int32_t width, int32_t height, double density) {
    GUI_BITMAP bitmap;
    bitmap.width = width;
    bitmap.height = height;
    bitmap.density = density;
    bitmap.pixelWidth = static_cast<int32_t>(std::lround(width * density));
    bitmap.pixelHeight = static_cast<int32_t>(std::lround(height * density));
    const int32_t count = bitmap.pixelWidth * bitmap.pixelHeight;
    bitmap.pixels.assign(static_cast<size_t>(count), kHalf << 24 | 0x406080);
    return bitmap;
}

struct NEIGHBOURS {
    GhostFill type;
    int32_t width; // of the bitmap
    int32_t height;
    bool down; // the targets lie below each other and not beside
};

// Three targets of 13, 14 and 13 units that touch.
constexpr NEIGHBOURS kNeighbours[] = {
    {GhostFill::kColour,                1,  1,  false},
    {GhostFill::kGradientHorizontal,    1,  1,  false},
    {GhostFill::kGradientVertical,      1,  1,  true },
    {GhostFill::kBitmap,                17, 40, false},
    {GhostFill::kBitmapFlipY,           40, 17, true },
    {GhostFill::kBitmapFlipX,           17, 40, false},
    {GhostFill::kBitmapSmartHorizontal, 9,  40, false},
    {GhostFill::kBitmapSmartVertical,   40, 9,  true },
    {GhostFill::kBitmapStretch,         5,  7,  false},
    {GhostFill::kBitmapRepeatY,         40, 5,  true },
    {GhostFill::kBitmapRepeatXY,        5,  3,  false},
};

// How many pixels are not painted exactly once.
size_t BadPixels(const NEIGHBOURS& row, double density, int32_t place) {
    constexpr int32_t kSide = 40;
    const GUI_BITMAP bitmap = HalfTransparent(row.width, row.height, density);
    CGhostSurface surface;
    EXPECT_TRUE(surface.Create({place, place, kSide, kSide}, density));
    GhostTexture texture;
    texture.type = row.type;
    texture.colour1 = kHalf << 24 | 0x102030;
    texture.colour2 = kHalf << 24 | 0x405060;
    texture.rect = {3, 3, 2, 2};
    texture.bitmap = &bitmap;
    int32_t from = 0;
    for (const int32_t length : {13, 14, 13}) {
        PaintFill(surface, texture,
                  row.down ? GUI_RECT{0, from, kSide, length} : GUI_RECT{from, 0, length, kSide});
        from += length;
    }
    size_t bad = 0;
    for (int32_t i = 0; i < surface.PixelWidth() * surface.PixelHeight(); ++i) {
        bad += surface.Pixels()[i] >> 24 != kHalf ? 1u : 0u;
    }
    return bad;
}

} // namespace

TEST(FillDensities, NeighboursLeaveNoGapAndDoNotOverlap) {
    for (const NEIGHBOURS& row : kNeighbours) {
        for (const double density : kDensities) {
            for (int32_t place = 0; place < 16; ++place) {
                EXPECT_EQ(BadPixels(row, density, place), 0u)
                    << "type " << static_cast<int>(row.type) << " at " << density << ", " << place;
            }
        }
    }
}

// The pieces of a smart fill are where they are at density 1: a red end of 4 units stays 4 units wide, to
// the pixel, wherever the window is.
TEST(FillDensities, EndsOfASmartFillKeepTheirUnits) {
    constexpr uint32_t kEnd = 0xFFFF0000;
    constexpr uint32_t kMiddle = 0xFF0000FF;
    for (const double density : {2.0, 3.0}) {
        const auto pixels = static_cast<int32_t>(density);
        GUI_BITMAP bitmap;
        bitmap.width = 12;
        bitmap.height = 5;
        bitmap.density = density;
        bitmap.pixelWidth = 12 * pixels;
        bitmap.pixelHeight = 5 * pixels;
        for (int32_t i = 0; i < bitmap.pixelWidth * bitmap.pixelHeight; ++i) {
            const int32_t unit = i % bitmap.pixelWidth / pixels;
            bitmap.pixels.push_back(unit < 4 || unit >= 8 ? kEnd : kMiddle);
        }
        GhostTexture texture;
        texture.type = GhostFill::kBitmapSmartHorizontal;
        texture.rect = {4, 0, 4, 0};
        texture.bitmap = &bitmap;
        CGhostSurface surface;
        ASSERT_TRUE(surface.Create({7, 3, 31, 5}, density));
        PaintFill(surface, texture, {0, 0, 31, 5});
        for (int32_t i = 0; i < surface.PixelWidth() * surface.PixelHeight(); ++i) {
            const int32_t unit = i % surface.PixelWidth() / pixels;
            EXPECT_EQ(surface.Pixels()[i], unit < 4 || unit >= 27 ? kEnd : kMiddle) << unit;
        }
    }
}

// A theme may have numbers of any size. What is not seen is not painted, so this ends at once, and what is
// seen lies where it would in a target of that size.
TEST_F(Fills, PiecesAreCutToWhatIsSeenHoweverLargeTheTarget) {
    constexpr int32_t kFar = 1 << 20;
    const GUI_RECT huge{-4 * (kFar / 4), -3 * (kFar / 4), 2 * kFar, 2 * kFar};
    const Picture tiled = Painted(GhostFill::kBitmapRepeatXY, huge);
    EXPECT_EQ(tiled, (Picture{"abcdabcdab", "efghefghef", "ijklijklij", "abcdabcdab", "efghefghef",
                              "ijklijklij", "abcdabcdab"}));
    EXPECT_EQ(Painted(GhostFill::kBitmapRepeatY, {0, -3 * kFar, 2, 4 * kFar}),
              (Picture{"ab........", "ef........", "ij........", "ab........", "ef........",
                       "ij........", "ab........"}));
    EXPECT_EQ(Painted(GhostFill::kBitmapSmartHorizontal, {-1 - 2 * kFar, 0, 4 * kFar, 3},
                      {1, 0, 1, 0})[0],
              "bcbcbcbcbc");
    EXPECT_EQ(
        Painted(GhostFill::kBitmapSmartVertical, {0, -1 - kFar, 4, 3 * kFar}, {0, 1, 0, 1})[6],
        "efgh......");
}

TEST_F(Fills, AFrameOfNegativeThicknessHasNoSuchSide) {
    ASSERT_TRUE(surface.Create({0, 0, 10, 7}, 1.0));
    GhostBorderStyle border;
    border.type = GhostFrame::kUser;
    border.thickness = {1, -4, -(1 << 20), 0};
    border.left.colour1 = border.top.colour1 = border.right.colour1 = 0xFF000000 | kLetterStep;
    PaintFrame(surface, border);
    EXPECT_EQ(Rows(), Picture(7, "a........."));
}
