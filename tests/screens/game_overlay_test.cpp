#include "gui/text_box.h"
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

} // namespace
