// The main menu with its panels, and a player who opens them, uses keys and looks at the picture.
#pragma once

#include "gui/text.h"
#include "gui/window.h"
#include "gui/window_ex.h"
#include "screens/battle_ground.h"
#include "screens/screen_picture.h"
#include "screens/screens_rig.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <memory>

class PanelsTest : public ScreensTest {
protected:
    // Pixels of the display: one to a unit, the same on 4 to 3, on a wide display, and denser ones.
    struct DISPLAY {
        int32_t width;
        int32_t height;
    };
    static constexpr DISPLAY kDisplays[] = {
        {1280, 720 },
        {1280, 960 },
        {1366, 768 },
        {1440, 900 },
        {2560, 1080},
        {1920, 1080},
        {2560, 1440}
    };

    void SetUp() override {
        ScreensTest::SetUp();
        RegisterDefaultSettings(Settings());
        InputClearAll();
        Make(1280, 720);
    }
    void TearDown() override {
        End();
        InputClearAll();
        ScreensTest::TearDown();
    }

    void Make(int32_t width, int32_t height) {
        End();
        Manager().SetScreen(width, height);
        menu = std::make_unique<CGUIBattleGround>(host);
        Round();
    }
    void End() {
        menu.reset();
        Tick();
    }

    // As the program's, but for the picture.
    void Round() {
        menu->Update();
        Tick();
    }
    void Open(int32_t panel) {
        menu->OnMenu(panel);
        Round();
    }
    // As the program does after the toolkit's tick when the button was clicked.
    void Back() {
        Click(menu->BackButton());
        ASSERT_EQ(host.taken.back(), ModeInput::kBack);
        menu->Back();
        Round();
    }
    template <typename Panel>
    Panel& Shown() {
        return dynamic_cast<Panel&>(*menu->Panel());
    }

    // The controls in a window, what they consist of left out: none lies over another, and all lie within.
    static void ExpectTidy(const GHOSTMANAGER_WINDOW& window, const std::string& where) {
        std::vector<const GHOSTMANAGER_WINDOW*> children;
        for (const GHOSTMANAGER_WINDOW* at = window.firstChild; at != nullptr;
             at = at->nextSibling) {
            if (at->visible && !at->part && !at->nonClient && !at->deletePending) {
                children.push_back(at);
            }
        }
        const GUI_RECT inside{0, 0, window.clientRect.width, window.clientRect.height};
        for (const GHOSTMANAGER_WINDOW* const child : children) {
            const GUI_RECT place{child->x, child->y, child->width, child->height};
            EXPECT_FALSE(place.Empty()) << where << ", window " << child->id;
            EXPECT_EQ(Intersection(place, inside), place)
                << where << ", window " << child->id << " at " << place.x << " " << place.y;
            for (const GHOSTMANAGER_WINDOW* const other : children) {
                const GUI_RECT theirs{other->x, other->y, other->width, other->height};
                EXPECT_TRUE(child == other || Intersection(place, theirs).Empty())
                    << where << ", windows " << child->id << " and " << other->id;
            }
            ExpectTidy(*child, where);
        }
    }

    // The text in one line, with the margins of its style.
    static bool Fits(const std::wstring& style, const std::wstring& text, int32_t width) {
        GhostTextStyle look;
        EXPECT_TRUE(CGhostTheme::Get().GetStyle(style, look));
        return MeasureText(look.font, text).width + look.textRect.left + look.textRect.right <=
               width;
    }

    std::unique_ptr<CGUIBattleGround> menu;
};
