#include "gui/scrolled_area.h"

#include "gui/manager.h"
#include "gui/scrollbar.h"
#include "gui/window_ex.h"

#include <algorithm>

CGhostScrolledArea::CGhostScrolledArea(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                       const std::wstring& style, const GUI_PLACE& place) {
    frame = new CGhostWindowEx(parent, creationId, style, {},
                               CGhostWindowEx::kNoPaint | CGhostWindowEx::kNoSignals, place);
    window = frame->window;
    frame->next = this;
    frame->Scrollbar()->LeaveKeysToOwner();
    frame->Scrollbar()->OnScroll.connect([this](int32_t pos) {
        scrollPixels = pos;
        dirty = true;
        Scrolled();
    });
}

GHOSTMANAGER_WINDOW* CGhostScrolledArea::ScrollbarWindow() const {
    return frame->Scrollbar()->window;
}

int32_t CGhostScrolledArea::BarWidth() const {
    return frame->Scrollbar()->Width();
}

void CGhostScrolledArea::ShowBar(bool show) {
    if (show == barShown) {
        return;
    }
    barShown = show;
    const bool barHasFocus = CGhostManager::Get().FocusWindow() == ScrollbarWindow();
    frame->ShowScrollbar(show);
    if (barHasFocus) {
        SetFocus();
    }
}

void CGhostScrolledArea::SetContent(int32_t total, int32_t page) {
    frame->Scrollbar()->SetRange(std::max(total, 0), std::max(page, 0), -1, true);
}

void CGhostScrolledArea::SetLine(int32_t units) {
    lineUnits = std::max(units, 1);
    frame->Scrollbar()->SetStep(lineUnits);
}

void CGhostScrolledArea::ScrollTo(int32_t pixels) {
    CGhostScrollbar& bar = *frame->Scrollbar();
    bar.SetRange(-1, -1, std::clamp(pixels, 0, bar.Total() - bar.Page()), false);
}

void CGhostScrolledArea::Wheel(bool up) {
    frame->OnMouseWheel(0, 0, up);
}

void CGhostScrolledArea::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                                  int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    Lay();
}

void CGhostScrolledArea::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = true;
    arrow.Forget();
}

// ---- Directions.

bool CGhostScrolledArea::GoWithin(GUI_DIRECTION way) {
    const int32_t before = scrollPixels;
    if (way == GUI_DIRECTION::kUp || way == GUI_DIRECTION::kDown) {
        ScrollTo(scrollPixels + (way == GUI_DIRECTION::kUp ? -lineUnits : lineUnits));
    }
    return scrollPixels != before;
}

bool CGhostScrolledArea::OnNavigate(GUI_DIRECTION direction) {
    return GoWithin(direction) || GoBeyond(direction);
}

void CGhostScrolledArea::OnKeyDown(GHOSTGUIKey key) {
    if (const auto way = DirectionOf(key)) {
        arrow.Press(key,
                    [&](bool newPress) { return GoWithin(*way) || (newPress && GoBeyond(*way)); });
        return;
    }
    const CGhostScrollbar& bar = *frame->Scrollbar();
    switch (key) {
    case GHOSTGUIKey::kPageUp: ScrollTo(scrollPixels - bar.Page()); break;
    case GHOSTGUIKey::kPageDown: ScrollTo(scrollPixels + bar.Page()); break;
    case GHOSTGUIKey::kHome: ScrollTo(0); break;
    case GHOSTGUIKey::kEnd: ScrollTo(bar.Total()); break;
    default: break;
    }
}

void CGhostScrolledArea::OnKeyUp(GHOSTGUIKey key) {
    arrow.Release(key);
}
