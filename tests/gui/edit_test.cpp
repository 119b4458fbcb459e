// The text field and the keyboard on the screen.
#include "gui/control_rig.h"
#include "gui/text.h"

namespace {

class EditTest : public ControlTest {
protected:
    CGhostEdit* Make(const std::wstring& text, uint32_t flags = 0) {
        auto* const edit =
            new CGhostEdit(nullptr, 0, L"EDIT", text, flags, {false, 100, 100, 120, 28});
        Focus(edit->window);
        return edit;
    }
    void WithKey(uint32_t held, uint32_t key) {
        KeyDown(held);
        Key(key);
        KeyUp(held);
    }
};

using Edit = EditTest;
using Keyboard = EditTest;

constexpr uint32_t kA = 4, kC = 6, kV = 25, kX = 27;

} // namespace

TEST_F(Edit, TypingGoesInAtTheCaret) {
    CGhostEdit* const edit = Make(L"ad");
    std::wstring told;
    edit->OnChange.connect([&](CGhostEdit*, const std::wstring& text) { told = text; });
    Key(kLeft);
    Type("bc");
    EXPECT_EQ(edit->Text(), L"abcd");
    EXPECT_EQ(told, L"abcd");
    EXPECT_EQ(edit->Caret(), 3u);
    Key(kDelete);
    Key(kBackspace);
    EXPECT_EQ(edit->Text(), L"ab");
    Key(kHome);
    Key(kBackspace);
    EXPECT_EQ(edit->Text(), L"ab") << "nothing before it";
    Key(kEnd);
    Key(kDelete);
    EXPECT_EQ(edit->Text(), L"ab") << "nothing after it";
}

TEST_F(Edit, ShiftSelectsAndWhatIsTypedReplacesIt) {
    CGhostEdit* const edit = Make(L"one two three");
    Key(kHome);
    KeyDown(kShift);
    Key(kRight);
    Key(kRight);
    Key(kRight);
    KeyUp(kShift);
    EXPECT_EQ(edit->SelectedText(), L"one");
    Type("1");
    EXPECT_EQ(edit->Text(), L"1 two three");
    WithKey(kShift, kEnd);
    Key(kBackspace);
    EXPECT_EQ(edit->Text(), L"1");
}

TEST_F(Edit, ControlGoesFromSpaceToSpace) {
    CGhostEdit* const edit = Make(L"ab cd ef");
    WithKey(kCtrl, kLeft);
    EXPECT_EQ(edit->Caret(), 5u);
    WithKey(kCtrl, kLeft);
    EXPECT_EQ(edit->Caret(), 2u);
    WithKey(kCtrl, kLeft);
    EXPECT_EQ(edit->Caret(), 0u);
    WithKey(kCtrl, kRight);
    EXPECT_EQ(edit->Caret(), 2u);
    WithKey(kCtrl, kRight);
    WithKey(kCtrl, kRight);
    EXPECT_EQ(edit->Caret(), 8u);
}

TEST_F(Edit, CopyWithNothingSelectedLeavesTheClipboard) {
    CGhostEdit* const edit = Make(L"text");
    manager.SetClipboard(L"before");
    WithKey(kCtrl, kC);
    std::wstring clip;
    EXPECT_TRUE(manager.GetClipboard(clip));
    EXPECT_EQ(clip, L"before");
    WithKey(kCtrl, kA);
    WithKey(kCtrl, kC);
    EXPECT_TRUE(manager.GetClipboard(clip));
    EXPECT_EQ(clip, L"text");
    WithKey(kCtrl, kX);
    EXPECT_EQ(edit->Text(), L"");
    WithKey(kCtrl, kV);
    WithKey(kCtrl, kV);
    EXPECT_EQ(edit->Text(), L"texttext");
    manager.SetClipboard(L"two\nlines\x07");
    WithKey(kCtrl, kA);
    WithKey(kCtrl, kV);
    EXPECT_EQ(edit->Text(), L"two lines");
}

TEST_F(Edit, AReadOnlyOneIsOnlyRead) {
    CGhostEdit* const edit = Make(L"fixed");
    edit->SetReadOnly(true);
    EXPECT_EQ(edit->GetStyleIndex(), CGhostEdit::kReadOnly);
    Type("x");
    Key(kBackspace);
    WithKey(kCtrl, kA);
    WithKey(kCtrl, kX);
    EXPECT_EQ(edit->Text(), L"fixed");
    std::wstring clip;
    EXPECT_TRUE(manager.GetClipboard(clip));
    EXPECT_EQ(clip, L"fixed") << "it may be copied";
    MoveTo(110, 110);
    EXPECT_EQ(edit->GetStyleIndex(), CGhostEdit::kReadOnly);
}

TEST_F(Edit, TheMouseChangesTheFrame) {
    CGhostEdit* const edit = Make(L"text");
    EXPECT_EQ(edit->window->clientRect, (GUI_RECT{0, 0, 120, 28}));
    MoveTo(110, 110);
    EXPECT_EQ(edit->GetStyleIndex(), CGhostEdit::kHot);
    EXPECT_EQ(edit->window->clientRect, (GUI_RECT{2, 2, 116, 24}));
    MoveTo(500, 500);
    EXPECT_EQ(edit->GetStyleIndex(), CGhostEdit::kNormal);
}

