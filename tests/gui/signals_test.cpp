// A slot may end anything: its own control, the control's parent, the modal window. The windows go with
// the tick, and until then every call is safe.
#include "gui/control_rig.h"

#include <functional>

namespace {

enum class Victim { kItself, kParent, kModal, kFocus, kCapture, kAll };

class SignalsTest : public ControlTest {
protected:
    static constexpr GUI_PLACE kPlace{false, 50, 50, 200, 100};

    // The slot of every signal under test.
    auto Ends(GHOSTMANAGER_WINDOW* window) {
        return [this, window](auto&&...) {
            ++fired;
            const auto end = [&](Victim wanted, GHOSTMANAGER_WINDOW* which) {
                if (victim == wanted || victim == Victim::kAll) {
                    manager.DestroyWindow(which);
                }
            };
            end(Victim::kItself, window);
            end(Victim::kParent, panel->window);
            end(Victim::kModal, manager.ModalWindow());
            end(Victim::kFocus, manager.FocusWindow());
            end(Victim::kCapture, manager.CaptureWindow());
            manager.ShowWindow(window, false);
            manager.ShowWindow(window, true);
        };
    }

    // A panel with a control of a kind, which may be within the modal window, each signal with that slot.
    GHOSTMANAGER_WINDOW* Make(size_t kind) {
        panel = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 0, 0, 600, 400});
        const auto connect = [](auto slot, auto&... signals) { (signals.connect(slot), ...); };
        switch (kind) {
        case 0:
        case 1: {
            auto* const made = new CGhostButton(panel->window, 0, L"BUTTON", L"",
                                                kind == 1 ? CGhostButton::kLatches : 0, kPlace);
            connect(Ends(made->window), made->OnDown, made->OnUp, made->OnClick, made->OnState,
                    made->OnWheel);
            return made->window;
        }
        case 2: {
            auto* const made = new CGhostCheckBox(panel->window, 0, L"BUTTON", L"", 0, kPlace);
            connect(Ends(made->window), made->OnChange);
            return made->window;
        }
        case 3: {
            auto* const made = new CGhostTextBox(panel->window, 0, L"T", L"", kPlace);
            connect(Ends(made->window), made->OnDown, made->OnUp, made->OnMouseMoved,
                    made->OnWheel);
            return made->window;
        }
        case 4: {
            auto* const made =
                new CGhostEdit(panel->window, 0, L"EDIT", L"ab", CGhostEdit::kSubmits, kPlace);
            connect(Ends(made->window), made->OnChange, made->OnSubmit, made->OnFocusChange,
                    made->OnGone);
            return made->window;
        }
        case 5: {
            auto* const made = new CGhostScrollbar(panel->window, 0, L"WINDOW_SCROLLBAR",
                                                   {false, 50, 50, 14, 100});
            made->SetRange(1000, 10, 500, true);
            connect(Ends(made->window), made->OnScroll);
            return made->window;
        }
        case 6: {
            auto* const made = new CGhostSlider(panel->window, 0, L"T", 0, 10, kPlace);
            connect(Ends(made->window), made->OnChange);
            return made->window;
        }
        case 7:
        case 8: {
            auto* const made = new CGhostList(panel->window, 0, L"LIST",
                                              kind == 8 ? CGhostList::kOnRelease : 0, kPlace);
            for (int i = 0; i < 30; ++i) {
                made->AddItem(L"row");
            }
            connect(Ends(made->window), made->OnSelect, made->OnChoose, made->OnCancel,
                    made->OnFocusChange);
            return made->window;
        }
        case 9: {
            auto* const made = new CGhostListView(panel->window, 0, L"VIEW", 0, kPlace);
            made->AddColumn(L"Name", 100);
            made->SetSortable(0);
            for (int i = 0; i < 30; ++i) {
                made->AddRow();
            }
            made->OnChoose.connect([made](auto&&...) { made->BeginEdit(0, 0); });
            connect(Ends(made->window), made->OnSelect, made->OnClick, made->OnHeader,
                    made->OnEdited, made->OnCancel);
            return made->window;
        }
        case 10: {
            auto* const made = new CGhostDropList(panel->window, 0, L"DROP", L"", 300, kPlace);
            for (int i = 0; i < 30; ++i) {
                made->AddItem(L"item");
            }
            connect(Ends(made->window), made->OnSelect, made->List()->OnSelect,
                    made->List()->OnFocusChange, made->Arrow()->OnClick);
            return made->window;
        }
        case 11: {
            auto* const made = new CGhostPopup(panel->window, 0);
            made->AddItem(L"item");
            made->AddItem(L"another");
            made->ShowAt(50, 50);
            connect(Ends(made->window), made->OnSelect, made->List()->OnSelect,
                    made->List()->OnCancel, made->List()->OnFocusChange);
            return made->window;
        }
        default: return nullptr;
        }
    }

    // Everything a user may do at (60, 90), where the control is, a heading or a row of an open list.
    void UseIt(GHOSTMANAGER_WINDOW* window, size_t first) {
        const std::function<void()> deeds[] = {
            [&] { ClickAt(60, 90); },
            [&] { Wheel(false); },
            [&] { DoubleClickAt(60, 90); },
            [&] { Type("x"); },
            [&] { Key(kReturn); },
            [&] { manager.Navigate(GUI_DIRECTION::kRight); },
            [&] { Key(kDown); },
            [&] { Key(kSpace); },
            [&] { Key(46); },
            [&] { manager.ActivateFocus(); },
            [&] { ClickAt(60, 60); },
            [&] { ClickAt(60, 170); },
            [&] { ClickAt(245, 60); },
            [&] { Key(kEscape); },
            [&] { manager.CancelFocus(); },
            [&] { Focus(nullptr); },
        };
        const size_t count = std::size(deeds);
        for (size_t i = 0; i < count; ++i) {
            manager.SetFocus(window);
            deeds[(first + i) % count]();
            manager.Tick(700000);
            ASSERT_EQ(BrokenInvariant(), "") << i;
        }
    }

    static constexpr size_t kKinds = 12;
    CGhostWindowEx* panel = nullptr;
    Victim victim = Victim::kItself;
    int fired = 0;
};

