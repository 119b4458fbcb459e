// Displays of any size: the density and the virtual screen, fills that touch, text that keeps its measure, and
// a display that changes while the program runs.
#include "gui/control_rig.h"
#include "gui/text.h"

#include <cmath>

namespace {

constexpr double kDensities[] = {0.5, 1.0, 768.0 / 720, 1.125, 1.25, 1.5, 2.0, 3.0};

class DensityTest : public ControlTest {
protected:
    void TearDown() override {
        manager.SetHost({});
        manager.SetScreen(1280, 720);
        ControlTest::TearDown();
    }
};

using Density = DensityTest;

// The last column in which a text is seen well, in units; the text begins at 10.
double InkEnd(std::wstring_view text, double density) {
    CGhostSurface surface;
    EXPECT_TRUE(surface.Create({0, 0, 800, 24}, density));
    DrawText(surface, nullptr, text, 0xFFFFFFFF, 0, kAlignLeft, {10, 0, 780, 24}, 0, 0);
    for (int32_t x = surface.PixelWidth() - 1; x >= 0; --x) {
        double covered = 0;
        for (int32_t y = 0; y < surface.PixelHeight(); ++y) {
            covered = std::max(covered, (surface.Pixels()[y * surface.Stride() + x] >> 24) / 255.0);
        }
        if (covered > 0.3) {
            return (x + covered) / density;
        }
    }
    return 0;
}

} // namespace

TEST_F(Density, IsTheSmallerOfBothRatiosAndTheScreenIsWhatFits) {
    struct ROW {
        int32_t width, height; // pixels
        double density;
        int32_t unitsWide, unitsHigh;
    };
    constexpr ROW kRows[] = {
        {1280, 720,  1.0,         1280, 720},
        {1366, 768,  768.0 / 720, 1281, 720}, // 1,280.6
        {1600, 900,  1.25,        1280, 720},
        {1920, 1080, 1.5,         1280, 720},
        {2560, 1440, 2.0,         1280, 720},
        {3840, 2160, 3.0,         1280, 720},
        {1024, 768,  0.8,         1280, 960}, // 4 to 3
        {1600, 1200, 1.25,        1280, 960},
        {1680, 1050, 1.3125,      1280, 800}, // 16 to 10
        {1920, 1200, 1.5,         1280, 800},
        {2560, 1080, 1.5,         1707, 720}, // 21 to 9; 1,706.7
        {3440, 1440, 2.0,         1720, 720},
        {640,  360,  0.5,         1280, 720},
        {320,  240,  0.5,         640,  480}, // never below a half
    };
    for (const ROW& row : kRows) {
        manager.SetScreen(row.width, row.height);
        EXPECT_DOUBLE_EQ(manager.Density(), row.density) << row.width << " " << row.height;
        EXPECT_EQ(manager.ScreenRect(), (GUI_RECT{0, 0, row.unitsWide, row.unitsHigh}))
            << row.width << " " << row.height;
    }
}

