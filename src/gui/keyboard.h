// CGhostKeyboard: letters in a grid on the screen, to fill an edit with a game controller or the mouse.
//
// It takes the input of all other windows while it is open. Directions move over the grid and go round at
// its ends, the controller's first button presses the key, its second is a backspace, and closes the
// keyboard when there is nothing left to delete. A keyboard on the table may be used as well.
// Styles: KEYBOARD_BACKGROUND for the panel, KEYBOARD_KEY for the keys, or MESSAGEBOX_BACKGROUND and
//   BUTTON in themes without them.
// Owner: itself, as every control; it floats for its edit and ends with it at the latest.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

#include <vector>

class CGhostEdit;
class CGhostWindowEx;

class CGhostKeyboard : public CGhostGUIHandlerEx {
public:
    // The edit's own keyboard; the one that is open already if there is one.
    static CGhostKeyboard* Open(CGhostEdit* edit);

    void Done(bool submit); // closes it; fires the edit's OnSubmit if its flags say so
    [[nodiscard]] std::wstring KeyAtFocus() const; // its caption
    // Where a key is, within the client area; empty for a caption that is not on it.
    [[nodiscard]] GUI_RECT KeyPlace(const std::wstring& caption) const;

    void Destroy() override { delete this; }
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnChar(unsigned character) override;
    void OnTick(unsigned microseconds) override;
    bool OnNavigate(GUI_DIRECTION direction) override;
    bool OnActivateKey() override;
    bool OnCancelKey() override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostKeyboard() override;

private:
    enum class Action : uint8_t { kCharacter, kShift, kSpace, kBackspace, kLeft, kRight, kDone };
    struct KEY {
        GUI_RECT place;
        Action action = Action::kCharacter;
        wchar_t small = 0;
        wchar_t large = 0;
    };
    static constexpr size_t kNone = static_cast<size_t>(-1);

    explicit CGhostKeyboard(CGhostEdit* target);
    [[nodiscard]] GUI_PLACE Place() const;
    void MakeKeys();
    [[nodiscard]] std::wstring Caption(const KEY& key) const;
    [[nodiscard]] size_t KeyAt(int x, int y) const;
    void PressKey(size_t index);
    void PaintPreview(CGhostSurface& surface, const GUI_RECT& line);

    CGhostWindowEx* frame = nullptr; // whose chain this is the second of
    CGhostEdit* edit;
    GhostButtonStyle style;
    GhostTextStyle preview;
    GUI_RECT screen;  // that it was placed for
    GUI_EDGES around; // of its frame
    std::vector<KEY> keys;
    size_t aim = 0;       // the key that the controller is on
    size_t held = kNone;  // under a held button
    bool shifted = false; // for one letter
    bool closing = false;
};
