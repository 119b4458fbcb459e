#include "front/tools/gallery_parts.h"

#include "gui/bitmap.h"
#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/font.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

namespace {

GUI_PLACE PlaceOf(const GUI_RECT& rect) {
    return {false, rect.x, rect.y, rect.width, rect.height};
}

} // namespace

GalleryCanvas::GalleryCanvas(GHOSTMANAGER_WINDOW* parent, const GUI_RECT& place, Paint painter)
    : paint(std::move(painter)) {
    window = MakeControlWindow(parent, 0, this, PlaceOf(place));
    PlaceControl(window, PlaceOf(place));
}

void GalleryCanvas::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    paint(*surface);
}

void GalleryText(GHOSTMANAGER_WINDOW* parent, const std::wstring& style, std::wstring_view text,
                 const GUI_RECT& place) {
    new CGhostTextBox(parent, 0, style, std::wstring(text), PlaceOf(place));
}

void GalleryLabel(GHOSTMANAGER_WINDOW* parent, std::wstring_view text, int32_t x, int32_t y) {
    constexpr uint32_t kMist = 0xFFB9BCD6;
    constexpr uint32_t kNight = 0xFF0B0E1F; // for pages that are shown over a game
    CGhostFont* const font = CGhostFontManager::Get().GetFont("Default", 15);
    const GUI_RECT place{x, y, MeasureText(font, text).width + 2, 16};
    new GalleryCanvas(parent, place, [font, caption = std::wstring(text)](CGhostSurface& surface) {
        DrawText(surface, font, caption, kMist, kNight, kAlignLeft,
                 {0, 0, surface.Width(), surface.Height()}, 0, 0);
    });
}

void GalleryTitle(GHOSTMANAGER_WINDOW* parent, std::wstring_view text) {
    GalleryText(parent, L"TEXT_TITLE", text, {24, 14, 600, 30});
}

GHOSTMANAGER_WINDOW* GalleryWindow(GHOSTMANAGER_WINDOW* parent, const std::wstring& style,
                                   std::wstring_view caption, uint32_t flags,
                                   const GUI_RECT& place) {
    auto* const made =
        new CGhostWindowEx(parent, 0, style, std::wstring(caption), flags, PlaceOf(place));
    return made->window;
}

GUI_RECT GalleryScreenRect(const GHOSTMANAGER_WINDOW* window) {
    GUI_RECT rect;
    CGhostManager::Get().GetScreenRect(window, &rect);
    return rect;
}

CGhostButton* GalleryButton(GHOSTMANAGER_WINDOW* parent, const std::wstring& style,
                            std::wstring_view caption, GalleryState state, const GUI_RECT& place) {
    auto* const button =
        new CGhostButton(parent, 0, style, std::wstring(caption), 0, PlaceOf(place));
    switch (state) {
    case GalleryState::kHot: GalleryHold(*button, [=] { button->OnMouseMove(1, 1); }); break;
    case GalleryState::kPressed: button->SetDown(true); break;
    case GalleryState::kDisabled: button->SetEnabled(false); break;
    case GalleryState::kFocused: button->OnFocus(true, nullptr); break;
    case GalleryState::kNormal: break;
    }
    return button;
}

CGhostDropList* GalleryDropList(GHOSTMANAGER_WINDOW* parent, std::wstring_view text,
                                const GUI_RECT& place) {
    constexpr int32_t kMostHeight = 240;
    auto* const list = new CGhostDropList(parent, 0, L"DROPLIST", L"", kMostHeight, PlaceOf(place));
    list->AddItem(std::wstring(text));
    for (const wchar_t* const more : {L"Another choice", L"A third", L"The last of them"}) {
        list->AddItem(more);
    }
    list->SetSelected(0, false);
    return list;
}

namespace {

// Behind the control in its chain. What it queues is called after what the control has queued in this tick.
class Holder : public CGhostGUIHandler {
public:
    explicit Holder(std::function<void()> wanted)
        : hold(std::move(wanted)) {}
    void Destroy() override { delete this; }
    void OnTick(unsigned /*microseconds*/) override { CGhostManager::Get().QueueEvent(hold); }

private:
    std::function<void()> hold;
};

} // namespace

void GalleryHold(CGhostGUIHandler& control, std::function<void()> hold) {
    control.next = new Holder([hold = std::move(hold)] {
        CGhostManager& manager = CGhostManager::Get();
        const uint32_t cursor = manager.CursorIndex();
        hold();
        manager.SetCursorIndex(cursor);
    });
}
