#include "gui/control.h"

#include "gui/manager.h"
#include "gui/ring.h"
#include "gui/theme.h"

GHOSTMANAGER_WINDOW* MakeControlWindow(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                       CGhostGUIHandler* handler, const GUI_PLACE& place) {
    return CGhostManager::Get().CreateWindow(parent, creationId, handler, place.nonClient);
}

void PlaceControl(GHOSTMANAGER_WINDOW* window, const GUI_PLACE& place) {
    CGhostManager::Get().SetWindowPos(window, place.x, place.y, place.width, place.height);
}

// A line of the outline's colour within parts the ring from a face of its own colour.
void PaintFocusRing(CGhostSurface& surface, const GUI_RECT& rect) {
    constexpr int32_t kThickness = 2;
    constexpr int32_t kCorner = 4; // that of the controls
    const CGhostTheme::RING_COLOURS& colours = CGhostTheme::Get().FocusRing();
    PaintRing(surface, rect, kThickness, kCorner, colours.line);
    PaintRing(surface,
              {rect.x + kThickness, rect.y + kThickness, rect.width - 2 * kThickness,
               rect.height - 2 * kThickness},
              1, kCorner - kThickness, colours.outline);
}

bool MoveFocusByKey(GHOSTGUIKey key) {
    CGhostManager& manager = CGhostManager::Get();
    switch (key) {
    case GHOSTGUIKey::kLeft: return manager.MoveFocus(GUI_DIRECTION::kLeft);
    case GHOSTGUIKey::kRight: return manager.MoveFocus(GUI_DIRECTION::kRight);
    case GHOSTGUIKey::kUp: return manager.MoveFocus(GUI_DIRECTION::kUp);
    case GHOSTGUIKey::kDown: return manager.MoveFocus(GUI_DIRECTION::kDown);
    default: return false;
    }
}

void ShowCursor(uint32_t index) {
    CGhostManager::Get().SetCursorIndex(index);
}
