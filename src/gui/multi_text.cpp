#include "gui/multi_text.h"

#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>

namespace {

// What a font has no glyph for would join the words beside it.
std::wstring Shown(const std::wstring& text) {
    std::wstring shown;
    for (const wchar_t character : text) {
        if (character == L'\t') {
            shown += L' ';
        } else if (character == L'\n' || !IsControlCharacter(character)) {
            shown += character;
        }
    }
    return shown;
}

} // namespace

CGhostMultiText::CGhostMultiText(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                 const std::wstring& wantedStyle, const std::wstring& caption,
                                 const GUI_PLACE& place)
    : CGhostScrolledArea(parent, creationId, wantedStyle, place)
    , text(caption)
    , shown(Shown(caption)) {
    SetStyle(wantedStyle);
}

void CGhostMultiText::SetStyle(const std::wstring& name) {
    CGhostTheme::Get().GetStyle(name, style);
    CGhostManager::Get().SetWindowFrame(window, &style.border);
    Lay(); // the frame may be as thick as before
}

void CGhostMultiText::SetText(const std::wstring& wanted) {
    text = wanted;
    shown = Shown(wanted);
    ScrollTo(0);
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
    return WrapText(style.font, shown, outerWidth - around.width).Height() + around.height;
}

int32_t CGhostMultiText::WidthAt(int32_t outerWidth) const {
    const SIZE around = Around();
    return WrapText(style.font, shown, outerWidth - around.width).width + around.width;
}

// First as if there were no bar; if that is too high, again beside the bar. A bar that stays is not hidden
// meanwhile: it may be dragged.
void CGhostMultiText::Lay() {
    if (laying) {
        return;
    }
    laying = true;
    const GUI_EDGES& margin = style.textRect;
    const int32_t room = height - margin.top - margin.bottom;
    const int32_t whole = width + (BarShown() ? BarWidth() : 0);
    layout = WrapText(style.font, shown, whole - margin.left - margin.right);
    ShowBar(layout.Height() > room);
    if (BarShown()) {
        layout = WrapText(style.font, shown, width - margin.left - margin.right);
    }
    SetLine(layout.lineHeight);
    SetContent(layout.Height(), room);
    CGhostManager::Get().SetTabStop(window, BarShown());
    laying = false;
    dirty = true;
}

void CGhostMultiText::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintFill(*surface, style.bg, {0, 0, width, height});
    const GUI_EDGES& margin = style.textRect;
    const GUI_RECT inner{margin.left, margin.top, std::max(0, width - margin.left - margin.right),
                         std::max(0, height - margin.top - margin.bottom)};
    surface->PushOrigin(inner);
    int32_t y = -scrollPixels;
    if (!BarShown() && (style.align & kAlignTop) == 0) {
        const int32_t rest = inner.height - layout.Height();
        y = (style.align & kAlignBottom) != 0 ? rest : rest / 2;
    }
    const uint32_t align = kAlignTop | (style.align & (kAlignLeft | kAlignRight));
    for (const GUI_TEXT_LINE& line : layout.lines) {
        if (y + layout.lineHeight > 0 && y < inner.height) {
            DrawText(*surface, style.font, std::wstring_view(shown).substr(line.start, line.count),
                     style.textColour, style.textOutlineColour, align,
                     {0, y, inner.width, layout.lineHeight}, style.xOffset, style.yOffset);
        }
        y += layout.lineHeight;
    }
    surface->PopOrigin();
    if (focused && BarShown()) {
        PaintFocusRing(*surface, {0, 0, width, height});
    }
}
