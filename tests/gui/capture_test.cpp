// The capture may be taken from a control in the midst of a press. It is at rest then: what the mouse does
// afterwards is no part of that press.
#include "gui/control_rig.h"

#include <functional>

namespace {

// A control, where it is pressed, and what the press would go on to change.
struct PRESSED {
    std::string name;
    GHOSTMANAGER_WINDOW* window; // which is hidden and shown
    int x;
    int y;
    std::function<std::string()> seen;
};

class CaptureTest : public ControlTest {
protected:
    static constexpr GUI_PLACE kPlace{false, 50, 50, 200, 100};

    PRESSED Make(const std::string& name, GHOSTMANAGER_WINDOW* parent) {
        count = std::make_shared<int>(0);
        const auto counted = [counter = count](auto&&...) { ++*counter; };
        const auto seen = [counter = count] { return std::to_string(*counter); };
        if (name == "button" || name == "toggle") {
            const uint32_t flags = name == "toggle" ? CGhostButton::kLatches : 0;
            auto* const made = new CGhostButton(parent, 0, L"BUTTON", L"", flags, kPlace);
            made->OnState.connect(counted);
            made->OnUp.connect(counted);
            made->OnClick.connect(counted);
            return {name, made->window, 60, 60,
                    [=] { return seen() + (made->IsDown() ? " down" : " up"); }};
        }
        if (name == "check box") {
            auto* const made = new CGhostCheckBox(parent, 0, L"BUTTON", L"", 0, kPlace);
            made->SetChecked(true);
            return {name, made->window, 60, 60,
                    [=] { return std::string(made->IsChecked() ? "checked" : "unchecked"); }};
        }
        if (name == "slider") {
            auto* const made = new CGhostSlider(parent, 0, L"T", 0, 10, kPlace);
            return {name, made->window, 60, 60, [=] { return std::to_string(made->Value()); }};
        }
        if (name == "edit") {
            auto* const made = new CGhostEdit(parent, 0, L"EDIT", L"some long text", 0, kPlace);
            return {name, made->window, 60, 60, [=] { return std::to_string(made->Caret()); }};
        }
        if (name == "thumb" || name == "arrow of a bar") {
            auto* const made =
                new CGhostScrollbar(parent, 0, L"WINDOW_SCROLLBAR", {false, 50, 50, 14, 200});
            made->SetRange(100000, 50000, 0, true);
            return {name, made->window, 55, name == "thumb" ? 70 : 245,
                    [=] { return std::to_string(made->Pos()); }};
        }
        if (name == "list") {
            auto* const made = new CGhostList(parent, 0, L"LIST", CGhostList::kOnRelease, kPlace);
            for (int i = 0; i < 50; ++i) {
                made->AddItem(L"row");
            }
            return {name, made->window, 60, 60, [=] { return std::to_string(made->Selected()); }};
        }
        if (name == "heading" || name == "edge of a heading") {
            auto* const made = new CGhostListView(parent, 0, L"VIEW", 0, kPlace);
            made->AddColumn(L"Name", 100);
            made->AddColumn(L"Size", 50);
            made->OnHeader.connect(counted);
            return {name, made->window, name == "heading" ? 100 : 148, 60,
                    [=] { return seen() + " " + std::to_string(made->ColumnWidth(0)); }};
        }
        if (name == "key of the keyboard") {
            auto* const edit = new CGhostEdit(parent, 0, L"EDIT", L"some text", 0, kPlace);
            CGhostKeyboard* const made = CGhostKeyboard::Open(edit);
            const GUI_RECT at = made->KeyPlace(L"q");
            GUI_RECT client;
            manager.GetWindowRects(made->window, nullptr, &client, nullptr);
            const GUI_RECT place = OnScreen(made->window);
            return {name, made->window, place.x + client.x + at.x + 2,
                    place.y + client.y + at.y + 2,
                    [=] { return std::string(edit->Text().begin(), edit->Text().end()); }};
        }
        const bool title = name == "title of a window";
        auto* const made = new CGhostWindowEx(parent, 0, L"W", L"title",
                                              CGhostWindowEx::kFrame | CGhostWindowEx::kTitle |
                                                  CGhostWindowEx::kDraggable,
                                              {false, 50, 50, 300, 100});
        return {name, made->window, title ? 100 : 50, title ? 60 : 100,
                [=] { return std::to_string(made->GetRect().x); }};
    }

    static const std::vector<std::string>& Names() {
        static const std::vector<std::string> names = {"button",
                                                       "toggle",
                                                       "check box",
                                                       "slider",
                                                       "edit",
                                                       "thumb",
                                                       "list",
                                                       "heading",
                                                       "edge of a heading",
                                                       "title of a window",
                                                       "edge of a window",
                                                       "arrow of a bar",
                                                       "key of the keyboard"};
        return names;
    }

