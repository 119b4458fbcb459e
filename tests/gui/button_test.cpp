// Buttons and check boxes.
#include "gui/control_rig.h"

namespace {

class ButtonTest : public ControlTest {
protected:
    CGhostButton* Make(uint32_t flags) {
        auto* const button =
            new CGhostButton(nullptr, 0, L"BUTTON", L"ok", flags, {false, 100, 100, 80, 30});
        button->OnDown.connect([this](auto&&...) { told += "down "; });
        button->OnUp.connect([this](auto&&...) { told += "up "; });
        button->OnClick.connect([this](auto&&...) { told += "click "; });
        button->OnState.connect([this](CGhostButton*, int, int, bool pressed, bool released) {
            told += pressed ? "pressed " : released ? "released " : "moved ";
        });
        button->OnWheel.connect([this](auto&&...) { told += "wheel "; });
        return button;
    }
    std::string Told() { return std::exchange(told, {}); }
    std::string told;
};

using Button = ButtonTest;
using CheckBox = ButtonTest;

} // namespace

TEST_F(Button, AReleaseInsideClicks) {
    CGhostButton* const button = Make(0);
    MoveTo(110, 110);
    EXPECT_EQ(button->GetState(), CGhostButton::kHot);
    Press();
    EXPECT_EQ(button->GetState(), CGhostButton::kPressed);
    EXPECT_EQ(Told(), "down pressed ");
    Release();
    EXPECT_EQ(button->GetState(), CGhostButton::kHot);
    EXPECT_EQ(Told(), "click released up ");
}

TEST_F(Button, AReleaseOutsideSendsNoClickButAnUp) {
    CGhostButton* const button = Make(0);
    MoveTo(110, 110);
    Press();
    MoveTo(300, 300);
    EXPECT_EQ(button->GetState(), CGhostButton::kNormal);
    Told();
    Release();
    EXPECT_EQ(Told(), "released up ");
    EXPECT_FALSE(button->IsDown());
}

TEST_F(Button, ALatchingButtonChangesWithThePressAlone) {
    CGhostButton* const button = Make(CGhostButton::kLatches);
    MoveTo(110, 110);
    Press();
    EXPECT_TRUE(button->IsDown());
    EXPECT_EQ(Told(), "click down pressed ");
    Release();
    EXPECT_EQ(button->GetState(), CGhostButton::kPressed);
    MoveTo(500, 500);
    EXPECT_EQ(button->GetState(), CGhostButton::kPressed) << "it stays down without the mouse";
    MoveTo(110, 110);
    Press();
    EXPECT_FALSE(button->IsDown());
    EXPECT_EQ(button->GetState(), CGhostButton::kHot);
    Release();
    EXPECT_EQ(button->GetState(), CGhostButton::kHot);
}

TEST_F(Button, APressOnAGripCapturesWithoutShowing) {
    CGhostButton* const button = Make(CGhostButton::kGrips);
    MoveTo(106, 110);
    EXPECT_EQ(manager.CursorIndex(), 2u);
    MoveTo(107, 110);
    EXPECT_EQ(manager.CursorIndex(), 1u);
    MoveTo(174, 110);
    EXPECT_EQ(manager.CursorIndex(), 2u);
    Press();
    EXPECT_EQ(button->GetState(), CGhostButton::kHot);
    EXPECT_FALSE(button->IsDown());
    EXPECT_EQ(Told(), "down pressed ");
    MoveTo(190, 110);
    EXPECT_EQ(Told(), "moved ") << "it has the capture";
}

TEST_F(Button, SpaceAndReturnClickWithTheirRelease) {
    CGhostButton* const button = Make(0);
    Focus(button->window);
    for (const uint32_t key : {kSpace, kReturn}) {
        KeyDown(key);
        EXPECT_EQ(button->GetState(), CGhostButton::kPressed);
        EXPECT_EQ(Told(), "");
        KeyUp(key);
        EXPECT_EQ(button->GetState(), CGhostButton::kNormal);
        EXPECT_EQ(Told(), "click ");
    }
    CGhostButton* const deaf = Make(CGhostButton::kNoKeys);
    Focus(deaf->window);
    Key(kSpace);
    EXPECT_EQ(Told(), "");
}

TEST_F(Button, ADisabledButtonTakesNothing) {
    CGhostButton* const button = Make(0);
    button->SetEnabled(false);
    ClickAt(110, 110);
    Wheel(true);
    EXPECT_EQ(Told(), "");
    EXPECT_EQ(button->GetState(), CGhostButton::kDisabled);
    button->SetEnabled(true);
    EXPECT_EQ(button->GetState(), CGhostButton::kNormal);
    Wheel(true);
    EXPECT_EQ(Told(), "wheel ");
}

TEST_F(Button, SetDownOutlastsTheFocus) {
    CGhostButton* const button = Make(0);
    Focus(button->window);
    button->SetDown(true);
    EXPECT_EQ(button->GetState(), CGhostButton::kPressed);
    Focus((new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 500, 0, 9, 9}))->window);
    EXPECT_TRUE(button->IsDown());
}

