#include "gui/check_box.h"

#include "gui/button.h"
#include "gui/control_input.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

namespace {

constexpr auto kMinus = static_cast<GHOSTGUIKey>(45);
constexpr auto kPlus = static_cast<GHOSTGUIKey>(46);
constexpr auto kKeypadMinus = static_cast<GHOSTGUIKey>(86);
constexpr auto kKeypadPlus = static_cast<GHOSTGUIKey>(87);

} // namespace

CGhostCheckBox::CGhostCheckBox(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                               const std::wstring& wantedStyle, const std::wstring& text,
                               const GUI_PLACE& place)
    : caption(text) {
    window = MakeControlWindow(parent, creationId, this, place);
    SetStyle(wantedStyle);
    CGhostManager::Get().SetTabStop(window, true);
    PlaceControl(window, place);
}

void CGhostCheckBox::SetCaption(const std::wstring& text) {
    if (text != caption) {
        caption = text;
        dirty = true;
    }
}

void CGhostCheckBox::SetStyle(const std::wstring& name) {
    styleName = name;
    CGhostTheme::Get().GetStyle(name, style);
    dirty = true;
}

void CGhostCheckBox::SetChecked(bool wanted) {
    checked = wanted;
    state = StateAtRest();
    dirty = true;
}

void CGhostCheckBox::SetEnabled(bool enable) {
    enabled = enable;
    down = captured = keyHeld = false;
    state = StateAtRest();
    CGhostManager::Get().SetTabStop(window, enable);
    dirty = true;
}

uint32_t CGhostCheckBox::StateAtRest() const {
    if (!enabled) {
        return CGhostButton::kDisabled;
    }
    return checked ? CGhostButton::kPressed : CGhostButton::kNormal;
}

bool CGhostCheckBox::Inside(int x, int y) const {
    return x >= 0 && y >= 0 && x < width && y < height;
}

void CGhostCheckBox::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    if (!gained && keyHeld) {
        down = keyHeld = false; // the key that is held belongs to another control now
        state = StateAtRest();
    }
    dirty = true;
}

void CGhostCheckBox::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                              int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    dirty = true;
}

// A check that is set looks the same wherever the mouse is.
void CGhostCheckBox::OnMouseMove(int x, int y) {
    if (!enabled || checked) {
        return;
    }
    ShowCursor(kCursorHot);
    const bool inside = Inside(x, y);
    state = !inside ? CGhostButton::kNormal : down ? CGhostButton::kPressed : CGhostButton::kHot;
    dirty = true;
}

void CGhostCheckBox::OnMouseLeave() {
    ShowCursor(kCursorNormal);
    if (!enabled || checked) {
        return;
    }
    state = CGhostButton::kNormal;
    down = captured = false;
    dirty = true;
}

void CGhostCheckBox::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    OnMouseUp(x, y, button);
}

void CGhostCheckBox::OnMouseDown(int /*x*/, int /*y*/, unsigned button) {
    if (enabled && button == kLeftButton) {
        state = CGhostButton::kPressed;
        down = captured = true;
        dirty = true;
    }
}

void CGhostCheckBox::OnMouseUp(int x, int y, unsigned button) {
    if (!enabled || !captured || button != kLeftButton) {
        return;
    }
    captured = down = false;
    if (Inside(x, y)) {
        Toggle();
    } else {
        state = StateAtRest();
    }
    dirty = true;
}

// The capture was taken away: no release will come.
void CGhostCheckBox::LosePress() {
    if (captured) {
        captured = down = false;
        state = StateAtRest();
        dirty = true;
    }
}

void CGhostCheckBox::OnTick(unsigned /*microseconds*/) {
    if (captured) {
        RestWithoutCapture(window, [this] { LosePress(); });
    }
}

void CGhostCheckBox::Toggle() {
    checked = !checked;
    state = checked ? CGhostButton::kPressed : CGhostButton::kHot;
    dirty = true;
    OnChange(this, checked);
}

void CGhostCheckBox::OnKeyDown(GHOSTGUIKey key) {
    if (enabled && IsPressKey(key)) {
        state = CGhostButton::kPressed;
        down = keyHeld = true;
        dirty = true;
    } else if (const bool sets = key == kPlus || key == kKeypadPlus;
               enabled && sets != checked && (sets || key == kMinus || key == kKeypadMinus)) {
        Toggle();
    } else {
        MoveFocusByKey(key);
    }
}

// These two keys release and report, but do not toggle; plus checks and minus unchecks.
void CGhostCheckBox::OnKeyUp(GHOSTGUIKey key) {
    if (enabled && keyHeld && IsPressKey(key)) {
        state = CGhostButton::kNormal;
        down = keyHeld = false;
        dirty = true;
        OnChange(this, false);
    }
}

// A disabled box still shows whether it is checked: by the theme's fifth state, or the square of a checked one.
const GhostTexture& CGhostCheckBox::Square() const {
    constexpr size_t kOther = 4;
    if (state != CGhostButton::kDisabled || !checked) {
        return style.states[state].bg;
    }
    const GhostTexture& own = style.states[kOther].bg;
    const bool given =
        own.type != GhostFill::kNone && (own.type != GhostFill::kColour || own.colour1 != 0);
    return given ? own : style.states[CGhostButton::kPressed].bg;
}

void CGhostCheckBox::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const int32_t side = surface->Height();
    GhostTextStyle text = style.states[state];
    PaintFill(*surface, Square(), {0, 0, side, side});
    text.bg.type = GhostFill::kNone;
    PaintText(*surface, text, caption, {side, 0, surface->Width() - side, side});
    if (focused && enabled) {
        PaintFocusRing(*surface, {0, 0, surface->Width(), side});
    }
}
