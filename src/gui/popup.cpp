#include "gui/popup.h"

#include "gui/floating_list.h"
#include "gui/manager.h"

namespace {

constexpr int32_t kBesideText = 35; // of a menu's width, beyond its widest item

} // namespace

// The companion window has no size; it carries the control, and the list floats for it.
CGhostPopup::CGhostPopup(GHOSTMANAGER_WINDOW* parent, uint32_t creationId) {
    window = MakeControlWindow(parent, creationId, this, {});
    list = MakeFloatingList(
        window, creationId, L"POPUPMENU", [this] { Hide(); },
        [this](const void* part) { return IsOwnPart(part); });
    list->OnSelect.connect([this](CGhostList*, int index, GHOSTLIST_ITEM* item) {
        if (item != nullptr) {
            Hide();
            OnSelect(this, index, item);
        }
    });
}

bool CGhostPopup::IsOwnPart(const void* part) const {
    return part == list->window || part == list->ScrollbarWindow();
}

bool CGhostPopup::HasFocus() const {
    return IsOwnPart(CGhostManager::Get().FocusWindow());
}

// The list's bar does not tell who took the focus from it. On a screen of another size the menu's place is wrong.
void CGhostPopup::OnTick(unsigned /*microseconds*/) {
    if (shown && (!HasFocus() || screen != CGhostManager::Get().ScreenRect())) {
        Hide();
    }
}

int32_t CGhostPopup::AddItem(const std::wstring& text, int32_t image, uint32_t itemFlags,
                             uint64_t value) {
    return list->AddItem(text, image, itemFlags, 0, value);
}

void CGhostPopup::Clear() {
    Hide();
    list->Clear();
}

void CGhostPopup::Show() {
    const CGhostManager& manager = CGhostManager::Get();
    ShowAt(manager.CursorX(), manager.CursorY());
}

void CGhostPopup::ShowAt(int32_t x, int32_t y) {
    CGhostManager& manager = CGhostManager::Get();
    const GUI_RECT at{x, y, 0, 0};
    const int32_t width = list->WidestItem() + kBesideText;
    const int32_t height = list->ContentHeight() + list->FrameHeight();
    screen = manager.ScreenRect();
    const GUI_RECT place = DropPlace(at, width, height, screen);
    if (!shown) {
        focusBefore = manager.FocusId();
    }
    shown = true;
    list->SetPos(place.x, place.y, place.width, place.height);
    list->ScrollTo(0);
    list->SetSelected(-1, false);
    list->SetHot(-1);
    SetZOrder(-1);
    OpenFloatingList(*list, place);
}

void CGhostPopup::Hide() {
    if (!shown) {
        return;
    }
    shown = false;
    CGhostManager& manager = CGhostManager::Get();
    const bool within = HasFocus();
    list->SetVisible(false);
    if (within) {
        manager.ReturnFocus(focusBefore);
    }
}
