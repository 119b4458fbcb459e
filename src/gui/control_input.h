// Input that several controls treat alike: a press that is held, arrow keys that are held.
#pragma once

#include "gui/handler.h"

#include <functional>
#include <optional>

inline constexpr unsigned kLeftButton = 1;

// Characters that have no glyph: those below the space, and the block from delete to the next space.
[[nodiscard]] constexpr bool IsControlCharacter(wchar_t character) {
    return character < L' ' || (character >= 0x7F && character <= 0x9F);
}

// Space and return press what has the focus.
[[nodiscard]] constexpr bool IsPressKey(GHOSTGUIKey key) {
    return key == GHOSTGUIKey::kSpace || key == GHOSTGUIKey::kReturn;
}

[[nodiscard]] std::optional<GUI_DIRECTION> DirectionOf(GHOSTGUIKey key); // of an arrow key

// A control that holds something from a press to its release calls this in every tick meanwhile. The
// capture may end without a call: the window is hidden, another becomes modal, a second mouse button is
// released. `rest` is called after the calls of this tick, among which the release may be.
void RestWithoutCapture(const GHOSTMANAGER_WINDOW* window, std::function<void()> rest);

// An arrow key at a control that may have a use for it. Where it has none the focus moves on; but a key
// that the control has used and that is still held does not leave it: holding "down" stops at the last row.
class HeldArrow {
public:
    // `use` is told whether the key was pressed anew, and returns whether the control used it.
    void Press(GHOSTGUIKey key, const std::function<bool(bool newPress)>& use);
    void Release(GHOSTGUIKey key);
    void Forget() { held.reset(); } // the focus has come

private:
    std::optional<GHOSTGUIKey> held;
};
