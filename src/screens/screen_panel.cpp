#include "screens/screen_panel.h"

#include "gui/manager.h"

CGUIPanel::~CGUIPanel() {
    for (GHOSTMANAGER_WINDOW* const window : windows) {
        CGhostManager::Get().DestroyWindow(window);
    }
}
