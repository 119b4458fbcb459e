// Scrollbars, sliders and wrapped text.
#include "gui/control_rig.h"
#include "gui/text.h"
#include "gui/wrap.h"

#include <cmath>

using ScrollBar = ControlTest;
using Slider = ControlTest;
using MultiText = ControlTest;

TEST_F(ScrollBar, ARangeIsCorrectedAndChangesAreReported) {
    auto* const bar = new CGhostScrollbar(nullptr, 0, L"WINDOW_SCROLLBAR", {false, 0, 0, 14, 128});
    std::vector<int> told;
    bar->OnScroll.connect([&](int32_t pos) { told.push_back(pos); });
    bar->SetRange(1000, 100, 50, true);
    bar->SetRange(-1, -1, 50, false);
    EXPECT_EQ(told, (std::vector<int>{50})) << "unchanged";
    bar->SetRange(-1, -1, -7, false);
    bar->SetRange(-1, -1, 950, false);
    EXPECT_EQ(bar->Pos(), 900);
    bar->SetRange(-1, -1, 950, false);
    bar->SetRange(50, -1, -1, false);
    EXPECT_EQ(bar->Total(), 100) << "a page above the total raises it";
    EXPECT_EQ(told, (std::vector<int>{50, 0, 900, 900, 0}));
}

TEST_F(ScrollBar, DraggingTheThumbScrollsInProportion) {
    auto* const bar = new CGhostScrollbar(nullptr, 0, L"WINDOW_SCROLLBAR", {false, 0, 0, 14, 128});
    bar->SetRange(1000, 500, 0, true); // a track of 100, a thumb of 50
    manager.Tick(0);
    MoveTo(7, 14 + 10);
    Press();
    MoveTo(7, 14 + 35);
    EXPECT_EQ(bar->Pos(), 250); // 25 / (100 - 50) * (1000 - 500)
    MoveTo(7, 700);
    EXPECT_EQ(bar->Pos(), 500);
    Release();
    bar->SetStep(30);
    ClickAt(7, 3);
    EXPECT_EQ(bar->Pos(), 470);
    ClickAt(7, 125);
    EXPECT_EQ(bar->Pos(), 500);
}

TEST_F(Slider, PressAndDragSetTheValueAndKeysStep) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"T", 0, 10, {false, 100, 100, 200, 28});
    std::vector<float> told;
    slider->OnChange.connect([&](CGhostSlider*, float value) { told.push_back(value); });
    MoveTo(150, 110);
    Press();
    EXPECT_FLOAT_EQ(slider->Value(), 0.25f);
    MoveTo(900, 110);
    EXPECT_FLOAT_EQ(slider->Value(), 1.0f);
    Release();
    MoveTo(120, 110);
    EXPECT_FLOAT_EQ(slider->Value(), 1.0f) << "released";
    Key(kLeft);
    EXPECT_NEAR(slider->Value(), 0.9f, 0.001f) << "a tenth: a unit of what is shown";
    EXPECT_TRUE(manager.Navigate(GUI_DIRECTION::kRight));
    EXPECT_FLOAT_EQ(slider->Value(), 1.0f);
    EXPECT_TRUE(manager.ActivateFocus());
    manager.Tick(0);
    EXPECT_FLOAT_EQ(slider->Value(), 1.0f) << "the button changes nothing";
    EXPECT_EQ(told.size(), 4u);
    slider->SetPixel(-5);
    EXPECT_FLOAT_EQ(slider->Value(), 0.0f);
    slider->SetReadOnly(true);
    ClickAt(200, 110);
    EXPECT_FLOAT_EQ(slider->Value(), 0.0f);
}

TEST_F(MultiText, WrapsAtSpacesAndInsideWordsThatAreTooLong) {
    const std::wstring text = L"alpha beta\n\nextraordinarily";
    const int wide = MeasureText(nullptr, L"alpha b").width;
    const GUI_TEXT_LAYOUT layout = WrapText(nullptr, text, wide);
    std::vector<std::wstring> lines;
    std::wstring word;
    for (const GUI_TEXT_LINE& line : layout.lines) {
        lines.push_back(text.substr(line.start, line.count));
        EXPECT_LE(line.width, wide);
        if (lines.size() > 3) {
            word += lines.back();
        }
    }
    ASSERT_GT(lines.size(), 4u);
    EXPECT_EQ(lines[0], L"alpha");
    EXPECT_EQ(lines[1], L"beta");
    EXPECT_EQ(lines[2], L"");
    EXPECT_EQ(word, L"extraordinarily");
    EXPECT_EQ(WrapText(nullptr, L"", 100).lines.size(), 0u);
    EXPECT_EQ(WrapText(nullptr, L"abc", 0).lines.size(), 3u) << "at least a letter a line";
    EXPECT_EQ(WrapText(nullptr, L"a b\r\n", 500).lines[0].count, 3u);
}

