// Every type of frame: pixel by pixel where a unit is a pixel, also with sides missing, and at other
// densities.
#include "gui/styles.h"
#include "gui/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Picture = std::vector<std::string>;

constexpr uint32_t kFirst = 0xFF102030;
constexpr uint32_t kSecond = 0xFF405060;

constexpr GUI_EDGES kAll{1, 1, 1, 1};
constexpr GUI_EDGES kNoLeft{0, 1, 1, 1};
constexpr GUI_EDGES kNoTop{1, 0, 1, 1};
constexpr GUI_EDGES kNoRight{1, 1, 0, 1};
constexpr GUI_EDGES kNoBottom{1, 1, 1, 0};

// a and b are the two colours; of a shaded frame c, e and i are the first one at C0, E0 and A0.
char Letter(uint32_t pixel) {
    constexpr uint32_t kBare = kFirst & 0x00FFFFFF;
    switch (pixel) {
    case 0: return '.';
    case kFirst: return 'a';
    case kSecond: return 'b';
    case 0xC0000000 | kBare: return 'c';
    case 0xE0000000 | kBare: return 'e';
    case 0xA0000000 | kBare: return 'i';
    default: return '?';
    }
}

Picture Frame(GhostFrame type, const GUI_EDGES& thickness, int32_t width = 10, int32_t height = 8) {
    GhostBorderStyle border;
    border.type = type;
    border.thickness = thickness;
    border.left.colour1 = kFirst;
    border.left.colour2 = kSecond;
    CGhostSurface surface;
    EXPECT_TRUE(surface.Create({0, 0, width, height}, 1.0));
    PaintFrame(surface, border);
    Picture rows;
    for (int32_t y = 0; y < height; ++y) {
        std::string row;
        for (int32_t x = 0; x < width; ++x) {
            row += Letter(surface.Pixels()[y * surface.Stride() + x]);
        }
        rows.push_back(row);
    }
    return rows;
}

} // namespace

TEST(Frames, ColourIsARectangleOfOnePixel) {
    EXPECT_EQ(Frame(GhostFrame::kColour, kAll, 6, 4),
              (Picture{"aaaaaa", "a....a", "a....a", "aaaaaa"}));
    EXPECT_EQ(Frame(GhostFrame::kColour, {9, 9, 9, 9}, 6, 4),
              (Picture{"aaaaaa", "a....a", "a....a", "aaaaaa"}))
        << "whatever the thickness";
    EXPECT_EQ(Frame(GhostFrame::kColour, kNoLeft, 6, 4),
              (Picture{"aaaaaa", ".....a", ".....a", "aaaaaa"}));
    EXPECT_EQ(Frame(GhostFrame::kColour, kNoTop, 6, 4),
              (Picture{"a....a", "a....a", "a....a", "aaaaaa"}));
    EXPECT_EQ(Frame(GhostFrame::kColour, kNoRight, 6, 4),
              (Picture{"aaaaaa", "a.....", "a.....", "aaaaaa"}));
    EXPECT_EQ(Frame(GhostFrame::kColour, kNoBottom, 6, 4),
              (Picture{"aaaaaa", "a....a", "a....a", "a....a"}));
    EXPECT_EQ(Frame(GhostFrame::kColour, {}, 6, 4),
              (Picture{"......", "......", "......", "......"}));
}

TEST(Frames, RoundedCutsEachCorner) {
    EXPECT_EQ(Frame(GhostFrame::kRoundedColour, kAll),
              (Picture{"..aaaaaa..", ".a......a.", "a........a", "a........a", "a........a",
                       "a........a", ".a......a.", "..aaaaaa.."}));
    EXPECT_EQ(Frame(GhostFrame::kRoundedColour, kNoTop),
              (Picture{"a........a", "a........a", "a........a", "a........a", "a........a",
                       "a........a", ".a......a.", "..aaaaaa.."}));
    EXPECT_EQ(Frame(GhostFrame::kRoundedColour, kNoRight),
              (Picture{"..aaaaaaaa", ".a........", "a.........", "a.........", "a.........",
                       "a.........", ".a........", "..aaaaaaaa"}));
}

