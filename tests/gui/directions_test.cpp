// A player with arrow keys or a controller alone reaches, uses and leaves every control.
#include "gui/control_rig.h"

#include <functional>

namespace {

class DirectionsTest : public ControlTest {
protected:
    // A button above, below and on either side of where a control is made: (200, 200), 200 by 100.
    void SetUp() override {
        ControlTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        above = MakeButton(250, 100);
        below = MakeButton(250, 400);
        left = MakeButton(50, 240);
        right = MakeButton(500, 240);
    }
    static GHOSTMANAGER_WINDOW* MakeButton(int x, int y) {
        return (new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, x, y, 100, 20}))->window;
    }
    static constexpr GUI_PLACE kPlace{false, 200, 200, 200, 100};

    // What a player presses, one letter a press: u, d, l, r for the directions, a for the first button
    // and c for the second. With keys: return and escape.
    void Play(const std::string& script) {
        for (const char step : script) {
            constexpr std::string_view kNames = "lrudac";
            constexpr uint32_t kKeys[] = {kLeft, kRight, kUp, kDown, kReturn, kEscape};
            const size_t at = kNames.find(step);
            if (byKeys) {
                Key(kKeys[at]);
            } else if (step == 'a') {
                manager.ActivateFocus();
            } else if (step == 'c') {
                manager.CancelFocus();
            } else {
                manager.Navigate(static_cast<GUI_DIRECTION>(at));
            }
            manager.Tick(0);
        }
    }

    // Comes from each side, and leaves again by the same one, with the presses that lead there.
    struct WAYS_OUT {
        std::string up, down, left, right;
    };
    void EntersAndLeaves(GHOSTMANAGER_WINDOW* window, const WAYS_OUT& out) {
        struct SIDE {
            GHOSTMANAGER_WINDOW* neighbour;
            const char* in;
            std::string out;
        };
        const SIDE sides[] = {
            {above, "d", out.up   },
            {below, "u", out.down },
            {left,  "r", out.left },
            {right, "l", out.right}
        };
        for (const bool keys : {false, true}) {
            byKeys = keys;
            for (const SIDE& side : sides) {
                Focus(side.neighbour);
                Play(side.in);
                EXPECT_EQ(manager.FocusWindow(), window) << side.in << keys;
                Play(side.out);
                EXPECT_EQ(manager.FocusWindow(), side.neighbour) << side.out << keys;
            }
        }
    }

    bool byKeys = false;
    GHOSTMANAGER_WINDOW* above = nullptr;
    GHOSTMANAGER_WINDOW* below = nullptr;
    GHOSTMANAGER_WINDOW* left = nullptr;
    GHOSTMANAGER_WINDOW* right = nullptr;
};

using Directions = DirectionsTest;

} // namespace

TEST_F(Directions, AList) {
    auto* const list = new CGhostList(nullptr, 0, L"LIST", 0, kPlace);
    for (int i = 0; i < 3; ++i) {
        list->AddItem(L"row");
    }
    EntersAndLeaves(list->window, {"uuuu", "dddd", "l", "r"});
    int chosen = -1;
    list->OnChoose.connect([&](CGhostList*, int row, GHOSTLIST_ITEM*) { chosen = row; });
    for (const bool keys : {false, true}) {
        byKeys = keys;
        list->SetSelected(-1);
        chosen = -1;
        Focus(list->window);
        Play("dda");
        EXPECT_EQ(chosen, 1);
    }
}

TEST_F(Directions, AListWithoutASelection) {
    auto* const list = new CGhostList(nullptr, 0, L"LIST", CGhostList::kNoSelection, kPlace);
    for (int i = 0; i < 8; ++i) {
        list->AddItem(L"row");
    }
    Focus(list->window);
    Play("d");
    EXPECT_EQ(list->ScrollPixels(), list->RowHeight());
    EntersAndLeaves(list->window, {"uuuuuuuuu", "ddddddddd", "l", "r"});
}

TEST_F(Directions, ATableAndItsHeadings) {
    auto* const view = new CGhostListView(nullptr, 0, L"VIEW", 0, kPlace);
    view->AddColumn(L"Name", 100);
    view->AddColumn(L"Size", 50);
    for (int i = 0; i < 3; ++i) {
        view->SetCell(view->AddRow(), 1, std::to_wstring(3 - i));
    }
    EntersAndLeaves(view->window, {"uuuu", "dddd", "l", "r"});
    view->SetSortable(0);
    view->SetSortable(1);
    int heading = -1;
    view->OnHeader.connect([&](CGhostListView*, int column) { heading = column; });
    EntersAndLeaves(view->window, {"uuuuu", "dddddd", "l", "r"});
    for (const bool keys : {false, true}) {
        byKeys = keys;
        view->SetSelected(0);
        view->SortBy(0, false);
        heading = -1;
        Focus(view->window);
        Play("ur");
        EXPECT_EQ(manager.FocusWindow(), view->window);
        Play("a");
        EXPECT_EQ(heading, 1);
        EXPECT_EQ(view->Cell(0, 1)->text, L"1");
        Play("ua");
        EXPECT_EQ(manager.FocusWindow(), above);
        Focus(view->window);
        view->SetSelected(0);
        Play("uldd");
        EXPECT_EQ(view->Selected(), 1) << "back to the rows";
    }
}

