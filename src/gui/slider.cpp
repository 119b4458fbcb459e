#include "gui/slider.h"

#include "gui/manager.h"
#include "gui/ring.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kFineSteps = 100.0f; // across the whole, for a range below it or of fractions
constexpr int32_t kHandle = 4;       // units across; half of it on either side of the value
constexpr int32_t kHeldHandle = 8;
constexpr int32_t kHandleMargin = 4; // above and below it

} // namespace

CGhostSlider::CGhostSlider(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                           const std::wstring& wantedStyle, float least, float extent,
                           const GUI_PLACE& place)
    : minimum(least)
    , range(extent) {
    window = MakeControlWindow(parent, creationId, this, place);
    SetStyle(wantedStyle);
    CGhostManager::Get().SetTabStop(window, true);
    PlaceControl(window, place);
}

void CGhostSlider::SetStyle(const std::wstring& name) {
    CGhostTheme::Get().GetStyle(name, style);
    dirty = true;
}

void CGhostSlider::SetValue(float wanted) {
    value = wanted >= 0.0f ? std::min(wanted, 1.0f) : 0.0f; // NaN is 0
    dirty = true;
}

void CGhostSlider::SetPixel(int x) {
    SetValue(width > 0 ? static_cast<float>(x) / static_cast<float>(width) : 0.0f);
}

void CGhostSlider::SetReadOnly(bool wanted) {
    readOnly = wanted;
    dragging = false;
    dirty = true;
}

void CGhostSlider::Change(float wanted) {
    const float before = value;
    SetValue(wanted);
    if (value != before) {
        OnChange(this, value);
    }
}

// One unit of the shown number, or 1/100 of a range up to 1.
bool CGhostSlider::Step(int steps) {
    const float before = value;
    if (std::abs(range) <= 1.0f) {
        Change(value + static_cast<float>(steps) / kFineSteps);
        return value != before;
    }
    // From the number that is shown, so that no error adds up. A hair above, or it would be rounded down;
    // but not at the ends.
    constexpr double kHair = 0.001;
    const double shown = std::floor(value * range + minimum);
    const double wanted = shown + (range > 0.0f ? steps : -steps) - double{minimum};
    const bool atEnd = wanted / range <= 0.0 || wanted / range >= 1.0;
    Change(static_cast<float>((wanted + (atEnd ? 0.0 : kHair)) / double{range}));
    return value != before;
}

void CGhostSlider::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = true;
    arrow.Forget();
}

void CGhostSlider::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                            int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    dirty = true;
}

void CGhostSlider::OnMouseMove(int x, int y) {
    ShowCursor(readOnly ? kCursorNormal : kCursorHot);
    hovered = x >= 0 && y >= 0 && x < width && y < height;
    dirty = true;
    if (dragging && width > 0) {
        Change(static_cast<float>(std::clamp(x, 0, width)) / static_cast<float>(width));
    }
}

void CGhostSlider::OnMouseLeave() {
    ShowCursor(kCursorNormal);
    hovered = false;
    dirty = true;
}

void CGhostSlider::EndDrag() {
    dragging = false;
    dirty = true;
}

void CGhostSlider::OnMouseDown(int x, int y, unsigned button) {
    if (!readOnly && button == kLeftButton) {
        dragging = true;
        OnMouseMove(x, y);
    }
}

void CGhostSlider::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    EndDrag(); // the press of a double click is not captured
}

void CGhostSlider::OnMouseUp(int /*x*/, int /*y*/, unsigned button) {
    if (button == kLeftButton) {
        EndDrag();
    }
}

void CGhostSlider::OnTick(unsigned /*microseconds*/) {
    if (dragging) {
        RestWithoutCapture(window, [this] { EndDrag(); });
    }
}

void CGhostSlider::OnMouseWheel(int /*x*/, int /*y*/, bool up) {
    if (!readOnly) {
        Step(up ? 1 : -1);
    }
}

void CGhostSlider::OnKeyDown(GHOSTGUIKey key) {
    constexpr int kPage = 10;
    if (const auto way = DirectionOf(key)) {
        arrow.Press(key, [&](bool) { return OnNavigate(*way); });
        return;
    }
    if (readOnly) {
        return;
    }
    switch (key) {
    case GHOSTGUIKey::kPageUp: Step(kPage); break;
    case GHOSTGUIKey::kPageDown: Step(-kPage); break;
    case GHOSTGUIKey::kHome: Change(0.0f); break;
    case GHOSTGUIKey::kEnd: Change(1.0f); break;
    default: break;
    }
}

void CGhostSlider::OnKeyUp(GHOSTGUIKey key) {
    arrow.Release(key);
}

// A read-only slider is passed over.
bool CGhostSlider::OnNavigate(GUI_DIRECTION direction) {
    const bool right = direction == GUI_DIRECTION::kRight;
    if (readOnly || (!right && direction != GUI_DIRECTION::kLeft)) {
        return false;
    }
    return Step(right ? 1 : -1);
}

void CGhostSlider::PaintHandle(CGhostSurface& surface, int32_t at) const {
    const int32_t wide = dragging ? kHeldHandle : kHandle;
    const int32_t high = surface.Height() - 2 * kHandleMargin;
    const int32_t x = std::clamp(at - wide / 2, 0, std::max(0, surface.Width() - wide));
    PaintRing(surface, {x, kHandleMargin, wide, high}, wide / 2, wide / 2, style.textColour);
}

void CGhostSlider::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const GUI_RECT whole{0, 0, surface->Width(), surface->Height()};
    PaintFill(*surface, style.bg, whole);
    const auto filled = static_cast<int32_t>(static_cast<float>(whole.width) * value);
    PaintFill(*surface, style.bg2, {0, 0, filled, whole.height});
    if (!readOnly && (hovered || dragging)) {
        PaintHandle(*surface, filled);
    }
    GhostTextStyle text = style;
    text.bg.type = GhostFill::kNone;
    const auto number = static_cast<int64_t>(std::floor(value * range + minimum));
    PaintText(*surface, text, std::to_wstring(number), whole);
    if (focused) {
        PaintFocusRing(*surface, whole);
    }
}
