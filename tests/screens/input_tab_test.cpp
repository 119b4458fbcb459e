#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/message_box.h"
#include "gui/multi_text.h"
#include "gui/text_box.h"
#include "screens/input_list.h"
#include "screens/input_tab.h"
#include "screens/options.h"
#include "screens/panels_rig.h"

namespace {

class Inputs : public PanelsTest {
protected:
    void SetUp() override {
        PanelsTest::SetUp();
        OpenInputs();
    }
    void OpenInputs() {
        Open(kPanelOptions);
        Click(Shown<CGUIOptions>().TabButton(OptionTab::kInput));
        Round();
    }
    InputTab& Tab() { return Shown<CGUIOptions>().Inputs(); }
    InputList& List() { return *Tab().List(); }

    void ChooseSystem(const wchar_t* name) {
        CGhostDropList& systems = *Tab().Systems();
        for (int32_t i = 0; i < systems.Count(); ++i) {
            if (systems.Item(i)->text == name) {
                systems.SetSelected(i);
            }
        }
        Round();
        EXPECT_EQ(systems.Caption(), name);
    }
    int32_t RowOf(std::wstring_view action) {
        for (int32_t row = 0; row < List().RowCount(); ++row) {
            if (List().Cell(row, 0)->text == action) {
                return row;
            }
        }
        ADD_FAILURE() << std::string(action.begin(), action.end());
        return 0;
    }
    std::wstring Shows(std::wstring_view action, int32_t column) {
        return List().Cell(RowOf(action), column)->text;
    }
    bool ShowsTrouble(std::wstring_view action, int32_t column) {
        return List().Cell(RowOf(action), column)->image >= 0;
    }
    void DoubleClick(std::wstring_view action, int32_t column) {
        const int32_t row = RowOf(action);
        List().EnsureVisible(row);
        GUI_RECT list;
        ASSERT_TRUE(Manager().GetScreenRect(List().window, &list));
        const GUI_RECT cell = List().CellPlace(row, column);
        const GUI_RECT client = List().window->clientRect;
        DoubleClickAt(list.x + client.x + cell.x + cell.width / 2,
                      list.y + client.y + cell.y + cell.height / 2);
        Round();
    }
    void SelectByKeys(std::wstring_view action) {
        List().SetFocus();
        Tick();
        PressKey(GHOSTGUIKey::kHome);
        for (int32_t row = 0; row < RowOf(action); ++row) {
            PressKey(GHOSTGUIKey::kDown);
        }
        EXPECT_EQ(List().Selected(), RowOf(action));
    }
    // As the pump does: the table, the toolkit, the round.
    void Press(uint32_t key) {
        InputBeginPump();
        InputKeyChanged(key, true);
        KeyDown(static_cast<GHOSTGUIKey>(key));
        Round();
        InputBeginPump();
        InputKeyChanged(key, false);
        KeyUp(static_cast<GHOSTGUIKey>(key));
        Round();
    }
    static std::pair<int32_t, int32_t> Stored(const std::wstring& action) {
        return Settings().GetInt2(L"INPUT " + action);
    }
    using Pair = std::pair<int32_t, int32_t>;
    static constexpr uint32_t kF = 9; // bound to nothing on a first start
};

TEST_F(Inputs, HasWhatTheTabIsToHave) {
    EXPECT_EQ(Tab().DefaultsButton()->Caption(), L"Set Default Inputs");
    EXPECT_EQ(Tab().JoystickButton()->Caption(), L"Joystick Info");
    EXPECT_EQ(Tab().Note()->Text(), L"Double click the INPUT1 or INPUT2 column to set a new value");
    EXPECT_EQ(List().ColumnCount(), 3);
    EXPECT_TRUE(Tab().Note()->IsVisible());
}

TEST_F(Inputs, ListTheSystemsActionsAndThenTheProgramsOwn) {
    ChooseSystem(L"Game Gear");
    ASSERT_EQ(List().RowCount(), 14 + 22);
    EXPECT_EQ(List().Cell(0, 0)->text, L"GG P1 UP");
    EXPECT_EQ(List().Cell(0, 1)->text, L"UP");
    EXPECT_EQ(List().Cell(0, 2)->text, L"<undefined>");
    EXPECT_EQ(List().Cell(14, 0)->text, L"Move Forward");
    EXPECT_EQ(Shows(L"Rewind", 1), L"SHIFT + TAB");
    ChooseSystem(L"Nintendo");
    EXPECT_EQ(List().Cell(0, 0)->text, L"NES P1 UP");
    EXPECT_EQ(Shows(L"Save State", 1), L"F7");
}

TEST_F(Inputs, BeginWithTheMachineOfTheBrowser) {
    Back();
    Settings().SetInt(L"gamebrowser_cursystem", 4);
    OpenInputs();
    EXPECT_EQ(Tab().Systems()->Caption(), L"Genesis / Megadrive");
}

TEST_F(Inputs, ADoubleClickWaitsForAKeyAndStoresIt) {
    ChooseSystem(L"Nintendo");
    DoubleClick(L"NES P1 UP", 2);
    EXPECT_TRUE(Tab().Waiting());
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 0}));
    Press(kF);
    EXPECT_FALSE(Tab().Waiting());
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 9}));
    EXPECT_EQ(Shows(L"NES P1 UP", 2), L"F");
    DoubleClick(L"NES P1 UP", 1);
    Press(kF + 1);
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{10, 9}));
    EXPECT_EQ(Manager().FocusWindow(), List().window);
}