TEST_F(Directions, AHeadingThatWasClickedLeavesTheKeysToItsTable) {
    auto* const view = new CGhostListView(nullptr, 0, L"VIEW", 0, kPlace);
    view->AddColumn(L"Name", 100);
    for (int i = 0; i < 9; ++i) {
        view->AddRow();
    }
    view->SetSelected(0);
    ClickAt(230, 210);
    EXPECT_EQ(manager.FocusWindow(), view->window);
    Key(kDown);
    EXPECT_EQ(view->Selected(), 1);
    MoveTo(230, 210);
    Wheel(false);
    EXPECT_EQ(manager.FocusWindow(), view->window);
    EXPECT_GT(view->ScrollPixels(), 0) << "the wheel scrolls over a heading as well";
}

TEST_F(Directions, AnEditInATable) {
    auto* const view = new CGhostListView(nullptr, 0, L"VIEW", 0, kPlace);
    view->AddColumn(L"Name", 100);
    for (int i = 0; i < 3; ++i) {
        view->AddRow();
    }
    view->OnChoose.connect(
        [](CGhostListView* from, int row, GHOSTLISTVIEW_ITEM*) { from->BeginEdit(row, 0); });
    Focus(view->window);
    Play("da");
    ASSERT_NE(view->Editor(), nullptr);
    Play("a");
    CGhostKeyboard* const keyboard = view->Editor()->Keyboard();
    ASSERT_NE(keyboard, nullptr);
    Play("auula"); // "q", then up over "1" round to Shift, and left of it Done
    manager.Tick(0);
    EXPECT_EQ(view->Editor(), nullptr);
    EXPECT_EQ(view->Cell(0, 0)->text, L"q");
    EXPECT_EQ(manager.FocusWindow(), view->window);
    Play("d");
    EXPECT_EQ(view->Selected(), 1);
}

TEST_F(Directions, ASlider) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"T", 0, 3, kPlace);
    EntersAndLeaves(slider->window, {"u", "d", "llll", "rrrr"});
    slider->SetValue(0.0f);
    for (const bool keys : {false, true}) {
        byKeys = keys;
        Focus(slider->window);
        Play("rr");
        EXPECT_NEAR(slider->Value(), 2.0f / 3.0f, 0.01f);
        Play("ll");
        EXPECT_NEAR(slider->Value(), 0.0f, 0.01f);
        EXPECT_EQ(manager.FocusWindow(), slider->window);
    }
}

TEST_F(Directions, AnEdit) {
    auto* const edit = new CGhostEdit(nullptr, 0, L"EDIT", L"ab", 0, kPlace);
    EntersAndLeaves(edit->window, {"u", "d", "lll", "rrr"});
    byKeys = true;
    Focus(edit->window);
    edit->SetSelection(2, 2);
    Play("l");
    EXPECT_EQ(edit->Caret(), 1u);
    EXPECT_EQ(manager.FocusWindow(), edit->window);
    byKeys = false;
    Play("a");
    ASSERT_NE(edit->Keyboard(), nullptr);
    Play("auula");
    EXPECT_EQ(edit->Text(), L"aqb");
    EXPECT_EQ(manager.FocusWindow(), edit->window);
}

TEST_F(Directions, ADropList) {
    auto* const drop = new CGhostDropList(nullptr, 0, L"DROP", L"", 500, kPlace);
    for (int i = 0; i < 5; ++i) {
        drop->AddItem(L"item");
    }
    drop->SetSelected(1);
    EntersAndLeaves(drop->window, {"u", "d", "l", "r"});
    EXPECT_EQ(drop->Selected(), 1) << "passing by changes nothing";
    for (const bool keys : {false, true}) {
        byKeys = keys;
        drop->SetSelected(1);
        Focus(drop->window);
        Play("adda");
        EXPECT_EQ(drop->Selected(), 3);
        EXPECT_FALSE(drop->IsOpen());
        EXPECT_EQ(manager.FocusWindow(), drop->window);
        Play("adddddlruuuuuuu");
        EXPECT_TRUE(drop->IsOpen()) << "the list keeps the focus";
        Play("c");
        EXPECT_FALSE(drop->IsOpen());
        EXPECT_EQ(drop->Selected(), 3);
    }
}

TEST_F(Directions, AMultiText) {
    std::wstring text;
    for (int i = 0; i < 12; ++i) {
        text += L"line\n";
    }
    auto* const made = new CGhostMultiText(nullptr, 0, L"T", text, kPlace);
    EntersAndLeaves(made->window, {"uuuuuuuuuuuuu", "ddddddddddddd", "l", "r"});
    made->ScrollTo(0);
    Focus(made->window);
    Play("d");
    EXPECT_GT(made->ScrollPixels(), 0);
}

