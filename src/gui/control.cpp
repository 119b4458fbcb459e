#include "gui/control.h"

#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/theme.h"

GHOSTMANAGER_WINDOW* MakeControlWindow(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                       CGhostGUIHandler* handler, const GUI_PLACE& place) {
    return CGhostManager::Get().CreateWindow(parent, creationId, handler, place.nonClient);
}

void PlaceControl(GHOSTMANAGER_WINDOW* window, const GUI_PLACE& place) {
    CGhostManager::Get().SetWindowPos(window, place.x, place.y, place.width, place.height);
}

void PaintFocusRing(CGhostSurface& surface, const GUI_RECT& rect) {
    constexpr int32_t kThickness = 2;
    GhostTextStyle style;
    CGhostTheme::Get().GetStyle(L"FOCUS", style);
    const int32_t between = rect.height - 2 * kThickness;
    surface.FillRect({rect.x, rect.y, rect.width, kThickness}, style.textColour);
    surface.FillRect({rect.x, rect.Bottom() - kThickness, rect.width, kThickness},
                     style.textColour);
    surface.FillRect({rect.x, rect.y + kThickness, kThickness, between}, style.textColour);
    surface.FillRect({rect.Right() - kThickness, rect.y + kThickness, kThickness, between},
                     style.textColour);
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