    // Presses each control, has the capture taken away, and then moves, waits and releases over it.
    void TakeFromEach(const std::function<void(const PRESSED&)>& take) {
        for (const std::string& name : Names()) {
            manager.Reset();
            panel = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 0, 0, 600, 400});
            const PRESSED pressed = Make(name, panel->window);
            manager.Tick(0);
            MoveTo(pressed.x, pressed.y);
            Press();
            take(pressed);
            manager.Tick(0);
            manager.Tick(0);
            ASSERT_TRUE(manager.IsWindowVisible(pressed.window)) << name;
            const std::string before = pressed.seen();
            MoveTo(pressed.x, pressed.y);
            MoveTo(pressed.x + 30, pressed.y + 20);
            manager.Tick(2000000);
            MoveTo(pressed.x, pressed.y);
            Release();
            manager.Tick(0);
            EXPECT_EQ(pressed.seen(), before) << name;
            if (name == "button") {
                EXPECT_EQ(before.find("down"), std::string::npos) << name;
            }
        }
    }

    std::shared_ptr<int> count;
    CGhostWindowEx* panel = nullptr;
};

using Capture = CaptureTest;

} // namespace

TEST_F(Capture, EndsWhenTheControlIsHidden) {
    TakeFromEach([&](const PRESSED& pressed) {
        manager.ShowWindow(pressed.window, false);
        manager.Tick(0);
        manager.ShowWindow(pressed.window, true);
    });
}

TEST_F(Capture, EndsWhenItsParentIsHiddenAndShownAtOnce) {
    TakeFromEach([&](const PRESSED& pressed) {
        GHOSTMANAGER_WINDOW* const parent =
            pressed.window->parent != nullptr ? panel->window : pressed.window;
        manager.ShowWindow(parent, false);
        manager.ShowWindow(parent, true);
    });
}

TEST_F(Capture, EndsWithAMessageBox) {
    TakeFromEach([&](const PRESSED&) {
        CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
        manager.Tick(0);
        box->Dismiss();
        manager.Tick(0);
        manager.Tick(0);
    });
}

TEST_F(Capture, EndsWithTheReleaseOfAnotherButton) {
    TakeFromEach([&](const PRESSED&) {
        Press(2);
        Release(2);
        MoveTo(590, 390);
    });
}

TEST_F(Capture, LastsWhileTheMouseIsElsewhere) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"T", 0, 10, kPlace);
    MoveTo(60, 60);
    Press();
    MoveTo(900, 600);
    manager.Tick(1000000);
    manager.Tick(1000000);
    MoveTo(150, 600);
    EXPECT_FLOAT_EQ(slider->Value(), 0.5f);
    Release();
}

// The loss is seen in the tick whose calls bring the release: the release is first.
TEST_F(Capture, AReleaseIsNoLoss) {
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, kPlace);
    int clicks = 0;
    button->OnClick.connect([&](CGhostButton* from, auto&&...) {
        ++clicks;
        from->SetDown(true);
    });
    ClickAt(60, 60);
    manager.Tick(0);
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(button->IsDown()) << "as the slot left it";
}

// Several moves may come between two ticks. Each is told where it was within the window as the window lay
// then, before the first of them moved it.
TEST_F(Capture, ADraggedWindowFollowsTheCursorHoweverManyMovesATickHas) {
    for (const bool atTitle : {true, false}) {
        manager.Reset();
        auto* const made = new CGhostWindowEx(nullptr, 0, L"W", L"title",
                                              CGhostWindowEx::kFrame | CGhostWindowEx::kTitle |
                                                  CGhostWindowEx::kDraggable,
                                              {false, 50, 50, 300, 100});
        manager.Tick(0);
        const auto post = [&](int x, int y, bool down, bool up) {
            GUI_INPUT_RECORD record;
            record.moved = true;
            record.dx = x - manager.CursorX();
            record.dy = y - manager.CursorY();
            record.buttonDown = down;
            record.buttonUp = up;
            record.button = 1;
            now += 1000;
            manager.PostInput(record, now);
        };
        const int x = atTitle ? 100 : 50;
        const int y = atTitle ? 60 : 100;
        post(x, y, true, false);
        manager.Tick(0);
        for (const int by : {10, 20, 30}) {
            post(x + by, y + by, false, false);
        }
        manager.Tick(0);
        EXPECT_EQ(made->GetRect(), (GUI_RECT{80, 80, 300, 100})) << "title " << atTitle;
        if (!atTitle) {
            continue; // the edge is where the tick found it, and no longer under the cursor below
        }
        // Released and moved on, and pressed and dragged again, all within one tick.
        post(x + 40, y + 40, false, true);
        post(x + 45, y + 45, false, false);
        post(x + 45, y + 40, true, false);
        post(x + 50, y + 50, false, false);
        post(x + 60, y + 60, false, true);
        post(x + 200, y + 200, false, false);
        manager.Tick(0);
        EXPECT_EQ(made->GetRect(), (GUI_RECT{105, 110, 300, 100})) << "title " << atTitle;
    }
}
