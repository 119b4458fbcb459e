#include "gui/tool_tip_window.h"

#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/window_ex.h"

#include <algorithm>

namespace {

constexpr int32_t kWidest = 400; // units that a hint wraps at
constexpr int32_t kAboveCursor = 10;

} // namespace

CGhostToolTipWindow::CGhostToolTipWindow()
    : frame(new CGhostWindowEx(nullptr, 0, L"TOOLTIP", {},
                               CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {})) {
    window = frame->window;
    frame->next = this;
    hint = new CGhostMultiText(window, 0, L"TOOLTIP_TEXT", {}, {});
    CGhostManager& manager = CGhostManager::Get();
    manager.SetPart(hint->window);
    manager.ShowWindow(window, false);
    manager.SetToolTipWindow(window);
}

void CGhostToolTipWindow::ShowToolTip(const std::wstring& text) {
    CGhostManager& manager = CGhostManager::Get();
    hint->SetText(text);
    const int32_t textWide = hint->WidthAt(kWidest);
    const int32_t textHigh = hint->HeightAt(textWide);
    const GUI_EDGES edge = frame->FrameEdges();
    const int32_t width = textWide + edge.left + edge.right;
    const int32_t height = textHigh + edge.top + edge.bottom;
    // Not beyond the right edge either.
    const int32_t most = std::max(manager.ScreenRect().Right() - width, 0);
    const int32_t x = std::min(std::max(manager.CursorX() - width / 2, 0), most);
    const int32_t y = std::max(manager.CursorY() - height - kAboveCursor, 0);
    SetPos(x, y, width, height);
    hint->SetPos(0, 0, textWide, textHigh);
    SetZOrder(-1);
    SetVisible(true);
}

void CGhostToolTipWindow::HideToolTip() {
    SetVisible(false);
}
