// The keys that the screens tell: as they are bound now, and none of them cut.
#include "facts/machine_facts.h"
#include "gui/window_ex.h"
#include "screens/battle_ground.h"
#include "screens/first_steps.h"
#include "screens/play_keys.h"
#include "screens/rom_browser.h"
#include "screens/screens_rig.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>

#include <memory>

namespace {

using testing::Contains;

class PlayKeysTest : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        RegisterDefaultSettings(Settings());
    }
    void TearDown() override {
        RegisterDefaultSettings(Settings());
        ScreensTest::TearDown();
    }
    static std::string Told(uint16_t system) {
        std::string text;
        for (const KEY_WORDS& group : PlayKeys(system)) {
            for (const std::wstring& key : group.keys) {
                text += "[" + std::string(key.begin(), key.end()) + "]";
            }
            text += " " + std::string(group.does.begin(), group.does.end()) + " ";
        }
        return text;
    }
};

// Scancodes of the USB HID usage tables: 4 A, 19 P, 22 S, 26 W; 225 is the left shift.
TEST_F(PlayKeysTest, TellWhatPlaysEachMachineAtFirst) {
    EXPECT_EQ(Told(kSystemMasterSystem), "[Arrow keys] move [A] 1 [S] 2 [Space] pause ");
    EXPECT_EQ(Told(kSystemGameGear), "[Arrow keys] move [A] 1 [S] 2 [Return] start ");
    EXPECT_EQ(Told(kSystemNes),
              "[Arrow keys] move [S] A [A] B [Right Shift] select [Return] start ");
    EXPECT_EQ(Told(kSystemArcade), "[Arrow keys] move [5] coin [1] start [A] 1 [S] 2 ");
    EXPECT_EQ(Told(kSystemMegaDrive),
              "[Arrow keys] move [Z] A [X] B [C] C [A] X [S] Y [D] Z [Return] start ");
}

TEST_F(PlayKeysTest, FollowTheBindings) {
    Settings().SetInt2(L"INPUT SMS P1 BUTTON1", 19, 0);
    Settings().SetInt2(L"INPUT SMS P1 BUTTON2", 0, 22);
    Settings().SetInt2(L"INPUT SMS P1 UP", 26, 0);
    Settings().SetInt2(L"INPUT SMS PAUSE", 0, 0);
    EXPECT_EQ(Told(kSystemMasterSystem), "[W][Down][Left][Right] move [P] 1 [S] 2 ");
}

TEST_F(PlayKeysTest, LeaveOutWhatOnlyAJoystickDoes) {
    constexpr int32_t kJoystick = 1 << 24;
    Settings().SetInt2(L"INPUT NES P1 SELECT", kJoystick | 530, 0);
    EXPECT_EQ(Told(kSystemNes), "[Arrow keys] move [S] A [A] B [Return] start ");
}

TEST_F(PlayKeysTest, TheMenuTellsThemInPlaceOfTheNews) {
    Settings().SetInt2(L"INPUT Use", 19, 0);
    CGUIBattleGround menu(host);
    Tick();
    ASSERT_NE(menu.Steps(), nullptr);
    EXPECT_TRUE(menu.Steps()->IsVisible());
    EXPECT_THAT(menu.Steps()->Texts(),
                Contains(L"[P] Choose a game for the television that you look at."));
    Settings().SetInt2(L"INPUT Use", 22, 0);
    menu.OnMenu(kPanelCredits);
    EXPECT_FALSE(menu.Steps()->IsVisible());
    menu.Back();
    EXPECT_TRUE(menu.Steps()->IsVisible());
    EXPECT_THAT(menu.Steps()->Texts(),
                Contains(L"[S] Choose a game for the television that you look at."));
    EXPECT_NE(menu.Steps()->Foot().Text().find(L"No web service is set"), std::wstring::npos);
}

TEST_F(PlayKeysTest, TheNewsHasItsPlaceWithAService) {
    Settings().SetString(L"web_service", L"http://host/");
    const CGUIBattleGround menu(host);
    EXPECT_EQ(menu.Steps(), nullptr);
}

class BrowserKeys : public PlayKeysTest {
protected:
    void TearDown() override {
        browser.reset();
        Tick();
        PlayKeysTest::TearDown();
    }
    void Open(int32_t selector) {
        browser.reset();
        Tick();
        Settings().SetInt(L"gamebrowser_cursystem", selector);
        browser = std::make_unique<CGUIRomBrowser>(area->window, host);
        browser->Layout(area->window->clientRect.width, area->window->clientRect.height);
        browser->SetActive(true);
        browser->Library().WaitForScan();
        browser->Update();
        Tick();
    }

    TemporaryHome home;
    CGhostWindowEx* area = nullptr;
    std::unique_ptr<CGUIRomBrowser> browser;
};

TEST_F(BrowserKeys, AreBesideTheOptionsAndWhollySeen) {
    area = new CGhostWindowEx(nullptr, 0, L"BATTLEMAIN", L"", CGhostWindowEx::kFrame,
                              {false, 0, 60, 1280, 660});
    const auto machines = MachineFacts();
    for (size_t selector = 0; selector < machines.size(); ++selector) {
        Open(static_cast<int32_t>(selector));
        const KeyLine& keys = browser->Keys();
        EXPECT_FALSE(keys.Words().empty()) << machines[selector].name;
        EXPECT_LE(keys.WantedWidth(), keys.window->width) << machines[selector].name;
        const bool none = browser->Options() == nullptr;
        EXPECT_EQ(browser->NoOptions().IsVisible(), none) << machines[selector].name;
        // Nothing else of the options lies there.
        const GUI_RECT place{keys.window->x, keys.window->y, keys.window->width,
                             keys.window->height};
        for (const GHOSTMANAGER_WINDOW* at = keys.window->parent->firstChild; at != nullptr;
             at = at->nextSibling) {
            if (at != keys.window && at->visible) {
                EXPECT_TRUE(Intersection(place, {at->x, at->y, at->width, at->height}).Empty())
                    << machines[selector].name << ", window at " << at->x << " " << at->y;
            }
        }
    }
}

} // namespace