TEST_F(Density, ANewDisplayKeepsFocusHoverAndCaptureAndMakesEverySurfaceAnew) {
    std::vector<std::string> told;
    GUI_HOST_CALLBACKS host;
    host.create = [&](uint32_t id, int32_t width, int32_t height) {
        told.push_back("create " + std::to_string(id) + " " + std::to_string(width) + " " +
                       std::to_string(height));
    };
    host.destroy = [&](uint32_t id) { told.push_back("destroy " + std::to_string(id)); };
    host.upload = [&](uint32_t id, const uint32_t*, int32_t stride) {
        told.push_back("upload " + std::to_string(id) + " " + std::to_string(stride));
    };
    auto* const slider = new CGhostSlider(nullptr, 0, L"T", 0, 100, {false, 101, 103, 201, 31});
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 5, 5, 10, 10});
    MoveTo(151, 110);
    Press();
    manager.SetHost(host);
    struct ROW {
        int32_t width, height;
        // Edges are rounded where they are on the screen: 101 to 302 and 103 to 134 units; 5 to 15.
        int32_t sliderWide, sliderHigh, buttonWide;
    };
    constexpr ROW kRows[] = {
        {1920, 1080, 453 - 152, 201 - 155, 23 - 8 }, // 151.5, 453; 154.5, 201; 7.5, 22.5
        {1366, 768,  322 - 108, 143 - 110, 16 - 5 }, // 107.7, 322.1; 109.9, 142.9; 5.3, 16
        {3840, 2160, 906 - 303, 402 - 309, 45 - 15},
        {1600, 1200, 378 - 126, 168 - 129, 19 - 6 }, // 126.25, 377.5; 128.75, 167.5; 6.25, 18.75
    };
    for (const ROW& row : kRows) {
        told.clear();
        manager.SetScreen(row.width, row.height);
        manager.Tick(0);
        const std::string first = std::to_string(slider->window->id);
        const std::string second = std::to_string(button->window->id);
        const std::string wide = std::to_string(row.sliderWide);
        const std::string buttonWide = std::to_string(row.buttonWide);
        EXPECT_EQ(told, (std::vector<std::string>{
                            "destroy " + first,
                            "create " + first + " " + wide + " " + std::to_string(row.sliderHigh),
                            "destroy " + second,
                            "create " + second + " " + buttonWide + " " + buttonWide,
                            "upload " + first + " " + wide,
                            "upload " + second + " " + buttonWide,
                        }))
            << row.width;
        EXPECT_EQ(manager.FocusWindow(), slider->window);
        EXPECT_EQ(manager.CaptureWindow(), slider->window);
        EXPECT_EQ(manager.HoverWindow(), slider->window);
        MoveTo(101 + 201 / 2 + row.width % 7, 600);
        EXPECT_EQ(slider->Value(), static_cast<float>(201 / 2 + row.width % 7) / 201.0f)
            << "the drag goes on";
    }
    Release();
    EXPECT_EQ(manager.CaptureWindow(), nullptr);
}

TEST_F(Density, TheCursorStaysWithinASmallerScreen) {
    manager.SetScreen(3440, 1440);
    MoveTo(5000, 5000);
    EXPECT_EQ(manager.CursorX(), 1720);
    manager.SetScreen(1280, 720);
    EXPECT_EQ(manager.CursorX(), 1280);
    EXPECT_EQ(manager.CursorY(), 720);
}

TEST_F(Density, ABoxCoversAndIsInTheMiddleOfANewDisplay) {
    const CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Some words.");
    for (const GUI_RECT display : {
             GUI_RECT{0, 0, 1600, 1200},
             GUI_RECT{0, 0, 3440, 1440},
             GUI_RECT{0, 0, 1366, 768 }
    }) {
        manager.SetScreen(display.width, display.height);
        manager.Tick(0);
        const GUI_RECT screen = manager.ScreenRect();
        EXPECT_EQ(OnScreen(box->window), screen);
        const GUI_RECT at = OnScreen(box->Box()->window);
        EXPECT_EQ(at.x, (screen.width - at.width) / 2);
        EXPECT_EQ(at.y, (screen.height - at.height) / 2);
    }
}

TEST_F(Density, AMenuClosesWhenTheDisplayChanges) {
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 5, 5, 90, 28});
    Focus(button->window);
    auto* const menu = new CGhostPopup(nullptr, 0);
    menu->AddItem(L"One");
    manager.SetScreen(1600, 1200);
    MoveTo(1200, 900);
    menu->Show();
    manager.Tick(0);
    ASSERT_TRUE(menu->IsShown());
    manager.SetScreen(1280, 720);
    manager.Tick(0);
    EXPECT_FALSE(menu->IsShown()) << "it lies below the screen";
    EXPECT_EQ(manager.FocusWindow(), button->window);
}

