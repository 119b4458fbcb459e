// Text on a surface, and the surface's origin.
#include "gui/control_rig.h"
#include "gui/surface.h"
#include "gui/text.h"

namespace {

class PaintTest : public ControlTest {
protected:
    uint32_t At(int x, int y) { return surface.Pixels()[y * surface.Stride() + x]; }

    CGhostSurface surface;
};

using Texts = PaintTest;

} // namespace

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
