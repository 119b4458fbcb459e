#include "gui/handler.h"
#include "gui/manager.h"

void CGhostGUICommonFunc::SetPos(int x, int y, int width, int height) {
    CGhostManager::Get().SetWindowPos(window, x, y, width, height);
}

void CGhostGUICommonFunc::SetVisible(bool visible) {
    CGhostManager::Get().ShowWindow(window, visible);
}

bool CGhostGUICommonFunc::IsVisible() const {
    return CGhostManager::Get().IsWindowVisible(window);
}

void CGhostGUICommonFunc::SetFocus() {
    CGhostManager::Get().SetFocus(window);
}

GUI_RECT CGhostGUICommonFunc::GetRect() const {
    GUI_RECT rect;
    CGhostManager::Get().GetWindowRects(window, &rect, nullptr, nullptr);
    return rect;
}

uint32_t CGhostGUICommonFunc::GetFlags() const {
    return CGhostManager::Get().GetWindowFlags(window);
}

void CGhostGUICommonFunc::SetZOrder(int where) {
    CGhostManager::Get().SetZOrder(window, where);
}

void CGhostGUICommonFunc::SetToolTip(const std::wstring& text) {
    CGhostManager::Get().SetWindowToolTip(window, text);
}

void CGhostGUICommonFunc::Close() {
    CGhostManager::Get().DestroyWindow(window);
}
