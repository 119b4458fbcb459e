// What takes the input for a while, and who has it afterwards: message boxes, the keyboard on the screen, and
// keys that are held while a box appears.
#include "gui/control_rig.h"

#include <algorithm>
#include <array>

namespace {

class ModalTest : public ControlTest {
protected:
    void SetUp() override {
        ControlTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        panel = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 50, 50, 400, 200});
        button = new CGhostButton(panel->window, 0, L"BUTTON", L"ok", 0, {false, 10, 10, 80, 28});
        edit = new CGhostEdit(panel->window, 0, L"EDIT", L"text", 0, {false, 10, 50, 200, 28});
        Focus(button->window);
    }
    // As a keyboard sends it while the key is held.
    void Repeat(uint32_t key) {
        GUI_INPUT_RECORD record;
        record.keyDown = record.repeat = true;
        record.key = static_cast<int>(key);
        Post(record);
        manager.Tick(0);
    }
    void Dismiss(CGhostMessageBox* box) {
        box->Dismiss();
        manager.Tick(0);
        manager.Tick(0);
    }
    // A box's window is modal and active, its button has the focus.
    void ExpectInputIn(const CGhostMessageBox& box, const std::string& when) {
        EXPECT_EQ(manager.ModalWindow(), box.window) << when;
        EXPECT_EQ(manager.ActiveTopWindow(), box.window) << when;
        EXPECT_EQ(manager.FocusWindow(), box.Button()->window) << when;
    }
    void ExpectInputBackAt(const GHOSTMANAGER_WINDOW* window, const std::string& when) {
        EXPECT_EQ(manager.ModalWindow(), nullptr) << when;
        EXPECT_EQ(manager.ActiveTopWindow(), panel->window) << when;
        EXPECT_EQ(manager.FocusWindow(), window) << when;
    }

    CGhostWindowEx* panel = nullptr;
    CGhostButton* button = nullptr;
    CGhostEdit* edit = nullptr;
};

using Modality = ModalTest;
using HeldKey = ModalTest;

} // namespace

TEST_F(Modality, BoxesMayBeClosedInAnyOrder) {
    std::array<size_t, 3> order{0, 1, 2};
    do {
        std::vector<CGhostMessageBox*> boxes;
        for (size_t i = 0; i < order.size(); ++i) {
            boxes.push_back(CGhostMessageBox::Show(L"Title", L"Text"));
            manager.Tick(0);
        }
        std::string when = "closed";
        std::vector<CGhostMessageBox*> open = boxes;
        for (const size_t index : order) {
            when += " " + std::to_string(index);
            std::erase(open, boxes[index]);
            Dismiss(boxes[index]);
            if (!open.empty()) {
                ExpectInputIn(*open.back(), when);
            }
        }
        ExpectInputBackAt(button->window, when);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(Modality, BoxesClosedInTheSameTickReturnTheInput) {
    for (int i = 0; i < 3; ++i) {
        CGhostMessageBox* const lower = CGhostMessageBox::Show(L"Title", L"Text");
        CGhostMessageBox* const upper = CGhostMessageBox::Show(L"Title", L"Text");
        manager.Tick(0);
        lower->Dismiss();
        Dismiss(upper);
        ExpectInputBackAt(button->window, std::to_string(i));
    }
}

TEST_F(Modality, EscapeAndReturnCloseABoxWhicheverPartHasTheFocus) {
    for (const GHOSTGUIKey key : {GHOSTGUIKey::kEscape, GHOSTGUIKey::kReturn}) {
        for (int part = 0; part < 3; ++part) {
            CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
            manager.Tick(0);
            Focus(part == 0   ? box->Message()->window
                  : part == 1 ? box->Box()->window
                              : box->window);
            Key(static_cast<uint32_t>(key));
            manager.Tick(0);
            manager.Tick(0);
            EXPECT_EQ(CGhostMessageBox::Count(), 0u) << part;
            ExpectInputBackAt(button->window, "the box is gone");
        }
    }
}

TEST_F(Modality, WhatIsGivenTheFocusBehindABoxHasItAfterwards) {
    CGhostMessageBox* const lower = CGhostMessageBox::Show(L"Title", L"Text");
    CGhostMessageBox* const upper = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    EXPECT_TRUE(manager.SetFocus(edit->window));
    manager.Tick(0);
    ExpectInputIn(*upper, "nothing behind it takes its keys");
    Dismiss(upper);
    ExpectInputIn(*lower, "nor those of the one below");
    Dismiss(lower);
    ExpectInputBackAt(edit->window, "both are gone");
}

TEST_F(Modality, TheFocusOfALowerBoxWaitsForTheUpperOne) {
    CGhostMessageBox* const lower = CGhostMessageBox::Show(L"Title", L"Text");
    CGhostMessageBox* const upper = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    EXPECT_TRUE(manager.SetFocus(lower->Box()->window));
    manager.Tick(0);
    ExpectInputIn(*upper, "the upper one is open");
    Dismiss(upper);
    EXPECT_EQ(manager.FocusWindow(), lower->Box()->window);
    Dismiss(lower);
    ExpectInputBackAt(button->window, "both are gone");
}

TEST_F(Modality, NothingComesInFrontOfABox) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    ASSERT_TRUE(manager.SetZOrder(panel->window, -1));
    std::vector<const GHOSTMANAGER_WINDOW*> top;
    manager.ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
        if (window.parent == nullptr) {
            top.push_back(&window);
        }
    });
    EXPECT_EQ(top, (std::vector<const GHOSTMANAGER_WINDOW*>{panel->window, box->window}));
}

