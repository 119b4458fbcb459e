// Fills, frames and text on a surface.
#include "gui/bitmap.h"
#include "gui/control_rig.h"
#include "gui/surface.h"
#include "gui/text.h"

namespace {

// Each pixel tells where it is from: opaque, x in red, y in green.
GUI_BITMAP Map(int width, int height) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.pixelWidth = width;
    bitmap.height = bitmap.pixelHeight = height;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bitmap.pixels.push_back(0xFF000000 | static_cast<uint32_t>(x) << 16 |
                                    static_cast<uint32_t>(y) << 8);
        }
    }
    return bitmap;
}

class PaintTest : public ControlTest {
protected:
    void Fill(GhostFill type, const GUI_RECT& target, GUI_EDGES margins = {}) {
        ASSERT_TRUE(surface.Create({0, 0, 20, 12}, 1.0));
        GhostTexture texture;
        texture.type = type;
        texture.colour1 = 0xFF0000FF;
        texture.colour2 = 0xFFFF0000;
        texture.rect = margins;
        texture.bitmap = &bitmap;
        PaintFill(surface, texture, target);
    }
    // "xy" of the bitmap's pixel, or ".." where nothing was painted.
    std::string Row(int y) {
        std::string row;
        for (int x = 0; x < 20; ++x) {
            const uint32_t pixel = At(x, y);
            row += pixel == 0 ? '.' : static_cast<char>('0' + (pixel >> 16 & 0xFF));
        }
        return row;
    }
    std::string Column(int x) {
        std::string column;
        for (int y = 0; y < 12; ++y) {
            const uint32_t pixel = At(x, y);
            column += pixel == 0 ? '.' : static_cast<char>('0' + (pixel >> 8 & 0xFF));
        }
        return column;
    }
    uint32_t At(int x, int y) { return surface.Pixels()[y * surface.Stride() + x]; }

    GUI_BITMAP bitmap = Map(6, 4);
    CGhostSurface surface;
};

using Fills = PaintTest;
using Texts = PaintTest;

} // namespace

TEST_F(Fills, ColoursAndGradients) {
    Fill(GhostFill::kColour, {2, 2, 3, 3});
    EXPECT_EQ(At(2, 2), 0xFF0000FFu);
    EXPECT_EQ(At(5, 2), 0u);
    Fill(GhostFill::kGradientHorizontal, {0, 0, 20, 12});
    EXPECT_EQ(At(19, 5), 0xFFFF0000u) << "the second colour at its end";
    EXPECT_EQ(At(3, 0), At(3, 11));
    EXPECT_LT(At(3, 0) & 0xFF, 0xFFu) << "one line past the first colour at its start";
    Fill(GhostFill::kGradientVertical, {0, 0, 20, 12});
    EXPECT_EQ(At(7, 11), 0xFFFF0000u);
    EXPECT_EQ(At(0, 3), At(19, 3));
    Fill(GhostFill::kNone, {0, 0, 20, 12});
    EXPECT_EQ(At(7, 7), 0u);
    Fill(static_cast<GhostFill>(10), {0, 0, 20, 12});
    EXPECT_EQ(At(7, 7), 0u);
    Fill(static_cast<GhostFill>(13), {0, 0, 20, 12});
    EXPECT_EQ(At(7, 7), 0u);
    Fill(GhostFill::kColour, {2, 2, 0, 3});
    EXPECT_EQ(At(2, 2), 0u);
}

// Where nothing is, a colour is taken as it is, with an alpha of 0 as well.
TEST_F(Fills, ATransparentColourIsTakenWhereNothingIsAndLeavesTheRest) {
    ASSERT_TRUE(surface.Create({0, 0, 20, 12}, 1.0));
    surface.FillRect({0, 0, 2, 1}, 0x00123456);
    EXPECT_EQ(At(0, 0), 0x00123456u);
    surface.SetPixel(0, 0, 0x00654321);
    EXPECT_EQ(At(0, 0), 0x00654321u);
    surface.FillRect({5, 5, 1, 1}, 0x80FFFFFF);
    surface.FillRect({5, 5, 1, 1}, 0x00123456);
    EXPECT_EQ(At(5, 5), 0x80FFFFFFu);
}

