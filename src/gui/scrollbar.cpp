#include "gui/scrollbar.h"

#include "gui/manager.h"
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

void CGhostScrollbar::LeaveKeysToOwner() {
    ownKeys = false;
    UpdateTabStop();
}

void CGhostScrollbar::UpdateTabStop() {
    CGhostManager::Get().SetTabStop(window, ownKeys && total > page);
}

void CGhostScrollbar::SetStyle(const std::wstring& name) {
    GhostScrollbarStyle found;
    CGhostTheme::Get().GetStyle(name, found);
    SetStyle(found);
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
    SettleThumb();
    UpdateTabStop();
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
    SettleThumb();
}

void CGhostScrollbar::SettleThumb() {
    const int64_t room = TrackLength() - thumbLength;
    thumbTop = total > page ? static_cast<int32_t>(room * pos / (total - page)) : 0;
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
    if (fromTrack < thumbTop) {
        return Part::kAbove;
    }
    return fromTrack < thumbTop + thumbLength ? Part::kThumb : Part::kBelow;
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

// The thumb stays under the cursor, between two positions as well.
void CGhostScrollbar::DragTo(int y) {
    const int32_t room = TrackLength() - thumbLength;
    if (room <= 0) {
        return;
    }
    const int32_t top = std::clamp(y - style.verArrowButtonHeight - grabbedAt, 0, room);
    ScrollTo(static_cast<int32_t>(int64_t{top} * (total - page) / room));
    // What follows the bar may have changed its range.
    thumbTop = std::clamp(top, 0, std::max(0, TrackLength() - thumbLength));
}

void CGhostScrollbar::LetGo() {
    held = Part::kNone;
    SettleThumb();
    dirty = true;
}

void CGhostScrollbar::OnMouseMove(int x, int y) {
    ShowCursor(kCursorHot);
    lastY = y;
    if (held == Part::kThumb) {
        DragTo(y);
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
    if (button != kLeftButton) {
        return;
    }
    held = hot = PartAt(x, y);
    lastY = y;
    grabbedAt = y - style.verArrowButtonHeight - thumbTop;
    untilRepeat = kFirstRepeat;
    Repeat();
    dirty = true;
}

void CGhostScrollbar::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    OnMouseUp(x, y, button); // the press of a double click is not captured
}

void CGhostScrollbar::OnMouseUp(int /*x*/, int /*y*/, unsigned button) {
    if (button == kLeftButton) {
        LetGo();
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

void CGhostScrollbar::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = true;
    arrow.Forget();
}

void CGhostScrollbar::OnKeyDown(GHOSTGUIKey key) {
    if (!ownKeys) {
        AskOwner(window, [key](CGhostGUIHandler& handler) {
            handler.OnKeyDown(key);
            return false;
        });
        return;
    }
    if (const auto way = DirectionOf(key)) {
        arrow.Press(key, [&](bool) { return OnNavigate(*way); });
        return;
    }
    switch (key) {
    case GHOSTGUIKey::kPageUp: ScrollTo(pos - page); break;
    case GHOSTGUIKey::kPageDown: ScrollTo(pos + page); break;
    case GHOSTGUIKey::kHome: ScrollTo(0); break;
    case GHOSTGUIKey::kEnd: ScrollTo(total - page); break;
    default: break;
    }
}

void CGhostScrollbar::OnKeyUp(GHOSTGUIKey key) {
    arrow.Release(key);
    if (!ownKeys) {
        AskOwner(window, [key](CGhostGUIHandler& handler) {
            handler.OnKeyUp(key);
            return false;
        });
    }
}

void CGhostScrollbar::OnChar(unsigned character) {
    if (!ownKeys) {
        AskOwner(window, [character](CGhostGUIHandler& handler) {
            handler.OnChar(character);
            return false;
        });
    }
}

bool CGhostScrollbar::OnNavigate(GUI_DIRECTION direction) {
    if (!ownKeys) {
        return AskOwner(window, [direction](CGhostGUIHandler& handler) {
            return handler.OnNavigate(direction);
        });
    }
    const int32_t before = pos;
    if (direction == GUI_DIRECTION::kUp || direction == GUI_DIRECTION::kDown) {
        ScrollTo(pos + (direction == GUI_DIRECTION::kUp ? -step : step));
    }
    return pos != before;
}

bool CGhostScrollbar::OnActivateKey() {
    return ownKeys ||
           AskOwner(window, [](CGhostGUIHandler& handler) { return handler.OnActivateKey(); });
}

bool CGhostScrollbar::OnCancelKey() {
    return !ownKeys &&
           AskOwner(window, [](CGhostGUIHandler& handler) { return handler.OnCancelKey(); });
}

// Repeats the part that is held: a step for a button, a page for the track until the thumb is under the mouse.
void CGhostScrollbar::Repeat() {
    switch (held) {
    case Part::kTop: ScrollTo(pos - step); break;
    case Part::kBottom: ScrollTo(pos + step); break;
    case Part::kAbove:
        if (lastY - style.verArrowButtonHeight < thumbTop) {
            ScrollTo(pos - page);
        }
        break;
    case Part::kBelow:
        if (lastY - style.verArrowButtonHeight >= thumbTop + thumbLength) {
            ScrollTo(pos + page);
        }
        break;
    default: break;
    }
}

void CGhostScrollbar::OnTick(unsigned microseconds) {
    if (held != Part::kNone) {
        RestWithoutCapture(window, [this] { LetGo(); });
    }
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

namespace {

// The second fill, within the margins, marks a state.
void PaintPart(CGhostSurface& surface, const GhostTextStyle& look, const GUI_RECT& place) {
    PaintFill(surface, look.bg, place);
    const GUI_EDGES& margin = look.textRect;
    PaintFill(surface, look.bg2,
              {place.x + margin.left, place.y + margin.top,
               place.width - margin.left - margin.right,
               place.height - margin.top - margin.bottom});
}

} // namespace

void CGhostScrollbar::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const int32_t arrowHigh = style.verArrowButtonHeight;
    PaintText(*surface, style.bg, {}, {0, 0, width, height});
    PaintPart(*surface, style.verTop.states[StateOf(Part::kTop)], {0, 0, width, arrowHigh});
    PaintPart(*surface, style.verBottom.states[StateOf(Part::kBottom)],
              {0, height - arrowHigh, width, arrowHigh});
    if (total > page) {
        PaintPart(*surface, style.verMid.states[StateOf(Part::kThumb)],
                  {0, arrowHigh + thumbTop, width, thumbLength});
    }
    if (focused && ownKeys) {
        PaintFocusRing(*surface, {0, 0, width, height});
    }
}