TEST_F(Edit, ADoubleClickSelectsAll) {
    CGhostEdit* const edit = Make(L"some words");
    DoubleClickAt(110, 110);
    EXPECT_EQ(edit->SelectedText(), L"some words");
}

TEST_F(Edit, ADragSelectsAndMovesTheTextBeyondTheEnds) {
    const std::wstring text(60, L'm');
    CGhostEdit* const edit = Make(text);
    EXPECT_GT(edit->Scroll(), 0) << "the caret at the end is seen";
    Key(kHome);
    EXPECT_EQ(edit->Scroll(), 0);
    MoveTo(105, 110);
    Press();
    MoveTo(400, 110);
    const size_t first = edit->Caret();
    for (int i = 0; i < 60; ++i) {
        manager.Tick(100000);
    }
    EXPECT_GT(edit->Scroll(), 0);
    EXPECT_GT(edit->Caret(), first);
    EXPECT_EQ(edit->SelectionStart(), 0u);
    EXPECT_EQ(edit->Caret(), text.size());
    MoveTo(0, 110);
    for (int i = 0; i < 60; ++i) {
        manager.Tick(100000);
    }
    EXPECT_EQ(edit->Caret(), 0u);
    EXPECT_EQ(edit->Scroll(), 0);
    Release();
}

TEST_F(Edit, ReturnAndEscapeSubmitIfTheFlagsSaySo) {
    CGhostEdit* const edit = Make(L"", CGhostEdit::kSubmits);
    std::vector<bool> told;
    edit->OnSubmit.connect([&](CGhostEdit*, bool kept) { told.push_back(kept); });
    Key(kReturn);
    Key(kEscape);
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
    CGhostEdit* const plain = Make(L"");
    plain->OnSubmit.connect([&](CGhostEdit*, bool) { FAIL(); });
    Key(kReturn);
    EXPECT_EQ(told.size(), 2u);
}

TEST_F(Edit, TheCaretIsALineOfOpaqueBlackAndBlinks) {
    CGhostEdit* const edit = Make(L"");
    const auto caretPixel = [&] {
        CGhostSurface& surface = *edit->window->surface;
        return surface.Pixels()[14 * surface.Stride() + 4]; // after a margin of 4
    };
    // Opaque black over an opaque ground: 0 from the source in each channel.
    EXPECT_EQ(caretPixel(), 0xFF000000);
    manager.Tick(600000);
    EXPECT_EQ(caretPixel(), 0xFF1B2142) << "the field's own colour";
    manager.Tick(600000);
    EXPECT_EQ(caretPixel(), 0xFF000000);
}

TEST_F(Edit, LeftAndRightEndASelectionAtItsSides) {
    CGhostEdit* const edit = Make(L"one two three");
    for (const bool backward : {false, true}) {
        edit->SetSelection(backward ? 7 : 4, backward ? 4 : 7);
        Key(kLeft);
        EXPECT_EQ(edit->Caret(), 4u);
        edit->SetSelection(backward ? 7 : 4, backward ? 4 : 7);
        Key(kRight);
        EXPECT_EQ(edit->Caret(), 7u);
        EXPECT_EQ(edit->SelectedText(), L"");
    }
    KeyDown(kShift);
    WithKey(kCtrl, kRight);
    KeyUp(kShift);
    EXPECT_EQ(edit->SelectedText(), L" three") << "to the next space, which is the end";
}

// A code point is one character to every key, however many bytes it has elsewhere.
TEST_F(Edit, CodePointsAreNeverSplit) {
    CGhostEdit* const edit = Make(L"");
    for (const int character : {0x61, 0xE9, 0x6708, 0x1F319}) {
        GUI_INPUT_RECORD record;
        record.character = character;
        Post(record);
    }
    ASSERT_EQ(edit->Text().size(), 4u);
    Key(kLeft);
    Key(kBackspace);
    EXPECT_EQ(edit->Text(), L"a\u00E9\U0001F319");
    Key(kDelete);
    EXPECT_EQ(edit->Text(), L"a\u00E9");
}

TEST_F(Edit, ATextIsOneLineWithoutControlCharacters) {
    CGhostEdit* const edit = Make(L"two\tparts");
    EXPECT_EQ(edit->Text(), L"two parts");
    edit->SetText(L"a\r\nb\x1B\x85"
                  L"c");
    EXPECT_EQ(edit->Text(), L"a bc");
    EXPECT_EQ(edit->Caret(), 4u);
    for (const int character : {0x07, 0x1F, 0x7F, 0x9B}) {
        edit->OnChar(static_cast<unsigned>(character));
    }
    EXPECT_EQ(edit->Text(), L"a bc");
}