TEST_F(Fills, BitmapsCopiedAndFlippedNeverReadOutside) {
    Fill(GhostFill::kBitmap, {1, 1, 18, 10});
    EXPECT_EQ(Row(1), ".012345.............");
    EXPECT_EQ(Column(1), ".0123.......");
    Fill(GhostFill::kBitmapFlipY, {1, 1, 6, 4});
    EXPECT_EQ(Column(1), ".3210.......");
    Fill(GhostFill::kBitmapFlipX, {1, 1, 6, 4});
    EXPECT_EQ(Row(1), ".543210.............");
}

TEST_F(Fills, StretchedAndTiled) {
    Fill(GhostFill::kBitmapStretch, {0, 0, 18, 12});
    EXPECT_EQ(Row(0), "000111222333444555..");
    EXPECT_EQ(Column(0), "000111222333");
    Fill(GhostFill::kBitmapRepeatY, {3, 0, 17, 10});
    EXPECT_EQ(Row(0), "...012345...........");
    EXPECT_EQ(Column(3), "0123012301..");
    Fill(GhostFill::kBitmapRepeatXY, {0, 0, 20, 12});
    EXPECT_EQ(Row(0), "01234501234501234501");
}

TEST_F(Fills, SmartFillsKeepTheirEndsAndRepeatTheMiddle) {
    Fill(GhostFill::kBitmapSmartHorizontal, {0, 0, 20, 4}, {1, 0, 2, 0});
    EXPECT_EQ(Row(0), "01231231231231231245");
    Fill(GhostFill::kBitmapSmartVertical, {0, 0, 6, 11}, {0, 1, 0, 1});
    EXPECT_EQ(Column(0), "01212121213.");
    Fill(GhostFill::kBitmapSmartHorizontal, {5, 0, 3, 4}, {2, 0, 2, 0});
    // The right end lies over the left; blended over an opaque ground 4 is one step short of itself.
    EXPECT_EQ(Row(0), ".....035............");
}

TEST_F(Fills, RoundedFramesHaveCutCorners) {
    ASSERT_TRUE(surface.Create({0, 0, 20, 12}, 1.0));
    GhostBorderStyle border;
    border.type = GhostFrame::kRoundedColour;
    border.thickness = {1, 1, 1, 1};
    border.left.colour1 = 0xFFABCDEF;
    PaintFrame(surface, border);
    EXPECT_EQ(At(0, 0), 0u);
    EXPECT_EQ(At(1, 0), 0u);
    EXPECT_EQ(At(2, 0), 0xFFABCDEFu);
    EXPECT_EQ(At(1, 1), 0xFFABCDEFu);
    EXPECT_EQ(At(17, 0), 0xFFABCDEFu);
    EXPECT_EQ(At(18, 0), 0u);
    EXPECT_EQ(At(18, 10), 0xFFABCDEFu);
}

TEST_F(Texts, MeasuresAddUpAndHalfALetterFits) {
    const int whole = MeasureText(nullptr, L"mmmm").width;
    const int one = MeasureText(nullptr, L"m").width;
    EXPECT_NEAR(whole, 4 * one, 4);
    EXPECT_EQ(MeasurePrefix(nullptr, L"mmmm", 99), whole);
    EXPECT_EQ(MeasurePrefix(nullptr, L"mmmm", 0), 0);
    EXPECT_EQ(FitText(nullptr, L"mmmm", whole), 4u);
    EXPECT_EQ(FitText(nullptr, L"mmmm", one + one / 2 - 1), 1u);
    EXPECT_EQ(FitText(nullptr, L"mmmm", one + one / 2 + 2), 2u);
    EXPECT_EQ(FitText(nullptr, L"mmmm", -9), 0u);
    CGhostFont* const font = CGhostFontManager::Get().GetFont("Default", 20);
    ASSERT_NE(font, nullptr);
    EXPECT_LE(font->Ascender() - font->Descender(), 20);
    EXPECT_EQ(CGhostFontManager::Get().GetFont("Unknown", 20), nullptr);
}