TEST_F(Density, FillsThatTouchInUnitsTouchInPixels) {
    for (const double density : kDensities) {
        for (int32_t place = 0; place < 8; ++place) {
            CGhostSurface surface;
            ASSERT_TRUE(surface.Create({37 + place, 11, 300, 40}, density));
            surface.PushOrigin({3 + place, 5, 280, 30});
            const int32_t end = 280;
            for (int32_t x = 0, i = 0; x < end; ++i) {
                // Half of a unit is no pixel, so that such fills must lie over each other.
                const int32_t wide = std::min((density < 1 ? 2 : 1) + i % 5, end - x);
                surface.FillRect({x, 0, wide, 13}, 0xFF00FF00);
                surface.FillRect({x, 13, wide, 17}, 0xFF00FF00);
                x += wide;
            }
            const int32_t left = surface.PixelX(0);
            const int32_t right = surface.PixelX(end);
            const int32_t top = surface.PixelY(0);
            const int32_t bottom = surface.PixelY(30);
            size_t gaps = 0;
            size_t twice = 0;
            for (int32_t y = top; y < bottom; ++y) {
                for (int32_t x = left; x < right; ++x) {
                    const uint32_t pixel = surface.Pixels()[y * surface.Stride() + x];
                    gaps += pixel == 0 ? 1u : 0u;
                    twice += pixel == 0xFF00FE00 ? 1u : 0u; // an opaque fill over another dims
                }
            }
            EXPECT_EQ(gaps, 0u) << density << " at " << place;
            if (density >= 1) {
                EXPECT_EQ(twice, 0u) << density << " at " << place;
            }
        }
    }
}

TEST_F(Density, TextIsAsLongAsAtDensityOne) {
    const std::wstring letters[] = {
        L"mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm", L"iiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiii",
        L"The quick brown fox jumps over lazy dogs", L"AVAVAVAVToToToToWAWAWAWALTLTLTLTYoYoYoYo"};
    for (const std::wstring& text : letters) {
        for (const size_t count : {1u, 2u, 5u, 11u, 24u, 40u}) {
            const std::wstring part = text.substr(0, count);
            if (part.back() == L' ') {
                continue;
            }
            const double plain = InkEnd(part, 1.0);
            EXPECT_NEAR(plain, 10 + MeasureText(nullptr, part).width, 3) << count;
            for (const double density : {768.0 / 720, 1.125, 1.5, 2.0, 3.0}) {
                EXPECT_NEAR(InkEnd(part, density), plain, 1.0) << count << " at " << density;
            }
        }
    }
}

// Half of 512 units at density 3 is more than the 127 pixels that a small bitmap has room for.
TEST_F(Density, LargeLettersAreWhole) {
    for (const int32_t size : {40, 100, 200, 500}) {
        CGhostFont* const font = CGhostFontManager::Get().GetFont("Default", size);
        ASSERT_NE(font, nullptr);
        for (const double density : {1.0, 3.0}) {
            CGhostSurface surface;
            ASSERT_TRUE(surface.Create({0, 0, size * 2, size}, density));
            DrawText(surface, font, L"H", 0xFFFFFFFF, 0, kAlignLeft | kAlignTop,
                     {0, 0, size * 2, size}, 0, 0);
            int32_t top = surface.PixelHeight();
            int32_t bottom = 0;
            for (int32_t i = 0; i < surface.PixelWidth() * surface.PixelHeight(); ++i) {
                if (surface.Pixels()[i] >> 24 > 0x80) {
                    top = std::min(top, i / surface.Stride());
                    bottom = std::max(bottom, i / surface.Stride());
                }
            }
            // A capital of this face is 8/11 of its size high, and stands on the base line.
            const double high = (bottom - top + 1) / density;
            EXPECT_NEAR(high, font->Size() * 8.0 / 11.0, 1.5 + size * 0.01)
                << size << " " << density;
            EXPECT_NEAR((bottom + 1) / density, font->Ascender(), 1.0) << size << " " << density;
        }
    }
}
