#include "gui/window_ex.h"

#include "gui/bitmap.h"
#include "gui/button.h"
#include "gui/control_input.h"
#include "gui/manager.h"
#include "gui/scrollbar.h"
#include "gui/surface.h"
#include "gui/text_box.h"
#include "gui/theme.h"

namespace {

constexpr int32_t kButtonsWide = 3 * CGhostWindowEx::kTitleHeight;

} // namespace

CGhostWindowEx::CGhostWindowEx(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                               const std::wstring& style, const std::wstring& caption,
                               uint32_t windowFlags, const GUI_PLACE& place)
    : flags(windowFlags) {
    window = MakeControlWindow(parent, creationId, this, place);
    scrollbar = new CGhostScrollbar(window, creationId, L"WINDOW_SCROLLBAR", {true, 0, 0, 0, 0});
    scrollbar->SetVisible(false);
    CGhostManager::Get().SetPart(scrollbar->window);
    ReadStyle(style);
    if ((flags & kTitle) != 0) {
        MakeTitle(caption);
    }
    PlaceControl(window, place);
    ApplyFrame();
}

void CGhostWindowEx::ReadStyle(const std::wstring& name) {
    baseStyle = name;
    captionStyle = name + L"_TITLE";
    CGhostTheme::Get().GetStyle(name + L"_BACKGROUND", background);
    CGhostTheme::Get().GetStyle(name + L"_SCROLLBAR", scrollbarStyle);
    if (scrollbarStyle.verWidth > 0) {
        scrollbar->SetStyle(scrollbarStyle);
    } else {
        scrollbar->SetStyle(L"WINDOW_SCROLLBAR");
    }
}

void CGhostWindowEx::ApplyFrame() {
    if ((flags & (kFrame | kTitle)) != 0) {
        GhostBorderStyle border = (flags & kFrame) != 0 ? background.border : GhostBorderStyle{};
        border.thickness = FrameEdges();
        CGhostManager::Get().SetWindowFrame(window, &border);
    }
}

// The bar of the new style may be as wide as another.
void CGhostWindowEx::SetStyle(const std::wstring& name) {
    ReadStyle(name);
    if (title != nullptr) {
        title->SetStyle(captionStyle);
    }
    ApplyFrame();
    CGhostManager::Get().RecalcClient(window);
    dirty = true;
}

GUI_EDGES CGhostWindowEx::FrameEdges() const {
    GUI_EDGES edges = (flags & kFrame) != 0 ? background.border.thickness : GUI_EDGES{};
    edges.top += (flags & kTitle) != 0 ? kTitleHeight : 0;
    return edges;
}

void CGhostWindowEx::MakeTitle(const std::wstring& caption) {
    const GUI_PLACE nowhere{true, 0, 0, 0, 0};
    title = new CGhostTextBox(window, GetFlags(), captionStyle, caption, nowhere);
    CGhostManager::Get().SetPart(title->window);
    title->OnDown.connect([this](CGhostTextBox*, int x, int y, unsigned button) {
        const GUI_RECT at = title->GetRect();
        OnFrameMouseDown(at.x + x, at.y + y, button);
    });
    title->OnMouseMoved.connect([this](CGhostTextBox*, int x, int y, bool, bool) {
        const GUI_RECT at = title->GetRect();
        OnFrameMouseMove(at.x + x, at.y + y);
    });
    title->OnUp.connect(
        [this](CGhostTextBox*, int x, int y, unsigned button) { OnFrameMouseUp(x, y, button); });
    if ((flags & kNoButtons) != 0) {
        return;
    }
    const auto make = [&](const wchar_t* style, const wchar_t* sign, auto& signal) {
        auto* const button = new CGhostButton(window, GetFlags(), style, sign, 0, nowhere);
        CGhostManager::Get().SetPart(button->window);
        button->OnClick.connect(
            [this, &signal](CGhostButton*, int, int, unsigned) { signal(this); });
        return button;
    };
    minimise = make(L"WINDOW_TITLE_MIN", L"\u2013", OnMinimise);
    maximise = make(L"WINDOW_TITLE_MAX", L"+", OnMaximise);
    close = make(L"WINDOW_TITLE_CLOSE", L"\u00D7", OnClose);
}

