// The panel over a game that waits: its pages, by keys, clicks and what a controller does.
#include "facts/machine_facts.h"
#include "gui/drop_list.h"
#include "gui/slider.h"
#include "gui/window_ex.h"
#include "screens/game_menu.h"
#include "screens/key_line.h"
#include "screens/screen_picture.h"
#include "screens/screens_rig.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <optional>
#include <utility>

namespace {

constexpr uint16_t kMachines[] = {kSystemMasterSystem, kSystemGameGear, kSystemNes, kSystemArcade,
                                  kSystemMegaDrive};

std::wstring FullPadName(std::wstring_view action) {
    return action.ends_with(L"UP") ? L"D-pad" : L"View";
}

class GameMenuPages : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        RegisterDefaultSettings(Settings());
        Settings().SetBool(L"app_fullscreen", false);
    }
    void TearDown() override {
        Close();
        ScreensTest::TearDown();
    }

    GameMenu* Open(uint16_t system = kSystemMasterSystem, bool pad = false, bool room = true) {
        Close();
        GAME_MENU of;
        of.title = L"Luciole, Master System";
        of.system = system;
        of.room = room;
        of.padNames = pad ? PadNames(FullPadName) : PadNames();
        of.settingsChanged = [this] { ++changes; };
        of.ofGame = {
            {L"Save and Load", ModeInput::kSavedStates},
            {L"Reset",         ModeInput::kResetGame  }
        };
        of.ofProgram = {
            {L"Fill the Window", ModeInput::kTelevision},
            {L"Library",         ModeInput::kLoadGame  },
            {L"Turn Off",        ModeInput::kExitGame  },
            {L"Main Menu",       ModeInput::kMainMenu  },
            {L"Quit",            ModeInput::kQuit      }
        };
        menu = new GameMenu(std::move(of), [this](std::optional<ModeInput> one) {
            menu = nullptr;
            ++ends;
            chosen = one;
        });
        Tick();
        return menu;
    }
    void Close() {
        if (menu != nullptr) {
            menu->Dismiss();
        }
        Tick();
    }

    // Within the screen, within the box, and over none of the others.
    void ExpectPlaces(const std::vector<const GHOSTMANAGER_WINDOW*>& windows,
                      const std::string& where) {
        GUI_RECT box;
        ASSERT_TRUE(Manager().GetScreenRect(menu->Box()->window, &box));
        EXPECT_EQ(Intersection(box, Manager().ScreenRect()), box) << where;
        std::vector<GUI_RECT> places;
        for (const GHOSTMANAGER_WINDOW* const window : windows) {
            if (!Manager().IsWindowVisible(window)) {
                continue;
            }
            GUI_RECT place;
            ASSERT_TRUE(Manager().GetScreenRect(window, &place));
            EXPECT_EQ(Intersection(place, box), place) << where;
            for (const GUI_RECT& other : places) {
                EXPECT_TRUE(Intersection(place, other).Empty())
                    << where << ": " << place.x << " " << place.y << ", " << other.x << " "
                    << other.y;
            }
            places.push_back(place);
        }
    }

    GameMenu* menu = nullptr;
    std::optional<ModeInput> chosen;
    int changes = 0;
    int ends = 0;
};

TEST_F(GameMenuPages, EveryMachineHasACardThatFits) {
    const char* const names[] = {"sms", "gg", "nes", "arcade", "md"};
    for (size_t at = 0; at < std::size(kMachines); ++at) {
        for (const bool pad : {false, true}) {
            ASSERT_NE(Open(kMachines[at], pad), nullptr);
            EXPECT_EQ(menu->Page(), MenuPage::kControls);
            ASSERT_NE(menu->Card(), nullptr);
            std::vector<const GHOSTMANAGER_WINDOW*> windows;
            for (const KeyLine* const label : menu->Card()->Labels()) {
                windows.push_back(label->window);
                EXPECT_GE(label->GetRect().width, label->WantedWidth())
                    << names[at] << ": " << label->Words().front().keys.front().c_str();
                EXPECT_EQ(label->Words().front().pads.size(), pad ? 1u : 0u);
            }
            EXPECT_GE(windows.size(), 4u) << "directions and three buttons, on every machine";
            ExpectPlaces(windows, names[at]);
            KeepPicture(std::string("panel-") + names[at] + (pad ? "-pad" : ""));
        }
    }
}

TEST_F(GameMenuPages, TheCardNamesTheKeysAsTheyAreBound) {
    Settings().SetInt2(L"INPUT NES P1 BUTTONA", 29, 0); // Z
    Settings().SetInt2(L"INPUT NES P1 BUTTONB", 0, 0);
    ASSERT_NE(Open(kSystemNes), nullptr);
    std::vector<std::pair<std::wstring, std::wstring>> shown; // what is done, and by which key
    for (const KeyLine* const label : menu->Card()->Labels()) {
        shown.emplace_back(label->Words().front().does, label->Words().front().keys.front());
    }
    EXPECT_EQ(shown, (std::vector<std::pair<std::wstring, std::wstring>>{
                         {L"move",   L"Arrow keys" },
                         {L"select", L"Right Shift"},
                         {L"A",      L"Z"          },
                         {L"start",  L"Return"     }
    }))
        << "a button without a key is left out";
    RegisterDefaultSettings(Settings());
    Settings().SetInt2(L"INPUT NES P1 BUTTONA", 22, 0);
    Settings().SetInt2(L"INPUT NES P1 BUTTONB", 4, 0);
}

