#include "gui/text_box.h"

#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

CGhostTextBox::CGhostTextBox(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                             const std::wstring& wantedStyle, const std::wstring& caption,
                             const GUI_PLACE& place)
    : text(caption) {
    window = MakeControlWindow(parent, creationId, this, place);
    SetStyle(wantedStyle);
    PlaceControl(window, place);
}

void CGhostTextBox::SetText(const std::wstring& wanted) {
    text = wanted;
    dirty = true;
}

void CGhostTextBox::SetStyle(const std::wstring& name) {
    CGhostTheme::Get().GetStyle(name, style);
    dirty = true;
}

void CGhostTextBox::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintText(*surface, style, text, {0, 0, surface->Width(), surface->Height()});
}