TEST_F(Edit, AVeryLongLineIsEditedAtBothEnds) {
    const std::wstring text(50000, L'm');
    CGhostEdit* const edit = Make(text);
    EXPECT_EQ(edit->Scroll(), MeasureText(nullptr, text).width + 1 - 112) << "margins of 4";
    Key(kHome);
    Type("x");
    EXPECT_EQ(edit->Scroll(), 0);
    WithKey(kShift, kEnd);
    EXPECT_EQ(edit->SelectedText().size(), text.size());
    Key(kDelete);
    EXPECT_EQ(edit->Text(), L"x");
}

TEST_F(Keyboard, AControllerWritesWithIt) {
    CGhostEdit* const edit = Make(L"", CGhostEdit::kSubmits);
    bool submitted = false;
    edit->OnSubmit.connect([&](CGhostEdit*, bool kept) { submitted = kept; });
    ASSERT_TRUE(manager.ActivateFocus());
    manager.Tick(0);
    CGhostKeyboard* const keyboard = edit->Keyboard();
    ASSERT_NE(keyboard, nullptr);
    EXPECT_EQ(manager.ModalWindow(), keyboard->window);
    EXPECT_EQ(keyboard->KeyAtFocus(), L"q");
    manager.ActivateFocus();
    manager.Navigate(GUI_DIRECTION::kRight);
    manager.ActivateFocus();
    manager.Navigate(GUI_DIRECTION::kUp);
    manager.ActivateFocus();
    EXPECT_EQ(edit->Text(), L"qw2");
    manager.CancelFocus();
    EXPECT_EQ(edit->Text(), L"qw");
    manager.Navigate(GUI_DIRECTION::kUp); // round to the last row
    EXPECT_EQ(keyboard->KeyAtFocus(), L"Shift");
    manager.Navigate(GUI_DIRECTION::kLeft);
    EXPECT_EQ(keyboard->KeyAtFocus(), L"Done");
    manager.ActivateFocus();
    manager.Tick(0);
    EXPECT_TRUE(submitted);
    EXPECT_EQ(edit->Keyboard(), nullptr);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
    EXPECT_EQ(manager.FocusWindow(), edit->window);
}

TEST_F(Keyboard, TheMouseAndTheRealKeysWorkToo) {
    CGhostEdit* const edit = Make(L"");
    CGhostKeyboard* const keyboard = CGhostKeyboard::Open(edit);
    EXPECT_EQ(CGhostKeyboard::Open(edit), keyboard);
    manager.Tick(0);
    const auto click = [&](const std::wstring& caption) {
        GUI_RECT client;
        manager.GetWindowRects(keyboard->window, nullptr, &client, nullptr);
        const GUI_RECT at = OnScreen(keyboard->window);
        const GUI_RECT key = keyboard->KeyPlace(caption);
        ClickAt(at.x + client.x + key.x + 5, at.y + client.y + key.y + 5);
    };
    click(L"Shift");
    click(L"Z");
    click(L"z");
    click(L"Space");
    Type("a");
    EXPECT_EQ(edit->Text(), L"Zz a");
    click(L"Delete");
    EXPECT_EQ(edit->Text(), L"Zz ");
    Key(kEscape);
    EXPECT_EQ(edit->Keyboard(), nullptr);
}

TEST_F(Keyboard, EndsWithItsEdit) {
    CGhostEdit* const edit = Make(L"");
    CGhostKeyboard::Open(edit);
    manager.Tick(0);
    manager.DestroyWindow(edit->window);
    manager.Tick(0);
    manager.Tick(0);
    EXPECT_EQ(WindowCount(), 0u);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
}

TEST_F(Keyboard, ItsPreviewStaysInItsLineHoweverLongTheText) {
    std::string theme = kRandomTheme;
    theme.insert(theme.rfind("</theme>"), R"(<textbox name="TEXT_LEFT">
        <color name="text" val="FFFFFFFF"/><font align="left"/></textbox>)");
    CGhostTheme::Get().ParseTheme(theme);
    const auto painted = [&](size_t caret) {
        const std::wstring text(3000, L'W');
        CGhostEdit* const edit = Make(text);
        edit->SetSelection(caret, caret);
        CGhostKeyboard* const keyboard = CGhostKeyboard::Open(edit);
        manager.Tick(0);
        CGhostSurface& surface = *keyboard->window->surface;
        const GUI_RECT first = keyboard->KeyPlace(L"1");
        GUI_RECT client;
        manager.GetWindowRects(keyboard->window, nullptr, &client, nullptr);
        // From the last key's right edge to that of the panel.
        const GUI_RECT last = keyboard->KeyPlace(L"=");
        std::vector<uint32_t> margin;
        for (int32_t y = 0; y < client.y + first.y; ++y) {
            for (int32_t x = client.x + last.Right(); x < client.x + client.width; ++x) {
                margin.push_back(surface.Pixels()[y * surface.Stride() + x]);
            }
        }
        manager.Reset();
        return margin;
    };
    const std::vector<uint32_t> atStart = painted(0);
    ASSERT_FALSE(atStart.empty());
    for (const uint32_t pixel : atStart) {
        ASSERT_EQ(pixel, atStart.front()) << "nothing but the panel";
    }
    EXPECT_EQ(painted(1500), atStart);
    EXPECT_EQ(painted(3000), atStart);
}