TEST_F(Inputs, TabAndReturnAreKeysLikeOthersToThePrompt) {
    ChooseSystem(L"Nintendo");
    DoubleClick(L"NES P1 SELECT", 1);
    Press(static_cast<uint32_t>(GHOSTGUIKey::kTab));
    EXPECT_EQ(Stored(L"NES P1 SELECT"), (Pair{43, 0}));
    DoubleClick(L"NES P1 SELECT", 1);
    Press(static_cast<uint32_t>(GHOSTGUIKey::kDelete));
    EXPECT_EQ(Stored(L"NES P1 SELECT"), (Pair{76, 0}));
}

TEST_F(Inputs, AKeyOfTheProgramIsRefusedWithTheReason) {
    constexpr uint32_t kF5 = 62;
    const auto told = [] {
        std::wstring text;
        Manager().ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
            const auto* const box = dynamic_cast<const CGhostTextBox*>(window.handler);
            if (box != nullptr && box->Text().find(L"is taken") != std::wstring::npos) {
                text = box->Text();
            }
        });
        return text;
    };
    ChooseSystem(L"Nintendo");
    DoubleClick(L"NES P1 UP", 1);
    EXPECT_EQ(told(), L"");
    Press(kF5);
    EXPECT_TRUE(Tab().Waiting());
    EXPECT_EQ(told(), L"F5 is taken: smooth pixels. Press another one");
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 0}));
    Press(kF);
    EXPECT_FALSE(Tab().Waiting());
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{9, 0}));
}

TEST_F(Inputs, EscapeLeavesTheBinding) {
    ChooseSystem(L"Nintendo");
    DoubleClick(L"NES P1 UP", 1);
    Press(static_cast<uint32_t>(GHOSTGUIKey::kEscape));
    EXPECT_FALSE(Tab().Waiting());
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 0}));
    EXPECT_FALSE(Tab().UndoButton()->IsEnabled());
}

TEST_F(Inputs, AClickLeavesTheBinding) {
    ChooseSystem(L"Nintendo");
    DoubleClick(L"NES P1 UP", 1);
    ASSERT_TRUE(Tab().Waiting());
    MoveTo(640, 360);
    PressMouse();
    Round();
    EXPECT_FALSE(Tab().Waiting());
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 0}));
}

TEST_F(Inputs, TheWaitEndsByItself) {
    DoubleClick(L"Use", 1);
    for (int second = 0; second < 9; ++second) {
        Manager().Tick(1000000);
        EXPECT_TRUE(Tab().Waiting());
    }
    Manager().Tick(1000000);
    EXPECT_FALSE(Tab().Waiting());
    EXPECT_EQ(Stored(L"Use"), (Pair{8, 0}));
}

TEST_F(Inputs, TakeAKeyWithItsModifier) {
    DoubleClick(L"Use", 2);
    InputKeyChanged(225, true);
    KeyDown(GHOSTGUIKey::kLeftShift);
    Round();
    EXPECT_TRUE(Tab().Waiting());
    Press(kF);
    EXPECT_EQ(Stored(L"Use").second, static_cast<int32_t>(KeyboardBinding(kF, kModifierShift)));
    EXPECT_EQ(Shows(L"Use", 2), L"SHIFT + F");
}