TEST_F(Directions, AScrollbarOfItsOwn) {
    auto* const bar =
        new CGhostScrollbar(nullptr, 0, L"WINDOW_SCROLLBAR", {false, 290, 200, 14, 100});
    bar->SetRange(100, 100, 0, true);
    Focus(above);
    Play("d");
    EXPECT_EQ(manager.FocusWindow(), below) << "there is nothing to scroll";
    bar->SetRange(160, 100, 0, true);
    EntersAndLeaves(bar->window, {"uuuu", "dddd", "l", "r"});
    bar->SetRange(-1, -1, 0, true);
    Focus(bar->window);
    Play("d");
    EXPECT_EQ(bar->Pos(), 20);
    Key(kEnd);
    EXPECT_EQ(bar->Pos(), 60);
    Key(kPageUp);
    EXPECT_EQ(bar->Pos(), 0);
}

TEST_F(Directions, TheScrollbarOfAWindow) {
    auto* const panel = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, kPlace);
    panel->ShowScrollbar(true);
    panel->Scrollbar()->SetRange(200, 100, 0, true);
    Focus(right);
    Play("l");
    EXPECT_EQ(manager.FocusWindow(), panel->Scrollbar()->window);
    Play("d");
    EXPECT_EQ(panel->Scrollbar()->Pos(), 20);
}

TEST_F(Directions, AKeyThatIsHeldStopsAtTheEndOfAControl) {
    auto* const list = new CGhostList(nullptr, 0, L"LIST", 0, kPlace);
    for (int i = 0; i < 3; ++i) {
        list->AddItem(L"row");
    }
    Focus(above);
    for (int i = 0; i < 20; ++i) {
        KeyDown(kDown); // as the repeats of a key come
    }
    EXPECT_EQ(manager.FocusWindow(), list->window);
    EXPECT_EQ(list->Selected(), 2);
    KeyUp(kDown);
    Key(kDown);
    EXPECT_EQ(manager.FocusWindow(), below);
}

TEST_F(Directions, ADisabledControlIsPassedByAndLetsGo) {
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, kPlace);
    auto* const box = new CGhostCheckBox(nullptr, 0, L"BUTTON", L"", 0, {false, 200, 300, 200, 20});
    auto* const drop = new CGhostDropList(nullptr, 0, L"DROP", L"", 90, {false, 200, 330, 200, 20});
    Focus(drop->window);
    button->SetEnabled(false);
    box->SetEnabled(false);
    drop->SetEnabled(false);
    byKeys = true;
    Play("u");
    EXPECT_EQ(manager.FocusWindow(), left) << "nearer than what is straight above";
    Focus(above);
    Play("d");
    EXPECT_EQ(manager.FocusWindow(), below);
    button->SetEnabled(true);
    Play("u");
    EXPECT_EQ(manager.FocusWindow(), button->window);
}

TEST_F(Directions, TheFocusStaysWhenABarGoes) {
    auto* const list = new CGhostList(nullptr, 0, L"LIST", 0, kPlace);
    for (int i = 0; i < 30; ++i) {
        list->AddItem(L"row");
    }
    manager.Tick(0);
    ClickAt(395, 250);
    ASSERT_EQ(manager.FocusWindow(), list->ScrollbarWindow());
    list->Clear();
    EXPECT_EQ(manager.FocusWindow(), list->window);
}

TEST_F(Directions, APressBesideTheControlsGivesTheFocusBack) {
    auto* const panel = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, kPlace);
    auto* const inner =
        new CGhostButton(panel->window, 0, L"BUTTON", L"", 0, {false, 0, 0, 50, 20});
    Focus(below);
    ClickAt(350, 280);
    ASSERT_EQ(manager.FocusWindow(), panel->window);
    manager.ReturnFocusToTabStop();
    EXPECT_EQ(manager.FocusWindow(), below);
    ClickAt(350, 280);
    manager.ShowWindow(below, false);
    manager.ReturnFocusToTabStop();
    EXPECT_EQ(manager.FocusWindow(), panel->window) << "there is nobody to give it to";
    manager.TakeInput(panel->window);
    manager.ReturnFocusToTabStop();
    EXPECT_EQ(manager.FocusWindow(), inner->window);
}

TEST_F(Directions, AListHasTheKeysOfItsBar) {
    auto* const list = new CGhostList(nullptr, 0, L"LIST", 0, kPlace);
    for (int i = 0; i < 30; ++i) {
        list->AddItem(L"row");
    }
    manager.Tick(0);
    Focus(below);
    ClickAt(395, 250);
    manager.ReturnFocusToTabStop();
    EXPECT_EQ(manager.FocusWindow(), list->window);
}

TEST_F(Directions, AnOpenListAndAControlThatIsDisabledKeepTheFocus) {
    auto* const drop = new CGhostDropList(nullptr, 0, L"DROP", L"", 90, {false, 200, 330, 200, 20});
    drop->AddItem(L"row");
    Focus(drop->window);
    Key(kReturn);
    ASSERT_EQ(manager.FocusWindow(), drop->List()->window);
    manager.ReturnFocusToTabStop();
    EXPECT_EQ(manager.FocusWindow(), drop->List()->window);
    Key(kEscape);
    drop->SetEnabled(false);
    manager.ReturnFocusToTabStop();
    EXPECT_EQ(manager.FocusWindow(), drop->window);
}
