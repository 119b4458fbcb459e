#include "gui/drop_list.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>

CGhostDropList::CGhostDropList(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                               const std::wstring& wantedStyle, const std::wstring& text,
                               int32_t most, const GUI_PLACE& place)
    : caption(text)
    , maxHeight(most) {
    CGhostManager& manager = CGhostManager::Get();
    CGhostTheme::Get().GetStyle(wantedStyle, style);
    window = MakeControlWindow(parent, creationId, this, place);
    manager.SetTabStop(window, true);
    manager.SetWindowFrame(window, &style.bg.border);
    arrow = new CGhostButton(window, creationId, L"none", {}, CGhostButton::kNoKeys, {});
    arrow->SetStyle(style.button);
    manager.SetPart(arrow->window);
    arrow->OnClick.connect([this](CGhostButton*, int, int, unsigned) { Toggle(); });

    list = new CGhostList(nullptr, creationId, L"LIST",
                          CGhostList::kReportsAgain | CGhostList::kOnRelease | CGhostList::kKeysAim,
                          {});
    list->SetVisible(false);
    manager.SetTabStop(list->window, false);
    manager.SetOwner(list->window, window);
    manager.SetPart(list->window);
    list->OnSelect.connect(
        [this](CGhostList*, int index, GHOSTLIST_ITEM* item) { Chosen(index, item); });
    list->OnCancel.connect([this](CGhostList*) { CloseList(); });
    // What has the focus now counts, since the list may have it again already.
    list->OnFocusChange.connect([this](CGhostList*, bool gained, void*) {
        if (!gained && !IsOwnPart(CGhostManager::Get().FocusWindow())) {
            CloseList();
        }
    });
    PlaceControl(window, place);
}

int32_t CGhostDropList::AddItem(const std::wstring& text, int32_t image, uint32_t itemFlags,
                                uint64_t value) {
    return list->AddItem(text, image, itemFlags, 0, value);
}

void CGhostDropList::Clear() {
    list->Clear();
    chosen = -1;
    dirty = true;
}

void CGhostDropList::SetCaption(const std::wstring& text) {
    if (text != caption) {
        caption = text;
        dirty = true;
    }
}

void CGhostDropList::SetSelected(int32_t index, bool notify) {
    list->SetSelected(index, false);
    chosen = list->Selected();
    GHOSTLIST_ITEM* const item = list->Item(list->Selected());
    SetCaption(item != nullptr ? item->text : std::wstring());
    if (notify) {
        OnSelect(this, list->Selected(), item);
    }
}

void CGhostDropList::SetEnabled(bool enable) {
    enabled = enable;
    if (!enable) {
        CloseList();
    }
    arrow->SetEnabled(enable);
    CGhostManager::Get().SetTabStop(window, enable);
    dirty = true;
}

bool CGhostDropList::IsOwnPart(const void* part) const {
    return part == window || part == arrow->window || part == list->window ||
           part == list->ScrollbarWindow();
}

// ---- Opening and closing.

void CGhostDropList::Open() {
    CGhostManager& manager = CGhostManager::Get();
    GUI_RECT at;
    if (open || !enabled || !manager.GetScreenRect(window, &at)) {
        return;
    }
    const int32_t height = std::min(list->ContentHeight() + list->FrameHeight(), maxHeight);
    const GUI_RECT place = DropPlace(at, at.width, height, manager.ScreenRect());
    open = true;
    list->SetPos(place.x, place.y, place.width, place.height);
    list->SetHot(list->Selected() >= 0 ? list->Selected() : 0);
    arrow->SetDown(true);
    list->SetZOrder(-1);
    list->SetVisible(true);
    list->SetFocus();
    dirty = true;
}

void CGhostDropList::CloseList() {
    if (!open) {
        return;
    }
    open = false;
    const GHOSTMANAGER_WINDOW* const focus = CGhostManager::Get().FocusWindow();
    const bool within = IsOwnPart(focus);
    list->SetVisible(false);
    if (enabled) {
        arrow->SetDown(false);
    }
    if (within) {
        SetFocus();
    }
    dirty = true;
}

void CGhostDropList::Toggle() {
    open ? CloseList() : Open();
}

void CGhostDropList::Chosen(int32_t index, GHOSTLIST_ITEM* item) {
    if (item == nullptr) {
        list->SetSelected(chosen, false); // beside the rows, or a disabled one: the choice stays
        return;
    }
    chosen = index;
    SetCaption(item->text);
    CloseList();
    OnSelect(this, index, item);
}

// While it is closed, past rows that are disabled.
void CGhostDropList::StepSelection(int32_t step) {
    int32_t index = Selected() + step;
    while (Item(index) != nullptr && (Item(index)->flags & GHOSTLIST_ITEM::kDisabled) != 0) {
        index += step;
    }
    if (Item(index) != nullptr) {
        SetSelected(index);
    }
}

// A list whose control is hidden goes with it. Its bar does not tell who took the focus from it.
void CGhostDropList::OnTick(unsigned /*microseconds*/) {
    if (open && (!IsVisible() || !IsOwnPart(CGhostManager::Get().FocusWindow()))) {
        CloseList();
    }
}

// ---- Input.

void CGhostDropList::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = true;
    if (!gained && !IsOwnPart(CGhostManager::Get().FocusWindow())) {
        CloseList();
    }
}

void CGhostDropList::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                              int clientHeight) {
    if (arrow != nullptr) {
        arrow->SetPos(clientWidth - clientHeight, 0, clientHeight, clientHeight);
    }
    dirty = true;
}

void CGhostDropList::OnMouseMove(int /*x*/, int /*y*/) {
    ShowCursor(enabled ? kCursorHot : kCursorNormal);
    if (!hovered) {
        hovered = true;
        dirty = true;
    }
}

void CGhostDropList::OnMouseLeave() {
    ShowCursor(kCursorNormal);
    hovered = false;
    dirty = true;
}

void CGhostDropList::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
}

void CGhostDropList::OnMouseDown(int /*x*/, int /*y*/, unsigned button) {
    if (button == 1) {
        Toggle();
    }
}

void CGhostDropList::OnMouseWheel(int /*x*/, int /*y*/, bool up) {
    if (enabled && !open) {
        StepSelection(up ? -1 : 1);
    }
}

void CGhostDropList::OnKeyDown(GHOSTGUIKey key) {
    if (!enabled) {
        return;
    }
    switch (key) {
    case GHOSTGUIKey::kReturn:
    case GHOSTGUIKey::kSpace: Toggle(); break;
    case GHOSTGUIKey::kEscape: CloseList(); break;
    case GHOSTGUIKey::kUp: StepSelection(-1); break;
    case GHOSTGUIKey::kDown: StepSelection(1); break;
    default: MoveFocusByKey(key); break;
    }
}

bool CGhostDropList::OnActivateKey() {
    Toggle();
    return true;
}

void CGhostDropList::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const GUI_RECT whole{0, 0, surface->Width(), surface->Height()};
    const int32_t text = std::max(0, whole.width - whole.height); // beside the arrow
    PaintFill(*surface, style.bg.bg, whole);
    GhostTextStyle look = style.bg;
    look.bg.type = GhostFill::kNone;
    PaintText(*surface, look, caption, {0, 0, text, whole.height});
    if (focused && enabled) {
        PaintFocusRing(*surface, whole);
    }
}