TEST_F(Inputs, AreSetByKeysAlone) {
    ChooseSystem(L"Nintendo");
    SelectByKeys(L"NES P1 DOWN");
    PressKey(GHOSTGUIKey::kRight); // to the second input
    InputKeyChanged(40, true);
    KeyDown(GHOSTGUIKey::kReturn);
    Round();
    ASSERT_TRUE(Tab().Waiting());
    KeyDown(GHOSTGUIKey::kReturn, true); // it is still held
    Round();
    InputKeyChanged(40, false);
    KeyUp(GHOSTGUIKey::kReturn);
    Round();
    EXPECT_TRUE(Tab().Waiting());
    InputBeginPump();
    Round();
    Press(kF);
    EXPECT_EQ(Stored(L"NES P1 DOWN"), (Pair{81, 9}));
    // Return itself can be bound, by another press.
    PressKey(GHOSTGUIKey::kReturn);
    Round();
    Press(40);
    EXPECT_EQ(Stored(L"NES P1 DOWN"), (Pair{81, 40}));
}

TEST_F(Inputs, AreSetByAControllerAlone) {
    ChooseSystem(L"Nintendo");
    List().SetFocus();
    Tick();
    Manager().Navigate(GUI_DIRECTION::kDown);
    Manager().Navigate(GUI_DIRECTION::kRight);
    InputBeginPump();
    InputButtonChanged(0, 0, true);
    Manager().ActivateFocus();
    Round();
    ASSERT_TRUE(Tab().Waiting());
    InputBeginPump();
    InputButtonChanged(0, 0, false);
    Round();
    EXPECT_TRUE(Tab().Waiting());
    InputBeginPump();
    Round();
    // The same button again is the one that is meant. The program takes it for "activate" and "cancel" too.
    InputBeginPump();
    InputButtonChanged(0, 0, true);
    EXPECT_TRUE(Manager().ActivateFocus());
    EXPECT_TRUE(Manager().CancelFocus());
    Round();
    EXPECT_FALSE(Tab().Waiting());
    const auto code = static_cast<int32_t>(JoystickBinding(0, JoystickButtonCode(0, 0)));
    EXPECT_EQ(Stored(L"NES P1 DOWN"), (Pair{81, code}));
    EXPECT_EQ(Shows(L"NES P1 DOWN", 2), L"JOY1 BUTTON0");
}

TEST_F(Inputs, SidewaysTheFrameGoesFromInputToInputAndThenTheFocusOn) {
    List().SetFocus();
    Tick();
    EXPECT_EQ(List().Input(), 0u);
    PressKey(GHOSTGUIKey::kRight);
    EXPECT_EQ(List().Input(), 1u);
    EXPECT_EQ(Manager().FocusWindow(), List().window);
    PressKey(GHOSTGUIKey::kLeft);
    EXPECT_EQ(List().Input(), 0u);
    EXPECT_EQ(Manager().FocusWindow(), List().window);
}

TEST_F(Inputs, DeleteAndTheButtonClear) {
    ChooseSystem(L"Nintendo");
    SelectByKeys(L"NES P1 LEFT");
    PressKey(GHOSTGUIKey::kDelete);
    EXPECT_EQ(Stored(L"NES P1 LEFT"), (Pair{0, 0}));
    EXPECT_EQ(Shows(L"NES P1 LEFT", 1), L"<undefined>");
    SelectByKeys(L"NES P1 RIGHT");
    Click(Tab().ClearButton());
    EXPECT_EQ(Stored(L"NES P1 RIGHT"), (Pair{0, 0}));
}

TEST_F(Inputs, UndoGoesBackStepByStep) {
    ChooseSystem(L"Nintendo");
    SelectByKeys(L"NES P1 LEFT");
    PressKey(GHOSTGUIKey::kDelete);
    DoubleClick(L"NES P1 UP", 1);
    Press(kF);
    Click(Tab().DefaultsButton());
    EXPECT_EQ(Stored(L"NES P1 LEFT"), (Pair{80, 0}));
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 0}));
    Click(Tab().UndoButton());
    EXPECT_EQ(Stored(L"NES P1 LEFT"), (Pair{0, 0}));
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{9, 0}));
    Click(Tab().UndoButton());
    EXPECT_EQ(Stored(L"NES P1 UP"), (Pair{82, 0}));
    Click(Tab().UndoButton());
    EXPECT_EQ(Stored(L"NES P1 LEFT"), (Pair{80, 0}));
    EXPECT_FALSE(Tab().UndoButton()->IsEnabled());
    EXPECT_EQ(Manager().FocusWindow(), List().window);
}