void CGhostWindowEx::PlaceTitle(int width) {
    if (title == nullptr) {
        return;
    }
    const GUI_EDGES& edge = background.border.thickness;
    const bool framed = (flags & kFrame) != 0;
    const int left = framed ? edge.left : 0;
    const int top = framed ? edge.top : 0;
    const int inner = width - left - (framed ? edge.right : 0);
    const int buttons = close != nullptr ? kButtonsWide : 0;
    title->SetPos(left, top, inner - buttons, kTitleHeight);
    int x = left + inner - buttons;
    for (CGhostButton* const button : {minimise, maximise, close}) {
        if (button != nullptr) {
            button->SetPos(x, top, kTitleHeight, kTitleHeight);
            x += kTitleHeight;
        }
    }
}

void CGhostWindowEx::SetCaption(const std::wstring& text) {
    if (title != nullptr) {
        title->SetText(text);
    }
}

void CGhostWindowEx::SetBackgroundImage(const GUI_BITMAP* image) {
    backgroundImage = image;
    dirty = true;
}

void CGhostWindowEx::ShowScrollbar(bool show) {
    if (show == scrollbarShown) {
        return;
    }
    scrollbarShown = show;
    CGhostManager::Get().RecalcClient(window);
    scrollbar->SetVisible(show);
    dirty = true;
}

void CGhostWindowEx::GetTitleHeight(int* out) {
    *out = kTitleHeight;
}

void CGhostWindowEx::GetClientInset(int* right, int* bottom) {
    *right = scrollbarShown && scrollbar != nullptr ? scrollbar->Width() : 0;
    *bottom = 0;
}

void CGhostWindowEx::OnResize(int width, int /*height*/, int clientWidth, int clientHeight) {
    PlaceTitle(width);
    if (scrollbarShown) {
        GUI_RECT inset;
        CGhostManager::Get().GetWindowRects(window, nullptr, nullptr, &inset);
        scrollbar->SetPos(inset.x, inset.y, inset.width, inset.height);
    }
    dirty = true;
    if (HasSignals()) {
        OnResized(this, clientWidth, clientHeight);
    }
}

// ---- Dragging by the frame.

// A record's place counts from where the window was when it was posted, which is where the tick found it.
// The drag itself has moved the window since, when there was another record before.

void CGhostWindowEx::OnFrameMouseDown(int x, int y, unsigned button) {
    if ((flags & kDraggable) != 0 && button == 1) {
        const GUI_RECT at = GetRect();
        dragging = true;
        dragX = tickX + x - at.x;
        dragY = tickY + y - at.y;
    }
}

void CGhostWindowEx::OnFrameMouseMove(int x, int y) {
    if (dragging) {
        SetPos(tickX + x - dragX, tickY + y - dragY, kKeepValue, kKeepValue);
    }
}

void CGhostWindowEx::OnFrameMouseUp(int /*x*/, int /*y*/, unsigned /*button*/) {
    dragging = false;
}

// The press is the title's or the frame's own.
void CGhostWindowEx::OnTick(unsigned /*microseconds*/) {
    const GUI_RECT at = GetRect();
    tickX = at.x;
    tickY = at.y;
    if (dragging) {
        const GHOSTMANAGER_WINDOW* const held = CGhostManager::Get().CaptureWindow();
        const bool atTitle = title != nullptr && held == title->window;
        RestWithoutCapture(atTitle ? held : window, [this] { dragging = false; });
    }
}

void CGhostWindowEx::OnFrameMouseWheel(int x, int y, bool up) {
    OnMouseWheel(x, y, up);
}

// ---- The client area.

void CGhostWindowEx::OnMouseMove(int x, int y) {
    if (HasSignals()) {
        OnMoved(this, x, y);
    }
}

void CGhostWindowEx::OnMouseDoubleClick(int x, int y, unsigned button) {
    if (HasSignals()) {
        OnDoubleClick(this, x, y, button);
    }
}

void CGhostWindowEx::OnMouseDown(int x, int y, unsigned button) {
    if (HasSignals()) {
        OnDown(this, x, y, button);
    }
}

void CGhostWindowEx::OnMouseUp(int x, int y, unsigned button) {
    if (HasSignals()) {
        OnUp(this, x, y, button);
    }
}

void CGhostWindowEx::OnMouseWheel(int x, int y, bool up) {
    if (scrollbarShown) {
        scrollbar->OnMouseWheel(0, 0, up);
    }
    if (HasSignals()) {
        OnWheel(this, x, y, up);
    }
}

void CGhostWindowEx::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    if ((flags & kNoPaint) != 0) {
        return;
    }
    PaintFill(*surface, background.bg, {0, 0, surface->Width(), surface->Height()});
    if (backgroundImage != nullptr) {
        surface->Blit(*backgroundImage, {0, 0, backgroundImage->width, backgroundImage->height}, 0,
                      0);
    }
}
