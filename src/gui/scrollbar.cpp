#include "gui/scrollbar.h"

#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window.h"

#include <algorithm>

namespace {

constexpr int32_t kKeep = -1;
constexpr int64_t kFirstRepeat = 400000; // microseconds that a button is held before it repeats
constexpr int64_t kNextRepeat = 50000;
constexpr int32_t kWheelStep = 3; // arrow steps of a notch

constexpr uint32_t kNormal = 0;
constexpr uint32_t kHot = 1;
constexpr uint32_t kPressed = 2;

} // namespace

CGhostScrollbar::CGhostScrollbar(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                 const std::wstring& wantedStyle, const GUI_PLACE& place) {
    window = MakeControlWindow(parent, creationId, this, place);
    CGhostTheme::Get().GetStyle(wantedStyle, style);
    PlaceControl(window, place);
}

void CGhostScrollbar::SetStyle(const GhostScrollbarStyle& wanted) {
    style = wanted;
    PlaceThumb();
    dirty = true;
}

void CGhostScrollbar::SetRange(int32_t wantedTotal, int32_t wantedPage, int32_t wantedPos,
                               bool recalc) {
    total = wantedTotal == kKeep ? total : std::max(wantedTotal, 0);
    page = wantedPage == kKeep ? page : std::max(wantedPage, 0);
    total = std::max(total, page);
    const int32_t before = pos;
    const int32_t asked = wantedPos == kKeep ? pos : wantedPos;
    pos = std::clamp(asked, 0, total - page);
    if (recalc) {
        PlaceThumb();
    }
    dirty = true;
    if (pos != before || pos != asked) {
        OnScroll(pos);
    }
}

int32_t CGhostScrollbar::TrackLength() const {
    return std::max(0, height - 2 * style.verArrowButtonHeight);
}

void CGhostScrollbar::PlaceThumb() {
    const int64_t track = TrackLength();
    const int64_t length = total > 0 ? track * page / total : track;
    thumbLength =
        static_cast<int32_t>(std::min(track, std::max<int64_t>(length, style.verThumbMinHeight)));
}

int32_t CGhostScrollbar::ThumbTop() const {
    const int64_t room = TrackLength() - thumbLength;
    return total > page ? static_cast<int32_t>(room * pos / (total - page)) : 0;
}

CGhostScrollbar::Part CGhostScrollbar::PartAt(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        return Part::kNone;
    }
    const int32_t fromTrack = y - style.verArrowButtonHeight;
    if (fromTrack < 0) {
        return Part::kTop;
    }
    if (fromTrack >= TrackLength()) {
        return Part::kBottom;
    }
    if (fromTrack < ThumbTop()) {
        return Part::kAbove;
    }
    return fromTrack < ThumbTop() + thumbLength ? Part::kThumb : Part::kBelow;
}

void CGhostScrollbar::ScrollTo(int32_t wanted) {
    SetRange(kKeep, kKeep, std::clamp(wanted, 0, total - page), false);
}

void CGhostScrollbar::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                               int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    PlaceThumb();
    dirty = true;
}

void CGhostScrollbar::OnMouseMove(int x, int y) {
    ShowCursor(kCursorHot);
    lastY = y;
    if (held == Part::kThumb) {
        const int32_t room = TrackLength() - thumbLength;
        const int32_t offset =
            std::clamp(y - style.verArrowButtonHeight - grabbedAt, 0, std::max(room, 0));
        if (room > 0) {
            ScrollTo(static_cast<int32_t>(int64_t{offset} * (total - page) / room));
        }
    }
    hot = PartAt(x, y);
    dirty = true;
}

void CGhostScrollbar::OnMouseLeave() {
    ShowCursor(kCursorNormal);
    hot = Part::kNone;
    dirty = true;
}

void CGhostScrollbar::OnMouseDown(int x, int y, unsigned button) {
    if (button != 1) {
        return;
    }
    held = hot = PartAt(x, y);
    lastY = y;
    grabbedAt = y - style.verArrowButtonHeight - ThumbTop();
    untilRepeat = kFirstRepeat;
    Repeat();
    dirty = true;
}

