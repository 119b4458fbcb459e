#include "gui/floating_list.h"

#include "gui/manager.h"

#include <utility>

CGhostList* MakeFloatingList(GHOSTMANAGER_WINDOW* owner, uint32_t creationId,
                             const std::wstring& style, std::function<void()> close,
                             std::function<bool(const void*)> isOwn) {
    auto* const list = new CGhostList(
        nullptr, creationId, style,
        CGhostList::kReportsAgain | CGhostList::kOnRelease | CGhostList::kKeysAim, {});
    CGhostManager& manager = CGhostManager::Get();
    list->SetVisible(false);
    manager.SetTabStop(list->window, false);
    manager.SetOwner(list->window, owner);
    manager.SetPart(list->window);
    list->OnCancel.connect([close](CGhostList*) { close(); });
    // What has the focus now counts, since the list may have it again already.
    list->OnFocusChange.connect([close, isOwn = std::move(isOwn)](CGhostList*, bool gained, void*) {
        if (!gained && !isOwn(CGhostManager::Get().FocusWindow())) {
            close();
        }
    });
    return list;
}

void OpenFloatingList(CGhostList& list, const GUI_RECT& place) {
    list.SetPos(place.x, place.y, place.width, place.height);
    list.SetZOrder(-1);
    list.SetVisible(true);
    list.SetFocus();
}
