// A player with nothing but a controller: every control is reached, used and left by directions and two buttons.
#include "gui/control_rig.h"

#include <random>
#include <set>

namespace {

constexpr GUI_DIRECTION kDirections[] = {GUI_DIRECTION::kLeft, GUI_DIRECTION::kRight,
                                         GUI_DIRECTION::kUp, GUI_DIRECTION::kDown};

class NavigationTest : public ControlTest {
protected:
    CGhostButton* MakeButton(GHOSTMANAGER_WINDOW* parent, const GUI_RECT& at) {
        return new CGhostButton(parent, 0, L"BUTTON", L"ok", 0,
                                {false, at.x, at.y, at.width, at.height});
    }

    // What MoveFocus reaches from a window, by any number of directions.
    std::set<const GHOSTMANAGER_WINDOW*> Reached(GHOSTMANAGER_WINDOW* from) {
        std::set<const GHOSTMANAGER_WINDOW*> reached{from};
        std::vector<GHOSTMANAGER_WINDOW*> open{from};
        while (!open.empty()) {
            GHOSTMANAGER_WINDOW* const at = open.back();
            open.pop_back();
            for (const GUI_DIRECTION direction : kDirections) {
                manager.SetFocus(at);
                manager.MoveFocus(direction);
                if (reached.insert(manager.FocusWindow()).second) {
                    open.push_back(manager.FocusWindow());
                }
            }
        }
        manager.Tick(0);
        return reached;
    }
};

using Navigation = NavigationTest;

bool Meets(const GUI_RECT& a, const GUI_RECT& b) {
    return !Intersection({a.x - 4, a.y - 4, a.width + 8, a.height + 8}, b).Empty();
}

} // namespace

TEST_F(Navigation, EveryControlIsReachedFromEveryOtherInAnyLayout) {
    for (uint32_t seed = 1; seed <= 150; ++seed) {
        manager.Reset();
        std::mt19937 random(seed);
        const auto below = [&](uint32_t limit) { return static_cast<int32_t>(random() % limit); };
        std::vector<GUI_RECT> places;
        std::vector<CGhostButton*> buttons;
        const auto wanted = static_cast<size_t>(2 + below(24));
        for (int tries = 0; tries < 400 && places.size() < wanted; ++tries) {
            const GUI_RECT place{below(1100), below(660), 20 + below(160), 20 + below(60)};
            bool free = true;
            for (const GUI_RECT& other : places) {
                free = free && !Meets(place, other);
            }
            if (free) {
                places.push_back(place);
                buttons.push_back(MakeButton(nullptr, place));
            }
        }
        manager.Tick(0);
        for (CGhostButton* const button : buttons) {
            ASSERT_EQ(Reached(button->window).size(), buttons.size())
                << "seed " << seed << " from " << button->GetRect().x << " " << button->GetRect().y;
        }
    }
}

TEST_F(Navigation, AWindowsTitleButtonsAreReachedAndUsed) {
    auto* const window = new CGhostWindowEx(nullptr, 0, L"W", L"title",
                                            CGhostWindowEx::kFrame | CGhostWindowEx::kTitle,
                                            {false, 100, 100, 400, 200});
    CGhostButton* const button = MakeButton(window->window, {20, 20, 100, 28});
    int closed = 0;
    window->OnClose.connect([&](CGhostWindowEx*) { ++closed; });
    EXPECT_EQ(Reached(button->window).size(), 4u) << "it and three of the title bar";
    Focus(button->window);
    manager.Navigate(GUI_DIRECTION::kUp);
    for (int i = 0; i < 3; ++i) {
        manager.Navigate(GUI_DIRECTION::kRight);
    }
    manager.ActivateFocus();
    manager.Tick(0);
    EXPECT_EQ(closed, 1);
    Key(kReturn);
    EXPECT_EQ(closed, 2) << "by the keyboard as well";
    manager.Navigate(GUI_DIRECTION::kDown);
    EXPECT_EQ(manager.FocusWindow(), button->window);
}