TEST_F(Modality, AKeyboardThatEndsUnderABoxReturnsTheInputToItsEdit) {
    Focus(edit->window);
    CGhostKeyboard* const keyboard = CGhostKeyboard::Open(edit);
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    keyboard->Done(true);
    manager.Tick(0);
    manager.Tick(0);
    ExpectInputIn(*box, "the keyboard is gone");
    Dismiss(box);
    ExpectInputBackAt(edit->window, "the box is gone");
}

TEST_F(Modality, ABoxUnderAKeyboardLeavesTheInputWithTheKeyboard) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    CGhostKeyboard* const keyboard = CGhostKeyboard::Open(edit);
    manager.Tick(0);
    Dismiss(box);
    EXPECT_EQ(manager.ModalWindow(), keyboard->window);
    EXPECT_EQ(manager.FocusWindow(), keyboard->window);
    keyboard->Done(false);
    manager.Tick(0);
    manager.Tick(0);
    ExpectInputBackAt(button->window, "all are gone");
}

TEST_F(Modality, AnEditThatEndsUnderItsKeyboardAndABoxLeavesNothingBehind) {
    CGhostKeyboard::Open(edit);
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    manager.DestroyWindow(edit->window);
    manager.Tick(0);
    manager.Tick(0);
    ExpectInputIn(*box, "the edit is gone");
    Dismiss(box);
    ExpectInputBackAt(button->window, "the box is gone");
}

// What floats for a window is freed in the tick that frees the window, and not one later.
TEST_F(Modality, AKeyboardAndAnOwnedBoxEndInTheTickOfTheirOwner) {
    auto* const keyboard = CGhostKeyboard::Open(edit);
    manager.Tick(0);
    ASSERT_EQ(manager.ModalWindow(), keyboard->window);
    auto* const box = CGhostMessageBox::Show(L"A", L"b");
    ASSERT_NE(box, nullptr);
    int closed = 0;
    box->OnClosed.connect([&](CGhostMessageBox*) { ++closed; });
    ASSERT_TRUE(manager.SetOwner(box->window, panel->window));
    manager.Tick(0);
    ExpectInputIn(*box, "while its owner lives");
    manager.DestroyWindow(panel->window);
    manager.Tick(0);
    EXPECT_EQ(WindowCount(), 0u);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
}

TEST_F(Modality, ADialogThatEndsUnderABoxIsNotReturnedTo) {
    auto* const dialog = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 500, 50, 260, 90});
    manager.SetModal(dialog->window);
    CGhostMessageBox* const lower = CGhostMessageBox::Show(L"Title", L"Text");
    CGhostMessageBox* const upper = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    manager.DestroyWindow(dialog->window);
    manager.Tick(0);
    ExpectInputIn(*upper, "the dialog is gone");
    Dismiss(upper);
    ExpectInputIn(*lower, "the upper box is gone");
    Dismiss(lower);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
}

TEST_F(Modality, ADialogOverABoxReturnsTheInputToTheBox) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    auto* const dialog = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 500, 50, 260, 90});
    manager.SetModal(dialog->window);
    manager.Tick(0);
    manager.DestroyWindow(dialog->window);
    manager.Tick(0);
    ExpectInputIn(*box, "the dialog is gone");
}

TEST_F(Modality, AHiddenDialogDoesNotGetTheInputBack) {
    auto* const dialog = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 500, 50, 260, 90});
    manager.SetModal(dialog->window);
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    dialog->SetVisible(false);
    Dismiss(box);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
    ClickAt(65, 65);
    EXPECT_EQ(manager.FocusWindow(), button->window) << "the rest takes input";
}

TEST_F(Modality, TheFocusGoesToTheVisibleWindowAroundWhatWasHiddenMeanwhile) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    button->SetVisible(false);
    Dismiss(box);
    ExpectInputBackAt(panel->window, "hidden");
}