TEST_F(GameMenuPages, PictureAndSoundActAtOnce) {
    ASSERT_NE(Open(), nullptr);
    Click(menu->ButtonOf(L"Sound"));
    EXPECT_EQ(menu->Page(), MenuPage::kSound);
    CGhostSlider* const volume = menu->Rows(MenuPage::kSound).SliderOf(L"audio_volume");
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(Manager().FocusWindow(), volume->window) << "the first that can be changed";
    Settings().SetFloat(L"audio_volume", 1.0f);
    ASSERT_TRUE(Manager().Navigate(GUI_DIRECTION::kLeft));
    EXPECT_LT(Settings().GetFloat(L"audio_volume"), 1.0f);
    EXPECT_EQ(changes, 1);

    Click(menu->ButtonOf(L"Picture"));
    CGhostDropList* const vsync = menu->Rows(MenuPage::kPicture).ListOf(L"app_vsync");
    ASSERT_NE(vsync, nullptr);
    Settings().SetBool(L"app_vsync", true);
    Tick();
    EXPECT_EQ(vsync->Caption(), L"Enabled");
    vsync->SetSelected(1);
    EXPECT_FALSE(Settings().GetBool(L"app_vsync"));
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(ends, 0) << "it stays open";
    KeepPicture("panel-picture");
    Click(menu->ButtonOf(L"Sound"));
    KeepPicture("panel-sound");
    Settings().SetFloat(L"audio_volume", 1.0f);
    Settings().SetBool(L"app_vsync", true);
}

TEST_F(GameMenuPages, OutsideTheRoomItsSettingsAreLeftOut) {
    ASSERT_NE(Open(kSystemNes, false, true), nullptr);
    EXPECT_NE(menu->Rows(MenuPage::kPicture).ListOf(L"app_lighting"), nullptr);
    EXPECT_EQ(menu->Rows(MenuPage::kPicture).ListOf(L"app_antialias"), nullptr)
        << "it acts after a restart";
    ASSERT_NE(Open(kSystemNes, false, false), nullptr);
    EXPECT_EQ(menu->Rows(MenuPage::kPicture).ListOf(L"app_lighting"), nullptr);
    EXPECT_NE(menu->Rows(MenuPage::kPicture).ListOf(L"app_vsync"), nullptr);
}

TEST_F(GameMenuPages, FullScreenIsSwitchedWithoutLeaving) {
    ASSERT_NE(Open(), nullptr);
    Click(menu->ButtonOf(L"Full Screen"));
    EXPECT_TRUE(Settings().GetBool(L"app_fullscreen"));
    EXPECT_EQ(changes, 1);
    Tick();
    ASSERT_NE(menu->ButtonOf(L"Leave Full Screen"), nullptr);
    Click(menu->ButtonOf(L"Leave Full Screen"));
    EXPECT_FALSE(Settings().GetBool(L"app_fullscreen"));
    EXPECT_EQ(ends, 0);
}

TEST_F(GameMenuPages, GoingBackLeavesAPageFirst) {
    ASSERT_NE(Open(), nullptr);
    Click(menu->ButtonOf(L"Picture"));
    Tick();
    ASSERT_NE(Manager().FocusWindow(), menu->ButtonOf(L"Picture")->window);
    PressKey(GHOSTGUIKey::kEscape);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(Manager().FocusWindow(), menu->ButtonOf(L"Picture")->window);
    Manager().ActivateFocus(); // by a controller
    Tick();
    ASSERT_NE(Manager().FocusWindow(), menu->ButtonOf(L"Picture")->window);
    EXPECT_TRUE(Manager().CancelFocus());
    EXPECT_EQ(Manager().FocusWindow(), menu->ButtonOf(L"Picture")->window);
    EXPECT_TRUE(Manager().CancelFocus());
    Tick();
    EXPECT_EQ(menu, nullptr);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(chosen, std::nullopt);
}

TEST_F(GameMenuPages, EveryControlIsReachedAndFitsOnEveryScreen) {
    for (const auto& [width, height] : {
             std::pair{640,  480 },
             std::pair{1280, 720 },
             std::pair{1920, 1080},
             std::pair{800,  1280}
    }) {
        Manager().SetScreen(width, height);
        for (const MenuPage page : {MenuPage::kControls, MenuPage::kPicture, MenuPage::kSound}) {
            ASSERT_NE(Open(kSystemMegaDrive, true), nullptr);
            menu->ShowPage(page);
            Tick();
            const std::string where = std::to_string(width) + "x" + std::to_string(height) +
                                      ", page " + std::to_string(static_cast<int>(page));
            std::vector<const GHOSTMANAGER_WINDOW*> windows;
            for (const CGhostButton* const button : menu->Buttons()) {
                windows.push_back(button->window);
            }
            if (page != MenuPage::kControls) {
                for (const GHOSTMANAGER_WINDOW* const stop : menu->Rows(page).Stops()) {
                    windows.push_back(stop);
                }
            }
            ExpectPlaces(windows, where);
            KeepPicture("panel-" + std::to_string(height) + "-" +
                        std::to_string(static_cast<int>(page)));
            ExpectEveryControlIsReached(where);
        }
    }
}

} // namespace