TEST(Frames, InsetHasASecondLineWithinTheFirst) {
    EXPECT_EQ(Frame(GhostFrame::kRoundedColourInset, kAll),
              (Picture{"..aaaaaa..", ".a.bbbb.a.", "a.b....b.a", "ab......ba", "ab......ba",
                       "a.b....b.a", ".a.bbbb.a.", "..aaaaaa.."}));
}

// Both lines go on to the edge where the side beside them is missing.
TEST(Frames, InsetReachesTheEdgeOfAMissingSide) {
    EXPECT_EQ(Frame(GhostFrame::kRoundedColourInset, kNoLeft),
              (Picture{"aaaaaaaa..", "bbbbbbb.a.", ".......b.a", "........ba", "........ba",
                       ".......b.a", "bbbbbbb.a.", "aaaaaaaa.."}));
    EXPECT_EQ(Frame(GhostFrame::kRoundedColourInset, kNoBottom),
              (Picture{"..aaaaaa..", ".a.bbbb.a.", "a.b....b.a", "ab......ba", "ab......ba",
                       "ab......ba", "ab......ba", "ab......ba"}));
}

TEST(Frames, ShadedSoftensItsCorners) {
    EXPECT_EQ(Frame(GhostFrame::kShaded, kAll),
              (Picture{"..eaaaae..", ".eeccccee.", "eei....iee", "ac......ca", "ac......ca",
                       "eei....iee", ".eeccccee.", "..eaaaae.."}));
}

TEST(Frames, ShadedStopsShortOnlyOfCornersThatHaveTheNeighbouringSide) {
    EXPECT_EQ(Frame(GhostFrame::kShaded, kNoLeft),
              (Picture{"aaaaaaae..", "cccccccee.", ".......iee", "........ca", "........ca",
                       ".......iee", "cccccccee.", "aaaaaaae.."}));
    EXPECT_EQ(Frame(GhostFrame::kShaded, kNoTop),
              (Picture{"ac......ca", "ac......ca", "ac......ca", "ac......ca", "ac......ca",
                       "eei....iee", ".eeccccee.", "..eaaaae.."}));
    EXPECT_EQ(Frame(GhostFrame::kShaded, kNoRight),
              (Picture{"..eaaaaaaa", ".eeccccccc", "eei.......", "ac........", "ac........",
                       "eei.......", ".eeccccccc", "..eaaaaaaa"}));
    EXPECT_EQ(Frame(GhostFrame::kShaded, kNoBottom),
              (Picture{"..eaaaae..", ".eeccccee.", "eei....iee", "ac......ca", "ac......ca",
                       "ac......ca", "ac......ca", "ac......ca"}));
    EXPECT_EQ(Frame(GhostFrame::kShaded, {0, 1, 0, 0}),
              (Picture{"aaaaaaaaaa", "cccccccccc", "..........", "..........", "..........",
                       "..........", "..........", ".........."}));
}

// ---- Four textures.

namespace {

// A letter a side, in blue: l, t, r and b.
GhostBorderStyle UserFrame(GhostFrame type, const GUI_EDGES& thickness, uint32_t alpha) {
    GhostBorderStyle border;
    border.type = type;
    border.thickness = thickness;
    border.left.colour1 = alpha << 24 | 'l';
    border.top.colour1 = alpha << 24 | 't';
    border.right.colour1 = alpha << 24 | 'r';
    border.bottom.colour1 = alpha << 24 | 'b';
    return border;
}

Picture User(GhostFrame type, const GUI_EDGES& thickness) {
    CGhostSurface surface;
    EXPECT_TRUE(surface.Create({0, 0, 7, 6}, 1.0));
    PaintFrame(surface, UserFrame(type, thickness, 0xFF));
    Picture rows;
    for (int32_t y = 0; y < 6; ++y) {
        std::string row;
        for (int32_t x = 0; x < 7; ++x) {
            const uint32_t pixel = surface.Pixels()[y * surface.Stride() + x];
            row += pixel == 0 ? '.' : static_cast<char>(pixel & 0xFF);
        }
        rows.push_back(row);
    }
    return rows;
}

} // namespace

