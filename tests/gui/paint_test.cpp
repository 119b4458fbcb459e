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

// Where nothing is, a colour is taken as it is, with an alpha of 0 as well.
TEST_F(Texts, ATransparentColourIsTakenWhereNothingIsAndLeavesTheRest) {
    ASSERT_TRUE(surface.Create({0, 0, 20, 12}, 1.0));
    surface.FillRect({0, 0, 2, 1}, 0x00123456);
    EXPECT_EQ(At(0, 0), 0x00123456u);
    surface.SetPixel(0, 0, 0x00654321);
    EXPECT_EQ(At(0, 0), 0x00654321u);
    surface.FillRect({5, 5, 1, 1}, 0x80FFFFFF);
    surface.FillRect({5, 5, 1, 1}, 0x00123456);
    EXPECT_EQ(At(5, 5), 0x80FFFFFFu);
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

TEST_F(Texts, AsManyOfTheLastLettersFitAsAreNoWiderThanTheRoom) {
    const std::wstring text = L"iiWWWWii";
    for (int32_t room = 0; room < 200; ++room) {
        const size_t count = FitTextEnd(nullptr, text, room);
        EXPECT_LE(MeasureText(nullptr, text.substr(text.size() - count)).width, room);
        if (count < text.size()) {
            EXPECT_GT(MeasureText(nullptr, text.substr(text.size() - count - 1)).width, room);
        }
    }
}