TEST_F(Navigation, WhatLiesBehindAnotherWindowIsPassedOver) {
    CGhostButton* const left = MakeButton(nullptr, {100, 100, 100, 28});
    MakeButton(nullptr, {300, 100, 100, 28});
    CGhostButton* const half = MakeButton(nullptr, {460, 100, 100, 28});
    auto* const cover = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 250, 50, 250, 200});
    manager.Tick(0);
    Focus(left->window);
    EXPECT_TRUE(manager.MoveFocus(GUI_DIRECTION::kRight));
    EXPECT_EQ(manager.FocusWindow(), half->window) << "part of it is seen";
    cover->SetPos(250, 50, 350, 200);
    Focus(left->window);
    EXPECT_FALSE(manager.MoveFocus(GUI_DIRECTION::kRight));
    CGhostButton* const inside = MakeButton(cover->window, {60, 60, 80, 28});
    EXPECT_TRUE(manager.MoveFocus(GUI_DIRECTION::kRight));
    EXPECT_EQ(manager.FocusWindow(), inside->window);
}

TEST_F(Navigation, NeverLandsOnWhatIsHiddenCutAwayOrWithoutASize) {
    auto* const panel = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 100, 100, 300, 200});
    CGhostButton* const seen = MakeButton(panel->window, {10, 10, 80, 28});
    MakeButton(panel->window, {10, 50, 80, 28})->SetVisible(false);
    MakeButton(panel->window, {10, 250, 80, 28}); // below the client area
    MakeButton(panel->window, {10, 90, 0, 0});
    auto* const hidden = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 500, 100, 300, 200});
    MakeButton(hidden->window, {10, 10, 80, 28});
    hidden->SetVisible(false);
    manager.Tick(0);
    EXPECT_EQ(Reached(seen->window).size(), 1u);
}

TEST_F(Navigation, ABoxIsReadAndClosed) {
    CGhostButton* const button = MakeButton(nullptr, {100, 100, 100, 28});
    Focus(button->window);
    std::wstring text;
    for (int i = 0; i < 4000; ++i) {
        text += L"word ";
    }
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", text);
    manager.Tick(0);
    EXPECT_TRUE(manager.Navigate(GUI_DIRECTION::kUp));
    EXPECT_EQ(manager.FocusWindow(), box->Message()->window) << "a long text scrolls";
    for (int i = 0; i < 3000 && manager.FocusWindow() == box->Message()->window; ++i) {
        manager.Navigate(GUI_DIRECTION::kDown);
    }
    EXPECT_EQ(manager.FocusWindow(), box->Button()->window) << "at its end the focus goes on";
    manager.ActivateFocus();
    manager.Tick(0);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_EQ(manager.FocusWindow(), button->window);
}

TEST_F(Navigation, TheRingIsSeenWithoutAStyleForIt) {
    for (const std::string theme :
         {"", "<?xml version=\"1.0\"?><theme><textbox name=\"FOCUS\"/></theme>"}) {
        CGhostTheme::Get().ParseTheme(theme);
        CGhostSurface surface;
        ASSERT_TRUE(surface.Create({0, 0, 40, 20}, 1.0));
        PaintFocusRing(surface, {0, 0, 40, 20});
        EXPECT_EQ(surface.Pixels()[20] >> 24, 0xFFu) << theme;
    }
}

TEST_F(Navigation, TheKeyboardStaysInTheMiddleOfAScreenThatChanges) {
    auto* const edit = new CGhostEdit(nullptr, 0, L"EDIT", L"", 0, {false, 10, 50, 200, 28});
    const CGhostKeyboard* const keyboard = CGhostKeyboard::Open(edit);
    for (const GUI_RECT display : {
             GUI_RECT{0, 0, 1600, 1200},
             GUI_RECT{0, 0, 3440, 1440}
    }) {
        manager.SetScreen(display.width, display.height);
        manager.Tick(0);
        const GUI_RECT screen = manager.ScreenRect();
        const GUI_RECT at = OnScreen(keyboard->window);
        EXPECT_EQ(at.x + at.width / 2, screen.width / 2);
        EXPECT_EQ(at.Bottom(), screen.height - 16);
    }
    manager.SetScreen(1280, 720);
}
