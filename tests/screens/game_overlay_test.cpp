#include "facts/machine_facts.h"
#include "gui/text_box.h"
#include "screens/game_menu.h"
#include "screens/game_overlay.h"
#include "screens/screens_rig.h"

#include <memory>

namespace {

using Texts = std::vector<std::wstring>;

class GameOverlay : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        overlay = std::make_unique<CGUIGameOverlay>(host);
        state.shown = true;
        state.use = L"E";
        state.turnOff = L"Q";
    }
    void TearDown() override {
        overlay.reset();
        Tick();
        ScreensTest::TearDown();
    }
    void Round() {
        overlay->Update(state);
        Tick();
    }
    [[nodiscard]] int ShownButtons() const {
        int shown = 0;
        for (uint32_t number = 1; number <= CGUIGameOverlay::kButtons; ++number) {
            shown += overlay->Button(number)->IsVisible() ? 1 : 0;
        }
        return shown;
    }

    std::unique_ptr<CGUIGameOverlay> overlay;
    OVERLAY_STATE state;
};

TEST_F(GameOverlay, TellsTheWalkerWhatTheKeysDo) {
    state.walking = true;
    Round();
    EXPECT_EQ(overlay->ShownHints(), (Texts{L"Main Menu [F10]"}));
    state.selected = true;
    Round();
    EXPECT_EQ(overlay->ShownHints(), (Texts{L"Main Menu [F10]", L"Load Game [E]"}));
    state.selectedOn = true;
    Round();
    EXPECT_EQ(overlay->ShownHints(), (Texts{L"Main Menu [F10]", L"Load Game [E]",
                                            L"Turn off Game [Q]", L"Attach to TV [ESC]"}));
    EXPECT_EQ(ShownButtons(), 0) << "the mouse belongs to the camera";
}

TEST_F(GameOverlay, ShowsTheButtonsForThreeSecondsAfterTheMouseWasUsed) {
    state.selected = state.selectedOn = true;
    Round();
    EXPECT_EQ(ShownButtons(), 0) << "the mouse has not been used yet";
    state.mouseUsed = true;
    Round();
    EXPECT_EQ(ShownButtons(), 6);
    state.mouseUsed = false;
    host.now += 3000;
    Round();
    EXPECT_EQ(ShownButtons(), 6);
    host.now += 1;
    Round();
    EXPECT_EQ(ShownButtons(), 0);
    state.mouseUsed = true;
    Round();
    EXPECT_EQ(ShownButtons(), 6) << "any move brings them back";
    EXPECT_TRUE(overlay->ShownHints().empty());
}

TEST_F(GameOverlay, NamesTheWayBetweenRoomAndFullScreen) {
    state.roomVisible = true;
    Round();
    EXPECT_EQ(overlay->Button(4)->Caption(), L"Fullscreen Mode");
    state.roomVisible = false;
    Round();
    EXPECT_EQ(overlay->Button(4)->Caption(), L"TV Mode");
}

TEST_F(GameOverlay, TellsTheProgramWhatWasClicked) {
    state.selected = state.selectedOn = state.mouseUsed = true;
    Round();
    for (uint32_t number = 1; number <= CGUIGameOverlay::kButtons; ++number) {
        Click(overlay->Button(number));
    }
    EXPECT_EQ(host.taken, (std::vector{ModeInput::kMainMenu, ModeInput::kLoadGame,
                                       ModeInput::kExitGame, ModeInput::kTelevision,
                                       ModeInput::kResetGame, ModeInput::kSavedStates}));
}

TEST_F(GameOverlay, IsNotThereBehindMenuAndBrowser) {
    state.shown = false;
    state.walking = true;
    state.mouseUsed = true;
    Round();
    EXPECT_TRUE(overlay->ShownHints().empty());
    state.walking = false;
    Round();
    EXPECT_EQ(ShownButtons(), 0);
}

