// CGhostEdit: a field for one line of text.
//
// Mouse: a press places the caret, a drag selects and scrolls at the ends, a double click selects all.
// Keys: arrows, home and end, with shift selecting, with control from space to space; backspace and
//   delete; control with A, C, V and X. Up and down leave it, left and right at the ends of the text. A
//   controller's button opens the keyboard on the screen.
// Text: one line. A break or a tab becomes a space, other control characters go.
// Caret: a line of opaque black. A style whose bg2 is a colour other than 0 gives it that one, for
//   fields that are dark.
#pragma once

#include "gui/control.h"
#include "gui/control_input.h"
#include "gui/styles.h"

#include <algorithm>

class CGhostKeyboard;

class CGhostEdit : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    static constexpr uint32_t kSubmits = 2; // return and escape fire OnSubmit
    static constexpr uint32_t kSecret = 4;  // a password: shown as dots, and never copied

    enum StyleIndex : uint32_t { kNormal = 0, kHot = 1, kReadOnly = 2 };

    CGhostEdit(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
               const std::wstring& caption, uint32_t editFlags, const GUI_PLACE& place);

    void SetText(const std::wstring& wanted); // the caret goes to its end; no signal
    void SetStyle(const std::wstring& name);
    void SetStyle(const GhostEditStyle& wanted);
    void SetReadOnly(bool wanted);
    void SetMaxLength(size_t characters) { maxLength = characters; }
    void SetSelection(size_t start, size_t end); // the caret goes to `end`; cut to the text
    [[nodiscard]] const std::wstring& Text() const { return text; }
    [[nodiscard]] size_t Caret() const { return caret; }
    [[nodiscard]] size_t SelectionStart() const { return std::min(anchor, caret); }
    [[nodiscard]] size_t SelectionEnd() const { return std::max(anchor, caret); }
    [[nodiscard]] std::wstring SelectedText() const;
    [[nodiscard]] uint32_t GetStyleIndex() const { return styleIndex; }
    [[nodiscard]] int32_t Scroll() const { return scroll; }
    [[nodiscard]] bool IsReadOnly() const { return readOnly; }
    [[nodiscard]] CGhostKeyboard* Keyboard() const { return keyboard; }

    // What the user changed, each time.
    GuiSignal<void(CGhostEdit*, const std::wstring&)> OnChange;
    GuiSignal<void(CGhostEdit*, bool)> OnSubmit; // true: return, false: escape
    GuiSignal<void(CGhostEdit*, bool)> OnFocusChange;
    GuiSignal<void(CGhostEdit*)> OnGone; // while it ends

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override { arrow.Release(key); }
    void OnChar(unsigned character) override;
    void OnTick(unsigned microseconds) override;
    bool OnActivateKey() override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostEdit() override;

private:
    friend class CGhostKeyboard;

    [[nodiscard]] const GhostTextStyle& Look() const { return style.states[styleIndex]; }
    [[nodiscard]] std::wstring Shown() const; // the text, or a dot for each character
    [[nodiscard]] GUI_RECT Inner() const;     // where the text is
    [[nodiscard]] size_t CharacterAt(int x) const;
    [[nodiscard]] int32_t CaretX(size_t at) const; // from the text's start
    void ShowStyle(uint32_t index);
    void MoveCaret(size_t to, bool select);
    void ShowCaret();
    void ClampScroll();
    void Insert(std::wstring_view more);
    bool RemoveSelection();
    void Changed();
    bool ControlKey(GHOSTGUIKey key);
    bool MoveKey(GHOSTGUIKey key); // false when it changes nothing
    void EraseKey(GHOSTGUIKey key);
    void EndDrag();
    [[nodiscard]] size_t SpaceBefore(size_t at) const;
    [[nodiscard]] size_t SpaceAfter(size_t at) const;

    std::wstring text;
    GhostEditStyle style;
    uint32_t styleIndex = kNormal;
    int32_t width = 0;
    int32_t height = 0;
    bool focused = false;
    bool readOnly = false;
    bool dragging = false;
    bool hovered = false;
    size_t caret = 0;
    size_t anchor = 0;      // the selection's other end
    int32_t scroll = 0;     // units of text left of what is seen
    int32_t dragScroll = 0; // -1, 0, 1
    int64_t dragTime = 0;   // microseconds since the last step
    bool caretShown = true;
    int64_t blinkTime = 0; // microseconds since the caret changed
    uint32_t flags;
    size_t maxLength = 0; // 0: none
    HeldArrow arrow;
    CGhostKeyboard* keyboard = nullptr;
};