TEST_F(Modality, AFocusThatTheEndOfABoxSetsIsKept) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    box->OnClosed.connect([this](CGhostMessageBox*) { edit->SetFocus(); });
    manager.Tick(0);
    Dismiss(box);
    ExpectInputBackAt(edit->window, "closed");
}

TEST_F(Modality, AButtonUnderTheMouseComesToRestWhenABoxAppears) {
    MoveTo(65, 65);
    Press();
    ASSERT_TRUE(button->IsDown());
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    EXPECT_FALSE(button->IsDown());
    EXPECT_EQ(button->GetState(), CGhostButton::kNormal);
    Release();
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    Dismiss(box);
    MoveTo(66, 66);
    EXPECT_EQ(button->GetState(), CGhostButton::kHot) << "not pressed";
}

TEST_F(Modality, AMenuThatABoxClosesReturnsTheInputToItsOwner) {
    auto* const menu = new CGhostPopup(panel->window, 0);
    menu->AddItem(L"One");
    MoveTo(600, 300);
    menu->Show();
    manager.Tick(0);
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    manager.Tick(0);
    EXPECT_FALSE(menu->IsShown());
    ExpectInputIn(*box, "over a menu");
    Dismiss(box);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
    EXPECT_EQ(manager.FocusWindow(), panel->window) << "where the menu belongs";
}

// ---- Keys.

TEST_F(HeldKey, TheReturnThatOpensABoxDoesNotCloseIt) {
    auto* const list = new CGhostList(panel->window, 0, L"LIST", 0, {false, 220, 10, 100, 100});
    list->AddItem(L"row");
    list->SetSelected(0);
    list->OnChoose.connect([](auto&&...) { CGhostMessageBox::Show(L"Title", L"Text"); });
    Focus(list->window);
    KeyDown(kReturn);
    ASSERT_EQ(CGhostMessageBox::Count(), 1u);
    const GHOSTMANAGER_WINDOW* const modal = manager.ModalWindow();
    KeyUp(kReturn);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 1u) << "the release belongs to the list";
    EXPECT_EQ(manager.ModalWindow(), modal);
    Key(kReturn);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 0u) << "a press of its own closes it";
    EXPECT_EQ(manager.FocusWindow(), list->window);
}

TEST_F(HeldKey, ARepeatedReturnDoesNotPressTheButtonOfANewBox) {
    auto* const list = new CGhostList(panel->window, 0, L"LIST", 0, {false, 220, 10, 100, 100});
    list->AddItem(L"row");
    list->SetSelected(0);
    list->OnChoose.connect([](auto&&...) { CGhostMessageBox::Show(L"Title", L"Text"); });
    Focus(list->window);
    KeyDown(kReturn);
    for (int i = 0; i < 5; ++i) {
        Repeat(kReturn);
    }
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    KeyUp(kReturn);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
}

TEST_F(HeldKey, AHeldEscapeClosesOneBox) {
    CGhostMessageBox::Show(L"Title", L"Text");
    CGhostMessageBox::Show(L"Title", L"Text");
    manager.Tick(0);
    KeyDown(kEscape);
    manager.Tick(0);
    for (int i = 0; i < 5; ++i) {
        Repeat(kEscape);
    }
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    KeyUp(kEscape);
    Key(kEscape);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
}

TEST_F(HeldKey, AReleaseWithoutAPressInTheWindowDoesNothing) {
    int clicks = 0;
    button->OnClick.connect([&](auto&&...) { ++clicks; });
    KeyUp(kReturn);
    EXPECT_EQ(clicks, 0) << "pressed where no one told the toolkit";
    Focus(edit->window);
    KeyDown(kSpace);
    Focus(button->window);
    KeyUp(kSpace);
    EXPECT_EQ(clicks, 0) << "pressed elsewhere";
    Key(kSpace);
    EXPECT_EQ(clicks, 1);
}

// A game may take the keyboard while a key is held, and keep the release.
TEST_F(HeldKey, APressAfterALostReleaseIsAPress) {
    int clicks = 0;
    button->OnClick.connect([&](auto&&...) { ++clicks; });
    Focus(edit->window);
    KeyDown(kReturn);
    Focus(button->window);
    Key(kReturn);
    EXPECT_EQ(clicks, 1);
    Repeat(kSpace); // held since before the toolkit had the keys
    KeyUp(kSpace);
    EXPECT_EQ(clicks, 1);
    EXPECT_FALSE(button->IsDown());
}

TEST_F(HeldKey, ArrowsGoOnFromWindowToWindowWhileTheyAreHeld) {
    auto* const last =
        new CGhostButton(panel->window, 0, L"BUTTON", L"last", 0, {false, 10, 90, 80, 28});
    KeyDown(kDown);
    for (int i = 0; i < 3; ++i) {
        Repeat(kDown);
    }
    EXPECT_EQ(manager.FocusWindow(), last->window);
}
