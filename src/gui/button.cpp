#include "gui/button.h"

#include "gui/control_input.h"
#include "gui/manager.h"
#include "gui/ring.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

namespace {

constexpr int32_t kGripWidth = 6;
constexpr int32_t kCorner = 4; // of round frames, in units

} // namespace

CGhostButton::CGhostButton(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                           const std::wstring& wantedStyle, const std::wstring& text,
                           uint32_t buttonFlags, const GUI_PLACE& place)
    : caption(text)
    , flags(buttonFlags) {
    window = MakeControlWindow(parent, creationId, this, place);
    SetStyle(wantedStyle);
    CGhostManager::Get().SetTabStop(window, (flags & kNoKeys) == 0);
    PlaceControl(window, place);
}

void CGhostButton::SetCaption(const std::wstring& text) {
    if (text != caption) {
        caption = text;
        dirty = true;
    }
}

void CGhostButton::SetStyle(const std::wstring& name) {
    styleName = name;
    style = {};
    if (name != L"none" && name != L"NONE") {
        CGhostTheme::Get().GetStyle(name, style);
    }
    dirty = true;
}

void CGhostButton::SetStyle(const GhostButtonStyle& wanted) {
    styleName.clear();
    style = wanted;
    dirty = true;
}

void CGhostButton::SetEnabled(bool enable) {
    enabled = enable;
    state = enable ? kNormal : kDisabled;
    if (!enable) {
        down = captured = keyHeld = false;
    }
    CGhostManager::Get().SetTabStop(window, enable && (flags & kNoKeys) == 0);
    dirty = true;
}

void CGhostButton::SetDown(bool wanted) {
    down = wanted;
    state = wanted ? kPressed : kNormal;
    dirty = true;
}

bool CGhostButton::Inside(int x, int y) const {
    return x >= 0 && y >= 0 && x < width && y < height;
}

bool CGhostButton::OnGrip(int x) const {
    return (flags & kGrips) != 0 && (x <= kGripWidth || x >= width - kGripWidth);
}

void CGhostButton::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    if (!gained && enabled && keyHeld) {
        down = false; // the key that is held belongs to another control now
        state = kNormal;
    }
    keyHeld = false;
    dirty = true;
}

void CGhostButton::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                            int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    dirty = true;
}

void CGhostButton::OnMouseMove(int x, int y) {
    if (!enabled) {
        return;
    }
    const bool inside = Inside(x, y);
    if ((flags & kLatches) != 0) {
        if (!down) {
            state = inside ? kHot : kNormal;
        }
    } else {
        if (!captured) {
            ShowCursor(inside && OnGrip(x) ? kCursorResize : kCursorHot);
        }
        state = !inside ? kNormal : down ? kPressed : kHot;
    }
    if (captured) {
        OnState(this, x, y, false, false);
    }
    dirty = true;
}

void CGhostButton::OnMouseLeave() {
    ShowCursor(kCursorNormal);
    if (!enabled || ((flags & kLatches) != 0 && down)) {
        return;
    }
    state = kNormal;
    down = captured = false;
    dirty = true;
}

// A second press in quick succession is a press like any other.
void CGhostButton::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    OnMouseUp(x, y, button);
}

void CGhostButton::OnMouseDown(int x, int y, unsigned button) {
    if (!enabled) {
        return;
    }
    if (button == kLeftButton) {
        if (!OnGrip(x)) {
            const bool rises = (flags & kLatches) != 0 && down;
            state = rises ? kHot : kPressed;
            down = !rises;
        }
        captured = true;
        if ((flags & kLatches) != 0) {
            OnClick(this, x, y, button);
        }
    }
    OnDown(this, x, y, button);
    OnState(this, x, y, true, false);
    dirty = true;
}

void CGhostButton::OnMouseUp(int x, int y, unsigned button) {
    if (!enabled || !captured) {
        return;
    }
    if (button == kLeftButton) {
        captured = false;
        if ((flags & kLatches) == 0) {
            down = false;
            const bool inside = Inside(x, y);
            state = inside ? kHot : kNormal;
            if (inside) {
                OnClick(this, x, y, button);
            }
        }
    }
    OnState(this, x, y, false, true);
    OnUp(this, x, y, button);
    dirty = true;
}

// The capture was taken away: no release will come.
void CGhostButton::LosePress() {
    if (!captured) {
        return;
    }
    captured = false;
    if ((flags & kLatches) == 0 && !keyHeld) {
        down = false;
        state = kNormal;
    }
    dirty = true;
}

void CGhostButton::OnTick(unsigned /*microseconds*/) {
    if (captured) {
        RestWithoutCapture(window, [this] { LosePress(); });
    }
}

void CGhostButton::OnMouseWheel(int x, int y, bool up) {
    if (enabled) {
        OnWheel(this, x, y, up);
    }
}

void CGhostButton::OnKeyDown(GHOSTGUIKey key) {
    if (enabled && IsPressKey(key)) {
        state = kPressed;
        down = keyHeld = true;
        dirty = true;
    } else {
        MoveFocusByKey(key);
    }
}

// Ignores a key pressed while another control had the focus.
void CGhostButton::OnKeyUp(GHOSTGUIKey key) {
    if (!enabled || (flags & kNoKeys) != 0) {
        return;
    }
    if (keyHeld && IsPressKey(key)) {
        state = kNormal;
        down = keyHeld = false;
        dirty = true;
        OnClick(this, 0, 0, 0);
    }
}

void CGhostButton::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const GUI_RECT whole{0, 0, surface->Width(), surface->Height()};
    const GhostBorderStyle& border = style.states[state].border;
    PaintText(*surface, style.states[state], caption, whole);
    if (border.type == GhostFrame::kRoundedColour ||
        border.type == GhostFrame::kRoundedColourInset) {
        CutCorners(*surface, whole, kCorner); // the fill is seen within the frame alone
    }
    PaintFrame(*surface, border);
    if (focused && enabled) {
        PaintFocusRing(*surface, whole);
    }
}