using Signals = SignalsTest;

} // namespace

TEST_F(Signals, EachMayEndItsControlAndWhatIsAroundIt) {
    for (size_t kind = 0; kind < kKinds; ++kind) {
        fired = 0;
        for (const Victim wanted : {Victim::kItself, Victim::kParent, Victim::kModal,
                                    Victim::kFocus, Victim::kCapture, Victim::kAll}) {
            for (size_t first = 0; first < 16; ++first) {
                manager.Reset();
                victim = wanted;
                GHOSTMANAGER_WINDOW* const window = Make(kind);
                manager.Tick(0);
                if (wanted == Victim::kModal) {
                    manager.SetModal(panel->window);
                }
                ASSERT_NO_FATAL_FAILURE(UseIt(window, first)) << kind << " " << first;
            }
        }
        EXPECT_GT(fired, 0) << kind;
    }
}

TEST_F(Signals, AMessageBoxMayBeEndedByItsOwnButton) {
    for (int i = 0; i < 6; ++i) {
        CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
        ASSERT_NE(box, nullptr);
        box->Button()->OnClick.connect(
            [&](auto&&...) { manager.DestroyWindow(manager.ModalWindow()); });
        box->OnClosed.connect([&](CGhostMessageBox* from) { manager.DestroyWindow(from->window); });
        manager.Tick(0);
        Key(kReturn);
        manager.Tick(0);
        manager.Tick(0);
        EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    }
}

// Rows that go while the thumb is dragged or a row is pressed.
TEST_F(Signals, RowsMayGoUnderThePointer) {
    auto* const list = new CGhostList(nullptr, 0, L"LIST", CGhostList::kOnRelease, kPlace);
    const auto fill = [&](int rows) {
        for (int i = 0; i < rows; ++i) {
            list->AddItem(L"row");
        }
        manager.Tick(0);
    };
    fill(100);
    MoveTo(60, 60);
    EXPECT_EQ(list->Hot(), 0);
    Press();
    list->RemoveItem(0);
    EXPECT_EQ(list->Hot(), 0) << "the next row is under the mouse now";
    list->Clear();
    EXPECT_EQ(list->Hot(), -1);
    Release();
    EXPECT_EQ(list->Selected(), -1);
    fill(100);
    EXPECT_EQ(list->Hot(), 0) << "rows come under a mouse at rest";
    MoveTo(242, 70);
    Press();
    MoveTo(242, 90);
    EXPECT_GT(list->ScrollPixels(), 0);
    while (list->Count() > 50) {
        list->RemoveItem(list->Count() - 1);
    }
    MoveTo(242, 700);
    EXPECT_EQ(list->ScrollPixels(), list->ContentHeight() - 98);
    while (list->Count() > 2) {
        list->RemoveItem(0);
    }
    EXPECT_EQ(list->ScrollPixels(), 0);
    MoveTo(242, 60);
    Release();
    EXPECT_EQ(list->ScrollPixels(), 0);
}

TEST_F(Signals, RowsOfATableMayGoWhileItsThumbOrAHeadingIsHeld) {
    auto* const view = new CGhostListView(nullptr, 0, L"VIEW", 0, kPlace);
    view->AddColumn(L"Name", 100);
    for (int i = 0; i < 100; ++i) {
        view->AddRow();
    }
    manager.Tick(0);
    MoveTo(244, 70);
    Press();
    MoveTo(244, 700);
    EXPECT_GT(view->ScrollPixels(), 0);
    view->Clear();
    EXPECT_EQ(view->ScrollPixels(), 0);
    MoveTo(244, 80);
    Release();
    MoveTo(147, 60);
    Press();
    view->AddColumn(L"Size", 40);
    MoveTo(177, 60);
    EXPECT_EQ(view->ColumnWidth(0), 130);
    Release();
}

// The bar is neither hidden nor let go when the new text needs it as well.
TEST_F(Signals, ATextMayChangeWhileItsThumbIsDragged) {
    std::wstring text;
    for (int i = 0; i < 60; ++i) {
        text += L"line\n";
    }
    auto* const made = new CGhostMultiText(nullptr, 0, L"T", text, kPlace);
    manager.Tick(0);
    const int bar = 50 + 200 - 7;
    MoveTo(bar, 50 + 16);
    Press();
    MoveTo(bar, 50 + 40);
    const int32_t scrolled = made->ScrollPixels();
    EXPECT_GT(scrolled, 0);
    const GHOSTMANAGER_WINDOW* const held = manager.CaptureWindow();
    ASSERT_NE(held, nullptr);
    made->SetText(text + text);
    EXPECT_EQ(made->ScrollPixels(), 0);
    EXPECT_EQ(manager.CaptureWindow(), held);
    manager.Tick(0);
    MoveTo(bar, 50 + 41);
    EXPECT_GT(made->ScrollPixels(), scrolled) << "the thumb is under the mouse again";
    made->SetText(L"short");
    manager.Tick(0);
    MoveTo(bar, 50 + 60);
    made->SetText(text);
    manager.Tick(0);
    MoveTo(bar, 50 + 30);
    EXPECT_EQ(made->ScrollPixels(), 0) << "that drag ended with the bar";
    Release();
}