TEST(Frames, UserHasTheTopOverTheWholeWidthAndTheSidesBetween) {
    EXPECT_EQ(User(GhostFrame::kUser, {2, 1, 1, 2}),
              (Picture{"ttttttt", "ll....r", "ll....r", "ll....r", "bbbbbbb", "bbbbbbb"}));
    EXPECT_EQ(User(GhostFrame::kUser, {0, 1, 1, 0}),
              (Picture{"ttttttt", "......r", "......r", "......r", "......r", "......r"}));
    EXPECT_EQ(User(GhostFrame::kUser, {1, 0, 0, 1}),
              (Picture{"l......", "l......", "l......", "l......", "l......", "bbbbbbb"}));
}

TEST(Frames, AnyOtherTypeIsUser) {
    for (const uint32_t type : {0u, 1u, 5u, 7u, 99u}) {
        EXPECT_EQ(User(static_cast<GhostFrame>(type), {1, 1, 1, 1})[0], "ttttttt") << type;
        EXPECT_EQ(User(static_cast<GhostFrame>(type), {1, 1, 1, 1})[1], "l.....r") << type;
    }
}

TEST(FrameDensities, UserSidesTouchWithoutAGapOrAnOverlap) {
    constexpr GUI_EDGES kThick{3, 5, 4, 2};
    constexpr int32_t kSide = 29;
    for (const double density : {1.0667, 1.125, 1.5, 2.0, 3.0}) {
        for (int32_t place = 0; place < 16; ++place) {
            CGhostSurface surface;
            ASSERT_TRUE(surface.Create({place, place, kSide, kSide}, density));
            PaintFrame(surface, UserFrame(GhostFrame::kUser, kThick, 0x80));
            const int32_t left = surface.PixelX(kThick.left);
            const int32_t right = surface.PixelX(kSide - kThick.right);
            const int32_t top = surface.PixelY(kThick.top);
            const int32_t bottom = surface.PixelY(kSide - kThick.bottom);
            size_t bad = 0;
            for (int32_t y = 0; y < surface.PixelHeight(); ++y) {
                for (int32_t x = 0; x < surface.PixelWidth(); ++x) {
                    const bool within = x >= left && x < right && y >= top && y < bottom;
                    const uint32_t alpha = surface.Pixels()[y * surface.Stride() + x] >> 24;
                    bad += alpha != (within ? 0u : 0x80u) ? 1u : 0u;
                }
            }
            EXPECT_EQ(bad, 0u) << density << ", " << place;
        }
    }
}

// Steps of several pixels would be seen: the corners of a rounded frame are smooth, alike, and closed.
TEST(FrameDensities, RoundedCornersAreSmooth) {
    GhostBorderStyle border;
    border.type = GhostFrame::kRoundedColour;
    border.thickness = kAll;
    border.left.colour1 = kFirst;
    for (const int32_t density : {2, 3, 4}) {
        CGhostSurface surface;
        ASSERT_TRUE(surface.Create({5, 5, 20, 12}, density));
        PaintFrame(surface, border);
        const int32_t right = surface.PixelWidth() - 1;
        const int32_t bottom = surface.PixelHeight() - 1;
        const auto alpha = [&](int32_t x, int32_t y) {
            return surface.Pixels()[y * surface.Stride() + x] >> 24;
        };
        EXPECT_EQ(alpha(0, 0), 0u) << density;
        size_t soft = 0;
        for (int32_t y = 0; y < 4 * density; ++y) {
            uint32_t most = 0;
            for (int32_t x = 0; x < 4 * density; ++x) {
                most = std::max(most, alpha(x, y));
                soft += alpha(x, y) > 0 && alpha(x, y) < 0xFF ? 1u : 0u;
                EXPECT_EQ(alpha(x, y), alpha(right - x, y)) << density;
                EXPECT_EQ(alpha(x, y), alpha(x, bottom - y)) << density;
            }
            EXPECT_GT(most, 0x80u) << density << ": a gap in row " << y;
        }
        EXPECT_GT(soft, 4u) << density;
        EXPECT_EQ(alpha(10 * density, density - 1), 0xFFu) << density;
        EXPECT_EQ(alpha(10 * density, density), 0u) << density;
    }
}