TEST_F(MultiText, ScrollsWhatIsLongerThanItsWindow) {
    std::wstring text;
    for (int i = 0; i < 50; ++i) {
        text += L"line\n";
    }
    auto* const made = new CGhostMultiText(nullptr, 0, L"T", L"short", {false, 0, 0, 200, 100});
    EXPECT_FALSE(made->window->tabStop);
    made->SetText(text);
    EXPECT_TRUE(made->window->tabStop);
    EXPECT_EQ(made->LineCount(), 51);
    Focus(made->window);
    Key(kEnd);
    EXPECT_EQ(made->ScrollPixels(), made->ContentHeight() - 100);
    Key(kUp);
    EXPECT_LT(made->ScrollPixels(), made->ContentHeight() - 100);
    made->SetText(L"short again");
    EXPECT_EQ(made->ScrollPixels(), 0);
    EXPECT_EQ(made->window->clientRect.width, 200) << "the bar is gone";
}

// The number that is shown is the floor of value * 100.
TEST_F(Slider, EveryKeyMovesTheNumberThatIsShownByOne) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"T", 0, 100, {false, 100, 100, 200, 28});
    const auto shown = [&] { return static_cast<int>(std::floor(slider->Value() * 100.0f)); };
    for (int step = 1; step <= 100; ++step) {
        slider->OnKeyDown(GHOSTGUIKey::kRight);
        ASSERT_EQ(shown(), step);
    }
    slider->OnKeyDown(GHOSTGUIKey::kRight);
    EXPECT_EQ(slider->Value(), 1.0f);
    for (int step = 99; step >= 0; --step) {
        slider->OnKeyDown(GHOSTGUIKey::kLeft);
        ASSERT_EQ(shown(), step);
    }
}

// With three positions only, it is not drawn at them alone.
TEST_F(ScrollBar, TheThumbStaysUnderTheMouseWhileItIsDragged) {
    auto* const bar = new CGhostScrollbar(nullptr, 0, L"WINDOW_SCROLLBAR", {false, 0, 0, 14, 128});
    constexpr uint32_t kThumb = 0xFFFF0000;
    GhostScrollbarStyle style;
    style.verArrowButtonHeight = 14;
    style.verWidth = 14;
    for (GhostTextStyle& state : style.verMid.states) {
        state.bg.colour1 = kThumb;
    }
    bar->SetStyle(style);
    bar->SetRange(4, 2, 0, true); // a track of 100, a thumb of 50
    manager.Tick(0);
    const auto top = [&] {
        CGhostSurface& surface = *bar->window->surface;
        int y = 0;
        while (y < 128 && surface.Pixels()[y * surface.Stride() + 5] != kThumb) {
            ++y;
        }
        return y - 14;
    };
    EXPECT_EQ(top(), 0);
    MoveTo(7, 14 + 10);
    Press();
    MoveTo(7, 14 + 25);
    EXPECT_EQ(bar->Pos(), 0);
    EXPECT_EQ(top(), 15);
    MoveTo(7, 14 + 50);
    EXPECT_EQ(bar->Pos(), 1); // 40 / 50 * 2, rounded down
    EXPECT_EQ(top(), 40);
    Release();
    EXPECT_EQ(top(), 25) << "at its position";
}

TEST_F(MultiText, TabsAreSpacesAndOtherControlCharactersAreNotShown) {
    auto* const made =
        new CGhostMultiText(nullptr, 0, L"T", L"alpha\tbeta\x07\r\n\x1Bz", {false, 0, 0, 300, 200});
    const int margins = 6; // of the style
    EXPECT_EQ(made->ContentWidth(), MeasureText(nullptr, L"alpha beta").width + margins);
    EXPECT_EQ(made->LineCount(), 2);
    EXPECT_EQ(made->Text(), L"alpha\tbeta\x07\r\n\x1Bz");
}