TEST_F(Inputs, DefaultsAreThoseOfEveryMachine) {
    Settings().SetInt2(L"INPUT GG P1 START", 5, 6);
    Settings().SetInt2(L"INPUT Rewind", 0, 0);
    ChooseSystem(L"Nintendo");
    Click(Tab().DefaultsButton());
    EXPECT_EQ(Stored(L"GG P1 START"), (Pair{40, 0}));
    EXPECT_EQ(Stored(L"Rewind"), (Pair{196651, 0}));
    EXPECT_EQ(Shows(L"Rewind", 1), L"SHIFT + TAB");
    EXPECT_TRUE(Tab().UndoButton()->IsEnabled());
}

TEST_F(Inputs, DefaultsThatAreSetAlreadyLeaveNothingToUndo) {
    Click(Tab().DefaultsButton());
    EXPECT_FALSE(Tab().UndoButton()->IsEnabled());
}

TEST_F(Inputs, AKeyBoundTwiceIsToldAndNotForbidden) {
    ChooseSystem(L"Nintendo");
    EXPECT_FALSE(ShowsTrouble(L"NES P1 BUTTONA", 1));
    DoubleClick(L"NES P1 START", 1);
    Press(22); // S, button A
    EXPECT_EQ(Stored(L"NES P1 START"), (Pair{22, 0}));
    EXPECT_EQ(Stored(L"NES P1 BUTTONA"), (Pair{22, 0}));
    EXPECT_TRUE(ShowsTrouble(L"NES P1 START", 1));
    EXPECT_TRUE(ShowsTrouble(L"NES P1 BUTTONA", 1));
    EXPECT_FALSE(ShowsTrouble(L"NES P1 START", 2));
    EXPECT_EQ(Tab().Status()->Text(), L"S also does NES P1 BUTTONA.");
    Round();
    KeepPicture("shared");
    SelectByKeys(L"NES P1 UP");
    EXPECT_EQ(Tab().Status()->Text().find(L"also does"), std::wstring::npos);
    SelectByKeys(L"NES P1 BUTTONA");
    EXPECT_EQ(Tab().Status()->Text(), L"S also does NES P1 START.");
    PressKey(GHOSTGUIKey::kDelete);
    EXPECT_FALSE(ShowsTrouble(L"NES P1 START", 1));
}

TEST_F(Inputs, JoystickInfoNamesAndCounts) {
    Click(Tab().JoystickButton());
    ASSERT_EQ(CGhostMessageBox::Count(), 1u);
    PressKey(GHOSTGUIKey::kReturn);
    Tick();
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    host.joysticks = {
        {0, L"Pad of the cellar", 6, 11, 1, 0 },
        {2, L"Wheel",             1, 1,  0, -1}
    };
    Click(Tab().JoystickButton());
    Round();
    KeepPicture("joysticks");
    std::wstring text;
    Manager().ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
        for (CGhostGUIHandler* at = window.handler; at != nullptr; at = at->next) {
            if (const auto* const message = dynamic_cast<CGhostMultiText*>(at);
                message != nullptr && Manager().ModalWindow() != nullptr && window.depth > 1) {
                text = message->Text().find(L"Joy1") == 0 ? message->Text() : text;
            }
        }
    });
    EXPECT_EQ(text, L"Joy1: Pad of the cellar\n6 axes, 11 buttons, 1 hat; plays as player 1\n\n"
                    L"Joy3: Wheel\n1 axis, 1 button, 0 hats");
    PressKey(GHOSTGUIKey::kReturn);
    Tick();
}

// A controller's middle button goes back; every other one can be bound.
TEST_F(Inputs, GoingBackEndsTheWaitAlone) {
    DoubleClick(L"Use", 1);
    EXPECT_TRUE(menu->TakeBack());
    Round();
    EXPECT_FALSE(Tab().Waiting());
    EXPECT_EQ(Stored(L"Use"), (Pair{8, 0}));
    EXPECT_EQ(Manager().ModalWindow(), nullptr);
    EXPECT_FALSE(menu->TakeBack());
}

TEST_F(Inputs, TheScreenMayCloseWhileItWaits) {
    DoubleClick(L"Use", 1);
    menu->Back();
    Round();
    EXPECT_EQ(Manager().ModalWindow(), nullptr);
    EXPECT_EQ(menu->Panel(), nullptr);
}

TEST_F(Inputs, TheirPromptIsSeen) {
    DoubleClick(L"Use", 1);
    Round();
    KeepPicture("prompt");
    EXPECT_NE(Manager().ModalWindow(), nullptr);
}

} // namespace
