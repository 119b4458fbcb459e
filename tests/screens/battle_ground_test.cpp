#include "gui/multi_text.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "screens/battle_ground.h"
#include "screens/credits.h"
#include "screens/screens_rig.h"
#include "screens/taglines.h"
#include "settings/settings.h"

#include <algorithm>
#include <memory>
#include <set>

namespace {

class BattleGround : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        menu = std::make_unique<CGUIBattleGround>(host);
        Round();
    }
    void TearDown() override {
        menu.reset();
        Tick();
        ScreensTest::TearDown();
    }
    void Round() {
        menu->Update();
        Tick();
    }
    [[nodiscard]] GUI_RECT InMain(const GHOSTMANAGER_WINDOW* window) const {
        return {window->x, window->y, window->width, window->height};
    }

    std::unique_ptr<CGUIBattleGround> menu;
};

TEST_F(BattleGround, PlacesTheButtonsInTheMiddle) {
    const int32_t width = menu->MainWindow()->window->clientRect.width;
    for (int32_t id = 0; id < kMenuPanels; ++id) {
        EXPECT_EQ(InMain(menu->MenuButton(id)->window),
                  (GUI_RECT{(width - 800) / 2 + id * 160, 35, 140, 25}));
    }
    EXPECT_EQ(InMain(menu->Tagline()->window), (GUI_RECT{(width - 680) / 2, 0, 680, 25}));
    EXPECT_EQ(InMain(menu->BackButton()->window), (GUI_RECT{15, 15, 100, 25}));
}

TEST_F(BattleGround, FollowsTheSizeOfTheScreen) {
    Manager().SetScreen(1280, 960);
    Round();
    EXPECT_EQ(InMain(menu->MainWindow()->window), (GUI_RECT{0, 60, 1280, 900}));
}

TEST_F(BattleGround, ShowsAPanelInPlaceOfTheMenuAndComesBack) {
    EXPECT_FALSE(menu->BackButton()->IsVisible());
    Click(menu->MenuButton(kPanelCredits));
    Round();
    ASSERT_NE(menu->Panel(), nullptr);
    EXPECT_TRUE(menu->BackButton()->IsVisible());
    EXPECT_FALSE(menu->MenuButton(kPanelBrowser)->IsVisible());
    EXPECT_EQ(host.taken, std::vector{ModeInput::kOpenPanel});
    Click(menu->BackButton());
    EXPECT_EQ(host.taken.back(), ModeInput::kBack);
    menu->Back();
    Round();
    EXPECT_EQ(menu->Panel(), nullptr);
    EXPECT_EQ(menu->CurrentPanel(), kNoPanel);
    EXPECT_TRUE(menu->MenuButton(kPanelBrowser)->IsVisible());
    EXPECT_FALSE(menu->BackButton()->IsVisible());
}

TEST_F(BattleGround, QuitsOnceOnQuit) {
    Click(menu->MenuButton(kPanelQuit));
    EXPECT_EQ(host.taken, std::vector{ModeInput::kQuit}) << "once";
}

TEST_F(BattleGround, GreetsWithALineOfTheTableEachTime) {
    std::set<std::wstring> seen;
    for (int visit = 0; visit < 60; ++visit) {
        host.now += 977;
        Click(menu->MenuButton(kPanelCredits));
        Round();
        menu->Back();
        Round();
        seen.insert(menu->Tagline()->Text());
    }
    EXPECT_GT(seen.size(), 5u);
    for (const std::wstring& line : seen) {
        EXPECT_NE(std::find(Taglines().begin(), Taglines().end(), line), Taglines().end());
    }
}

TEST_F(BattleGround, CanBeUsedByTheArrowsAlone) {
    PressKey(GHOSTGUIKey::kRight);
    PressKey(GHOSTGUIKey::kRight);
    PressKey(GHOSTGUIKey::kRight);
    PressKey(GHOSTGUIKey::kReturn);
    Round();
    EXPECT_EQ(menu->CurrentPanel(), kPanelCredits);
}

TEST_F(BattleGround, WelcomesWhoHasNotSeenThisVersionYet) {
    const auto opened = [this] {
        menu.reset();
        Tick();
        menu = std::make_unique<CGUIBattleGround>(host);
        Round();
        return menu->Tagline()->Text();
    };
    const auto isTagline = [](const std::wstring& line) {
        return std::find(Taglines().begin(), Taglines().end(), line) != Taglines().end();
    };
    Settings().SetBool(L"app_720runonce", false);
    const std::wstring welcome = opened();
    EXPECT_FALSE(isTagline(welcome));
    EXPECT_NE(welcome.find(L"PLAY GAMES"), std::wstring::npos);
    GhostTextStyle look;
    ASSERT_TRUE(CGhostTheme::Get().GetStyle(L"SECTIONTEXT", look));
    EXPECT_LE(MeasureText(look.font, welcome).width, 680 - 20);
    Settings().SetBool(L"app_720runonce", true);
    EXPECT_TRUE(isTagline(opened()));
}

} // namespace
