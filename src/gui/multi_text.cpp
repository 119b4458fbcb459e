#include "gui/multi_text.h"

#include "gui/manager.h"
#include "gui/scrollbar.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <algorithm>

CGhostMultiText::CGhostMultiText(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                 const std::wstring& wantedStyle, const std::wstring& caption,
                                 const GUI_PLACE& place)
    : text(caption) {
    CGhostTheme::Get().GetStyle(wantedStyle, style);
    frame = new CGhostWindowEx(parent, creationId, wantedStyle, {},
                               CGhostWindowEx::kNoPaint | CGhostWindowEx::kNoSignals, place);
    window = frame->window;
    frame->next = this;
    frame->Scrollbar()->OnScroll.connect([this](int32_t pos) {
        scrollPixels = pos;
        dirty = true;
    });
    CGhostManager::Get().SetWindowFrame(window, &style.border);
}

void CGhostMultiText::SetText(const std::wstring& wanted) {
    text = wanted;
    frame->Scrollbar()->SetRange(-1, -1, 0, false);
    Lay();
}

CGhostMultiText::SIZE CGhostMultiText::Around() const {
    const GUI_EDGES& margin = style.textRect;
    const GUI_EDGES& edge = style.border.thickness;
    return {margin.left + margin.right + edge.left + edge.right,
            margin.top + margin.bottom + edge.top + edge.bottom};
}

int32_t CGhostMultiText::HeightAt(int32_t outerWidth) const {
    const SIZE around = Around();
    return WrapText(style.font, text, outerWidth - around.width).Height() + around.height;
}

int32_t CGhostMultiText::WidthAt(int32_t outerWidth) const {
    const SIZE around = Around();
    return WrapText(style.font, text, outerWidth - around.width).width + around.width;
}

void CGhostMultiText::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                               int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    if (!laying) {
        Lay();
    }
}

// First as if there were no bar; if that is too high, again beside the bar.
void CGhostMultiText::Lay() {
    laying = true;
    const GUI_EDGES& margin = style.textRect;
    const int32_t room = height - margin.top - margin.bottom;
    frame->ShowScrollbar(false);
    layout = WrapText(style.font, text, width - margin.left - margin.right);
    scrollable = layout.Height() > room;
    if (scrollable) {
        frame->ShowScrollbar(true);
        layout = WrapText(style.font, text, width - margin.left - margin.right);
    }
    frame->Scrollbar()->SetStep(std::max(layout.lineHeight, 1));
    frame->Scrollbar()->SetRange(layout.Height(), std::max(room, 0), -1, true);
    CGhostManager::Get().SetTabStop(window, scrollable);
    laying = false;
    dirty = true;
}

void CGhostMultiText::ScrollTo(int32_t pixels) {
    const CGhostScrollbar& bar = *frame->Scrollbar();
    frame->Scrollbar()->SetRange(-1, -1, std::clamp(pixels, 0, bar.Total() - bar.Page()), false);
}

void CGhostMultiText::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = true;
}

void CGhostMultiText::OnKeyDown(GHOSTGUIKey key) {
    const int32_t before = scrollPixels;
    switch (key) {
    case GHOSTGUIKey::kUp: ScrollTo(scrollPixels - layout.lineHeight); break;
    case GHOSTGUIKey::kDown: ScrollTo(scrollPixels + layout.lineHeight); break;
    case GHOSTGUIKey::kPageUp: ScrollTo(scrollPixels - height); break;
    case GHOSTGUIKey::kPageDown: ScrollTo(scrollPixels + height); break;
    case GHOSTGUIKey::kHome: ScrollTo(0); break;
    case GHOSTGUIKey::kEnd: ScrollTo(layout.Height()); break;
    default: break;
    }
    if (scrollPixels == before) {
        MoveFocusByKey(key); // at an end, on to the next control
    }
}

bool CGhostMultiText::OnNavigate(GUI_DIRECTION direction) {
    if (direction != GUI_DIRECTION::kUp && direction != GUI_DIRECTION::kDown) {
        return false;
    }
    const int32_t before = scrollPixels;
    const int32_t step = direction == GUI_DIRECTION::kUp ? -layout.lineHeight : layout.lineHeight;
    ScrollTo(scrollPixels + step);
    return scrollPixels != before;
}

void CGhostMultiText::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintFill(*surface, style.bg, {0, 0, width, height});
    const GUI_EDGES& margin = style.textRect;
    const GUI_RECT inner{margin.left, margin.top, std::max(0, width - margin.left - margin.right),
                         std::max(0, height - margin.top - margin.bottom)};
    surface->PushOrigin(inner);
    int32_t y = -scrollPixels;
    if (!scrollable && (style.align & kAlignTop) == 0) {
        const int32_t rest = inner.height - layout.Height();
        y = (style.align & kAlignBottom) != 0 ? rest : rest / 2;
    }
    const uint32_t align = kAlignTop | (style.align & (kAlignLeft | kAlignRight));
    for (const GUI_TEXT_LINE& line : layout.lines) {
        if (y + layout.lineHeight > 0 && y < inner.height) {
            DrawText(*surface, style.font, std::wstring_view(text).substr(line.start, line.count),
                     style.textColour, style.textOutlineColour, align,
                     {0, y, inner.width, layout.lineHeight}, style.xOffset, style.yOffset);
        }
        y += layout.lineHeight;
    }
    surface->PopOrigin();
    if (focused && scrollable) {
        PaintFocusRing(*surface, {0, 0, width, height});
    }
}
