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
    GhostTextStyle style;
    if (!CGhostTheme::Get().GetStyle(L"FOCUS", style) || style.textColour >> 24 == 0) {
        style.textColour = 0xFFFFB347; // visible even if the theme has no FOCUS style
        style.textOutlineColour = 0xFF0B0E1F;
    }
    PaintRing(surface, rect, kThickness, kCorner, style.textColour);
    PaintRing(surface,
              {rect.x + kThickness, rect.y + kThickness, rect.width - 2 * kThickness,
               rect.height - 2 * kThickness},
              1, kCorner - kThickness, style.textOutlineColour);
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
