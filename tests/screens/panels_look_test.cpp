// How the panels are laid out: nothing is cut and nothing lies over anything else, on displays of every shape.
#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/list_view.h"
#include "gui/message_box.h"
#include "gui/multi_text.h"
#include "gui/text.h"
#include "screens/benchmark.h"
#include "screens/binding_rows.h"
#include "screens/credits.h"
#include "screens/input_list.h"
#include "screens/input_tab.h"
#include "screens/member_panel.h"
#include "screens/options.h"
#include "screens/panels_rig.h"

namespace {

class PanelsLook : public PanelsTest {
protected:
    void ExpectTidyMenu(const std::string& what, const DISPLAY& display) {
        Round();
        const std::string where =
            what + "-" + std::to_string(display.width) + "x" + std::to_string(display.height);
        ExpectTidy(*menu->MainWindow()->window, where);
        KeepPicture(where);
    }
};

TEST_F(PanelsLook, EveryPanelIsTidyOnEveryDisplay) {
    for (const DISPLAY& display : kDisplays) {
        Make(display.width, display.height);
        Open(kPanelOptions);
        for (const OptionTab tab : {OptionTab::kGeneral, OptionTab::kGraphics, OptionTab::kPicture,
                                    OptionTab::kSound, OptionTab::kInput}) {
            Click(Shown<CGUIOptions>().TabButton(tab));
            ExpectTidyMenu("options" + std::to_string(static_cast<int>(tab)), display);
        }
        Back();
        Open(kPanelBenchmark);
        ExpectTidyMenu("benchmark", display);
        Back();
        Open(kPanelCredits);
        ExpectTidyMenu("credits", display);
        Back();
    }
}

TEST_F(PanelsLook, FollowsADisplayThatChanges) {
    Open(kPanelOptions);
    Click(Shown<CGUIOptions>().TabButton(OptionTab::kInput));
    Manager().SetScreen(1280, 960);
    ExpectTidyMenu("changed", {1280, 960});
    const CGhostWindowEx* const page = Shown<CGUIOptions>().TabWindow(OptionTab::kInput);
    EXPECT_GT(page->window->height, 720 - 60);
}

TEST_F(PanelsLook, NoTextOfTheOptionsIsCut) {
    Open(kPanelOptions);
    for (const OPTION_ROW& row : OptionRows()) {
        EXPECT_TRUE(Fits(L"TEXT_RIGHT", row.label, 260));
        CGhostMultiText* const help = Shown<CGUIOptions>().Help();
        help->SetText(row.help);
        EXPECT_LE(help->ContentHeight(), help->window->height)
            << std::string(row.help, row.help + std::wcslen(row.help));
        for (const OPTION_CHOICE& choice : row.choices) {
            EXPECT_TRUE(Fits(L"TEXT", choice.text, 260 - 39)); // beside the arrow
        }
    }
    CGUIOptions& options = Shown<CGUIOptions>();
    for (const OPTION_ROW& row : OptionRows()) {
        if (const CGhostTextBox* const mark = options.MarkOf(row.setting)) {
            EXPECT_TRUE(Fits(L"TEXT_SMALL", mark->Text(), mark->window->width));
        }
    }
}

TEST_F(PanelsLook, NoActionOrInputIsCut) {
    Open(kPanelOptions);
    Click(Shown<CGUIOptions>().TabButton(OptionTab::kInput));
    const InputList& list = *Shown<CGUIOptions>().Inputs().List();
    for (const INPUT_ACTION& action : InputActions()) {
        EXPECT_TRUE(Fits(L"TEXT", action.name, list.ColumnWidth(0) - 16));
    }
    // The longest names, with the mark of a shared input before them; bold when chosen.
    for (const uint32_t code :
         {KeyboardBinding(229, kModifierShift), KeyboardBinding(83, kModifierCtrl),
          JoystickBinding(3, JoystickHatCode(3, 7, 1)),
          JoystickBinding(3, JoystickButtonCode(3, 63))}) {
        EXPECT_TRUE(Fits(L"SECTIONTEXT", BindingName(code), list.ColumnWidth(1) - 16 - 26));
    }
    int32_t columns = 0;
    for (int32_t column = 0; column < list.ColumnCount(); ++column) {
        columns += list.ColumnWidth(column);
    }
    EXPECT_LE(columns, list.window->clientRect.width); // its bar is shown
}

TEST_F(PanelsLook, NoCreditIsCut) {
    Open(kPanelCredits);
    const CGhostListView& list = *Shown<CGUICredits>().List();
    EXPECT_EQ(list.ColumnWidth(0) + list.ColumnWidth(1), list.window->clientRect.width);
    for (const CREDIT& credit : Credits()) {
        EXPECT_TRUE(Fits(L"TEXT", credit.name, list.ColumnWidth(0) - 16));
        EXPECT_TRUE(Fits(L"TEXT", credit.what, list.ColumnWidth(1) - 16));
    }
}

TEST_F(PanelsLook, EveryControlIsReachedByDirectionsAlone) {
    ExpectEveryControlIsReached("menu");
    for (const int32_t panel : {+kPanelBenchmark, +kPanelOptions, +kPanelCredits}) {
        Open(panel);
        for (int tab = 0; tab < (panel == kPanelOptions ? 4 : 1); ++tab) {
            if (panel == kPanelOptions) {
                Shown<CGUIOptions>().ShowTab(static_cast<OptionTab>(tab));
                Round();
            }
            menu->TakeFocus();
            Tick();
            ExpectEveryControlIsReached("panel " + std::to_string(panel) + ", tab " +
                                        std::to_string(tab));
        }
        menu->Back();
        Round();
    }
}

TEST_F(PanelsLook, TheMembersFieldsAreReachedByDirectionsAlone) {
    Settings().SetString(L"web_service", L"http://127.0.0.1:1/");
    Make(1280, 720);
    ASSERT_TRUE(menu->Member().User()->IsVisible());
    ExpectEveryControlIsReached("menu with a service");
}

TEST_F(PanelsLook, ADisplayThatIsTooSmallIsTold) {
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    Make(320, 240);
    ASSERT_LT(Manager().ScreenRect().width, 1280);
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    const auto* const box = dynamic_cast<CGhostMessageBox*>(Manager().ModalWindow()->handler->next);
    ASSERT_NE(box, nullptr);
    EXPECT_NE(box->Message()->Text().find(L"1280 by 720"), std::wstring::npos);
    PressKey(GHOSTGUIKey::kReturn);
    Round();
    EXPECT_EQ(CGhostMessageBox::Count(), 0u) << "and the program goes on";
    EXPECT_EQ(Manager().FocusWindow(), menu->MenuButton(kPanelBrowser)->window);
}

} // namespace