TEST_F(Texts, IsAlignedWithinItsRectangleAndOutlinedAround) {
    const auto extent = [&](uint32_t align, uint32_t outline) {
        EXPECT_TRUE(surface.Create({0, 0, 200, 60}, 1.0));
        DrawText(surface, nullptr, L"H", 0xFFFFFFFF, outline, align, {0, 0, 200, 60}, 0, 0);
        GUI_RECT seen;
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 200; ++x) {
                if (At(x, y) != 0) {
                    seen = Around(seen, {x, y, 1, 1});
                }
            }
        }
        return seen;
    };
    const GUI_RECT middle = extent(0, 0);
    EXPECT_NEAR(middle.x + middle.width / 2, 100, 2);
    EXPECT_NEAR(middle.y + middle.height / 2, 30, 3);
    EXPECT_LT(extent(kAlignLeft, 0).Right(), 20);
    EXPECT_GT(extent(kAlignRight, 0).x, 180);
    EXPECT_LT(extent(kAlignTop, 0).Bottom(), 20);
    EXPECT_GT(extent(kAlignBottom, 0).y, 40);
    const GUI_RECT outlined = extent(0, 0xFF000000);
    EXPECT_LT(outlined.x, middle.x);
    EXPECT_GT(outlined.Bottom(), middle.Bottom());
}

TEST_F(Texts, AnEmptyRectangleOnTheSurfaceIsAPlaceAndOneOffItIsNot) {
    const auto seen = [&](const GUI_RECT& rect, uint32_t align) {
        EXPECT_TRUE(surface.Create({0, 0, 60, 30}, 1.0));
        DrawText(surface, nullptr, L"HHH", 0xFFFFFFFF, 0, align, rect, 0, 0);
        GUI_RECT ink;
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 60; ++x) {
                ink = At(x, y) != 0 ? Around(ink, {x, y, 1, 1}) : ink;
            }
        }
        return ink;
    };
    const GUI_RECT corner = seen({10, 5, 40, 20}, kAlignLeft | kAlignTop);
    EXPECT_FALSE(corner.Empty());
    EXPECT_EQ(seen({10, 5, 0, 0}, kAlignLeft | kAlignTop), corner);
    EXPECT_EQ(seen({10, 5, -3, 20}, kAlignLeft | kAlignTop), corner);
    const GUI_RECT middle = seen({30, 15, 0, 0}, 0);
    EXPECT_NEAR(middle.x + middle.width / 2, 30, 1);
    const GUI_RECT off[] = {
        {60,  5,   40, 20},
        {-40, 5,   40, 20},
        {10,  30,  40, 20},
        {10,  -20, 40, 20},
        {60,  5,   0,  0 }
    };
    for (const GUI_RECT& rect : off) {
        EXPECT_TRUE(seen(rect, kAlignLeft | kAlignTop).Empty()) << rect.x << " " << rect.y;
        EXPECT_TRUE(seen(rect, kAlignRight | kAlignBottom).Empty()) << rect.x << " " << rect.y;
    }
}

TEST(SurfaceOrigin, KeepsItsCoordinatesWhereItIsCut) {
    CGhostSurface surface;
    ASSERT_TRUE(surface.Create({0, 0, 100, 100}, 1.0));
    surface.PushOrigin({-10, -10, 50, 50});
    EXPECT_EQ(surface.Width(), 50);
    surface.SetPixel(10, 10, 0xFF123456);
    surface.SetPixel(9, 9, 0xFF654321); // outside the surface
    surface.SetPixel(49, 49, 0xFF00FF00);
    surface.SetPixel(50, 50, 0xFF0000FF); // outside the rectangle
    surface.PopOrigin();
    EXPECT_EQ(surface.Pixels()[0], 0xFF123456u);
    EXPECT_EQ(surface.Pixels()[39 * 100 + 39], 0xFF00FF00u);
    EXPECT_EQ(surface.Pixels()[40 * 100 + 40], 0u);
    for (int i = 0; i < 9; ++i) {
        surface.PushOrigin({0, 0, 100, 100});
    }
    surface.SetPixel(5, 5, 0xFFFFFFFF);
    EXPECT_EQ(surface.Pixels()[505], 0u) << "a push too many";
    surface.PopOrigin();
    surface.SetPixel(5, 5, 0xFFFFFFFF);
    EXPECT_EQ(surface.Pixels()[505], 0xFFFFFFFFu);
}