TEST_F(Button, ArrowsMoveTheFocusBetweenButtons) {
    CGhostButton* const button = Make(0);
    auto* const below = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 100, 140, 80, 30});
    Focus(button->window);
    Key(kDown);
    EXPECT_EQ(manager.FocusWindow(), below->window);
    EXPECT_TRUE(manager.Navigate(GUI_DIRECTION::kUp));
    EXPECT_EQ(manager.FocusWindow(), button->window);
    EXPECT_TRUE(manager.ActivateFocus());
    manager.Tick(0);
    EXPECT_EQ(Told(), "down pressed click released up ");
}

TEST_F(CheckBox, AReleaseInsideTogglesAndAKeyOnlyReports) {
    auto* const box =
        new CGhostCheckBox(nullptr, 0, L"BUTTON", L"check", 0, {false, 100, 100, 200, 24});
    std::vector<bool> values;
    box->OnChange.connect([&](CGhostCheckBox*, bool value) { values.push_back(value); });
    ClickAt(150, 110);
    EXPECT_TRUE(box->IsChecked());
    EXPECT_EQ(box->GetState(), CGhostButton::kPressed);
    MoveTo(500, 500);
    EXPECT_EQ(box->GetState(), CGhostButton::kPressed) << "the mouse changes nothing";
    Key(kSpace);
    EXPECT_TRUE(box->IsChecked());
    EXPECT_EQ(box->GetState(), CGhostButton::kNormal);
    EXPECT_EQ(values, (std::vector<bool>{true, false}));
    ClickAt(150, 110);
    EXPECT_FALSE(box->IsChecked());
    EXPECT_EQ(box->GetState(), CGhostButton::kHot);
    Key(46); // plus
    EXPECT_TRUE(box->IsChecked());
    Key(45); // minus
    EXPECT_FALSE(box->IsChecked());
}

// A box that opens while return is held gets its release.
TEST_F(Button, AKeyThatWentDownElsewhereDoesNothing) {
    CGhostButton* const button = Make(0);
    auto* const box = new CGhostCheckBox(nullptr, 0, L"BUTTON", L"", 0, {false, 300, 100, 90, 24});
    box->OnChange.connect([this](auto&&...) { told += "change "; });
    for (GHOSTMANAGER_WINDOW* const window : {button->window, box->window}) {
        KeyDown(kReturn);
        Focus(window);
        KeyUp(kReturn);
        EXPECT_EQ(Told(), "");
    }
    Focus(button->window);
    KeyDown(kSpace);
    Focus(box->window);
    EXPECT_FALSE(button->IsDown());
    KeyDown(kSpace);
    EXPECT_EQ(box->GetState(), CGhostButton::kPressed);
    Focus(button->window);
    EXPECT_EQ(box->GetState(), CGhostButton::kNormal);
    KeyUp(kSpace);
    EXPECT_EQ(Told(), "");
}

// By a shape or a fill of its own, not by the caption's colour alone.
TEST_F(CheckBox, ADisabledOneShowsWhetherItIsChecked) {
    const auto square = [&](const std::string& others, bool checked) {
        CGhostTheme::Get().ParseTheme(
            "<?xml version='1.0'?><theme><button name='B'>"
            "<textbox name='pressed'><texture type='color'><color name='bg' val='FF0000AA'/>"
            "</texture></textbox><textbox name='disabled'><texture type='color'>"
            "<color name='bg' val='FF000055'/></texture></textbox>" +
            others + "</button></theme>");
        auto* const box = new CGhostCheckBox(nullptr, 0, L"B", L"", 0, {false, 0, 0, 90, 24});
        box->SetChecked(checked);
        box->SetEnabled(false);
        EXPECT_EQ(box->IsChecked(), checked);
        manager.Tick(0);
        return box->window->surface->Pixels()[0];
    };
    EXPECT_EQ(square("", false), 0xFF000055);
    EXPECT_EQ(square("", true), 0xFF0000AA);
    EXPECT_EQ(square("<textbox name='disabled and checked'><texture type='color'>"
                     "<color name='bg' val='FF000077'/></texture></textbox>",
                     true),
              0xFF000077);
}

TEST_F(CheckBox, WithoutKeysItIsNoStopAndIgnoresThem) {
    auto* const box = new CGhostCheckBox(nullptr, 0, L"BUTTON", L"", CGhostButton::kNoKeys,
                                         {false, 300, 100, 90, 24});
    int reports = 0;
    box->OnChange.connect([&](CGhostCheckBox*, bool) { ++reports; });
    EXPECT_FALSE(box->window->tabStop);
    box->SetEnabled(false);
    box->SetEnabled(true);
    EXPECT_FALSE(box->window->tabStop);
    Focus(box->window);
    for (const uint32_t key : {kSpace, kReturn, 46u}) {
        Key(key);
    }
    EXPECT_EQ(reports, 0);
    ClickAt(310, 110);
    EXPECT_EQ(reports, 1) << "the mouse still checks it";
    EXPECT_TRUE(box->IsChecked());
}

TEST_F(CheckBox, SetDownShowsItPressedAndBackAsItWas) {
    auto* const box = new CGhostCheckBox(nullptr, 0, L"BUTTON", L"", 0, {false, 300, 100, 90, 24});
    box->SetDown(true);
    EXPECT_EQ(box->GetState(), CGhostButton::kPressed);
    EXPECT_FALSE(box->IsChecked());
    box->SetDown(false);
    EXPECT_EQ(box->GetState(), CGhostButton::kNormal);
    box->SetChecked(true);
    box->SetDown(false);
    EXPECT_EQ(box->GetState(), CGhostButton::kPressed) << "it is checked";
}
