#include "gui/control_input.h"

#include "gui/control.h"
#include "gui/manager.h"

#include <utility>

std::optional<GUI_DIRECTION> DirectionOf(GHOSTGUIKey key) {
    switch (key) {
    case GHOSTGUIKey::kLeft: return GUI_DIRECTION::kLeft;
    case GHOSTGUIKey::kRight: return GUI_DIRECTION::kRight;
    case GHOSTGUIKey::kUp: return GUI_DIRECTION::kUp;
    case GHOSTGUIKey::kDown: return GUI_DIRECTION::kDown;
    default: return std::nullopt;
    }
}

void RestWithoutCapture(const GHOSTMANAGER_WINDOW* window, std::function<void()> rest) {
    CGhostManager::Get().QueueEvent([window, rest = std::move(rest)] {
        if (CGhostManager::Get().CaptureWindow() != window) {
            rest();
        }
    });
}

void HeldArrow::Press(GHOSTGUIKey key, const std::function<bool(bool newPress)>& use) {
    const bool newPress = held != key;
    if (use(newPress)) {
        held = key;
    } else if (newPress) {
        MoveFocusByKey(key);
    }
}

void HeldArrow::Release(GHOSTGUIKey key) {
    if (held == key) {
        held.reset();
    }
}
