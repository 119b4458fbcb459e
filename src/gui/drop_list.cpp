#include "gui/drop_list.h"

#include "gui/button.h"
#include "gui/control_input.h"
#include "gui/floating_list.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>

namespace {

// The ring goes around the whole face. The arrow lies over its right end and paints that part.
class FaceRing : public CGhostGUIHandler {
public:
    explicit FaceRing(const CGhostDropList* owner)
        : control(owner) {}
    void Destroy() override { delete this; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        const int32_t left = surface->Width() - control->FaceWidth();
        if (control->ShowsRing()) {
            PaintFocusRing(*surface, {left, 0, control->FaceWidth(), surface->Height()});
        }
    }

private:
    const CGhostDropList* control; // which ends after its arrow
};

} // namespace

CGhostDropList::CGhostDropList(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                               const std::wstring& wantedStyle, const std::wstring& text,
                               int32_t most, const GUI_PLACE& place)
    : caption(text)
    , maxHeight(most) {
    CGhostManager& manager = CGhostManager::Get();
    window = MakeControlWindow(parent, creationId, this, place);
    manager.SetTabStop(window, true);
    // It stays down while the list is open, wherever the mouse goes.
    arrow = new CGhostButton(window, creationId, L"none", {},
                             CGhostButton::kNoKeys | CGhostButton::kLatches, {});
    arrow->next = new FaceRing(this);
    manager.SetPart(arrow->window);
    arrow->OnClick.connect([this](CGhostButton*, int, int, unsigned) { Toggle(); });
    arrow->OnWheel.connect([this](CGhostButton*, int x, int y, bool up) {
        SetFocus(); // the keys are the control's
        OnMouseWheel(x, y, up);
    });
    list = MakeFloatingList(
        window, creationId, L"LIST", [this] { CloseList(); },
        [this](const void* part) { return IsOwnPart(part); });
    list->OnSelect.connect(
        [this](CGhostList*, int index, GHOSTLIST_ITEM* item) { Chosen(index, item); });
    SetStyle(wantedStyle);
    PlaceControl(window, place);
}

void CGhostDropList::SetStyle(const std::wstring& name) {
    CGhostTheme::Get().GetStyle(name, style);
    arrow->SetStyle(style.button);
    CGhostManager::Get().SetWindowFrame(window, &style.bg.border);
    dirty = true;
}

int32_t CGhostDropList::AddItem(const std::wstring& text, int32_t image, uint32_t itemFlags,
                                uint64_t value) {
    const int32_t index = list->AddItem(text, image, itemFlags, 0, value);
    if (open) {
        const GUI_RECT place = ListPlace();
        list->SetPos(place.x, place.y, place.width, place.height);
    }
    return index;
}

void CGhostDropList::Clear() {
    CloseList();
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

GUI_RECT CGhostDropList::ListPlace() {
    const CGhostManager& manager = CGhostManager::Get();
    GUI_RECT at;
    manager.GetScreenRect(window, &at);
    const int32_t height = std::min(list->ContentHeight() + list->FrameHeight(), maxHeight);
    placedFor = at;
    screen = manager.ScreenRect();
    return DropPlace(at, at.width, height, screen);
}

void CGhostDropList::Open() {
    if (open || !enabled) {
        return;
    }
    open = true;
    const GUI_RECT place = ListPlace();
    list->SetPos(place.x, place.y, place.width, place.height); // the rows that are seen
    list->SetHot(list->Selected() >= 0 ? list->Selected() : 0);
    arrow->SetDown(true);
    OpenFloatingList(*list, place);
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

// The row, or the next one in that direction that is not disabled. False when there is none.
bool CGhostDropList::SelectUsable(int32_t index, int32_t step) {
    while (Item(index) != nullptr && (Item(index)->flags & GHOSTLIST_ITEM::kDisabled) != 0) {
        index += step;
    }
    if (Item(index) == nullptr || index == Selected()) {
        return false;
    }
    SetSelected(index);
    return true;
}

// A list whose control is hidden goes with it, and one whose control has moved is in the wrong place. Its bar
// does not tell who took the focus from it.
void CGhostDropList::OnTick(unsigned microseconds) {
    typeAhead.Tick(microseconds);
    if (!open) {
        return;
    }
    const CGhostManager& manager = CGhostManager::Get();
    GUI_RECT at;
    manager.GetScreenRect(window, &at);
    if (!IsVisible() || !IsOwnPart(manager.FocusWindow()) || at != placedFor ||
        screen != manager.ScreenRect()) {
        CloseList();
    }
}

// ---- Input.

void CGhostDropList::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = arrow->dirty = true;
    if (!gained && !IsOwnPart(CGhostManager::Get().FocusWindow())) {
        CloseList();
    }
}

void CGhostDropList::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                              int clientHeight) {
    width = clientWidth;
    if (arrow != nullptr) {
        arrow->SetPos(clientWidth - clientHeight, 0, clientHeight, clientHeight);
    }
    dirty = true;
}

void CGhostDropList::OnMouseMove(int /*x*/, int /*y*/) {
    ShowCursor(enabled ? kCursorHot : kCursorNormal);
    arrow->OnMouseMove(0, 0); // the face is hot as a whole
}

void CGhostDropList::OnMouseLeave() {
    arrow->OnMouseLeave();
}

void CGhostDropList::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
}

void CGhostDropList::OnMouseDown(int /*x*/, int /*y*/, unsigned button) {
    if (button == kLeftButton) {
        Toggle();
    }
}

void CGhostDropList::OnMouseWheel(int /*x*/, int /*y*/, bool up) {
    if (enabled && !open) {
        SelectUsable(Selected() + (up ? -1 : 1), up ? -1 : 1);
    }
}

void CGhostDropList::OnKeyDown(GHOSTGUIKey key) {
    if (!enabled) {
        MoveFocusByKey(key);
        return;
    }
    switch (key) {
    case GHOSTGUIKey::kReturn: Toggle(); break;
    case GHOSTGUIKey::kSpace:
        if (!typeAhead.Active()) {
            Toggle();
        }
        break;
    case GHOSTGUIKey::kEscape: CloseList(); break;
    case GHOSTGUIKey::kPageUp: SelectUsable(Selected() - 1, -1); break;
    case GHOSTGUIKey::kPageDown: SelectUsable(Selected() + 1, 1); break;
    case GHOSTGUIKey::kHome: SelectUsable(0, 1); break;
    case GHOSTGUIKey::kEnd: SelectUsable(Count() - 1, -1); break;
    default: MoveFocusByKey(key); break;
    }
}

void CGhostDropList::OnChar(unsigned character) {
    if (!enabled || open || (character == L' ' && !typeAhead.Active())) {
        return;
    }
    const auto text = [this](int32_t at) {
        const bool usable = (Item(at)->flags & GHOSTLIST_ITEM::kDisabled) == 0;
        return usable ? std::wstring_view(Item(at)->text) : std::wstring_view();
    };
    const int32_t row = typeAhead.Type(static_cast<wchar_t>(character), Count(), Selected(), text);
    if (row >= 0) {
        SelectUsable(row, 1);
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
    GhostTextStyle look = enabled ? style.bg : DisabledText(style.bg);
    look.bg.type = GhostFill::kNone;
    PaintText(*surface, look, caption, {0, 0, text, whole.height});
    if (ShowsRing()) {
        PaintFocusRing(*surface, whole);
    }
}