TEST_F(GameOverlay, AHintWithoutAKeyIsLeftOut) {
    state.walking = state.selected = state.selectedOn = true;
    state.use.clear();
    Round();
    EXPECT_EQ(overlay->ShownHints(),
              (Texts{L"Main Menu [F10]", L"Turn off Game [Q]", L"Attach to TV [ESC]"}));
    state.use = L"E";
    state.turnOff.clear();
    Round();
    EXPECT_EQ(overlay->ShownHints(),
              (Texts{L"Main Menu [F10]", L"Load Game [E]", L"Attach to TV [ESC]"}));
}

// The captions of the menu's buttons.
Texts Captions(const GameMenu& menu) {
    Texts captions;
    for (const CGhostButton* const button : menu.Buttons()) {
        captions.push_back(button->Caption());
    }
    return captions;
}

TEST_F(GameOverlay, TheMenuLeadsEverywhereByKeysAlone) {
    state.selected = state.selectedOn = state.roomVisible = true;
    Round();
    const Texts all = {L"Resume",  L"Save and Load", L"Reset",       L"Controls",
                       L"Picture", L"Sound",         L"Full Screen", L"Fill the Window",
                       L"Library", L"Turn Off",      L"Main Menu",   L"Quit"};
    for (const size_t entry : {0u, 1u, 2u, 7u, 8u, 9u, 10u, 11u}) {
        overlay->ToggleMenu({L"Luciole", kSystemMasterSystem, {}});
        Round();
        ASSERT_NE(overlay->Menu(), nullptr);
        EXPECT_EQ(Captions(*overlay->Menu()), all);
        for (size_t down = 0; down < entry; ++down) {
            PressKey(GHOSTGUIKey::kDown);
        }
        PressKey(GHOSTGUIKey::kReturn);
        Round();
        EXPECT_EQ(overlay->Menu(), nullptr);
        EXPECT_EQ(Manager().ModalWindow(), nullptr);
    }
    EXPECT_EQ(host.taken,
              (std::vector{ModeInput::kSavedStates, ModeInput::kResetGame, ModeInput::kTelevision,
                           ModeInput::kLoadGame, ModeInput::kExitGame, ModeInput::kMainMenu,
                           ModeInput::kQuit}));
    EXPECT_EQ(host.saves, 8) << "what was changed in it is kept";
}

TEST_F(GameOverlay, TheMenuOffersWhatThereIs) {
    state.walking = true;
    Round();
    overlay->ToggleMenu();
    ASSERT_NE(overlay->Menu(), nullptr);
    EXPECT_EQ(Captions(*overlay->Menu()),
              (Texts{L"Continue", L"Picture", L"Sound", L"Full Screen", L"Main Menu", L"Quit"}));
    overlay->ToggleMenu();
    Round();
    EXPECT_EQ(overlay->Menu(), nullptr);
    state.shown = false;
    Round();
    overlay->ToggleMenu();
    EXPECT_EQ(overlay->Menu(), nullptr) << "menu and browser have buttons of their own";
}

TEST_F(GameOverlay, TheMenuOfAGameEndsWithIt) {
    state.selected = state.roomVisible = true;
    Round();
    overlay->ToggleMenu();
    state.selectedOn = true; // it was starting
    Round();
    ASSERT_NE(overlay->Menu(), nullptr);
    state.selectedOn = false;
    Round();
    EXPECT_EQ(overlay->Menu(), nullptr);
    EXPECT_EQ(Manager().ModalWindow(), nullptr);
    EXPECT_TRUE(host.taken.empty());
}

TEST_F(GameOverlay, TheMenuIsLeftByEscapeAndAControllersRightButton) {
    Round();
    overlay->ToggleMenu();
    Round();
    PressKey(GHOSTGUIKey::kEscape);
    EXPECT_EQ(overlay->Menu(), nullptr);
    Round();
    overlay->ToggleMenu();
    Round();
    EXPECT_TRUE(Manager().CancelFocus());
    Round();
    EXPECT_EQ(overlay->Menu(), nullptr);
    EXPECT_TRUE(host.taken.empty());
    overlay->ToggleMenu(); // it ends with the overlay
}

} // namespace