void CGhostScrollbar::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    held = Part::kNone; // the press of a double click is not captured
}

void CGhostScrollbar::OnMouseUp(int /*x*/, int /*y*/, unsigned button) {
    if (button == 1) {
        held = Part::kNone;
        dirty = true;
    }
}

void CGhostScrollbar::OnMouseWheel(int /*x*/, int /*y*/, bool up) {
    ScrollTo(pos + (up ? -kWheelStep : kWheelStep) * step);
}

namespace {

// Calls each handler of the window that a bar belongs to until one has used it.
template <typename Call>
bool AskOwner(const GHOSTMANAGER_WINDOW* bar, Call call) {
    CGhostGUIHandler* handler = bar->parent != nullptr ? bar->parent->handler : nullptr;
    while (handler != nullptr) {
        CGhostGUIHandler* const next = handler->next;
        if (call(*handler)) {
            return true;
        }
        handler = next;
    }
    return false;
}

} // namespace

void CGhostScrollbar::OnKeyDown(GHOSTGUIKey key) {
    AskOwner(window, [key](CGhostGUIHandler& handler) {
        handler.OnKeyDown(key);
        return false;
    });
}

void CGhostScrollbar::OnKeyUp(GHOSTGUIKey key) {
    AskOwner(window, [key](CGhostGUIHandler& handler) {
        handler.OnKeyUp(key);
        return false;
    });
}

void CGhostScrollbar::OnChar(unsigned character) {
    AskOwner(window, [character](CGhostGUIHandler& handler) {
        handler.OnChar(character);
        return false;
    });
}

bool CGhostScrollbar::OnNavigate(GUI_DIRECTION direction) {
    return AskOwner(
        window, [direction](CGhostGUIHandler& handler) { return handler.OnNavigate(direction); });
}

bool CGhostScrollbar::OnActivateKey() {
    return AskOwner(window, [](CGhostGUIHandler& handler) { return handler.OnActivateKey(); });
}

bool CGhostScrollbar::OnCancelKey() {
    return AskOwner(window, [](CGhostGUIHandler& handler) { return handler.OnCancelKey(); });
}

// What is held goes on: a step of a button, a page of the track until the thumb is under the mouse.
void CGhostScrollbar::Repeat() {
    switch (held) {
    case Part::kTop: ScrollTo(pos - step); break;
    case Part::kBottom: ScrollTo(pos + step); break;
    case Part::kAbove:
        if (lastY - style.verArrowButtonHeight < ThumbTop()) {
            ScrollTo(pos - page);
        }
        break;
    case Part::kBelow:
        if (lastY - style.verArrowButtonHeight >= ThumbTop() + thumbLength) {
            ScrollTo(pos + page);
        }
        break;
    default: break;
    }
}

void CGhostScrollbar::OnTick(unsigned microseconds) {
    if (held == Part::kNone || held == Part::kThumb) {
        return;
    }
    untilRepeat -= microseconds;
    if (untilRepeat <= 0) {
        untilRepeat = kNextRepeat;
        Repeat();
    }
}

uint32_t CGhostScrollbar::StateOf(Part part) const {
    return held == part ? kPressed : hot == part && held == Part::kNone ? kHot : kNormal;
}

void CGhostScrollbar::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const int32_t arrow = style.verArrowButtonHeight;
    PaintText(*surface, style.bg, {}, {0, 0, width, height});
    PaintText(*surface, style.verTop.states[StateOf(Part::kTop)], {}, {0, 0, width, arrow});
    PaintText(*surface, style.verBottom.states[StateOf(Part::kBottom)], {},
              {0, height - arrow, width, arrow});
    if (total > page) {
        PaintText(*surface, style.verMid.states[StateOf(Part::kThumb)], {},
                  {0, arrow + ThumbTop(), width, thumbLength});
    }
}
