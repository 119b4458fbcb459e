#include "front/gui_pad.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <array>

namespace {

// Three buttons in a row, the first of which has the focus, and a controller in player 1's hands.
class GuiPadTest : public testing::Test {
protected:
    void SetUp() override {
        InputClearAll();
        InputAttachPad(0, {});
        CGhostManager::Get().Reset();
        for (size_t i = 0; i < buttons.size(); ++i) {
            buttons[i] = new CGhostButton(nullptr, 0, L"none", L"", 0,
                                          {false, static_cast<int32_t>(i) * 100, 0, 80, 25});
            buttons[i]->OnClick.connect([this](CGhostButton*, int, int, unsigned) { ++clicks; });
        }
        buttons[0]->SetFocus();
        Round();
    }
    void TearDown() override {
        CGhostManager::Get().Reset();
        InputDetachPad(0);
        InputClearAll();
    }

    PAD_PRESSES Round(bool active = true) {
        InputBeginPump();
        const PAD_PRESSES presses = pad.Update(active, now);
        CGhostManager::Get().Tick(16667);
        return presses;
    }
    void Hold(PadControl control, bool down) { InputPadChanged(0, control, down); }
    [[nodiscard]] size_t Focused() const {
        for (size_t i = 0; i < buttons.size(); ++i) {
            if (CGhostManager::Get().FocusWindow() == buttons[i]->window) {
                return i;
            }
        }
        return buttons.size();
    }

    std::array<CGhostButton*, 3> buttons{};
    GuiPad pad;
    int64_t now = 1000000;
    int clicks = 0;
};

// The code of the lower button is bound to an action of a machine.
TEST_F(GuiPadTest, AButtonThatAGameUsesStillClicks) {
    RegisterDefaultSettings(Settings());
    const uint32_t code = JoystickButtonCode(0, 0);
    PadCodes codes{};
    codes[kPadSouth] = {code, 0};
    InputSetPadCodes(0, codes);
    Settings().SetInt2(L"INPUT NES P1 START", 40, static_cast<int32_t>(JoystickBinding(0, code)));
    Round();
    Hold(kPadSouth, true);
    Round();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(InputPadsActing(), 0u); // but does nothing else in a game
    RegisterDefaultSettings(Settings());
}

TEST_F(GuiPadTest, APressMovesTheFocusOnce) {
    Hold(kPadDpadRight, true);
    Round();
    Round();
    EXPECT_EQ(Focused(), 1u);
}

TEST_F(GuiPadTest, AHeldDirectionRepeats) {
    Hold(kPadStickRight, true);
    Round();
    now += 399999;
    Round();
    EXPECT_EQ(Focused(), 1u);
    now += 1;
    Round();
    EXPECT_EQ(Focused(), 2u);
    Hold(kPadStickRight, false);
    Round();
    Hold(kPadStickLeft, true);
    Round();
    EXPECT_EQ(Focused(), 1u);
    now += 400000;
    Round();
    EXPECT_EQ(Focused(), 0u);
}

TEST_F(GuiPadTest, TheLowerButtonPressesWhatHasTheFocus) {
    Hold(kPadSouth, true);
    Round();
    Round();
    EXPECT_EQ(clicks, 1);
}

TEST_F(GuiPadTest, WhatTheToolkitHasNoUseForIsTheScreens) {
    Hold(kPadEast, true);
    Hold(kPadStart, true);
    Hold(kPadGuide, true);
    Hold(kPadWest, true);
    Hold(kPadLeftShoulder, true);
    const PAD_PRESSES presses = Round();
    EXPECT_TRUE(presses.back);
    EXPECT_TRUE(presses.start);
    EXPECT_TRUE(presses.guide);
    EXPECT_TRUE(presses.favourite);
    EXPECT_EQ(presses.shoulder, -1);
    EXPECT_FALSE(Round().back) << "only the press counts";
}

TEST_F(GuiPadTest, WhatIsHeldWhenAScreenAppearsDoesNothing) {
    Hold(kPadSouth, true);
    Hold(kPadDpadRight, true);
    Round(false);
    Round(true);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(Focused(), 0u);
    Hold(kPadSouth, false);
    Round();
    Hold(kPadSouth, true);
    Round();
    EXPECT_EQ(clicks, 1);
}

TEST_F(GuiPadTest, EveryPlayersControllerActs) {
    InputAttachPad(1, {});
    InputPadChanged(1, kPadDpadRight, true);
    Round();
    EXPECT_EQ(Focused(), 1u);
    InputDetachPad(1);
}

} // namespace
